// The lists of sub-nodes that no other list names, and which of them hold a sub-node of a given id.
//
// The ids of values that lie beside a heap come from one counter for the whole store, so the list that holds all ids
// that a context asks for is its own, or that of another version of it.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "engine/evidence/evidence_view.h"

namespace velmora::engine {

struct SubnodeList {
  Bid bid{};
  bool hasValues = false;  ///< of properties or of a table, beside their heap
  bool hasRecipients = false;
  bool hasAttachments = false;
};

class SubnodeLists {
 public:
  /// `bids` by ascending id. Takes 16 bytes a list and 8 for each value in it.
  SubnodeLists(const EvidenceView& view, std::span<const Bid> bids, RunContext& run);

  /// By ascending id.
  std::span<const SubnodeList> All() const { return lists_; }

  /// One value in one list, by its position in All().
  struct Entry {
    Nid nid{};
    std::uint32_t list = 0;
    friend auto operator<=>(const Entry&, const Entry&) = default;
  };

  /// The entries of that id, those of older lists first.
  std::span<const Entry> Holding(Nid nid) const;

  bool Holds(std::uint32_t list, Nid nid) const;

  /// Whether so many lists hold that id that it does not tell whose they are: some programs number the values of each
  /// message anew.
  bool IsCommon(Nid nid) const { return Holding(nid).size() > kMostVersions; }

 private:
  static constexpr std::size_t kMostVersions = 8;  ///< of one message that may well be left

  std::vector<SubnodeList> lists_;
  std::vector<Entry> entries_;  ///< in order
};

}  // namespace velmora::engine
