#include "platform/path_text.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace velmora::platform {
namespace {

TEST(PathText, ANameInUtf8IsItsText) {
  const std::u16string text = u"caf\u00e9 \u0416 \u6f22 \U0001F600";
  const std::filesystem::path path = "caf\xC3\xA9 \xD0\x96 \xE6\xBC\xA2 \xF0\x9F\x98\x80";
  EXPECT_EQ(TextOfPath(path), text);
  EXPECT_EQ(PathOf(text), path);
  EXPECT_EQ(BytesOfPath(path), path.native());
  EXPECT_EQ(PathOf(std::string_view(path.native())), path);
}

TEST(PathText, AByteThatIsNoUtf8TravelsAsALoneSurrogate) {
  const auto text = [](const char* bytes) { return TextOfPath(bytes); };
  EXPECT_EQ(text("caf\xE9"), (std::u16string{u'c', u'a', u'f', 0xDCE9}));
  EXPECT_EQ(text("\x80x"), (std::u16string{0xDC80, u'x'})) << "a byte that follows nothing";
  EXPECT_EQ(text("\xC0\xAF"), (std::u16string{0xDCC0, 0xDCAF})) << "longer than it need be";
  EXPECT_EQ(text("\xE0\x82\xAF"), (std::u16string{0xDCE0, 0xDC82, 0xDCAF}));
  EXPECT_EQ(text("\xF0\x82\x82\xAF"), (std::u16string{0xDCF0, 0xDC82, 0xDC82, 0xDCAF}));
  EXPECT_EQ(text("\xED\xA0\x80"), (std::u16string{0xDCED, 0xDCA0, 0xDC80})) << "a surrogate";
  EXPECT_EQ(text("\xF4\x90\x80\x80"), (std::u16string{0xDCF4, 0xDC90, 0xDC80, 0xDC80})) << "beyond the last character";
  EXPECT_EQ(text("\xF8\x88\x80\x80\x80"), (std::u16string{0xDCF8, 0xDC88, 0xDC80, 0xDC80, 0xDC80}));
  EXPECT_EQ(text("\xE6\xBC"), (std::u16string{0xDCE6, 0xDCBC})) << "cut short";
  EXPECT_EQ(text("\xE6\xBCx"), (std::u16string{0xDCE6, 0xDCBC, u'x'}));
}

TEST(PathText, EveryCharacterComesBack) {
  for (char32_t c = 1; c <= 0x10FFFF; ++c) {
    if (c >= 0xD800 && c <= 0xDFFF) continue;
    const std::u16string text = c < 0x10000 ? std::u16string{static_cast<char16_t>(c)}
                                            : std::u16string{static_cast<char16_t>(0xD7C0 + (c >> 10)),
                                                             static_cast<char16_t>(0xDC00 + (c & 0x3FF))};
    ASSERT_EQ(TextOfPath(PathOf(text)), text);
  }
}

TEST(PathText, EveryNameComesBackWhateverItsBytesAre) {
  std::mt19937 random(1);
  // Leads, followers and what is neither, so that most sequences break somewhere.
  constexpr std::string_view kBytes = "a\x80\xBF\xC3\xE0\xA0\xED\xE6\xF0\x9F\xF4\x8F\xFF/";
  for (int round = 0; round < 20000; ++round) {
    std::string bytes;
    for (std::size_t left = random() % 12; left != 0; --left) bytes += kBytes[random() % kBytes.size()];
    ASSERT_EQ(BytesOfPath(PathOf(TextOfPath(bytes))), bytes) << testing::PrintToString(bytes);
  }
}

TEST(PathText, ASurrogateThatStandsForNoByteBecomesTheReplacementCharacter) {
  EXPECT_EQ(PathOf(std::u16string{u'a', 0xD800, u'b'}),
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(PathOf(std::u16string{0xDC7F, 0xDD00}), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

}  // namespace
}  // namespace velmora::platform
