#include "store/ltp/bth.h"

#include <gtest/gtest.h>

#include "store/format/little_endian.h"
#include "store/ndb/ndb_writer.h"
#include "store/support/failures.h"
#include "store/support/test_files.h"

namespace velmora::ltp {
namespace {

class Bths : public testing::Test {
 protected:
  /// A heap of a tree of `count` rows, whose keys are 3 times their number.
  Heap Written(std::size_t count) {
    HeapWriter writer(*ndb_, ClientSig::kTableContext);
    EXPECT_EQ(writer.Add(std::array<std::byte, 8>{}), 0x20u);
    HeapPosition foreseen = writer.Position();
    AdvanceOverBth(foreseen, kRowIndexLayout, count);
    WriteBth(writer, 0x20, kRowIndexLayout, count, [](std::size_t i, std::span<std::byte> out) {
      Store<std::uint32_t>(out, 0, static_cast<std::uint32_t>(i * 3));
      Store<std::uint32_t>(out, 4, static_cast<std::uint32_t>(i));
    });
    EXPECT_EQ(foreseen.HeapSize(), writer.Position().HeapSize());
    return Heap::Open(*ndb_, writer.Finish(0x20).bid, ClientSig::kTableContext);
  }

  platform::MemoryFile file_;
  std::unique_ptr<ndb::NdbWriter> ndb_ = ndb::NdbWriter::Create(file_);
};

TEST_F(Bths, GrowALevelWhereAnItemDoesNotHoldTheirRecords) {
  const std::pair<std::size_t, int> cases[] = {{0, 0}, {1, 0}, {447, 0}, {448, 1}, {447 * 447, 1}, {447 * 447 + 1, 2}};
  for (const auto& [count, levels] : cases) {
    Heap heap = Written(count);
    const std::span<const std::byte> header = heap.Item(0x20);
    EXPECT_EQ(Load<std::uint8_t>(header, 0), 0xB5);
    EXPECT_EQ(Load<std::uint8_t>(header, 1), 4);
    EXPECT_EQ(Load<std::uint8_t>(header, 2), 4);
    EXPECT_EQ(Load<std::uint8_t>(header, 3), levels) << count;
    EXPECT_EQ(Load<std::uint32_t>(header, 4) == 0, count == 0);
    const std::vector<std::byte> records = ReadBth(heap, 0x20, kRowIndexLayout, kMaxRows);
    ASSERT_EQ(records.size(), count * 8);
    for (std::size_t i = 0; i < count; ++i) {
      ASSERT_EQ(Load<std::uint32_t>(records, i * 8), i * 3);
      ASSERT_EQ(Load<std::uint32_t>(records, i * 8 + 4), i);
    }
  }
}

TEST_F(Bths, NameTheFirstKeyOfEachChild) {
  Heap heap = Written(447 * 447 + 1);
  const auto root = Load<std::uint32_t>(heap.Item(0x20), 4);
  const std::vector<std::byte> top(heap.Item(root).begin(), heap.Item(root).end());
  ASSERT_EQ(top.size(), 16u);
  EXPECT_EQ(Load<std::uint32_t>(top, 0), 0u);
  EXPECT_EQ(Load<std::uint32_t>(top, 8), 447u * 447 * 3);
  const auto lower = heap.Item(Load<std::uint32_t>(top, 4));
  EXPECT_EQ(lower.size(), 447u * 8);
  EXPECT_EQ(Load<std::uint32_t>(lower, 8), 447u * 3);
}

TEST_F(Bths, OfAnotherLayoutAreRefused) {
  Heap heap = Written(3);
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(ReadBth(heap, 0x20, kPropertyLayout, kMaxRows)); }),
            FailureKind::kCorrupt);
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(ReadBth(heap, 0x40, kRowIndexLayout, kMaxRows)); }),
            FailureKind::kCorrupt);
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(ReadBth(heap, 0, kRowIndexLayout, kMaxRows)); }),
            FailureKind::kCorrupt);
}

TEST_F(Bths, ThatReferToThemselvesEnd) {
  HeapWriter writer(*ndb_, ClientSig::kTableContext);
  std::vector<std::byte> header = test::Bytes({0xB5, 4, 4, 8, 0x40, 0, 0, 0});
  writer.Add(header);
  std::vector<std::byte> index;  // 400 records that all lead to this same item
  for (int i = 0; i < 400; ++i) {
    for (const int byte : {i & 0xFF, i >> 8, 0, 0, 0x40, 0, 0, 0}) index.push_back(static_cast<std::byte>(byte));
  }
  writer.Add(index);
  Heap heap = Heap::Open(*ndb_, writer.Finish(0x20).bid, ClientSig::kTableContext);
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(ReadBth(heap, 0x20, kRowIndexLayout, kMaxRows)); }),
            FailureKind::kCorrupt);
}

TEST_F(Bths, OfMoreRecordsThanTheyMayHaveAreRefused) {
  Heap heap = Written(500);
  EXPECT_FALSE(ReadBth(heap, 0x20, kRowIndexLayout, 500).empty());
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(ReadBth(heap, 0x20, kRowIndexLayout, 499)); }),
            FailureKind::kCorrupt);
}

TEST_F(Bths, OfTooManyLevelsAreRefused) {
  HeapWriter writer(*ndb_, ClientSig::kTableContext);
  writer.Add(test::Bytes({0xB5, 4, 4, 9, 0x20, 0, 0, 0}));
  Heap heap = Heap::Open(*ndb_, writer.Finish(0x20).bid, ClientSig::kTableContext);
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(ReadBth(heap, 0x20, kRowIndexLayout, kMaxRows)); }),
            FailureKind::kCorrupt);
}

}  // namespace
}  // namespace velmora::ltp
