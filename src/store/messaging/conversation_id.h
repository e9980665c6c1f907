// The key by which a contents table groups messages into conversations.
#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include "text/text.h"

namespace velmora::messaging {

using ConversationId = std::array<std::byte, 16>;

/// MD5 of the topic's UTF-16 units in capitals; nothing without a topic.
std::optional<ConversationId> ConversationIdOf(text::TextView topic);

}  // namespace velmora::messaging
