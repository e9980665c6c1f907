// What the bytes of a file prove of the store that it holds, without trusting header or trees: every page and block
// that proves itself, and by what right it is used.
//
//   FindEvidence   format, encoding, pages, blocks   one pass over the file
//   JudgeNodes     which nodes are live, which blocks are in use, which entries are old   from the pages found
//   FindLostNodes  messages and folders whose entry is gone everywhere   from blocks and the folders' tables
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "engine/evidence/block_list.h"
#include "engine/evidence/found_block.h"
#include "engine/run.h"
#include "engine/source.h"
#include "store/format/block.h"
#include "store/format/encoding.h"
#include "store/format/generation.h"
#include "store/format/ids.h"
#include "store/format/page.h"
#include "store/ndb/block_source.h"
#include "text/text.h"

namespace velmora::engine {

/// A page of the node or block tree, of whatever age.
struct FoundPage {
  std::uint64_t offset = 0;
  std::uint64_t id = 0;  ///< grows with the age of the store
  PageType type = PageType::kNbt;
  std::uint8_t level = 0;
  Grade grade = Grade::kProven;
  bool isMended = false;  ///< one bit in the file is wrong, and the checksum tells which
};

struct Evidence {
  const Generation* layout = nullptr;  ///< null: no page and no block proves itself, so this is no store
  CryptMethod encoding = CryptMethod::kNone;
  std::vector<FoundPage> pages;    ///< of both trees, by ascending offset
  BlockList blocks;                ///< one for each id, the one that counts
  bool hasHurtBlocks = false;      ///< one of them is not whole
  std::uint64_t failedBlocks = 0;  ///< that look like one and fail their checksum
  bool hasStrays = false;  ///< much of the file was written elsewhere or cannot be told, so it may hold other stores

  /// The block of that id (bit 0 ignored), and its number in the list; nothing where none was found.
  std::optional<FoundBlock> Find(Bid bid) const;
  std::optional<std::size_t> NumberOf(Bid bid) const { return blocks.NumberOf(Canonical(bid)); }
};

/// What a header that proves itself says of format and encoding, and where its trees begin.
struct ToldByHeader {
  const Generation* layout = nullptr;
  CryptMethod encoding = CryptMethod::kNone;
  Bref nodeRoot;
  Bref blockRoot;
};

/// Nothing when the source has no header that proves itself.
std::optional<ToldByHeader> ReadHeader(const Source& source);

/// One pass over the file; two more where single bytes were lost from it, which are put back then: the source is opened
/// again, as it was. What was told counts only as far as nothing that was found speaks against it.
Evidence FindEvidence(Source& source, const std::optional<ToldByHeader>& told, RunContext& run);

/// Whether a block is still in use.
enum class BlockStatus : std::uint8_t { kLive, kFreed, kUnknown };

enum class Standing : std::uint8_t {
  kLive,      ///< a page that counts names it so
  kDoubtful,  ///< its page is lost; the best of its older entries or of its blocks stands in
  kFound,     ///< no entry of it is left: found by its blocks or by a folder's table
  kOlder,     ///< what a live node was before
  kDeleted,   ///< no longer live, but still in the file, whole or in part
};

/// Of a node that is in use, as far as the trees tell.
constexpr bool IsInUse(Standing standing) { return standing == Standing::kLive || standing == Standing::kDoubtful; }

/// A node, and by what right it is taken for one.
struct NodeClaim {
  ndb::NodeEntry node;
  Standing standing = Standing::kLive;
};

struct Judgement {
  bool nodesAreExact = false;    ///< the node tree is whole and the newest: its entries are the live nodes, no others
  bool blocksAreExact = false;   ///< likewise of the block tree
  std::vector<NodeClaim> nodes;  ///< by ascending id: of each id at most one that is live or doubtful, and it leads
  std::vector<BlockStatus> statuses;  ///< of Evidence::blocks, in their order
};

Judgement JudgeNodes(const Source& source, const Evidence& evidence, const std::optional<ToldByHeader>& told,
                     RunContext& run);

/// The blocks of the evidence, decoded and inflated. May be used by several threads at once. A block that is kNamed or
/// kHurt is handed out as far as it can be (see IsTrusted).
class EvidenceBlocks : public ndb::BlockSource {
 public:
  /// All must outlive it.
  EvidenceBlocks(const Source& source, const Evidence& evidence, const Judgement& judgement)
      : source_(source), evidence_(evidence), judgement_(judgement) {}

  const Generation& Format() const override { return *evidence_.layout; }
  [[nodiscard]] bool FindBlock(Bid bid, std::vector<std::byte>& out) const override;
  std::optional<ndb::NodeEntry> FindNode(Nid nid) const override;  ///< live or doubtful
  std::optional<std::size_t> SizeOf(Bid bid) const override;

  /// Reads a block that is whole as it is stored, into `out`, which the result views; nothing for another. Raises
  /// kCorrupt where it is whole no more.
  [[nodiscard]] std::optional<StoredData> FindStored(Bid bid, std::vector<std::byte>& out) const;

  /// Whether its content is proven.
  bool IsTrusted(Bid bid) const;

  /// What a block of the evidence is; one that is packed is read and inflated to tell. Data where that fails.
  BlockKind KindOf(const FoundBlock& block) const;

 private:
  struct Whole {
    StoredData data;
    BlockTrailer trailer;
  };

  Whole ReadWhole(const FoundBlock& block, std::vector<std::byte>& out) const;

  const Source& source_;
  const Evidence& evidence_;
  const Judgement& judgement_;
};

/// A folder that only its row in its parent's table tells of.
struct FolderRow {
  Nid nid{};
  Nid nidParent{};
  text::Text name;
  text::Text containerClass;
};

/// A message that only its row in its folder's table tells of.
struct MessageRow {
  Nid nid{};
  Nid nidParent{};
  text::Text subject;
  text::Text sender;
  text::Text messageClass;
  std::optional<std::uint64_t> delivered;  ///< FILETIME
  std::uint32_t size = 0;                  ///< bytes
};

struct LostNodes {
  std::vector<NodeClaim> nodes;         ///< by ascending id; those without a known id get one above all others
  std::vector<FolderRow> folderRows;    ///< of folders whose own node is gone
  std::vector<MessageRow> messageRows;  ///< of messages of which nothing else is left
  std::vector<Nid> gone;                ///< messages in use that are deleted, as the tables of folders tell
};

/// Looks for messages and folders that no entry names, where the node tree is not exact or `deleted` ones are wanted
/// too. Without the latter none of kOlder or kDeleted is among them. A node of the judgement that is doubtful may be
/// among them again, with the folder whose table lists it; of one that is older or deleted a found one takes the place.
/// A node without a folder has kNoNid for a parent, and texts of ANSI stores are decoded by the lossless page.
LostNodes FindLostNodes(const EvidenceBlocks& blocks, const Evidence& evidence, const Judgement& judgement,
                        bool deleted, RunContext& run);

}  // namespace velmora::engine
