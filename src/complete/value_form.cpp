#include "complete/value_form.h"

#include <string_view>

#include "store/format/failures.h"
#include "store/format/property_tags.h"
#include "store/ltp/multi_value.h"
#include "store/ltp/property_value.h"

namespace velmora::complete {
namespace {

/// HTML is bytes, in the page that it tells itself, though some programs call it text.
constexpr PropTag kHtmlAsText = MakeTag(IdOf(tag::kHtml), PropType::kString8);

/// Some programs put 8-bit text into a property for UTF-16; an odd length tells.
bool Is8Bit(PropTag tag, std::uint64_t size) {
  return TypeOf(tag) == PropType::kString8 || (TypeOf(tag) == PropType::kString && size % 2 != 0);
}

/// Not the contents that people made, in which an entry id would be a coincidence.
bool MayRefer(PropTag tag) {
  if (TypeOf(tag) != PropType::kBinary && TypeOf(tag) != PropType::kMultipleBinary) return false;
  return tag != tag::kAttachDataBinary && tag != tag::kHtml && tag != tag::kRtfCompressed;
}

}  // namespace

PropTag TargetForm(PropTag tag) {
  if (tag == kHtmlAsText) return tag::kHtml;
  if (TypeOf(tag) == PropType::kString8) return MakeTag(IdOf(tag), PropType::kString);
  if (TypeOf(tag) == PropType::kMultipleString8) return MakeTag(IdOf(tag), PropType::kMultipleString);
  return tag;
}

bool IsCopiedAsItIs(PropTag tag, std::uint64_t size) {
  return tag == kHtmlAsText || (!Is8Bit(tag, size) && TypeOf(tag) != PropType::kMultipleString8);
}

bool BringIntoForm(PropTag tag, std::vector<std::byte>& value, const text::CodePage& page, const References& references,
                   std::uint64_t& undefinedBytes) {
  const auto decoded = [&](std::span<const std::byte> bytes) {
    return page.DecodeKeepingAll({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, undefinedBytes);
  };
  if (tag == kHtmlAsText) return true;
  if (Is8Bit(tag, value.size())) {
    value = ltp::EncodeText(decoded(value));
  } else if (TypeOf(tag) == PropType::kMultipleString8) {
    std::vector<text::Text> texts;
    const auto elements = ltp::DecodeMultiple(value);
    if (!elements) RaiseCorrupt({ObjectKind::kProperty, tag}, value.size(), "the value does not fit its type");
    for (const auto& element : *elements) texts.push_back(decoded(element));
    value = ltp::EncodeMultiple(texts);
  } else if (TypeOf(tag) == PropType::kBoolean && !value.empty()) {
    value[0] = std::byte(value[0] != std::byte{0});
  } else if (MayRefer(tag) && references.Rewrite(value) != 0 && references.IsEntryId(value)) {
    return false;
  }
  ltp::CheckValue(TargetForm(tag), value);
  return true;
}

}  // namespace velmora::complete
