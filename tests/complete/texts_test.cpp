// 8-bit texts: which code page they are in, and what becomes of bytes that no page has.
#include "complete/complete_fixture.h"

namespace velmora::complete {
namespace {

struct InPage {
  std::uint32_t page;
  std::string_view bytes;
  const char16_t* text;
};

constexpr InPage kTexts[] = {
    {932, "\x93\xFA\x96\x7B\x8C\xEA \xB1", u"\u65E5\u672C\u8A9E \uFF71"},
    {1251, "\xD0\xF3\xF1\xF1\xEA\xE8\xE9", u"\u0420\u0443\u0441\u0441\u043A\u0438\u0439"},
    {1253, "\xC5\xEB\xEB\xE7\xED\xE9\xEA\xDC", u"\u0395\u03BB\u03BB\u03B7\u03BD\u03B9\u03BA\u03AC"},
    {1255, "\xF2\xE1\xF8\xE9\xFA", u"\u05E2\u05D1\u05E8\u05D9\u05EA"},
    {949, "\xC7\xD1\xB1\xB9\xBE\xEE", u"\uD55C\uAD6D\uC5B4"},
    {936, "\xD6\xD0\xCE\xC4", u"\u4E2D\u6587"},
    {65001, "\xE2\x82\xAC \xC3\xA9", u"\u20AC \u00E9"}};

forge::Message In(const InPage& sample, forge::PropertyList tells) {
  tells.push_back(Text8(0x1000, sample.bytes));
  tells.push_back(Text8(0x0037, sample.bytes));
  return {.plain = u"", .properties = std::move(tells)};
}

class TextsTest : public CompleteTest {};
INSTANTIATE_TEST_SUITE_P(Formats, TextsTest, AllFormats(), NameOf);

TEST_P(TextsTest, AMessageTellsTheCodePageOfItsTexts) {
  for (const InPage& sample : kTexts) {
    SCOPED_TRACE(sample.page);
    forge::Message message = In(sample, {Int32(0x3FFD, sample.page), Text8(0x0C1A, sample.bytes)});
    message.recipients = {{.name = u"A", .address = u"a@b", .properties = {Text8(0x39FE, sample.bytes)}}};
    message.attachments = {{.name = u"a.txt", .data = Noise(5, 1), .properties = {Text8(0x3707, sample.bytes)}}};
    const Item item = CopyOf(message);
    EXPECT_EQ(TextOf(item.properties, 0x1000), sample.text);
    EXPECT_EQ(TextOf(item.properties, 0x0037), sample.text);
    EXPECT_EQ(TextOf(item.properties, 0x0C1A), sample.text);
    EXPECT_EQ(TextOf(item.recipients.at(0), 0x39FE), sample.text);
    EXPECT_EQ(TextOf(item.attachments.at(0).properties, 0x3707), sample.text);
    EXPECT_EQ(Find(item.properties, 0x1000)->type, PropType::kString);
    EXPECT_TRUE(account_.IsWhole());
  }
}

TEST_P(TextsTest, OtherwiseItsInternetCodePageOrItsLanguageTells) {
  Item item = CopyOf(In(kTexts[1], {Int32(0x3FDE, 1251)}));
  EXPECT_EQ(TextOf(item.properties, 0x1000), kTexts[1].text);
  item = CopyOf(In(kTexts[1], {Int32(0x3FF1, 0x0419)}));
  EXPECT_EQ(TextOf(item.properties, 0x1000), kTexts[1].text);
}

/// In the other formats 8-bit texts are the exception, and tell nothing of the store.
class AnsiTextsTest : public TextsTest {};
INSTANTIATE_TEST_SUITE_P(Formats, AnsiTextsTest, testing::Values(forge::Format::kAnsi), NameOf);

TEST_P(AnsiTextsTest, OneThatTellsNothingIsInTheCodePageOfMost) {
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"", .properties = {Text8(0x3001, kTexts[1].bytes)}});
  for (int i = 0; i < 3; ++i) box.AddMessage(inbox, In(kTexts[1], {Int32(0x3FFD, 1251)}));
  box.AddMessage(inbox, In(kTexts[2], {Int32(0x3FFD, 1253)}));
  const forge::Nid silent = box.AddMessage(inbox, In(kTexts[1], {})).nid;
  Copy(box);
  EXPECT_EQ(TextOf(TargetItem(silent).properties, 0x1000), kTexts[1].text);
  EXPECT_EQ(TextOf(target_->PropertiesOf(NodeOf(inbox)), 0x3001), kTexts[1].text) << "names of folders too";
}

TEST_P(TextsTest, WhereNothingTellsTheUserDoes) {
  const Item item = CopyOf(In(kTexts[2], {}), {.codePage = *text::CodePage::Find("windows-1253")});
  EXPECT_EQ(TextOf(item.properties, 0x1000), kTexts[2].text);
  EXPECT_EQ(TextOf(CopyOf(In(kTexts[2], {})).properties, 0x1000), u"\u00C5\u00EB\u00EB\u00E7\u00ED\u00E9\u00EA\u00DC")
      << "without any, byte for byte";
}

TEST_P(TextsTest, BytesThatDoNotDecodeAreKeptAndCounted) {
  const Item item = CopyOf({.properties = {Int32(0x3FFD, 932), Text8(0x1000, "ok \x81"), Text8(0x6901, "\x93\xFA")}});
  EXPECT_EQ(TextOf(item.properties, 0x1000), u"ok \u0081");
  EXPECT_EQ(TextOf(item.properties, 0x6901), u"\u65E5") << "the other texts are decoded";
  EXPECT_EQ(account_.undefinedBytes, 1U);
  EXPECT_TRUE(account_.IsWhole()) << "nothing of it is lost";
}

TEST_P(TextsTest, SeveralTextsOfOneValueAreDecodedEach) {
  Bytes list;  // of 8-bit texts: their number, the place of each, the texts
  for (const std::uint32_t number : {2U, 12U, 14U}) forge::Append(list, number, 4);
  forge::Append(list, ToBytes("\xD0\xF3\xF1"));
  const Item item = CopyOf({.properties = {Int32(0x3FFD, 1251), Raw(0x6901, 0x101E, list)}});
  ExpectHas(item.properties, {Texts(0x6901, {u"\u0420\u0443", u"\u0441"})});
  EXPECT_TRUE(account_.IsWhole());
}

TEST_P(TextsTest, Utf16AndBytesOfBodiesStayAsTheyAre) {
  const forge::PropertyList values = {Int32(0x3FFD, 932), Text16(0x1000, u"\u00E9\u65E5 \xD83D lone"),
                                      Binary(0x1013, ToBytes("<p>\x93\xFA</p>")),
                                      Binary(0x1009, forge::FormRtf("{\\rtf1 \\'93\\'fa}"))};
  const Item item = CopyOf({.properties = values});
  ExpectHas(item.properties, values);
  EXPECT_TRUE(account_.IsWhole());
}

TEST_P(TextsTest, AnHtmlBodyInATextPropertyStaysTheBytesThatItIs) {
  const Item item = CopyOf({.properties = {Int32(0x3FFD, 1251), Text8(0x1013, "<p>\xD0</p>")}});
  ExpectHas(item.properties, {Binary(0x1013, ToBytes("<p>\xD0</p>")), Int32(0x3FDE, 1251)});
}

TEST_P(TextsTest, AnEmbeddedMessageTellsItsOwn) {
  forge::Message outer = In(kTexts[1], {Int32(0x3FFD, 1251)});
  outer.attachments = {{.displayName = u"Inner",
                        .embedded = std::make_shared<const forge::Message>(In(kTexts[0], {Int32(0x3FFD, 932)}))}};
  const Item item = CopyOf(outer);
  ASSERT_EQ(item.attachments.size(), 1U);
  ASSERT_NE(item.attachments[0].embedded, nullptr);
  EXPECT_EQ(TextOf(item.attachments[0].embedded->properties, 0x1000), kTexts[0].text);
  EXPECT_EQ(TextOf(item.properties, 0x1000), kTexts[1].text);
}

}  // namespace
}  // namespace velmora::complete
