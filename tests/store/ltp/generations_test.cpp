// Properties and tables in forged stores of all three generations: what went in comes out, and of what is damaged the
// rest.
#include <gtest/gtest.h>

#include "forge/table.h"
#include "store/format/little_endian.h"
#include "store/ltp/property_context.h"
#include "store/ltp/table_context.h"
#include "store/support/failures.h"
#include "store/support/forged_file.h"

namespace velmora::ltp {
namespace {

using ndb::Faults;
using test::ForgedFile;

constexpr forge::Nid kForgedMessage = 0x200024;
constexpr forge::Nid kForgedTable = 0x60E;

class LtpOfEveryGeneration : public testing::TestWithParam<test::ForgedFormat> {
 protected:
  forge::StoreOptions Options() const {
    return {.format = GetParam().format, .encoding = GetParam().encoding, .compressed = GetParam().compressed};
  }

  /// The same image with data block `index` of a node's tree broken.
  static forge::Image WithoutBlock(const forge::Image& image, Bid bidData, std::size_t index) {
    const ForgedFile sound(image);
    const auto tree = ndb::DataTreeReader::Open(sound.Store(), bidData);
    EXPECT_LT(index, tree.BlockCount());
    forge::Image broken = image;
    forge::BreakData(broken, broken.Block(Value(tree.BidOf(index))));
    return broken;
  }
};

/// Value of the property with that id in the context of many.
forge::Bytes ValueOf(std::uint16_t id) { return forge::Noise(80 + id % 40, id); }

forge::Image ManyProperties(const forge::StoreOptions& options) {
  forge::Store store(options);
  forge::PropertyList properties;
  for (std::uint16_t id = 0x4000; id < 0x4000 + 3000; ++id) {
    properties.push_back(forge::Binary(id, ValueOf(id), forge::Place::kHeap));
  }
  properties.push_back(forge::Int32(0x0E07, 0x11));
  properties.push_back(forge::Bool(0x0E1B, true));
  properties.push_back(forge::Int64(0x3008, 0x1D0'12345678));
  properties.push_back(forge::Text16(0x0037, u"Caf\u00e9"));
  properties.push_back(forge::Binary(0x1009, forge::Noise(200000, 3)));
  properties.push_back(forge::Binary(0x1013, {}));
  forge::AddContextNode(store, kForgedMessage, 0x8022, properties);
  return store.Finish();
}

TEST_P(LtpOfEveryGeneration, GivesEveryPropertyBack) {
  const ForgedFile file(ManyProperties(Options()));
  auto pc = PropertyContext::Open(file.Store(), file.Trees(kForgedMessage));
  ASSERT_EQ(pc.Records().size(), 3006u);
  for (std::uint16_t id = 0x4000; id < 0x4000 + 3000; ++id) {
    ASSERT_EQ(pc.Binary(MakeTag(id, PropType::kBinary)), ValueOf(id)) << id;
  }
  EXPECT_EQ(pc.Integer32(0x0E070003), 0x11);
  EXPECT_EQ(pc.Boolean(0x0E1B000B), true);
  EXPECT_EQ(pc.Integer64(0x30080014), 0x1D0'12345678);
  EXPECT_EQ(pc.Text(0x0037001F), u"Caf\u00e9");
  EXPECT_EQ(pc.Binary(0x10090102), forge::Noise(200000, 3));
  EXPECT_EQ(pc.SizeOf(0x10090102), 200000u);
  EXPECT_EQ(pc.Binary(0x10130102), forge::Bytes());
}

TEST_P(LtpOfEveryGeneration, LosesWithABlockOfAHeapWhatIsInItAndNoMore) {
  const forge::Image sound = ManyProperties(Options());
  const ForgedFile whole(sound);
  const Bid bidData = whole.Trees(kForgedMessage).bidData;
  const auto blocks = ndb::DataTreeReader::Open(whole.Store(), bidData);
  // The first of these holds values; the second, in heaps of small blocks, a part of the records, which come last.
  for (const std::size_t index : {std::size_t{1}, blocks.BlockCount() - 3}) {
    const ForgedFile file(WithoutBlock(sound, bidData, index));
    Faults faults(Nid{kForgedMessage});
    auto pc = PropertyContext::Open(file.Store(), file.Trees(kForgedMessage), &faults);
    std::size_t read = 0;
    for (const PropertyRecord& record : pc.Records()) {
      if (record.wPropId < 0x4000) continue;
      const bool isLost = BlockOf(record.dwValueHnid, file.Store().Format()) == index;
      const auto fails = test::FailureOf([&] { EXPECT_EQ(pc.Read(record.Tag()), ValueOf(record.wPropId)); });
      EXPECT_EQ(fails, isLost ? std::optional(FailureKind::kCorrupt) : std::nullopt);
      EXPECT_EQ(pc.Binary(record.Tag()).has_value(), !isLost);
      read += isLost ? 0 : 1;
    }
    EXPECT_GT(read, 1000u);
    EXPECT_LT(read, 3000u);
    EXPECT_EQ(faults.List().empty(), pc.Records().size() == 3006);
    for (const Failure& fault : faults.List()) {
      EXPECT_EQ(fault.object, platform::FailedObject(ObjectKind::kBlock, blocks.BidOf(index)));
    }
  }
}

TEST_P(LtpOfEveryGeneration, HasNothingToGiveOfAHeapWhoseFirstBlockIsLost) {
  const forge::Image sound = ManyProperties(Options());
  const ForgedFile file(WithoutBlock(sound, ForgedFile(sound).Trees(kForgedMessage).bidData, 0));
  Faults faults;
  EXPECT_EQ(test::FailureOf(
                [&] { static_cast<void>(PropertyContext::Open(file.Store(), file.Trees(kForgedMessage), &faults)); }),
            FailureKind::kCorrupt);
}

TEST_P(LtpOfEveryGeneration, GivesALongValueWithZerosInItsHole) {
  const forge::Image sound = ManyProperties(Options());
  const ForgedFile whole(sound);
  auto pc = PropertyContext::Open(whole.Store(), whole.Trees(kForgedMessage));
  const Bid value = pc.TreeOf(0x10090102)->bid;
  const ForgedFile file(WithoutBlock(sound, value, 1));
  auto strict = PropertyContext::Open(file.Store(), file.Trees(kForgedMessage));
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(strict.Read(0x10090102)); }), FailureKind::kCorrupt);
  Faults faults;
  auto tolerant = PropertyContext::Open(file.Store(), file.Trees(kForgedMessage), &faults);
  const auto bytes = tolerant.Binary(0x10090102).value();
  const forge::Bytes expected = forge::Noise(200000, 3);
  const std::size_t full = file.Store().Format().maxBlockData;
  ASSERT_EQ(bytes.size(), expected.size());
  EXPECT_TRUE(std::equal(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(full), expected.begin()));
  EXPECT_EQ(bytes[full], std::byte{0});
  EXPECT_EQ(bytes[2 * full], expected[2 * full]);
  EXPECT_EQ(faults.Count(), 1u);
}

TEST(HeapOf4k, HasMoreItemsInABlockThanElevenBitsTell) {
  constexpr std::uint32_t kItems = 5000;
  forge::Bytes block(12 + 2 * kItems);
  for (std::uint32_t i = 0; i < kItems; ++i) forge::Put(block, 12 + 2 * i, i, 2);
  forge::Put(block, 0, block.size(), 2);
  forge::Put(block, 2, 0xBCEC, 2);
  forge::Append(block, kItems, 2);
  forge::Append(block, 0, 2);
  for (std::uint32_t i = 0; i <= kItems; ++i) forge::Append(block, 12 + 2 * i, 2);
  forge::Store store({.format = forge::Format::kUnicode4k});
  store.AddNode(kForgedMessage, store.AddBlock(block), 0, 0);
  const ForgedFile file(store.Finish());
  Heap heap = Heap::Open(file.Store(), file.Trees(kForgedMessage).bidData, ClientSig::kPropertyContext);
  for (const std::uint32_t item : {1u, 2047u, 2048u, kItems}) {
    EXPECT_EQ(Load<std::uint16_t>(heap.Item(item << 5), 0), item - 1);
  }
  EXPECT_FALSE(heap.Find((kItems + 1) << 5));
  EXPECT_FALSE(heap.Find(1u << 19 | 1u << 5)) << "a second block, which is not there";
}

constexpr std::uint32_t kRows = 5000;

forge::Bytes CellOf(std::uint32_t i) { return forge::Noise(300 + i % 40, i); }

forge::Image ManyRows(const forge::StoreOptions& options) {
  forge::Store store(options);
  const std::vector<forge::Column> columns = {
      {0x0E07, forge::kInt32}, {0x1009, forge::kBinary}, {0x3008, forge::kTime}};
  std::vector<forge::Row> rows;
  for (std::uint32_t i = 0; i < kRows; ++i) {
    forge::PropertyList cells = {forge::Int32(0x0E07, i * 3), forge::Time(0x3008, i)};
    if (i % 10 == 0) cells.push_back(forge::Binary(0x1009, CellOf(i)));
    rows.push_back({0x200024 + 32 * i, cells});
  }
  forge::AddTableNode(store, kForgedTable, columns, rows);
  return store.Finish();
}

/// Rows whose cells are all as they were written.
std::size_t WholeRows(TableContext& table) {
  std::size_t whole = 0;
  for (std::size_t row = 0; row < table.RowCount(); ++row) {
    const std::uint32_t i = (table.RowId(row) - 0x200024) / 32;
    const auto value = IfReadable([&] { return table.Cell(row, 0x10090102); });
    const bool isRight = table.Integer32(row, 0x0E070003) == static_cast<std::int32_t>(i * 3) &&
                         table.Integer64(row, 0x30080040) == i && value &&
                         (i % 10 == 0 ? *value == CellOf(i) : !*value);
    whole += isRight ? 1 : 0;
  }
  return whole;
}

TEST_P(LtpOfEveryGeneration, GivesEveryRowBack) {
  const ForgedFile file(ManyRows(Options()));
  auto table = TableContext::Open(file.Store(), file.Trees(kForgedTable));
  EXPECT_EQ(table.RowCount(), kRows);
  EXPECT_EQ(WholeRows(table), kRows);
  EXPECT_EQ(table.FindRow(0x200024 + 32 * 77), 77u);
}

TEST_P(LtpOfEveryGeneration, LosesTheRowsOfABlockOfTheMatrixAlone) {
  const forge::Image sound = ManyRows(Options());
  const ForgedFile whole(sound);
  const Bid matrix = ndb::FindSubnode(whole.Store(), whole.Trees(kForgedTable).bidSub, Nid{0x3F})->trees.bidData;
  const ForgedFile file(WithoutBlock(sound, matrix, 1));
  Faults faults;
  auto table = TableContext::Open(file.Store(), file.Trees(kForgedTable), &faults);
  EXPECT_EQ(table.RowCount(), kRows);
  const std::size_t rowSize = 4 + 4 + 4 + 4 + 8 + 1;
  EXPECT_EQ(WholeRows(table), kRows - std::min<std::size_t>(file.Store().Format().maxBlockData / rowSize,
                                                            kRows - file.Store().Format().maxBlockData / rowSize));
}

TEST_P(LtpOfEveryGeneration, FindsRowsInTheMatrixWhereTheirIndexIsLost) {
  const forge::Image sound = ManyRows(Options());
  const Bid heap = ForgedFile(sound).Trees(kForgedTable).bidData;
  const ForgedFile file(WithoutBlock(sound, heap, 1));
  Faults faults;
  auto table = TableContext::Open(file.Store(), file.Trees(kForgedTable), &faults);
  EXPECT_EQ(table.RowCount(), kRows) << "all of them, some by the index and some without";
  for (std::size_t row = 0; row < kRows; ++row) {
    ASSERT_EQ(table.RowId(row), 0x200024 + 32 * row);
    ASSERT_EQ(table.Integer32(row, 0x0E070003), static_cast<std::int32_t>(row * 3));
  }
  EXPECT_GE(WholeRows(table), kRows * 9 / 10) << "cells in the lost block are lost";
}

INSTANTIATE_TEST_SUITE_P(All, LtpOfEveryGeneration, testing::ValuesIn(test::kForgedFormats), test::NameOf);

}  // namespace
}  // namespace velmora::ltp
