// Packs blocks fast, so that stores of 4K pages are made at the speed of a disk.
#pragma once

#include <span>

#include "forge/bytes.h"

namespace velmora::bench {

/// A zlib stream of the data. Long ones are remembered, since texts and files come again. One thread at a time.
forge::Bytes Pack(std::span<const std::byte> data);

}  // namespace velmora::bench
