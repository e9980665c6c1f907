// Texts are converted in runs. Whatever stands in them, the result is that of one character after another, which the
// functions here give.
#include <gtest/gtest.h>
#include <unicode/ucnv.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "text/code_page.h"
#include "text/text.h"

namespace velmora::text {
namespace {

constexpr int kRounds = 4000;

/// Texts in which plain runs of every length meet what is not plain, at every place of a step.
class TextMaker {
 public:
  std::string Bytes() {
    static const std::string kSpecial[] = {"\x80",
                                           "\x9F",
                                           "\xA0",
                                           "\xFF",
                                           "\xC3\xA9",
                                           "\xC3",
                                           "\xC0\x80",
                                           "\xE6\x97\xA5",
                                           "\xE6\x97",
                                           "\xED\xA0\x80",
                                           "\xEF\xBF\xBD",
                                           "\xEF\xBF",
                                           "\xF0\x9F\x98\x80",
                                           "\xF0\x9F\x98",
                                           "\xF4\x90\x80\x80",
                                           "\xF8\x88",
                                           "\x81\x8D\x8F",
                                           "\xD0\x9C\xD0\xBE",
                                           "\x93\xFA\x96\x7B",
                                           "\x1B$B",
                                           "\x0E",
                                           std::string(1, '\0')};
    std::string out;
    for (std::size_t parts = Below(8); parts > 0; --parts) {
      for (std::size_t plain = Below(40); plain > 0; --plain) out.push_back(static_cast<char>(0x20 + Below(0x5F)));
      for (std::size_t special = Below(4); special > 0; --special) out += kSpecial[Below(std::size(kSpecial))];
      if (Below(4) == 0) out.push_back(static_cast<char>(Below(256)));
    }
    return out;
  }

  Text Units() {
    static const Text kSpecial[] = {u"\u0080",       u"\u00A0",       u"\u00FF",       u"\u0100",       u"\u20AC",
                                    u"\u0152",       u"\u2122",       u"\u2123",       u"\u07FF",       u"\u0800",
                                    u"\uFFFD",       u"\uFFFF",       u"\U0001F600",   Text(1, 0xD800), Text(1, 0xDBFF),
                                    Text(1, 0xDC00), Text(1, 0xDC80), Text(1, 0xDCFF), Text(1, 0xDFFF), Text(1, 0)};
    Text out;
    for (std::size_t parts = Below(8); parts > 0; --parts) {
      for (std::size_t plain = Below(40); plain > 0; --plain) out.push_back(static_cast<char16_t>(0x20 + Below(0x5F)));
      for (std::size_t special = Below(4); special > 0; --special) out += kSpecial[Below(std::size(kSpecial))];
      if (Below(4) == 0) out.push_back(static_cast<char16_t>(Below(0x10000)));
    }
    return out;
  }

 private:
  std::size_t Below(std::size_t end) { return random_() % end; }
  std::mt19937 random_{20};
};

/// The sequences of UTF-8 one after another: -1 for each byte that is part of none.
std::vector<UChar32> SequencesOf(const std::string& bytes) {
  const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.data());
  std::vector<UChar32> sequences;
  for (std::size_t at = 0; at < bytes.size();) {
    UChar32 c = 0;
    std::size_t next = at;
    U8_NEXT(data, next, bytes.size(), c);
    sequences.insert(sequences.end(), c < 0 ? next - at : 1, c < 0 ? -1 : c);
    at = next;
  }
  return sequences;
}

void Append(Text& out, UChar32 c) {
  char16_t units[2];
  std::size_t length = 0;
  U16_APPEND_UNSAFE(units, length, c);
  out.append(units, length);
}

Text SlowFromUtf8(const std::string& bytes) {
  Text out;
  bool broken = false;
  for (const UChar32 c : SequencesOf(bytes)) {
    if (c >= 0 || !broken) Append(out, c < 0 ? 0xFFFD : c);
    broken = c < 0;
  }
  return out;
}

std::string SlowToUtf8(const Text& text) {
  std::string out;
  for (std::size_t i = 0; i < text.size();) {
    UChar32 c = 0;
    U16_NEXT(text.data(), i, text.size(), c);
    if (U_IS_SURROGATE(c)) c = 0xFFFD;
    std::uint8_t sequence[4];
    std::size_t length = 0;
    U8_APPEND_UNSAFE(sequence, length, c);
    out.append(sequence, sequence + length);
  }
  return out;
}

/// The 256 characters of the lossless page, each decoded by itself.
Text LosslessCharacters() {
  Text all;
  for (int b = 0; b < 256; ++b) all += CodePage::Lossless().Decode(std::string(1, static_cast<char>(b)));
  return all;
}

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

Converter Fresh(const char* name) {
  UErrorCode status = U_ZERO_ERROR;
  Converter converter(ucnv_open(name, &status), ucnv_close);
  ucnv_setSubstChars(converter.get(), "?", 1, &status);
  return converter;
}

Text SlowDecode(const char* page, const std::string& bytes) {
  const Converter converter = Fresh(page);
  Text out(4 * bytes.size() + 64, u'\0');
  UErrorCode status = U_ZERO_ERROR;
  const char* from = bytes.data();
  char16_t* to = out.data();
  ucnv_toUnicode(converter.get(), &to, to + out.size(), &from, from + bytes.size(), nullptr, true, &status);
  out.resize(static_cast<std::size_t>(to - out.data()));
  return out;
}

std::string SlowEncode(const char* page, const Text& text) {
  const Converter converter = Fresh(page);
  std::string out(16 * text.size() + 64, '\0');
  UErrorCode status = U_ZERO_ERROR;
  const char16_t* from = text.data();
  char* to = out.data();
  ucnv_fromUnicode(converter.get(), &to, to + out.size(), &from, from + text.size(), nullptr, true, &status);
  out.resize(static_cast<std::size_t>(to - out.data()));
  return out;
}

TEST(BulkConversion, FromUtf8TakesAnyBytesAsOneAfterAnother) {
  TextMaker maker;
  for (int round = 0; round < kRounds; ++round) {
    const std::string bytes = maker.Bytes();
    ASSERT_EQ(FromUtf8(bytes), SlowFromUtf8(bytes)) << testing::PrintToString(bytes);
  }
}

TEST(BulkConversion, ToUtf8TakesAnyUnitsAsOneAfterAnother) {
  TextMaker maker;
  for (int round = 0; round < kRounds; ++round) {
    const Text text = maker.Units();
    ASSERT_EQ(ToUtf8(text), SlowToUtf8(text)) << testing::PrintToString(text);
  }
}

TEST(BulkConversion, TellsUtf8AndAsciiAsOneAfterAnother) {
  TextMaker maker;
  int utf8 = 0;
  int ascii = 0;
  for (int round = 0; round < kRounds; ++round) {
    const std::string bytes = maker.Bytes();
    bool isUtf8 = true;
    bool isAscii = true;
    for (const UChar32 c : SequencesOf(bytes)) {
      isUtf8 &= c >= 0;
      isAscii &= c >= 0 && c < 0x80;
    }
    ASSERT_EQ(IsUtf8(bytes), isUtf8) << testing::PrintToString(bytes);
    ASSERT_EQ(IsAscii(bytes), isAscii) << testing::PrintToString(bytes);
    ASSERT_EQ(IsAscii(FromUtf8(bytes)), isAscii) << testing::PrintToString(bytes);
    utf8 += isUtf8;
    ascii += isAscii;
  }
  EXPECT_GT(ascii, kRounds / 100);
  EXPECT_GT(utf8, ascii);
  EXPECT_LT(utf8, kRounds);
}

TEST(BulkConversion, TheLosslessPageTakesAnyTextAsOneCharacterAfterAnother) {
  TextMaker maker;
  const Text characters = LosslessCharacters();
  ASSERT_EQ(characters.size(), 256u);
  for (int round = 0; round < kRounds; ++round) {
    const std::string bytes = maker.Bytes();
    Text decoded;
    for (const char byte : bytes) decoded.push_back(characters[static_cast<unsigned char>(byte)]);
    ASSERT_EQ(CodePage::Lossless().Decode(bytes), decoded) << testing::PrintToString(bytes);
    ASSERT_EQ(CodePage::Lossless().Encode(decoded), bytes) << testing::PrintToString(bytes);

    const Text text = maker.Units();
    std::string encoded;
    for (const char16_t unit : text) {
      const std::size_t byte = characters.find(unit);
      if (byte != Text::npos) encoded.push_back(static_cast<char>(byte));
      if (byte == Text::npos && !U16_IS_TRAIL(unit)) encoded.push_back('?');
    }
    ASSERT_EQ(CodePage::Lossless().Encode(text), encoded) << testing::PrintToString(text);
  }
}

// Pages that shift, that begin with a mark, whose letters stand elsewhere: all that the library has. A page keeps its
// converter, so what one text leaves in it must not reach the next.
TEST(BulkConversion, EveryPageTakesAnyTextAsAFreshConverterDoes) {
  int pages = 0;
  for (std::int32_t i = 0; i < ucnv_countAvailable(); ++i) {
    const char* name = ucnv_getAvailableName(i);
    const auto page = CodePage::Find(name);
    ASSERT_TRUE(page) << name;
    if (page->WindowsNumber() == 1252 && page->Decode("\x81") == u"\x81")
      continue;  // what has no number is the lossless page
    ++pages;
    TextMaker maker;
    for (int round = 0; round < 40; ++round) {
      const std::string bytes = maker.Bytes();
      ASSERT_EQ(page->Decode(bytes), SlowDecode(name, bytes)) << name << " " << testing::PrintToString(bytes);
      const Text text = maker.Units();
      ASSERT_EQ(page->Encode(text), SlowEncode(name, text)) << name << " " << testing::PrintToString(text);
      const std::string ascii(static_cast<std::size_t>(round), 'a');
      ASSERT_EQ(page->Decode(ascii), SlowDecode(name, ascii)) << name;
      ASSERT_EQ(page->Encode(Text(ascii.begin(), ascii.end())), SlowEncode(name, Text(ascii.begin(), ascii.end())))
          << name;
    }
  }
  EXPECT_GT(pages, 50);
}

TEST(BulkConversion, APageForgetsToKeepAllOnceThatTextIsDone) {
  const auto page = CodePage::Find("windows-1253");
  ASSERT_TRUE(page);
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(page->Decode("\xE1\xFF"), u"\u03b1\ufffd");
    std::uint64_t undefined = 0;
    EXPECT_EQ(page->DecodeKeepingAll("\xE1\xFF\xE1", undefined), u"\u03b1\u00ff\u03b1");
    EXPECT_EQ(undefined, 1u);
  }
}

TEST(BulkConversion, ThreadsShareAPage) {
  const auto page = CodePage::Find("shift_jis");
  ASSERT_TRUE(page);
  std::vector<int> right(4, 0);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < right.size(); ++i) {
    threads.emplace_back([&, i] {
      for (int round = 0; round < 500; ++round) {
        right[i] += CodePage::Find("shift_jis")->Decode("\x93\xFA\x96\x7B") == u"\u65e5\u672c";
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const int count : right) EXPECT_EQ(count, 500);
}

}  // namespace
}  // namespace velmora::text
