// The probe and both scans over whatever bytes. Where the bytes are too few for a page, or their format does
// not show, they are put where the pages of each format begin, so that short inputs reach the scans too.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

#include "engine/block_reader.h"
#include "engine/index_file.h"
#include "engine/steps.h"
#include "platform/memory_file.h"
#include "platform/user_folders.h"

namespace velmora::engine {
namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

/// What has to hold after the scans, whatever the bytes were.
void CheckStore(const ScannedStore& store, bool smart, std::uintmax_t indexFileBytes) {
  const auto& nodes = store.nodes.Records();
  Require(store.nodeCount == nodes.size() + 1);
  Require(std::is_sorted(nodes.begin(), nodes.end(),
                         [](const NodeRecord& a, const NodeRecord& b) { return LowBid(a.bidSub) < LowBid(b.bidSub); }));
  Require(std::adjacent_find(nodes.begin(), nodes.end()) == nodes.end());
  Require(store.orphans.size() == (smart ? store.orphanBlockCount + 1 : 0));
  Require(indexFileBytes % 16 == 0 && indexFileBytes / 16 >= store.blockRecordCount);
}

/// Every block that a node names, as the recovery reads it, and as it is read where it has to be whole.
void ReadBlocks(const ScannedStore& store) {
  const BlockReader reader(store);
  Bytes whole;
  for (const NodeRecord& node : store.nodes.Records()) {
    if (IfReadable([&] { return store.FindBlock(node.bidData, whole); }) == true) Require(whole.size() <= 65535);
    Require(node.upperPage || store.FindNode(Nid{node.nid}).has_value());
    const auto block = reader.FindBlockOrLower(LowBid(node.bidData));
    if (!block) continue;
    auto bytes = reader.ReadChunk(block->offset, block->size);
    if (!bytes) continue;
    Require(bytes->size() == block->size);
    reader.DecodeBlock(block->bid, *bytes);
    Require(reader.InflateBlock(*bytes) == bytes->size());
    Require(bytes->size() <= 200'000);
  }
}

void RunScans(const std::vector<std::byte>& bytes, std::uint16_t formatId, bool smart) {
  static const auto folder = platform::TemporaryFolder::Create().value();  // for the index file
  RunContext run;
  run.smartScan = smart;
  StoreScan scan;
  scan.outputFolder = folder.Path();
  scan.percentBase = bytes.size() / 100;
  scan.found->source.Open(std::make_unique<platform::MemoryFile>(bytes));
  if (ProbeFormat(scan, run) == ProbeResult::kRefused) {
    if (formatId == 0) return;
    scan.found->storeKind = StoreKind::kOst;
    scan.found->layout = LayoutOf(formatId);
  }
  ScanNodePages(scan, run);
  ScanBlockPages(scan, run);
  const auto store = FinishScan(scan, run);
  CheckStore(*store, smart, std::filesystem::file_size(folder.Path() / kIndexFileName));
  ReadBlocks(*store);
}

}  // namespace
}  // namespace velmora::engine

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace velmora;
  using namespace velmora::engine;
  const auto bytes = std::as_bytes(std::span(data, size));
  const std::vector<std::byte> whole(bytes.begin(), bytes.end());
  for (const bool smart : {false, true}) RunScans(whole, 0, smart);
  if (size > 8192) return 0;
  for (const std::uint16_t formatId : {FORMAT_ANSI, FORMAT_UNICODE, FORMAT_UNICODE_4K}) {
    std::vector<std::byte> placed(formatId == FORMAT_UNICODE_4K ? 147456 : 18432);
    placed[16] = std::byte{1};
    placed.insert(placed.end(), bytes.begin(), bytes.end());
    for (const bool smart : {false, true}) RunScans(placed, formatId, smart);
  }
  return 0;
}
