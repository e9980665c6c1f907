// The name-to-id map: which id below 0x8000 + 0x7FFE a store gives to a long name.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "forge/property.h"

namespace velmora::forge {

/// The 16 bytes of a property set as they stand in a store.
Bytes SetGuid(PropertySet set);

class NameMap {
 public:
  /// The id of a name, 0x8000 for the first one; the same name has the same id.
  std::uint16_t IdOf(const PropertyName& name);

  /// Fills the map up with names of its own until it has at least `count`.
  void PadTo(std::size_t count);

  std::size_t Count() const { return entries_.size(); }

  /// The properties of the map's node 0x61. With `pairedBuckets` each hash bucket of one entry holds that
  /// entry twice, which makes it 16 bytes long; readers look into the list of entries and do not care.
  PropertyList Properties(bool pairedBuckets = false) const;

 private:
  struct Entry {
    PropertyName name;
    std::uint16_t guidIndex = 0;  ///< 1 and 2 are fixed sets, 3 the first in the list of sets
    std::uint32_t textOffset = 0;
  };

  std::uint16_t GuidIndexOf(PropertySet set);

  std::vector<Entry> entries_;
  std::vector<PropertySet> sets_ = {PropertySet::kCommon};  ///< never empty: some readers refuse such a map
  Bytes texts_;
};

/// The properties with ids in place of names: what a context can be formed of.
PropertyList Resolve(NameMap& names, PropertyList properties);

}  // namespace velmora::forge
