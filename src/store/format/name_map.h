// The map of named properties, in the property context of node 0x61: three streams (sets, entries, texts) and buckets
// that find an entry by its name.
#pragma once

#include <cstddef>
#include <cstdint>

#include "store/format/prop_tag.h"

namespace velmora::name_map {

inline constexpr std::uint16_t kFirstNamedId = 0x8000;  ///< an entry holds what its identifier is above this

inline constexpr std::size_t kSetSize = 16;    ///< a GUID
inline constexpr std::size_t kEntrySize = 8;   ///< number or place of the text, set and kind (u16), identifier (u16)
inline constexpr std::size_t kOffEntryId = 6;  ///< of the identifier in an entry

inline constexpr PropTag kBucketCount = 0x00010003;
inline constexpr PropTag kSetStream = 0x00020102;
inline constexpr PropTag kEntryStream = 0x00030102;
inline constexpr PropTag kTextStream = 0x00040102;
inline constexpr std::uint16_t kFirstBucket = 0x1000;  ///< id of the first bucket's property; a bucket holds entries

}  // namespace velmora::name_map
