// Identifiers of the store: node ids (what a node is) and block ids (what a block is).
#pragma once

#include <cstdint>

namespace velmora {

// Types of their own, so that no id is taken for a number, a size or the other kind of id: `Nid{n}` makes one of the
// number that stands in the file, `Value(nid)` gives it back.

/// Node id: type in the low 5 bits, index in the high 27. 0 names no node.
enum class Nid : std::uint32_t {};
inline constexpr Nid kNoNid{};

/// Block id: bit 0 is always 0 on disk, bit 1 marks an internal block (XBLOCK, XXBLOCK, SLBLOCK, SIBLOCK).
/// Page ids count apart and use all bits. 0 names no block.
enum class Bid : std::uint64_t {};
inline constexpr Bid kNoBid{};

enum class NidType : std::uint8_t {
  kHid = 0x00,  ///< a heap item, never a node
  kInternal = 0x01,
  kNormalFolder = 0x02,
  kSearchFolder = 0x03,
  kNormalMessage = 0x04,
  kAttachment = 0x05,
  kSearchUpdateQueue = 0x06,
  kSearchCriteriaObject = 0x07,
  kAssocMessage = 0x08,
  kReceiveFolderTable = 0x0B,
  kOutgoingQueueTable = 0x0C,
  kHierarchyTable = 0x0D,
  kContentsTable = 0x0E,
  kAssocContentsTable = 0x0F,
  kSearchContentsTable = 0x10,
  kAttachmentTable = 0x11,
  kRecipientTable = 0x12,
  kLtp = 0x1F,  ///< a value or a row matrix beside the heap that refers to it
};

inline constexpr std::uint32_t kNidTypeBits = 5;
inline constexpr std::uint32_t kNidTypeCount = 1u << kNidTypeBits;

/// The first index that nodes and sub-nodes of a user's data may have: those below are of the nodes of every store.
inline constexpr std::uint32_t kFirstFreeNidIndex = 0x401;
inline constexpr std::uint32_t kMaxNidIndex = (1u << (32 - kNidTypeBits)) - 1;

/// An id as the number that stands in the file.
constexpr std::uint32_t Value(Nid nid) { return static_cast<std::uint32_t>(nid); }
constexpr std::uint64_t Value(Bid bid) { return static_cast<std::uint64_t>(bid); }

constexpr Nid MakeNid(NidType type, std::uint32_t index) {
  return Nid{index << kNidTypeBits | static_cast<std::uint32_t>(type)};
}
constexpr NidType TypeOf(Nid nid) { return static_cast<NidType>(Value(nid) & (kNidTypeCount - 1)); }
constexpr std::uint32_t IndexOf(Nid nid) { return Value(nid) >> kNidTypeBits; }

/// Whether the node is one of a folder's messages, hidden ones among them.
constexpr bool IsMessage(Nid nid) {
  return TypeOf(nid) == NidType::kNormalMessage || TypeOf(nid) == NidType::kAssocMessage;
}

/// The node of another type that belongs to the same folder, e.g. its contents table.
constexpr Nid Sibling(Nid nid, NidType type) { return MakeNid(type, IndexOf(nid)); }

inline constexpr std::uint64_t kBidInternal = 2;
inline constexpr std::uint64_t kBidStep = 4;

constexpr bool IsInternal(Bid bid) { return (Value(bid) & kBidInternal) != 0; }

/// The id without its bit 0, which does not count.
constexpr Bid Canonical(Bid bid) { return Bid{Value(bid) & ~std::uint64_t{1}}; }

}  // namespace velmora
