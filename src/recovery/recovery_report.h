// What a run can tell about itself. The report only tells; it changes nothing in what is converted.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "text/text.h"

namespace velmora::recovery {

/// Why a node gave no item.
enum class SkipReason { kNoBlock, kBadHeap, kNoClass, kRefusedClass, kNoFolder };

/// A node, attachment or embedded message that should have come across and did not.
struct LostObject {
  std::uint32_t nid = 0;
  std::uint32_t bidData = 0;
  text::Text messageClass;  ///< empty where it could not be read
  text::Text reason;        ///< in plain words
};

/// A folder as recovered, before the list is ordered and thinned.
struct RecoveredFolder {
  std::uint32_t nid = 0;
  std::uint32_t parentNid = 0;
  text::Text name;
  text::Text containerClass;
};

struct RecoveryReport {
  std::vector<RecoveredFolder> folders;
  std::map<text::Text, std::uint64_t> items;  ///< created, by the class text handed to the output library
  std::uint64_t attachments = 0;
  std::uint64_t embedded = 0;
  std::map<SkipReason, std::uint64_t> skipped;
  std::vector<LostObject> lost;
};

}  // namespace velmora::recovery
