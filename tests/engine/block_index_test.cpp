#include "engine/block_index.h"

#include <map>
#include <random>

#include "engine/run_fixture.h"
#include "forge/checksum.h"

namespace velmora::engine {
namespace {

/// Ids that fill a chunk from `first` on.
std::vector<BlockRecord> Chunk(std::uint32_t first, std::uint64_t offset) {
  std::vector<BlockRecord> records;
  for (std::uint32_t i = 0; i < BlockIndex::kChunkRecords; ++i) records.push_back({first + i, 1, offset});
  return records;
}

/// Puts the trailer of a Unicode block of 20 bytes behind its data.
void PutTrailer(Canvas& canvas, std::uint64_t offset, std::uint32_t id, std::uint16_t signature) {
  canvas.Number(offset + 48, 20, 2);
  canvas.Number(offset + 50, signature, 2);
  canvas.Number(offset + 56, id, 8);
}

class BlockIndexTest : public testing::Test {
 protected:
  void Build(std::vector<BlockRecord> records) {
    index_.Build(std::move(records), platform::MemoryFile(canvas_.bytes), LayoutOf(FORMAT_UNICODE));
  }

  Canvas canvas_;
  BlockIndex index_;
};

TEST_F(BlockIndexTest, AnIdThatWasNotTakenInIsNotFound) {
  Build({{8, 1, 64}, {4, 1, 128}});
  EXPECT_EQ(index_.Find(4), (BlockRecord{4, 1, 128}));
  EXPECT_EQ(index_.Find(8), (BlockRecord{8, 1, 64}));
  for (const std::uint32_t id : {0u, 3u, 6u, 9u, 0xFFFFFFFFu}) EXPECT_FALSE(index_.Find(id)) << id;
}

TEST_F(BlockIndexTest, AnEmptyIndexFindsNothing) {
  EXPECT_FALSE(index_.Find(4));
  Build({});
  EXPECT_FALSE(index_.Find(4));
}

TEST_F(BlockIndexTest, FirstAndLastRecordOfEveryChunkAreFound) {
  auto records = Chunk(10'000, 64);
  const auto second = Chunk(1'000, 128);
  records.insert(records.end(), second.begin(), second.end());
  records.push_back({7, 1, 192});
  Build(records);
  EXPECT_EQ(index_.Find(10'000), (BlockRecord{10'000, 1, 64}));
  EXPECT_EQ(index_.Find(13'999), (BlockRecord{13'999, 1, 64}));
  EXPECT_EQ(index_.Find(1'000), (BlockRecord{1'000, 1, 128}));
  EXPECT_EQ(index_.Find(4'999), (BlockRecord{4'999, 1, 128}));
  EXPECT_EQ(index_.Find(7), (BlockRecord{7, 1, 192}));
}

TEST_F(BlockIndexTest, OfTwoChunksThatHoldAnIdTheFirstWins) {
  auto records = Chunk(1'000, 64);
  records.push_back({1'500, 2, 128});
  Build(records);
  EXPECT_EQ(index_.Find(1'500), (BlockRecord{1'500, 1, 64}));
}

TEST_F(BlockIndexTest, TheFirstChunkWinsEvenWhereALaterOneHasTheSoundTrailer) {
  PutTrailer(canvas_, 128, 1'500, forge::Signature(128, 1'500));
  auto records = Chunk(1'000, 64);
  records.push_back({1'500, 20, 128});
  Build(records);
  EXPECT_EQ(index_.Find(1'500), (BlockRecord{1'500, 1, 64}));
}

TEST_F(BlockIndexTest, WithinAChunkTheFirstRecordWithASoundTrailerWins) {
  PutTrailer(canvas_, 128, 4, forge::Signature(128, 4));
  PutTrailer(canvas_, 192, 4, forge::Signature(192, 4));
  Build({{4, 20, 64}, {4, 20, 128}, {4, 20, 192}});
  EXPECT_EQ(index_.Find(4), (BlockRecord{4, 20, 128}));
}

TEST_F(BlockIndexTest, ATrailerProvesItselfByIdAndSignature) {
  PutTrailer(canvas_, 64, 8, forge::Signature(64, 4));        // another id
  PutTrailer(canvas_, 128, 4, forge::Signature(128, 4) ^ 1);  // a wrong signature
  Build({{4, 20, 0}, {4, 20, 64}, {4, 20, 128}});
  EXPECT_EQ(index_.Find(4), (BlockRecord{4, 20, 0})) << "none proves itself, so the first wins";
}

TEST_F(BlockIndexTest, TheTrailerIsTheLastPartOfTheRoundedBlockInEveryFormat) {
  for (const forge::Format format : {forge::Format::kAnsi, forge::Format::kUnicode, forge::Format::kUnicode4k}) {
    forge::Store store({.format = format});
    // 115 bytes end within the last 16 of the block, where an ANSI trailer takes 12.
    const auto bid = static_cast<std::uint32_t>(store.AddBlock(forge::Noise(115, 1)));
    const auto image = store.Finish();
    const std::uint64_t offset = image.Block(bid).offset;
    BlockIndex index;
    index.Build({{bid, 115, 0}, {bid, 115, offset}}, platform::MemoryFile(image.bytes), LayoutOf(IdOf(format)));
    EXPECT_EQ(index.Find(bid), (BlockRecord{bid, 115, offset})) << "format " << IdOf(format);
  }
}

TEST_F(BlockIndexTest, TwoBuildsDoNotMix) {
  Build({{4, 1, 64}});
  Build({{8, 1, 64}});
  EXPECT_FALSE(index_.Find(4));
}

// More chunks than are merged at once, with ids that come again and again.
TEST_F(BlockIndexTest, ManyChunksAnswerAsASearchThroughThemInOrderWould) {
  std::minstd_rand random(7);
  std::vector<BlockRecord> records;
  std::map<std::uint32_t, BlockRecord> expected;
  for (std::uint32_t i = 0; i < 150'000; ++i) {
    const BlockRecord record{static_cast<std::uint32_t>(random() % 100'000) + 1, 1, std::uint64_t{i} * 64};
    records.push_back(record);
    expected.emplace(record.bid, record);  // nothing proves itself, so the very first wins
  }
  Build(records);
  for (const auto& [bid, record] : expected) ASSERT_EQ(index_.Find(bid), record);
  EXPECT_FALSE(index_.Find(100'001));
}

}  // namespace
}  // namespace velmora::engine
