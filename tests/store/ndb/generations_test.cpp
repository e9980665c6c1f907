// Trees of data blocks and of sub-nodes in forged stores of all three generations: what went in comes out, and of what
// is damaged the rest.
#include <gtest/gtest.h>

#include "store/ndb/data_tree_reader.h"
#include "store/ndb/subnode_tree_reader.h"
#include "store/support/failures.h"
#include "store/support/forged_file.h"

namespace velmora::ndb {
namespace {

using test::ForgedFile;

constexpr forge::Nid kValue = 0x1001;
constexpr forge::Nid kOther = 0x1021;

class EveryGeneration : public testing::TestWithParam<test::ForgedFormat> {
 protected:
  forge::StoreOptions Options() const {
    return {.format = GetParam().format, .encoding = GetParam().encoding, .compressed = GetParam().compressed};
  }
  std::size_t Full() const { return forge::TraitsOf(GetParam().format).maxBlockData; }
  std::size_t Width() const { return forge::TraitsOf(GetParam().format).idWidth; }

  /// Bytes that pack well in parts.
  static forge::Bytes Value(std::size_t size) {
    forge::Bytes bytes = forge::Noise(size, 7);
    for (std::size_t i = 0; i < size; ++i) {
      if (i % 1000 < 700) bytes[i] = static_cast<std::byte>(i / 1000);
    }
    return bytes;
  }

  /// An XXBLOCK over lists of two full blocks each.
  static forge::Bid AddTwoLevels(forge::Store& store, const forge::Bytes& value, std::size_t full, std::size_t width) {
    forge::Bytes entries;
    std::size_t lists = 0;
    for (std::size_t at = 0; at < value.size(); at += 2 * full, ++lists) {
      std::vector<forge::Bid> pieces;
      const std::size_t end = std::min(value.size(), at + 2 * full);
      for (std::size_t piece = at; piece < end; piece += full) {
        pieces.push_back(store.AddBlock(std::span(value).subspan(piece, std::min(full, end - piece))));
      }
      forge::Append(entries, store.AddChain(pieces, end - at), width);
    }
    forge::Bytes root;
    forge::Append(root, 0x0201, 2);
    forge::Append(root, lists, 2);
    forge::Append(root, value.size(), 4);
    forge::Append(root, entries);
    return store.AddInternalBlock(root);
  }
};

TEST_P(EveryGeneration, TellsItselfAndItsNodes) {
  forge::Store store(Options());
  store.AddNode(kValue, store.AddBlock(Value(100)), 0, 0x122);
  for (forge::Nid nid = 0x200024; nid < 0x200024 + 32 * 700; nid += 32) store.AddNode(nid, 0, 0, 0x8022);
  const ForgedFile file(store.Finish());
  EXPECT_EQ(file.Store().Format().pageSize, forge::TraitsOf(GetParam().format).pageSize);
  EXPECT_EQ(file.Store().Format().maxBlockData, Full());
  EXPECT_EQ(file.Store().Nodes().size(), 701u) << "in a tree of several levels";
  EXPECT_EQ(file.Store().FindNode(Nid{kValue})->nidParent, Nid{0x122});
  EXPECT_TRUE(file.Store().Damage().List().empty());
}

TEST_P(EveryGeneration, GivesValuesBackOfOneBlockAndOfMany) {
  for (const std::size_t size : {std::size_t{1}, Full() - 1, Full(), Full() + 1, 5 * Full() + 77}) {
    forge::Store store(Options());
    const forge::Bytes value = Value(size);
    store.AddNode(kValue, store.AddData(value), 0, 0);
    store.AddNode(kOther, AddTwoLevels(store, value, Full(), Width()), 0, 0);
    const ForgedFile file(store.Finish());
    for (const forge::Nid nid : {kValue, kOther}) {
      auto tree = DataTreeReader::Open(file.Store(), file.Trees(nid).bidData);
      EXPECT_EQ(tree.Size(), size);
      EXPECT_EQ(tree.ReadAll(size), value);
      forge::Bytes part(std::min<std::size_t>(size, 300));
      ASSERT_EQ(tree.ReadAt(size - part.size(), part), part.size());
      EXPECT_TRUE(std::equal(part.begin(), part.end(), value.end() - static_cast<std::ptrdiff_t>(part.size())));
    }
  }
}

TEST_P(EveryGeneration, ReadsZerosForABlockThatIsLostWhereItIsTolerant) {
  forge::Store store(Options());
  const forge::Bytes value = Value(3 * Full() + 10);
  store.AddNode(kValue, store.AddData(value), 0, 0);
  forge::Image image = store.Finish();
  const forge::PlacedBlock lost = image.blocks[1];
  forge::BreakData(image, lost);
  const ForgedFile file(image);
  const Bid bid = file.Trees(kValue).bidData;
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(DataTreeReader::Open(file.Store(), bid).ReadAll(1 << 20)); }),
            FailureKind::kCorrupt);

  Faults faults(Nid{kValue});
  auto tree = DataTreeReader::Open(file.Store(), bid, &faults);
  forge::Bytes expected = value;
  std::fill_n(expected.begin() + static_cast<std::ptrdiff_t>(Full()), Full(), std::byte{0});
  EXPECT_EQ(tree.ReadAll(1 << 20), expected);
  forge::Bytes again(expected.size());
  EXPECT_EQ(tree.ReadAt(0, again), expected.size());
  EXPECT_EQ(again, expected);
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(tree.Block(1)); }), FailureKind::kCorrupt)
      << "the block itself stays lost";
  ASSERT_EQ(faults.List().size(), 1u) << "noted once";
  EXPECT_EQ(faults.List()[0].object, platform::FailedObject(ObjectKind::kBlock, lost.bid));
  EXPECT_EQ(faults.List()[0].offset, lost.offset);
  EXPECT_EQ(faults.Node(), Nid{kValue});
}

TEST_P(EveryGeneration, LeavesTheRoomOfAListThatIsLost) {
  forge::Store store(Options());
  const forge::Bytes value = Value(2 * Full() + Full() / 2);
  store.AddNode(kValue, AddTwoLevels(store, value, Full(), Width()), 0, 0);
  forge::Image image = store.Finish();
  const auto list = std::ranges::find_if(image.blocks, [](const forge::PlacedBlock& b) { return (b.bid & 2) != 0; });
  forge::WipeTrailer(image, *list);  // of the first two blocks; the last one's follows
  const ForgedFile file(image);
  const Bid bid = file.Trees(kValue).bidData;
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(DataTreeReader::Open(file.Store(), bid)); }),
            FailureKind::kCorrupt);
  Faults faults;
  auto tree = DataTreeReader::Open(file.Store(), bid, &faults);
  EXPECT_EQ(tree.Size(), value.size());
  EXPECT_EQ(tree.BidOf(0), kNoBid);
  ASSERT_EQ(faults.List().size(), 1u);
  EXPECT_EQ(faults.List()[0].object, platform::FailedObject(ObjectKind::kBlock, list->bid));
}

TEST_P(EveryGeneration, RefusesATreeThatMakesMuchOfLittle) {
  forge::Store store(Options());
  const forge::Bid block = store.AddBlock(Value(Full()));
  const forge::Bid list = store.AddChain({block}, Full());
  forge::Bytes root;
  forge::Append(root, 0x0201, 2);
  forge::Append(root, 1000, 2);
  forge::Append(root, 1000 * Full(), 4);
  for (int i = 0; i < 1000; ++i) forge::Append(root, list, Width());
  store.AddNode(kValue, store.AddInternalBlock(root), 0, 0);
  const ForgedFile file(store.Finish());
  const Bid bid = file.Trees(kValue).bidData;
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(DataTreeReader::Open(file.Store(), bid)); }),
            FailureKind::kCorrupt);
  Faults faults;
  auto tree = DataTreeReader::Open(file.Store(), bid, &faults);
  EXPECT_LE(tree.BlockCount(), 1000u) << "no more than the size asks for";
  for (std::size_t i = 1; i < tree.BlockCount(); ++i) ASSERT_EQ(tree.BidOf(i), kNoBid);
  EXPECT_FALSE(faults.List().empty());
}

TEST_P(EveryGeneration, ListsAndFindsSubnodesInOneAndInSeveralBlocks) {
  for (const std::size_t count : {std::size_t{1}, std::size_t{300}, std::size_t{3000}}) {
    forge::Store store(Options());
    const forge::Bid data = store.AddBlock(Value(5));
    std::vector<forge::Subnode> subnodes;
    for (std::size_t i = 0; i < count; ++i) {
      subnodes.push_back(
          {static_cast<forge::Nid>(0x803F + 32 * i), data, i == 7 ? store.AddSubnodes({{0x3F, data}}) : 0});
    }
    store.AddNode(kValue, 0, store.AddSubnodes(subnodes), 0);
    const ForgedFile file(store.Finish());
    const Bid bidSub = file.Trees(kValue).bidSub;
    const auto entries = ListSubnodes(file.Store(), bidSub);
    ASSERT_EQ(entries.size(), count);
    for (std::size_t i = 0; i < count; ++i) {
      const SubnodeEntry expected{Nid{subnodes[i].nid}, {Bid{data}, Bid{subnodes[i].bidSub}}};
      EXPECT_EQ(entries[i], expected);
      if (i % 97 != 0) continue;
      EXPECT_EQ(FindSubnode(file.Store(), bidSub, entries[i].nid), expected);
    }
    EXPECT_FALSE(FindSubnode(file.Store(), bidSub, Nid{0x3F}));
    const std::uint64_t inner = count > 7 ? 5 : 0;
    EXPECT_EQ(DataSizeOf(file.Store(), file.Trees(kValue)), 5 * count + inner);
  }
}

TEST_P(EveryGeneration, KeepsTheSubnodesOfTheBlocksThatAreLeft) {
  forge::Store store(Options());
  const forge::Bid data = store.AddBlock(Value(5));
  std::vector<forge::Subnode> subnodes;
  for (forge::Nid i = 0; i < 6000; ++i) subnodes.push_back({0x803F + 32 * i, data, 0});
  store.AddNode(kValue, 0, store.AddSubnodes(subnodes), 0);
  forge::Image image = store.Finish();
  const forge::PlacedBlock lost = image.blocks[1];
  forge::BreakData(image, lost);
  const ForgedFile file(image);
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(ListSubnodes(file.Store(), file.Trees(kValue).bidSub)); }),
            FailureKind::kCorrupt);
  Faults faults;
  const auto entries = ListSubnodes(file.Store(), file.Trees(kValue).bidSub, &faults);
  const std::size_t leaf = (Full() - (Width() == 8 ? 8 : 4)) / (3 * Width());
  EXPECT_EQ(entries.size(), 6000 - leaf);
  EXPECT_EQ(entries.front().nid, Nid{static_cast<std::uint32_t>(0x803F + 32 * leaf)});
  ASSERT_EQ(faults.List().size(), 1u);
  EXPECT_EQ(faults.List()[0].object, platform::FailedObject(ObjectKind::kBlock, lost.bid));
}

TEST_P(EveryGeneration, RefusesABlockThatDoesNotInflateToItsSize) {
  if (!GetParam().compressed) return;  // the others have no packed blocks
  forge::Store store(Options());
  store.AddNode(kValue, store.AddBlock(Value(20000)), 0, 0);
  forge::Image image = store.Finish();
  const forge::PlacedBlock& block = image.blocks[0];
  ASSERT_LT(block.size, block.inflatedSize);
  forge::Bytes size;
  forge::Append(size, 19999, 2);
  forge::Patch(image, block.offset + block.placeSize - 24 + 18, size);
  const ForgedFile file(image);
  std::vector<std::byte> content;
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(file.Store().ReadBlock(Bid{block.bid}, content)); }),
            FailureKind::kCorrupt);
}

INSTANTIATE_TEST_SUITE_P(All, EveryGeneration, testing::ValuesIn(test::kForgedFormats), test::NameOf);

}  // namespace
}  // namespace velmora::ndb
