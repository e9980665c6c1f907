#include "recovery/heap_text.h"

#include <gtest/gtest.h>

#include "recovery/heap_block.h"

namespace velmora::recovery {
namespace {

TEST(HeapText, WideTextEndsAtItsFirstNul) {
  const Bytes bytes = BytesOf(std::u16string_view(u"ab\0cd", 5));
  EXPECT_EQ(WideText(ByteView(bytes)), u"ab");
}

TEST(HeapText, AnOddLastByteIsTheLowHalfOfAUnit) {
  Bytes bytes = BytesOf(u"ab");
  bytes.push_back(std::byte{'c'});
  EXPECT_EQ(WideText(ByteView(bytes)), u"abc");
}

TEST(HeapText, NarrowTextEndsAtItsFirstNulAndGoesByTheCodePage) {
  const Bytes bytes = BytesOf(std::string_view("\x93\xFA\x96{\0x", 6));
  const auto japanese = text::CodePage::Find("windows-932");
  ASSERT_TRUE(japanese);
  EXPECT_EQ(NarrowText(ByteView(bytes), *japanese), u"日本");
  EXPECT_EQ(NarrowText(ByteView(bytes), text::CodePage::Lossless()), u"\u201Cú\u2013{");
}

TEST(HeapText, TheWidthOfTheStoreDecides) {
  const Bytes bytes = BytesOf(u"ab");
  EXPECT_EQ(CopyHeapText(ByteView(bytes), true, text::CodePage::Lossless()), u"ab");
  EXPECT_EQ(CopyHeapText(ByteView(bytes), false, text::CodePage::Lossless()), u"a");
}

TEST(HeapText, NoBytesAreTheEmptyText) { EXPECT_EQ(WideText({}), u""); }

}  // namespace
}  // namespace velmora::recovery
