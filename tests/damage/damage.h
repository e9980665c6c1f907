// Kinds of damage that stores come with, done to a forged one.
#pragma once

#include <span>

#include "forge/image.h"

namespace velmora::damage {

struct Case {
  const char* name;
  forge::Bytes (*spoil)(const forge::Image& whole);
};

/// Every kind, the store without any first. What chance has a part in is the same at every call.
std::span<const Case> Cases();

}  // namespace velmora::damage
