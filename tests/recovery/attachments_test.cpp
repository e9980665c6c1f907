#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

using engine::StoreKind;
using testing::ElementsAre;
using testing::IsEmpty;

class AttachmentsTest : public RecoveryTest {
 protected:
  AttachmentsTest() { AddTopAndInbox(); }

  /// An attachment object; `bidSub` is its own list of sub-nodes.
  SubNode Attachment(std::uint32_t nid, const std::vector<RecordSpec>& records, std::uint32_t bidSub = 0) {
    return {nid, AddBlock(NewBid(), HeapBlock(records)), bidSub};
  }
  SubNode Small(std::uint32_t nid, std::u16string_view name, std::string_view content) {
    return Attachment(nid, {Data(0x3701, 0x0102, BytesOf(content)), TextRecord(0x3704, name)});
  }

  void AddMail(std::vector<SubNode> attachments, std::u16string_view messageClass = u"IPM.Note") {
    attachments.insert(attachments.begin(), {0x671, 0, 0});
    AddMessage({TextRecord(0x001A, messageClass)}, AddBlock(NewListBid(), SubNodeBlock(attachments)));
  }

  /// Name and length of each attachment.
  std::vector<std::string> Attached() {
    std::vector<std::string> attached;
    for (const std::string& line : Trace("AddAttachment")) {
      const std::size_t name = line.find(R"("name":")") + 8;
      const std::size_t nameEnd = line.find("\",\"size\":", name);
      const std::size_t size = nameEnd + 9;
      attached.push_back(line.substr(name, nameEnd - name) + ":" + line.substr(size, line.find(',', size) - size));
    }
    return attached;
  }

  /// An attachment's own sub-node list that leads to one data block.
  std::uint32_t Behind(const Bytes& content) {
    return AddBlock(NewListBid(), SubNodeBlock({{0x803F, AddBlock(NewBid(), content), 0}}));
  }
};

TEST_F(AttachmentsTest, AContentInTheAttachmentsOwnBlockIsAttachedBeforeTheMailIsSaved) {
  AddMail({Small(0x8025, u"a.txt", "hello")});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("a.txt:5"));
  EXPECT_EQ(Trace().back(), R"({"op":"Save","id":1})");
  EXPECT_EQ(state_.report.attachments, 1u);
  EXPECT_THAT(Numbers<engine::AttachmentsListed>(), IsEmpty());
}

TEST_F(AttachmentsTest, ALongNameReplacesTheShortOne) {
  AddMail({Attachment(
      0x8025, {Data(0x3701, 0x0102, BytesOf("x")), Wide(0x3704, u"LONGNA~1.TXT"), Wide(0x3707, u"long name.txt")})});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("long name.txt:1"));
}

TEST_F(AttachmentsTest, ALongNameAheadOfTheShortOneIsNotMet) {
  AddMail({Attachment(
      0x8025, {Data(0x3701, 0x0102, BytesOf("x")), Wide(0x3707, u"long name.txt"), Wide(0x3704, u"short.txt")})});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("short.txt:1"));
}

TEST_F(AttachmentsTest, ForbiddenCharactersBecomeBlanks) {
  AddMail({Small(0x8025, u"a\\b/c:d*e?f<g>h|i\"j", "x")});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("a b c d e f g h i j:1"));
}

TEST_F(AttachmentsTest, NamesThatNoFolderWouldTakeAreOnlyNames) {
  AddMail({Small(0x8025, u"..", "x"), Small(0x8045, u"con", "y")});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("..:1", "con:1"));
}

TEST_F(AttachmentsTest, TwoAttachmentsOfOneNameAreBothKept) {
  AddMail({Small(0x8025, u"a.txt", "one"), Small(0x8045, u"a.txt", "three")});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("a.txt:3", "a.txt:5"));
}

TEST_F(AttachmentsTest, ANameThatCannotBeMadeLosesAnAttachmentWithoutSubNodes) {
  AddMail({Small(0x8025, std::u16string(256, u'n'), "x"), Small(0x8045, u"", "x"),
           Small(0x8065, std::u16string(255, u'n'), "x")});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre(std::string(255, 'n') + ":1"));
  EXPECT_EQ(state_.report.lost.size(), 2u);
}

TEST_F(AttachmentsTest, ALongNameThatCannotBeMadeLeavesTheShortOne) {
  AddMail({Attachment(
      0x8025, {Data(0x3701, 0x0102, BytesOf("x")), Wide(0x3704, u"short"), Wide(0x3707, std::u16string(300, u'n'))})});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("short:1"));
}

TEST_F(AttachmentsTest, ALongNameThatIsNoneTakesTheShortOneAway) {
  AddMail({Attachment(0x8025, {Data(0x3701, 0x0102, BytesOf("x")), Wide(0x3704, u"short"), Wide(0x3707, u"")})});
  Recover();
  EXPECT_THAT(Attached(), IsEmpty()) << "where no name is tried, none counts as made";
}

TEST_F(AttachmentsTest, ANameThatDoesNotLookLikeTextIsNone) {
  AddMail({Small(0x8025, u"\x0001\x0100", "x")});
  Recover();
  EXPECT_THAT(Attached(), IsEmpty());
}

TEST_F(AttachmentsTest, AMessageThatDoesNotBeginWithAnAttachmentTableKeepsNone) {
  AddMessage({Wide(0x001A, u"IPM.Note")},
             AddBlock(NewListBid(), SubNodeBlock({Small(0x8025, u"a", "x"), {0x671, 0, 0}})));
  Recover();
  EXPECT_THAT(Attached(), IsEmpty());
  EXPECT_EQ(state_.report.lost.size(), 1u);
}

TEST_F(AttachmentsTest, EverySubNodeIsTriedAndTablesDropOut) {
  const std::uint32_t table =
      AddBlock(NewBid(), HeapBlock({Wide(0x3704, u"table")}, {.signature = 0x7CEC, .marker = 0}));
  AddMail({{0x692, table, 0}, Small(0x8025, u"a", "x")});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("a:1"));
  EXPECT_THAT(state_.report.lost, IsEmpty());

  trace_.lines.clear();
  engine_.storeKind = StoreKind::kOst;  // the signature passes here, the tree header does not
  RecoverOrphans(state_, engine_, run_);
  EXPECT_THAT(Attached(), ElementsAre("a:1"));
}

TEST_F(AttachmentsTest, AnItemThatIsNoMailGetsNoAttachment) {
  AddMail({Small(0x8025, u"a", "x")}, u"IPM.Task");
  Recover();
  EXPECT_THAT(Attached(), IsEmpty());
  ASSERT_EQ(state_.report.lost.size(), 1u);
  EXPECT_EQ(state_.report.lost[0].nid, 0x8025u);
}

TEST_F(AttachmentsTest, AContentInSubNodesIsAttachedAndAnnouncedToTheList) {
  AddMail({Attachment(0x8025, {Value(0x3701, 0x0102, 0x803F), Wide(0x3704, u"big")}, Behind(Bytes(3000)))});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("big:3000"));
  EXPECT_EQ(Numbers<engine::AttachmentsListed>().size(), 1u);
}

TEST_F(AttachmentsTest, AContentOfManyPiecesIsJoinedAndALostPieceMakesItShorter) {
  const std::uint32_t one = AddBlock(NewBid(), Bytes(100));
  const std::uint32_t two = AddBlock(NewBid(), Bytes(20));
  const std::uint32_t chain = AddBlock(NewListBid(), ChainBlock({one, 0x7777, two}));
  AddMail({Attachment(0x8025, {Value(0x3701, 0x0102, 0x803F), Wide(0x3704, u"big")},
                      AddBlock(NewListBid(), SubNodeBlock({{0x803F, chain, 0}})))});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("big:120"));
}

TEST_F(AttachmentsTest, AContentThatGoesToDiskIsWhole) {
  std::vector<std::uint32_t> pieces;
  for (int i = 0; i < 20; ++i) pieces.push_back(AddBlock(NewBid(), Bytes(60000)));
  const std::uint32_t chain = AddBlock(NewListBid(), ChainBlock(pieces));
  AddMail({Attachment(0x8025, {Value(0x3701, 0x0102, 0x803F), Wide(0x3704, u"huge")},
                      AddBlock(NewListBid(), SubNodeBlock({{0x803F, chain, 0}})))});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("huge:1200000"));
}

TEST_F(AttachmentsTest, AnOrdinaryDisplayNameDoesNotMakeAMessageOfAFile) {
  AddMail({Attachment(0x8025, {Wide(0x3001, u"shown"), Data(0x3701, 0x0102, BytesOf("x")), Wide(0x3704, u"a.txt")})});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("a.txt:1"));
}

TEST_F(AttachmentsTest, InAnOstTheDisplayNameIsTheNameOfTheFile) {
  UseFormat(FORMAT_UNICODE, StoreKind::kOst);
  AddMail({Attachment(0x8025, {Wide(0x3001, u"sh:own"), Data(0x3701, 0x0102, BytesOf("x")), Wide(0x3704, u"a.txt")})});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("sh own:1"));
}

TEST_F(AttachmentsTest, ANameThroughIdentifierZeroIsNoneWhateverThePageMapHoldsInItsPlace) {
  UseFormat(FORMAT_UNICODE, StoreKind::kOst);
  const std::uint32_t bid = AddBlock(
      NewBid(),
      HeapBlock({Value(0x3001, 0x001F, 0), Data(0x3701, 0x0102, BytesOf("x")), Wide(0x3704, u"a")}, {.freeCount = 4}));
  AddMail({{0x8025, bid, 0}});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("a:1"));
}

TEST_F(AttachmentsTest, InAnOstTheDisplayNamePassesToTheNextAttachmentWhetherTheLogIsOnOrNot) {
  UseFormat(FORMAT_UNICODE, StoreKind::kOst);
  AddMail({Attachment(0x8025, {Wide(0x3001, u"first"), Data(0x3701, 0x0102, BytesOf("x")), Wide(0x3704, u"a.txt")}),
           Small(0x8045, u"b.txt", "y")});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("first:1", "first:1"));

  trace_.lines.clear();
  run_.log = this;
  RecoverOrphans(state_, engine_, run_);
  EXPECT_THAT(Attached(), ElementsAre("first:1", "first:1"));
}

TEST_F(AttachmentsTest, ADisplayNameDoesNotPassToTheNextMessage) {
  UseFormat(FORMAT_UNICODE, StoreKind::kOst);
  AddMail({Attachment(0x8025, {Wide(0x3001, u"first"), Data(0x3701, 0x0102, BytesOf("x")), Wide(0x3704, u"a.txt")})});
  AddMail({Small(0x8045, u"b.txt", "y")});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("first:1", "b.txt:1"));
}

TEST_F(AttachmentsTest, DataIsWrittenOnlyIfANameOrTheMimeSequenceWasTheLastRecordWalked) {
  AddMail({Attachment(0x8025, {Data(0x3701, 0x0102, BytesOf("x")), Wide(0x3704, u"a"), Value(0x3710, 3, 0)}),
           Attachment(0x8045, {Data(0x3701, 0x0102, BytesOf("x")), Wide(0x3704, u"b"), Value(0x3714, 3, 0)}),
           Attachment(0x8065, {Data(0x3701, 0x0102, BytesOf("x")), Wide(0x3704, u"c"), Wide(0x3707, u"c"),
                               Value(0x3714, 3, 0)})});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("a:1", "c:1"));
}

TEST_F(AttachmentsTest, InThePackedFormatTheWalkDoesNotStopAtTheLongName) {
  UseFormat(FORMAT_UNICODE_4K, StoreKind::kOst);
  AddMail({Attachment(0x8025, {Data(0x3701, 0x0102, BytesOf("x")), Wide(0x3704, u"a"), Wide(0x3707, u"a"),
                               Value(0x3714, 3, 0)}),
           Attachment(0x8045, {Data(0x3701, 0x0102, BytesOf("x")), Wide(0x3704, u"b"), Wide(0x3707, u"b")}),
           Attachment(0x8065, {Value(0x3701, 0x0102, 0x803F), Wide(0x3704, u"c"), Value(0x3714, 3, 0)},
                      Behind(BytesOf("sub")))});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("b:1", "c:3"));
}

TEST_F(AttachmentsTest, AnAttachmentWithoutDataIsLostEvenIfItHasSubNodes) {
  AddMail({Attachment(0x8025, {Wide(0x3704, u"a")}, Behind(BytesOf("sub")))});
  Recover();
  EXPECT_THAT(Attached(), IsEmpty());
  EXPECT_EQ(state_.report.lost.size(), 1u);
}

TEST_F(AttachmentsTest, AFileLeftOpenForWantOfDataIsFilledByTheNextAttachmentThatBringsNoName) {
  AddMail({Attachment(0x8025, {Wide(0x3704, u"first")}),
           Attachment(0x8045, {Data(0x3701, 0x0102, BytesOf("xyz")), Wide(0x3707, u"not looked at")}),
           Attachment(0x8065, {Data(0x3701, 0x0102, BytesOf("lost")), Wide(0x3707, u"nor this")})});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("first:3"));
}

TEST_F(AttachmentsTest, AFileLeftOpenTakesAContentInSubNodesToo) {
  AddMail({Attachment(0x8025, {Wide(0x3704, u"first")}),
           Attachment(0x8045, {Value(0x3701, 0x0102, 0x803F), Value(0x3714, 3, 0)}, Behind(BytesOf("sub")))});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("first:3"));
}

TEST_F(AttachmentsTest, AFileLeftOpenIsClosedByANameOrByABlockThatIsNoAttachment) {
  AddMail({Attachment(0x8025, {Wide(0x3704, u"first")}),
           Small(0x8045, u"second", "x"),
           Attachment(0x8065, {Data(0x3701, 0x0102, BytesOf("lost")), Wide(0x3707, u"n")}),
           Attachment(0x8085, {Wide(0x3704, u"third")}),
           {0x692, AddBlock(NewBid(), BytesOf("no heap")), 0},
           Attachment(0x80A5, {Data(0x3701, 0x0102, BytesOf("lost")), Wide(0x3707, u"n")})});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("second:1"));
}

TEST_F(AttachmentsTest, AFileLeftOpenEndsWithItsMessage) {
  AddMail({Attachment(0x8025, {Wide(0x3704, u"first")})});
  AddMail({Attachment(0x8025, {Data(0x3701, 0x0102, BytesOf("lost")), Wide(0x3707, u"n")})});
  Recover();
  EXPECT_THAT(Attached(), IsEmpty());
}

TEST_F(AttachmentsTest, OfATextAsManyBytesAreWrittenAsItHasCharacters) {
  AddMail({Attachment(0x8025, {Wide(0x3701, u"12345678"), Wide(0x3704, u"a")})});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("a:8"));
}

TEST_F(AttachmentsTest, AnEmptyContentIsStillAttached) {
  AddMail({Small(0x8025, u"empty", "")});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("empty:0"));
}

TEST_F(AttachmentsTest, OneLostIdIsLookedForOneHundredIdsOnAndOnlyTheLastCounts) {
  AddBlock(0x21DA + 50, SubNodeBlock({{0x803F, AddBlock(NewBid(), BytesOf("not this")), 0}}));
  AddBlock(0x223E, SubNodeBlock({{0x803F, AddBlock(NewBid(), BytesOf("this")), 0}}));
  AddMail({Attachment(0x8025, {Value(0x3701, 0x0102, 0x803F), Wide(0x3704, u"a")}, 0x21DA),
           Attachment(0x8045, {Value(0x3701, 0x0102, 0x803F), Wide(0x3704, u"b")}, 0x31DA)});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("a:4"));
}

TEST_F(AttachmentsTest, ABlockBehindTheAttachmentThatIsNoListIsTheContentItself) {
  AddMail(
      {Attachment(0x8025, {Value(0x3701, 0x0102, 0x803F), Wide(0x3704, u"a")}, AddBlock(NewBid(), BytesOf("plain")))});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("a:5"));
}

TEST_F(AttachmentsTest, WithoutANameNothingIsAttachedThoughTheContentIsThere) {
  AddMail({Attachment(0x8025, {Value(0x3701, 0x0102, 0x803F)}, Behind(BytesOf("sub")))});
  Recover();
  EXPECT_THAT(Attached(), IsEmpty());
  EXPECT_EQ(Trace("Save").size(), 1u) << "and that is no failure";
  EXPECT_EQ(Numbers<engine::AttachmentsListed>().size(), 1u);
}

TEST_F(AttachmentsTest, AnAttachmentIsFoundThroughTheNextLowerIdToo) {
  auto [nid, bid, bidSub] = Small(0x8025, u"a", "x");
  AddMail({{nid, bid + 1, bidSub}});
  Recover();
  EXPECT_THAT(Attached(), ElementsAre("a:1"));
}

TEST_F(AttachmentsTest, TheLogNamesEachFile) {
  run_.log = this;
  AddMail({Small(0x8025, u"a.txt", "x"), Small(0x8045, u"b.txt", "y")});
  Recover();
  EXPECT_NE(log_.find(u"\r\nAttachment File Name: a.txt\r\nAttachment File Name: b.txt\r\nStatus: Recovered\r\n"),
            text::Text::npos);
}

TEST_F(AttachmentsTest, APictureOfAContactGoesToTheContactOfAMessageThatIsBothAMailAndAContact) {
  // Two classes that contradict each other: the mail is there for the attachment, the contact takes it.
  AddMessage(
      {Wide(0x001A, u"IPM.Contact"), Wide(0x001A, u"IPM.Note")},
      AddBlock(NewListBid(), SubNodeBlock({{0x671, 0, 0},
                                           Attachment(0x8025, {Value(0x3701, 0x0102, 0x803F), Wide(0x3704, u"a")},
                                                      Behind(BytesOf("picture")))})));
  Recover();
  EXPECT_EQ(Trace("AddPicture").size(), 1u);
  EXPECT_THAT(Attached(), IsEmpty());
}

TEST_F(AttachmentsTest, AContactThatIsAMailTooIsSavedAgainForAnAttachmentWithoutContent) {
  AddMessage(
      {Wide(0x001A, u"IPM.Contact"), Wide(0x001A, u"IPM.Note")},
      AddBlock(NewListBid(), SubNodeBlock({{0x671, 0, 0},
                                           Attachment(0x8025, {Value(0x3701, 0x0102, 0x803F), Value(0x3714, 3, 0)},
                                                      Behind(BytesOf("nameless")))})));
  Recover();
  EXPECT_THAT(Trace("AddPicture"), IsEmpty());
  EXPECT_EQ(Trace("Save").size(), 3u) << "the contact twice, the mail once";
}

}  // namespace
}  // namespace velmora::recovery
