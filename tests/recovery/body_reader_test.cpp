#include "recovery/body_reader.h"

#include "recovery/heap_text.h"
#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

using engine::StoreKind;
using testing::ElementsAre;
using testing::IsEmpty;

/// A large value: out of line, in the sub-node of that id.
constexpr std::uint32_t kHtmlNid = 0x803F;
constexpr std::uint32_t kPlainNid = 0x805F;
constexpr std::uint32_t kRtfNid = 0x807F;

class BodyReaderTest : public RecoveryTest {
 protected:
  BodyReaderTest() { AddTopAndInbox(); }

  /// A mail with these records behind its class.
  void AddMail(std::vector<RecordSpec> bodies, const std::vector<SubNode>& subNodes = {}) {
    bodies.insert(bodies.begin(), TextRecord(0x001A, u"IPM.Note"));
    const std::uint32_t bidSub = subNodes.empty() ? 0 : AddBlock(NewListBid(), SubNodeBlock(subNodes));
    AddMessage(std::move(bodies), bidSub);
  }

  /// Field and value of each write of a body.
  std::vector<std::string> Bodies() {
    std::vector<std::string> bodies;
    for (const std::string& line : Trace("Put")) {
      const std::size_t at = line.find(R"("field":")") + 9;
      const std::string field = line.substr(at, line.find('"', at) - at);
      if (!field.ends_with("Body")) continue;
      const std::size_t value = line.find(R"("value":")") + 9;
      bodies.push_back(field + "=" + line.substr(value, line.size() - value - 2));
    }
    return bodies;
  }
};

TEST_F(BodyReaderTest, APlainBodyInLineHasTheWidthOfTheStore) {
  AddMail({Wide(0x1000, u"Hello")});
  Recover();
  EXPECT_THAT(Bodies(), ElementsAre("Body=Hello"));
}

TEST_F(BodyReaderTest, AnRtfBodyInLineIsEightBitTextUpToItsFirstNul) {
  AddMail({Data(0x1009, 0x0102, BytesOf(std::string_view("{\\rtf1\x93}\0x", 10)))});
  Recover();
  EXPECT_THAT(Bodies(), ElementsAre(R"(RTFBody={\\rtf1\u201C})"));
}

TEST_F(BodyReaderTest, APlainBodyGoesByTheCodePageAndAnRtfBodyDoesNot) {
  UseFormat(FORMAT_ANSI, StoreKind::kPst);
  AddFolder(0x8062, kTop, u"Ansi");
  const auto japanese = text::CodePage::Find("windows-932");
  state_.codePage = &*japanese;
  AddMessage({Narrow(0x001A, "IPM.Note"), Narrow(0x1000, "\x93\xFA")}, 0, 0x8062);
  AddMessage({Narrow(0x001A, "IPM.Note"), Narrow(0x1009, "\x93\xFA")}, 0, 0x8062);
  Recover();
  EXPECT_THAT(Bodies(), ElementsAre(R"(Body=\u65E5)", R"(RTFBody=\u201C\u00FA)"));
}

TEST_F(BodyReaderTest, WithAPlainAndAnRtfBodyInLineTheBytesOfTheLastArePlain) {
  AddMail({Wide(0x1000, u"plain"), Data(0x1009, 0x0102, BytesOf(u"rtf"))});
  Recover();
  EXPECT_THAT(Bodies(), ElementsAre("Body=rtf"));
}

TEST_F(BodyReaderTest, AnHtmlBodyInLineCountsInAnOstAloneAndHasNoFieldOfItsOwn) {
  AddMail({Wide(0x1000, u"plain"), Data(0x1013, 0x0102, BytesOf(u"html"))});
  AddMail({Data(0x1013, 0x0102, BytesOf(u"html"))});
  Recover();
  EXPECT_THAT(Bodies(), ElementsAre("Body=plain"));

  trace_.lines.clear();
  engine_.storeKind = StoreKind::kOst;
  RecoverOrphans(state_, engine_, run_);
  EXPECT_THAT(Bodies(), ElementsAre("Body=html"));
}

TEST_F(BodyReaderTest, ABodyThatEndsWithTheBlockIsNotTaken) {
  Bytes block = HeapBlock({Wide(0x001A, u"IPM.Note"), Wide(0x1000, u"Hello")});
  const std::uint16_t ibHnpm = ByteView(block).U16(0);
  const std::uint32_t place = ibHnpm + 2u + (HidOf(3) >> 4);
  PutNumber(block, place + 2, static_cast<std::uint16_t>(block.size()));
  AddNode(0x200024, AddBlock(0x40, block), 0, kInbox);
  PutNumber(block, place + 2, static_cast<std::uint16_t>(block.size() - 1));
  AddNode(0x200044, AddBlock(0x44, block), 0, kInbox);
  Recover();
  EXPECT_EQ(Bodies().size(), 1u);
  EXPECT_EQ(Trace("Save").size(), 2u);
}

TEST_F(BodyReaderTest, AnInLineBodyOutOfBoundsKeepsTheAttachmentsAway) {
  AddMail({Value(0x1000, 0x1F, 0x80400)},
          {{0x671, 0, 0},
           {0x8025, AddBlock(NewBid(), HeapBlock({Wide(0x3704, u"a"), Data(0x3701, 0x0102, BytesOf("x"))})), 0}});
  Recover();
  EXPECT_THAT(Bodies(), IsEmpty());
  EXPECT_THAT(Trace("AddAttachment"), IsEmpty());
  EXPECT_EQ(Trace("Save").size(), 1u);
  ASSERT_EQ(state_.report.lost.size(), 2u);
  EXPECT_EQ(state_.report.lost[0].nid, 0x8025u);
  EXPECT_EQ(state_.report.lost[1].reason, u"body: none is read of plain text of unknown size");
}

TEST_F(BodyReaderTest, OutOfLineTheHtmlBodyIsTriedFirst) {
  AddMail({Value(0x1000, 0x1F, kPlainNid), Value(0x1009, 0x102, kRtfNid), Value(0x1013, 0x102, kHtmlNid)},
          {{kHtmlNid, AddBlock(NewBid(), BytesOf("<p>Hi</p>")), 0},
           {kPlainNid, AddBlock(NewBid(), BytesOf(u"Hi")), 0},
           {kRtfNid, AddBlock(NewBid(), BytesOf("{rtf}")), 0}});
  Recover();
  EXPECT_THAT(Bodies(), ElementsAre("HTMLBody=<p>Hi</p>"));
}

TEST_F(BodyReaderTest, AnEmptyHtmlBodyIsWrittenAndThePlainOneTakenToo) {
  AddMail({Value(0x1000, 0x1F, kPlainNid), Value(0x1013, 0x102, kHtmlNid)},
          {{kHtmlNid, AddBlock(NewBid(), Bytes(8)), 0}, {kPlainNid, AddBlock(NewBid(), BytesOf(u"Hi")), 0}});
  Recover();
  EXPECT_THAT(Bodies(), ElementsAre("HTMLBody=", "Body=Hi"));
}

TEST_F(BodyReaderTest, ALostHtmlBodyLeavesThePlainOne) {
  AddMail({Value(0x1000, 0x1F, kPlainNid), Value(0x1013, 0x102, kHtmlNid)},
          {{kHtmlNid, 0x7777, 0}, {kPlainNid, AddBlock(NewBid(), BytesOf(u"Hi")), 0}});
  Recover();
  EXPECT_THAT(Bodies(), ElementsAre("Body=Hi"));
}

TEST_F(BodyReaderTest, AMessageWithoutSubNodesHasNoBodyOutOfLine) {
  AddMail({Value(0x1000, 0x1F, kPlainNid)});
  Recover();
  EXPECT_THAT(Bodies(), IsEmpty());
  EXPECT_EQ(Trace("Save").size(), 1u);
}

TEST_F(BodyReaderTest, AnRtfBodyOutOfLineIsNeverTaken) {
  AddMail({Value(0x1009, 0x102, kRtfNid)}, {{kRtfNid, AddBlock(NewBid(), BytesOf("{rtf}")), 0}});
  Recover();
  EXPECT_THAT(Bodies(), IsEmpty());
}

TEST_F(BodyReaderTest, OnlyHtmlOutOfLineGivesNoBodyInAPst) {
  AddMail({Value(0x1013, 0x102, kHtmlNid)}, {{kHtmlNid, AddBlock(NewBid(), BytesOf("<p>")), 0}});
  Recover();
  EXPECT_THAT(Bodies(), IsEmpty());

  engine_.storeKind = StoreKind::kOst;
  RecoverOrphans(state_, engine_, run_);
  EXPECT_THAT(Bodies(), ElementsAre("HTMLBody=<p>"));
}

TEST_F(BodyReaderTest, AMailAboveFourMebibytesOfAnOlderFormatIsDeliveredWithItsPlainBody) {
  for (const std::uint32_t size : {4u << 20, (4u << 20) + 1}) {
    AddMail({Value(0x0E08, 3, size), Value(0x1000, 0x1F, kPlainNid), Value(0x1013, 0x102, kHtmlNid)},
            {{kHtmlNid, AddBlock(NewBid(), BytesOf("<p>")), 0}, {kPlainNid, AddBlock(NewBid(), BytesOf(u"Hi")), 0}});
  }
  Recover();
  EXPECT_THAT(Bodies(), ElementsAre("HTMLBody=<p>", "Body=Hi"));
}

TEST_F(BodyReaderTest, AMailOfThePackedFormatIsDeliveredWithItsHtmlWhateverItsSize) {
  UseFormat(FORMAT_UNICODE_4K, StoreKind::kOst);
  AddMail({Value(0x0E08, 3, 5u << 20), Value(0x1000, 0x1F, kPlainNid), Value(0x1013, 0x102, kHtmlNid)},
          {{kHtmlNid, AddBlock(NewBid(), Packed(BytesOf("<p>packed</p>"))), 0},
           {kPlainNid, AddBlock(NewBid(), BytesOf(u"Hi")), 0}});
  Recover();
  EXPECT_THAT(Bodies(), ElementsAre("HTMLBody=<p>packed</p>"));
}

TEST_F(BodyReaderTest, ABodyOfThePackedFormatThatIsNoStreamIsTakenAsItWasRead) {
  UseFormat(FORMAT_UNICODE_4K, StoreKind::kOst);
  AddMail({Value(0x1013, 0x102, kHtmlNid)}, {{kHtmlNid, AddBlock(NewBid(), BytesOf("<p>plain</p>")), 0}});
  Recover();
  EXPECT_THAT(Bodies(), ElementsAre("HTMLBody=<p>plain</p>"));
}

TEST_F(BodyReaderTest, ABodyOfManyBlocksIsReadPieceByPiece) {
  const std::uint32_t one = AddBlock(NewBid(), BytesOf(u"one "));
  const std::uint32_t two = AddBlock(NewBid(), BytesOf(u"two"));
  AddMail({Value(0x1000, 0x1F, kPlainNid)}, {{kPlainNid, AddBlock(NewListBid(), ChainBlock({one, two})), 0}});
  Recover();
  EXPECT_THAT(Bodies(), ElementsAre("Body=one two"));
}

TEST_F(BodyReaderTest, SlotBodiesAreDecodedByTheIdOfTheSlot) {
  // Found through the next lower id; the key is the id that the list of sub-nodes gave.
  engine_.blockEncoding = CryptMethod::kCyclic;
  Settle();
  const Bytes stored = BytesOf("<html>");
  Bytes decoded = stored;
  engine::BlockReader(engine_).DecodeBlock(0x41, decoded);
  AddBlock(0x40, stored);
  Settle();
  engine::ContentAllowance allowance(1000, false, 10);
  BodyProperties properties;
  properties.slots[kHtmlBody] = {.tag = 0x1013, .value = kHtmlNid, .bid = 0x41};
  const Body body = ReadOutOfLineBody({engine_, *state_.codePage, allowance}, properties);
  ASSERT_EQ(body.writes.size(), 1u);
  EXPECT_EQ(body.writes[0].field, output::Field::HTMLBody);
  EXPECT_EQ(body.writes[0].bytes, UpToNul(ByteView(decoded)));
  EXPECT_EQ(body.taken, kHtmlBody);
  EXPECT_EQ(body.missing, u"");
}

TEST_F(BodyReaderTest, TheSlotsAreClearedBetweenMessages) {
  AddMail({Value(0x1000, 0x1F, kPlainNid)}, {{kPlainNid, AddBlock(NewBid(), BytesOf(u"first")), 0}});
  AddMail({Value(0x1009, 0x102, kPlainNid)}, {{kPlainNid, AddBlock(NewBid(), BytesOf(u"second")), 0}});
  Recover();
  EXPECT_THAT(Bodies(), ElementsAre("Body=first"));
}

}  // namespace
}  // namespace velmora::recovery
