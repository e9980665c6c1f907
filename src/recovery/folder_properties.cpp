#include "recovery/folder_properties.h"

#include "recovery/heap_text.h"
#include "recovery/property_context.h"
#include "store/format/property_tags.h"
#include "text/plausibility.h"

namespace velmora::recovery {

tl::expected<FolderProperties, BlockFault> ParseFolderProperties(const engine::ScannedStore& store,
                                                                 const engine::BlockRecord& record,
                                                                 const text::CodePage& codePage,
                                                                 ContentAllowance& allowance) {
  using Cause = BlockFault::Cause;
  const auto fault = [&record](Cause cause) { return tl::unexpected(BlockFault::Of(cause, record)); };
  const auto bytes = ReadHeapBlock(store, record, record.bid, kFolderRules, allowance);
  if (!bytes) return tl::unexpected(bytes.error());
  const ByteView block(*bytes);
  const PropertyContext context(block, store, kFolderRules);
  if (context.GetFault() != PropertyContext::Fault::kNone) {
    return tl::unexpected(context.BlockFaultOf(store, record, kFolderRules));
  }

  const bool wide = store.layout.wideFormat;
  FolderProperties folder;
  bool named = false;
  for (std::uint32_t index = 0; index < context.Count(); ++index) {
    const PropertyRecord property = context.Record(index);
    if (property.wPropId == IdOf(tag::kMessageClass)) return fault(Cause::kMessage);
    if (property.wPropId != IdOf(tag::kDisplayName) && property.wPropId != IdOf(tag::kContainerClass)) continue;

    text::Text value;
    if (property.dwValueHnid != 0) {  // identifier 0 names no allocation: the text is empty
      const auto range = RangeOf(block, context.Header().ibHnpm, property.dwValueHnid, kFolderRules.emptyEnd);
      if (!range) return fault(Cause::kOutside);
      value = CopyHeapText(range->In(block), wide, codePage);
    }
    if (property.wPropId == IdOf(tag::kContainerClass)) {
      folder.containerClass = std::move(value);
      break;
    }
    named = true;
    folder.name = wide && !text::LooksLikeText(value) ? text::Text() : std::move(value);
  }
  if (!named) return fault(Cause::kNoName);
  return folder;
}

}  // namespace velmora::recovery
