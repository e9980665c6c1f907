// What the fuzz entries begin from: small stores, sound and damaged.
#pragma once

#include <string>
#include <vector>

#include "forge/bytes.h"

namespace velmora::fuzz {

struct Seed {
  std::string name;
  forge::Bytes bytes;  ///< a whole store
};

/// The same seeds at every call.
std::vector<Seed> Corpus();

}  // namespace velmora::fuzz
