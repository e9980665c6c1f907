// Prints what the bytes of a store prove, one node or figure a line, for evidence_check.py.
//
//   velmora-evidence STORE            nodes: "node STANDING NID DATA SUB PARENT"
//   velmora-evidence --blocks STORE   besides: "block STATUS GRADE KIND NAMED BID OFFSET SIZE"
#include <cstdio>
#include <cstring>

#include "engine/evidence.h"

namespace {

using namespace velmora;
using namespace velmora::engine;

constexpr const char* kStandings[] = {"live", "doubtful", "found", "older", "deleted"};
constexpr const char* kStatuses[] = {"live", "freed", "unknown"};
constexpr const char* kGrades[] = {"proven", "moved", "named", "hurt"};
constexpr const char* kKinds[] = {"data", "context", "table", "list", "subnodes"};

int Print(const char* path, bool printsBlocks) {
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
  for (const NodeClaim& claim : judgement.nodes) {
    std::printf("node %s %x %jx %jx %x\n", kStandings[static_cast<int>(claim.standing)], Value(claim.node.nid),
                static_cast<std::uintmax_t>(Value(claim.node.trees.bidData)),
                static_cast<std::uintmax_t>(Value(claim.node.trees.bidSub)), Value(claim.node.nidParent));
  }
  for (std::size_t i = 0; printsBlocks && i < evidence.blocks.size(); ++i) {
    const FoundBlock& block = evidence.blocks[i];
    std::printf("block %s %s %s %d %jx %jx %d\n", kStatuses[static_cast<int>(judgement.statuses[i])],
                kGrades[static_cast<int>(block.grade)], kKinds[static_cast<int>(block.kind)], block.isNamed,
                static_cast<std::uintmax_t>(Value(block.bid)), static_cast<std::uintmax_t>(block.offset), block.cb);
  }
  return 0;
}

}  // namespace

int main(int count, char** words) {
  const bool printsBlocks = count == 3 && std::strcmp(words[1], "--blocks") == 0;
  if (count != 2 && !printsBlocks) {
    std::fputs("velmora-evidence [--blocks] STORE\n", stderr);
    return 2;
  }
  return Print(words[count - 1], printsBlocks);
}
