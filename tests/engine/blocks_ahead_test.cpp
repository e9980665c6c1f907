#include "engine/blocks_ahead.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ranges>

#include "engine/bad_disk.h"
#include "forge/forge.h"
#include "platform/memory_file.h"
#include "store/format/checksum.h"
#include "store/ndb/data_tree_reader.h"
#include "store/ndb/subnode_tree_reader.h"

namespace velmora::engine {
namespace {

/// The parameter is the format of the source.
class BlocksAheadTest : public ::testing::TestWithParam<forge::Format> {
 protected:
  static std::unique_ptr<const ProvenStore> Prove(forge::Bytes bytes) {
    return Prove(std::make_unique<platform::MemoryFile>(std::move(bytes)));
  }
  static std::unique_ptr<const ProvenStore> Prove(std::unique_ptr<platform::ByteSource> bytes) {
    RunContext run;
    return ProvenStore::Prove(std::move(bytes), false, run);
  }

  /// A mail with a long body, and one with an attachment of so many bytes.
  static forge::Bytes Forge(std::size_t attached) {
    forge::Mailbox box({.format = GetParam(), .compressed = GetParam() == forge::Format::kUnicode4k}, {.tables = true});
    const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
    box.AddMessage(inbox, {.subject = u"Long", .html = forge::Noise(30'000, 1)});
    box.AddMessage(inbox, {.subject = u"Attached", .attachments = {{.name = u"a", .data = forge::Noise(attached, 2)}}});
    return box.Finish().bytes;
  }

  static std::vector<ndb::NodeTrees> Messages(const ProvenStore& store) {
    std::vector<ndb::NodeTrees> trees;
    for (const ndb::NodeEntry& node : store.Nodes()) {
      if (TypeOf(node.nid) == NidType::kNormalMessage) trees.push_back(node.trees);
    }
    return trees;
  }

  /// All blocks below a node, data blocks with those of values.
  static std::vector<Bid> BlocksOf(const ndb::BlockSource& store, const ndb::NodeTrees& trees) {
    std::vector<Bid> bids;
    const auto tree = ndb::DataTreeReader::Open(store, trees.bidData);
    for (std::size_t i = 0; i < tree.BlockCount(); ++i) bids.push_back(tree.BidOf(i));
    for (const ndb::SubnodeEntry& below : ndb::ListSubnodes(store, trees.bidSub)) {
      std::ranges::copy(BlocksOf(store, below.trees), std::back_inserter(bids));
    }
    return bids;
  }
};
INSTANTIATE_TEST_SUITE_P(Formats, BlocksAheadTest,
                         ::testing::Values(forge::Format::kAnsi, forge::Format::kUnicode, forge::Format::kUnicode4k));

TEST_P(BlocksAheadTest, HoldEveryBlockOfTheMessagesAsTheStoreHasIt) {
  const auto store = Prove(Forge(100'000));
  for (const bool keepStored : {false, true}) {
    const BlocksAhead ahead(*store, Messages(*store), keepStored);
    EXPECT_FALSE(ahead.IsFull());
    std::size_t count = 0;
    std::vector<std::byte> expected;
    std::vector<std::byte> content;
    for (const ndb::NodeTrees& trees : Messages(*store)) {
      for (const Bid bid : BlocksOf(*store, trees)) {
        store->ReadBlock(bid, expected);
        ASSERT_TRUE(ahead.Find(bid, content)) << Value(bid);
        EXPECT_EQ(content, expected) << Value(bid);
        ++count;
      }
    }
    EXPECT_GT(count, 6U);
  }
}

TEST_P(BlocksAheadTest, KeepTheBlocksOfLongValuesAsTheyAreStoredWhereThatIsWanted) {
  const auto store = Prove(Forge(100'000));
  const BlocksAhead decoded(*store, Messages(*store), false);
  const BlocksAhead stored(*store, Messages(*store), true);
  std::size_t values = 0;
  std::vector<std::byte> buffer;
  for (const ndb::NodeTrees& trees : Messages(*store)) {
    EXPECT_FALSE(stored.FindStored(trees.bidData)) << "the heap of the message";
    for (const Bid bid : BlocksOf(*store, trees)) {
      EXPECT_FALSE(decoded.FindStored(bid));
      const auto data = stored.FindStored(bid);
      if (!data) continue;
      ++values;
      const auto expected = store->FindStored(bid, buffer);
      ASSERT_TRUE(expected);
      EXPECT_TRUE(std::ranges::equal(data->bytes, expected->bytes));
      EXPECT_EQ(data->crc, WeakCrc(data->bytes));
    }
  }
  EXPECT_GT(values, 2U);
}

TEST_P(BlocksAheadTest, ReadWhatLiesBetweenMessagesAlongWithThemUnlessTheyStandFarApart) {
  for (const bool isStrewn : {false, true}) {
    forge::Mailbox box({.format = GetParam(), .pieces = isStrewn ? 400U : 0U}, {.tables = true});
    const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
    for (std::uint32_t i = 0; i < 32; ++i) box.AddMessage(inbox, {.subject = u"Long", .html = forge::Noise(40'000, i)});
    auto disk =
        std::make_unique<BadDisk>(std::make_unique<platform::MemoryFile>(box.Finish().bytes), std::vector<BadPlace>{});
    const BadDisk& counts = *disk;
    const auto store = Prove(std::move(disk));

    const int readsBefore = counts.reads;
    const std::uint64_t bytesBefore = counts.bytesRead;
    const BlocksAhead ahead(*store, Messages(*store), true);
    const int reads = counts.reads - readsBefore;
    const std::uint64_t bytesRead = counts.bytesRead - bytesBefore;
    std::vector<std::byte> content;
    std::size_t bytes = 0;
    for (const ndb::NodeTrees& trees : Messages(*store)) {
      for (const Bid bid : BlocksOf(*store, trees)) bytes += ahead.Find(bid, content) ? content.size() : 0;
    }
    EXPECT_GT(bytes, 32U * 40'000) << isStrewn;
    EXPECT_LT(bytesRead, bytes + bytes / 16) << isStrewn;
    EXPECT_LT(reads, isStrewn ? 500 : 10) << "of " << bytes << " bytes";
  }
}

TEST_P(BlocksAheadTest, StopWhereThereIsNoMoreRoom) {
  const auto store = Prove(Forge(2 * BlocksAhead::kMostBytes));
  const BlocksAhead ahead(*store, Messages(*store), true);
  EXPECT_TRUE(ahead.IsFull());
  std::size_t bytes = 0;
  std::vector<std::byte> content;
  for (const ndb::NodeTrees& trees : Messages(*store)) {
    EXPECT_TRUE(ahead.Find(trees.bidData, content));
    for (const Bid bid : BlocksOf(*store, trees)) bytes += ahead.Find(bid, content) ? content.size() : 0;
  }
  EXPECT_LE(bytes, BlocksAhead::kMostBytes);
}

// Nothing but intent makes a store in which the bytes of one block are also another one's.
TEST_P(BlocksAheadTest, LeaveOutABlockThatHoldsAnotherOne) {
  forge::Mailbox box({.format = GetParam()}, {.tables = true});
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  box.AddMessage(inbox, {.subject = u"Ahead"});
  box.AddMessage(inbox, {.subject = u"Long", .html = forge::Noise(20'000, 1)});
  box.AddMessage(inbox, {.subject = u"Within"});
  forge::Bytes bytes = box.Finish().bytes;
  const auto before = Prove(bytes);
  const Generation& layout = before->Format();
  const FoundBlock heap = *before->Found().Find(Messages(*before).back().bidData);
  const auto chain = BlocksOf(*before, Messages(*before)[1]);
  const auto outer = std::ranges::find_if(
      chain, [&](Bid bid) { return before->Found().Find(bid)->cb > 2 * BlockSizeOnDisk(heap.cb, layout); });
  ASSERT_NE(outer, chain.end());
  const FoundBlock holder = *before->Found().Find(*outer);

  // The heap of the last message moves into a value of the one before, which gets another checksum.
  const std::size_t size = BlockSizeOnDisk(heap.cb, layout);
  const auto moved = std::span(bytes).subspan(holder.offset + layout.slotSize, size);
  std::ranges::copy(std::span(bytes).subspan(heap.offset, size), moved.begin());
  bytes[heap.offset] ^= std::byte{1};
  Store(moved.last(layout.blockTrailerSize), 2, ComputeSig(holder.offset + layout.slotSize, Value(heap.bid)));
  const auto whole = std::span(bytes).subspan(holder.offset, BlockSizeOnDisk(holder.cb, layout));
  Store(whole.last(layout.blockTrailerSize), layout.offBlockCrc, WeakCrc(whole.first(holder.cb)));

  const auto store = Prove(bytes);
  const BlocksAhead ahead(*store, Messages(*store), true);
  std::vector<std::byte> content;
  std::vector<std::byte> expected;
  ASSERT_TRUE(ahead.Find(heap.bid, content));
  before->ReadBlock(heap.bid, expected);
  EXPECT_EQ(content, expected);
  EXPECT_FALSE(ahead.Find(holder.bid, content));
  EXPECT_FALSE(ahead.FindStored(holder.bid));
}

TEST_P(BlocksAheadTest, LeaveOutBlocksThatAreNotWhatTheyWere) {
  forge::Bytes bytes = Forge(20'000);
  const auto before = Prove(bytes);
  const ndb::NodeTrees trees = Messages(*before).front();
  const auto block = before->Found().Find(trees.bidData);
  bytes[block->offset + 3] ^= std::byte{1};
  const auto store = Prove(bytes);
  const BlocksAhead ahead(*store, Messages(*store), true);
  std::vector<std::byte> content;
  EXPECT_FALSE(ahead.Find(trees.bidData, content));
  EXPECT_TRUE(ahead.Find(Messages(*store).back().bidData, content));
}

class PackedBlocksAheadTest : public BlocksAheadTest {
 protected:
  /// A mail with an attachment of so many bytes, of which each block shrinks by about half.
  static forge::Bytes Forge(std::size_t attached) {
    forge::Bytes halves = forge::Noise(attached, 3);
    for (std::byte& half : halves) half &= std::byte{0xF};
    forge::Mailbox box({.format = GetParam(), .encoding = forge::Encoding::kPermute, .compressed = true},
                       {.tables = true});
    box.AddMessage(box.AddFolder({.name = u"Inbox"}), {.attachments = {{.name = u"a", .data = halves}}});
    return box.Finish().bytes;
  }

  /// The blocks of the mail that are packed.
  static std::vector<Bid> PackedOf(const ProvenStore& store) {
    std::vector<Bid> packed;
    std::vector<std::byte> buffer;
    for (const Bid bid : BlocksOf(store, Messages(store).front())) {
      std::vector<std::byte> content;
      store.ReadBlock(bid, content);
      if (store.FindStored(bid, buffer)->bytes.size() != content.size()) packed.push_back(bid);
    }
    return packed;
  }
};
INSTANTIATE_TEST_SUITE_P(Formats, PackedBlocksAheadTest, ::testing::Values(forge::Format::kUnicode4k));

TEST_P(PackedBlocksAheadTest, HoldThemInflated) {
  const auto store = Prove(Forge(700'000));
  const BlocksAhead ahead(*store, Messages(*store), false);
  EXPECT_FALSE(ahead.IsFull());
  const std::vector<Bid> packed = PackedOf(*store);
  ASSERT_GT(packed.size(), 10U);
  std::vector<std::byte> content;
  std::vector<std::byte> expected;
  for (const Bid bid : packed) {
    store->ReadBlock(bid, expected);
    ASSERT_TRUE(ahead.Find(bid, content)) << Value(bid);
    EXPECT_TRUE(content == expected) << Value(bid);
  }
}

TEST_P(PackedBlocksAheadTest, StopWhereTheirContentTakesTooMuchRoom) {
  const auto store = Prove(Forge(BlocksAhead::kMostBytes * 5 / 4));
  const BlocksAhead ahead(*store, Messages(*store), false);
  EXPECT_TRUE(ahead.IsFull());
  std::size_t bytes = 0;
  std::vector<std::byte> content;
  for (const Bid bid : PackedOf(*store)) bytes += ahead.Find(bid, content) ? content.size() : 0;
  EXPECT_LE(bytes, BlocksAhead::kMostBytes);
  EXPECT_GT(bytes, BlocksAhead::kMostBytes / 2);
}

TEST_P(PackedBlocksAheadTest, LeaveOutOneThatDoesNotInflate) {
  forge::Bytes bytes = Forge(200'000);
  const auto before = Prove(bytes);
  const Bid bid = PackedOf(*before).back();
  const FoundBlock block = *before->Found().Find(bid);
  const Generation& layout = before->Format();
  const auto whole = std::span(bytes).subspan(block.offset, BlockSizeOnDisk(block.cb, layout));
  whole[block.cb - 1u] ^= std::byte{1};  // in the sum of the stream
  Store(whole.last(layout.blockTrailerSize), layout.offBlockCrc, WeakCrc(whole.first(block.cb)));
  const auto store = Prove(bytes);
  const BlocksAhead ahead(*store, Messages(*store), false);
  std::vector<std::byte> content;
  EXPECT_TRUE(store->IsTrusted(bid)) << "its checksum fits";
  EXPECT_FALSE(ahead.Find(bid, content));
  EXPECT_TRUE(ahead.Find(PackedOf(*before).front(), content));
}

}  // namespace
}  // namespace velmora::engine
