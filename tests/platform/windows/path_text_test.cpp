#include "platform/path_text.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::platform {
namespace {

TEST(PathText, UnitsTravelAsTheyAre) {
  const std::u16string text = {u'a', 0xD800, u'\u6f22', 0xDC00, 0xD83D, 0xDE00, 0xDCE9, u'b'};
  EXPECT_EQ(TextOfPath(PathOf(text)), text);
  EXPECT_EQ(PathOf(text).native().size(), text.size());
}

TEST(PathText, BytesAreUtf8WithLoneSurrogatesInIt) {
  const std::filesystem::path path = L"caf\u00e9 \U0001F600 \xD800!";
  EXPECT_EQ(BytesOfPath(path), "caf\xC3\xA9 \xF0\x9F\x98\x80 \xED\xA0\x80!");
  EXPECT_EQ(PathOf(std::string_view("caf\xC3\xA9 \xF0\x9F\x98\x80 \xED\xA0\x80!")), path);
  EXPECT_EQ(PathOf(std::string_view("a\xFF"
                                    "b"))
                .native(),
            L"a\uFFFDb");
}

TEST(PathText, EveryUnitComesBackThroughBytes) {
  for (unsigned unit = 1; unit <= 0xFFFF; ++unit) {
    const std::u16string text = {u'a', static_cast<char16_t>(unit), u'b'};
    ASSERT_EQ(TextOfPath(PathOf(BytesOfPath(PathOf(text)))), text) << unit;
  }
}

}  // namespace
}  // namespace velmora::platform
