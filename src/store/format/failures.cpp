#include "store/format/failures.h"

#include <array>
#include <charconv>

namespace velmora {

std::string Named(std::string_view kind, std::uint64_t id) {
  std::array<char, 16> digits{};
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), id, 16);
  return std::string(kind).append(" 0x").append(digits.data(), end);
}

}  // namespace velmora
