#include <utility>

#include "recovery/item_steps.h"

namespace velmora::recovery {

bool ProcessMessage(ItemRun& items, std::uint32_t bidData, std::uint32_t folderNid) {
  ParseMessage(items, bidData, folderNid);
  // The other kinds carry their body through their own converters.
  MessageWork& message = items.message;
  if (!message.IsKind(ItemKind::kMail)) return true;
  const ValueSource source{items.engine, *items.state.codePage, items.state.allowance};
  Body body = ReadBody(source, message.block, message.body, items.subNodes);
  for (Body::Write& write : body.writes) {
    message.Item(ItemKind::kMail)->Put(write.field, std::move(write.text));
  }
  message.losses.bodyTaken = body.taken;
  message.losses.bodyMissing = std::move(body.missing);
  return body.inBounds;
}

}  // namespace velmora::recovery
