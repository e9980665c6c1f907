// Telling from whatever bytes what store they hold: pages and blocks that prove themselves, live nodes, lost ones; and
// reading what was told with readers that put up with hurt blocks.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <source_location>
#include <span>
#include <vector>

#include "engine/evidence/evidence.h"
#include "platform/memory_file.h"
#include "store/ltp/property_context.h"
#include "store/ltp/table_context.h"
#include "store/ndb/data_tree_reader.h"
#include "store/ndb/subnode_tree_reader.h"

namespace velmora::engine {
namespace {

void Require(bool holds, std::source_location place = std::source_location::current()) {
  if (holds) return;
  std::fprintf(stderr, "line %u does not hold\n", static_cast<unsigned>(place.line()));
  std::abort();
}

void CheckEvidence(const Evidence& evidence, std::uint64_t size) {
  Require(std::ranges::is_sorted(evidence.pages, {}, &FoundPage::offset));
  for (const FoundPage& page : evidence.pages) Require(page.offset < size);
  Require(std::ranges::adjacent_find(evidence.blocks, std::ranges::greater_equal{}, &FoundBlock::bid) ==
          evidence.blocks.end());
  for (const FoundBlock& block : evidence.blocks) {
    Require(block.cb > 0 && block.offset < size);
    Require(block.offset + block.cb <= size || block.grade == Grade::kNamed);  // the end of the file may cut one off
    Require(block.bid == Canonical(block.bid) && evidence.Find(block.bid) == block);
  }
}

void CheckJudgement(const Evidence& evidence, const Judgement& judgement) {
  Require(judgement.statuses.size() == evidence.blocks.size());
  const auto nidOf = [](const NodeClaim& claim) { return claim.node.nid; };
  Require(std::ranges::is_sorted(judgement.nodes, {}, nidOf));
  for (std::size_t i = 1; i < judgement.nodes.size(); ++i) {
    if (nidOf(judgement.nodes[i]) == nidOf(judgement.nodes[i - 1])) Require(!IsInUse(judgement.nodes[i].standing));
  }
  if (!judgement.nodesAreExact) return;
  for (const NodeClaim& claim : judgement.nodes) Require(claim.standing != Standing::kDoubtful);
}

void CheckLost(const LostNodes& lost, const Judgement& judgement, bool deleted) {
  const auto nidOf = [](const NodeClaim& claim) { return claim.node.nid; };
  Require(std::ranges::is_sorted(lost.nodes, {}, nidOf));
  for (const NodeClaim& claim : lost.nodes) {
    Require(!IsInUse(claim.standing));
    Require(deleted || (claim.standing != Standing::kOlder && claim.standing != Standing::kDeleted));
    if (claim.standing != Standing::kFound) continue;
    const auto known = std::ranges::equal_range(judgement.nodes, nidOf(claim), {}, nidOf);
    Require(known.empty() || !IsInUse(known.front().standing));  // nothing is found that was not lost
  }
}

void ReadNode(const ndb::BlockSource& blocks, const ndb::NodeTrees& trees) {
  ndb::Faults faults;
  if (auto context = IfReadable([&] { return ltp::PropertyContext::Open(blocks, trees, &faults); })) {
    for (const PropertyRecord& record :
         context->Records().first(std::min<std::size_t>(context->Records().size(), 50))) {
      const auto value = IfReadable([&] { return context->Read(record.Tag(), 1 << 20); });
      Require(!value || !*value || (*value)->size() <= 1 << 20);
    }
  }
  if (auto table = IfReadable([&] { return ltp::TableContext::Open(blocks, trees, &faults); })) {
    for (std::size_t row = 0; row < std::min<std::size_t>(table->RowCount(), 10); ++row) {
      Require(table->FindRow(table->RowId(row)).has_value());
      for (const ltp::Column& column : table->Columns()) table->Text(row, column.tag);
    }
  }
  static_cast<void>(IfReadable([&] { return ndb::ListSubnodes(blocks, trees.bidSub, &faults); }));
  const auto size = IfReadable([&] { return ndb::DataTreeReader::Open(blocks, trees.bidData, &faults).Size(); });
  const auto bytes =
      IfReadable([&] { return ndb::DataTreeReader::Open(blocks, trees.bidData, &faults).ReadAll(1 << 20); });
  if (size && bytes) Require(bytes->size() <= *size);
  Require(faults.List().size() <= ndb::Faults::kMostListed && faults.List().size() <= faults.Count());
}

void TellStore(const std::vector<std::byte>& bytes, bool believesHeader, bool deleted) {
  RunContext run;
  Source source;
  source.Open(std::make_unique<platform::MemoryFile>(bytes));
  const auto told = believesHeader ? ReadHeader(source) : std::nullopt;
  const Evidence evidence = FindEvidence(source, told, run);
  CheckEvidence(evidence, source.Size());  // bytes may have been put back
  if (evidence.layout == nullptr) return Require(evidence.pages.empty() && evidence.blocks.empty());
  const Judgement judgement = JudgeNodes(source, evidence, told, run);
  CheckJudgement(evidence, judgement);
  const EvidenceBlocks blocks(source, evidence, judgement);
  const LostNodes lost = FindLostNodes(blocks, evidence, judgement, deleted, run);
  CheckLost(lost, judgement, deleted);
  std::vector<std::byte> content;
  for (const FoundBlock& block : evidence.blocks) {
    if (blocks.TryBlock(block.bid, content)) Require(!content.empty() && content.size() <= 65535);
  }
  for (const NodeClaim& claim : judgement.nodes) {
    if (IsInUse(claim.standing)) Require(blocks.FindNode(claim.node.nid) == claim.node);
    ReadNode(blocks, claim.node.trees);
  }
  for (const NodeClaim& claim : lost.nodes) ReadNode(blocks, claim.node.trees);
}

}  // namespace
}  // namespace velmora::engine

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace velmora;
  const auto bytes = std::as_bytes(std::span(data, size));
  const std::vector<std::byte> whole(bytes.begin(), bytes.end());
  for (const bool believesHeader : {false, true}) engine::TellStore(whole, believesHeader, !believesHeader);
  return 0;
}
