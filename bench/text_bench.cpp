// Speed of turning texts from one form into another, in bytes of the source a second.
#include <benchmark/benchmark.h>

#include <string>
#include <string_view>

#include "bench/sample_text.h"
#include "text/code_page.h"
#include "text/text.h"
#include "text/utf8_check.h"

namespace velmora::text {
namespace {

constexpr std::size_t kUnits = 20000;  // of a long mail

enum Content : int { kLetters, kWords };  ///< ASCII alone, or words of many scripts

Text Sample(Content content) {
  bench::Dice dice(1);
  Text text = bench::SampleText().Text(dice, kUnits);
  if (content == kLetters) {
    for (char16_t& unit : text) unit = unit < 0x80 ? unit : u'x';
  }
  return text;
}

template <class Step>
void Measure(benchmark::State& state, std::size_t bytes, Step step) {
  for (auto _ : state) benchmark::DoNotOptimize(step().data());
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

void Utf16ToUtf8(benchmark::State& state, Content content) {
  const Text text = Sample(content);
  Measure(state, text.size() * 2, [&] { return ToUtf8(text); });
}
BENCHMARK_CAPTURE(Utf16ToUtf8, letters, kLetters);
BENCHMARK_CAPTURE(Utf16ToUtf8, words, kWords);

void Utf8ToUtf16(benchmark::State& state, Content content) {
  const std::string bytes = ToUtf8(Sample(content));
  Measure(state, bytes.size(), [&] { return FromUtf8(bytes); });
}
BENCHMARK_CAPTURE(Utf8ToUtf16, letters, kLetters);
BENCHMARK_CAPTURE(Utf8ToUtf16, words, kWords);

/// Character after character, or as fast as this processor can.
void IsUtf8(benchmark::State& state, Content content, bool isFastest) {
  const std::string bytes = ToUtf8(Sample(content));
  const Utf8Check check = isFastest ? Utf8Checks().back() : Utf8Checks().front();
  for (auto _ : state) benchmark::DoNotOptimize(check(bytes));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}
BENCHMARK_CAPTURE(IsUtf8, letters, kLetters, true);
BENCHMARK_CAPTURE(IsUtf8, words, kWords, true);
BENCHMARK_CAPTURE(IsUtf8, words_one_by_one, kWords, false);

/// The bytes are those of the words in UTF-8: what an HTML body has, whatever the page that they are read by.
void Decode(benchmark::State& state, std::string_view page) {
  const CodePage codePage = *CodePage::Find(page);
  const std::string bytes = ToUtf8(Sample(kWords));
  Measure(state, bytes.size(), [&] { return codePage.Decode(bytes); });
}
BENCHMARK_CAPTURE(Decode, windows_1252, "windows-1252");
BENCHMARK_CAPTURE(Decode, utf_8, "utf-8");
BENCHMARK_CAPTURE(Decode, shift_jis, "shift_jis");

void Encode(benchmark::State& state, std::string_view page) {
  const CodePage codePage = *CodePage::Find(page);
  const Text text = codePage.Decode(ToUtf8(Sample(kWords)));
  Measure(state, text.size() * 2, [&] { return codePage.Encode(text); });
}
BENCHMARK_CAPTURE(Encode, windows_1252, "windows-1252");
BENCHMARK_CAPTURE(Encode, utf_8, "utf-8");
BENCHMARK_CAPTURE(Encode, shift_jis, "shift_jis");

void Lossless(benchmark::State& state) {
  const std::string bytes = ToUtf8(Sample(kWords));
  Measure(state, bytes.size(), [&] { return CodePage::Lossless().Encode(CodePage::Lossless().Decode(bytes)); });
}
BENCHMARK(Lossless);

}  // namespace
}  // namespace velmora::text
