#include "text/code_page.h"

#include <gtest/gtest.h>

namespace velmora::text {
namespace {

TEST(CodePage, TheDefaultCarriesEveryByteThereAndBack) {
  std::string bytes;
  for (int b = 0; b < 256; ++b) bytes.push_back(static_cast<char>(b));
  const Text text = CodePage::Lossless().Decode(bytes);
  ASSERT_EQ(text.size(), 256u);
  EXPECT_EQ(text[0x80], u'\u20ac');
  EXPECT_EQ(text[0x81], u'\x81');
  EXPECT_EQ(text[0xE9], u'\u00e9');
  EXPECT_EQ(CodePage::Lossless().Encode(text), bytes);
}

TEST(CodePage, FindsWindows1252AsTheLosslessPage) {
  const auto page = CodePage::Find("windows-1252");
  ASSERT_TRUE(page);
  EXPECT_EQ(page->Decode("\x81\x9D"), u"\x81\x9d");
  EXPECT_EQ(page->WindowsNumber(), 1252);
}

TEST(CodePage, DecodesAndEncodesJapanese) {
  for (const char* name : {"shift_jis", "cp932", "932", "windows-932"}) {
    const auto page = CodePage::Find(name);
    ASSERT_TRUE(page) << name;
    EXPECT_EQ(page->Decode("\x93\xFA\x96\x7B"), u"\u65e5\u672c") << name;
    EXPECT_EQ(page->Encode(u"\u65e5\u672c"), "\x93\xFA\x96\x7B") << name;
    EXPECT_EQ(page->WindowsNumber(), 932) << name;
  }
}

TEST(CodePage, KnowsTheNumberOfUtf8AndOfTheIsoPages) {
  EXPECT_EQ(CodePage::Find("65001")->WindowsNumber(), 65001);
  EXPECT_EQ(CodePage::Find("utf-8")->WindowsNumber(), 65001);
  EXPECT_EQ(CodePage::Find("iso-8859-2")->WindowsNumber(), 28592);
  EXPECT_EQ(CodePage::Find("windows-1251")->WindowsNumber(), 1251);
}

TEST(CodePage, WritesAQuestionMarkForWhatThePageLacks) {
  EXPECT_EQ(CodePage::Lossless().Encode(u"a\u65e5\U0001F600b"), "a??b");
  EXPECT_EQ(CodePage::Find("windows-1251")->Encode(u"\u65e5"), "?");
}

TEST(CodePage, RefusesANameThatNobodyKnows) {
  EXPECT_FALSE(CodePage::Find("klingon-7"));
  EXPECT_FALSE(CodePage::Find(""));
}

}  // namespace
}  // namespace velmora::text
