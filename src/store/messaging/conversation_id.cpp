#include "store/messaging/conversation_id.h"

#include <md5.h>

#include <cstdint>

namespace velmora::messaging {

std::optional<ConversationId> ConversationIdOf(text::TextView topic) {
  if (topic.empty()) return std::nullopt;
  const text::Text upper = text::UpperCased(topic);
  MD5_CTX context;
  MD5Init(&context);
  MD5Update(&context, reinterpret_cast<const std::uint8_t*>(upper.data()), upper.size() * sizeof(char16_t));
  ConversationId id;
  MD5Final(reinterpret_cast<std::uint8_t*>(id.data()), &context);
  return id;
}

}  // namespace velmora::messaging
