#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

using engine::StoreKind;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class EmbeddedMessagesTest : public RecoveryTest {
 protected:
  EmbeddedMessagesTest() { AddTopAndInbox(); }

  struct Block {
    std::uint32_t bidData = 0;
    std::uint32_t bidSub = 0;
  };

  /// A message's blocks: its context, and its sub-nodes if it has attachments.
  Block Message(std::u16string_view subject, std::vector<SubNode> attachments = {},
                std::u16string_view messageClass = u"IPM.Note") {
    Block block;
    block.bidData = AddBlock(NewBid(), HeapBlock({TextRecord(0x001A, messageClass), TextRecord(0x0037, subject)}));
    if (attachments.empty()) return block;
    attachments.insert(attachments.begin(), {0x671, 0, 0});
    block.bidSub = AddBlock(NewListBid(), SubNodeBlock(attachments));
    return block;
  }

  /// An attachment that holds the message. Without a name it is one by its display name alone.
  SubNode Holding(std::uint32_t nid, Block message, std::u16string_view displayName,
                  std::optional<std::u16string_view> fileName = {}) {
    std::vector<RecordSpec> records = {TextRecord(0x3001, displayName), Value(0x3701, 0x000D, 0x803F)};
    if (fileName) records.push_back(TextRecord(0x3704, *fileName));
    return {nid, AddBlock(NewBid(), HeapBlock(records)),
            AddBlock(NewListBid(), SubNodeBlock({{0x8044, message.bidData, message.bidSub}}))};
  }

  void AddNodeOf(Block message) { AddNode(0x200024, message.bidData, message.bidSub, kInbox); }

  /// The trace behind the creation of items and their subjects.
  std::vector<std::string> Closing() {
    auto lines = Trace();
    std::erase_if(lines, [](const std::string& line) {
      return line.starts_with(R"({"op":"Put")") || line.starts_with(R"({"op":"AddItem")");
    });
    return lines;
  }
};

TEST_F(EmbeddedMessagesTest, AnEmbeddedMessageIsBuiltInTheFolderAttachedToItsParentAndNeverSavedItself) {
  AddNodeOf(Message(u"outer", {Holding(0x8025, Message(u"inner"), u"Inner name")}));
  Recover();
  EXPECT_THAT(Trace(), ElementsAre(R"({"op":"AddItem","id":1,"folder":"\\\\out\\Inbox","class":"IPM.Note"})",
                                   R"({"op":"Put","id":1,"field":"Sent","value":true})",
                                   R"({"op":"Put","id":1,"field":"Subject","value":"outer"})",
                                   R"({"op":"Put","id":1,"field":"Sent","value":true})",
                                   R"({"op":"AddItem","id":2,"folder":"\\\\out\\Inbox","class":"IPM.Note"})",
                                   R"({"op":"Put","id":2,"field":"Sent","value":true})",
                                   R"({"op":"Put","id":2,"field":"Subject","value":"inner"})",
                                   R"({"op":"AddAttachment","id":1,"name":"Inner name","item":2})",
                                   R"({"op":"Save","id":1})", R"({"op":"Save","id":1})"));
  EXPECT_EQ(state_.report.embedded, 1u);
  EXPECT_EQ(state_.report.attachments, 0u);
  EXPECT_EQ(Numbers<engine::AttachmentsListed>().size(), 1u);
}

TEST_F(EmbeddedMessagesTest, TwoMessagesOfOneParentAreBothAttachedTheLastFirstAndTheParentStays) {
  AddNodeOf(Message(u"outer", {Holding(0x8025, Message(u"one"), u"1"), Holding(0x8045, Message(u"two"), u"2")}));
  Recover();
  EXPECT_THAT(Closing(), ElementsAre(R"({"op":"AddAttachment","id":1,"name":"2","item":3})", R"({"op":"Save","id":1})",
                                     R"({"op":"AddAttachment","id":1,"name":"1","item":2})", R"({"op":"Save","id":1})",
                                     R"({"op":"Save","id":1})"));
}

TEST_F(EmbeddedMessagesTest, AParentThatIsEmbeddedItselfLeavesTheFolderWhenItsOwnPartsAreInPlace) {
  const Block deepest = Message(u"deepest");
  const Block middle = Message(u"middle", {Holding(0x8025, deepest, u"d")});
  AddNodeOf(Message(u"outer", {Holding(0x8025, middle, u"m")}));
  Recover();
  EXPECT_THAT(Closing(), ElementsAre(R"({"op":"AddAttachment","id":2,"name":"d","item":3})", R"({"op":"Save","id":2})",
                                     R"({"op":"AddAttachment","id":1,"name":"m","item":2})", R"({"op":"Save","id":1})",
                                     R"({"op":"Delete","id":2})", R"({"op":"Save","id":1})"));
}

TEST_F(EmbeddedMessagesTest, AMessageNamedUntitledAttachmentIsAMessage) {
  AddNodeOf(Message(u"outer", {Holding(0x8025, Message(u"inner"), u"shown", u"Untitled Attachment")}));
  Recover();
  EXPECT_THAT(Closing(), Contains(R"({"op":"AddAttachment","id":1,"name":"shown","item":2})"));
}

TEST_F(EmbeddedMessagesTest, AnyOtherFileNameMakesAFileOfIt) {
  AddNodeOf(Message(u"outer", {Holding(0x8025, Message(u"inner"), u"shown", u"inner.msg")}));
  Recover();
  EXPECT_EQ(Trace("AddItem").size(), 1u);
  EXPECT_EQ(Trace("AddAttachment").size(), 1u) << "the bytes of the message's own block, as a file";
}

TEST_F(EmbeddedMessagesTest, AnsiEntriesAreReadAtTheirOwnPlaces) {
  UseFormat(FORMAT_ANSI, StoreKind::kPst);
  const Block outer = Message(u"outer", {Holding(0x8025, Message(u"inner"), u"shown")});
  AddNode(0x200024, outer.bidData, outer.bidSub, 0x8062);
  AddFolder(0x8062, kTop, u"Ansi");
  Recover();
  EXPECT_THAT(Closing(), Contains(R"({"op":"AddAttachment","id":1,"name":"shown","item":2})"));
}

TEST_F(EmbeddedMessagesTest, WhereTheListGoesOnTheWayFromSlotToSlotOverwritesTheEntry) {
  // The second slot lies eight bytes into the second entry: its data block and sub-nodes count as read.
  const Block first = Message(u"first");
  const Block second = Message(u"second");
  const SubNode attachment = {
      0x8025, AddBlock(NewBid(), HeapBlock({Wide(0x3001, u"shown")})),
      AddBlock(NewListBid(), SubNodeBlock({{0x8044, first.bidData, 0}, {0x8064, second.bidData, 0}}))};
  AddNodeOf(Message(u"outer", {attachment}));
  Recover();
  EXPECT_THAT(Trace("Put"), Contains(R"({"op":"Put","id":2,"field":"Subject","value":"second"})"));
  EXPECT_EQ(std::ranges::count(Trace("Put"), R"({"op":"Put","id":1,"field":"Sent","value":true})"), 3);
}

TEST_F(EmbeddedMessagesTest, TheThirdEntryOfAListLiesBetweenTwoSlots) {
  const std::uint32_t bids[] = {Message(u"first").bidData, Message(u"second").bidData, Message(u"third").bidData};
  const SubNode attachment = {
      0x8025, AddBlock(NewBid(), HeapBlock({Wide(0x3001, u"shown")})),
      AddBlock(NewListBid(), SubNodeBlock({{0x8044, bids[0], 0}, {0x8064, bids[1], 0}, {0x8084, bids[2], 0}}))};
  AddNodeOf(Message(u"outer", {attachment}));
  Recover();
  EXPECT_THAT(Trace("Put"), Contains(R"({"op":"Put","id":2,"field":"Subject","value":"second"})"));
}

TEST_F(EmbeddedMessagesTest, AnEntryWithSubNodesFillsTheCountOfASingleEntry) {
  const Block inner = Message(u"inner", {{0x8025, 0, 0}});
  Bytes list = SubNodeBlock({{0x8044, inner.bidData, inner.bidSub}});
  list.resize(list.size() + 16);  // bytes behind the one entry are not reached
  const SubNode attachment = {0x8025, AddBlock(NewBid(), HeapBlock({Wide(0x3001, u"shown")})),
                              AddBlock(NewBid(), list)};
  AddNodeOf(Message(u"outer", {attachment}));
  Recover();
  EXPECT_THAT(Trace("Put"), Contains(R"({"op":"Put","id":2,"field":"Subject","value":"inner"})"));
}

TEST_F(EmbeddedMessagesTest, AnEmbeddedItemOfAnotherKindIsSavedInTheFolderAndNotAttached) {
  AddNodeOf(Message(u"outer", {Holding(0x8025, Message(u"inner", {}, u"IPM.Task"), u"shown")}));
  Recover();
  EXPECT_THAT(Closing(), ElementsAre(R"({"op":"Save","id":2})", R"({"op":"Save","id":1})"));
  EXPECT_THAT(state_.report.lost, IsEmpty());
}

TEST_F(EmbeddedMessagesTest, AnEmbeddedMessageThatIsLostIsReported) {
  AddNodeOf(Message(u"outer", {Holding(0x8025, {0x7777, 0}, u"shown")}));
  Recover();
  EXPECT_THAT(Closing(), ElementsAre(R"({"op":"Save","id":1})"));
  ASSERT_EQ(state_.report.lost.size(), 1u);
  EXPECT_EQ(state_.report.lost[0].nid, 0x8025u);
  EXPECT_EQ(state_.report.lost[0].bidData, 0x7777u);
}

TEST_F(EmbeddedMessagesTest, AMessageThatHoldsItselfIsNotBuiltAgain) {
  const std::uint32_t bidSub = NewBid();
  const std::uint32_t bidData = AddBlock(NewBid(), HeapBlock({Wide(0x001A, u"IPM.Note"), Wide(0x0037, u"outer")}));
  const SubNode attachment = Holding(0x8025, {bidData, bidSub}, u"itself");
  AddBlock(bidSub, SubNodeBlock({{0x671, 0, 0}, attachment}));
  AddNodeOf({bidData, bidSub});
  Recover();
  EXPECT_EQ(Trace("AddItem").size(), 1u);
  EXPECT_EQ(state_.report.lost.size(), 1u);
}

TEST_F(EmbeddedMessagesTest, TheSameMessageAttachedTwiceIsBuiltTwice) {
  const Block inner = Message(u"inner");
  AddNodeOf(Message(u"outer", {Holding(0x8025, inner, u"1"), Holding(0x8045, inner, u"2")}));
  Recover();
  EXPECT_EQ(Trace("AddItem").size(), 3u);
  EXPECT_EQ(state_.report.embedded, 2u);
}

TEST_F(EmbeddedMessagesTest, ForbiddenCharactersOfADisplayNameStayWhereNoFileNameStands) {
  AddNodeOf(Message(u"outer", {Holding(0x8025, Message(u"inner"), u"Re: a/b")}));
  Recover();
  EXPECT_THAT(Closing(), Contains(R"({"op":"AddAttachment","id":1,"name":"Re: a/b","item":2})"));
}

TEST_F(EmbeddedMessagesTest, TheLogNamesTheMessage) {
  run_.log = this;
  AddNodeOf(Message(u"outer", {Holding(0x8025, Message(u"inner"), u"shown")}));
  Recover();
  EXPECT_NE(log_.find(u"Mail Subject: outer\r\nAttached Embedded Message: shown\r\n\r\nMail Subject: inner"),
            text::Text::npos);
}

}  // namespace
}  // namespace velmora::recovery
