// ReadTimeValue and ReadHeapString.
#include <gmock/gmock.h>

#include "item_fixture.h"
#include "output/items/value_readers.h"
#include "text/calendar.h"

namespace velmora::items {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

constexpr double kFirstFileTimeDay = -109205.0;  // 1 January 1601

double ReadTime(const Bytes& content, PropType type = PropType::kTime) {
  ForgedHeap heap;
  const std::uint32_t value = heap.Add(content);
  const recovery::MessageBlock block = heap.Block();
  return ReadTimeValue(block, type, block.Position(value)).days;
}

TEST(TimeValue, AFileTimeGivesItsDayAndTimeOfDay) {
  constexpr std::uint64_t kSixHours = 6ull * 3600 * 10'000'000;
  EXPECT_EQ(ReadTime(Number(kNewYear2020, 8)), 43831.0);
  EXPECT_EQ(ReadTime(Number(kNewYear2020 + kSixHours, 8)), 43831.25);
}

TEST(TimeValue, MillisecondsAreDropped) {
  EXPECT_EQ(ReadTime(Number(kNewYear2020 + 9'999'999, 8)), 43831.0);
  EXPECT_EQ(text::SecondsOf(output::OleDate{ReadTime(Number(kNewYear2020 + 10'000'000, 8))}),
            43831 * text::kSecondsPerDay + 1);
}

TEST(TimeValue, BeforeTheFirstOleDayTheTimeOfDayStillCountsForward) {
  constexpr std::uint64_t kSixHours = 6ull * 3600 * 10'000'000;
  EXPECT_EQ(ReadTime(Number(kSixHours, 8)), kFirstFileTimeDay - 0.25);
}

TEST(TimeValue, AnAllocationOfAnotherSizeIsTheFirstDayOf1601) {
  EXPECT_EQ(ReadTime(Number(kNewYear2020, 4)), kFirstFileTimeDay);
  EXPECT_EQ(ReadTime(Number(kNewYear2020, 7)), kFirstFileTimeDay);
  Bytes nine = Number(kNewYear2020, 8);
  AppendBytes(nine, "x");
  EXPECT_EQ(ReadTime(nine), kFirstFileTimeDay);
  EXPECT_EQ(ReadTime({}), kFirstFileTimeDay);

  ForgedHeap heap;
  heap.Add(Number(kNewYear2020, 8));
  const std::uint32_t backwards = heap.AddRange(28, 20);
  const recovery::MessageBlock block = heap.Block();
  EXPECT_EQ(ReadTimeValue(block, PropType::kTime, block.Position(backwards)).days, kFirstFileTimeDay);
}

TEST(TimeValue, ARecordOfAnotherTypeGivesTheDateZero) {
  EXPECT_EQ(ReadTime(Number(kNewYear2020, 8), PropType::kString), 0.0);
  EXPECT_EQ(ReadTime(Number(kNewYear2020, 8), PropType::kFloatingTime), 0.0);
}

TEST(TimeValue, ATimeThatTheConversionRefusesGivesTheDateZero) {
  constexpr std::uint64_t kFirstSecondOf10000 = 2650467744000000000;
  EXPECT_EQ(ReadTime(Number(0x8000000000000000, 8)), 0.0);
  EXPECT_EQ(ReadTime(Number(0xFFFFFFFFFFFFFFFF, 8)), 0.0);
  EXPECT_EQ(ReadTime(Number(kFirstSecondOf10000, 8)), 0.0);
  EXPECT_EQ(text::SecondsOf(output::OleDate{ReadTime(Number(kFirstSecondOf10000 - 1, 8))}),
            2958466 * text::kSecondsPerDay - 1);
}

class HeapString : public ItemFixture {
 protected:
  HeapString() { subNodes.answer = u"from a sub-node"; }

  text::Text Read(PropType type, std::uint32_t value, std::size_t size = 0) {
    const recovery::MessageBlock block = heap.Block(size);
    return ReadHeapString(scope, block, type, block.Position(value), value);
  }
};

TEST_F(HeapString, TextsOfBothWidthsComeFromTheHeap) {
  const std::uint32_t wide = heap.Add(Utf16(u"Grüße"));
  const std::uint32_t narrow = heap.Add(BytesOf("caf\xE9"));
  EXPECT_EQ(Read(PropType::kString, wide), u"Grüße");
  EXPECT_EQ(Read(PropType::kString8, narrow), u"café");
  EXPECT_THAT(subNodes.asked, IsEmpty());
}

TEST_F(HeapString, ATextAtTheVeryStartOfTheBlockIsRead) {
  heap = ForgedHeap(2);
  EXPECT_EQ(Read(PropType::kString8, heap.Add(BytesOf("short"))), u"short");
}

TEST_F(HeapString, ATypeThatIsNoSingleTextReadsAsEmpty) {
  const std::uint32_t value = heap.Add(List({Utf16(u"Ann")}));
  EXPECT_EQ(Read(PropType::kMultipleString, value), u"");
  EXPECT_EQ(Read(PropType::kTime, value), u"");
  EXPECT_THAT(subNodes.asked, IsEmpty());
}

TEST_F(HeapString, APositionBeyondTheBlockLeadsToTheSubNode) {
  heap.Add(BytesOf("text"));
  const recovery::MessageBlock block = heap.Block(200);
  EXPECT_EQ(ReadHeapString(scope, block, PropType::kString, 198, 0x123F), u"from a sub-node");
  EXPECT_THAT(subNodes.asked, ElementsAre(Pair(PropType::kString, 0x123F)));
  EXPECT_EQ(ReadHeapString(scope, block, PropType::kString, 197, 0x123F), u"");
}

TEST_F(HeapString, AnEndAtTheEndOfTheBlockLeadsToTheSubNode) {
  heap.Add(BytesOf("text"));
  const std::uint32_t value = heap.AddRange(20, 98);
  EXPECT_EQ(Read(PropType::kString8, value, 100), u"from a sub-node");
  EXPECT_THAT(subNodes.asked, ElementsAre(Pair(PropType::kString8, value)));
  EXPECT_EQ(Read(PropType::kString8, value, 101).substr(0, 4), u"text");
}

TEST_F(HeapString, ABadRangeInsideTheBlockReadsAsEmpty) {
  heap.Add(BytesOf("text"));
  EXPECT_EQ(Read(PropType::kString8, heap.AddRange(20, 20)), u"");
  EXPECT_EQ(Read(PropType::kString8, heap.AddRange(24, 20)), u"");
  EXPECT_EQ(Read(PropType::kString8, heap.AddRange(0, 24)), u"");
  EXPECT_THAT(subNodes.asked, IsEmpty());
}

TEST_F(HeapString, OfABlockLargerThan64KiBTheLow16BitsOfItsSizeCount) {
  const std::uint32_t value = heap.Add(BytesOf("text"));
  EXPECT_EQ(Read(PropType::kString8, value, 0x10000 + 20), u"from a sub-node");
  EXPECT_EQ(Read(PropType::kString8, value, 0x10000 + 200), u"text");
}

}  // namespace
}  // namespace velmora::items
