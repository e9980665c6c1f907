#include "complete/store_target.h"

#include "store/messaging/failures.h"

namespace velmora::complete {

std::optional<std::uint16_t> StoreTarget::NamedId(std::uint16_t id) {
  if (const auto given = given_.Of(id)) return given;
  const messaging::AnyPropertyName* name = names_.Of(id);
  if (name == nullptr) return std::nullopt;
  const std::uint16_t inTarget = store_.NamedId(*name);
  given_.Give(id, inTarget);
  return inTarget;
}

void StoreTarget::PutLong(messaging::PropertyBag& out, PropTag tag, std::span<const std::byte> value) {
  store_.PutTree(out, tag, messaging::AsOperation([&] { return store_.Ndb().WriteData(value); }));
}

std::uint64_t StoreTarget::PutTree(messaging::PropertyBag& out, PropTag tag, ndb::DataTreeReader from) {
  const ndb::DataTree copied = trees_.Copy(std::move(from), store_.Ndb());
  store_.PutTree(out, tag, copied);
  return copied.size;
}

}  // namespace velmora::complete
