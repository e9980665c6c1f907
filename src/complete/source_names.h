// The names of a source's named properties.
#pragma once

#include <unordered_map>

#include "complete/live_store.h"
#include "store/messaging/tables/named_properties.h"
#include "store/ndb/block_source.h"

namespace velmora::complete {

/// The name-to-id map of a store, by identifier.
class SourceNames {
 public:
  SourceNames() = default;
  /// Those of a sound store.
  explicit SourceNames(const ndb::BlockSource& source);
  /// Where the map is not whole, those that are proven.
  explicit SourceNames(const LiveStore& source);

  /// Null for an identifier without a name.
  const messaging::AnyPropertyName* Of(std::uint16_t id) const;

  /// Calls `visit(id, name)` for each.
  template <class Visit>
  void ForEach(Visit visit) const {
    for (const auto& [id, name] : names_) visit(id, name);
  }

 private:
  std::unordered_map<std::uint16_t, messaging::AnyPropertyName> names_;
};

}  // namespace velmora::complete
