// The blocks and pages of a store that is being written: their places in the file, their bytes on the way
// there, and who refers to them.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "platform/file.h"
#include "store/format/encoding.h"
#include "store/format/failures.h"
#include "store/format/page.h"
#include "store/ndb/allocation_map.h"
#include "store/ndb/block_source.h"
#include "store/ndb/block_table.h"
#include "store/ndb/room_ahead.h"
#include "store/ndb/write_window.h"

namespace velmora::ndb {

/// A failing write is raised (FailureError), and so is the same failure by every further write. A disk that is full
/// shows earlier, as the file is lengthened ahead of what is written: see Reserve.
class BlockFile {
 public:
  /// Both must outlive it; `workers` encode and write.
  BlockFile(platform::ByteStore& file, CryptMethod cryptMethod, platform::Workers& workers);

  /// Leaves no room behind the end of the store.
  ~BlockFile();
  BlockFile(const BlockFile&) = delete;
  BlockFile& operator=(const BlockFile&) = delete;

  /// Makes the file that of an empty store, but for the header.
  void Start();

  /// From now on the disk has, whatever else is written, room for `bytes` more of so many `blocks` and of pages, and
  /// for the tree of all blocks with them. kFull when it has not: every change fails with that, until DrawOnReserve.
  void Reserve(std::uint64_t bytes, std::size_t blocks);

  /// What is written from now on may use up the reserve, until Reserve is called again. On a disk that turned out to
  /// be full writing goes on; one that failed to write stays unusable.
  void DrawOnReserve();

  /// Gives the room behind the end of the store back to the disk.
  void Trim();

  /// Writes a data block, encoded, that nothing refers to yet.
  [[nodiscard]] Bid WriteData(std::span<const std::byte> data);

  /// The same for data that are encoded already.
  [[nodiscard]] Bid WriteStored(const StoredData& data);

  /// Writes an internal block that nothing refers to yet, and counts the references that it makes.
  [[nodiscard]] Bid WriteInternal(std::span<const std::byte> content);

  /// Replaces `out` by the content of a block; false when there is none of that id.
  [[nodiscard]] bool Find(Bid bid, std::vector<std::byte>& out) const;

  /// Counts one reference to each block, or to none when it fails. 0 names no block.
  void Refer(std::span<const Bid> bids);

  /// Takes one reference to a block back; one without any is freed and releases what it refers to.
  void Release(Bid bid);

  /// Frees a block that nothing refers to, and what only it refers to, unless writing has stopped. Raises nothing: a
  /// failure stops the writing, so the next change tells of it.
  void Discard(Bid bid);

  /// Keeps a block, though nothing refers to it, until it was let go as often as it was held. 0 names none.
  void Hold(Bid bid);
  void LetGo(Bid bid);

  /// Discards every block that nothing refers to, held or not.
  void DiscardUnreferenced();

  /// Gives a new page its place and id and writes it.
  [[nodiscard]] Bref WritePage(PageType type, Page& page);

  /// Frees a page that no commit refers to.
  void FreePage(std::uint64_t ib) { map_.Free(ib, kPageSize / kSlotSize); }

  /// Writes bytes at a fixed place: header and maps.
  void WriteFixed(std::uint64_t ib, std::span<const std::byte> bytes);

  /// Hands what was written to the disk.
  void Flush();

  /// Everything written so far, but the pages at `freedPages`, belongs to the commit at hand: places freed
  /// since the last one may be taken again once this one is on disk.
  void Settle(std::span<const std::uint64_t> freedPages);

  const AllocationMap& Map() const { return map_; }
  const BlockTable& Table() const { return table_; }
  CryptMethod Method() const { return cryptMethod_; }

  Bid NewPageBid() { return Bid{bidNextP_++}; }
  Bid BidNextP() const { return Bid{bidNextP_}; }

  /// CheckUsable raises the failure that stopped the writing, if one has.
  bool IsUsable() const { return !failure_ && !full_; }
  void CheckUsable() const;

  /// Makes every further write fail with `failure`.
  void Stop(const Failure& failure);

 private:
  [[nodiscard]] Bid Write(bool internal, std::span<const std::byte> data, CryptMethod encoding,
                          std::optional<std::uint32_t> crc = {});
  [[nodiscard]] std::uint64_t Allocate(std::size_t size, std::size_t alignment);
  void KeepReserve();
  void OpenAreas();
  void Free(Bid bid);

  /// What a step gives; a failure stops the writing.
  template <class Step>
  decltype(auto) Kept(Step step) {
    try {
      return step();
    } catch (const FailureError& failure) {
      Stop(failure.Cause());
      throw;
    }
  }

  platform::ByteStore& file_;
  CryptMethod cryptMethod_;
  AllocationMap map_;
  BlockTable table_;
  std::unordered_map<Bid, std::uint32_t> holds_;
  std::vector<Bid> references_;  ///< of the internal block under way
  WriteWindow window_;
  RoomAhead room_;
  std::uint64_t bidNextP_ = 1;
  Bid firstUncommitted_{};       ///< blocks from this id on are in no commit
  std::uint32_t openAreas_ = 0;  ///< areas whose maps are written
  std::uint64_t reservedBytes_ = 0;
  std::size_t reservedBlocks_ = 0;
  bool drawsOnReserve_ = true;
  std::optional<Failure> failure_;  ///< of a write
  std::optional<Failure> full_;     ///< the disk had no room for the next area and the reserve
};

}  // namespace velmora::ndb
