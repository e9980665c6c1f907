// How fast the lower layers of a store take data, items and rows.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>

#include "platform/memory_file.h"
#include "store/format/checksum.h"
#include "store/format/property_tags.h"
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

void OpenItem(benchmark::State& state) {
  platform::MemoryFile file;
  const auto ndb = ndb::NdbWriter::Create(file);
  ltp::PropertyContextWriter item(*ndb);
  const Nid nid = WriteItem(*ndb, item);
  for (auto _ : state) {
    auto context = ltp::PropertyContext::Open(*ndb, ndb->FindNode(nid)->trees);
    benchmark::DoNotOptimize(context.Text(MakeTag(0x0E03, PropType::kString)));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(OpenItem);

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
