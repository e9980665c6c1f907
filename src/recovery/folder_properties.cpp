#include "recovery/folder_properties.h"

#include "recovery/heap_text.h"
#include "recovery/property_context.h"
#include "store/format/property_tags.h"
#include "text/plausibility.h"

namespace velmora::recovery {

namespace {

tl::unexpected<FolderFault> Fault(text::TextView reason) { return tl::unexpected(FolderFault{{}, reason}); }
tl::unexpected<FolderFault> Fault(const BlockFault& fault) { return tl::unexpected(FolderFault{fault, {}}); }

}  // namespace

tl::expected<FolderProperties, FolderFault> ParseFolderProperties(const engine::ScannedStore& store,
                                                                  const engine::BlockRecord& record,
                                                                  const text::CodePage& codePage,
                                                                  ContentAllowance& allowance) {
  const auto bytes = ReadHeapBlock(store, record, record.bid, kFolderRules, allowance);
  if (!bytes) return Fault(bytes.error());
  const ByteView block(*bytes);
  const PropertyContext context(block, store, kFolderRules);
  if (context.GetFault() != PropertyContext::Fault::kNone) {
    return Fault(context.BlockFaultOf(store, record, kFolderRules));
  }

  const bool wide = store.layout.wideFormat;
  FolderProperties folder;
  bool named = false;
  for (std::uint32_t index = 0; index < context.Count(); ++index) {
    const PropertyRecord property = context.Record(index);
    if (property.wPropId == IdOf(tag::kMessageClass)) return Fault(u"its data block is that of a message");
    if (property.wPropId != IdOf(tag::kDisplayName) && property.wPropId != IdOf(tag::kContainerClass)) continue;

    text::Text value;
    if (property.dwValueHnid != 0) {  // identifier 0 names no allocation: the text is empty
      const auto range = RangeOf(block, context.Header().ibHnpm, property.dwValueHnid, kFolderRules.emptyEnd);
      if (!range) return Fault(u"its name or class does not stand in its block");
      value = CopyHeapText(range->In(block), wide, codePage);
    }
    if (property.wPropId == IdOf(tag::kContainerClass)) {
      folder.containerClass = std::move(value);
      break;
    }
    named = true;
    folder.name = wide && !text::LooksLikeText(value) ? text::Text() : std::move(value);
  }
  if (!named) return Fault(u"it has no name");
  return folder;
}

}  // namespace velmora::recovery
