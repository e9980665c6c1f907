// What readers do about bytes that break the format.
//
// A reader that is given no list is strict: the first fault that it meets is raised (FailureError) and ends the
// reading. One that is given a list is tolerant: it notes each fault, leaves out what cannot be read, and hands on the
// rest. It raises only where nothing can be handed on.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "store/format/failures.h"
#include "store/format/ids.h"

namespace velmora::ndb {

/// The faults of one node, with its sub-nodes and values. Each names the object that is lost or wrong: mostly a block.
class Faults {
 public:
  static constexpr std::size_t kMostListed = 100;

  explicit Faults(Nid node = kNoNid) : node_(node) {}

  /// Lists a fault, unless it is listed already or the list is full.
  void Add(Failure fault) {
    if (std::ranges::find(list_, fault) != list_.end()) return;
    ++count_;
    if (list_.size() < kMostListed) list_.push_back(std::move(fault));
  }

  Nid Node() const { return node_; }
  const std::vector<Failure>& List() const { return list_; }

  /// With those that the list had no room for.
  std::size_t Count() const { return count_; }

 private:
  Nid node_;
  std::vector<Failure> list_;
  std::size_t count_ = 0;
};

/// Notes a fault; raises it where there is no list. What a store may hold millions of is noted like this and not raised
/// first: raising costs more than reading a small object.
inline void Note(Faults* faults, Failure fault) {
  if (faults == nullptr) throw FailureError(std::move(fault));
  faults->Add(std::move(fault));
}

/// Runs a step. False when it failed and that is noted; raises the failure where there is no list.
template <class Step>
bool Tolerate(Faults* faults, Step step) {
  try {
    step();
    return true;
  } catch (const FailureError& failure) {
    if (faults == nullptr) throw;
    faults->Add(failure.Cause());
    return false;
  }
}

}  // namespace velmora::ndb
