// What is in a file, told from its bytes alone, and read from there: the result of all that evidence.h does.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "engine/evidence/evidence.h"
#include "engine/evidence/store_places.h"
#include "engine/heap_evidence.h"
#include "engine/run.h"
#include "engine/source.h"
#include "store/ndb/block_source.h"

namespace velmora::engine {

/// Constant once it is made: any number of threads may read it then.
class ProvenStore : public ndb::BlockSource {
 public:
  /// Looks through a source. Without `deleted` what is no longer live is not looked for beyond what old pages name.
  /// With `at` it is the store that begins there in the file. Says progress and passes pause points.
  static std::unique_ptr<const ProvenStore> Prove(std::unique_ptr<const platform::ByteSource> bytes, bool deleted,
                                                  RunContext& run, std::optional<std::uint64_t> at = {});

  /// False where nothing in the source proves to be of a store: it has no format then, and no nodes.
  bool IsStore() const { return evidence_.layout != nullptr; }

  const Generation& Format() const override { return blocks_.Format(); }
  [[nodiscard]] bool FindBlock(Bid bid, std::vector<std::byte>& out) const override {
    return blocks_.FindBlock(bid, out);
  }
  std::optional<std::size_t> SizeOf(Bid bid) const override { return blocks_.SizeOf(bid); }
  /// See EvidenceBlocks.
  [[nodiscard]] std::optional<StoredData> FindStored(Bid bid, std::vector<std::byte>& out) const {
    return blocks_.FindStored(bid, out);
  }
  std::optional<ndb::NodeEntry> FindNode(Nid nid) const override;

  /// Whether the content of a block is proven; one that is hurt is read as far as it can be.
  bool IsTrusted(Bid bid) const { return blocks_.IsTrusted(bid); }
  bool HasHurtBlocks() const { return evidence_.hasHurtBlocks; }

  /// All live nodes by ascending id: those that pages name, those that stand in for them, and those that were found
  /// without any.
  const std::vector<ndb::NodeEntry>& Nodes() const { return nodes_; }

  bool IsNameMapWhole() const { return isNameMapWhole_; }
  /// The maps of names that the file holds, if that of the store is not whole; see name_maps.h.
  const std::vector<ndb::NodeTrees>& NameMaps() const { return nameMaps_; }

  StoreKind Kind() const { return kind_; }
  /// All of the file, or the part of it that is this store: every offset counts from the beginning of the store.
  const Source& Bytes() const { return source_; }
  /// Where it lies in the file, if it is not all of it.
  const std::optional<StorePlace>& Place() const { return place_; }
  /// The other stores that the file holds. Nothing of them is in this one.
  const std::vector<StorePlace>& Others() const { return others_; }
  const std::optional<ToldByHeader>& Header() const { return told_; }
  const Evidence& Found() const { return evidence_; }
  /// Of both, the claims that are left are those of nodes that are not live.
  const Judgement& Judged() const { return judgement_; }
  const LostNodes& Lost() const { return lost_; }

 private:
  ProvenStore() = default;
  void Look(std::shared_ptr<const platform::ByteSource> file, std::optional<std::uint64_t> at, RunContext& run);
  void LookAt(const std::shared_ptr<const platform::ByteSource>& file, Origin origin, std::uint64_t to,
              RunContext& run);
  void GatherNodes();
  void FindKind();
  void FindNames(RunContext& run);

  Source source_;
  std::optional<StorePlace> place_;
  std::vector<StorePlace> others_;
  std::optional<ToldByHeader> told_;
  Evidence evidence_;
  Judgement judgement_;
  LostNodes lost_;
  EvidenceBlocks blocks_{source_, evidence_, judgement_};
  std::vector<ndb::NodeEntry> nodes_;
  bool isNameMapWhole_ = false;
  std::vector<ndb::NodeTrees> nameMaps_;
  StoreKind kind_ = StoreKind::kNone;
};

}  // namespace velmora::engine
