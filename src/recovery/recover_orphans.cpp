#include <algorithm>
#include <utility>

#include "recovery/folder_path.h"
#include "recovery/lost_items.h"
#include "recovery/process_node.h"
#include "recovery/steps.h"

namespace velmora::recovery {

using engine::OrphanBlock;
using engine::RunContext;
using engine::ScannedStore;

namespace {

constexpr std::uint32_t kItemStage = 8;
constexpr std::uint32_t kLastPercent = 100;
constexpr std::uint32_t kOrphanedMailsMarker = 0x1122;  ///< stands for a folder that has no node

class ItemRecovery {
 public:
  ItemRecovery(RecoveryState& state, const ScannedStore& store, RunContext& run)
      : state_(state),
        store_(store),
        run_(run),
        nodesLeft_(state.usedNodes.Left(store)),
        percentBase_(static_cast<std::uint64_t>((std::uint64_t{nodesLeft_} + store.orphanBlockCount) / 100.0 + 0.5)) {}

  void ProcessNodes() {
    const auto& nodes = store_.nodes.Records();
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      if (state_.usedNodes.IsUnlinked(i)) continue;
      if (run_.runEnded) return;
      const engine::NodeRecord& node = nodes[i];
      run_.control.PausePoint();
      const std::uint64_t progress = Progress();
      if (CountsItems() || progress <= kLastPercent) run_.SayProgress(progress);
      const std::size_t listed = state_.report.lost.size();
      const std::uint64_t notListed = state_.report.lostNotListed;
      const auto outcome =
          Process({node.nid, engine::LowBid(node.bidData), engine::LowBid(node.bidSub)}, {.folderNid = node.nidParent});
      // What an upper page was read as may by chance lead to a message, which its own node gives too.
      if (node.upperPage) {
        state_.report.lost.resize(listed);
        state_.report.lostNotListed = notListed;
      }
      ReportNode(state_, node, outcome);
      ++state_.report.nodesDone;
      ++counter_;
    }
  }

  /// False when the run ended on the way.
  bool ProcessOrphans() {
    const std::vector<OrphanBlock>& orphans = store_.orphans;
    bool first = true;
    for (std::size_t i = 0; i < orphans.size(); ++i) {
      if (run_.runEnded) return false;
      run_.control.PausePoint();
      const MessagePlace place{.orphanFolder = OpenOrphanFolder(first)};
      const OrphanBlock& orphan = orphans[i];
      const auto outcome = Process({.bidData = orphan.bidData, .bidSub = orphan.bidSub}, place);
      // The element that ends the list stands for nothing.
      const bool isElement = orphan.bidData != 0 || orphan.bidSub != 0;
      if (isElement) {
        ReportNode(state_, {0, orphan.bidData, orphan.bidSub, 0}, outcome);
        ++state_.report.nodesDone;
      }
      if (i + 1 == orphans.size()) break;
      const std::uint64_t progress = Progress();
      if (!CountsItems()) lastPercentage_ = progress;
      run_.SayProgress(progress);
      ++counter_;
    }
    return true;
  }

  void FillProgressUp() {
    if (run_.runEnded) return;
    for (std::uint64_t value = CountsItems() ? counter_ : lastPercentage_; value <= kLastPercent; ++value) {
      run_.SayProgress(value);
    }
  }

  void AnnounceFolders() {
    for (const FolderRecord& folder : state_.folders.Records()) run_.Say(engine::FolderReached{folder.nid, {}});
  }

 private:
  /// Few nodes are counted one by one; percentages are computed for more.
  bool CountsItems() const { return nodesLeft_ < 101; }
  std::uint64_t Progress() const {
    return CountsItems() ? counter_ : counter_ / std::max<std::uint64_t>(percentBase_, 1);
  }
  ItemOutcome Process(const NodeBlocks& node, const MessagePlace& place) {
    return ProcessNode({state_, store_, run_}, node, place, left_);
  }

  /// What is placed nowhere else goes into one folder, whatever its kind.
  output::Ref<output::RDOFolder> OpenOrphanFolder(bool& first) {
    const auto folders = state_.targetStore->IPMRootFolder()->Folders();
    auto folder = folders->Item(kOrphanFolderName);
    if (folder || !first) return folder;
    folder = folders->Add(kOrphanFolderName, {});
    if (!folder) throw output::OutputFailure(output::ResultCode::E_POINTER);
    run_.Say(engine::FolderReached{kOrphanedMailsMarker, text::Text(kOrphanFolderName)});
    first = false;
    run_.Log(u"\r\n");
    run_.Log(u"Recovering Orphaned Mails \r\n");
    return folder;
  }

  RecoveryState& state_;
  const ScannedStore& store_;
  RunContext& run_;
  const std::uint32_t nodesLeft_;
  const std::uint64_t percentBase_;
  LeftByTheItemBefore left_;
  std::uint64_t counter_ = 0;
  std::uint64_t lastPercentage_ = 0;
};

}  // namespace

void RecoverOrphans(RecoveryState& state, const ScannedStore& store, RunContext& run) {
  if (run.runEnded || run.runAborted) return;
  run.BeginStage(kItemStage);

  state.allowance = engine::ContentAllowance::Of(store, state.usedNodes.Left(store));
  state.reportAllowance = engine::ContentAllowance::ForReport(store);

  ItemRecovery recovery(state, store, run);
  recovery.ProcessNodes();
  if (!recovery.ProcessOrphans()) return;
  recovery.FillProgressUp();
  recovery.AnnounceFolders();
}

}  // namespace velmora::recovery
