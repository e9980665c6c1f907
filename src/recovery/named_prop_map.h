// The run-long map of a store's local ids of named properties (0x8000 and up) to their long ids.
#pragma once

#include <cstdint>
#include <unordered_map>

namespace velmora::recovery {

class NamedPropMap {
 public:
  /// Takes the pair in unless some pair has the same local id or the same long id: the first to arrive wins.
  void AddNamedProp(std::uint32_t longId, std::uint32_t localId);

  /// The long id of a local id; an id without a pair is returned as it is.
  std::uint32_t TranslateNamedId(std::uint32_t localId) const;

  void Clear();

 private:
  std::unordered_map<std::uint32_t, std::uint32_t> longByLocal_;
  std::unordered_map<std::uint32_t, std::uint32_t> localByLong_;
};

}  // namespace velmora::recovery
