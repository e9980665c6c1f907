// Rows of contents tables on their way from the saving of an item to the building of its folder's table.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platform/spool_file.h"
#include "store/format/byte_view.h"
#include "store/ltp/table_context_writer.h"

namespace velmora::messaging {

/// A row costs memory while it is written or read; between, it lies in a temporary file. What fails there is
/// raised (FailureError).
class RowSpool {
 public:
  /// Keeps a row and gives its place.
  [[nodiscard]] std::uint64_t Append(std::span<const ltp::PropertyView> cells);

  /// The row at a place that Append gave, valid until the next call. Rows read in the order of their places
  /// are read in large pieces.
  [[nodiscard]] std::span<const ltp::PropertyView> Read(std::uint64_t place);

 private:
  [[nodiscard]] std::span<const std::byte> BytesAt(std::uint64_t place, std::size_t size);

  platform::SpoolFile file_;
  Bytes pending_;  ///< rows behind the end of the file
  Bytes window_;   ///< a piece of the file
  std::uint64_t windowAt_ = 0;
  std::vector<ltp::PropertyView> cells_;
};

}  // namespace velmora::messaging
