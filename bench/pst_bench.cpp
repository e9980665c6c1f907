// How fast the lower layers of a store take data, items and rows.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>

#include "bench/pack.h"
#include "bench/sample_text.h"
#include "platform/memory_file.h"
#include "store/format/block.h"
#include "store/format/checksum.h"
#include "store/format/encoding.h"
#include "store/format/property_tags.h"
#include "store/ltp/heap.h"
#include "store/ltp/heap_writer.h"
#include "store/ltp/property_context.h"
#include "store/ltp/property_context_writer.h"
#include "store/ltp/table_context_writer.h"
#include "store/ndb/ndb_writer.h"

namespace velmora {
namespace {

/// Takes everything and keeps nothing: what is measured is the forming of the store.
class NoFile : public platform::ByteStore {
 public:
  std::uint64_t Size() const override { return size_; }
  platform::Result<std::size_t> ReadAt(std::uint64_t, std::span<std::byte> out) const override { return out.size(); }
  platform::Result<void> WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
    size_ = std::max<std::uint64_t>(size_, offset + bytes.size());
    return {};
  }
  platform::Result<void> Resize(std::uint64_t size) override {
    size_ = size;
    return {};
  }
  platform::Result<void> Flush() override { return {}; }

 private:
  std::uint64_t size_ = 0;
};

std::vector<std::byte> Sample(std::size_t size) {
  std::vector<std::byte> bytes(size);
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<std::byte>(i * 31 + i / 977);
  return bytes;
}

void Checksum(benchmark::State& state) {
  const std::vector<std::byte> bytes = Sample(kMaxBlockData);
  for (auto _ : state) benchmark::DoNotOptimize(WeakCrc(bytes));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}
BENCHMARK(Checksum);

void Encode(benchmark::State& state, CryptMethod method) {
  const std::vector<std::byte> plain = Sample(kMaxBlockData);
  std::vector<std::byte> encoded(plain.size());
  for (auto _ : state) {
    EncodeBlock(method, Bid{0x1234}, plain, encoded);
    benchmark::DoNotOptimize(encoded.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(plain.size()));
}
BENCHMARK_CAPTURE(Encode, permute, CryptMethod::kPermute);
BENCHMARK_CAPTURE(Encode, cyclic, CryptMethod::kCyclic);

/// A full block of a store of 4K pages, as texts fill it; bytes a second are those that come out.
void Inflate(benchmark::State& state) {
  constexpr const Generation& kFormat = generations::kUnicode4k;
  bench::Dice dice(1);
  const auto text = forge::ToUtf16(bench::SampleText().Text(dice, kFormat.maxBlockData / 2));
  const auto packed = bench::Pack(text);
  std::vector<std::byte> block(BlockSizeOnDisk(packed.size(), kFormat));
  std::ranges::copy(packed, block.begin());
  Store(std::span(block), block.size() - kFormat.blockTrailerSize + kFormat.offInflatedSize,
        static_cast<std::uint16_t>(text.size()));
  for (auto _ : state) {
    std::vector<std::byte> content = block;
    if (!UnpackBlock(content, Bid{4}, packed.size(), CryptMethod::kNone, kFormat)) state.SkipWithError("not packed");
    benchmark::DoNotOptimize(content.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(Inflate);

void Data(benchmark::State& state) {
  const std::vector<std::byte> bytes = Sample(1 << 20);
  for (auto _ : state) {
    NoFile file;
    const auto ndb = ndb::NdbWriter::Create(file);
    ndb::DataTreeWriter tree(*ndb);
    for (int i = 0; i < 256; ++i) tree.Append(bytes);
    benchmark::DoNotOptimize(tree.Finish());
  }
  state.SetBytesProcessed(state.iterations() * 256 * static_cast<std::int64_t>(bytes.size()));
}
BENCHMARK(Data)->Unit(benchmark::kMillisecond);

/// A node as a short mail makes one: 32 properties, the body beside the heap.
Nid WriteItem(ndb::NdbWriter& ndb, ltp::PropertyContextWriter& item) {
  static const text::Text kText(40, u'x');
  static const text::Text kBody(1200, u'b');
  for (std::uint16_t i = 0; i < 15; ++i) item.AddInteger32(MakeTag(0x3600 + i, PropType::kInteger32), i);
  for (std::uint16_t i = 0; i < 12; ++i) item.AddText(MakeTag(0x0E00 + i, PropType::kString), kText);
  for (std::uint16_t i = 0; i < 4; ++i) item.AddInteger64(MakeTag(0x3000 + i, PropType::kTime), i);
  item.AddText(MakeTag(0x1000, PropType::kString), kBody);
  const ndb::WrittenNode node = item.Finish();
  const Nid nid = ndb.NewNid(NidType::kNormalMessage);
  ndb.SetNode(nid, node.trees, Nid{0x8022});
  return nid;
}

void Items(benchmark::State& state) {
  NoFile file;
  const auto ndb = ndb::NdbWriter::Create(file);
  ltp::PropertyContextWriter item(*ndb);
  for (auto _ : state) benchmark::DoNotOptimize(WriteItem(*ndb, item));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(Items);

/// Opens an item over and over and has `use` read of it.
template <class Use>
void ReadAnItem(benchmark::State& state, Use use) {
  platform::MemoryFile file;
  const auto ndb = ndb::NdbWriter::Create(file);
  ltp::PropertyContextWriter item(*ndb);
  const Nid nid = WriteItem(*ndb, item);
  for (auto _ : state) {
    auto context = ltp::PropertyContext::Open(*ndb, ndb->FindNode(nid)->trees);
    use(context);
  }
  state.SetItemsProcessed(state.iterations());
}

void OpenItem(benchmark::State& state) {
  ReadAnItem(state, [](ltp::PropertyContext& context) {
    benchmark::DoNotOptimize(context.Text(MakeTag(0x0E03, PropType::kString)));
  });
}
BENCHMARK(OpenItem);

/// All items of a heap of some blocks, each once.
void HeapItems(benchmark::State& state) {
  platform::MemoryFile file;
  const auto ndb = ndb::NdbWriter::Create(file);
  ltp::HeapWriter writer(*ndb, ClientSig::kPropertyContext);
  std::vector<Hid> items;
  for (int i = 0; i < 1000; ++i) items.push_back(writer.Add(Sample(100)));
  const ndb::DataTree tree = writer.Finish(items.front());
  for (auto _ : state) {
    auto heap = ltp::Heap::Open(*ndb, tree.bid, ClientSig::kPropertyContext);
    for (const Hid item : items) benchmark::DoNotOptimize(heap.Item(item).data());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(items.size()));
}
BENCHMARK(HeapItems);

/// Every value of an item, as a copy of it asks for them.
void ReadItem(benchmark::State& state) {
  ReadAnItem(state, [](ltp::PropertyContext& context) {
    for (const PropertyRecord& record : context.Records()) benchmark::DoNotOptimize(context.Read(record.Tag()));
  });
}
BENCHMARK(ReadItem);

constexpr std::array<ltp::Column, 5> kColumns{{{0x0E060040, 12, 8, 2},
                                               {0x0E070003, 8, 4, 3},
                                               {0x3001001F, 20, 4, 4},
                                               {tag::kLtpRowId, 0, 4, 0},
                                               {tag::kLtpRowVer, 4, 4, 1}}};
constexpr ltp::TableSchema kSchema{kColumns, {24, 24, 24, 25}};
static_assert(IsSound(kSchema));

void TableRows(benchmark::State& state) {
  const std::vector<std::byte> name(60);
  const std::vector<std::byte> number(4);
  const std::array<ltp::PropertyView, 2> cells{{{0x3001001F, name}, {0x0E070003, number}}};
  for (auto _ : state) {
    NoFile file;
    const auto ndb = ndb::NdbWriter::Create(file);
    ltp::TableContextWriter table(*ndb, kSchema);
    for (std::uint32_t i = 0; i < state.range(0); ++i) table.AddRow(i, cells);
    benchmark::DoNotOptimize(table.Finish());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(TableRows)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmora
