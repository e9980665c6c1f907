#include "recovery/sub_node_list.h"

#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

using engine::StoreKind;
using testing::ElementsAre;

class SubNodeListTest : public RecoveryTest {
 protected:
  SubNodeList Read(std::uint32_t bidSub) {
    Settle();
    return ReadSubNodeList(engine_, bidSub);
  }
};

TEST_F(SubNodeListTest, EntriesOfAWideStoreAreThreeFieldsOfEightBytes) {
  AddBlock(8, SubNodeBlock({{0x671, 12, 0}, {0x8025, 16, 22}}));
  EXPECT_THAT(Read(8), ElementsAre(SubNodeEntry{0x671, 12, 0}, SubNodeEntry{0x8025, 16, 22}));
}

TEST_F(SubNodeListTest, EntriesOfAnAnsiStoreAreThreeFieldsOfFourBytes) {
  UseFormat(FORMAT_ANSI, StoreKind::kPst);
  AddBlock(8, SubNodeBlock({{0x671, 12, 0}, {0x8025, 16, 22}}));
  EXPECT_THAT(Read(8), ElementsAre(SubNodeEntry{0x671, 12, 0}, SubNodeEntry{0x8025, 16, 22}));
}

TEST_F(SubNodeListTest, TheUpperHalfOfAnIdIsNotLookedAt) {
  Bytes block = SubNodeBlock({{0x671, 12, 0}});
  PutNumber<std::uint32_t>(block, 12, 0xDEADBEEF);
  AddBlock(8, block);
  EXPECT_THAT(Read(8), ElementsAre(SubNodeEntry{0x671, 12, 0}));
}

TEST_F(SubNodeListTest, AMessageWithoutSubNodesOrWithALostListHasNone) {
  EXPECT_TRUE(Read(0).empty());
  EXPECT_TRUE(Read(8).empty());
}

TEST_F(SubNodeListTest, TheListIsFoundThroughTheNextLowerIdToo) {
  AddBlock(8, SubNodeBlock({{1, 2, 3}}));
  EXPECT_EQ(Read(9).size(), 1u);
}

TEST_F(SubNodeListTest, MoreEntriesThanTheBlockHoldsLeaveOneEmptyEntry) {
  Bytes block = SubNodeBlock({{0x671, 12, 0}});
  PutNumber<std::uint16_t>(block, 2, 2);
  AddBlock(8, block);
  EXPECT_THAT(Read(8), ElementsAre(SubNodeEntry{}));
}

TEST_F(SubNodeListTest, TheClaimIsMeasuredWithoutTheHeadOfTheBlock) {
  Bytes block = SubNodeBlock({{0x671, 12, 0}, {0x8025, 16, 22}});
  block.resize(block.size() - 8);  // two entries fit by their size alone; the last field is cut off
  AddBlock(8, block);
  EXPECT_THAT(Read(8), ElementsAre(SubNodeEntry{0x671, 12, 0}, SubNodeEntry{0x8025, 16, 0}));
}

TEST_F(SubNodeListTest, ACountOfZeroStillGivesOneEntry) {
  Bytes block = SubNodeBlock({{0x671, 12, 4}});
  PutNumber<std::uint16_t>(block, 2, 0);
  AddBlock(8, block);
  EXPECT_THAT(Read(8), ElementsAre(SubNodeEntry{0x671, 12, 4}));
}

TEST_F(SubNodeListTest, TypeAndLevelOfTheBlockAreNotLookedAt) {
  Bytes block = SubNodeBlock({{0x671, 12, 4}});
  PutNumber<std::uint16_t>(block, 0, 0x0102);
  AddBlock(8, block);
  EXPECT_EQ(Read(8).size(), 1u);
}

TEST_F(SubNodeListTest, NoEncodingIsUndone) {
  engine_.blockEncoding = CryptMethod::kPermute;
  AddBlock(8, SubNodeBlock({{0x671, 12, 4}}));
  EXPECT_THAT(Read(8), ElementsAre(SubNodeEntry{0x671, 12, 4}));
}

TEST_F(SubNodeListTest, TheLargestClaimIsBounded) {
  Bytes block(65512);
  PutNumber<std::uint16_t>(block, 2, 0xFFFF);
  AddBlock(8, block);
  EXPECT_THAT(Read(8), ElementsAre(SubNodeEntry{}));
  PutNumber<std::uint16_t>(block, 2, 65512 / 24);
  AddBlock(12, block);
  EXPECT_EQ(Read(12).size(), 65512u / 24);
}

}  // namespace
}  // namespace velmora::recovery
