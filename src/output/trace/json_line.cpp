#include "output/trace/json_line.h"

#include <chrono>
#include <cstdio>

#include "store/ole_date.h"

namespace velmora::output {
namespace {

void AppendUnit(std::string& out, char16_t unit) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  switch (unit) {
    case u'"':
      out += "\\\"";
      return;
    case u'\\':
      out += "\\\\";
      return;
    case u'\n':
      out += "\\n";
      return;
    case u'\r':
      out += "\\r";
      return;
    case u'\t':
      out += "\\t";
      return;
    default:
      break;
  }
  if (unit >= 0x20 && unit < 0x7F) {
    out.push_back(static_cast<char>(unit));
    return;
  }
  out += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) out.push_back(kDigits[(unit >> shift) & 0xF]);
}

}  // namespace

JsonLine::JsonLine(std::string_view operation) : line_("{") { Plain("op", operation); }

JsonLine& JsonLine::Key(std::string_view key) {
  if (line_.size() > 1) line_.push_back(',');
  line_.append(1, '"').append(key).append("\":");
  return *this;
}

JsonLine& JsonLine::Null(std::string_view key) {
  Key(key).line_ += "null";
  return *this;
}

JsonLine& JsonLine::Flag(std::string_view key, bool value) {
  Key(key).line_ += value ? "true" : "false";
  return *this;
}

JsonLine& JsonLine::Number(std::string_view key, std::int64_t value) {
  Key(key).line_ += std::to_string(value);
  return *this;
}

JsonLine& JsonLine::Text(std::string_view key, text::TextView value) {
  Key(key).line_.push_back('"');
  for (const char16_t unit : value) AppendUnit(line_, unit);
  line_.push_back('"');
  return *this;
}

JsonLine& JsonLine::Plain(std::string_view key, std::string_view value) {
  Key(key).line_.append(1, '"').append(value).append(1, '"');
  return *this;
}

JsonLine& JsonLine::Value(std::string_view key, const FieldValue& value) {
  if (const auto* text = std::get_if<text::Text>(&value)) return Text(key, *text);
  if (const auto* date = std::get_if<OleDate>(&value)) return Plain(key, IsoDateTime(*date));
  if (const auto* flag = std::get_if<bool>(&value)) return Flag(key, *flag);
  return Number(key, std::get<std::int32_t>(value));
}

std::string JsonLine::End() {
  line_.push_back('}');
  return std::move(line_);
}

std::string IsoDateTime(OleDate date) {
  namespace chrono = std::chrono;
  static constexpr chrono::sys_days kEpoch = chrono::sys_days{chrono::year{1899} / 12 / 30};
  const chrono::sys_seconds time = kEpoch + chrono::seconds(SecondsOf(date));
  const auto day = chrono::floor<chrono::days>(time);
  const chrono::year_month_day calendar{day};
  const chrono::hh_mm_ss clock{time - day};
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d", static_cast<int>(calendar.year()),
                static_cast<unsigned>(calendar.month()), static_cast<unsigned>(calendar.day()),
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text;
}

}  // namespace velmora::output
