#include "recovery/block_failure.h"

#include <charconv>
#include <string>

namespace velmora::recovery {
namespace {

text::Text FormatNumber(std::uint64_t number, int base) {
  char digits[20];
  const auto end = std::to_chars(digits, digits + sizeof digits, number, base).ptr;
  return text::FromUtf8(std::string_view(digits, static_cast<std::size_t>(end - digits)));
}

}  // namespace

text::Text HexOf(std::uint64_t number) { return text::Text(u"0x").append(FormatNumber(number, 16)); }
text::Text DecimalOf(std::uint64_t number) { return FormatNumber(number, 10); }

Failure BlockNotFound(std::uint32_t bid) {
  if (bid == 0) return PlainFailure(FailureKind::kNotFound, "it has no data block");
  return {FailureKind::kNotFound, {platform::ObjectKind::kBlock, bid}, {}, "was not found"};
}

Failure BlockFailure(FailureKind kind, const engine::BlockRecord& record, std::string_view why) {
  return {kind, {platform::ObjectKind::kBlock, record.bid}, record.offset, std::string(why)};
}

Failure BlockNotRead(const engine::BlockRecord& record) {
  return BlockFailure(FailureKind::kInputOutput, record, "could not be read");
}

Failure TooMuchClaimed() { return PlainFailure(FailureKind::kNotSupported, text::ToUtf8(kClaimsTooMuch)); }

Failure PlainFailure(FailureKind kind, std::string_view why) { return {kind, {}, {}, std::string(why)}; }

text::Text ReasonOf(const Failure& failure) {
  const text::Text why = text::FromUtf8(failure.message);
  if (failure.object.kind != platform::ObjectKind::kBlock) return why;
  const text::Text place = failure.offset ? u" at offset " + DecimalOf(*failure.offset) : text::Text();
  return u"its data block " + HexOf(*failure.object.id) + place + u" " + why;
}

}  // namespace velmora::recovery
