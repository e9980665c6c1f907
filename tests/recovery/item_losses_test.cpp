// What the report says of the parts of an item that do not come across.
#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

using engine::StoreKind;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint16_t kListOfLists = 0x0201;
constexpr std::uint16_t kMultipleBinary = 0x1102;

class ItemLossesTest : public RecoveryTest {
 protected:
  ItemLossesTest() { AddTopAndInbox(); }

  void AddItem(std::u16string_view messageClass, std::vector<RecordSpec> records,
               const std::vector<SubNode>& subNodes = {}) {
    records.insert(records.begin(), TextRecord(0x001A, messageClass));
    const std::uint32_t bidSub = subNodes.empty() ? 0 : AddBlock(NewListBid(), SubNodeBlock(subNodes));
    AddMessage(std::move(records), bidSub);
  }

  SubNode Attachment(const std::vector<RecordSpec>& records, std::uint32_t bidSub = 0) {
    return {0x8025, AddBlock(NewBid(), HeapBlock(records)), bidSub};
  }
  /// An attachment whose content lies in the sub-node with that data block.
  SubNode Outside(std::uint32_t bidData, std::uint32_t nid = 0x803F) {
    return Attachment({Value(0x3701, 0x0102, 0x803F), Wide(0x3704, u"a")},
                      AddBlock(NewListBid(), SubNodeBlock({{nid, bidData, 0}})));
  }

  std::vector<std::pair<LossKind, std::string>> Lost() {
    Recover();
    std::vector<std::pair<LossKind, std::string>> lost;
    for (const LostObject& object : state_.report.lost) lost.emplace_back(object.kind, text::ToUtf8(object.reason));
    return lost;
  }
  static auto Is(LossKind kind, const std::string& reason) { return testing::Pair(kind, reason); }
};

// ---------------------------------------------------------------------------------------- contents of attachments

TEST_F(ItemLossesTest, AContentInADataTreeOfTwoLevelsIsLostAndSoManyBytesStandInItsPlace) {
  const std::uint32_t pieces = AddBlock(NewListBid(), ChainBlock({AddBlock(NewBid(), Bytes(60000))}));
  const std::uint32_t tree = AddBlock(NewListBid(), ChainBlock({pieces}, 8400000, kListOfLists));
  AddItem(u"IPM.Note", {}, {{0x671, 0, 0}, Outside(tree)});
  EXPECT_THAT(Lost(), ElementsAre(Is(LossKind::kAttachment,
                                     "attachment of message 0x200024: its 8400000 bytes stand in a data tree of two "
                                     "levels, which is not read; 16 bytes of a list stand in its place")));
  EXPECT_EQ(state_.report.lost[0].nid, 0x8025u);
}

TEST_F(ItemLossesTest, AContentOfWhichAPieceIsGoneIsShortByItsBytes) {
  const std::uint32_t one = AddBlock(NewBid(), Bytes(100));
  const std::uint32_t chain = AddBlock(NewListBid(), ChainBlock({one, 0x7777}, 250));
  AddItem(u"IPM.Note", {}, {{0x671, 0, 0}, Outside(chain)});
  EXPECT_THAT(Lost(),
              ElementsAre(Is(LossKind::kAttachment, "attachment of message 0x200024: 150 of 250 bytes are missing")));
}

TEST_F(ItemLossesTest, AWholeContentIsNoLoss) {
  const std::uint32_t chain =
      AddBlock(NewListBid(), ChainBlock({AddBlock(NewBid(), Bytes(100)), AddBlock(NewBid(), Bytes(20))}));
  AddItem(u"IPM.Note", {},
          {{0x671, 0, 0},
           Outside(chain),
           Outside(AddBlock(NewBid(), Bytes(7))),
           Attachment({Data(0x3701, 0x0102, BytesOf("x")), Wide(0x3704, u"b")})});
  EXPECT_THAT(Lost(), IsEmpty());
  EXPECT_EQ(state_.report.attachments, 3u);
}

TEST_F(ItemLossesTest, AContentWhoseBlockIsGoneIsLostThoughAFileIsThere) {
  AddItem(u"IPM.Note", {}, {{0x671, 0, 0}, Outside(0x7778)});
  EXPECT_THAT(Lost(), ElementsAre(Is(LossKind::kAttachment,
                                     "attachment of message 0x200024: its data block 0x7778 was not found; 32 bytes "
                                     "of a list stand in its place")));
}

TEST_F(ItemLossesTest, TheContentOfAnotherSubNodeIsNotTheAttachments) {
  AddItem(u"IPM.Note", {}, {{0x671, 0, 0}, Outside(AddBlock(NewBid(), Bytes(9)), 0x805F)});
  EXPECT_THAT(Lost(), ElementsAre(Is(LossKind::kAttachment,
                                     "attachment of message 0x200024: its content is not read; that of another "
                                     "sub-node, 9 bytes, stands in its place")));
}

TEST_F(ItemLossesTest, APackedContentThatIsTakenForAListOfBlocksIsLost) {
  UseFormat(FORMAT_UNICODE_4K, StoreKind::kOst);
  AddItem(u"IPM.Note", {}, {{0x671, 0, 0}, Outside(AddBlock(NewBid(), Packed(Bytes(1500))))});
  EXPECT_THAT(Lost(), ElementsAre(Is(LossKind::kAttachment,
                                     "attachment of message 0x200024: its 1500 bytes were taken for a list of "
                                     "blocks")));
}

TEST_F(ItemLossesTest, AnObjectThatHasAFileNameComesAcrossAsTheWordsThatPointToIt) {
  Bytes object;
  AppendNumber<std::uint32_t>(object, 0x8045);
  AppendNumber<std::uint32_t>(object, 5000);
  AddItem(u"IPM.Note", {}, {{0x671, 0, 0}, Attachment({Data(0x3701, 0x000D, object), Wide(0x3704, u"drawing")})});
  EXPECT_THAT(Lost(), ElementsAre(Is(LossKind::kAttachment,
                                     "attachment of message 0x200024: its content is an object of 5000 bytes, which "
                                     "is not read; 8 bytes that point to it stand in its place")));
}

TEST_F(ItemLossesTest, AContentOfTypeTextLosesItsSecondHalf) {
  AddItem(u"IPM.Note", {}, {{0x671, 0, 0}, Attachment({Wide(0x3701, u"12345678"), Wide(0x3704, u"a")})});
  EXPECT_THAT(Lost(),
              ElementsAre(Is(LossKind::kAttachment, "attachment of message 0x200024: 8 of 16 bytes are missing")));
}

TEST_F(ItemLossesTest, AnAttachmentSaysWhatBecameOfItsBlock) {
  AddItem(u"IPM.Note", {},
          {{0x671, 0, 0},
           {0x8025, 0x7774, 0},
           {0x8045, AddBlock(0x44, BytesOf("no heap at all")), 0},
           Attachment({Wide(0x3704, u"a"), Wide(0x3707, u"b")}),
           Attachment({Data(0x3701, 0x0102, BytesOf("x")), Wide(0x3704, std::u16string(256, u'n'))}),
           Attachment({Value(0x3701, 0x0102, 0x803F), Wide(0x3704, u"a")}, 0x7776)});
  EXPECT_THAT(
      Lost(),
      ElementsAre(Is(LossKind::kAttachment, "attachment of message 0x200024: its data block 0x7774 was not found"),
                  Is(LossKind::kAttachment, "attachment of message 0x200024: its data block 0x44 at offset " +
                                                OffsetOf(0x44) + " is no property context: its signature is 0x6820"),
                  Is(LossKind::kAttachment, "attachment of message 0x200024: it has no content"),
                  Is(LossKind::kAttachment, "attachment of message 0x200024: it has no name that a file can have"),
                  Is(LossKind::kAttachment, "attachment of message 0x200024: its data block 0x7776 was not found")));
}

// ---------------------------------------------------------------------------------------- lists of sub-nodes

TEST_F(ItemLossesTest, EveryAttachmentOfAListWithAnUpperLevelIsLost) {
  const std::uint32_t first =
      AddBlock(NewListBid(), SubNodeBlock({{0x671, 0, 0}, Outside(AddBlock(NewBid(), Bytes(9)))}));
  const std::uint32_t second = AddBlock(NewListBid(), SubNodeBlock({{0x8045, 0x40, 0}, {0x805F, 0x44, 0}}));
  AddBlock(0x44, Bytes(77));
  Bytes upper;
  AppendNumber<std::uint16_t>(upper, 0x0102);
  AppendNumber<std::uint16_t>(upper, 2);
  upper.resize(8);
  for (const auto& [nid, bid] : {std::pair{0x671u, first}, std::pair{0x8045u, second}}) {
    AppendId(upper, nid);
    AppendId(upper, bid);
  }
  AddMessage({Wide(0x001A, u"IPM.Note"), Value(0x1000, 0x1F, 0x805F)}, AddBlock(NewListBid(), upper));
  const std::string why = "the list of its sub-nodes has an upper level, which is not read";
  EXPECT_THAT(Lost(), ElementsAre(Is(LossKind::kBody, "body: none is read of plain text of 77 bytes; " + why),
                                  Is(LossKind::kAttachment, "attachment of message 0x200024: " + why),
                                  Is(LossKind::kAttachment, "attachment of message 0x200024: " + why)));
}

TEST_F(ItemLossesTest, AListThatIsGoneIsALossOfAMessageThatSaysThatItHasAttachments) {
  AddMessage({Wide(0x001A, u"IPM.Note"), Value(0x0E07, 3, 0x11)}, 0x7776);
  AddMessage({Wide(0x001A, u"IPM.Note"), Value(0x0E07, 3, 0x01)}, 0x7776);
  EXPECT_THAT(Lost(), ElementsAre(Is(LossKind::kAttachment,
                                     "attachments of message 0x200024, number unknown: its data block 0x7776 was not "
                                     "found")));
}

// ---------------------------------------------------------------------------------------- bodies

TEST_F(ItemLossesTest, ABodyInADataTreeOfTwoLevelsIsLost) {
  const std::uint32_t tree = AddBlock(NewListBid(), ChainBlock({0x7776}, 9000000, kListOfLists));
  AddItem(u"IPM.Note", {Value(0x1000, 0x1F, 0x803F)}, {{0x803F, tree, 0}});
  EXPECT_THAT(Lost(),
              ElementsAre(Is(LossKind::kBody,
                             "body (plain text): its 9000000 bytes stand in a data tree of two levels, which is "
                             "not read; 16 bytes of a list stand in its place")));
}

TEST_F(ItemLossesTest, ABodyOfWhichAPieceIsGoneIsShortByItsBytes) {
  const std::uint32_t chain = AddBlock(NewListBid(), ChainBlock({AddBlock(NewBid(), BytesOf(u"one")), 0x7774}, 600));
  AddItem(u"IPM.Note", {Value(0x1000, 0x1F, 0x803F)}, {{0x803F, chain, 0}});
  EXPECT_THAT(Lost(), ElementsAre(Is(LossKind::kBody, "body (plain text): 594 of 600 bytes are missing")));
}

TEST_F(ItemLossesTest, AMailOfWhichNoBodyIsReadSaysWhichItHas) {
  AddItem(u"IPM.Note", {Value(0x1000, 0x1F, 0x805F), Value(0x1013, 0x0102, 0x803F)}, {{0x803F, 0x7774, 0}});
  AddItem(u"IPM.Note", {Wide(0x1000, u"Hi"), Value(0x1009, 0x0102, 0x807F)},
          {{0x807F, AddBlock(NewBid(), Bytes(300)), 0}});
  EXPECT_THAT(Lost(),
              ElementsAre(Is(LossKind::kBody,
                             "body: none is read of HTML of unknown size, since its data "
                             "block 0x7774 was not found; plain text of unknown size"),
                          Is(LossKind::kBody, "body: none is read of plain text of 4 bytes; RTF of 300 bytes")));
}

TEST_F(ItemLossesTest, TheHtmlOfAMailAboveFourMebibytesIsLostOnlyWhereNoPlainBodyTakesItsPlace) {
  UseFormat(FORMAT_UNICODE, StoreKind::kOst);
  const SubNode html = {0x803F, AddBlock(NewBid(), BytesOf("<p>Hi</p>")), 0};
  const SubNode plain = {0x805F, AddBlock(NewBid(), BytesOf(u"Hi")), 0};
  const auto size = Value(0x0E08, 3, (4u << 20) + 1);
  AddItem(u"IPM.Note", {size, Value(0x1000, 0x1F, 0x805F), Value(0x1013, 0x0102, 0x803F)}, {html, plain});
  AddItem(u"IPM.Note", {size, Value(0x1013, 0x0102, 0x803F)}, {html});
  EXPECT_THAT(Lost(), ElementsAre(Is(LossKind::kBody, "body: none is read of HTML of 9 bytes")));
  EXPECT_EQ(state_.report.lost[0].nid, 0x200044u);
}

TEST_F(ItemLossesTest, ABodyInWhosePlaceTheBytesOfAnotherStandIsLost) {
  AddItem(u"IPM.Note", {Wide(0x1000, u"plain"), Data(0x1009, 0x0102, BytesOf(u"rtf"))});
  EXPECT_THAT(Lost(),
              ElementsAre(Is(LossKind::kBody, "body (plain text): the bytes of another body stand in its place")));
}

TEST_F(ItemLossesTest, ABodyThatIsThereOrEmptyIsNoLoss) {
  AddItem(u"IPM.Note", {Wide(0x1000, u"Hello")});
  AddItem(u"IPM.Note", {Value(0x1000, 0x1F, 0)});
  AddItem(u"IPM.Note", {});
  AddItem(u"IPM.Note", {Value(0x1000, 0x1F, 0x805F), Value(0x1013, 0x0102, 0x803F)},
          {{0x803F, 0x7774, 0}, {0x805F, AddBlock(NewBid(), BytesOf(u"Hi")), 0}});
  EXPECT_THAT(Lost(), IsEmpty());
}

TEST_F(ItemLossesTest, ABodyOfAnotherKindThatIsNotReadIsLost) {
  AddItem(u"IPM.Contact", {Value(0x1000, 0x1F, 0x803F)}, {{0x803F, AddBlock(NewBid(), Bytes(5000)), 0}});
  AddItem(u"IPM.Appointment", {Data(0x1009, 0x0102, Bytes(167))});
  EXPECT_THAT(Lost(), ElementsAre(Is(LossKind::kBody, "body: none is read of plain text of 5000 bytes"),
                                  Is(LossKind::kBody, "body: none is read of RTF of 167 bytes")));
  EXPECT_EQ(state_.report.lost[1].messageClass, u"IPM.Appointment");
}

// ---------------------------------------------------------------------------------------- texts and recipients

TEST_F(ItemLossesTest, ALongToIsLostAndTheDeliveryTimeWithIt) {
  hook_ = [](ConversionScope& scope, const PropertyRecord& record) {
    if (record.wPropId > 0x0E04) scope.mail->subjectShown = true;  // what the converter of mails does for want of a To
  };
  AddItem(u"IPM.Note", {Value(0x0042, 0x1F, 0x803F), Value(0x0E04, 0x1F, 0x805F), Data(0x0E06, 0x40, Bytes(8))},
          {{0x803F, AddBlock(NewBid(), Bytes(3600)), 0}, {0x805F, AddBlock(NewBid(), Bytes(4000)), 0}});
  EXPECT_THAT(
      Lost(),
      ElementsAre(
          Is(LossKind::kRecipients, "SenderName: a value of 3600 bytes outside the message's own block is not read"),
          Is(LossKind::kRecipients, "To: a value of 4000 bytes outside the message's own block is not read"),
          Is(LossKind::kText, "ReceivedTime: it was spent on the item list, since the mail has no To that is read")));
}

TEST_F(ItemLossesTest, ALongSubjectIsLostAndOneAboveTheLimitIsCut) {
  AddItem(u"IPM.Note", {Value(0x0037, 0x1F, 0x803F)}, {{0x803F, AddBlock(NewBid(), Bytes(4000)), 0}});
  AddItem(u"IPM.Note", {Wide(0x0037, u"\x01\x05" + std::u16string(256, u's'))});
  AddItem(u"IPM.Note", {Wide(0x0037, u"\x01\x05" + std::u16string(255, u's'))});
  AddItem(u"IPM.Note", {Value(0x0037, 0x1F, 0)});
  EXPECT_THAT(Lost(), ElementsAre(Is(LossKind::kText,
                                     "Subject: a value of 4000 bytes outside the message's own block is not read"),
                                  Is(LossKind::kText, "Subject: cut to 255 of 256 characters")));
}

TEST_F(ItemLossesTest, WhatStandsInTheMessagesBlockIsNoLoss) {
  AddItem(u"IPM.Note",
          {Wide(0x0037, u"Hello"), Wide(0x0042, u"me"), Wide(0x0E04, u"you"), Data(0x0E06, 0x40, Bytes(8))});
  EXPECT_THAT(Lost(), IsEmpty());
}

TEST_F(ItemLossesTest, APartOfAMessageThatGaveNoItemIsNotListedBesides) {
  AddMessage({Wide(0x001A, u"IPM.Note"), Value(0x1000, 0x1F, 0x803F)}, 0x7776, 0x9999);
  EXPECT_THAT(Lost(), ElementsAre(Is(LossKind::kMessage, "its folder is not known or could not be opened")));
}

// ---------------------------------------------------------------------------------------- members

TEST_F(ItemLossesTest, TheMembersOfADistributionListAreLost) {
  Bytes members;
  AppendNumber<std::uint32_t>(members, 12);
  Bytes one;
  AppendNumber<std::uint32_t>(one, 1);
  AddItem(u"IPM.DistList", {Data(0x8055, kMultipleBinary, members)});
  AddItem(u"IPM.DistList", {Data(0x8055, kMultipleBinary, one)});
  AddItem(u"IPM.DistList", {Value(0x8055, kMultipleBinary, 0x803F)}, {{0x803F, AddBlock(NewBid(), members), 0}});
  EXPECT_THAT(Lost(), ElementsAre(Is(LossKind::kMembers, "12 members are not converted"),
                                  Is(LossKind::kMembers, "1 member is not converted"),
                                  Is(LossKind::kMembers, "12 members are not converted")));
}

TEST_F(ItemLossesTest, AListWithoutMembersAndAContactHaveNoneToLose) {
  Bytes members;
  AppendNumber<std::uint32_t>(members, 12);
  AddItem(u"IPM.DistList", {Data(0x8055, kMultipleBinary, Bytes(4))});
  AddItem(u"IPM.DistList", {});
  AddItem(u"IPM.Contact", {Data(0x8055, kMultipleBinary, members)});
  EXPECT_THAT(Lost(), IsEmpty());
}

}  // namespace
}  // namespace velmora::recovery
