#include "output/kinds/pffexport.h"

#include <array>
#include <cstdio>
#include <sstream>

#include "forge_tests/peers.h"
#include "output/kinds/source.h"

namespace velmora::kinds {
namespace {

constexpr std::string_view kValueLine = "0x00000000: ";
constexpr std::size_t kWidthOfBytes = 49;  ///< 16 of them in hexadecimal, with a gap in the middle

/// What stands behind the label and the tabs or blanks that follow it.
std::string Behind(const std::string& line, std::size_t label) {
  const std::size_t at = line.find_first_not_of("\t ", label);
  return at == std::string::npos ? std::string() : line.substr(at);
}

std::string BytesOfLine(const std::string& line) {
  std::istringstream hex(line.substr(kValueLine.size(), kWidthOfBytes));
  std::string bytes;
  for (unsigned byte = 0; hex >> std::hex >> byte;) bytes.push_back(static_cast<char>(byte));
  return bytes;
}

bool IsBytesLine(const std::string& line) { return line.starts_with("0x") && line.find(": ") == kValueLine.size() - 2; }

std::uint32_t NumberIn(const std::string& text) { return static_cast<std::uint32_t>(std::stoul(text, nullptr, 16)); }

std::string Utf16Bytes(text::TextView text) {
  std::string bytes;
  for (const char16_t unit : text) {
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>(unit >> 8));
  }
  return bytes;
}

std::string LittleEndian(std::uint64_t number, int width) {
  std::string bytes;
  for (int i = 0; i < width; ++i) bytes.push_back(static_cast<char>(number >> (8 * i)));
  return bytes;
}

std::uint16_t TypeOf(output::Field field) {
  if (IsList(field)) return forge::kStringList;
  switch (output::InfoOf(field).type) {
    case output::FieldType::Text:
      return forge::kString;
    case output::FieldType::Date:
      return forge::kTime;
    case output::FieldType::Flag:
      return forge::kBool;
    case output::FieldType::Number:
      return forge::kInt32;
    case output::FieldType::Number16:
      return forge::kInt16;
  }
  return 0;
}

std::string ShownDate(const char* value) {
  constexpr std::array<const char*, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const std::string date = value;
  const auto month = static_cast<std::size_t>(std::stoi(date.substr(5, 2)) - 1);
  return std::string(kMonths.at(month)) + " " + date.substr(8, 2) + ", " + date.substr(0, 4) + " " + date.substr(11) +
         ".000000000 UTC";
}

}  // namespace

DumpedValues::DumpedValues(const std::filesystem::path& file) {
  std::istringstream lines(forge::TextOf(file));
  Key key;
  std::string* value = nullptr;
  for (std::string line; std::getline(lines, line);) {
    const auto labelled = [&](std::string_view label) { return line.starts_with(label); };
    if (labelled("Entry type:")) {
      key = {false, NumberIn(Behind(line, 11)), 0};
    } else if (labelled("Value type:")) {
      key.type = static_cast<std::uint16_t>(NumberIn(Behind(line, 11)));
    } else if (labelled("Maps to entry type:")) {
      key = {true, NumberIn(Behind(line, 19)), key.type};
    } else if (labelled("Maps to entry:")) {
      key = {true, 0, key.type};
    } else if (labelled("Value:")) {
      value = &values_[key];
    } else if (value != nullptr && IsBytesLine(line)) {
      *value += BytesOfLine(line);
    }
  }
}

std::optional<std::string> DumpedValues::Find(const Key& key) const {
  const auto found = values_.find(key);
  if (found == values_.end()) return std::nullopt;
  return found->second;
}

DumpedValues::Key KeyOf(const Row& row) {
  const Where place = row.place == kSame ? row.source : row.place;
  return {place.set != Set::kTag, place.id, TypeOf(row.field)};
}

std::string BytesOf(const Row& row) {
  // A subject begins with the length of its prefix; there is none.
  if (row.field == output::Field::Subject) return Utf16Bytes(text::Text{1, 1} + TextOf(row));
  if (IsList(row.field)) return LittleEndian(1, 4) + LittleEndian(8, 4) + Utf16Bytes(TextOf(row));
  const forge::Property property = PropertyOf(row);
  std::string bytes(reinterpret_cast<const char*>(property.data.data()), property.data.size());
  if (TypeOf(row.field) == forge::kBool) bytes.resize(1);
  return bytes;
}

std::vector<std::string> LinesOf(const std::string& text, const std::string& label) {
  std::vector<std::string> shown;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(label + ":")) shown.push_back(Behind(line, label.size() + 1));
  }
  return shown;
}

std::string ShownValue(const Row& row) {
  switch (output::InfoOf(row.field).type) {
    case output::FieldType::Text:
      return text::ToUtf8(TextOf(row));
    case output::FieldType::Date:
      return ShownDate(row.value);
    case output::FieldType::Flag:
      return std::string_view(row.value) == "true" ? "yes" : "no";
    default:
      break;
  }
  std::array<char, 16> number{};
  std::snprintf(number.data(), number.size(), "0x%08x", static_cast<unsigned>(std::stoi(row.value)));
  return number.data();
}

PffexportColumn::PffexportColumn(const Row& row) : label(row.pffexport), shown(ShownValue(row)) {
  if (const std::size_t slash = label.find('/'); slash != std::string::npos) {
    file = label.substr(0, slash);
    label.erase(0, slash + 1);
  }
  if (const std::size_t equals = label.find('='); equals != std::string::npos) {
    shown = label.substr(equals + 1);
    label.resize(equals);
  }
}

}  // namespace velmora::kinds
