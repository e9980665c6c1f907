// Identifiers that no other object of the world has.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "store/messaging/entry_id.h"

namespace velmora::messaging {

/// Random numbers of a new store. With a seed the same store gets the same numbers again; without one they
/// are the system's.
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
