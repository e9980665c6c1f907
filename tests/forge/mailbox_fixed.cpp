// The nodes that are there in every store, whatever it holds.
#include "forge/mailbox.h"

namespace velmora::forge {
namespace {

constexpr Nid kSearchManagement = 0x1E1;
constexpr Nid kSearchActivity = 0x201;
constexpr Nid kSearchDomain = 0x261;
constexpr Nid kReceiveFolders = 0x62B;
constexpr Nid kOutgoingQueue = 0x64C;

struct Template {
  Nid nid;
  const std::vector<Column>& (*columns)();
};

// The empty tables from which the tables of a new folder or message are made.
constexpr Template kTemplates[] = {{0x60D, HierarchyColumns}, {0x60E, ContentsColumns},   {0x60F, AssociatedColumns},
                                   {0x610, SearchColumns},    {0x671, AttachmentColumns}, {0x692, RecipientColumns}};

}  // namespace

void Mailbox::WriteFixedNodes() {
  for (const Template& entry : kTemplates) AddTableNode(store_, entry.nid, entry.columns(), {});
  AddTableNode(store_, kReceiveFolders, {{0x001A, kString}, {0x6605, kInt32}},
               {{.id = 1, .cells = {Text(0x001A, u""), Int32(0x6605, kRootFolder)}}});
  AddTableNode(store_, kOutgoingQueue, {{0x0039, kTime}, {0x0E10, kInt32}, {0x0E14, kInt32}}, {});

  for (const Nid empty : {kSearchManagement, kSearchDomain}) store_.AddNode(empty, 0, 0, 0);
  Bytes active;
  for (const auto& [nid, folder] : folders_) {
    if ((nid & 0x1F) == 3) Append(active, nid, 4);
  }
  store_.AddNode(kSearchActivity, store_.AddData(active), 0, 0);
}

}  // namespace velmora::forge
