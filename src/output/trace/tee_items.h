// The items of a Tee, and what all its objects have in common: one object stands for one object of each library.
#pragma once

#include <type_traits>
#include <utility>
#include <vector>

#include "store/operations.h"

namespace velmora::output {

/// The same object in every library; a library that has none is left out, but the first is always there.
template <class T>
class TeeTargets {
 public:
  explicit TeeTargets(std::vector<Ref<T>> targets) : targets_(std::move(targets)) {}

  T& Primary() const { return *targets_.front(); }
  const std::vector<Ref<T>>& All() const { return targets_; }

  /// Calls `operation` on each target, the first one first.
  template <class Operation>
  void Each(Operation&& operation) const {
    operation(Primary());
    for (std::size_t i = 1; i < targets_.size(); ++i) {
      try {
        operation(*targets_[i]);
      } catch (const OutputFailure&) {  // the first library's word stands
      }
    }
  }

  /// As Each, and wraps the objects that the operation gives in a Wrapper; null where the first gives null.
  template <class Wrapper, class Operation>
  auto Make(Operation&& operation) const {
    using Result = std::invoke_result_t<Operation, T&>;
    std::vector<Result> made;
    Each([&](T& target) {
      if (made.empty()) {
        made.push_back(operation(target));
      } else if (made.front()) {
        if (Result another = operation(target)) made.push_back(std::move(another));
      }
    });
    return made.front() ? Result(std::make_shared<Wrapper>(std::move(made))) : Result();
  }

 private:
  std::vector<Ref<T>> targets_;
};

class TeeItems : public RDOItems {
 public:
  explicit TeeItems(std::vector<Ref<RDOItems>> targets) : targets_(std::move(targets)) {}
  std::int32_t Count() const override { return targets_.Primary().Count(); }
  Ref<RDOMail> Add(text::TextView messageClass) override;
  Ref<RDOMail> GetFirst() override;
  Ref<RDOMail> GetNext() override;

 private:
  TeeTargets<RDOItems> targets_;
};

}  // namespace velmora::output
