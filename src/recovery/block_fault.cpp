#include "recovery/block_fault.h"

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

text::Text TextOf(const BlockFault& fault) {
  using Cause = BlockFault::Cause;
  if (fault.cause == Cause::kTooMuch) return text::Text(kClaimsTooMuch);
  if (fault.cause == Cause::kNotFound && fault.bid == 0) return u"it has no data block";
  text::Text text = u"its data block " + HexOf(fault.bid);
  if (fault.cause == Cause::kNotFound) return text + u" was not found";
  text += u" at offset " + DecimalOf(fault.offset);
  switch (fault.cause) {
    case Cause::kNotRead:
      return text + u" could not be read";
    case Cause::kCutOff:
      return text + u" is cut off by the end of the source";
    case Cause::kNotInflated:
      return text + u" could not be inflated";
    case Cause::kList:
      return text + u" is a list of blocks, and only what stands in one block is read";
    case Cause::kSignature:
      return text + u" is no property context: its signature is " + HexOf(fault.signature);
    default:
      return text + u" holds a property context that is damaged";
  }
}

}  // namespace velmora::recovery
