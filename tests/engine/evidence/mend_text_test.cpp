// Which CR a copy in text mode lost.
#include "engine/evidence/mend_text.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "forge/bytes.h"
#include "store/format/checksum.h"

namespace velmora::engine {
namespace {

/// The places of the CR of a text that its copy lost, as they are told from the copy.
std::optional<std::vector<std::size_t>> Mended(const std::string& text) {
  const std::string copied = std::regex_replace(text, std::regex("\r\n"), "\n");
  return MendText(forge::ToBytes(copied), text.size() - copied.size(), WeakCrc(forge::ToBytes(text)));
}

using Places = std::vector<std::size_t>;

std::string Repeated(const std::string& line, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += line;
  return text;
}

TEST(MendText, PutsACrAheadOfEachLfWhereAsManyAreGone) {
  EXPECT_EQ(Mended("a\r\nbc\r\n"), (Places{1, 5}));
  EXPECT_EQ(Mended("\r\n\r\n"), (Places{0, 2}));
  EXPECT_EQ(Mended(Repeated("x\r\n", 4000))->size(), 4000u);
}

TEST(MendText, TellsTheFewThatAreGoneAmongManyLf) {
  EXPECT_EQ(Mended("a\nb\r\nc\nd\n"), (Places{3}));
  EXPECT_EQ(Mended(Repeated("ab\n", 30) + "\r\n" + Repeated("c\n", 50) + "x\r\n\n"), (Places{90, 193}));
  EXPECT_EQ(Mended("\r\n\n\r\n\r\n" + Repeated("c\n", 30)), (Places{0, 3, 5}));
}

TEST(MendText, TellsTheFewLfThatHadNone) {
  EXPECT_EQ(Mended("a\r\nb\nc\r\nd\r\n"), (Places{1, 6, 9}));
  Places places;
  for (std::size_t i = 0; i < 300; ++i) places.push_back(3 * i + (i < 100 ? 1 : 3));
  EXPECT_EQ(Mended(Repeated("x\r\n", 100) + "y\n" + Repeated("x\r\n", 200) + "\n"), places);
}

TEST(MendText, TellsNothingWhereNoWayHasTheSum) {
  const auto copied = forge::ToBytes("a\nb\nc\n");
  EXPECT_EQ(MendText(copied, 2, WeakCrc(forge::ToBytes("a\r\nb\nc\r\n")) ^ 1), std::nullopt);
  EXPECT_EQ(MendText(copied, 4, 0), std::nullopt) << "more than there are LF";
  EXPECT_EQ(MendText({}, 1, 0), std::nullopt);
}

TEST(MendText, TriesNotSoManyWaysThatOneMayFitByChance) {
  EXPECT_EQ(Mended(Repeated("x\r\ny\n", 8))->size(), 8u) << "12,870 ways";
  EXPECT_EQ(Mended(Repeated("x\r\ny\n", 10)), std::nullopt) << "184,756 ways";
}

}  // namespace
}  // namespace velmora::engine
