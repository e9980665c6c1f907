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

}  // namespace
}  // namespace velmora
