// The messages of a run as pages and panes know them, by the system's numbers.
#pragma once

#include <cstdint>
#include <optional>

#include "engine/event.h"

namespace velmora::workflow {

enum RunMessageCode : std::uint32_t {
  MSG_ERROR_NOTICE = 32785,     ///< to the main window, just before every error box
  MSG_PROGRESS = 32804,         ///< number: percentage; detail: phase
  MSG_DONE = 32805,             ///< the conversion is complete
  MSG_STAGE = 32806,            ///< number: stage; detail: 0, or 1 to force the closing stage
  MSG_ADD_FOLDER = 32816,       ///< number: folder id or marker; text: name of a marker
  MSG_LIST_FIELD = 32832,       ///< number: 1 from, 2 to, 3 subject, 4 date; text: the field
  MSG_CLEAR_LIST = 32833,       ///< deletes all rows of the item list
  MSG_LIST_ATTACHMENT = 32835,  ///< the current row has attachments
  MSG_CLEAR_BODY = 32849,       ///< blanks the body pane
};

inline constexpr std::uint32_t kClosingStage = 9;      ///< ahead of the closing of the session
inline constexpr std::uint32_t kLastPercentage = 100;  ///< what is above is not shown

struct RunMessage {
  std::uint32_t code = 0;
  std::uint32_t number = 0;
  std::uint32_t detail = 0;
  text::Text text = {};

  friend bool operator==(const RunMessage&, const RunMessage&) = default;
};

/// Nothing for an event without a message: a notice is a box, and the known folders are data.
std::optional<RunMessage> MessageOf(const engine::Event& event);

}  // namespace velmora::workflow
