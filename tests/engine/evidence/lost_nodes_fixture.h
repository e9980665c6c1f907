// A forged store of which some node entries are lost, as the search for lost nodes is handed it.
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <vector>

#include "engine/evidence/evidence.h"
#include "engine/run.h"
#include "forge/forge.h"
#include "platform/memory_file.h"
#include "store/format/block.h"
#include "store/format/heap_format.h"
#include "store/ndb/store_reader.h"

namespace velmora::engine {

class WreckedStore {
 public:
  /// All blocks are proven and live, all nodes live. Of nodes with one id the first is meant.
  explicit WreckedStore(const forge::Image& image) : file_(image.bytes) {
    reader_ = ndb::StoreReader::Open(file_);
    source_.Open(std::make_unique<platform::MemoryFile>(image.bytes));
    evidence_.layout = &reader_->Format();
    evidence_.encoding = ReadHeader(source_).value().encoding;
    std::set<Bid> named;
    std::vector<FoundBlock> blocks;
    std::vector<std::byte> content;
    for (const forge::PlacedBlock& placed : image.blocks) {
      const Bid bid = Canonical(Bid{placed.bid});
      reader_->ReadBlock(bid, content);
      const FoundBlock block{.bid = bid, .offset = placed.offset, .cb = placed.size, .kind = KindOf(placed, content)};
      if (IsInternal(bid)) {
        ForEachReference(InternalBlock(content, reader_->Format()), [&](Bid child) { named.insert(Canonical(child)); });
      }
      blocks.push_back(block);
    }
    std::ranges::sort(blocks, {}, &FoundBlock::bid);
    for (FoundBlock& block : blocks) block.isNamed = named.contains(block.bid);
    evidence_.blocks = BlockList(blocks);
    judgement_.statuses.assign(evidence_.blocks.size(), BlockStatus::kLive);
    judgement_.blocksAreExact = true;
    for (const ndb::NodeEntry& node : reader_->Nodes()) judgement_.nodes.push_back({node, Standing::kLive});
  }

  void Lose(const std::function<bool(const ndb::NodeEntry&)>& isLost) {
    std::erase_if(judgement_.nodes, [&](const NodeClaim& claim) { return isLost(claim.node); });
  }
  void Lose(forge::Nid nid) {
    Lose([nid](const ndb::NodeEntry& node) { return node.nid == Nid{nid}; });
  }
  void LoseAllNodes() { judgement_.nodes.clear(); }

  /// The entry of a node as it is in the store, whatever was lost of it.
  ndb::NodeEntry Entry(forge::Nid nid) const {
    const auto node = reader_->FindNode(Nid{nid});
    if (!node) throw std::out_of_range("no such node");
    return *node;
  }

  /// One more claim, behind those of the same id.
  void Claim(const ndb::NodeEntry& node, Standing standing) {
    const auto place =
        std::ranges::upper_bound(judgement_.nodes, node.nid, {}, [](const NodeClaim& claim) { return claim.node.nid; });
    judgement_.nodes.insert(place, {node, standing});
  }

  void SetStatus(Bid bid, BlockStatus status) { judgement_.statuses.at(evidence_.NumberOf(bid).value()) = status; }

  /// Nothing tells which blocks are in use.
  void LoseBlockTree() {
    judgement_.blocksAreExact = false;
    std::ranges::fill(judgement_.statuses, BlockStatus::kUnknown);
  }

  /// The block is gone from the file.
  void LoseBlock(Bid bid) {
    judgement_.statuses.erase(judgement_.statuses.begin() +
                              static_cast<std::ptrdiff_t>(evidence_.NumberOf(bid).value()));
    std::vector<FoundBlock> left(evidence_.blocks.begin(), evidence_.blocks.end());
    std::erase_if(left, [bid](const FoundBlock& block) { return block.bid == Canonical(bid); });
    evidence_.blocks = BlockList(left);
  }

  LostNodes Find(bool deleted = false) {
    return FindLostNodes(EvidenceBlocks(source_, evidence_, judgement_), evidence_, judgement_, deleted, run_);
  }

  Judgement& Judged() { return judgement_; }
  Evidence& Found() { return evidence_; }

 private:
  static BlockKind KindOf(const forge::PlacedBlock& placed, std::span<const std::byte> content) {
    if (placed.size != placed.inflatedSize) return BlockKind::kPacked;
    if (IsInternal(Bid{placed.bid})) {
      return DecodeInternalHead(content).btype == BlockType::kDataTree ? BlockKind::kList : BlockKind::kSubnodes;
    }
    if (content.size() < kHnHdrSize) return BlockKind::kData;
    const auto word = Load<std::uint16_t>(content, kOffHeapWord);
    if (word == HeapWord(ClientSig::kPropertyContext)) return BlockKind::kPropertyContext;
    return word == HeapWord(ClientSig::kTableContext) ? BlockKind::kTable : BlockKind::kData;
  }

  platform::MemoryFile file_;
  Source source_;
  std::unique_ptr<ndb::StoreReader> reader_;
  Evidence evidence_;
  Judgement judgement_;
  RunContext run_;
};

/// The claim to an id; throws when there is none, or several.
inline const NodeClaim& ClaimTo(const LostNodes& lost, forge::Nid nid) {
  const auto claims = std::ranges::equal_range(lost.nodes, Nid{nid}, {}, [](const NodeClaim& c) { return c.node.nid; });
  if (claims.size() != 1) throw std::runtime_error(std::to_string(claims.size()) + " claims to a node");
  return claims.front();
}

/// A message with large values, whose ids no other message has.
inline forge::Message WithKeys(forge::Message message, forge::Nid firstValue) {
  message.plainPlace = forge::Place::kBlock;
  message.context.firstValueNid = firstValue;
  return message;
}

}  // namespace velmora::engine
