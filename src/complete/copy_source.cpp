#include "complete/copy_source.h"

#include "store/format/property_tags.h"

namespace velmora::complete {
namespace {

/// The hidden message in which a store keeps the names and colours of its categories.
constexpr text::TextView kCategoryListClass = u"IPM.Configuration.CategoryList";

}  // namespace

CopySource::CopySource(const engine::ProvenStore& found, const text::CodePage& last, bool hidden)
    : live(found), names(live), pages(live, last), plan(live, pages, hidden), hidden_(hidden) {
  if (hidden) return;
  for (const ndb::NodeEntry& node : live.Nodes()) {
    if (TypeOf(node.nid) != NidType::kAssocMessage || !IsInCopied(node)) continue;
    if (IsCategoryList(node)) categoryLists_.insert(node.nid);
  }
}

bool CopySource::Takes(const ndb::NodeEntry& node) {
  switch (TypeOf(node.nid)) {
    case NidType::kNormalFolder:
      return plan.Find(node.nid)->isCopied;
    case NidType::kNormalMessage:
      return true;
    case NidType::kAssocMessage:
      return hidden_ ? IsInCopied(node) : categoryLists_.contains(node.nid);
    default:
      return false;
  }
}

bool CopySource::Takes(Nid nid) {
  if (const SourceFolder* folder = plan.Find(nid)) return folder->isCopied;
  const auto node = live.FindNode(nid);
  return node && Takes(*node);
}

/// A hidden message of a folder that stays behind is of use to nobody.
bool CopySource::IsInCopied(const ndb::NodeEntry& message) {
  const SourceFolder* folder = plan.Find(message.nidParent);
  return folder != nullptr && folder->isCopied;
}

bool CopySource::IsCategoryList(const ndb::NodeEntry& message) {
  ndb::Faults faults;
  auto context = IfReadable([&] { return ltp::PropertyContext::Open(live, message.trees, &faults); });
  const auto messageClass = context ? ReadText(*context, tag::kMessageClass, pages.OfStore()) : std::nullopt;
  return messageClass && text::EqualIgnoringCase(*messageClass, kCategoryListClass);
}

}  // namespace velmora::complete
