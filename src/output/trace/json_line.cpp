#include "output/trace/json_line.h"

#include <cstdio>

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
  const text::DateParts parts = PartsOf(date);
  char line[32];
  std::snprintf(line, sizeof line, "%04d-%02d-%02dT%02d:%02d:%02d", parts.year, parts.month, parts.day, parts.hour,
                parts.minute, parts.second);
  return line;
}

}  // namespace velmora::output
