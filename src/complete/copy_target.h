// Where a copy puts what it has read of an object.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "store/format/prop_tag.h"
#include "store/messaging/objects/property_bag.h"
#include "store/messaging/store_writer.h"
#include "store/ndb/data_tree_reader.h"
#include "text/calendar.h"

namespace velmora::complete {

/// Either the new store (StoreTarget) or a list of what it is to get when the message's turn comes (PreparedTarget).
class CopyTarget {
 public:
  virtual ~CopyTarget() = default;

  /// The identifier in the new store of a property that the source names `id`; nothing where that has no name.
  virtual std::optional<std::uint16_t> NamedId(std::uint16_t id) = 0;

  /// The new store's time.
  virtual text::FileTime Now() const = 0;

  /// Puts a value that stands in blocks of its own.
  virtual void PutLong(messaging::PropertyBag& out, PropTag tag, std::span<const std::byte> value) = 0;

  /// The same of a data tree of the source. Returns the bytes that it has, which may be fewer than it says.
  virtual std::uint64_t PutTree(messaging::PropertyBag& out, PropTag tag, ndb::DataTreeReader from) = 0;

  /// The new store itself, for what changes it at once. Raises NotAhead where the message's turn has not come.
  virtual messaging::StoreWriter& Store() = 0;
};

}  // namespace velmora::complete
