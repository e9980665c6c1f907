#include "text/utf8_check.h"

#include <gtest/gtest.h>
#include <unicode/utf8.h>

#include <random>
#include <string>
#include <vector>

namespace velmora::text {
namespace {

using namespace std::string_literals;

/// What the library of the Unicode standard says of it, one character after the other.
bool IsRight(const std::string& bytes) {
  const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
  for (std::size_t at = 0; at < bytes.size();) {
    UChar32 c = 0;
    U8_NEXT(data, at, bytes.size(), c);
    if (c < 0) return false;
  }
  return true;
}

/// By the way of checking.
class Utf8CheckTest : public testing::TestWithParam<Utf8Check> {
 protected:
  bool Says(const std::string& bytes) const { return GetParam()(bytes); }

  /// Whether that is said of the bytes wherever they stand in a text that is right.
  testing::AssertionResult IsSaidEverywhere(bool expected, const std::string& bytes) const {
    for (std::size_t ahead = 0; ahead < 70; ++ahead) {
      for (const std::size_t behind : {0, 1, 2, 3, 31, 32, 40}) {
        if (Says(std::string(ahead, 'a') + bytes + std::string(behind, 'b')) != expected) {
          return testing::AssertionFailure() << testing::PrintToString(bytes) << " behind " << ahead << ", ahead of "
                                             << behind << " bytes: not " << expected;
        }
      }
    }
    return testing::AssertionSuccess();
  }
};

INSTANTIATE_TEST_SUITE_P(Ways, Utf8CheckTest, testing::ValuesIn(Utf8Checks().begin(), Utf8Checks().end()));

TEST_P(Utf8CheckTest, NothingAndAsciiAreRight) {
  EXPECT_TRUE(Says(""));
  EXPECT_TRUE(Says("\0"s));
  EXPECT_TRUE(IsSaidEverywhere(true, "\x7F"));
}

TEST_P(Utf8CheckTest, TheFirstAndTheLastCharacterOfEachLengthAreRightAndWhatLiesBeyondIsNot) {
  for (const char* right : {"\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBF",
                            "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_TRUE(IsSaidEverywhere(true, right));
  }
  for (const char* wrong : {"\xC1\xBF", "\xC0\x80", "\xE0\x9F\xBF", "\xE0\x80\x80", "\xF0\x8F\xBF\xBF",
                            "\xF0\x80\x80\x80", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xF8\x88\x80\x80\x80"}) {
    EXPECT_TRUE(IsSaidEverywhere(false, wrong));
  }
}

TEST_P(Utf8CheckTest, SurrogatesAreWrong) {
  EXPECT_TRUE(IsSaidEverywhere(false, "\xED\xA0\x80"));
  EXPECT_TRUE(IsSaidEverywhere(false, "\xED\xBF\xBF"));
  EXPECT_TRUE(IsSaidEverywhere(false, "\xED\xA0\x80\xED\xB0\x80"));
}

TEST_P(Utf8CheckTest, ACharacterThatIsCutOffIsWrong) {
  for (const std::string whole : {"\xC3\xA4", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"}) {
    EXPECT_TRUE(IsSaidEverywhere(true, whole));
    for (std::size_t length = 1; length < whole.size(); ++length) {
      EXPECT_TRUE(IsSaidEverywhere(false, whole.substr(0, length)));
      EXPECT_TRUE(IsSaidEverywhere(false, whole.substr(length)));
      EXPECT_TRUE(IsSaidEverywhere(false, whole.substr(0, length) + whole));
    }
    EXPECT_TRUE(IsSaidEverywhere(false, whole + "\x80")) << "one too many";
  }
}

TEST_P(Utf8CheckTest, AllPairsOfBytesAreTakenAsTheUnicodeStandardTakesThem) {
  std::string text(40, 'a');
  for (const std::string behind : {"", "\x80", "\x80\x80", "\xBF\x80\x80"}) {
    for (int pair = 0; pair < 0x10000; ++pair) {
      text.resize(20);
      text += static_cast<char>(pair >> 8);
      text += static_cast<char>(pair);
      text += behind + std::string(20, 'z');
      ASSERT_EQ(Says(text), IsRight(text)) << std::hex << pair << " and " << behind.size() << " more";
    }
  }
}

TEST_P(Utf8CheckTest, TextsOfAnyCharactersAreRightAndOneChangedByteIsMostlySeen) {
  constexpr int kTexts = 3000;
  std::mt19937 any(1);
  int changedButRight = 0;
  for (int i = 0; i < kTexts; ++i) {
    std::string text;
    const std::size_t size = any() % 300 + 1;
    while (text.size() < size) {
      constexpr UChar32 kMost[] = {0x7F, 0x7F, 0x7FF, 0xFFFF, 0x10FFFF};
      const auto c = static_cast<UChar32>(any() % static_cast<unsigned>(kMost[any() % 5] + 1));
      if (U_IS_SURROGATE(c)) continue;
      char bytes[4];
      std::size_t length = 0;
      U8_APPEND_UNSAFE(bytes, length, c);
      text.append(bytes, length);
    }
    ASSERT_TRUE(Says(text)) << testing::PrintToString(text);
    text[any() % text.size()] = static_cast<char>(any());
    ASSERT_EQ(Says(text), IsRight(text)) << testing::PrintToString(text);
    changedButRight += Says(text) ? 1 : 0;
  }
  EXPECT_GT(changedButRight, 0);
  EXPECT_LT(changedButRight, kTexts / 2);
}

}  // namespace
}  // namespace velmora::text
