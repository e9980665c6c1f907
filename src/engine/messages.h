// Texts of the boxes that the scanning steps show.
#pragma once

#include "text/text.h"

namespace velmora::engine {

inline constexpr text::TextView kSourceNotOpened =
    u"Source file could not open.Make sure that another application is not using. ";
inline constexpr text::TextView kNotValid = u"Pst/Ost file is not valid.";
inline constexpr text::TextView kNoIndexFile = u"Some problem is encounterd to create temporary file.";

}  // namespace velmora::engine
