// One line of the trace: a JSON object, its members in the order in which they are added; and where lines go.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "store/operations.h"

namespace velmora::output {

/// The file is plain ASCII: every other UTF-16 unit is a \uXXXX escape, so lone surrogates, which texts of
/// damaged stores hold, come out as they are.
class JsonLine {
 public:
  explicit JsonLine(std::string_view operation);

  JsonLine& Null(std::string_view key);
  JsonLine& Flag(std::string_view key, bool value);
  JsonLine& Number(std::string_view key, std::int64_t value);
  JsonLine& Text(std::string_view key, text::TextView value);
  /// A value of ASCII letters, digits and the like, which needs no escapes.
  JsonLine& Plain(std::string_view key, std::string_view value);
  /// A field's value by its type; a date as "YYYY-MM-DDTHH:MM:SS".
  JsonLine& Value(std::string_view key, const FieldValue& value);

  /// The finished line, without a line end.
  std::string End();

 private:
  JsonLine& Key(std::string_view key);

  std::string line_;
};

/// "YYYY-MM-DDTHH:MM:SS" of the Gregorian calendar, no zone.
std::string IsoDateTime(OleDate date);

class TraceSink {
 public:
  virtual ~TraceSink() = default;

  /// Takes one line, without its line end. A sink that cannot write keeps that to itself until it is asked:
  /// a trace never changes a run.
  virtual void WriteLine(std::string_view line) = 0;
};

}  // namespace velmora::output
