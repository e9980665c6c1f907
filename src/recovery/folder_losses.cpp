#include "recovery/folder_losses.h"

#include "recovery/lost_items.h"
#include "store/format/store_nodes.h"

namespace velmora::recovery {

void UnreadFolders::Note(const engine::NodeRecord& node, Failure failure) {
  const bool isFolder = HasNidType(node.nid, NidType::kNormalFolder) && node.nid != Value(nid::kRootFolder);
  const bool hasPlace = node.nidParent != 0 && node.nidParent != Value(nid::kRootFolder) && node.nidParent != node.nid;
  if (isFolder && hasPlace && !node.upperPage) {
    unread_.try_emplace(node.nid, Unread{engine::LowBid(node.bidData), std::move(failure)});
  }
}

void UnreadFolders::Report(RecoveryState& state, const FolderCollector& folders) const {
  for (const auto& [nid, unread] : unread_) {
    if (folders.Contains(nid)) continue;
    ReportLoss(state, {LossKind::kFolder, nid, unread.bidData, {}, u"folder: " + ReasonOf(unread.failure)});
  }
}

void FolderLosses::ReportMoved() {
  for (const FolderRecord& folder : state_.folders.Records()) {
    const bool atTopByRule = folder.parentNid == Value(nid::kRootFolder) || folder.parentNid == state_.topFolderNid ||
                             folder.nid == state_.topFolderNid || leftOut_.contains(folder.parentNid);
    if (atTopByRule || state_.folders.Find(folder.parentNid) != nullptr) continue;
    Report(folder,
           u"its parent " + HexOf(folder.parentNid) + u" is no folder that could be read: it stands at the top");
  }
}

void FolderLosses::NoteThere(const FolderRecord& folder, std::size_t pathKey) {
  const auto [place, isFirst] = ofPath_.try_emplace(pathKey, First{folder.nid, folder.parentNid});
  const First other = place->second;
  const bool split = folder.name.find(u'\\') != text::Text::npos;
  // Below two folders of the root: the subtrees of mailbox and public folders are one by rule.
  const bool ofTwoRoots =
      other.parentNid != folder.parentNid && leftOut_.contains(other.parentNid) && leftOut_.contains(folder.parentNid);
  if (!isFirst && !ofTwoRoots) Report(folder, u"merged with folder " + HexOf(other.nid) + u", which has the same path");
  if (isFirst && split) Report(folder, u"the backslash in its name put it below another folder");
}

void FolderLosses::ReportNotMade(const FolderRecord& folder) {
  if (folder.nid == state_.topFolderNid) return;  // the new store has a top of its own
  const bool split = folder.name.find(u'\\') != text::Text::npos;
  Report(folder, split ? u"not made: the backslash in its name leads to a folder that is not there"
                       : u"not made: it has no parent in the new store, or no name that a folder can have");
}

/// Other nodes may have a name too, and become folders by it: nobody would miss those.
void FolderLosses::Report(const FolderRecord& folder, text::TextView reason) {
  if (!HasNidType(folder.nid, NidType::kNormalFolder)) return;
  ReportLoss(state_, {LossKind::kFolder,
                      folder.nid,
                      0,
                      {},
                      u"folder \"" + ReportText(state_, folder.name) + u"\": " + text::Text(reason)});
}

}  // namespace velmora::recovery
