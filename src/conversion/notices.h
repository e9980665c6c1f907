// What people read of the notices of a run.
#pragma once

#include "engine/event.h"

namespace velmora::conversion {

using engine::Notice;
using engine::NoticeKind;

struct NoticeText {
  bool isError = false;  ///< else it informs
  text::TextView title;
  text::Text text;
};

NoticeText TextOf(const Notice& notice);

}  // namespace velmora::conversion
