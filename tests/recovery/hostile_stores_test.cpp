// Stores that were made to do harm: the work stays in proportion to their size.
#include <random>

#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

class HostileStoresTest : public RecoveryTest {
 protected:
  HostileStoresTest() { AddTopAndInbox(); }
};

TEST_F(HostileStoresTest, MessagesThatHoldOneAnotherManyTimesOverComeToAnEnd) {
  // Each level holds the next one forty times over: without a limit forty to the power of ten.
  std::uint32_t bidData = AddBlock(NewBid(), HeapBlock({Wide(0x001A, u"IPM.Note")}));
  std::uint32_t bidSub = 0;
  for (int level = 0; level < 10; ++level) {
    const std::uint32_t holder = AddBlock(NewBid(), HeapBlock({Wide(0x3001, u"m")}));
    const std::uint32_t list = AddBlock(NewBid(), SubNodeBlock({{0x8044, bidData, bidSub}}));
    std::vector<SubNode> entries = {{0x671, 0, 0}};
    for (std::uint32_t i = 0; i < 40; ++i) entries.push_back({0x8025 + 32 * i, holder, list});
    bidSub = AddBlock(NewBid(), SubNodeBlock(entries));
    bidData = AddBlock(NewBid(), HeapBlock({Wide(0x001A, u"IPM.Note")}));
  }
  AddNode(0x200024, bidData, bidSub, kInbox);
  Recover();
  EXPECT_GT(Trace("AddItem").size(), 40u);
  EXPECT_LT(Trace("AddItem").size(), 10000u);
  EXPECT_FALSE(state_.report.lost.empty());
}

TEST_F(HostileStoresTest, AListThatNamesOneBlockInEveryEntryDoesNotFillTheDisk) {
  const std::uint32_t piece = AddBlock(NewBid(), Bytes(60000));
  const std::uint32_t chain = AddBlock(NewBid(), ChainBlock(std::vector<std::uint32_t>(8000, piece)));
  const std::uint32_t list = AddBlock(NewBid(), SubNodeBlock({{0x803F, chain, 0}}));
  const std::uint32_t file = AddBlock(NewBid(), HeapBlock({Value(0x3701, 0x102, 0x803F), Wide(0x3704, u"a")}));
  std::vector<SubNode> entries = {{0x671, 0, 0}};
  for (std::uint32_t i = 0; i < 500; ++i) entries.push_back({0x8025 + 32 * i, file, list});
  const std::uint32_t bidSub = AddBlock(NewBid(), SubNodeBlock(entries));
  AddMessage({Wide(0x001A, u"IPM.Note")}, bidSub);
  Recover();
  std::uint64_t total = 0;
  for (const std::string& line : Trace("AddAttachment")) total += std::stoull(line.substr(line.find("size\":") + 6));
  EXPECT_GT(total, 0u);
  EXPECT_LT(total, 64u * 400000);
}

TEST_F(HostileStoresTest, BytesOfAnyKindAreReadWithoutHarm) {
  std::mt19937 generator(11);
  const auto random = [&generator] { return static_cast<std::uint32_t>(generator()); };
  for (const auto format : {engine::FORMAT_ANSI, engine::FORMAT_UNICODE, engine::FORMAT_UNICODE_4K}) {
    for (const auto kind : {engine::StoreKind::kOst, engine::StoreKind::kPst, engine::StoreKind::kPab}) {
      UseFormat(format, kind);
      const auto anyBid = [&] { return 0x40 + 4 * (random() % 300); };
      for (std::uint32_t bid = 0x40; bid < 0x40 + 4 * 300; bid += 4) {
        Bytes block;
        switch (random() % 4) {
          case 0:
            block = HeapBlock({Wide(0x001A, random() % 2 ? u"IPM.Note" : u"IPM.Contact"), Wide(0x3001, u"n"),
                               Value(0x1013, 0x102, 0x3F), Value(0x3701, 0x102, random()), Wide(0x3704, u"f")});
            break;
          case 1: {
            std::vector<SubNode> entries = {{0x671, anyBid(), anyBid()}};
            for (int i = 0; i < 6; ++i) entries.push_back({i == 0 ? 0x3F : 0x8025, anyBid(), anyBid()});
            block = SubNodeBlock(entries);
            break;
          }
          case 2: {
            std::vector<std::uint32_t> pieces;
            for (int i = 0; i < 6; ++i) pieces.push_back(anyBid());
            block = ChainBlock(pieces);
            break;
          }
          default:
            block.resize(random() % 300);
            for (std::byte& byte : block) byte = static_cast<std::byte>(random());
        }
        for (std::uint32_t flips = random() % 4; flips > 0 && !block.empty(); --flips) {
          block[random() % block.size()] = static_cast<std::byte>(random());
        }
        AddBlock(bid, block);
      }
      for (int i = 0; i < 100; ++i) {
        AddNode(i % 7 == 0 ? 0x61 : 0x200004 + 32 * i, anyBid(), anyBid(),
                i % 3 == 0 ? kInbox : 0x8042 + 32 * (random() % 4));
      }
      engine_.orphans = {{anyBid(), anyBid()}, {anyBid(), 0}, {0, anyBid()}, {}};
      Recover();
    }
  }
  EXPECT_FALSE(Trace("AddItem").empty());
}

}  // namespace
}  // namespace velmora::recovery
