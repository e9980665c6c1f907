#include "bench/sample_text.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace velmora::bench {
namespace {

constexpr std::size_t kPoolUnits = std::size_t{1} << 20;

constexpr std::array<std::u16string_view, 64> kWords = {
    u"the",      u"of",       u"and",     u"to",       u"in",       u"that",      u"with",    u"for",
    u"meeting",  u"report",   u"budget",  u"invoice",  u"customer", u"delivery",  u"project", u"deadline",
    u"Monday",   u"Thursday", u"morning", u"tomorrow", u"please",   u"attached",  u"review",  u"confirm",
    u"contract", u"office",   u"travel",  u"schedule", u"team",     u"figures",   u"quarter", u"summary",
    u"Zürich",   u"Straße",   u"größere", u"café",     u"résumé",   u"señor",     u"naïve",   u"Łódź",
    u"we",       u"will",     u"have",    u"can",      u"need",     u"should",    u"would",   u"before",
    u"server",   u"backup",   u"account", u"password", u"release",  u"version",   u"error",   u"update",
    u"Москва",   u"отчёт",    u"東京",    u"会議",     u"regards",  u"sincerely", u"thanks",  u"question"};

std::string ToUtf8(std::u16string_view text) {
  std::string out;
  for (const char16_t unit : text) {
    const unsigned code = unit;
    if (code < 0x80) {
      out.push_back(static_cast<char>(code));
    } else if (code < 0x800) {
      out.push_back(static_cast<char>(0xC0 | code >> 6));
      out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xE0 | code >> 12));
      out.push_back(static_cast<char>(0x80 | (code >> 6 & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    }
  }
  return out;
}

}  // namespace

std::uint64_t Dice::Next() {
  state_ += 0x9E3779B97F4A7C15U;
  std::uint64_t mixed = state_;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
  return mixed ^ (mixed >> 31);
}

std::size_t Dice::Between(std::size_t low, std::size_t high) { return low + Next() % (high - low + 1); }

SampleText::SampleText() : noise_(forge::Noise(kPoolUnits, 1)) {
  Dice dice(1);
  while (text_.size() < kPoolUnits) {
    const std::size_t words = dice.Between(4, 18);
    for (std::size_t i = 0; i < words; ++i) {
      if (i > 0) text_ += dice.Chance(10) ? u", " : u" ";
      text_ += kWords[dice.Between(0, kWords.size() - 1)];
    }
    text_ += dice.Chance(20) ? u".\r\n\r\n" : u". ";
  }
  std::u16string page;
  for (std::size_t at = 0; at + 800 < text_.size() / 2; at += 400) {
    page += u"<p class=MsoNormal><span style='font-size:11.0pt;color:#1F497D'>" + text_.substr(at, 400) +
            u"</span></p>\r\n";
  }
  paragraphs_ = ToUtf8(page);
}

std::u16string SampleText::Text(Dice& dice, std::size_t units) const {
  std::u16string out;
  while (out.size() < units) {
    const std::size_t start = dice.Step(0, text_.size() - 1);
    out += text_.substr(start, units - out.size());
  }
  return out;
}

std::u16string SampleText::Line(Dice& dice) const {
  std::u16string line;
  for (std::size_t words = dice.Between(2, 8); words > 0; --words) {
    if (!line.empty()) line += u' ';
    line += kWords[dice.Between(0, kWords.size() - 1)];
  }
  return line;
}

forge::Bytes SampleText::Html(Dice& dice, std::size_t bytes) const {
  constexpr std::string_view kHead =
      "<html><head><meta http-equiv=\"Content-Type\" content=\"text/html; charset=utf-8\"></head><body>\r\n";
  constexpr std::string_view kParagraph = "<p ";
  // The cut begins at a paragraph; where it ends within one, a browser closes it.
  const std::size_t wanted = std::min(bytes, paragraphs_.size() / 2);
  std::size_t start = paragraphs_.find(kParagraph, dice.Step(0, paragraphs_.size() - wanted - 2000));
  std::size_t end = paragraphs_.find(kParagraph, start + wanted);
  if (end == std::string::npos) end = paragraphs_.size();
  return forge::ToBytes(std::string(kHead) + paragraphs_.substr(start, end - start) + "</body></html>\r\n");
}

forge::Bytes SampleText::Binary(Dice& dice, std::size_t bytes) const {
  forge::Bytes out;
  while (out.size() < bytes) {
    const std::size_t start = dice.Step(0, noise_.size() - 1);
    forge::Append(out, std::span(noise_).subspan(start, std::min(bytes - out.size(), noise_.size() - start)));
  }
  return out;
}

}  // namespace velmora::bench
