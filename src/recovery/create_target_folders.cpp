#include <algorithm>
#include <functional>
#include <iterator>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "recovery/catching_frame.h"
#include "recovery/folder_losses.h"
#include "recovery/folder_path.h"
#include "recovery/steps.h"
#include "store/format/store_nodes.h"

namespace velmora::recovery {
namespace {

constexpr std::uint32_t kTargetFolderStage = 7;

struct SpecialFolder {
  text::TextView name;  ///< compared with its letter case
  output::DefaultFolder kind;
};

constexpr SpecialFolder kSpecialFolders[] = {
    {u"Deleted Items", output::DefaultFolder::kDeletedItems},
    {u"Folder Conflicts", output::DefaultFolder::kConflicts},
    {u"Sync Issues", output::DefaultFolder::kSyncIssues},
    {u"Local Failures", output::DefaultFolder::kLocalFailures},
    {u"Server Failures", output::DefaultFolder::kServerFailures},
};

output::FolderType KindOf(text::TextView leaf, const FolderRecord& folder) {
  const auto special = std::ranges::find(kSpecialFolders, leaf, &SpecialFolder::name);
  if (special != std::end(kSpecialFolders)) return static_cast<std::int32_t>(special->kind);
  return folder.containerClass;
}

/// A text's stand-in in a table; two texts may share one.
std::size_t PathKey(text::TextView path) { return std::hash<text::Text>{}(text::CaseFolded(path)); }

/// Makes the folders in list order. One whose parent is not there yet is set aside and tried again, in list order,
/// after the rest, as long as such a pass creates one; one that cannot be made at all does not end the run.
/// A folder that is set aside is looked at again only when its parent has been made, so a list in which every
/// child stands ahead of its parent costs no more than any other.
class FolderMaker {
 public:
  FolderMaker(RecoveryState& state, engine::RunContext& run, FolderLosses& losses)
      : state_(state), run_(run), losses_(losses) {}

  void MakeAll() {
    for (std::size_t index = 0; index < state_.folders.Records().size(); ++index) {
      if (run_.runEnded) return;
      run_.control.PausePoint();
      MakeOne(0, index);
    }
    while (!due_.empty()) {
      if (run_.runEnded) return;
      run_.control.PausePoint();
      const auto [pass, index] = *due_.begin();
      due_.erase(due_.begin());
      MakeOne(pass, index);
    }
    std::set<std::size_t> left;
    for (const auto& [key, indexes] : aside_) left.insert(indexes.begin(), indexes.end());
    for (const std::size_t index : left) losses_.ReportNotMade(state_.folders.Records()[index]);
    if (!left.empty()) state_.report.skipped[SkipReason::kNoFolder] += left.size();
  }

 private:
  void MakeOne(std::size_t pass, std::size_t index) {
    const FolderRecord& folder = state_.folders.Records()[index];
    const text::Text path = BuildFolderPath(state_.folders, state_.topFolderNid, folder.nid);
    const auto [parentPath, leaf] = SplitAtLeaf(path);
    bool thereNow = false;
    bool created = false;
    WithinFrame([&] {
      const auto parent = state_.session->GetFolderFromPath(TargetPath(state_.convertedName, parentPath));
      if (!parent) return;
      const auto siblings = parent->Folders();
      if (!siblings->Item(leaf)) {
        siblings->Add(leaf, KindOf(leaf, folder));
        created = true;
      }
      thereNow = true;
      if (run_.log != nullptr && created && siblings->Item(leaf)) {
        run_.Log(u"\r\n");
        run_.Log(leaf);
      }
    });
    if (thereNow) losses_.NoteThere(folder, PathKey(path));
    if (!thereNow) aside_[PathKey(parentPath)].push_back(index);
    if (created && !aside_.empty()) Release(PathKey(path), pass, index);
  }

  /// The folders that waited for this one: those behind it in the list have their turn in this pass still.
  void Release(std::size_t key, std::size_t pass, std::size_t madeIndex) {
    const auto found = aside_.find(key);
    if (found == aside_.end()) return;
    for (const std::size_t index : found->second) due_.emplace(index > madeIndex ? pass : pass + 1, index);
    aside_.erase(found);
  }

  RecoveryState& state_;
  engine::RunContext& run_;
  FolderLosses& losses_;
  std::set<std::pair<std::size_t, std::size_t>> due_;                ///< behind the first pass: pass, place in the list
  std::unordered_map<std::size_t, std::vector<std::size_t>> aside_;  ///< by the path of the parent
};

}  // namespace

void CreateTargetFolders(RecoveryState& state, std::vector<FolderRecord> recovered, engine::RunContext& run) {
  run.BeginStage(kTargetFolderStage);

  // The folders directly below the store's root never become target folders; their children hang from the top.
  std::vector<FolderRecord> ordered = OrderFolders(std::move(recovered));
  std::unordered_set<std::uint32_t> leftOut;
  std::erase_if(ordered, [&](const FolderRecord& folder) {
    const bool isLeftOut = folder.parentNid == Value(nid::kRootFolder);
    if (isLeftOut) leftOut.insert(folder.nid);
    return isLeftOut;
  });
  state.folders = FolderList(std::move(ordered));
  run.Say(engine::FoldersKnown{state.folders.Records(), state.topFolderNid});

  FolderLosses losses(state, std::move(leftOut));
  losses.ReportMoved();
  FolderMaker(state, run, losses).MakeAll();
}

}  // namespace velmora::recovery
