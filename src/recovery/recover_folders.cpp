#include <algorithm>
#include <utility>

#include "engine/block_reader.h"
#include "recovery/catching_frame.h"
#include "recovery/folder_losses.h"
#include "recovery/heap_text.h"
#include "recovery/lost_items.h"
#include "recovery/name_to_id_map.h"
#include "recovery/property_context.h"
#include "recovery/steps.h"
#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"
#include "text/plausibility.h"

namespace velmora::recovery {

using engine::NodeRecord;
using engine::RunContext;
using engine::ScannedStore;

namespace {

constexpr std::uint32_t kFolderStage = 6;

/// What a folder's own block says of it.
struct FolderProperties {
  text::Text name;            ///< may be empty: a name that does not look like text is none
  text::Text containerClass;  ///< empty when the block has none
};

/// A failure when the block is no property context, has no display name, or is a message; and when the allowance is
/// spent.
platform::Result<FolderProperties> ParseFolderProperties(const engine::ScannedStore& store,
                                                         const engine::BlockRecord& record,
                                                         const text::CodePage& codePage, engine::ContentAllowance& allowance) {
  const auto none = [](std::string_view why) { return tl::unexpected(PlainFailure(FailureKind::kCorrupt, why)); };
  const auto bytes = ReadHeapBlock(store, record, record.bid, kFolderRules, allowance);
  if (!bytes) return tl::unexpected(bytes.error());
  const ByteView block(*bytes);
  const PropertyContext context(block, store, kFolderRules);
  if (context.GetFault() != PropertyContext::Fault::kNone) {
    return tl::unexpected(context.FailureOf(store, record, kFolderRules));
  }

  const bool wide = store.layout.wideFormat;
  FolderProperties folder;
  bool named = false;
  for (std::uint32_t index = 0; index < context.Count(); ++index) {
    const PropertyRecord property = context.Record(index);
    if (property.wPropId == IdOf(tag::kMessageClass)) return none("its data block is that of a message");
    if (property.wPropId != IdOf(tag::kDisplayName) && property.wPropId != IdOf(tag::kContainerClass)) continue;

    text::Text value;
    if (property.dwValueHnid != 0) {  // identifier 0 names no allocation: the text is empty
      const auto range = RangeOf(block, context.Header().ibHnpm, property.dwValueHnid, kFolderRules.emptyEnd);
      if (!range) return none("its name or class does not stand in its block");
      value = CopyHeapText(range->In(block), wide, codePage);
    }
    if (property.wPropId == IdOf(tag::kContainerClass)) {
      folder.containerClass = std::move(value);
      break;
    }
    named = true;
    folder.name = wide && !text::LooksLikeText(value) ? text::Text() : std::move(value);
  }
  if (!named) return none("it has no name");
  return folder;
}

/// The walk over the node list.
class FolderRecovery {
 public:
  FolderRecovery(RecoveryState& state, const ScannedStore& store, RunContext& run)
      : state_(state), store_(store), run_(run), blocks_(store), nameMap_(store, state.namedProps) {
    state.usedNodes.unlinked.resize(store.nodes.Records().size());
  }

  void WalkNodes() {
    const auto& nodes = store_.nodes.Records();
    for (std::size_t i = 0; i < nodes.size() && !run_.runEnded; ++i) {
      run_.control.PausePoint();
      HandleNode(nodes[i], i);
    }
  }

  /// The folders found, whatever ended the walk.
  std::vector<FolderRecord> Finish() {
    unread_.Report(state_, folders_);
    return folders_.Take();
  }

 private:
  void HandleNode(const NodeRecord& node, std::size_t index) {
    // A second node of a known folder stays in the list: the first block that gave a folder wins.
    if (node.MayBeFolder() && folders_.Contains(node.nid)) return;
    const bool isFolder = node.MayBeFolder() && TryFolder(node, index);
    if (engine::LowBid(node.bidData) == 0) unread_.Note(node, BlockNotFound(0));

    if (node.nid == Value(nid::kNameToIdMap)) {
      const CryptMethod encoding = IsEncodingKnownAt(index) ? store_.blockEncoding : CryptMethod::kNone;
      nameMap_.ReadNameToIdMap(engine::LowBid(node.bidData), engine::LowBid(node.bidSub), encoding);
    }
    if (node.nidParent == 0 || isFolder) UnlinkNode(index);

    ++counter_;
    const std::uint64_t percentBase = store_.nodeCount / 100;
    const std::uint64_t progress =
        state_.usedNodes.Left(store_) < 101 ? counter_ : counter_ / std::max<std::uint64_t>(percentBase, 1);
    run_.SayProgress(progress, engine::Phase::kFolders);
  }

  /// The rules learn the encoding on their way through the list, from the first block that tells it: what stands ahead
  /// of that node is no folder, and a name map there is read as it is stored.
  bool IsEncodingKnownAt(std::size_t index) const { return index >= store_.encodingFoundAt; }

  bool TryFolder(const NodeRecord& node, std::size_t index) {
    const auto none = [&](Failure failure) {
      unread_.Note(node, std::move(failure));
      return false;
    };
    const auto corrupt = [&](std::string_view why) { return none(PlainFailure(FailureKind::kCorrupt, why)); };
    const auto record = blocks_.FindBlockOrLower(engine::LowBid(node.bidData));
    if (!record) return none(BlockNotFound(engine::LowBid(node.bidData)));
    if (!IsEncodingKnownAt(index)) return corrupt("the encoding of the store could not be told from its block");
    state_.allowance.BeginNode();
    auto properties = ParseFolderProperties(store_, *record, *state_.codePage, state_.allowance);
    if (!properties) return none(std::move(properties.error()));
    if (properties->name.empty()) return corrupt("its name is empty or does not look like text");
    engine::ContentAllowance& allowance = state_.allowance;
    if (!allowance.TakeKept(properties->name.size()) || !allowance.TakeKept(properties->containerClass.size())) {
      return none(TooMuchClaimed());
    }
    if (properties->containerClass.empty()) properties->containerClass = kMailContainerClass;
    if (properties->name == u"Top of Personal Folders") state_.topFolderNid = node.nid;
    folders_.AddFolderRecord(
        {node.nid, node.nidParent, std::move(properties->name), std::move(properties->containerClass)});
    return true;
  }

  /// Unlinking works only on an element that has one before it: the first stays, a candidate for a message, though
  /// the count goes down for it too.
  void UnlinkNode(std::size_t index) {
    ++state_.usedNodes.countedOff;
    if (index != 0) state_.usedNodes.unlinked[index] = true;
  }

  RecoveryState& state_;
  const ScannedStore& store_;
  RunContext& run_;
  engine::BlockReader blocks_;
  NameMapReader nameMap_;
  FolderCollector folders_;
  UnreadFolders unread_;
  std::uint64_t counter_ = 0;
};

}  // namespace

void RecoverFolders(RecoveryState& state, const ScannedStore& store, RunContext& run) {
  if (run.runEnded || run.runAborted) return;
  run.BeginStage(kFolderStage);

  state.usedNodes = {};
  state.allowance = engine::ContentAllowance::Of(store, state.usedNodes.Left(store));
  state.reportAllowance = engine::ContentAllowance::ForReport(store);
  FolderRecovery recovery(state, store, run);
  WithinFrame([&recovery] { recovery.WalkNodes(); });
  std::vector<FolderRecord> recovered = recovery.Finish();
  state.report.folders = recovered;

  run.Log(u"\r\n\r\n");
  run.Log(u"---------Recovering name of folders and mail items---------");
  CreateTargetFolders(state, std::move(recovered), run);
}

}  // namespace velmora::recovery
