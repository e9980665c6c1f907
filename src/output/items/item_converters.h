// The converters of all seven kinds of item.
#pragma once

#include "recovery/item_converter.h"

namespace velmora::items {

/// One converter a kind, indexed by ItemKind; none is null.
recovery::ItemConverters MakeItemConverters();

}  // namespace velmora::items
