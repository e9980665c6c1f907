#include "store/format/page.h"

#include <gtest/gtest.h>

#include "store/format/little_endian.h"
#include "store/ndb/map_pages.h"

namespace velmora {
namespace {

TEST(Signature, FoldsPlaceAndId) {
  EXPECT_EQ(ComputeSig(0x12345678, 0x24), 0x4468);
  EXPECT_EQ(ComputeSig(0x4200, 0x1AB), 0x43AB);
  EXPECT_EQ(ComputeSig(0x7'12345678, 0x9'00000024), 0x4468) << "only the low halves count";
}

TEST(Page, OfATreeIsTiedToItsPlaceAndId) {
  Page page{};
  page[3] = std::byte{7};
  SealPage(page, PageType::kNbt, {Bid{0x55}, 0x4A00});
  EXPECT_EQ(Load<std::uint8_t>(page, 496), 0x81);
  EXPECT_EQ(Load<std::uint8_t>(page, 497), 0x81);
  EXPECT_EQ(Load<std::uint16_t>(page, 498), ComputeSig(0x4A00, 0x55));
  EXPECT_EQ(Load<std::uint64_t>(page, 504), 0x55u);
  EXPECT_TRUE(ProvesItself(page, PageType::kNbt, {Bid{0x55}, 0x4A00}));
  EXPECT_FALSE(ProvesItself(page, PageType::kBbt, {Bid{0x55}, 0x4A00}));
  EXPECT_FALSE(ProvesItself(page, PageType::kNbt, {Bid{0x56}, 0x4A00}));
  EXPECT_FALSE(ProvesItself(page, PageType::kNbt, {Bid{0x55}, 0x4C00}));
}

TEST(Page, ThatChangesInAnyByteDoesNotProveItself) {
  Page page{};
  SealPage(page, PageType::kBbt, {Bid{0x123456789AB}, 0x4A00});
  for (std::size_t i = 0; i < page.size(); ++i) {
    page[i] ^= std::byte{0x10};
    EXPECT_FALSE(ProvesItself(page, PageType::kBbt, {Bid{0x123456789AB}, 0x4A00})) << i;
    page[i] ^= std::byte{0x10};
  }
}

TEST(Page, OfAMapHasNoSignatureAndItsOffsetForId) {
  const Page page = ndb::FullMapPage(PageType::kPMap, 0x4600);
  EXPECT_EQ(Load<std::uint16_t>(page, 496), 0x8383);
  EXPECT_EQ(Load<std::uint16_t>(page, 498), 0);
  EXPECT_EQ(Load<std::uint32_t>(page, 500), 0xA1AAE76Eu);
  EXPECT_EQ(Load<std::uint64_t>(page, 504), 0x4600u);
}

TEST(Page, KeepsEntriesAndHead) {
  Page page{};
  Encode(BtPageHead{3, 20, 24, 1}, page);
  const BtPageHead head = DecodeBtPageHead(page);
  EXPECT_EQ(head.cEnt, 3);
  EXPECT_EQ(head.cEntMax, 20);
  EXPECT_EQ(head.cbEnt, 24);
  EXPECT_EQ(head.cLevel, 1);
  EXPECT_EQ(Load<std::uint32_t>(page, 488), 0x01181403u);

  std::array<std::byte, BbtEntry::kSize> bbt;
  Encode(BbtEntry{{Bid{0x1A6}, 0x4800}, 8176, 2}, bbt);
  EXPECT_EQ(Load<std::uint64_t>(bbt, 8), 0x4800u);
  EXPECT_EQ(DecodeBbtEntry(bbt).cb, 8176);
  EXPECT_EQ(DecodeBbtEntry(bbt).cRef, 2);

  std::array<std::byte, NbtEntry::kSize> nbt;
  Encode(NbtEntry{Nid{0x8022}, Bid{0x10}, Bid{0x16}, Nid{0x122}}, nbt);
  EXPECT_EQ(Load<std::uint32_t>(nbt, 24), 0x122u);
  EXPECT_EQ(DecodeNbtEntry(nbt).bidSub, Bid{0x16});

  std::array<std::byte, BtEntry::kSize> bt;
  Encode(BtEntry{0x21, {Bid{9}, 0x4A00}}, bt);
  EXPECT_EQ(DecodeBtEntry(bt).ref.ib, 0x4A00u);
}

TEST(Page, EntriesAreAsWideAsTheirGeneration) {
  std::array<std::byte, 24> bytes;
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::byte>(i);

  const BbtEntry narrow = DecodeBbtEntry(bytes, generations::kAnsi);
  EXPECT_EQ(narrow.ref.bid, Bid{0x03020100});
  EXPECT_EQ(narrow.ref.ib, 0x07060504u);
  EXPECT_EQ(narrow.cb, 0x0908);
  EXPECT_EQ(narrow.cRef, 0x0B0A);
  const BbtEntry packed = DecodeBbtEntry(bytes, generations::kUnicode4k);
  EXPECT_EQ(packed.cb, 0x1110);
  EXPECT_EQ(packed.cRef, 0x1514) << "behind the size that the block inflates to";

  const NbtEntry node = DecodeNbtEntry(bytes, generations::kAnsi);
  EXPECT_EQ(node.bidData, Bid{0x07060504});
  EXPECT_EQ(node.bidSub, Bid{0x0B0A0908});
  EXPECT_EQ(node.nidParent, Nid{0x0F0E0D0C});
  EXPECT_EQ(DecodeBtEntry(bytes, generations::kAnsi).ref.ib, 0x0B0A0908u);
}

TEST(Page, CountsOf4kHaveTwoBytes) {
  std::vector<std::byte> page(generations::kUnicode4k.pageSize);
  Store<std::uint16_t>(page, 4056, 300);
  Store<std::uint16_t>(page, 4058, 400);
  Store<std::uint16_t>(page, 4060, 0x0118);
  const BtPageHead head = DecodeBtPageHead(page, generations::kUnicode4k);
  EXPECT_EQ(head.cEnt, 300);
  EXPECT_EQ(head.cEntMax, 400);
  EXPECT_EQ(head.cbEnt, 24);
  EXPECT_EQ(head.cLevel, 1);
}

}  // namespace
}  // namespace velmora
