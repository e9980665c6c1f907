#include "store/messaging/values/compressed_rtf.h"

#include <gtest/gtest.h>

#include <random>

#include "text/code_page.h"

namespace velmora::messaging {
namespace {

using text::CodePage;

std::string Chars(const Bytes& bytes) { return {reinterpret_cast<const char*>(bytes.data()), bytes.size()}; }

std::string FromHex(std::string_view hex) {
  std::string out;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
    out.push_back(static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16)));
  return out;
}

// A stream that another program made.
const std::string kStream =
    FromHex("2D0000002B0000004C5A4675F1C5C7A703000A007263706731323542320AF32068656C090020627705B06C647D0A800FA0");
constexpr std::string_view kText = "{\\rtf1\\ansi\\ansicpg1252\\pard hello world}\r\n";

TEST(CompressedRtf, DecodesAStreamOfAnotherProgram) { EXPECT_EQ(DecompressRtf(kStream), kText); }

TEST(CompressedRtf, ComesBackWhateverTheText) {
  std::mt19937 random(7);
  std::vector<std::string> texts = {
      "", "a", "{\\rtf1}", std::string(kText), std::string(5000, 'x'), std::string(4096, '\0')};
  std::string words;
  while (words.size() < 200000) words += "\\par word" + std::to_string(random() % 500) + " ";
  texts.push_back(words);
  std::string noise;
  while (noise.size() < 20000) noise.push_back(static_cast<char>(random()));
  texts.push_back(noise);
  for (const std::string& text : texts) {
    const Bytes stream = CompressRtf(text);
    EXPECT_EQ(DecompressRtf(Chars(stream)), text) << text.size() << " bytes";
  }
  EXPECT_LT(CompressRtf(words).size(), words.size() / 2);
}

TEST(CompressedRtf, HasAHeadThatTellsItsSizesAndSum) {
  const std::string stream = Chars(CompressRtf(kText));
  EXPECT_EQ(stream.substr(8, 4), "LZFu");
  EXPECT_EQ(static_cast<unsigned char>(stream[0]), stream.size() - 4);
  EXPECT_EQ(static_cast<unsigned char>(stream[4]), kText.size());
  EXPECT_EQ(Chars(StoreRtf(CodePage::Lossless().Decode(stream))), stream);  // sound by its own test
}

TEST(CompressedRtf, ReadsTheUncompressedForm) {
  const std::string stream = FromHex("10000000") + FromHex("04000000") + "MELA" + FromHex("00000000") + "{\\x}";
  EXPECT_EQ(DecompressRtf(stream), "{\\x}");
}

TEST(CompressedRtf, OfOtherBytesIsNone) {
  EXPECT_FALSE(DecompressRtf("{\\rtf1 plain text of some length}"));
  EXPECT_FALSE(DecompressRtf(""));
  EXPECT_FALSE(DecompressRtf(kStream.substr(0, 15)));
}

TEST(RtfBody, ThatIsAStreamAlreadyIsKeptAsItIs) {
  EXPECT_EQ(Chars(StoreRtf(CodePage::Lossless().Decode(kStream))), kStream);
  const std::string plain = FromHex("10000000") + FromHex("04000000") + "MELA" + FromHex("00000000") + "{\\x}";
  text::Text wide;
  for (std::size_t i = 0; i < plain.size(); i += 2) {
    wide.push_back(
        static_cast<char16_t>(static_cast<unsigned char>(plain[i]) | static_cast<unsigned char>(plain[i + 1]) << 8));
  }
  EXPECT_EQ(Chars(StoreRtf(wide)), plain);
}

TEST(RtfBody, ThatIsADamagedStreamIsMadeAnewFromWhatCanBeRead) {
  std::string wrongSum = kStream;
  wrongSum[12] = static_cast<char>(wrongSum[12] ^ 1);
  const std::string longer = kStream + "rest of the block";
  for (const std::string& stream : {wrongSum, longer}) {
    const std::string stored = Chars(StoreRtf(CodePage::Lossless().Decode(stream)));
    EXPECT_NE(stored, stream);
    EXPECT_EQ(DecompressRtf(stored), kText);
  }
  const std::string cut = Chars(StoreRtf(CodePage::Lossless().Decode(kStream.substr(0, 30))));
  const std::string read = DecompressRtf(cut).value_or("");
  ASSERT_FALSE(read.empty());
  EXPECT_TRUE(kText.starts_with(read)) << read;
  EXPECT_TRUE(StoreRtf(CodePage::Lossless().Decode(kStream.substr(0, 16))).empty());
}

TEST(RtfBody, ThatIsTextIsCompressedAndReadsBack) {
  const text::Text body = u"{\\rtf1\\ansi caf\u00e9 \u20ac}";
  const Bytes stored = StoreRtf(body);
  EXPECT_EQ(Chars(stored).substr(8, 4), "LZFu");
  EXPECT_EQ(RtfText(Chars(stored)), body);
  EXPECT_TRUE(StoreRtf(u"").empty());
}

TEST(RtfBody, WritesCharactersBeyondItsBytesAsEscapes) {
  EXPECT_EQ(RtfText(Chars(StoreRtf(u"{\u041f \u20ac}"))), u"{\\u1055? \u20ac}");
  EXPECT_EQ(RtfText(Chars(StoreRtf(u"{\U0001F600}"))), u"{\\u-10179?\\u-8704?}");
}

TEST(RtfBody, SurvivesAnyBytes) {
  std::mt19937 random(11);
  for (int round = 0; round < 2000; ++round) {
    std::string stream = kStream;
    for (int change = 0; change < 4; ++change)
      stream[16 + random() % (stream.size() - 16)] = static_cast<char>(random());
    stream.resize(16 + random() % (stream.size() - 15));
    const auto text = DecompressRtf(stream);
    ASSERT_TRUE(text);
    EXPECT_LE(text->size(), stream.size() * 9);
  }
}

}  // namespace
}  // namespace velmora::messaging
