// The map pages of a store and the density list, formed from an allocation map.
#pragma once

#include "store/format/page.h"
#include "store/ndb/allocation_map.h"

namespace velmora::ndb {

inline constexpr std::uint64_t kDListOffset = kFirstArea - kPageSize;
inline constexpr std::size_t kMaxDListEntries = 119;

/// A map page at `ib` of nothing but ones.
Page FullMapPage(PageType type, std::uint64_t ib);

/// The AMap page of an area as the map stands.
Page AMapPage(const AllocationMap& map, std::uint32_t area);

/// The density list: the areas with most free slots, without the last, where allocation goes on.
///
///   0 bFlags u8 (1: complete) | 1 cEntDList u8 | 2 padding u16 | 4 ulCurrentPage u32
///   8 entries u32: area in the low 20 bits, free slots in the high 12
Page DListPage(const AllocationMap& map, Bid bid);

}  // namespace velmora::ndb
