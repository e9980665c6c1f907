#include "recovery/value_stream.h"

#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

using engine::StoreKind;
using testing::ElementsAre;
using testing::IsEmpty;

class ValueStreamTest : public RecoveryTest {
 protected:
  bool Build(std::uint32_t bid) {
    Settle();
    chain_ = {};
    return BuildBlockChain(engine_, *engine::BlockReader(engine_).FindBlock(bid), allowance_, chain_);
  }
  bool BuildAt(std::uint32_t bid) {
    Settle();
    chain_ = {};
    const auto record = *engine::BlockReader(engine_).FindBlock(bid);
    return BuildBlockChainAt(engine_, record, allowance_, chain_);
  }
  text::Text ReadText(std::uint16_t kind) {
    return ReadStreamAsText(engine_, chain_, kind, *state_.codePage, allowance_);
  }
  std::string ReadBytes() { return ReadStreamAsBytes(engine_, chain_, allowance_); }
  std::string WriteAll() {
    std::string written;
    WriteStreamToFile(engine_, chain_, allowance_, [&](const Bytes& piece) {
      written.append(reinterpret_cast<const char*>(piece.data()), piece.size());
    });
    return written;
  }

  BlockChain chain_;
  engine::ContentAllowance allowance_{1 << 20, true, 100};
};

TEST_F(ValueStreamTest, AListOfPiecesIsTakenFromTheStoredSizeAndNotFromItsCount) {
  Bytes block = ChainBlock({12, 16, 20});
  PutNumber<std::uint16_t>(block, 2, 1);
  AddBlock(8, block);
  EXPECT_TRUE(Build(8));
  EXPECT_TRUE(chain_.hasList);
  EXPECT_THAT(chain_.pieces, ElementsAre(12, 16, 20));
}

TEST_F(ValueStreamTest, IdsOfAnAnsiListAreFourBytesWide) {
  UseFormat(FORMAT_ANSI, StoreKind::kPst);
  AddBlock(8, ChainBlock({12, 16, 20}));
  EXPECT_TRUE(Build(8));
  EXPECT_THAT(chain_.pieces, ElementsAre(12, 16, 20));
}

TEST_F(ValueStreamTest, AValueInOneBlockIsNoList) {
  AddBlock(8, BytesOf("plain"));
  EXPECT_FALSE(Build(8));
  EXPECT_FALSE(BuildAt(8));
  EXPECT_FALSE(chain_.hasList);
}

TEST_F(ValueStreamTest, ASubNodeBlockLeadsToItsFirstEntrysBlockAndTheTwoWalksAnswerDifferently) {
  AddBlock(12, ChainBlock({16}));
  AddBlock(8, SubNodeBlock({{0x8025, 12, 0}}));
  EXPECT_FALSE(Build(8));
  EXPECT_THAT(chain_.pieces, ElementsAre(16));
  EXPECT_TRUE(BuildAt(8));
  EXPECT_THAT(chain_.pieces, ElementsAre(16));
  EXPECT_EQ(chain_.singleDataBid, 0u);
}

TEST_F(ValueStreamTest, ASubNodeBlockToOnePlainBlockKeepsThatBlocksId) {
  AddBlock(12, BytesOf("plain"));
  AddBlock(8, SubNodeBlock({{0x8025, 13, 0}}));
  EXPECT_FALSE(Build(8));
  EXPECT_TRUE(BuildAt(8));
  EXPECT_FALSE(chain_.hasList);
  EXPECT_EQ(chain_.singleDataBid, 13u);
}

TEST_F(ValueStreamTest, ASubNodeBlockToALostBlockGivesNothing) {
  AddBlock(8, SubNodeBlock({{0x8025, 12, 0}}));
  EXPECT_FALSE(Build(8));
  EXPECT_FALSE(BuildAt(8));
}

TEST_F(ValueStreamTest, ABlockThatNamesItselfEnds) {
  AddBlock(8, SubNodeBlock({{0x8025, 8, 0}}));
  EXPECT_FALSE(Build(8));
  EXPECT_TRUE(BuildAt(8));
  EXPECT_FALSE(chain_.hasList);
}

TEST_F(ValueStreamTest, PiecesAreJoinedAndEachEndsAtItsFirstNul) {
  AddBlock(12, BytesOf(std::u16string_view(u"one\0x", 5)));
  AddBlock(16, BytesOf(u"two"));
  AddBlock(8, ChainBlock({12, 16}));
  ASSERT_TRUE(Build(8));
  EXPECT_EQ(ReadText(0x1000), u"onetwo");
}

TEST_F(ValueStreamTest, AnHtmlBodyIsItsBytesInEveryStore) {
  AddBlock(12, BytesOf("\x93\xFA"));
  AddBlock(8, ChainBlock({12}));
  ASSERT_TRUE(Build(8));
  EXPECT_EQ(ReadBytes(), "\x93\xFA");
}

TEST_F(ValueStreamTest, ACharacterThatCrossesTwoPiecesIsNotPutTogether) {
  UseFormat(FORMAT_ANSI, StoreKind::kPst);
  AddBlock(12, BytesOf("\x93"));
  AddBlock(16, BytesOf("\xFA"));
  AddBlock(8, ChainBlock({12, 16}));
  ASSERT_TRUE(Build(8));
  const auto japanese = text::CodePage::Find("windows-932");
  state_.codePage = &*japanese;
  EXPECT_NE(ReadText(0x1000), u"日");
}

TEST_F(ValueStreamTest, APieceFoundOnlyThroughTheLowerIdIsLeftOutOfTextButWritten) {
  AddBlock(12, BytesOf("one"));
  AddBlock(16, BytesOf("two"));
  AddBlock(8, ChainBlock({12, 17}));
  ASSERT_TRUE(Build(8));
  EXPECT_EQ(ReadBytes(), "one");
  EXPECT_EQ(WriteAll(), "onetwo");
}

TEST_F(ValueStreamTest, ALostPieceLeavesTheOthersJoined) {
  AddBlock(12, BytesOf("one"));
  AddBlock(16, BytesOf("two"));
  AddBlock(8, ChainBlock({12, 0, 99, 16}));
  ASSERT_TRUE(Build(8));
  EXPECT_EQ(ReadBytes(), "onetwo");
  EXPECT_EQ(WriteAll(), "onetwo");
}

TEST_F(ValueStreamTest, TextPiecesAreDecodedByTheirRecordAndContentByTheIdAtHand) {
  engine_.blockEncoding = CryptMethod::kCyclic;
  Bytes byRecord = BytesOf("piece");
  Bytes byIdAtHand = byRecord;
  engine::BlockReader(engine_).DecodeBlock(12, byRecord);
  engine::BlockReader(engine_).DecodeBlock(13, byIdAtHand);
  AddBlock(12, BytesOf("piece"));
  Settle();
  chain_ = {.hasList = true, .pieces = {13}};
  EXPECT_EQ(WriteAll(), ByteView(byIdAtHand).Chars());
  chain_.pieces = {12};
  EXPECT_EQ(ReadBytes(), ByteView(byRecord).Chars());
}

TEST_F(ValueStreamTest, TheSingleBlockOfAWideTextKeepsItsNulsAndLosesAnOddByte) {
  Bytes stored = BytesOf(std::u16string_view(u"a\0b", 3));
  stored.push_back(std::byte{'c'});
  AddBlock(16, stored);
  Settle();
  chain_ = {.singleDataBid = 16};
  EXPECT_EQ(ReadText(0x1000), std::u16string_view(u"a\0b", 3));
}

TEST_F(ValueStreamTest, ASingleBlockIsWrittenAsItStands) {
  AddBlock(12, BytesOf("content"));
  AddBlock(8, SubNodeBlock({{0x8025, 12, 0}}));
  ASSERT_TRUE(BuildAt(8));
  EXPECT_EQ(WriteAll(), "content");
}

TEST_F(ValueStreamTest, APackedSingleBlockBelowTheLimitIsTakenForAListOfBlockIds) {
  UseFormat(FORMAT_UNICODE_4K, StoreKind::kOst);
  AddBlock(20, BytesOf("one"));
  AddBlock(24, BytesOf("two"));
  Bytes list(8);
  for (const std::uint64_t id : {20ull, 0xABCD0000ull | 25, 99ull}) AppendNumber<std::uint64_t>(list, id);
  AddBlock(12, Packed(list));
  Settle();
  chain_ = {.singleDataBid = 12};
  EXPECT_EQ(WriteAll(), "onetwo") << "16 bits of each id, or the next lower one";
}

TEST_F(ValueStreamTest, ALargerPackedSingleBlockIsWrittenInflated) {
  UseFormat(FORMAT_UNICODE_4K, StoreKind::kOst);
  Bytes content;
  for (std::uint32_t i = 0; i < 2000; ++i) AppendNumber<std::uint32_t>(content, i * 2654435761u);
  const Bytes packed = Packed(content);
  ASSERT_GE(packed.size(), 1001u);
  AddBlock(12, packed);
  Settle();
  chain_ = {.singleDataBid = 12};
  EXPECT_EQ(WriteAll(), ByteView(content).Chars());
}

TEST_F(ValueStreamTest, AnUnpackedSingleBlockOfThePackedFormatIsNoListOfIds) {
  UseFormat(FORMAT_UNICODE_4K, StoreKind::kOst);
  AddBlock(12, BytesOf("stored uncompressed"));
  Settle();
  chain_ = {.singleDataBid = 12};
  EXPECT_EQ(WriteAll(), "stored uncompressed");
}

TEST_F(ValueStreamTest, PiecesOfThePackedFormatAreInflated) {
  UseFormat(FORMAT_UNICODE_4K, StoreKind::kOst);
  AddBlock(12, Packed(BytesOf("one")));
  AddBlock(16, BytesOf("two"));
  AddBlock(8, ChainBlock({12, 16}));
  ASSERT_TRUE(Build(8));
  EXPECT_EQ(WriteAll(), "onetwo");
  EXPECT_EQ(ReadBytes(), "onetwo");
}

TEST_F(ValueStreamTest, AListThatRepeatsOneBlockEndsWhenTheAllowanceIsSpent) {
  AddBlock(12, Bytes(60000, std::byte{'x'}));
  AddBlock(8, ChainBlock(std::vector<std::uint32_t>(1000, 12)));
  ASSERT_TRUE(Build(8));
  allowance_ = engine::ContentAllowance(500000, false, 1);
  EXPECT_EQ(WriteAll().size(), 533u * 60000) << "64 times the size of the source, in whole pieces";
  allowance_ = engine::ContentAllowance(99, false, 1);
  EXPECT_EQ(WriteAll().size(), 279u * 60000) << "16 MiB, however small the source";
}

TEST_F(ValueStreamTest, OneTextIsNoLongerThanItsSourceCouldHold) {
  AddBlock(12, Bytes(60000, std::byte{'x'}));
  AddBlock(8, ChainBlock(std::vector<std::uint32_t>(1000, 12)));
  ASSERT_TRUE(Build(8));
  constexpr std::uint64_t kMiB = std::uint64_t{1} << 20;
  const auto lengthFor = [this](std::uint64_t sourceBytes) {
    allowance_ = engine::ContentAllowance(sourceBytes, false, 1);
    return ReadBytes().size();
  };
  EXPECT_EQ(lengthFor(5 * kMiB), 279u * 60000) << "16 MiB at least";
  EXPECT_EQ(lengthFor(20 * kMiB), 349u * 60000);
  EXPECT_TRUE(engine::ContentAllowance(kMiB * 1000, false, 1).TakeHeld(128 * kMiB)) << "and 128 MiB at most";
  EXPECT_FALSE(engine::ContentAllowance(kMiB * 1000, false, 1).TakeHeld(128 * kMiB + 1));
}

}  // namespace
}  // namespace velmora::recovery
