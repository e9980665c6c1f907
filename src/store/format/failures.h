// Failures that name the object of the store and the value that is wrong with it.
#pragma once

#include <string>
#include <string_view>

#include "platform/failure.h"
#include "store/format/ids.h"

namespace velmora {

using platform::Failure;
using platform::FailureKind;
using platform::Result;

/// "block 0x1A4", "node 0x21".
std::string Named(std::string_view kind, std::uint64_t id);
inline std::string Named(std::string_view kind, Nid nid) { return Named(kind, Value(nid)); }
inline std::string Named(std::string_view kind, Bid bid) { return Named(kind, Value(bid)); }

inline tl::unexpected<Failure> Fail(FailureKind kind, std::string object, std::uint64_t value, std::string_view why) {
  return tl::unexpected(Failure{kind, std::move(object), value, std::string(why)});
}

inline tl::unexpected<Failure> Corrupt(std::string object, std::uint64_t value, std::string_view why) {
  return Fail(FailureKind::kCorrupt, std::move(object), value, why);
}

}  // namespace velmora
