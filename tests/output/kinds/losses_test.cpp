// What a whole conversion says of losses, and what then is in the new store.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "forge/mailbox.h"
#include "output/kinds/conversion.h"

namespace velmora::kinds {
namespace {

using forge::Mailbox;
using forge::Place;
using output::Field;
using recovery::LossKind;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class Losses : public testing::Test {
 protected:
  Losses() { inbox_ = box_.AddFolder({.name = u"Inbox"}); }

  void Add(const forge::Message& message) { box_.AddMessage(inbox_, message); }

  Conversion& Converted() {
    conversion_.emplace(box_.Finish(), "store.pst");
    return *conversion_;
  }

  std::vector<std::pair<LossKind, std::string>> Lost() {
    std::vector<std::pair<LossKind, std::string>> lost;
    for (const auto& object : Converted().Report().recovery.lost) {
      lost.emplace_back(object.kind, text::ToUtf8(object.reason));
    }
    return lost;
  }

  output::Ref<output::RDOMail> Only() { return ItemsOf(conversion_->Folder(u"Inbox")).at(0); }

  Mailbox box_{{}, {.tables = true, .namesAtLeast = 200}};
  forge::Nid inbox_ = 0;
  std::optional<Conversion> conversion_;
};

TEST_F(Losses, AMailboxThatComesAcrossWholeHasNone) {
  Add({.subject = u"Hello",
       .plain = u"A body",
       .senderName = u"Vera",
       .recipients = {{u"Tom", u"tom@x.example"}},
       .delivered = forge::TimeOf(2021, 2, 2),
       .attachments = {{.name = u"a", .data = forge::Noise(10, 1), .place = Place::kHeap},
                       {.name = u"b", .data = forge::Noise(5000, 2), .place = Place::kBlock},
                       {.name = u"c", .data = forge::Noise(50000, 3), .place = Place::kChain}}});
  Add({.messageClass = u"IPM.Contact", .subject = u"Vera", .plain = u"A note"});
  EXPECT_THAT(Lost(), IsEmpty());
}

TEST_F(Losses, AnAttachmentThatNeedsADataTreeOfTwoLevelsIsOne) {
  const forge::Bytes large = forge::Noise(8347697, 4);
  const forge::Bytes largest(large.begin(), large.end() - 1);
  Add({.displayTo = u"Tom",
       .attachments = {{.name = u"too large", .data = large, .place = Place::kBlock},
                       {.name = u"large", .data = largest, .place = Place::kBlock}}});
  EXPECT_THAT(Lost(), ElementsAre(Pair(LossKind::kAttachment,
                                       "attachment of message 0x200024: its 8347697 bytes stand in a data tree of two "
                                       "levels, which is not read; 24 bytes of a list stand in its place")));
}

TEST_F(Losses, AMailWithManySubNodesLosesEachAttachment) {
  forge::Message mail{.displayTo = u"Tom", .attachments = {}};
  for (int i = 0; i < 340; ++i) mail.attachments.push_back({.name = u"a", .data = forge::Bytes(3), .bare = true});
  Add(mail);
  const auto lost = Lost();
  EXPECT_EQ(lost.size(), 340u);
  EXPECT_THAT(lost, testing::Each(Pair(LossKind::kAttachment,
                                       "attachment of message 0x200024: the list of its sub-nodes has an upper level, "
                                       "which is not read")));
}

TEST_F(Losses, LongAddressesAndSubjectsAreAndTheDeliveryTimeGoesWithTheTo) {
  Add({.subject = std::u16string(2000, u's'),
       .senderName = std::u16string(2000, u'f'),
       .displayTo = std::u16string(2000, u't'),
       .displayCc = std::u16string(2000, u'c'),
       .delivered = forge::TimeOf(2021, 2, 2)});
  const std::string outside = ": a value of 4000 bytes outside the message's own block is not read";
  EXPECT_THAT(Lost(),
              testing::UnorderedElementsAre(
                  Pair(LossKind::kText, "Subject" + outside), Pair(LossKind::kRecipients, "SenderName" + outside),
                  Pair(LossKind::kRecipients, "CC" + outside), Pair(LossKind::kRecipients, "To" + outside),
                  Pair(LossKind::kText,
                       "ReceivedTime: it was spent on the item list, since the mail has no To "
                       "that is read")));
  EXPECT_EQ(Only()->Get(Field::Subject).AsText(), u"");
  EXPECT_EQ(Only()->Get(Field::To).AsText(), u"");
}

TEST_F(Losses, ASubjectIsCutToTheLengthThatTheReportTells) {
  Add({.subject = std::u16string(300, u's'), .displayTo = u"Tom"});
  EXPECT_THAT(Lost(), ElementsAre(Pair(LossKind::kText, "Subject: cut to 255 of 300 characters")));
  EXPECT_EQ(Only()->Get(Field::Subject).AsText(), std::u16string(255, u's'));
}

TEST_F(Losses, ALongBodyAndALongFieldOfAContactAre) {
  Add({.messageClass = u"IPM.Contact",
       .subject = u"Vera",
       .plain = std::u16string(3000, u'b'),
       .plainPlace = Place::kBlock,
       .properties = {forge::Text(0x3A16, std::u16string(2000, u'c'), Place::kBlock)}});
  EXPECT_THAT(Lost(), ElementsAre(Pair(LossKind::kBody, "body: none is read of plain text of 6000 bytes"),
                                  Pair(LossKind::kText,
                                       "CompanyName: a value of 4000 bytes outside the message's own "
                                       "block is not read")));
}

TEST_F(Losses, ANumberThatIsNotTakenIsUnlessTheNewStoreFormsIt) {
  Add({.messageClass = u"IPM.Activity",
       .subject = u"Call",
       .properties = {forge::Named(forge::PropertySet::kLog, 0x8707, forge::Int32(0, 0x1000000))}});
  Add({.messageClass = u"IPM.Appointment",
       .subject = u"Year",
       .properties = {forge::Named(forge::PropertySet::kAppointment, 0x8213, forge::Int32(0, 0x1000000))}});
  EXPECT_THAT(Lost(), ElementsAre(Pair(LossKind::kText, "Duration: its value 16777216 is not taken")));
}

TEST_F(Losses, AMailThatHasHtmlAloneHasNoBodyInAStoreOfThisKind) {
  Add({.html = forge::Bytes(500), .htmlPlace = Place::kBlock, .displayTo = u"Tom"});
  EXPECT_THAT(Lost(), ElementsAre(Pair(LossKind::kBody, "body: none is read of HTML of 500 bytes")));
}

TEST_F(Losses, TheMembersOfADistributionListAre) {
  forge::Bytes members;
  forge::Append(members, 2, 4);
  Add({.messageClass = u"IPM.DistList",
       .subject = u"Crew",
       .properties = {forge::Named(forge::PropertySet::kAddress, 0x8055, forge::Raw(0, 0x1102, members))}});
  EXPECT_THAT(Lost(), ElementsAre(Pair(LossKind::kMembers, "2 members are not converted")));
}

TEST_F(Losses, AnAttachmentOfAnItemThatIsNoMailIs) {
  Add({.messageClass = u"IPM.Contact",
       .subject = u"Vera",
       .attachments = {{.name = u"picture", .data = forge::Bytes(9), .place = Place::kBlock}}});
  EXPECT_THAT(Lost(), ElementsAre(Pair(LossKind::kAttachment,
                                       "attachment of message 0x200024: an item of its kind takes none")));
}

TEST_F(Losses, AMailDirectlyInATopFolderOfAnotherNameIs) {
  Mailbox other({}, {.topName = u"Oberste Ebene"});
  other.AddMessage(forge::kTopFolder, {.displayTo = u"Tom"});
  const Conversion conversion(other.Finish(), "other.pst");
  ASSERT_EQ(conversion.Report().recovery.lost.size(), 1u);
  EXPECT_EQ(conversion.Report().recovery.lost[0].kind, LossKind::kMessage);
  EXPECT_EQ(conversion.Report().recovery.lost[0].messageClass, u"IPM.Note");
}

TEST_F(Losses, AFolderBelowAThousandOthersIs) {
  forge::Nid parent = inbox_;
  for (int i = 0; i < 1000; ++i) parent = box_.AddFolder({.name = u"f", .parent = parent});
  EXPECT_THAT(Lost(), ElementsAre(Pair(LossKind::kFolder,
                                       "folder \"f\": not made: it has no parent in the new store, or no name that a "
                                       "folder can have")));
}

}  // namespace
}  // namespace velmora::kinds
