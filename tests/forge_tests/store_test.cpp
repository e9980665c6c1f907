// The low level: where blocks and pages stand and what proves them.
#include "forge/store.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "forge/checksum.h"
#include "forge/encoding.h"

namespace velmora::forge {
namespace {

class StoreOf : public testing::TestWithParam<Format> {
 protected:
  const FormatTraits& traits() const { return TraitsOf(GetParam()); }
  std::uint64_t At(const Image& image, std::uint64_t offset, std::size_t width) const {
    return Get(image.bytes, offset, width);
  }
  std::uint64_t TrailerOf(const PlacedBlock& block) const {
    return block.offset + block.placeSize - traits().blockTrailerSize;
  }
  // Places within page and block trailers differ between the narrow and the wide formats.
  std::size_t IdPlace() const { return traits().wide ? 8 : 4; }
  std::size_t ChecksumPlace() const { return traits().wide ? 4 : 8; }
};

TEST_P(StoreOf, SealsBlocksWithProofAtTheEndOfTheirPlace) {
  Store store({.format = GetParam(), .encoding = Encoding::kCyclic});
  const Bytes data = Noise(1000, 7);
  const Bid bid = store.AddBlock(data);
  const Image image = store.Finish();
  const PlacedBlock& block = image.Block(bid);
  EXPECT_EQ(block.offset, traits().firstData);
  EXPECT_EQ(block.placeSize % traits().slotSize, 0U);
  const std::uint64_t trailer = TrailerOf(block);
  EXPECT_EQ(At(image, trailer, 2), 1000U);
  EXPECT_EQ(At(image, trailer + 2, 2), Signature(block.offset, bid));
  EXPECT_EQ(At(image, trailer + IdPlace(), 4), bid);
  const auto stored = std::span(image.bytes).subspan(block.offset, 1000);
  EXPECT_EQ(At(image, trailer + ChecksumPlace(), 4), Checksum(stored));
  Bytes decoded(stored.begin(), stored.end());
  Decode(Encoding::kCyclic, static_cast<std::uint32_t>(bid), decoded);
  EXPECT_EQ(decoded, data);
}

TEST_P(StoreOf, SealsEveryTreePageAndPointsTheHeaderAtTheRoots) {
  Store store({.format = GetParam(), .entriesPerPage = 3});
  for (Nid i = 0; i < 30; ++i) store.AddNode(0x200024 + 0x20 * i, store.AddBlock(Noise(20, i)), 0, 0x8022);
  const Image image = store.Finish();
  const auto pages = image.TreePages(PageType::kNodes);
  EXPECT_EQ(std::count_if(pages.begin(), pages.end(), [](const PlacedPage& p) { return p.level == 0; }), 10);
  EXPECT_EQ(pages.back().level, 3) << "ten leaves of three, then four, two and one";
  EXPECT_EQ(At(image, traits().wide ? 224 : 188, traits().idWidth), pages.back().offset);
  EXPECT_EQ(At(image, traits().wide ? 240 : 196, traits().idWidth), image.TreePages(PageType::kBlocks).back().offset);
  for (const PlacedPage& page : image.pages) {
    const std::uint64_t trailer = page.offset + traits().offPageTrailer;
    EXPECT_EQ(page.offset % traits().pageSize, 0U);
    EXPECT_EQ(At(image, trailer, 2), page.type == PageType::kNodes ? 0x8181U : 0x8080U);
    EXPECT_EQ(At(image, trailer + 2, 2), Signature(page.offset, page.pageId));
    EXPECT_EQ(At(image, trailer + IdPlace(), 4), page.pageId);
    const auto content = std::span(image.bytes).subspan(page.offset, traits().offPageTrailer);
    EXPECT_EQ(At(image, trailer + ChecksumPlace(), 4), Checksum(content));
  }
}

TEST_P(StoreOf, KeepsBlocksClearOfMapPages) {
  Store store({.format = GetParam()});
  const std::uint64_t span = traits().mapSpan;
  const Bytes data = Noise(traits().maxBlockData, 1);
  while (store.End() < traits().firstMap + span + traits().slotSize) store.AddBlock(data);
  const Image image = store.Finish();
  const std::uint64_t map = traits().firstMap + span;
  EXPECT_EQ(At(image, map + traits().offPageTrailer, 2), 0x8484U);
  EXPECT_EQ(At(image, map + traits().offPageTrailer + IdPlace(), 4), map) << "a map page is named by its own place";
  for (const PlacedBlock& block : image.blocks) {
    EXPECT_TRUE(block.offset + block.placeSize <= map || block.offset >= map + traits().pageSize);
  }
}

TEST_P(StoreOf, StrewsBlocksAndPagesOverTheFileWithoutOverlap) {
  Store store({.format = GetParam(), .pieces = 8});
  for (std::size_t i = 0; i < 200; ++i) store.AddBlock(Noise(traits().maxBlockData, 1));
  const Image image = store.Finish();
  std::size_t goingBack = 0;
  std::vector<std::pair<std::uint64_t, std::uint64_t>> places;
  for (std::size_t i = 0; i < image.blocks.size(); ++i) {
    const PlacedBlock& block = image.blocks[i];
    if (i > 0 && block.offset < image.blocks[i - 1].offset) ++goingBack;
    places.emplace_back(block.offset, block.offset + block.placeSize);
  }
  for (const PlacedPage& page : image.pages) places.emplace_back(page.offset, page.offset + traits().pageSize);
  EXPECT_GT(goingBack, 60U);
  std::sort(places.begin(), places.end());
  for (std::size_t i = 1; i < places.size(); ++i) EXPECT_LE(places[i - 1].second, places[i].first);
}

TEST_P(StoreOf, KeepsTheBytesOfBlocksAndPagesThatAreFreeByNow) {
  Store store({.format = GetParam()});
  const Bid kept = store.AddBlock(Noise(100, 1));
  const Bid freed = store.AddBlock(Noise(100, 2));
  const std::vector<BlockEntry> entries = store.FreeFrom(freed);
  store.AddOldPage(BlockPage(GetParam(), entries));
  const Image image = store.Finish();
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries[0].bid, freed);
  EXPECT_EQ(entries[0].offset, image.Block(freed).offset);
  EXPECT_TRUE(image.Block(kept).listed);
  EXPECT_FALSE(image.Block(freed).listed);
  const PlacedPage& old = image.pages.front();
  EXPECT_TRUE(old.stray);
  const auto isUsed = [&](std::uint64_t offset) {
    const std::uint64_t slot = (offset - traits().firstMap) / traits().slotSize;
    const std::uint64_t start = traits().firstMap + (GetParam() == Format::kAnsi ? 4 : 0);
    return (At(image, start + slot / 8, 1) & (0x80U >> slot % 8)) != 0;
  };
  EXPECT_TRUE(isUsed(image.Block(kept).offset));
  EXPECT_FALSE(isUsed(image.Block(freed).offset));
  EXPECT_FALSE(isUsed(old.offset));
  const PlacedBlock& block = image.Block(freed);
  const std::uint64_t trailer = TrailerOf(block);
  EXPECT_EQ(At(image, trailer + ChecksumPlace(), 4), Checksum(std::span(image.bytes).subspan(block.offset, 100)));
}

TEST_P(StoreOf, ChainsValuesLongerThanABlock) {
  Store store({.format = GetParam(), .encoding = Encoding::kNone});
  EXPECT_EQ(store.AddData({}), 0U);
  const Bid chain = store.AddData(Noise(traits().maxBlockData + 10, 1));
  const Bid pieces = store.AddData(Noise(10, 2), 4);
  const Image image = store.Finish();
  const std::uint64_t head = image.Block(chain).offset;
  EXPECT_EQ(chain & 2U, 2U) << "the id tells a list of blocks";
  EXPECT_EQ(At(image, head, 2), 0x0101U);
  EXPECT_EQ(At(image, head + 2, 2), 2U);
  EXPECT_EQ(At(image, head + 4, 4), traits().maxBlockData + 10);
  const PlacedBlock& last = image.Block(At(image, head + 8 + traits().idWidth, traits().idWidth));
  EXPECT_EQ(last.size, 10);
  EXPECT_EQ(last.refs, 2);
  EXPECT_EQ(At(image, image.Block(pieces).offset + 2, 2), 3U) << "pieces of 4, 4 and 2 bytes";
}

TEST_P(StoreOf, ListsSubnodesAtThePitchOfTheFormat) {
  Store store({.format = GetParam(), .encoding = Encoding::kNone});
  const Bid data = store.AddBlock(Noise(8, 1));
  const Bid list =
      store.AddSubnodes({{.nid = 0x671, .bidData = data}, {.nid = 0x8025, .bidData = data, .bidSub = 0x77}});
  const Image image = store.Finish();
  const std::uint64_t at = image.Block(list).offset;
  const std::size_t width = traits().idWidth;
  EXPECT_EQ(At(image, at, 2), 0x0002U);
  EXPECT_EQ(At(image, at + 2, 2), 2U);
  EXPECT_EQ(At(image, at + width, 4), 0x671U);
  EXPECT_EQ(At(image, at + 4 * width, 4), 0x8025U);
  EXPECT_EQ(At(image, at + 6 * width, 4), 0x77U);
  EXPECT_EQ(image.Block(data).refs, 3);
}

TEST_P(StoreOf, PutsAnUpperLevelOverManySubnodes) {
  Store store({.format = GetParam(), .encoding = Encoding::kNone});
  std::vector<Subnode> many;
  for (Nid i = 0; i < 3000; ++i) many.push_back({.nid = 0x8025 + 0x20 * i});
  const Bid list = store.AddSubnodes(many);
  const Image image = store.Finish();
  const std::uint64_t at = image.Block(list).offset;
  EXPECT_EQ(At(image, at, 2), 0x0102U);
  EXPECT_EQ(At(image, at + traits().idWidth, 4), 0x8025U);
}

TEST_P(StoreOf, PlacesBlocksAndPagesAsToldAndLies) {
  Store store({.format = GetParam(), .encoding = Encoding::kNone});
  const std::uint64_t far = traits().firstData + 16 * traits().pageSize;
  const Bid bid =
      store.AddBlock(Noise(50, 1), {.bid = 0x1235, .offset = far, .trailerSignature = 0x1111, .trailerId = 0x99});
  const PlacedPage page = store.AddPage({.type = PageType::kNodes,
                                         .entries = FormEntry(GetParam(), NodeEntry{.nid = 0x8022}),
                                         .entrySize = 24,
                                         .count = 9,
                                         .signature = 0x2222,
                                         .pageId = 0x4444,
                                         .offset = far + traits().pageSize});
  store.ListBlock({.bid = bid, .offset = far, .size = 50});
  const Image image = store.Finish();
  EXPECT_EQ(bid, 0x1235U);
  EXPECT_EQ(image.Block(bid).offset, far);
  EXPECT_EQ(At(image, TrailerOf(image.Block(bid)) + 2, 2), 0x1111U);
  EXPECT_EQ(At(image, TrailerOf(image.Block(bid)) + IdPlace(), 4), 0x99U);
  const std::uint64_t counters = page.offset + traits().entryAreaSize;
  const std::size_t step = GetParam() == Format::kUnicode4k ? 2 : 1;
  EXPECT_EQ(At(image, counters, 1), 9U);
  EXPECT_EQ(At(image, counters + 2 * step, 1), 24U);
  EXPECT_EQ(At(image, page.offset + traits().offPageTrailer + 2, 2), 0x2222U);
  EXPECT_TRUE(page.stray);
  const std::uint64_t leaf = image.TreePages(PageType::kBlocks).front().offset;
  EXPECT_EQ(At(image, leaf, 4), 0x1235U);
  EXPECT_EQ(At(image, leaf + traits().blockEntrySize, 4), 0x1235U) << "the second entry of the same id";
}

INSTANTIATE_TEST_SUITE_P(Formats, StoreOf, testing::Values(Format::kAnsi, Format::kUnicode, Format::kUnicode4k));

TEST(CompressedStore, DeflatesLargeDataBlocksAlone) {
  Store store({.format = Format::kUnicode4k, .encoding = Encoding::kNone, .compressed = true});
  const Bid large = store.AddBlock(Bytes(5000, std::byte{'x'}));
  const Bid small = store.AddBlock(Bytes(400, std::byte{'x'}));
  const Bid noise = store.AddBlock(Noise(5000, 1));
  const Bid list = store.AddInternalBlock(Bytes(5000));
  const Image image = store.Finish();
  EXPECT_LT(image.Block(large).size, 100);
  EXPECT_EQ(image.Block(large).inflatedSize, 5000);
  EXPECT_EQ(Get(image.bytes, image.Block(large).offset, 2), 0x9C78U);
  EXPECT_EQ(image.Block(small).size, 400);
  EXPECT_EQ(image.Block(noise).size, 5000);
  EXPECT_EQ(image.Block(list).size, 5000);
}

TEST(CompressedStore, TakesWhatAnotherPackerMakes) {
  Store store({.format = Format::kUnicode4k,
               .encoding = Encoding::kNone,
               .compressed = true,
               .pack = [](std::span<const std::byte> data) { return ToBytes(std::to_string(data.size())); }});
  const Bid bid = store.AddBlock(Noise(5000, 1));
  const Image image = store.Finish();
  EXPECT_EQ(image.Block(bid).size, 4);
  EXPECT_EQ(image.Block(bid).inflatedSize, 5000);
  EXPECT_EQ(Get(image.bytes, image.Block(bid).offset, 4), 0x30303035U) << "5000 in digits";
}

TEST(StoreInAFile, IsTheStoreInMemory) {
  const auto path = std::filesystem::temp_directory_path() / "velmora-forge-sink-test.pst";
  const auto fill = [](Store& store) {
    for (Nid i = 0; i < 400; ++i) store.AddNode(0x200024 + 0x20 * i, store.AddData(Noise(9000, i)), 0, 0x8022);
    return store.Finish();
  };
  Store inMemory({.fullLength = true});
  const Image expected = fill(inMemory);
  {
    Store inFile({.fullLength = true}, path);
    EXPECT_TRUE(fill(inFile).bytes.empty());
  }
  EXPECT_EQ(std::filesystem::file_size(path), expected.bytes.size());
  std::ifstream file(path, std::ios::binary);
  const std::string written{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(ToBytes(written), expected.bytes);
  std::filesystem::remove(path);
}

TEST(StoreInAFile, ThrowsWhereTheDiskIsFull) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "the system has no device that is always full";
  Store store({}, "/dev/full");
  store.AddNode(0x200024, store.AddData(Noise(9000, 1)), 0, 0x8022);
  EXPECT_THROW(store.Finish(), std::runtime_error);
  Store large({}, "/dev/full");
  EXPECT_THROW(for (Nid i = 0; i < 400; ++i) large.AddData(Noise(9000, i)), std::runtime_error);
}

}  // namespace
}  // namespace velmora::forge
