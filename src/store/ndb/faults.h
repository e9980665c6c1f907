// What readers do about bytes that break the format.
//
// A reader that is given no list is strict: the first fault that it meets ends the reading, as a failure. One that is
// given a list is tolerant: it notes each fault with its place, leaves out what cannot be read, and hands on the rest.
// It fails only where nothing can be handed on.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "store/format/failures.h"
#include "store/format/ids.h"

namespace velmora::ndb {

struct Fault {
  Bid block{};    ///< the block that is lost or wrong; kNoBid where the fault is in no one block
  Failure cause;  ///< what, and where: the offset in the file or the value that does not fit
};

/// The faults of one node, with its sub-nodes and values.
class Faults {
 public:
  static constexpr std::size_t kMostListed = 100;

  explicit Faults(Nid node = kNoNid) : node_(node) {}

  /// Lists a fault, unless it is listed already or the list is full.
  void Add(Bid block, Failure cause) {
    const bool isListed = std::ranges::any_of(list_, [&](const Fault& fault) {
      return fault.block == block && fault.cause.offset == cause.offset && fault.cause.message == cause.message;
    });
    if (isListed) return;
    ++count_;
    if (list_.size() < kMostListed) list_.push_back({block, std::move(cause)});
  }

  Nid Node() const { return node_; }
  const std::vector<Fault>& List() const { return list_; }

  /// With those that the list had no room for.
  std::size_t Count() const { return count_; }

 private:
  Nid node_;
  std::vector<Fault> list_;
  std::size_t count_ = 0;
};

/// Nothing when the fault is noted in `faults`, the failure when there is no list.
[[nodiscard]] inline Result<void> Tolerate(Faults* faults, Bid block, Failure cause) {
  if (faults == nullptr) return tl::unexpected(std::move(cause));
  faults->Add(block, std::move(cause));
  return {};
}

[[nodiscard]] inline Result<void> Tolerate(Faults* faults, Bid block, tl::unexpected<Failure> cause) {
  return Tolerate(faults, block, std::move(cause.value()));
}

}  // namespace velmora::ndb
