// Identifiers: of objects of a store, of the people that its items name, of conversations, and new ones.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "store/format/byte_view.h"
#include "store/format/ids.h"
#include "text/text.h"

namespace velmora::messaging {

using Uid = std::array<std::byte, 16>;

/// Entry id of a node of the store with that record key: 24 bytes.
Bytes NodeEntryId(const Uid& recordKey, Nid nid);

/// The node that an entry id of the store with that record key names; nothing for another store's.
std::optional<Nid> NodeOfEntryId(std::span<const std::byte> entryId, const Uid& recordKey);

/// Entry id of a person who is in no address book: name, type of address ("SMTP") and address.
Bytes OneOffEntryId(text::TextView name, text::TextView type, text::TextView address);

/// Key by which an address is searched for: "TYPE:ADDRESS" in capitals, as 8-bit text with its NUL.
Bytes AddressSearchKey(text::TextView type, text::TextView address);

/// Key by which a contents table groups messages into conversations: MD5 of the topic's UTF-16 units in capitals;
/// nothing without a topic.
std::optional<Uid> ConversationIdOf(text::TextView topic);

/// Identifiers that no other object of the world has. With a seed the same store gets the same ones again; without
/// one they are the system's random numbers.
class UidSource {
 public:
  /// `name` keeps stores of one seed apart.
  UidSource(std::optional<std::int64_t> seed, std::string_view name);

  Uid Next();

 private:
  std::uint64_t NextNumber();

  std::uint64_t state_[2];
};

}  // namespace velmora::messaging
