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
  const text::Text block = u"its data block " + HexOf(fault.bid);
  const text::Text placed = block + u" at offset " + DecimalOf(fault.offset);
  switch (fault.cause) {
    case Cause::kNotFound:
      return fault.bid == 0 ? u"it has no data block" : block + u" was not found";
    case Cause::kNotRead:
      return placed + u" could not be read";
    case Cause::kCutOff:
      return placed + u" is cut off by the end of the source";
    case Cause::kNotInflated:
      return placed + u" could not be inflated";
    case Cause::kList:
      return placed + u" is a list of blocks, and only what stands in one block is read";
    case Cause::kSignature:
      return placed + u" is no property context: its signature is " + HexOf(fault.signature);
    case Cause::kBrokenHeap:
      return placed + u" holds a property context that is damaged";
    case Cause::kTooMuch:
      return text::Text(kClaimsTooMuch);
    case Cause::kOverfull:
      return block + u" claims more entries than it can hold";
    case Cause::kUpperLevel:
      return u"the list of its sub-nodes has an upper level, which is not read";
    case Cause::kNoEncoding:
      return u"the encoding of the store could not be told from its block";
    case Cause::kMessage:
      return u"its data block is that of a message";
    case Cause::kOutside:
      return u"its name or class does not stand in its block";
    case Cause::kNoName:
      return u"it has no name";
    case Cause::kNoText:
      return u"its name is empty or does not look like text";
  }
  return {};
}

}  // namespace velmora::recovery
