// Stores that were made to do harm: the work stays in proportion to their size.
#include <random>

#include "recovery/lost_items.h"
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
    const std::uint32_t list = AddBlock(NewListBid(), SubNodeBlock({{0x8044, bidData, bidSub}}));
    std::vector<SubNode> entries = {{0x671, 0, 0}};
    for (std::uint32_t i = 0; i < 40; ++i) entries.push_back({0x8025 + 32 * i, holder, list});
    bidSub = AddBlock(NewListBid(), SubNodeBlock(entries));
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
  const std::uint32_t chain = AddBlock(NewListBid(), ChainBlock(std::vector<std::uint32_t>(8000, piece)));
  const std::uint32_t list = AddBlock(NewListBid(), SubNodeBlock({{0x803F, chain, 0}}));
  const std::uint32_t file = AddBlock(NewBid(), HeapBlock({Value(0x3701, 0x102, 0x803F), Wide(0x3704, u"a")}));
  std::vector<SubNode> entries = {{0x671, 0, 0}};
  for (std::uint32_t i = 0; i < 500; ++i) entries.push_back({0x8025 + 32 * i, file, list});
  const std::uint32_t bidSub = AddBlock(NewListBid(), SubNodeBlock(entries));
  AddMessage({Wide(0x001A, u"IPM.Note")}, bidSub);
  Recover();
  std::uint64_t total = 0;
  for (const std::string& line : Trace("AddAttachment")) total += std::stoull(line.substr(line.find("size\":") + 6));
  EXPECT_GT(total, 0u);
  EXPECT_LT(total, 64u * 400000);
}

TEST_F(HostileStoresTest, MessagesThatShareOneListOfLostAttachmentsAreNotListedWithoutEnd) {
  std::vector<SubNode> entries = {{0x671, 0, 0}};
  for (std::uint32_t i = 0; i < 500; ++i) entries.push_back({0x8025 + 32 * i, 0x7777, 0});
  const std::uint32_t bidSub = AddBlock(NewListBid(), SubNodeBlock(entries));
  const std::uint32_t message = AddBlock(NewBid(), HeapBlock({Wide(0x001A, u"IPM.Note")}));
  for (std::uint32_t i = 0; i < 300; ++i) AddNode(0x300004 + 32 * i, message, bidSub, kInbox);
  Recover();
  EXPECT_GT(state_.report.lost.size(), 500u);
  EXPECT_LT(state_.report.lost.size(), 11000u);
  EXPECT_EQ(state_.report.lost.size() + state_.report.lostNotListed, 300u * 500);
}

TEST_F(HostileStoresTest, AClassThatFillsABlockDoesNotFillTheReport) {
  const std::uint32_t block = AddBlock(NewBid(), HeapBlock({Wide(0x001A, std::u16string(20000, u'x'))}));
  for (std::uint32_t i = 0; i < 150; ++i) AddNode(0x200024 + 32 * i, block, 0, 0x7777);
  Recover();
  ASSERT_EQ(state_.report.lost.size(), 150u);
  EXPECT_EQ(state_.report.lost[0].messageClass, text::Text(20000, u'x'));
  EXPECT_EQ(state_.report.lost[149].messageClass, text::Text(255, u'x'));
}

TEST_F(HostileStoresTest, FoldersThatShareOneLongNameStayInProportionToTheStore) {
  const std::uint32_t bid = AddBlock(NewBid(), HeapBlock({Wide(0x3001, std::u16string(30000, u'x'))}));
  for (std::uint32_t i = 0; i < 1000; ++i) AddNode(0x9002 + 32 * i, bid, 0, kTop);
  Recover();
  std::size_t length = 0;
  for (const FolderRecord& folder : state_.report.folders) length += folder.name.size();
  EXPECT_GT(length, 20u * 30000);
  EXPECT_LT(length, 100u * 30000);
}

TEST_F(HostileStoresTest, RecordsThatAllNameOneLongTextAreNotAllTaken) {
  std::vector<RecordSpec> records = {Wide(0x001A, u"IPM.Note"), Wide(0x0E04, std::u16string(20000, u'x'))};
  for (int i = 0; i < 2000; ++i) records.push_back(Value(0x0E03, 0x001F, HidOf(3)));
  AddMessage(records);
  AddMessage({Wide(0x001A, u"IPM.Note"), Wide(0x0E04, u"to")});
  Recover();
  EXPECT_GT(records_.size(), 300u);
  EXPECT_LT(records_.size(), 500u);
  EXPECT_EQ(Trace("AddItem").size(), 2u);
}

TEST_F(HostileStoresTest, NodesThatAllNameOneLargeBlockAreNotAllRead) {
  const std::uint32_t block =
      AddBlock(NewBid(), HeapBlock({Wide(0x001A, u"IPM.Note"), Data(0x7000, 0x0102, Bytes(60000))}));
  for (std::uint32_t i = 0; i < 1000; ++i) AddNode(0x300004 + 32 * i, block, 0, kInbox);
  Recover();
  EXPECT_GT(Trace("AddItem").size(), 300u);
  EXPECT_LT(Trace("AddItem").size(), 500u);
  ASSERT_EQ(Trace("AddItem").size() + state_.report.lost.size(), 1000u);
  EXPECT_EQ(state_.report.lost[0].reason, kClaimsTooMuch);
}

TEST_F(HostileStoresTest, NodesThatAllNameOneCommonBlockAreAllRead) {
  const std::uint32_t block =
      AddBlock(NewBid(), HeapBlock({Wide(0x001A, u"IPM.Note"), Wide(0x0E04, std::u16string(3900, u'x'))}));
  for (std::uint32_t i = 0; i < 5000; ++i) AddNode(0x300004 + 32 * i, block, 0, kInbox);
  Recover();
  EXPECT_EQ(Trace("AddItem").size(), 5000u);
  EXPECT_EQ(std::ranges::count(records_, std::pair(ItemKind::kMail, std::uint16_t{0x0E04})), 5000);
}

TEST_F(HostileStoresTest, AMessageIsReadThoughItsListOfSubNodesIsLong) {
  std::vector<RecordSpec> records = {Wide(0x001A, u"IPM.Note"), Wide(0x0E04, std::u16string(20000, u'x'))};
  for (int i = 0; i < 2000; ++i) records.push_back(Value(0x0E03, 0x001F, HidOf(3)));
  AddMessage(records);  // takes all that is not each node's own
  std::vector<SubNode> entries = {{0x671, 0, 0}};
  for (std::uint32_t i = 0; i < 2000; ++i) entries.push_back({0x8025 + 32 * i, 0x7777, 0});
  AddMessage({Wide(0x001A, u"IPM.Note")}, AddBlock(NewListBid(), SubNodeBlock(entries)));
  Recover();
  EXPECT_EQ(Trace("AddItem").size(), 2u);
  EXPECT_EQ(state_.report.lost.size(), 2000u);
}

TEST_F(HostileStoresTest, AMessageWithAClassInEveryRecordDoesNotBecomeAnItemForEach) {
  std::vector<RecordSpec> records = {Wide(0x001A, u"IPM.Note")};
  for (int i = 0; i < 5000; ++i) records.push_back(Value(0x001A, 0x001F, HidOf(2)));
  AddMessage(records);
  Recover();
  EXPECT_EQ(Trace("AddItem").size(), 1 + engine::ContentAllowance::kLeastParts);
}

TEST_F(HostileStoresTest, TheTextsOfMessagesInOneMessageStayInProportionToTheStore) {
  // They are all in memory until the last is done.
  for (int i = 0; i < 40; ++i) AddBlock(NewBid(), Bytes(60000));
  const std::uint32_t inner =
      AddBlock(NewBid(), HeapBlock({Wide(0x001A, u"IPM.Note"), Wide(0x0037, std::u16string(25000, u's'))}));
  const std::uint32_t holder = AddBlock(NewBid(), HeapBlock({Wide(0x3001, std::u16string(25000, u'n'))}));
  const std::uint32_t list = AddBlock(NewListBid(), SubNodeBlock({{0x8044, inner, 0}}));
  std::vector<SubNode> entries = {{0x671, 0, 0}};
  for (std::uint32_t i = 0; i < 1000; ++i) entries.push_back({0x8025 + 32 * i, holder, list});
  const std::uint32_t bidSub = AddBlock(NewListBid(), SubNodeBlock(entries));
  AddMessage({Wide(0x001A, u"IPM.Note")}, bidSub);
  Recover();
  std::size_t length = 0;
  for (const std::string& line : Trace("Put")) length += line.size();
  for (const std::string& line : Trace("AddAttachment")) length += line.size();
  EXPECT_GT(length, 1u << 20);
  EXPECT_LT(2 * length, engine::ContentAllowance::kLeastHeld + (1u << 20));
  EXPECT_FALSE(state_.report.lost.empty());
}

TEST_F(HostileStoresTest, MessagesThatHoldOneAnotherInALongChainEndWhereNobodyWouldForwardThem) {
  std::uint32_t bidData = AddBlock(NewBid(), HeapBlock({Wide(0x001A, u"IPM.Note")}));
  std::uint32_t bidSub = 0;
  const std::uint32_t holder = AddBlock(NewBid(), HeapBlock({Wide(0x3001, u"m")}));
  for (int level = 0; level < 200; ++level) {
    const std::uint32_t list = AddBlock(NewListBid(), SubNodeBlock({{0x8044, bidData, bidSub}}));
    bidSub = AddBlock(NewListBid(), SubNodeBlock({{0x671, 0, 0}, {0x8025, holder, list}}));
  }
  AddNode(0x200024, bidData, bidSub, kInbox);
  Recover();
  EXPECT_EQ(Trace("AddItem").size(), 101u);
  EXPECT_EQ(state_.report.embedded, 100u);
  EXPECT_EQ(state_.report.lost.size(), 1u);
}

TEST_F(HostileStoresTest, BytesOfAnyKindAreReadWithoutHarm) {
  std::mt19937 generator(11);
  const auto random = [&generator] { return static_cast<std::uint32_t>(generator()); };
  for (const auto format : {FORMAT_ANSI, FORMAT_UNICODE, FORMAT_UNICODE_4K}) {
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
