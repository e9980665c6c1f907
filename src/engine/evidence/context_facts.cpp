#include "engine/evidence/context_facts.h"

#include <algorithm>
#include <limits>

#include "store/format/heap_format.h"
#include "store/format/little_endian.h"
#include "store/format/property_tags.h"

namespace velmora::engine {
namespace {

constexpr std::uint32_t kHiddenFlag = 0x40;
constexpr std::uint32_t kHasAttachmentsFlag = 0x10;
constexpr std::uint16_t kMultipleFlag = 0x1000;

bool IsOfVariableSize(PropType type) {
  switch (type) {
    case PropType::kString8:
    case PropType::kString:
    case PropType::kBinary:
    case PropType::kServerId:
    case PropType::kRestriction:
    case PropType::kRuleAction:
      return true;
    default:
      return (static_cast<std::uint16_t>(type) & kMultipleFlag) != 0;
  }
}

std::uint32_t HashOfValue(ltp::PropertyContext& context, PropTag tag) {
  const auto value = SmallValue(context, IdOf(tag));
  return value ? HashOf(*value) : 0;
}

std::uint32_t FlagsOf(ltp::PropertyContext& message) {
  return static_cast<std::uint32_t>(message.Integer32(tag::kMessageFlags).value_or(0));
}

bool IsNotEmpty(const ltp::PropertyContext& context, PropTag tag) {
  const PropertyRecord* record = context.Find(IdOf(tag));
  return record != nullptr && record->dwValueHnid != 0;
}

}  // namespace

std::uint32_t HashOf(std::span<const std::byte> bytes) {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const std::byte b : bytes) hash = (hash ^ std::to_integer<std::uint64_t>(b)) * 0x100000001B3;
  const auto folded = static_cast<std::uint32_t>(hash ^ hash >> 32);
  return folded == 0 ? 1 : folded;
}

std::optional<std::vector<std::byte>> SmallValue(ltp::PropertyContext& context, std::uint16_t id) {
  const PropertyRecord* record = context.Find(id);
  if (record == nullptr) return std::nullopt;
  if (!IsInline(record->wPropType) && !IsHid(record->dwValueHnid)) return std::nullopt;
  return context.Binary(record->Tag());
}

bool IsMessage(const ltp::PropertyContext& context) {
  return context.Find(IdOf(tag::kMessageClass)) != nullptr && context.Find(IdOf(tag::kMessageSize)) != nullptr &&
         context.Find(IdOf(tag::kContentCount)) == nullptr;
}

bool IsHidden(ltp::PropertyContext& message) { return (FlagsOf(message) & kHiddenFlag) != 0; }

void AppendKeys(const ltp::PropertyContext& context, std::vector<Nid>& keys) {
  for (const PropertyRecord& record : context.Records()) {
    if (IsOfVariableSize(record.wPropType) && !IsHid(record.dwValueHnid)) keys.push_back(Nid{record.dwValueHnid});
  }
}

void AddFacts(Bid bid, ltp::PropertyContext& context, const SubnodeLists& lists, MessageContexts& messages) {
  MessageFacts message{.bid = bid,
                       .size = static_cast<std::uint32_t>(context.Integer32(tag::kMessageSize).value_or(0)),
                       .searchKey = HashOfValue(context, tag::kSearchKey),
                       .modified = HashOfValue(context, tag::kLastModificationTime),
                       .firstKey = static_cast<std::uint32_t>(messages.keys.size()),
                       .isHidden = IsHidden(context),
                       .hasRecipients = IsNotEmpty(context, tag::kDisplayBcc) || IsNotEmpty(context, tag::kDisplayCc) ||
                                        IsNotEmpty(context, tag::kDisplayTo),
                       .hasAttachments = (FlagsOf(context) & kHasAttachmentsFlag) != 0};
  AppendKeys(context, messages.keys);
  // A context has no more records than there are property ids.
  message.keyCount = static_cast<std::uint16_t>(
      std::min<std::size_t>(messages.keys.size() - message.firstKey, std::numeric_limits<std::uint16_t>::max()));
  message.hasCommonKeys = std::ranges::any_of(messages.KeysOf(message), [&](Nid key) { return lists.IsCommon(key); });
  messages.facts.push_back(message);
}

}  // namespace velmora::engine
