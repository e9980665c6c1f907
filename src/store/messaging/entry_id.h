// Identifiers by which objects of a store, and the people that its items name, are referred to.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "store/format/ids.h"
#include "store/messaging/byte_writer.h"
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

}  // namespace velmora::messaging
