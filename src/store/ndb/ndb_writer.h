// The node database of a new store: blocks go to disk as they are written, the two trees that find them at
// each commit.
//
// Life of a store: Create writes an empty store; nodes are set and removed; Commit makes everything so far
// what a reader of the file finds; Seal does the same and leaves exact allocation maps. The header on disk
// always names complete trees and blocks that nothing overwrites: space that becomes free is used again
// only after the commit that no longer needs it. So a process that is killed at any instant leaves a file
// that opens with all of the last commit.
//
// Trees are owned by count: a tree that was written belongs to nobody; a node (SetNode) or an entry of a
// sub-node tree (SubnodeTreeWriter) refers to it; several may refer to one. When the last reference goes,
// its blocks are freed with all that they refer to. What nothing refers to when the store is sealed is
// freed then.
//
// A change that fails raises a FailureError. After a failing write every further change raises the same failure;
// reading still works. A disk that is full need not come to that: the file is lengthened ahead of what is written,
// by room for the next commit (Reserve). One thread at a time.
#pragma once

#include <array>
#include <memory>
#include <span>

#include "platform/file.h"
#include "platform/workers.h"
#include "store/format/block.h"
#include "store/format/encoding.h"
#include "store/format/header.h"
#include "store/ndb/block_buffer.h"
#include "store/ndb/block_file.h"
#include "store/ndb/block_source.h"
#include "store/ndb/node_table.h"
#include "store/ndb/tree_pages.h"

namespace velmora::ndb {

class NdbWriter : public BlockSource {
 public:
  /// Makes an empty store of nothing but a header, maps and empty trees in `file`, which should be empty
  /// and must outlive the writer, and commits it. `workers` encode and write what is given to the writer; the bytes of
  /// the store do not depend on how many they are.
  [[nodiscard]] static std::unique_ptr<NdbWriter> Create(
      platform::ByteStore& file, CryptMethod cryptMethod = CryptMethod::kPermute,
      platform::Workers& workers = platform::Workers::WithoutThreads());

  // -- nodes

  /// A node id of that type that was never handed out: the next index of the type's counter; none when all
  /// 134 million are used up. Ids of a folder's (or search folder's) four nodes share one index: ask for the
  /// folder, derive the rest with Sibling.
  Nid NewNid(NidType type);

  /// Adds a node, or gives an existing one other trees (its old ones are released) and parent. `trees` may
  /// be empty, or shared with other nodes. kNotSupported for nid 0, and when a block would be referred to
  /// more than 65534 times.
  void SetNode(Nid nid, const NodeTrees& trees, Nid nidParent = kNoNid);

  /// Removes a node and releases its trees; a node that is not there is no failure.
  void RemoveNode(Nid nid);

  /// Frees a written tree that nothing refers to; one that is referred to stays as it is. Raises nothing: where
  /// freeing fails, the next change tells of it.
  void Discard(const NodeTrees& trees);

  /// Keeps a tree, though nothing may refer to it, until it is let go as often as it was held; it is freed
  /// then if nothing refers to it. What is held when the store is sealed is not kept.
  void Hold(const NodeTrees& trees);
  void LetGo(const NodeTrees& trees);

  // -- values

  /// Largest data tree: its size is a 32-bit field.
  static constexpr std::uint64_t kMaxTreeSize = 0xFFFFFFFF;

  /// Writes a value of any size up to kMaxTreeSize in one step; no bytes give an empty tree.
  [[nodiscard]] DataTree WriteData(std::span<const std::byte> bytes);

  /// A number for the version cell of a table row; distinct over the whole store, never 0.
  std::uint32_t NewRowVersion();

  // -- reading what was written, committed or not

  const Generation& Format() const override { return generations::kUnicode; }
  [[nodiscard]] bool FindBlock(Bid bid, std::vector<std::byte>& out) const override;
  std::optional<NodeEntry> FindNode(Nid nid) const override;

  // -- the file

  /// From now on, whatever else is written, the disk has room for a commit of all of it, for `bytes` of blocks that
  /// will be written for it, and for so many `nodes` more. kFull when it has not: every change fails with that,
  /// until DrawOnReserve.
  void Reserve(std::uint64_t bytes, std::size_t nodes);

  /// What is written from now on may use up the reserve, until Reserve is called again: to be called ahead of what
  /// was reserved for. On a disk that turned out to be full changes are possible again then; after a failing write
  /// they are not.
  void DrawOnReserve();

  /// Makes all nodes set so far permanent. Costs a rewrite of both trees (24 bytes a block, 32 a node).
  void Commit();

  /// Commits, with exact allocation maps, and closes the store: every further change fails with kDenied.
  /// Sealing a sealed store does nothing.
  void Seal();

  /// Length of the file in bytes.
  std::uint64_t FileSize() const { return blocks_.Map().FileSize(); }

  std::size_t NodeCount() const { return nodes_.Count(); }

  /// Number of blocks in the store.
  std::size_t BlockCount() const { return blocks_.Table().Count(); }

  // -- for the writers of trees and heaps

  /// Writes a data block of 1 to kMaxBlockData bytes that nothing refers to yet.
  [[nodiscard]] Bid WriteDataBlock(std::span<const std::byte> bytes);

  /// The same for a block of a store of this format and encoding, as it stands there.
  [[nodiscard]] Bid WriteStoredBlock(const StoredData& data);
  CryptMethod Encoding() const { return blocks_.Method(); }

  /// Puts an XBLOCK, or XBLOCKs and a XXBLOCK, over data blocks of `size` bytes in all. One block stands for
  /// itself, none for an empty tree.
  [[nodiscard]] DataTree WriteTreeOver(std::span<const Bid> dataBids, std::uint64_t size);

  BlockBuffer TakeBuffer() { return buffers_.Take(); }

  /// Writes an internal block that nothing refers to yet and refers to all that it names.
  [[nodiscard]] Bid WriteInternalBlock(std::span<const std::byte> content);

  /// Sees to it that no id handed out later is this one.
  void NoteNid(Nid nid);

 private:
  NdbWriter(platform::ByteStore& file, CryptMethod cryptMethod, platform::Workers& workers);
  void Release(const NodeTrees& trees);
  void Publish(AMapValid mapsValid);
  void WriteMaps();

  BlockBufferPool buffers_;
  BlockFile blocks_;
  NodeTable nodes_;
  std::vector<std::uint64_t> treePages_;  ///< offsets of the pages of both trees of the last commit
  std::array<std::uint32_t, kNidTypeCount> rgnid_;
  std::uint32_t dwUnique_ = 1;
  bool changed_ = true;  ///< since the last commit
  bool sealed_ = false;
};

}  // namespace velmora::ndb
