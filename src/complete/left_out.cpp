#include "complete/left_out.h"

#include <array>
#include <cstddef>

namespace velmora::complete {
namespace {

struct LeftOut {
  std::uint16_t first;
  std::uint16_t last;
  std::uint8_t owners;
  const char* why;
};

constexpr std::uint8_t kObjects = kMessage | kFolder | kAttachment;
constexpr std::uint8_t kAll = kObjects | kRecipient;

// clang-format off
constexpr LeftOut kLeftOut[] = {
    {0x003D, 0x003D, kMessage, "subject prefix: the subject carries it"},
    {0x0E05, 0x0E05, kMessage, "name of the folder: the folder carries it"},
    {0x0E08, 0x0E08, kMessage, "size: computed of what is written"},
    {0x0E09, 0x0E09, kObjects, "entry id of the folder: computed of the node ids"},
    {0x0E0A, 0x0E0A, kMessage, "entry id of the folder for sent mail in the old store"},
    {0x0E12, 0x0E13, kMessage, "recipients and attachments as objects: their tables carry them"},
    {0x0E17, 0x0E17, kMessage, "status: a cell of the folder's table alone"},
    {0x0E1B, 0x0E1B, kMessage, "has attachments: a bit of the flags"},
    {0x0E1D, 0x0E1D, kMessage, "subject without prefix: the subject carries it"},
    {0x0E20, 0x0E20, kAttachment, "size: computed of what is written"},
    {0x0E21, 0x0E21, kAttachment, "number: the row id"},
    {0x0E27, 0x0E27, kObjects, "security descriptor of the old store's server"},
    {0x0E30, 0x0E3E, kObjects, "state of replication"},
    {0x0FF4, 0x0FF8, kObjects, "access rights and store keys: computed"},
    {0x0FF9, 0x0FF9, kObjects, "record key: computed of the node id"},
    {0x0FFA, 0x0FFB, kObjects, "keys of the old store: computed"},
    {0x0FFE, 0x0FFF, kObjects, "kind and entry id: computed of the node id"},
    {0x120B, 0x120D, kFolder, "entry ids of the old store"},
    {0x35DF, 0x35EF, kAll, "the store's folders by entry id: those of the new store"},
    {0x3602, 0x3603, kFolder, "counts: computed of what is written"},
    {0x360A, 0x360A, kFolder, "has folders: computed of what is written"},
    {0x360E, 0x3611, kFolder, "tables as objects: they are nodes of their own"},
    {0x36D0, 0x36D9, kFolder, "default folders by entry id: marked anew"},
    {0x36E4, 0x36E4, kFolder, "folders of free and busy times by entry id in the old store"},
    {0x5D00, 0x5D00, kAll, "state of synchronisation"},
    {0x5D03, 0x5D04, kAll, "state of synchronisation"},
    {0x5D09, 0x5DFF, kAll, "state of synchronisation"},
    {0x6600, 0x6618, kAll, "of the store that held the object"},
    {0x661A, 0x6634, kAll, "of the store that held the object"},
    {0x6635, 0x6636, kFolder, "counts of hidden messages: computed of what is written"},
    {0x6637, 0x67FF, kAll, "of the store that held the object"},
    {0x7C00, 0x7C05, kObjects, "state of synchronisation"},
    {0x7C0A, 0x7CFF, kObjects, "state of synchronisation; between them lists of categories and views keep their content"},
};
// clang-format on

}  // namespace

bool IsLeftOut(std::uint16_t id, Owner owner) {
  static const auto ownersOf = [] {
    std::array<std::uint8_t, 0x8000> owners{};
    for (const LeftOut& row : kLeftOut) {
      for (std::size_t each = row.first; each <= row.last; ++each) owners[each] |= row.owners;
    }
    return owners;
  }();
  return id < ownersOf.size() && (ownersOf[id] & owner) != 0;
}

}  // namespace velmora::complete
