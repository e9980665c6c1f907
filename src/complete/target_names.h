// The identifiers that the named properties of a source have in the new store.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <vector>

#include "store/format/name_map.h"

namespace velmora::complete {

/// Those that were given so far, by the source's identifiers. One thread gives them, in the order in which the messages
/// need them; any may ask.
class TargetNames {
 public:
  std::optional<std::uint16_t> Of(std::uint16_t id) const {
    const std::uint16_t given = ids_[id - name_map::kFirstNamedId].load(std::memory_order_relaxed);
    return given != 0 ? std::optional(given) : std::nullopt;
  }

  void Give(std::uint16_t id, std::uint16_t inTarget) {
    ids_[id - name_map::kFirstNamedId].store(inTarget, std::memory_order_relaxed);
  }

 private:
  std::vector<std::atomic<std::uint16_t>> ids_ =
      std::vector<std::atomic<std::uint16_t>>(UINT16_MAX + 1 - name_map::kFirstNamedId);
};

}  // namespace velmora::complete
