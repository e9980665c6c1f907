// The new store as the target of a copy.
#pragma once

#include "complete/copy_target.h"
#include "complete/source_names.h"
#include "complete/target_names.h"
#include "complete/tree_copier.h"

namespace velmora::complete {

class StoreTarget : public CopyTarget {
 public:
  /// All must outlive it. `given` gets the identifiers of names.
  StoreTarget(const LiveStore& source, const SourceNames& names, TargetNames& given, messaging::StoreWriter& store)
      : names_(names), given_(given), store_(store), trees_(source) {}

  std::optional<std::uint16_t> NamedId(std::uint16_t id) override;
  text::FileTime Now() const override { return store_.Now(); }
  void PutLong(messaging::PropertyBag& out, PropTag tag, std::span<const std::byte> value) override;
  std::uint64_t PutTree(messaging::PropertyBag& out, PropTag tag, ndb::DataTreeReader from) override;
  messaging::StoreWriter& Store() override { return store_; }

 private:
  const SourceNames& names_;
  TargetNames& given_;
  messaging::StoreWriter& store_;
  TreeCopier trees_;
};

}  // namespace velmora::complete
