// ReadStringValue: texts and lists of texts in the block of their message.
#include <gtest/gtest.h>

#include "forged_heap.h"
#include "output/items/value_readers.h"

namespace velmora::items {
namespace {

using namespace testing;

text::Text Read(ForgedHeap& heap, PropType type, std::uint32_t value, std::size_t size = 0,
                const text::CodePage& codePage = text::CodePage::Lossless()) {
  const recovery::MessageBlock block = heap.Block(size);
  return ReadStringValue(block, codePage, type, block.Position(value));
}

text::Text ReadContent(PropType type, const Bytes& content) {
  ForgedHeap heap;
  const std::uint32_t value = heap.Add(content);
  return Read(heap, type, value);
}

TEST(StringValue, Utf16TextIsReadAsItStands) {
  EXPECT_EQ(ReadContent(PropType::kString, Utf16(u"Grüße \xD800 ok")), u"Grüße \xD800 ok");
}

TEST(StringValue, EightBitTextGoesThroughTheCodePage) {
  EXPECT_EQ(ReadContent(PropType::kString8, BytesOf("caf\xE9")), u"café");

  ForgedHeap heap;
  const std::uint32_t value = heap.Add(BytesOf("\x93\xFA\x96{"));
  EXPECT_EQ(Read(heap, PropType::kString8, value, 0, *text::CodePage::Find("shift_jis")), u"日本");
}

TEST(StringValue, ATextEndsAtItsFirstNul) {
  EXPECT_EQ(ReadContent(PropType::kString, Utf16(text::TextView(u"ab\0cd", 5))), u"ab");
  EXPECT_EQ(ReadContent(PropType::kString8, BytesOf(std::string_view("ab\0cd", 5))), u"ab");
  EXPECT_EQ(ReadContent(PropType::kString, Utf16(text::TextView(u"\0cd", 3))), u"");
}

TEST(StringValue, AnOddLastByteOfAUtf16TextMakesAUnit) {
  Bytes content = Utf16(u"ab");
  AppendBytes(content, "c");
  EXPECT_EQ(ReadContent(PropType::kString, content), u"abc");
}

TEST(StringValue, ATextThatEndsBelowOffset16OfTheBlockReadsAsEmpty) {
  ForgedHeap heap(8);
  heap.Add(BytesOf("abcdefgh"));
  const std::uint32_t endsAt15 = heap.AddRange(8, 15);
  const std::uint32_t endsAt16 = heap.AddRange(8, 16);
  EXPECT_EQ(Read(heap, PropType::kString8, endsAt15), u"");
  EXPECT_EQ(Read(heap, PropType::kString8, endsAt16), u"abcdefgh");
}

TEST(StringValue, ARangeThatIsEmptyBackwardsOrBeginsAtZeroReadsAsEmpty) {
  ForgedHeap heap;
  heap.Add(BytesOf("abcdefghijklmnop"));
  EXPECT_EQ(Read(heap, PropType::kString8, heap.AddRange(24, 24)), u"");
  EXPECT_EQ(Read(heap, PropType::kString8, heap.AddRange(28, 24)), u"");
  EXPECT_EQ(Read(heap, PropType::kString8, heap.AddRange(0, 24)), u"");
  EXPECT_EQ(Read(heap, PropType::kString8, heap.AddRange(24, 28)), u"efgh");
}

TEST(StringValue, ATextMustLeaveFourBytesOfTheBlock) {
  ForgedHeap heap;
  heap.Add(BytesOf("text"));
  const std::uint32_t value = heap.AddRange(20, 60);
  EXPECT_EQ(Read(heap, PropType::kString8, value, 43), u"");
  EXPECT_EQ(Read(heap, PropType::kString8, value, 44).substr(0, 4), u"text");
}

TEST(StringValue, ATextThatRunsOverTheEndOfTheBlockIsCutThere) {
  ForgedHeap heap;
  const std::uint32_t value = heap.AddRange(44, 70);  // the block ends at 50, and has room for 26 + 4
  recovery::MessageBlock block = heap.Block(44);
  Bytes bytes(block.bytes.Bytes().begin(), block.bytes.Bytes().end());
  AppendBytes(bytes, "abcdef");
  block.bytes = ByteView(bytes);
  block.record.size = 50;
  EXPECT_EQ(ReadStringValue(block, text::CodePage::Lossless(), PropType::kString8, block.Position(value)), u"abcdef");
  EXPECT_EQ(ReadStringValue(block, text::CodePage::Lossless(), PropType::kString, block.Position(value)),
            u"\u6261\u6463\u6665");
}

TEST(StringValue, EveryOtherTypeReadsAsEmpty) {
  const Bytes content = Utf16(u"some text that is long enough");
  for (std::uint32_t number = 0; number <= 0xFFFF; ++number) {
    const auto type = static_cast<PropType>(number);
    if (type == PropType::kString || type == PropType::kString8 || type == PropType::kMultipleString8 ||
        type == PropType::kMultipleString)
      continue;
    ASSERT_EQ(ReadContent(type, content), u"") << number;
  }
}

TEST(StringValue, AnEightBitListOfOneValueGivesItsFirstEightBytes) {
  EXPECT_EQ(ReadContent(PropType::kMultipleString8, List({BytesOf("Business trips")})), u"Business");
  EXPECT_EQ(ReadContent(PropType::kMultipleString8, List({BytesOf("Work")})).substr(0, 4), u"Work");
}

TEST(StringValue, TheOffsetOfASingleEightBitValueStandsAsItsLength) {
  Bytes content = Number(1, 4);
  AppendNumber(content, 3, 4);
  AppendBytes(content, "Business trips");
  EXPECT_EQ(ReadContent(PropType::kMultipleString8, content), u"Bus");
}

TEST(StringValue, ASingleEightBitValueWithAnOffsetBeyondTheBlockSizeReadsAsEmpty) {
  Bytes content = Number(1, 4);
  AppendNumber(content, 201, 4);
  AppendBytes(content, "Business");
  ForgedHeap heap;
  const std::uint32_t value = heap.Add(content);
  EXPECT_EQ(Read(heap, PropType::kMultipleString8, value, 200), u"");
  EXPECT_EQ(Read(heap, PropType::kMultipleString8, value, 201).substr(0, 8), u"Business");
}

TEST(StringValue, AnEightBitListOfSeveralValuesGivesTheBytesOfItsSecondOffsetUpToAZero) {
  // A second offset made of letters shows where the copy begins.
  Bytes content = Number(2, 4);
  AppendNumber(content, 12, 4);
  AppendNumber(content, 0x44434241, 4);
  AppendBytes(content, std::string_view("onetwo\0more", 11));
  EXPECT_EQ(ReadContent(PropType::kMultipleString8, content), u"ABCDonetwo");

  EXPECT_EQ(ReadContent(PropType::kMultipleString8, List({BytesOf("one"), BytesOf("two")})), u"\x0F");
}

TEST(StringValue, AnEightBitListWithoutAZeroRunsOverItsAllocationByNineBytes) {
  ForgedHeap heap;
  Bytes content = Number(2, 4);
  AppendBytes(content, "offs0123456789ab");
  const std::uint32_t value = heap.Add(content);
  heap.Add(BytesOf("ABCDEFGHIJKLMNOP"));
  EXPECT_EQ(Read(heap, PropType::kMultipleString8, value), u"0123456789abABCDEFGHI");
}

TEST(StringValue, AUtf16ListOfOneValueGivesThatValueWithoutASemicolon) {
  EXPECT_EQ(ReadContent(PropType::kMultipleString, List({Utf16(u"Business trips")})), u"Business trips");
}

TEST(StringValue, AUtf16ListIsJoinedBySemicolonsWithoutBlanks) {
  EXPECT_EQ(ReadContent(PropType::kMultipleString, List({Utf16(u"Ann"), Utf16(u"Bob"), Utf16(u"Carl")})),
            u"Ann;Bob;Carl");
}

TEST(StringValue, EachValueOfAUtf16ListEndsAtItsFirstNul) {
  EXPECT_EQ(ReadContent(PropType::kMultipleString,
                        List({Utf16(text::TextView(u"An\0n", 4)), Utf16(text::TextView(u"B\0b", 3))})),
            u"An;B");
}

TEST(StringValue, AnOddLastByteInAUtf16ListMakesNoUnit) {
  Bytes odd = Utf16(u"Ann");
  AppendBytes(odd, "x");
  EXPECT_EQ(ReadContent(PropType::kMultipleString, List({odd, Utf16(u"Bob")})), u"Ann;Bob");
  // Behind the last value the copy holds one byte more, which pairs with an odd last byte.
  ForgedHeap heap;
  const std::uint32_t value = heap.Add(List({Utf16(u"Ann"), odd}));
  heap.Add(BytesOf("y"));
  EXPECT_EQ(Read(heap, PropType::kMultipleString, value), u"Ann;Ann\u7978");
}

TEST(StringValue, AUtf16ListWhoseCountExceedsTheBlockSizeReadsAsEmpty) {
  Bytes content = Number(101, 4);
  AppendNumber(content, 16, 4);
  AppendNumber(content, 20, 4);
  AppendNumber(content, 24, 4);
  AppendBytes(content, "a");
  ForgedHeap heap;
  const std::uint32_t value = heap.Add(content);
  EXPECT_EQ(Read(heap, PropType::kMultipleString, value, 100), u"");
  EXPECT_NE(Read(heap, PropType::kMultipleString, value, 101), u"");
}

TEST(StringValue, AUtf16ListOfNoValuesReadsAsEmpty) {
  EXPECT_EQ(ReadContent(PropType::kMultipleString, Number(0, 8)), u"");
}

TEST(StringValue, AUtf16ListWhoseOffsetsRunBackwardsLosesThoseValuesAlone) {
  Bytes content = Number(3, 4);
  AppendNumber(content, 20, 4);
  AppendNumber(content, 16, 4);
  AppendNumber(content, 0x7FFFFFFF, 4);
  AppendBytes(content, std::string_view("a\0b\0c\0d\0", 8));
  EXPECT_EQ(ReadContent(PropType::kMultipleString, content), u";abcd;");
}

TEST(StringValue, AUtf16ListThatNamesItsBytesAgainAndAgainStaysOfBoundedSize) {
  // 4000 pairs of offsets, each spanning the 14,000 units behind the offsets, would give 56 million units.
  constexpr std::uint32_t kPairs = 4000;
  Bytes content = Number(2 * kPairs, 4);
  for (std::uint32_t i = 0; i < kPairs; ++i) {
    AppendNumber(content, 4 + 8 * kPairs, 4);
    AppendNumber(content, 0xFFFF, 4);
  }
  for (int i = 0; i < 14000; ++i) AppendNumber(content, u'x', 2);
  const text::Text text = ReadContent(PropType::kMultipleString, content);
  EXPECT_GT(text.size(), 2u * 14000);
  EXPECT_LT(text.size(), 5u * 65536);
}

}  // namespace
}  // namespace velmora::items
