// The fields of an item as they were written through the operations.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/operations.h"
#include "text/calendar.h"

namespace velmora::messaging {

/// The value that a field reads as while it was never written: empty text, date 0.0, false or 0.
output::FieldValue EmptyValue(output::FieldType type);

class ItemFields {
 public:
  struct Entry {
    output::Field field;
    output::FieldValue value;
    std::optional<std::string> bytes = {};  ///< in place of a text that carries them
  };

  /// `value` has the alternative of the field's type.
  void Put(output::Field field, output::FieldValue value);

  /// A text that carries the bytes.
  void PutBytes(output::Field field, std::string_view bytes);

  /// Nothing when the field was never written.
  std::optional<output::FieldValue> Value(output::Field field) const;

  /// Typed reads; a text that was never written, or as bytes, is empty, other fields are nothing then, and so is a date
  /// that a store cannot hold.
  text::TextView Text(output::Field field) const;
  std::optional<text::FileTime> Time(output::Field field) const;
  std::optional<bool> Flag(output::Field field) const;
  std::optional<std::int32_t> Number(output::Field field) const;

  /// All fields in the order of their first write.
  const std::vector<Entry>& Entries() const { return entries_; }

 private:
  void Put(Entry entry);
  const Entry* Find(output::Field field) const;

  std::vector<Entry> entries_;
};

}  // namespace velmora::messaging
