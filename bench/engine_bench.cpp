// Speed of the scans and of what every block goes through, in bytes of the source a second.
#include <benchmark/benchmark.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <random>
#include <vector>

#include "engine/evidence/block_evidence.h"
#include "engine/evidence/evidence.h"
#include "engine/index_file.h"
#include "engine/run.h"
#include "engine/steps.h"
#include "platform/memory_file.h"
#include "store/format/block.h"
#include "store/format/checksum.h"
#include "store/format/encoding.h"

namespace velmora::engine {
namespace {

constexpr std::size_t kSourceBytes = 128 << 20;

enum Content : int {
  kEncoded,  ///< as encoded blocks look: no byte is rarer than another
  kText,     ///< UTF-16 text: every second byte is 0
  kZeros,    ///< unused space
  kStore,    ///< full blocks of a store, one behind the other
};

/// Blocks that prove themselves. They hold nothing, so that the scan does not find heaps or lists in them.
std::vector<std::byte> Blocks(std::size_t size) {
  constexpr Generation kLayout = generations::kUnicode;
  std::vector<std::byte> bytes(size);
  for (std::size_t at = 0x4400, id = 4; at + kMaxBlockSize <= size; at += kMaxBlockSize, id += kBidStep) {
    const auto block = std::span(bytes).subspan(at, kMaxBlockSize);
    for (std::size_t i = 0; i < kMaxBlockData; ++i) block[i] = static_cast<std::byte>(i * 7 + id);
    Encode(BlockTrailer{.cb = kMaxBlockData,
                        .wSig = ComputeSig(at, id),
                        .dwCRC = WeakCrc(block.first(kMaxBlockData)),
                        .bid = Bid{id}},
           block.last(kLayout.blockTrailerSize));
  }
  return bytes;
}

std::shared_ptr<const platform::MemoryFile> BytesOf(Content content) {
  static std::shared_ptr<const platform::MemoryFile> sources[4];
  if (sources[content] != nullptr) return sources[content];
  std::vector<std::byte> bytes = content == kStore ? Blocks(kSourceBytes) : std::vector<std::byte>(kSourceBytes);
  std::mt19937_64 random(1);
  for (std::size_t i = 0; i < bytes.size() && (content == kEncoded || content == kText); i += 8) {
    std::uint64_t word = random();
    if (content == kText) word = (word & 0x001F001F001F001Full) | 0x0060006000600060ull;
    std::memcpy(bytes.data() + i, &word, 8);
  }
  return sources[content] = std::make_shared<platform::MemoryFile>(std::move(bytes));
}

/// Hands the shared bytes to a run, which owns its source.
class SharedSource : public platform::ByteSource {
 public:
  explicit SharedSource(std::shared_ptr<const platform::MemoryFile> bytes) : bytes_(std::move(bytes)) {}
  std::uint64_t Size() const override { return bytes_->Size(); }
  platform::Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    return bytes_->ReadAt(offset, out);
  }

 private:
  std::shared_ptr<const platform::MemoryFile> bytes_;
};

void BothScans(benchmark::State& bench, FormatId format, Content content, bool smart) {
  const auto source = BytesOf(content);
  for (auto _ : bench) {
    RunContext run;
    run.smartScan = smart;
    StoreScan scan;
    scan.found->source.Open(std::make_unique<SharedSource>(source));
    scan.found->storeKind = StoreKind::kPst;
    scan.found->layout = LayoutOf(format);
    scan.percentBase = kSourceBytes / 100;
    scan.outputFolder = std::filesystem::temp_directory_path();
    ScanNodePages(scan, run);
    ScanBlockPages(scan, run);
    benchmark::DoNotOptimize(scan.found->blockRecordCount);
    std::filesystem::remove(scan.outputFolder / kIndexFileName);
  }
  bench.SetBytesProcessed(static_cast<std::int64_t>(bench.iterations() * kSourceBytes));
}
BENCHMARK_CAPTURE(BothScans, unicode_encoded, FORMAT_UNICODE, kEncoded, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BothScans, unicode_text, FORMAT_UNICODE, kText, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BothScans, unicode_zeros, FORMAT_UNICODE, kZeros, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BothScans, ansi_encoded, FORMAT_ANSI, kEncoded, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BothScans, unicode_encoded_smart, FORMAT_UNICODE, kEncoded, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BothScans, unicode_text_smart, FORMAT_UNICODE, kText, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BothScans, unicode4k_encoded_smart, FORMAT_UNICODE_4K, kEncoded, true)->Unit(benchmark::kMillisecond);

void EvidenceOf(benchmark::State& bench, Content content) {
  const auto bytes = BytesOf(content);
  Source source;
  source.Open(std::make_unique<SharedSource>(bytes));
  for (auto _ : bench) {
    RunContext run;
    benchmark::DoNotOptimize(FindEvidence(source, std::nullopt, run).blocks.size());
  }
  bench.SetBytesProcessed(static_cast<std::int64_t>(bench.iterations() * kSourceBytes));
}
BENCHMARK_CAPTURE(EvidenceOf, encoded, kEncoded)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(EvidenceOf, text, kText)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(EvidenceOf, zeros, kZeros)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(EvidenceOf, store, kStore)->Unit(benchmark::kMillisecond);

/// What looking for trailers costs ahead of any checksum: each unit of the file is asked once.
void TrailerLookThrough(benchmark::State& bench, FormatId format, Content content) {
  const auto source = BytesOf(content);
  const Generation& layout = LayoutOf(format);
  for (auto _ : bench) {
    std::size_t seen = 0;
    for (std::size_t end = layout.slotSize; end <= kSourceBytes; end += layout.slotSize) {
      const auto tail = std::span(source->Bytes()).subspan(end - layout.blockTrailerSize, layout.blockTrailerSize);
      seen += SeeTrailer(tail, end, layout).has_value() ? 1 : 0;
    }
    benchmark::DoNotOptimize(seen);
  }
  bench.SetBytesProcessed(static_cast<std::int64_t>(bench.iterations() * kSourceBytes));
}
BENCHMARK_CAPTURE(TrailerLookThrough, unicode_encoded, FORMAT_UNICODE, kEncoded)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(TrailerLookThrough, unicode_store, FORMAT_UNICODE, kStore)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(TrailerLookThrough, ansi_encoded, FORMAT_ANSI, kEncoded)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(TrailerLookThrough, unicode4k_encoded, FORMAT_UNICODE_4K, kEncoded)->Unit(benchmark::kMillisecond);

void Decode(benchmark::State& bench, CryptMethod method) {
  std::vector<std::byte> block(8176, std::byte{0x5A});
  for (auto _ : bench) {
    DecodeBlock(method, Bid{0x1234}, block);
    benchmark::DoNotOptimize(block.data());
  }
  bench.SetBytesProcessed(static_cast<std::int64_t>(bench.iterations() * block.size()));
}
BENCHMARK_CAPTURE(Decode, permute, CryptMethod::kPermute);
BENCHMARK_CAPTURE(Decode, cyclic, CryptMethod::kCyclic);

void LookUp(benchmark::State& bench) {
  std::vector<PlacedBlock> blocks;
  for (std::uint32_t i = 1; i <= static_cast<std::uint32_t>(bench.range(0)); ++i)
    blocks.push_back({i * 4, 100, i * 64ull});
  RunContext run;
  BlockIndex index;
  index.Add(blocks);
  index.Settle(Source(), LayoutOf(FORMAT_UNICODE), run);
  std::minstd_rand random(1);
  std::uniform_int_distribution<std::uint32_t> anyBlock(1, static_cast<std::uint32_t>(bench.range(0)));
  for (auto _ : bench) benchmark::DoNotOptimize(index.Find(4 * anyBlock(random)));
}
BENCHMARK(LookUp)->Arg(10'000)->Arg(1'000'000);

}  // namespace
}  // namespace velmora::engine
