#include "engine/block_index.h"

#include <algorithm>
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

/// What nothing proves: the first record of each low half and of each whole id counts.
class ManyRecordsTest : public BlockIndexTest {
 protected:
  ManyRecordsTest() { Attach({}); }

  void Settle(std::span<const PlacedBlock> blocks) {
    index_.Add(blocks);
    index_.Settle(Found().source, Found().layout, run_);
  }

  /// Asks for each, and for what lies beside.
  void ExpectAsSearchedThrough(const std::vector<PlacedBlock>& blocks) const {
    constexpr std::uint64_t kHigh = std::uint64_t{1} << 32;
    std::map<std::uint32_t, PlacedBlock> byLow;
    std::map<std::uint64_t, PlacedBlock> byId;
    for (const PlacedBlock& block : blocks) {
      byLow.emplace(LowBid(block.bid), block);
      byId.emplace(Value(block.bid), block);
    }
    for (const PlacedBlock& block : blocks) {
      const std::uint64_t id = Value(block.bid);
      for (const std::uint64_t asked : {id, id - 1, id + 1, id + kHigh, id - kHigh}) {
        const auto ofLow = byLow.find(static_cast<std::uint32_t>(asked));
        const auto ofId = byId.find(asked);
        const auto found = index_.Find(static_cast<std::uint32_t>(asked));
        ASSERT_EQ(found, ofLow == byLow.end() ? std::nullopt : std::optional(RecordOf(ofLow->second))) << asked;
        const auto exact = index_.FindExact(Bid{asked});
        ASSERT_EQ(exact, ofId == byId.end() ? std::nullopt : std::optional(ofId->second)) << asked;
      }
    }
  }

  BlockIndex index_;
};

TEST_F(ManyRecordsTest, InAnyOrderWithAnyHighHalvesTheyAreFoundAsTheyCame) {
  std::mt19937 random(11);
  std::vector<PlacedBlock> blocks;
  for (std::uint64_t i = 0; i < 100'000; ++i) {
    const std::uint64_t high = i % 10 == 0 ? random() % 4 : 0;
    const std::uint64_t low = i % 4 == 0 ? random() % 50'000 : 4 * i;
    blocks.emplace_back(high << 32 | low, static_cast<std::uint32_t>(1 + i % 8176), i * 64);
  }
  std::ranges::shuffle(blocks, random);
  Settle(blocks);
  ExpectAsSearchedThrough(blocks);
}

TEST_F(ManyRecordsTest, TheHighHalfOfALoneIdIsKept) {
  std::vector<PlacedBlock> blocks;
  for (std::uint64_t i = 0; i < 300; ++i) blocks.emplace_back((i % 7 == 0 ? ~i << 32 : 0) | (4 * i), 1, 64 * i);
  Settle(blocks);
  ExpectAsSearchedThrough(blocks);
}

TEST_F(ManyRecordsTest, EachWholeIdOfALowHalfIsFoundHoweverManyThereAre) {
  std::mt19937 random(11);
  for (const std::uint64_t count : {2u, 3u, 127u, 128u, 129u, 130u, 257u, 700u, 20'000u}) {
    std::vector<PlacedBlock> blocks{{4, 1, 64}, {0xFFFFFFFF, 1, 128}, {0, 1, 192}};
    for (std::uint64_t i = 0; i < count; ++i) {
      for (const std::uint64_t low : {8ull, 0xFFFFFFFFull}) {
        blocks.emplace_back(2 * i << 32 | low, 1 + static_cast<std::uint32_t>(i % 100), 1024 + 64 * i);
      }
    }
    std::ranges::shuffle(blocks, random);
    index_ = {};
    Settle(blocks);
    ExpectAsSearchedThrough(blocks);
  }
}

TEST_F(ManyRecordsTest, OffsetsBelowZeroComeBackAsTheyWere) {
  std::vector<PlacedBlock> blocks;
  for (std::uint64_t i = 0; i < 1000; ++i) blocks.emplace_back(4 * i, 1, (i % 90 == 0 ? -16 * (i + 1) : 64 * i));
  for (std::uint64_t i = 0; i < 300; ++i) blocks.emplace_back(8000 + 4 * i, 0xFFFF, -16 * (i + 1));
  Settle(blocks);
  ExpectAsSearchedThrough(blocks);
}

TEST_F(ManyRecordsTest, RecordsOfOnePlaceAreNoCopiesIfTheirIdsOrSizesAreOthers) {
  const std::vector<PlacedBlock> blocks{{8, 20, 64}, {1ull << 32 | 8, 20, 64}, {8, 20, 64}, {2ull << 32 | 8, 30, 64}};
  Settle(blocks);
  ExpectAsSearchedThrough(blocks);
}

TEST_F(ManyRecordsTest, OfEachIdOneRecordIsKept) {
  std::vector<PlacedBlock> blocks;
  for (std::uint64_t i = 0; i < 100'000; ++i) {
    const std::uint64_t id = i % 5'000;
    blocks.emplace_back(id % 2 << 32 | (id / 2 * 4), 100, 64 * i);
  }
  Settle(blocks);
  ExpectAsSearchedThrough({blocks.begin(), blocks.begin() + 5'000});
  EXPECT_LE(index_.Memory(), 5'000u * 5);
}

// As many between them as make a piece of their own.
TEST_F(ManyRecordsTest, CopiesSideBySideAreOneRecordHoweverFarApartTheyCome) {
  std::vector<PlacedBlock> blocks;
  for (int round = 0; round < 3; ++round) {
    for (std::uint64_t i = 0; i < 40'000; ++i) blocks.emplace_back(4 * i, 20, 64 * i);
  }
  auto disk = std::make_unique<BadDisk>(std::make_unique<platform::MemoryFile>(std::vector<std::byte>(1 << 20)),
                                        std::vector<BadPlace>{});
  const BadDisk& observed = *disk;
  Found().source.Open(std::move(disk));
  Settle(blocks);
  EXPECT_EQ(observed.bytesRead, 0u) << "a lone record needs no proof";
  EXPECT_LE(index_.Memory(), 40'000u * 6);
  blocks.emplace_back(4, 20, 64 * 40'000);
  index_ = {};
  Settle(blocks);
  EXPECT_NE(observed.bytesRead, 0u);
  EXPECT_EQ(index_.Find(4), (BlockRecord{4, 20, 64}));
}

TEST_F(ManyRecordsTest, SixBytesARecordAreEnoughAllAlong) {
  constexpr std::uint64_t kCount = 300'000;
  constexpr std::size_t kOfAPiece = 32'768 * sizeof(PlacedBlock);
  std::uint64_t offset = 0x4600;
  std::vector<PlacedBlock> some;
  for (std::uint64_t i = 1; i <= kCount; ++i) {
    const auto size = static_cast<std::uint32_t>(1 + i * 7 % 8176);
    some.emplace_back(4 * i, size, offset);
    offset += (size + 16 + 63) / 64 * 64;
    if (i % 3000 != 0) continue;
    index_.Add(some);
    some.clear();
    ASSERT_LE(index_.Memory(), 6 * i + kOfAPiece + 10'000);
  }
  index_.Settle(Found().source, Found().layout, run_);
  EXPECT_LE(index_.Memory(), 6 * kCount);
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

TEST_P(EveryFormatBlockIndexTest, OfRecordsOfOnePlaceTheOneWithTheRightSizeWins) {
  const BlockRecord whole = Place();
  BlockRecord shorter = whole;
  shorter.size -= 1;
  BlockRecord longer = whole;
  longer.size += 1;
  EXPECT_EQ(Winner({shorter, longer, whole}), whole);
  EXPECT_EQ(Winner({longer, whole, shorter}), whole);
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
  EXPECT_EQ(Winner({{kId, 300, (1ull << 32) + whole.offset - 64}, whole}), whole) << "nor one 4 GiB farther on";
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

// A trailer has room for the whole id in two formats of three, but proves the low half alone.
TEST_P(EveryFormatBlockIndexTest, OfEachWholeIdTheBlockCountsThatProvesItselfBest) {
  constexpr std::uint64_t kHigh = 5ull << 32;
  const BlockRecord leader = Place();
  const BlockRecord damaged = Place(Flaw::kChecksum);
  const BlockRecord whole = Place();
  const BlockRecord later = Place();
  const auto placed = [](std::uint64_t high, const BlockRecord& record) {
    return PlacedBlock(high | record.bid, record.size, record.offset);
  };
  const PlacedBlock chance(kHigh | kId, 300, 0x5000);
  Attach(canvas_.bytes, GetParam());
  const std::vector<PlacedBlock> blocks{placed(2 * kHigh, damaged), chance,
                                        placed(kHigh, damaged),     placed(0, leader),
                                        placed(kHigh, whole),       placed(kHigh, later),
                                        {kId + 4, 1, 64},           {3 * kHigh | kId, 300, 0x5000},
                                        placed(3 * kHigh, whole)};
  Found().index.Add(blocks);
  Found().index.Settle(Found().source, Found().layout, run_);
  EXPECT_EQ(Find(kId), leader);
  EXPECT_EQ(Found().index.FindExact(Bid{kId}), blocks[3]);
  EXPECT_EQ(Found().index.FindExact(Bid{kHigh | kId}), blocks[4]);
  EXPECT_EQ(Found().index.FindExact(Bid{2 * kHigh | kId}), blocks[0]);
  EXPECT_EQ(Found().index.FindExact(Bid{3 * kHigh | kId}), blocks.back()) << "it proves itself under either id";
  EXPECT_FALSE(Found().index.FindExact(Bid{4 * kHigh | kId}));
  EXPECT_EQ(Find(kId + 4), (BlockRecord{kId + 4, 1, 64}));
}

TEST_P(EveryFormatBlockIndexTest, CopiesWithOthersInBetweenAreSummedOnce) {
  const BlockRecord damaged = Place(Flaw::kChecksum, 8000);
  next_ += 8192;
  const BlockRecord whole = Place(Flaw::kNone, 8000);
  std::vector<BlockRecord> records;
  while (records.size() * 4000 < canvas_.bytes.size() * 2) {
    records.push_back(damaged);
    records.push_back({kId, 300, 0x5000});
  }
  records.push_back(whole);
  EXPECT_EQ(Winner(records), whole);
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
