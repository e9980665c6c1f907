// Which properties of a source do not come across, and why: the one table of it.
#pragma once

#include <cstdint>

namespace velmora::complete {

/// Whose properties. Recipients keep what messages lose: their entry ids are those of people.
enum Owner : std::uint8_t { kMessage = 1, kFolder = 2, kRecipient = 4, kAttachment = 8 };

/// Whether the property of that identifier belongs to the old store, not to the object.
bool IsLeftOut(std::uint16_t id, Owner owner);

}  // namespace velmora::complete
