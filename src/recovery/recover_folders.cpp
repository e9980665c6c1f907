#include <algorithm>
#include <utility>

#include "engine/block_reader.h"
#include "recovery/catching_frame.h"
#include "recovery/folder_losses.h"
#include "recovery/folder_properties.h"
#include "recovery/lost_items.h"
#include "recovery/name_to_id_map.h"
#include "recovery/steps.h"
#include "store/format/store_nodes.h"

namespace velmora::recovery {

using engine::EngineState;
using engine::NodeRecord;
using engine::RunContext;

namespace {

constexpr std::uint32_t kFolderStage = 6;
constexpr std::uint32_t kFolderPhase = 4;

/// The walk over the node list.
class FolderRecovery {
 public:
  FolderRecovery(RecoveryState& state, EngineState& engine, RunContext& run)
      : state_(state),
        engine_(engine),
        run_(run),
        blocks_(engine),
        nameMap_(engine, state.namedProps),
        unlinked_(engine.nodes.Records().size(), false) {}

  void WalkNodes() {
    const auto& nodes = engine_.nodes.Records();
    for (std::size_t i = 0; i < nodes.size() && !run_.runEnded; ++i) {
      run_.control.PausePoint();
      HandleNode(nodes[i], i);
    }
  }

  /// Takes the unlinked nodes out of the list, whatever ended the walk.
  std::vector<FolderRecord> Finish() {
    auto& nodes = engine_.nodes.Records();
    std::size_t kept = 0;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      if (!unlinked_[i]) nodes[kept++] = nodes[i];
    }
    nodes.resize(kept);
    unread_.Report(state_, folders_);
    return folders_.Take();
  }

 private:
  void HandleNode(const NodeRecord& node, std::size_t index) {
    const bool candidate = node.bidData != 0 && node.nidParent != 0 && node.nid != node.nidParent;
    // A second node of a known folder stays in the list: the first block that gave a folder wins.
    if (candidate && folders_.Contains(node.nid)) return;
    const bool isFolder = candidate && TryFolder(node);
    if (node.bidData == 0) unread_.Note(node, {BlockFault::NotFound(0), {}});

    if (node.nid == Value(nid::kNameToIdMap)) nameMap_.ReadNameToIdMap(node.bidData, node.bidSub);
    if (node.nidParent == 0 || isFolder) UnlinkNode(index);

    ++counter_;
    const std::uint64_t progress =
        engine_.nodeCount < 101 ? counter_ : counter_ / std::max<std::uint64_t>(engine_.percentBase, 1);
    run_.Send(engine::MSG_PROGRESS, static_cast<std::uint32_t>(progress), kFolderPhase);
  }

  bool TryFolder(const NodeRecord& node) {
    const auto none = [&](const FolderFault& fault) {
      unread_.Note(node, fault);
      return false;
    };
    const auto record = blocks_.FindBlockOrLower(node.bidData);
    if (!record) return none({BlockFault::NotFound(node.bidData), {}});
    if (engine_.encodingUnknown) {
      engine_.encodingUnknown = !blocks_.DetectEncoding(record->bid, record->offset, record->size);
      if (engine_.encodingUnknown) return none({{}, u"the encoding of the store could not be told from its block"});
    }
    state_.allowance.BeginNode();
    auto properties = ParseFolderProperties(engine_, *record, *state_.codePage, state_.allowance);
    if (!properties) return none(properties.error());
    if (properties->name.empty()) return none({{}, u"its name is empty or does not look like text"});
    ContentAllowance& allowance = state_.allowance;
    if (!allowance.TakeKept(properties->name.size()) || !allowance.TakeKept(properties->containerClass.size())) {
      return none({{}, kClaimsTooMuch});
    }
    if (properties->containerClass.empty()) properties->containerClass = u"IPF.Note";
    if (properties->name == u"Top of Personal Folders") state_.topFolderNid = node.nid;
    folders_.AddFolderRecord(
        {node.nid, node.nidParent, std::move(properties->name), std::move(properties->containerClass)});
    return true;
  }

  /// Unlinking works only on an element that has one before it: the first stays, a candidate for a message, though
  /// the count goes down for it too.
  void UnlinkNode(std::size_t index) {
    --engine_.nodeCount;
    if (index != 0) unlinked_[index] = true;
  }

  RecoveryState& state_;
  EngineState& engine_;
  RunContext& run_;
  engine::BlockReader blocks_;
  NameMapReader nameMap_;
  FolderCollector folders_;
  UnreadFolders unread_;
  std::vector<bool> unlinked_;
  std::uint64_t counter_ = 0;
};

}  // namespace

void RecoverFolders(RecoveryState& state, EngineState& engine, RunContext& run) {
  if (run.runEnded || run.runAborted) return;
  run.Send(engine::MSG_STAGE, kFolderStage);

  state.allowance = ContentAllowance::Of(engine);
  state.reportAllowance = ContentAllowance::ForReport(engine);
  FolderRecovery recovery(state, engine, run);
  WithinFrame([&recovery] { recovery.WalkNodes(); });
  std::vector<FolderRecord> recovered = recovery.Finish();
  for (const FolderRecord& folder : recovered) {
    state.report.folders.push_back({folder.nid, folder.parentNid, folder.name, folder.containerClass});
  }

  run.Log(u"\r\n\r\n");
  run.Log(u"---------Recovering name of folders and mail items---------");
  CreateTargetFolders(state, std::move(recovered), run);
}

}  // namespace velmora::recovery
