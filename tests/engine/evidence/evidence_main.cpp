// Prints what the bytes of a store prove, one node or figure a line, for evidence_check.py.
//
//   velmora-evidence STORE            nodes: "node STANDING NID DATA SUB PARENT"
//   velmora-evidence --blocks STORE   besides: "block STATUS GRADE KIND NAMED BID OFFSET SIZE"
//   velmora-evidence --lost STORE     besides: what no entry tells of, as "node ..." too, and for what is known by its
//   row
//                                     alone "folder NID PARENT", "row NID PARENT", and "gone NID" for what is none
//   velmora-evidence --deleted STORE  the same, with what is deleted or older
#include <algorithm>
#include <cstdio>
#include <string_view>

#include "engine/evidence/evidence.h"

namespace {

using namespace velmora;
using namespace velmora::engine;

constexpr const char* kStandings[] = {"live", "doubtful", "found", "older", "deleted"};
constexpr const char* kStatuses[] = {"live", "freed", "unknown"};
constexpr const char* kGrades[] = {"proven", "moved", "named", "hurt"};
constexpr const char* kKinds[] = {"data", "context", "table", "list", "subnodes"};

void PrintNode(const NodeClaim& claim) {
  std::printf("node %s %x %jx %jx %x\n", kStandings[static_cast<int>(claim.standing)], Value(claim.node.nid),
              static_cast<std::uintmax_t>(Value(claim.node.trees.bidData)),
              static_cast<std::uintmax_t>(Value(claim.node.trees.bidSub)), Value(claim.node.nidParent));
}

int Print(const char* path, std::string_view more) {
  auto file = platform::OpenForReading(path);
  if (!file) {
    std::fprintf(stderr, "%s: cannot be opened\n", path);
    return 1;
  }
  Source source;
  source.Open(std::move(*file));
  RunContext run;
  const auto told = ReadHeader(source);
  const Evidence evidence = FindEvidence(source, told, run);
  std::printf("layout %d\n", evidence.layout == nullptr ? 0 : evidence.layout->formatId);
  std::printf("encoding %d\n", static_cast<int>(evidence.encoding));
  std::printf("pages %zu\nblocks %zu\nfailed %ju\n", evidence.pages.size(), evidence.blocks.size(),
              static_cast<std::uintmax_t>(evidence.failedBlocks));
  const Judgement judgement = JudgeNodes(source, evidence, told, run);
  std::printf("exact %d %d\n", judgement.nodesAreExact, judgement.blocksAreExact);
  std::ranges::for_each(judgement.nodes, PrintNode);
  const EvidenceBlocks blocks(source, evidence, judgement);
  if ((more == "--lost" || more == "--deleted") && evidence.layout != nullptr) {
    const LostNodes lost = FindLostNodes(blocks, evidence, judgement, more == "--deleted", run);
    std::ranges::for_each(lost.nodes, PrintNode);
    for (const Nid nid : lost.gone) std::printf("gone %x\n", Value(nid));
    for (const FolderRow& row : lost.folderRows) std::printf("folder %x %x\n", Value(row.nid), Value(row.nidParent));
    for (const MessageRow& row : lost.messageRows) std::printf("row %x %x\n", Value(row.nid), Value(row.nidParent));
  }
  for (std::size_t i = 0; more == "--blocks" && i < evidence.blocks.size(); ++i) {
    const FoundBlock block = evidence.blocks[i];
    std::printf("block %s %s %s %d %jx %jx %d\n", kStatuses[static_cast<int>(judgement.statuses[i])],
                kGrades[static_cast<int>(block.grade)], kKinds[static_cast<int>(blocks.KindOf(block))], block.isNamed,
                static_cast<std::uintmax_t>(Value(block.bid)), static_cast<std::uintmax_t>(block.offset), block.cb);
  }
  return 0;
}

}  // namespace

int main(int count, char** words) {
  const std::string_view more = count == 3 ? words[1] : "";
  if (count != 2 && more != "--blocks" && more != "--lost" && more != "--deleted") {
    std::fputs("velmora-evidence [--blocks | --lost | --deleted] STORE\n", stderr);
    return 2;
  }
  return Print(words[count - 1], more);
}
