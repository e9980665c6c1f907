#include "recovery/block_failure.h"

#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

using engine::StoreKind;

/// Why a message of one block is lost, in the report's words.
class BlockFailureTest : public RecoveryTest {
 protected:
  BlockFailureTest() { AddTopAndInbox(); }

  std::string ReasonOf(std::uint32_t bidData) {
    AddNode(0x200024, bidData, 0, kInbox);
    Recover();
    if (state_.report.lost.size() != 1) return std::to_string(state_.report.lost.size()) + " losses";
    return text::ToUtf8(state_.report.lost[0].reason);
  }
};

TEST_F(BlockFailureTest, ABlockThatIsNotThereIsNotFound) {
  EXPECT_EQ(ReasonOf(0x7774), "its data block 0x7774 was not found");
}

TEST_F(BlockFailureTest, ANodeWithoutABlockSaysSo) { EXPECT_EQ(ReasonOf(0), "it has no data block"); }

TEST_F(BlockFailureTest, ABlockThatTheSystemCannotReadCouldNotBeRead) {
  class Unreadable : public platform::MemoryFile {
   public:
    using MemoryFile::MemoryFile;
    std::uint64_t badOffset = 0;
    platform::Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
      if (offset == badOffset)
        return tl::unexpected(platform::Failure{platform::FailureKind::kInputOutput, "source", offset, "bad sector"});
      return MemoryFile::ReadAt(offset, out);
    }
  };
  const std::uint32_t bid = AddBlock(NewBid(), HeapBlock({Wide(0x001A, u"IPM.Note")}));
  AddNode(0x200024, bid, 0, kInbox);
  Settle();
  RecoverFolders(state_, engine_, run_);
  auto source = std::make_unique<Unreadable>(Bytes(100000));
  source->badOffset = std::stoull(OffsetOf(bid));
  engine_.source.Open(std::move(source));
  RecoverOrphans(state_, engine_, run_);
  ASSERT_EQ(state_.report.lost.size(), 1u);
  EXPECT_EQ(text::ToUtf8(state_.report.lost[0].reason),
            "its data block " + text::ToUtf8(HexOf(bid)) + " at offset " + OffsetOf(bid) + " could not be read");
}

TEST_F(BlockFailureTest, ABlockBehindTheEndOfTheSourceIsCutOff) {
  const std::uint32_t bid = AddBlock(0x40, HeapBlock({Wide(0x001A, u"IPM.Note")}));
  AddNode(0x200024, bid, 0, kInbox);
  Settle();
  RecoverFolders(state_, engine_, run_);
  engine_.source.Open(std::make_unique<platform::MemoryFile>(Bytes(std::stoull(OffsetOf(0x40)) + 20)));
  RecoverOrphans(state_, engine_, run_);
  ASSERT_EQ(state_.report.lost.size(), 1u);
  EXPECT_EQ(text::ToUtf8(state_.report.lost[0].reason),
            "its data block 0x40 at offset " + OffsetOf(0x40) + " is cut off by the end of the source");
}

TEST_F(BlockFailureTest, ABlockOfThePackedFormatThatIsNoStreamCouldNotBeInflated) {
  UseFormat(FORMAT_UNICODE_4K, StoreKind::kOst);
  AddBlock(0x40, BytesOf("neither a heap nor packed"));
  EXPECT_EQ(ReasonOf(0x40), "its data block 0x40 at offset " + OffsetOf(0x40) + " could not be inflated");
}

TEST_F(BlockFailureTest, ABlockWithAnotherSignatureIsNoPropertyContext) {
  AddBlock(0x40, HeapBlock({Wide(0x001A, u"IPM.Note")}, {.signature = 0x7CEC}));
  EXPECT_EQ(ReasonOf(0x40),
            "its data block 0x40 at offset " + OffsetOf(0x40) + " is no property context: its signature is 0x7cec");
}

TEST_F(BlockFailureTest, AnInflatedBlockWithAnotherSignatureIsNoPropertyContext) {
  UseFormat(FORMAT_UNICODE_4K, StoreKind::kOst);
  AddBlock(0x40, Packed(BytesOf("no heap, but well packed")));
  EXPECT_EQ(ReasonOf(0x40),
            "its data block 0x40 at offset " + OffsetOf(0x40) + " is no property context: its signature is 0x6820");
}

TEST_F(BlockFailureTest, ABlockWithABrokenHeapHoldsADamagedContext) {
  AddBlock(0x40, HeapBlock({Wide(0x001A, u"IPM.Note")}, {.userRoot = 0xFFFF0}));
  EXPECT_EQ(ReasonOf(0x40),
            "its data block 0x40 at offset " + OffsetOf(0x40) + " holds a property context that is damaged");
}

TEST_F(BlockFailureTest, AHeapOfSeveralBlocksIsAListOfBlocks) {
  AddBlock(0x42, ChainBlock({AddBlock(0x40, HeapBlock({Wide(0x001A, u"IPM.Note")}))}));
  EXPECT_EQ(ReasonOf(0x42), "its data block 0x42 at offset " + OffsetOf(0x42) +
                                " is a list of blocks, and only what stands in one block is read");
}

TEST_F(BlockFailureTest, AMessageWhoseBlockIsSoundHasNone) {
  AddNode(0x200024, AddBlock(0x40, HeapBlock({Wide(0x001A, u"IPM.Note")})), 0, kInbox);
  Recover();
  EXPECT_THAT(state_.report.lost, testing::IsEmpty());
}

}  // namespace
}  // namespace velmora::recovery
