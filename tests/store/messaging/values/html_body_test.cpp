#include "store/messaging/values/html_body.h"

#include <gtest/gtest.h>

namespace velmora::messaging {
namespace {

using text::CodePage;

/// The text that carries these bytes through the program.
text::Text Carried(std::string_view bytes) { return CodePage::Lossless().Decode(bytes); }

HtmlBody Store(std::string_view bytes, std::string_view fallback = "windows-1252") {
  return StoreHtml(Carried(bytes), *CodePage::Find(fallback));
}

TEST(HtmlBody, KeepsEachByte) {
  std::string bytes;
  for (int i = 1; i < 256; ++i) bytes.push_back(static_cast<char>(i));
  EXPECT_EQ(Store(bytes).bytes, bytes);
}

TEST(HtmlBody, OfUtf8WithACharacterBeyondAsciiIsUtf8) {
  const HtmlBody body = Store(
      "<p>Gr\xC3\xBC\xC3\x9F"
      "e</p>");
  EXPECT_EQ(body.codePage, 65001);
  EXPECT_EQ(HtmlText(body.bytes, body.codePage), u"<p>Gr\u00fc\u00dfe</p>");
}

TEST(HtmlBody, IsUtf8EvenWhereItsCharsetTellsAnother) {
  EXPECT_EQ(Store("<meta charset=windows-1251>\xC3\xBC").codePage, 65001);
}

TEST(HtmlBody, TakesTheCharsetThatThePageDeclares) {
  EXPECT_EQ(Store("<META http-equiv=Content-Type content=\"text/html; charset=windows-1251\">\xCF\xF0").codePage, 1251);
  EXPECT_EQ(Store("<meta charset='ISO-8859-2'>\xE1 ").codePage, 28592);
  EXPECT_EQ(Store("<meta charset = \"shift_jis\"/>\x82\xA0").codePage, 932);
  EXPECT_EQ(Store("<meta charset=iso-2022-jp>").codePage, 50220);
  EXPECT_EQ(Store("<meta charset=utf-8>plain").codePage, 65001);
  EXPECT_EQ(Store("<meta name=x><meta charset=koi8-r>\xC1").codePage, 20866);
}

TEST(HtmlBody, WithoutAKnownCharsetHasTheCodePageOfTheRun) {
  EXPECT_EQ(Store("<p>caf\xE9</p>").codePage, 1252);
  EXPECT_EQ(Store("<p>\xCF\xF0</p>", "windows-1251").codePage, 1251);
  EXPECT_EQ(Store("<meta charset=klingon>\xE9", "windows-1251").codePage, 1251);
  EXPECT_EQ(Store("charset=koi8-r \xE9").codePage, 1252);
}

// The bytes of a page need no text to find their code page.
TEST(HtmlBody, HasTheSameCodePageByItsBytesAsByTheTextThatCarriesThem) {
  const auto fallback = CodePage::Find("windows-1251");
  for (const std::string_view bytes :
       {"", "plain", "<meta charset=KOI8-R>plain", "<META charset=koi8-r>\xE9", "<meta charset=koi8-r>\xC3\xA9",
        "<meta charset=klingon>\xE9", "\xC3", "\xED\xA0\x80<meta charset=utf-8>", "\x81\x8D\xEF\xBF\xBD"}) {
    const HtmlBody body = StoreHtml(Carried(bytes), *fallback);
    EXPECT_EQ(body.bytes, bytes);
    EXPECT_EQ(HtmlCodePage(bytes, *fallback), body.codePage) << bytes;
  }
}

TEST(HtmlBody, WithCharactersThatNoByteCarriesIsWrittenAsUtf8) {
  const HtmlBody body = StoreHtml(u"<p>\u4f60\u597d \U0001F600</p>", CodePage::Lossless());
  EXPECT_EQ(body.codePage, 65001);
  EXPECT_EQ(HtmlText(body.bytes, body.codePage), u"<p>\u4f60\u597d \U0001F600</p>");
}

TEST(HtmlBody, ReadsEachCodePageThatItNames) {
  EXPECT_EQ(HtmlText("\xCF\xF0", 1251), u"\u041f\u0440");
  EXPECT_EQ(HtmlText("\x82\xA0", 932), u"\u3042");
  EXPECT_EQ(HtmlText("\xE1", 28592), u"\u00e1");
  EXPECT_EQ(HtmlText("\xC1", 20866), u"\u0430");
  EXPECT_EQ(HtmlText("\xE9", 4711), u"\u00e9");
  EXPECT_EQ(HtmlText("\xE9", 0), u"\u00e9");
}

}  // namespace
}  // namespace velmora::messaging
