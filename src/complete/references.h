// Entry ids that lead from one object of a store to another: those of the old store, as the new one has them.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>

#include "store/format/ids.h"
#include "store/messaging/values/identity.h"

namespace velmora::complete {

class References {
 public:
  /// `targetOf` gives the id that an object of the source has in the new store; nothing for one that is not there.
  References(const std::optional<messaging::Uid>& sourceKey, const messaging::Uid& targetKey,
             std::function<std::optional<Nid>(Nid)> targetOf)
      : sourceKey_(sourceKey), targetKey_(targetKey), targetOf_(std::move(targetOf)) {}

  /// Whether the value is the entry id of an object of the source and nothing else.
  bool IsEntryId(std::span<const std::byte> value) const;

  /// Gives every entry id in a value (alone, wrapped, or one of several) the new store's key and id, where what it
  /// leads to is there; others stay as they are. Returns how many stayed.
  std::size_t Rewrite(std::span<std::byte> value) const;

 private:
  std::optional<messaging::Uid> sourceKey_;
  messaging::Uid targetKey_;
  std::function<std::optional<Nid>(Nid)> targetOf_;
};

}  // namespace velmora::complete
