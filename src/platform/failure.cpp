#include "platform/failure.h"

#include <array>
#include <charconv>
#include <string_view>

namespace velmora::platform {
namespace {

// In the order of ObjectKind.
constexpr std::string_view kKindNames[] = {"",          "store", "header",   "page or block", "block",
                                           "data tree", "node",  "sub-node", "sub-node tree", "heap",
                                           "heap item", "table", "row",      "property"};
static_assert(std::size(kKindNames) == static_cast<std::size_t>(ObjectKind::kProperty) + 1);

}  // namespace

std::string TextOf(const FailedObject& object) {
  if (object.kind == ObjectKind::kFile) return object.path;
  std::string text(kKindNames[static_cast<std::size_t>(object.kind)]);
  if (!object.id) return text;
  std::array<char, 16> digits{};
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), *object.id, 16);
  return text.append(" 0x").append(digits.data(), end);
}

std::string TextOf(const Failure& failure) {
  const std::string object = TextOf(failure.object);
  return object.empty() ? failure.message : object + ": " + failure.message;
}

}  // namespace velmora::platform
