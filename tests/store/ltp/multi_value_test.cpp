#include "store/ltp/multi_value.h"

#include <gtest/gtest.h>

#include "store/support/test_files.h"

namespace velmora::ltp {
namespace {

TEST(MultiValue, StandsBehindATableOfOffsets) {
  const std::vector<text::Text> texts{u"ab", u"", u"c"};
  EXPECT_EQ(EncodeMultiple(texts), test::Bytes({3,   0, 0,   0, 16,  0, 0, 0, 20, 0, 0, 0, 20, 0, 0, 0,  //
                                                'a', 0, 'b', 0, 'c', 0}));
}

TEST(MultiValue, OfNoElementsHasNoBytes) {
  EXPECT_TRUE(EncodeMultiple(std::span<const text::Text>()).empty());
  EXPECT_TRUE(DecodeMultiple({})->empty());
}

TEST(MultiValue, ComesBack) {
  const std::vector<std::byte> first = test::Noise(5);
  const std::vector<std::byte> last = test::Noise(300);
  const std::vector<std::span<const std::byte>> elements{first, {}, last};
  const std::vector<std::byte> value = EncodeMultiple(elements);
  const auto decoded = DecodeMultiple(value).value();
  ASSERT_EQ(decoded.size(), 3u);
  EXPECT_TRUE(std::ranges::equal(decoded[0], first));
  EXPECT_TRUE(decoded[1].empty());
  EXPECT_TRUE(std::ranges::equal(decoded[2], last));
}

TEST(MultiValue, WhoseOffsetsLeaveItIsRefused) {
  EXPECT_FALSE(DecodeMultiple(test::Bytes({1, 0})));
  EXPECT_FALSE(DecodeMultiple(test::Bytes({2, 0, 0, 0, 12, 0, 0, 0})));
  EXPECT_FALSE(DecodeMultiple(test::Bytes({0xFF, 0xFF, 0xFF, 0xFF, 12, 0, 0, 0})));
  EXPECT_FALSE(DecodeMultiple(test::Bytes({1, 0, 0, 0, 9, 0, 0, 0})));
  EXPECT_FALSE(DecodeMultiple(test::Bytes({2, 0, 0, 0, 14, 0, 0, 0, 12, 0, 0, 0, 1, 1})));
}

TEST(MultiValue, TextGoesToBytesAndBackWithLoneSurrogates) {
  const text::Text text{u'a', char16_t{0xD800}, u'\0', char16_t{0xFFFF}};
  EXPECT_EQ(EncodeText(text), test::Bytes({'a', 0, 0, 0xD8, 0, 0, 0xFF, 0xFF}));
  EXPECT_EQ(DecodeText(EncodeText(text)), text);
  EXPECT_EQ(DecodeText(test::Bytes({'a', 0, 'b'})), u"a");
}

}  // namespace
}  // namespace velmora::ltp
