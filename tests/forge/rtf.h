// The container of rich text bodies.
#pragma once

#include <string_view>

#include "forge/bytes.h"

namespace velmora::forge {

enum class RtfForm { kCompressed, kStored };

/// Rich text in its container. The compressed form is made of literals alone: larger than it need be, but
/// what every reader of the form unpacks.
Bytes FormRtf(std::string_view rtf, RtfForm form = RtfForm::kCompressed);

}  // namespace velmora::forge
