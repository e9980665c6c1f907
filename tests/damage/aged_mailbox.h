// A store as years of use leave it: folders of equal names, messages of all shapes, and behind the live ones what was
// deleted or changed, which pages that were given up still name.
#pragma once

#include <cstdint>
#include <vector>

#include "forge/image.h"
#include "forge/store.h"

namespace velmora::damage {

/// A live message, and the range of the file that holds all of its blocks and no others.
struct LiveMessage {
  forge::Nid nid = 0;
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
};

struct AgedMailbox {
  forge::Image image;
  std::vector<LiveMessage> messages;
};

/// The same bytes at every call.
AgedMailbox ForgeAgedMailbox(forge::Format format, forge::Encoding encoding);

}  // namespace velmora::damage
