// A heap and the property context in it, read from one block (published structures: heap header, page map,
// tree header, property record). Not a full reader of either: only the first block of a heap can be read,
// and the record array is taken as the only level of its tree. That is what a damaged block still yields
// most from, and a block that breaks the rules below is passed over in silence.
//
//   block   0: u16 ibHnpm   2: u16 signature   4: u32 hidUserRoot
//   ibHnpm  0: u16 cAlloc   2: u16 cFree       4: u16 rgibAlloc[]; entry i + 1 ends allocation i
//   root    0: u16 0x02B5   2: u16 not read    4: u32 hidRoot
//   record  0: u16 id       2: u16 type        4: u32 value
#pragma once

#include <cstdint>
#include <optional>

#include "engine/block_reader.h"
#include "engine/content_allowance.h"
#include "engine/scanned_store.h"
#include "recovery/block_failure.h"
#include "recovery/item_converter.h"
#include "store/format/byte_view.h"
#include "store/format/heap_format.h"

namespace velmora::recovery {

/// Type of the tree and size of its keys, as one word.
inline constexpr std::uint16_t kTreeMarker = kPropertyKeySize << 8 | static_cast<std::uint16_t>(ClientSig::kBTree);
inline constexpr std::uint32_t kPropertyRecordSize = kPropertyKeySize + kPropertyDataSize;

struct HeapHeader {
  std::uint16_t ibHnpm = 0;
  std::uint16_t signature = 0;
  std::uint32_t hidUserRoot = 0;
};
HeapHeader ReadHeapHeader(ByteView block);

PropertyRecord ReadPropertyRecord(ByteView block, std::uint64_t offset);

/// Where an allocation lies in its block, in bytes.
struct HeapRange {
  std::uint32_t start = 0;
  std::uint32_t end = 0;

  ByteView In(ByteView block) const { return block.Range(start, end); }
};

/// Start and end as they stand at `position`; nothing when they do not lie wholly in the block.
std::optional<HeapRange> ReadHeapRange(ByteView block, std::uint32_t position);

enum class EmptyEnd { kAllowed, kRefused };

/// The allocation that `hid` names, wholly inside the block. An `end` of 0 is an allocation to some readers and
/// none to others.
std::optional<HeapRange> RangeOf(ByteView block, std::uint16_t ibHnpm, std::uint32_t hid, EmptyEnd emptyEnd);

/// True of a value that lives in a sub-node: the value is the id of that sub-node then.
constexpr bool IsSubNodeValue(std::uint32_t value) { return (value & 0xF) == 0xF; }

/// What a walk demands of a block. The walks differ, and the differences decide which damaged blocks yield data.
struct ContextRules {
  /// The condition on the allocation under hidUserRoot.
  enum class TreeHeader {
    kEightBytes,         ///< exactly 8 bytes long, whatever it holds
    kMarkerUnlessOther,  ///< the marker, but no test in a store that is neither "ost" nor "pst"
    kMarker,             ///< the marker, and no store that is neither "ost" nor "pst"
  };

  bool decodesOst = true;           ///< the block encoding is undone in an "ost" too
  bool inflatesOtherKinds = false;  ///< a block without a heap signature is inflated whatever the store kind
  bool acceptsOtherKinds = true;    ///< no signature is asked for where the store is neither "ost" nor "pst"
  TreeHeader treeHeader = TreeHeader::kMarker;
  EmptyEnd emptyEnd = EmptyEnd::kRefused;
  bool recordsFollowRoot = false;  ///< the record array is the allocation behind the root's, not that of hidRoot
};

inline constexpr ContextRules kFolderRules{.treeHeader = ContextRules::TreeHeader::kEightBytes,
                                           .emptyEnd = EmptyEnd::kAllowed};
inline constexpr ContextRules kMessageRules{.treeHeader = ContextRules::TreeHeader::kMarkerUnlessOther};
inline constexpr ContextRules kAttachmentRules{.inflatesOtherKinds = true};
inline constexpr ContextRules kNameMapRules{.decodesOst = false, .acceptsOtherKinds = false, .recordsFollowRoot = true};

/// Inflates a block that shows no heap signature (4K format alone). A block that is no packed stream stays as
/// it was read: it was stored uncompressed. True when it was inflated.
bool InflateUnlessHeap(const engine::ScannedStore& store, Bytes& bytes);

/// The bytes of a block as a walk with these rules looks at them: read, decoded with the key `id`, inflated.
platform::Result<Bytes> ReadHeapBlock(const engine::ScannedStore& store, CryptMethod encoding,
                                      const engine::BlockRecord& record, std::uint32_t id, const ContextRules& rules);

/// The same, in the encoding of the store, for a block that any number of nodes may name. A failure as well when the
/// allowance is spent.
platform::Result<Bytes> ReadHeapBlock(const engine::ScannedStore& store, const engine::BlockRecord& record,
                                      std::uint32_t id, const ContextRules& rules, engine::ContentAllowance& allowance);

/// The record array of a property context; a view of the block's bytes.
class PropertyContext {
 public:
  /// The test that the block failed, in the order in which they are made.
  enum class Fault { kNone, kSignature, kRootRange, kTreeHeader, kRecordRange };

  PropertyContext(ByteView block, const engine::ScannedStore& store, const ContextRules& rules);

  Fault GetFault() const { return fault_; }

  /// What the fault says of the block, which ReadHeapBlock read from that record by these rules.
  Failure FailureOf(const engine::ScannedStore& store, const engine::BlockRecord& record,
                    const ContextRules& rules) const;

  const HeapHeader& Header() const { return header_; }

  /// The array; empty when there is a fault.
  const HeapRange& Records() const { return records_; }
  std::uint32_t Count() const { return (records_.end - records_.start) / kPropertyRecordSize; }
  PropertyRecord Record(std::uint32_t index) const {
    return ReadPropertyRecord(block_, records_.start + std::uint64_t{index} * kPropertyRecordSize);
  }

 private:
  Fault Open(const engine::ScannedStore& store, const ContextRules& rules);

  ByteView block_;
  HeapHeader header_;
  HeapRange records_;
  Fault fault_ = Fault::kNone;
};

}  // namespace velmora::recovery
