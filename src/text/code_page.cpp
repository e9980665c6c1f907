#include "text/code_page.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>

#include <array>
#include <cstdlib>
#include <functional>
#include <map>
#include <mutex>
#include <vector>

#include "text/runs.h"

namespace velmora::text {

struct ConverterCloser {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, ConverterCloser>;

namespace {

// Windows-1252 differs from the first 256 code points in this row alone; its five undefined bytes (81, 8D,
// 8F, 90, 9D) stay the C1 control codes of the same value.
constexpr std::array<char16_t, 32> kRow80 = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                             0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                             0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                             0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

/// Mails name their pages each anew, and damaged ones name what no other does.
constexpr std::size_t kMostKnownNames = 64;

struct WindowsName {
  const char* name;
  int number;
};

// Names of the pages that stores are made with, where the canonical name does not end in the number.
constexpr WindowsName kWindowsNames[] = {
    {"UTF-8", 65001},  {"Shift_JIS", 932},  {"GBK", 936},     {"GB2312", 936},    {"EUC-KR", 949},   {"Big5", 950},
    {"KOI8-R", 20866}, {"US-ASCII", 20127}, {"TIS-620", 874}, {"GB18030", 54936}, {"EUC-JP", 51932}, {"KOI8-U", 21866},
};

Converter Open(const std::string& name) {
  UErrorCode status = U_ZERO_ERROR;
  Converter converter(ucnv_open(name.c_str(), &status));
  if (U_FAILURE(status)) return nullptr;
  constexpr char kQuestionMark[] = "?";
  ucnv_setSubstChars(converter.get(), kQuestionMark, 1, &status);
  return converter;
}

constexpr std::array<char16_t, 256> kLosslessUnits = [] {
  std::array<char16_t, 256> units{};
  for (std::size_t i = 0; i < units.size(); ++i) units[i] = static_cast<char16_t>(i);
  for (std::size_t i = 0; i < kRow80.size(); ++i) units[0x80 + i] = kRow80[i];
  return units;
}();
constexpr char16_t kFirstAboveLatin1 = 0x0152;  // of row 80
constexpr char16_t kLastAboveLatin1 = 0x2122;

char16_t LosslessUnit(char byte) { return kLosslessUnits[static_cast<unsigned char>(byte)]; }

Text DecodeLossless(std::string_view bytes) {
  const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
  const auto isInRow80 = [](unsigned char byte) { return static_cast<unsigned char>((byte & 0xE0) == 0x80); };
  Text out(bytes.size(), u'\0');
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t run = PlainRun(data + at, bytes.size() - at, isInRow80);
    CopyUnits(data + at, run, out.data() + at);
    for (at += run; at < bytes.size() && isInRow80(data[at]) != 0; ++at) out[at] = kLosslessUnits[data[at]];
  }
  return out;
}

std::string EncodeLossless(TextView text) {
  const auto isNoByte = [](char16_t unit) {
    return static_cast<char16_t>((unit & 0xFF00) | static_cast<char16_t>((unit & 0xE0) == 0x80));
  };
  std::string out(text.size(), '\0');
  char* end = out.data();
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t run = PlainRun(text.data() + at, text.size() - at, isNoByte);
    CopyUnits(text.data() + at, run, end);
    end += run;
    for (at += run; at < text.size() && isNoByte(text[at]) != 0; ++at) {
      const char16_t unit = text[at];
      std::size_t i = unit < 0x100 || (unit >= kFirstAboveLatin1 && unit <= kLastAboveLatin1) ? 0 : kRow80.size();
      while (i < kRow80.size() && kRow80[i] != unit) ++i;
      if (i < kRow80.size()) {
        *end++ = static_cast<char>(0x80 + i);
      } else if (unit < 0xDC00 || unit > 0xDFFF) {
        *end++ = '?';  // one mark a character: the trailing surrogate of a pair adds none
      }
    }
  }
  out.resize(static_cast<std::size_t>(end - out.data()));
  return out;
}

/// What the converter calls for bytes that its page does not define: writes them as the lossless page has them, and
/// counts them in the number that `context` points at.
void U_CALLCONV KeepUndefined(const void* context, UConverterToUnicodeArgs* args, const char* bytes,
                              std::int32_t length, UConverterCallbackReason reason, UErrorCode* status) {
  if (reason > UCNV_IRREGULAR) return;  // the converter is reset or closed
  *status = U_ZERO_ERROR;
  for (std::int32_t i = 0; i < length; ++i) {
    const char16_t unit = LosslessUnit(bytes[i]);
    ucnv_cbToUWriteUChars(args, &unit, 1, 0, status);
  }
  *static_cast<std::uint64_t*>(const_cast<void*>(context)) += static_cast<std::uint64_t>(length);
}

}  // namespace

/// Opening a converter costs as much as a text of some hundred characters, so they are kept for the next text.
struct CodePage::Tables {
  std::string name;     // as it was asked for
  std::string icuName;  // empty: the lossless page, which needs no converter
  int number = 1252;
  bool keepsAscii = true;  // either way, each ASCII character is its own byte, whatever stands before it

  std::mutex mutex;
  std::vector<Converter> idle;
};

/// A converter of the page in its first state, given back at the end; null where there is none.
class CodePage::Lent {
 public:
  explicit Lent(Tables& tables) : tables_(tables) {
    {
      const std::scoped_lock lock(tables_.mutex);
      if (!tables_.idle.empty()) {
        converter_ = std::move(tables_.idle.back());
        tables_.idle.pop_back();
      }
    }
    if (converter_ == nullptr) converter_ = Open(tables_.icuName);
  }
  ~Lent() {
    if (converter_ == nullptr) return;
    ucnv_reset(converter_.get());
    const std::scoped_lock lock(tables_.mutex);
    tables_.idle.push_back(std::move(converter_));
  }
  Lent(const Lent&) = delete;
  Lent& operator=(const Lent&) = delete;

  UConverter* Get() const { return converter_.get(); }

 private:
  Tables& tables_;
  Converter converter_;
};

namespace {

/// All of `in`, in a buffer of `room` characters at first, converted by a step of the library (which takes the ends of
/// what is written and of what is read).
template <class Out, class In, class Step>
Out ConvertAll(In in, std::size_t room, Step step) {
  Out out(room, 0);
  auto* source = in.data();
  std::size_t used = 0;
  for (;;) {
    UErrorCode status = U_ZERO_ERROR;
    auto* target = out.data() + used;
    step(&target, out.data() + out.size(), &source, in.data() + in.size(), &status);
    used = static_cast<std::size_t>(target - out.data());
    if (status != U_BUFFER_OVERFLOW_ERROR) break;
    out.resize(out.size() * 2 + 16);
  }
  out.resize(used);
  return out;
}

/// Bytes to units, the converter being in its first state.
Text DecodeBy(UConverter* converter, std::string_view bytes) {
  return ConvertAll<Text>(bytes, bytes.size(), [&](auto target, auto end, auto source, auto sourceEnd, auto status) {
    ucnv_toUnicode(converter, target, end, source, sourceEnd, nullptr, true, status);
  });
}

std::string EncodeBy(UConverter* converter, TextView text) {
  const std::size_t room = text.size() * 2 + 16;
  return ConvertAll<std::string>(text, room, [&](auto target, auto end, auto source, auto sourceEnd, auto status) {
    ucnv_fromUnicode(converter, target, end, source, sourceEnd, nullptr, true, status);
  });
}

/// A page that shifts, or begins with a mark, shows it at one of these characters alone.
bool KeepsAscii(UConverter* converter) {
  for (char16_t unit = 0; unit < 0x80; ++unit) {
    const char byte = static_cast<char>(unit);
    ucnv_reset(converter);
    if (DecodeBy(converter, {&byte, 1}) != TextView(&unit, 1)) return false;
    ucnv_reset(converter);
    if (EncodeBy(converter, {&unit, 1}) != std::string_view(&byte, 1)) return false;
  }
  return true;
}

/// The page's aliases tell its number: "windows-1251", "ISO-8859-2", or a name of the table above.
int NumberOf(const Converter& converter) {
  constexpr std::string_view kWindows = "windows-";
  constexpr std::string_view kIso = "ISO-8859-";
  UErrorCode status = U_ZERO_ERROR;
  const char* canonical = ucnv_getName(converter.get(), &status);
  const std::uint16_t count = ucnv_countAliases(canonical, &status);
  for (std::uint16_t i = 0; i < count; ++i) {
    const char* alias = ucnv_getAlias(canonical, i, &status);
    const std::string_view name = alias;
    for (const WindowsName& row : kWindowsNames) {
      if (name == row.name) return row.number;
    }
    if (name.starts_with(kWindows)) return std::atoi(alias + kWindows.size());
    if (name.starts_with(kIso)) return 28590 + std::atoi(alias + kIso.size());
  }
  return 1252;
}

/// "932" and "cp932" name the page that Windows numbers so.
std::string IcuNameOf(std::string_view name) {
  std::string digits(name);
  if (digits.size() > 2 && (digits[0] | 0x20) == 'c' && (digits[1] | 0x20) == 'p') digits.erase(0, 2);
  if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos) return std::string(name);
  if (digits == "65001") return "UTF-8";
  return "windows-" + digits;
}

}  // namespace

std::optional<CodePage> CodePage::Find(std::string_view name) {
  static std::mutex mutex;
  static std::map<std::string, std::optional<CodePage>, std::less<>> known;
  {
    const std::scoped_lock lock(mutex);
    if (const auto found = known.find(name); found != known.end()) return found->second;
  }
  auto page = FindAnew(name);
  const std::scoped_lock lock(mutex);
  if (known.size() < kMostKnownNames) known.emplace(name, page);
  return page;
}

std::optional<CodePage> CodePage::FindAnew(std::string_view name) {
  const std::string icuName = IcuNameOf(name);
  Converter converter = Open(icuName);
  if (converter == nullptr) converter = Open(std::string(name));
  if (converter == nullptr || name.empty()) return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  auto tables = std::make_shared<Tables>();
  tables->name = name;
  tables->icuName = ucnv_getName(converter.get(), &status);
  tables->number = NumberOf(converter);
  if (tables->number == 1252) tables->icuName.clear();
  tables->keepsAscii = KeepsAscii(converter.get());
  return CodePage(std::move(tables));
}

const CodePage& CodePage::Lossless() {
  static const CodePage page([] {
    auto tables = std::make_shared<Tables>();
    tables->name = "windows-1252";
    return tables;
  }());
  return page;
}

Text CodePage::Decode(std::string_view bytes) const { return DecodeWith(bytes, nullptr); }

Text CodePage::DecodeKeepingAll(std::string_view bytes, std::uint64_t& undefined) const {
  return DecodeWith(bytes, &undefined);
}

Text CodePage::DecodeWith(std::string_view bytes, std::uint64_t* undefined) const {
  if (tables_->icuName.empty()) return DecodeLossless(bytes);
  if (tables_->keepsAscii && IsAscii(bytes)) return FromUtf8(bytes);
  const Lent converter(*tables_);
  if (converter.Get() == nullptr) return {};
  if (undefined == nullptr) return DecodeBy(converter.Get(), bytes);

  UErrorCode status = U_ZERO_ERROR;
  UConverterToUCallback before = nullptr;
  const void* contextBefore = nullptr;
  ucnv_setToUCallBack(converter.Get(), KeepUndefined, undefined, &before, &contextBefore, &status);
  Text out = DecodeBy(converter.Get(), bytes);
  ucnv_setToUCallBack(converter.Get(), before, contextBefore, nullptr, nullptr, &status);
  return out;
}

std::string CodePage::Encode(TextView text) const {
  if (tables_->icuName.empty()) return EncodeLossless(text);
  if (tables_->keepsAscii && IsAscii(text)) return ToUtf8(text);
  const Lent converter(*tables_);
  return converter.Get() == nullptr ? std::string() : EncodeBy(converter.Get(), text);
}

int CodePage::WindowsNumber() const { return tables_->number; }

const std::string& CodePage::Name() const { return tables_->name; }

}  // namespace velmora::text
