// Tables, written and read back.
#include "store/ltp/table_context.h"

#include <gtest/gtest.h>

#include "store/format/little_endian.h"
#include "store/ltp/multi_value.h"
#include "store/ltp/table_context_writer.h"
#include "store/ndb/ndb_writer.h"
#include "store/ndb/store_reader.h"
#include "store/ndb/subnode_tree_reader.h"
#include "store/support/failures.h"
#include "store/support/pst_check.h"
#include "store/support/test_files.h"

namespace velmora::ltp {
namespace {

constexpr Nid kTableNode{0x1001};  // an internal node that no rule knows

constexpr PropTag kFlags = 0x0E070003;
constexpr PropTag kTime = 0x0E060040;
constexpr PropTag kGuid = 0x30100048;
constexpr PropTag kShort = 0x30110002;
constexpr PropTag kName = 0x3001001F;
constexpr PropTag kKey = 0x300B0102;
constexpr PropTag kLists = 0x3012101F;
constexpr PropTag kYes = 0x360A000B;

constexpr std::array<Column, 10> kColumns{{{kTime, 12, 8, 2},
                                           {kFlags, 8, 4, 3},
                                           {kName, 20, 4, 4},
                                           {kKey, 24, 4, 5},
                                           {kGuid, 28, 4, 6},
                                           {kShort, 36, 2, 7},
                                           {kLists, 32, 4, 9},
                                           {kYes, 38, 1, 8},
                                           {tag::kLtpRowId, 0, 4, 0},
                                           {tag::kLtpRowVer, 4, 4, 1}}};
constexpr TableSchema kSchema{kColumns, {36, 38, 39, 41}};
static_assert(IsSound(kSchema));

template <class T>
std::vector<std::byte> Number(T value) {
  std::vector<std::byte> bytes(sizeof(T));
  Store<T>(bytes, 0, value);
  return bytes;
}

class Tables : public testing::Test {
 protected:
  TableContext Reopened(TableContextWriter& writer) {
    const ndb::WrittenNode node = writer.Finish();
    ndb_->SetNode(kTableNode, node.trees);
    EXPECT_EQ(node.dataSize, ndb::DataSizeOf(*ndb_, node.trees));
    return TableContext::Open(*ndb_, node.trees);
  }

  static text::Text NameOf(std::uint32_t i) { return text::FromUtf8("row " + std::to_string(i)); }

  /// Rows of a number, a name and, in every third, a flag.
  void AddRows(TableContextWriter& writer, std::uint32_t count, std::uint32_t step = 1) {
    for (std::uint32_t i = 0; i < count; ++i) {
      const std::uint32_t id = i * step % count;
      const std::vector<std::byte> name = EncodeText(NameOf(id));
      const std::vector<std::byte> flags = Number<std::uint32_t>(id * 2);
      const std::vector<std::byte> yes = Number<std::uint8_t>(1);
      std::vector<PropertyView> cells{{kName, name}, {kFlags, flags}};
      if (id % 3 == 0) cells.push_back({kYes, yes});
      writer.AddRow(100 + id, cells);
    }
  }

  void ExpectRows(TableContext& table, std::uint32_t count, std::uint32_t stride = 1) {
    ASSERT_EQ(table.RowCount(), count);
    for (std::uint32_t i = 0; i < count; i += stride) {
      ASSERT_EQ(table.RowId(i), 100 + i);
      ASSERT_EQ(table.FindRow(100 + i), i);
      ASSERT_EQ(table.Integer32(i, kFlags), i * 2);
      ASSERT_EQ(table.Text(i, kName), NameOf(i));
      ASSERT_EQ(table.Boolean(i, kYes), i % 3 == 0 ? std::optional(true) : std::nullopt);
      ASSERT_FALSE(table.Cell(i, kTime));
    }
  }

  std::string Check() {
    ndb_->Seal();
    return test::PstCheck(file_.Bytes(), test::Check::kProperties);
  }

  platform::MemoryFile file_;
  std::unique_ptr<ndb::NdbWriter> ndb_ = ndb::NdbWriter::Create(file_);
  TableContextWriter writer_{*ndb_, kSchema};
};

TEST_F(Tables, WithoutRowsHaveTheirColumns) {
  TableContext table = Reopened(writer_);
  EXPECT_EQ(table.RowCount(), 0u);
  ASSERT_EQ(table.Columns().size(), kColumns.size());
  EXPECT_EQ(table.Columns()[5].tag, kShort);
  EXPECT_EQ(table.Columns()[5].iBit, 7);
  EXPECT_FALSE(table.FindRow(0));
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(table.Cell(0, kFlags)); }), FailureKind::kCorrupt);
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(Check(), "");
}

TEST_F(Tables, KeepCellsOfEveryKind) {
  const std::vector<std::byte> time = Number<std::uint64_t>(0x01D000000000ABCD);
  const std::vector<std::byte> flags = Number<std::uint32_t>(0xFFFFFFFE);
  const std::vector<std::byte> number = Number<std::uint16_t>(77);
  const std::vector<std::byte> guid = test::Noise(16);
  const std::vector<std::byte> key = test::Noise(50);
  const std::vector<std::byte> name = EncodeText(u"name");
  const std::vector<std::byte> lists = EncodeMultiple(std::vector<text::Text>{u"a", u"bc"});
  const std::vector<std::byte> yes = Number<std::uint8_t>(1);
  writer_.AddRow(0x200024, std::array<PropertyView, 8>{{{kYes, yes},
                                                        {kTime, time},
                                                        {kFlags, flags},
                                                        {kShort, number},
                                                        {kGuid, guid},
                                                        {kKey, key},
                                                        {kName, name},
                                                        {kLists, lists}}});
  writer_.AddRow(0x200044, std::array<PropertyView, 2>{{{kName, {}}, {kKey, {}}}});
  TableContext table = Reopened(writer_);
  EXPECT_EQ(table.Integer64(0, kTime), 0x01D000000000ABCD);
  EXPECT_EQ(table.Integer32(0, kFlags), -2);
  EXPECT_EQ(table.Cell(0, kShort), number);
  EXPECT_EQ(table.Cell(0, kGuid), guid);
  EXPECT_EQ(table.Cell(0, kKey), key);
  EXPECT_EQ(table.Text(0, kName), u"name");
  EXPECT_EQ(table.Cell(0, kLists), lists);
  EXPECT_EQ(table.Boolean(0, kYes), true);
  EXPECT_EQ(table.Integer32(0, tag::kLtpRowId), 0x200024);
  EXPECT_EQ(table.Integer32(0, tag::kLtpRowVer), 1);
  EXPECT_EQ(table.Integer32(1, tag::kLtpRowVer), 2);
  EXPECT_EQ(table.Text(1, kName), u"") << "there, and empty";
  EXPECT_FALSE(table.Text(1, 0x3002001F)) << "no such column";
  EXPECT_FALSE(table.Integer32(1, kFlags)) << "absent";
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(Check(), "");
}

TEST_F(Tables, LeaveOutWhatTheyHaveNoColumnFor) {
  const std::vector<std::byte> number = Number<std::uint32_t>(9);
  writer_.AddRow(5,
                 std::array<PropertyView, 3>{{{tag::kLtpRowId, number}, {0x12340003, number}, {0x0E070002, number}}});
  TableContext table = Reopened(writer_);
  EXPECT_EQ(table.RowId(0), 5u);
  EXPECT_FALSE(table.Integer32(0, kFlags)) << "the type is another one";
}

TEST_F(Tables, KeepSmallMatricesInTheHeapAndLargeOnesBesideIt) {
  const std::uint32_t most = static_cast<std::uint32_t>(1024 / kSchema.RowSize());
  for (const std::uint32_t count : {1u, most, most + 1, 199u, 200u, 400u}) {
    TableContextWriter writer(*ndb_, kSchema);
    AddRows(writer, count);
    TableContext table = Reopened(writer);
    ExpectRows(table, count);
    const Bid bidSub = ndb_->FindNode(kTableNode)->trees.bidSub;
    EXPECT_EQ(bidSub != kNoBid, count > most) << count;
    if (bidSub != kNoBid) {
      EXPECT_EQ(ndb::ListSubnodes(*ndb_, bidSub).at(0).nid, Nid{0x3F});
    }
  }
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(Check(), "");
}

TEST_F(Tables, FillTheBlocksOfTheMatrixWithWholeRows) {
  constexpr std::uint32_t kRowsPerBlock = 8176 / 41;
  static_assert(kRowsPerBlock == 199);
  for (const std::uint32_t count : {kRowsPerBlock, kRowsPerBlock + 1, 5 * kRowsPerBlock}) {
    TableContextWriter writer(*ndb_, kSchema);
    AddRows(writer, count);
    TableContext table = Reopened(writer);
    ExpectRows(table, count);
    const auto matrix = ndb::FindSubnode(*ndb_, ndb_->FindNode(kTableNode)->trees.bidSub, Nid{0x3F});
    auto data = ndb::DataTreeReader::Open(*ndb_, matrix->trees.bidData);
    ASSERT_EQ(data.BlockCount(), (count + kRowsPerBlock - 1) / kRowsPerBlock);
    for (std::size_t b = 0; b + 1 < data.BlockCount(); ++b) EXPECT_EQ(data.Block(b).size(), 8176u);
    EXPECT_EQ(data.Block(data.BlockCount() - 1).size(), ((count - 1) % kRowsPerBlock + 1) * 41) << "whole rows only";
  }
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(Check(), "");
}

TEST_F(Tables, TakeRowsInAnyOrderOfTheirIds) {
  AddRows(writer_, 1000, 7);  // 0, 7, 14 ... modulo 1000
  TableContext table = Reopened(writer_);
  ExpectRows(table, 1000);
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(Check(), "");
}

TEST_F(Tables, RefuseTwoRowsOfOneIdAndCellsThatDoNotFit) {
  writer_.AddRow(5, {});
  writer_.AddRow(6, {});
  writer_.AddRow(5, {});
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(writer_.Finish()); }), FailureKind::kCorrupt);
  TableContextWriter other(*ndb_, kSchema);
  const std::vector<std::byte> bytes = test::Noise(3);
  EXPECT_EQ(test::FailureOf([&] { other.AddRow(1, std::array{PropertyView{kFlags, bytes}}); }), FailureKind::kCorrupt);
  EXPECT_EQ(test::FailureOf([&] { other.AddRow(1, std::array{PropertyView{kName, bytes}}); }), FailureKind::kCorrupt);
  EXPECT_EQ(test::FailureOf([&] {
              other.AddRow(1, std::array{PropertyView{kName, {}}, PropertyView{kName, {}}});
            }),
            FailureKind::kCorrupt);
}

TEST_F(Tables, MoveLargeCellsToSubnodes) {
  const std::vector<std::byte> inHeap = test::Noise(3580);
  const std::vector<std::byte> beside = test::Noise(3581);
  const std::vector<std::byte> large = test::Noise(50000);
  writer_.AddRow(1, std::array{PropertyView{kKey, inHeap}});
  writer_.AddRow(2, std::array{PropertyView{kKey, beside}});
  writer_.AddRow(3, std::array{PropertyView{kKey, large}});
  TableContext table = Reopened(writer_);
  EXPECT_EQ(table.Cell(0, kKey), inHeap);
  EXPECT_EQ(table.Cell(1, kKey), beside);
  EXPECT_EQ(table.Cell(2, kKey), large);
  EXPECT_EQ(ndb::ListSubnodes(*ndb_, ndb_->FindNode(kTableNode)->trees.bidSub).size(), 2u);
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(Check(), "");
}

TEST_F(Tables, GrowIndexLevelsWithTheirRows) {
  AddRows(writer_, 30000);
  TableContext table = Reopened(writer_);
  ExpectRows(table, 30000, 97);
  ndb_->Seal();
  const auto store = ndb::StoreReader::Open(file_);
  TableContext again = TableContext::Open(*store, store->FindNode(kTableNode)->trees);
  ExpectRows(again, 30000, 997);
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(Check(), "");
}

TEST_F(Tables, LeaveCellsOutWhereTheHeapHasNoRoomForThem) {
  TableContextWriter writer(*ndb_, kSchema, 20);
  const std::vector<std::byte> name = EncodeText(text::Text(500, u'n'));
  for (std::uint32_t i = 0; i < 2000; ++i) {
    const std::vector<std::byte> flags = Number(i);
    writer.AddRow(i, std::array{PropertyView{kName, name}, PropertyView{kFlags, flags}});
  }
  EXPECT_GT(writer.CellsLeftOut(), 1800u);
  TableContext table = Reopened(writer);
  EXPECT_TRUE(table.Text(0, kName));
  EXPECT_FALSE(table.Text(1999, kName));
  EXPECT_EQ(table.Integer32(1999, kFlags), 1999);
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(Check(), "");
}

TEST_F(Tables, ThatAreDamagedAreReadWithinBounds) {
  AddRows(writer_, 500);
  const ndb::WrittenNode node = writer_.Finish();
  auto data = ndb::DataTreeReader::Open(*ndb_, node.trees.bidData);
  const std::vector<std::byte> heap = data.ReadAll(1 << 20);
  test::Random random(21);
  for (int round = 0; round < 1500; ++round) {
    std::vector<std::byte> changed = heap;
    for (std::uint32_t i = 0; i < 1 + random() % 8; ++i) {
      // Mostly in the head of the heap, the header of the index and the description of the table.
      changed[random() % 4 == 0 ? random() % changed.size() : random() % 130] = static_cast<std::byte>(random());
    }
    const ndb::DataTree tree = ndb_->WriteData(changed);
    if (auto table = IfReadable([&] { return TableContext::Open(*ndb_, {tree.bid, node.trees.bidSub}); })) {
      const std::vector<Column> columns(table->Columns().begin(), table->Columns().end());
      for (std::size_t row = 0; row < table->RowCount(); row += 50) {
        for (const Column& column : columns) {
          static_cast<void>(IfReadable([&] { return table->Cell(row, column.tag); }));
        }
      }
    }
    ndb_->Discard({tree.bid});
  }
}

}  // namespace
}  // namespace velmora::ltp
