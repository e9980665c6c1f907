// What people read of the notices of a run.
#pragma once

#include <string>

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

/// Why, in plain words: "/mnt/out: Permission denied". Empty when nothing is known.
std::string CauseOf(const platform::Failure& failure);

}  // namespace velmora::conversion
