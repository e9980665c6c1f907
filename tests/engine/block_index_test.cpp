#include "engine/block_index.h"

#include <map>
#include <random>

#include "engine/bad_disk.h"
#include "engine/run_fixture.h"
#include "forge/checksum.h"

namespace velmora::engine {
namespace {

using forge::Format;

class BlockIndexTest : public RunTest {
 protected:
  /// The store's bytes become the source, and the records the index, in two calls.
  void Build(const std::vector<BlockRecord>& records, Format format = Format::kUnicode) {
    Attach(canvas_.bytes, format);
    const std::span<const BlockRecord> all(records);
    Found().index = {};
    Found().index.Add(Placed(all.first(records.size() / 2)));
    Found().index.Add(Placed(all.subspan(records.size() / 2)));
    Found().index.Settle(Found().source, Found().layout, run_);
  }

  std::unique_ptr<platform::MemoryFile> Memory() const { return std::make_unique<platform::MemoryFile>(canvas_.bytes); }

  std::optional<BlockRecord> Find(std::uint32_t id) const { return Found().index.Find(id); }

  Canvas canvas_;
};

TEST_F(BlockIndexTest, AnIdThatWasNotTakenInIsNotFound) {
  Build({{8, 1, 64}, {4, 1, 128}});
  EXPECT_EQ(Find(4), (BlockRecord{4, 1, 128}));
  EXPECT_EQ(Find(8), (BlockRecord{8, 1, 64}));
  for (const std::uint32_t id : {0u, 3u, 6u, 9u, 0xFFFFFFFFu}) EXPECT_FALSE(Find(id)) << id;
}

TEST_F(BlockIndexTest, AnEmptyIndexFindsNothing) {
  EXPECT_FALSE(Find(4));
  Build({});
  EXPECT_FALSE(Find(4));
}

TEST_F(BlockIndexTest, TwoBuildsDoNotMix) {
  Build({{4, 1, 64}});
  Build({{8, 1, 64}});
  EXPECT_FALSE(Find(4));
}

TEST_F(BlockIndexTest, WhereNoBlockProvesItselfTheFirstRecordWins) {
  Build({{4, 20, 128}, {8, 1, 64}, {4, 20, 64}, {4, 20, 128}});
  EXPECT_EQ(Find(4), (BlockRecord{4, 20, 128}));
}

TEST_F(BlockIndexTest, ALoneRecordNeedsNoProof) {
  Build({{4, 20, 64}, {4, 20, 64}, {8, 20, 640}});
  EXPECT_EQ(Find(4), (BlockRecord{4, 20, 64}));
  EXPECT_FALSE(Found().source.FirstFailure());
}

// More records than are merged at once, with ids that come again and again.
TEST_F(BlockIndexTest, ManyRecordsAnswerAsASearchThroughThemInOrderWould) {
  std::minstd_rand random(7);
  std::vector<BlockRecord> records;
  std::map<std::uint32_t, BlockRecord> expected;
  for (std::uint32_t i = 0; i < 150'000; ++i) {
    const BlockRecord record{static_cast<std::uint32_t>(random() % 100'000) + 1, 1, std::uint64_t{i} * 64};
    records.push_back(record);
    expected.emplace(record.bid, record);  // nothing proves itself, so the very first wins
  }
  Build(records);
  for (const auto& [bid, record] : expected) ASSERT_EQ(Find(bid), record);
  EXPECT_FALSE(Find(100'001));
}

/// Which part of a block's trailer is wrong.
enum class Flaw { kNone, kSize, kId, kSignature, kChecksum };

class EveryFormatBlockIndexTest : public BlockIndexTest, public testing::WithParamInterface<Format> {
 protected:
  static constexpr std::uint32_t kId = 0x24;

  /// A block of `size` bytes at the next place of its own, far enough from the others that none overlap.
  BlockRecord Place(Flaw flaw = Flaw::kNone, std::uint16_t size = 300) {
    const std::uint64_t offset = next_ += 1024;
    forge::BlockOptions options;
    options.bid = kId;
    options.offset = offset;
    if (flaw == Flaw::kSize) options.trailerSize = static_cast<std::uint16_t>(size - 1);
    if (flaw == Flaw::kId) options.trailerId = kId + 4;
    if (flaw == Flaw::kSignature)
      options.trailerSignature = static_cast<std::uint16_t>(forge::Signature(offset, kId) ^ 1);
    forge::Store store({.format = GetParam()});
    store.AddBlock(forge::Noise(size, static_cast<std::uint32_t>(offset)), options);
    forge::Image image = store.Finish();
    const forge::PlacedBlock& block = image.Block(kId);
    if (flaw == Flaw::kChecksum) forge::BreakData(image, block, size - 1u);
    canvas_.Put(offset, std::span(image.bytes).subspan(offset, block.placeSize));
    return {kId, size, offset};
  }

  std::optional<BlockRecord> Winner(const std::vector<BlockRecord>& records) {
    Build(records, GetParam());
    return Find(kId);
  }

  std::uint64_t next_ = 0x43000;  ///< between two allocation maps, which the forge puts into every store
};

TEST_P(EveryFormatBlockIndexTest, ABlockThatIsWholeWinsOverRecordsAheadOfIt) {
  const BlockRecord chance{kId, 300, 0x5000};
  const BlockRecord whole = Place();
  EXPECT_EQ(Winner({chance, whole}), whole);
  EXPECT_EQ(Winner({whole, chance}), whole);
}

TEST_P(EveryFormatBlockIndexTest, SizeIdSignatureAndChecksumMakeABlockWhole) {
  for (const Flaw flaw : {Flaw::kSize, Flaw::kId, Flaw::kSignature, Flaw::kChecksum}) {
    const BlockRecord flawed = Place(flaw);
    const BlockRecord whole = Place();
    EXPECT_EQ(Winner({flawed, whole}), whole) << static_cast<int>(flaw);
  }
}

TEST_P(EveryFormatBlockIndexTest, OfBlocksThatAreWholeTheFirstRecordWinsWhereverItLies) {
  const BlockRecord lower = Place();
  const BlockRecord higher = Place();
  EXPECT_EQ(Winner({higher, lower}), higher);
  EXPECT_EQ(Winner({lower, higher}), lower);
}

TEST_P(EveryFormatBlockIndexTest, WithoutAWholeOneTheFirstBlockOfIdAndSignatureWins) {
  const BlockRecord chance{kId, 300, 0x5000};
  const BlockRecord noId = Place(Flaw::kId);
  const BlockRecord noSignature = Place(Flaw::kSignature);
  const BlockRecord damaged = Place(Flaw::kChecksum);
  const BlockRecord otherSize = Place(Flaw::kSize);
  EXPECT_EQ(Winner({chance, noId, noSignature, damaged, otherSize}), damaged);
  EXPECT_EQ(Winner({chance, noId, noSignature, otherSize, damaged}), otherSize);
  EXPECT_EQ(Winner({noId, noSignature, chance}), noId) << "none has both";
}

TEST_P(EveryFormatBlockIndexTest, TheTrailerEndsTheRoundedBlockWhateverItsSize) {
  // The trailer just fits behind the data of its round, or just does not.
  for (std::uint16_t size = 480; size < 530; ++size) {
    const BlockRecord whole = Place(Flaw::kNone, size);
    ASSERT_EQ(Winner({{kId, size, 0x5000}, whole}), whole) << size;
  }
}

TEST_P(EveryFormatBlockIndexTest, ABlockThatTheSourceDoesNotHaveToItsEndIsNotWhole) {
  const BlockRecord whole = Place();
  const BlockRecord cut = Place();
  canvas_.bytes.resize(cut.offset + 300);
  EXPECT_EQ(Winner({cut, whole}), whole);
  EXPECT_EQ(Winner({{kId, 300, 0xFFFFFFFFFFFFFFF0}, whole}), whole) << "nor one that would begin ahead of it";
}

TEST_P(EveryFormatBlockIndexTest, ABlockOnABadPlaceIsNotWholeAndTakesNoOtherWithIt) {
  const BlockRecord unreadable = Place();
  next_ += 8192;
  const BlockRecord whole = Place();
  Attach(canvas_.bytes, GetParam());
  Found().source.Open(
      std::make_unique<BadDisk>(Memory(), std::vector<BadPlace>{{unreadable.offset, unreadable.offset + 1}}));
  const BlockRecord chance{kId, 300, 0x5000};
  Index({chance, unreadable, whole});
  EXPECT_EQ(Find(kId), whole);
  EXPECT_EQ(Found().source.Unread().Ranges().size(), 1u);
}

TEST_P(EveryFormatBlockIndexTest, HoweverManyRecordsPointIntoTheSourceItIsReadAboutOnce) {
  const BlockRecord whole = Place();
  std::vector<BlockRecord> records;
  for (std::uint64_t offset = 0; offset < whole.offset; offset += 16) records.push_back({kId, 65000, offset});
  records.push_back(whole);
  Attach(canvas_.bytes, GetParam());
  auto disk = std::make_unique<BadDisk>(Memory(), std::vector<BadPlace>{});
  const BadDisk& observed = *disk;
  Found().source.Open(std::move(disk));
  Index(records);
  EXPECT_EQ(Find(kId), whole);
  EXPECT_LE(observed.bytesRead, canvas_.bytes.size() * 5 / 4);
}

TEST_P(EveryFormatBlockIndexTest, WhereBlocksOverlapNoMoreBytesAreSummedThanTheSourceHas) {
  // The trailers of blocks of 28,000 bytes, one block within the other, whose checksums are all wrong.
  const forge::FormatTraits& traits = forge::TraitsOf(GetParam());
  std::vector<BlockRecord> records;
  const auto addOverlapping = [&](std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint64_t offset = 0x1000 + records.size() * 1024;
      const std::uint64_t end =
          offset + (28000 + traits.blockTrailerSize + traits.slotSize - 1) / traits.slotSize * traits.slotSize;
      const std::uint64_t trailer = end - traits.blockTrailerSize;
      canvas_.Number(trailer, 28000, 2);
      canvas_.Number(trailer + 2, forge::Signature(offset, kId), 2);
      canvas_.Number(trailer + (GetParam() == Format::kAnsi ? 4 : 8), kId, 4);
      canvas_.Number(trailer + (GetParam() == Format::kAnsi ? 8 : 4), 1, 4);
      records.push_back({kId, 28000, offset});
    }
  };
  const BlockRecord whole = Place(Flaw::kNone, 8000);
  addOverlapping(9);
  auto all = records;
  all.push_back(whole);
  EXPECT_EQ(Winner(all), whole) << "260,000 bytes are fewer than the source has";
  addOverlapping(1);
  all = records;
  all.push_back(whole);
  EXPECT_EQ(Winner(all), records[0]) << "and 288,000 are more";
}

TEST_P(EveryFormatBlockIndexTest, AStopLeavesTheProving) {
  const BlockRecord whole = Place();
  run_.control.RequestStop();
  EXPECT_THROW(Winner({{kId, 300, 0x5000}, whole}), RunStopped);
}

INSTANTIATE_TEST_SUITE_P(Index, EveryFormatBlockIndexTest,
                         testing::Values(Format::kAnsi, Format::kUnicode, Format::kUnicode4k), FormatName);

}  // namespace
}  // namespace velmora::engine
