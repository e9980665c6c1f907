#include "recovery/folder_properties.h"

#include "recovery/heap_text.h"
#include "recovery/property_context.h"
#include "recovery/property_ids.h"
#include "text/plausibility.h"

namespace velmora::recovery {

std::optional<FolderProperties> ParseFolderProperties(engine::EngineState& engine, const engine::BlockRecord& record,
                                                      const text::CodePage& codePage, ContentAllowance& allowance) {
  const auto bytes = ReadHeapBlock(engine, record, record.bid, kFolderRules, allowance);
  if (!bytes) return std::nullopt;
  const engine::ByteView block(*bytes);
  const PropertyContext context(block, engine, kFolderRules);
  if (context.GetFault() != PropertyContext::Fault::kNone) return std::nullopt;

  const bool wide = engine.layout.wideFormat;
  FolderProperties folder;
  bool named = false;
  for (std::uint32_t index = 0; index < context.Count(); ++index) {
    const PropertyRecord property = context.Record(index);
    if (property.id == kMessageClassId) return std::nullopt;  // a message
    if (property.id != kDisplayNameId && property.id != kContainerClassId) continue;

    text::Text value;
    if (property.value != 0) {  // identifier 0 names no allocation: the text is empty
      const auto range = RangeOf(block, context.Header().ibHnpm, property.value, kFolderRules.emptyEnd);
      if (!range) return std::nullopt;
      value = CopyHeapText(range->In(block), wide, codePage);
    }
    if (property.id == kContainerClassId) {
      folder.containerClass = std::move(value);
      break;
    }
    named = true;
    folder.name = wide && !text::LooksLikeText(value) ? text::Text() : std::move(value);
  }
  if (!named) return std::nullopt;
  return folder;
}

}  // namespace velmora::recovery
