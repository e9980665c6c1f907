#include "text/code_page.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>

#include <array>
#include <cstdlib>

namespace velmora::text {
namespace {

// Windows-1252 differs from the first 256 code points in this row alone; its five undefined bytes (81, 8D,
// 8F, 90, 9D) stay the C1 control codes of the same value.
constexpr std::array<char16_t, 32> kRow80 = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                             0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                             0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                             0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

struct WindowsName {
  const char* name;
  int number;
};

// Names of the pages that stores are made with, where the canonical name does not end in the number.
constexpr WindowsName kWindowsNames[] = {
    {"UTF-8", 65001},  {"Shift_JIS", 932},  {"GBK", 936},     {"GB2312", 936},    {"EUC-KR", 949},   {"Big5", 950},
    {"KOI8-R", 20866}, {"US-ASCII", 20127}, {"TIS-620", 874}, {"GB18030", 54936}, {"EUC-JP", 51932}, {"KOI8-U", 21866},
};

struct ConverterCloser {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, ConverterCloser>;

Converter Open(const std::string& name) {
  UErrorCode status = U_ZERO_ERROR;
  Converter converter(ucnv_open(name.c_str(), &status));
  if (U_FAILURE(status)) return nullptr;
  constexpr char kQuestionMark[] = "?";
  ucnv_setSubstChars(converter.get(), kQuestionMark, 1, &status);
  return converter;
}

char16_t LosslessUnit(char byte) {
  const auto value = static_cast<unsigned char>(byte);
  return value >= 0x80 && value < 0xA0 ? kRow80[value - 0x80] : value;
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

struct CodePage::Tables {
  std::string name;     // as it was asked for
  std::string icuName;  // empty: the lossless page, which needs no converter
  int number = 1252;
};

namespace {

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
  Text out(bytes.size(), u'\0');
  if (tables_->icuName.empty()) {
    for (std::size_t i = 0; i < bytes.size(); ++i) out[i] = LosslessUnit(bytes[i]);
    return out;
  }
  const Converter converter = Open(tables_->icuName);
  if (converter == nullptr) return {};
  if (undefined != nullptr) {
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter.get(), KeepUndefined, undefined, nullptr, nullptr, &status);
  }
  const char* source = bytes.data();
  const char* sourceEnd = source + bytes.size();
  std::size_t used = 0;
  for (;;) {
    UErrorCode status = U_ZERO_ERROR;
    char16_t* target = out.data() + used;
    ucnv_toUnicode(converter.get(), &target, out.data() + out.size(), &source, sourceEnd, nullptr, true, &status);
    used = static_cast<std::size_t>(target - out.data());
    if (status != U_BUFFER_OVERFLOW_ERROR) break;
    out.resize(out.size() * 2 + 16);
  }
  out.resize(used);
  return out;
}

std::string CodePage::Encode(TextView text) const {
  std::string out;
  if (tables_->icuName.empty()) {
    out.resize(text.size());
    char* end = out.data();
    for (const char16_t unit : text) {
      if (unit < 0x80 || (unit >= 0xA0 && unit < 0x100)) {
        *end++ = static_cast<char>(unit);
        continue;
      }
      std::size_t i = 0;
      while (i < kRow80.size() && kRow80[i] != unit) ++i;
      if (i < kRow80.size()) {
        *end++ = static_cast<char>(0x80 + i);
      } else if (unit < 0xDC00 || unit > 0xDFFF) {
        *end++ = '?';  // one mark a character: the trailing surrogate of a pair adds none
      }
    }
    out.resize(static_cast<std::size_t>(end - out.data()));
    return out;
  }
  const Converter converter = Open(tables_->icuName);
  if (converter == nullptr) return {};
  out.resize(text.size() * 2 + 16);
  const char16_t* source = text.data();
  const char16_t* sourceEnd = source + text.size();
  std::size_t used = 0;
  for (;;) {
    UErrorCode status = U_ZERO_ERROR;
    char* target = out.data() + used;
    ucnv_fromUnicode(converter.get(), &target, out.data() + out.size(), &source, sourceEnd, nullptr, true, &status);
    used = static_cast<std::size_t>(target - out.data());
    if (status != U_BUFFER_OVERFLOW_ERROR) break;
    out.resize(out.size() * 2);
  }
  out.resize(used);
  return out;
}

int CodePage::WindowsNumber() const { return tables_->number; }

const std::string& CodePage::Name() const { return tables_->name; }

}  // namespace velmora::text
