// What pffexport writes about an item.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "output/kinds/row.h"

namespace velmora::kinds {

/// The values of an item as the reader dumps them, by the number of the name where the property has one, else by
/// the id; the one text name, "Keywords", counts as 0.
class DumpedValues {
 public:
  explicit DumpedValues(const std::filesystem::path& file);

  struct Key {
    bool named = false;
    std::uint32_t number = 0;
    std::uint16_t type = 0;
    friend auto operator<=>(const Key&, const Key&) = default;
  };

  /// The bytes; nothing where the item has no such value of that type.
  std::optional<std::string> Find(const Key& key) const;

 private:
  std::map<Key, std::string> values_;
};

/// The key and the bytes by which a row's field stands in the new store.
DumpedValues::Key KeyOf(const Row& row);
std::string BytesOf(const Row& row);

/// The values that the lines with this label show, the label apart; "Flags:\t\t0x1" has the label "Flags".
std::vector<std::string> LinesOf(const std::string& text, const std::string& label);

/// What the reader shows for the value of a row: texts as they are, dates, flags and numbers in its own form.
std::string ShownValue(const Row& row);

/// A row's column for the reader, taken apart.
struct PffexportColumn {
  explicit PffexportColumn(const Row& row);
  std::string file;  ///< empty for the item's own
  std::string label;
  std::string shown;
};

}  // namespace velmora::kinds
