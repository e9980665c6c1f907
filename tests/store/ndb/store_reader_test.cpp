#include "store/ndb/store_reader.h"

#include <gtest/gtest.h>

#include "store/format/checksum.h"
#include "store/format/header.h"
#include "store/format/little_endian.h"
#include "store/ndb/data_tree_reader.h"
#include "store/ndb/ndb_writer.h"
#include "store/ndb/subnode_tree_writer.h"
#include "store/support/failures.h"
#include "store/support/test_files.h"

namespace velmora::ndb {
namespace {

constexpr std::uint32_t kNodes = 400;

Nid NidAt(std::uint32_t i) { return MakeNid(NidType::kInternal, i + 1); }

std::vector<std::byte> SampleStore() {
  platform::MemoryFile file;
  const auto ndb = NdbWriter::Create(file);
  for (std::uint32_t i = 0; i < kNodes; ++i) {
    SubnodeTreeWriter subnodes(*ndb);
    if (i % 100 == 0) {
      for (std::uint32_t s = 0; s < 400; ++s) {
        subnodes.Add(MakeNid(NidType::kLtp, s + 1), {{ndb->WriteData(test::Noise(1, s)).bid}, 1});
      }
    }
    const NodeTrees trees{ndb->WriteData(test::Noise(i % 50 == 0 ? 20000 : 20, i)).bid, subnodes.Finish().bid};
    ndb->SetNode(NidAt(i), trees);
  }
  ndb->Seal();
  return file.Bytes();
}

Header HeaderOf(const std::vector<std::byte>& bytes) {
  return DecodeHeader(std::span<const std::byte, Header::kSize>(bytes.data(), Header::kSize));
}

void SetHeader(std::vector<std::byte>& bytes, const Header& header) {
  const auto encoded = Encode(header);
  std::copy(encoded.begin(), encoded.end(), bytes.begin());
}

/// Forms the trailer of a page of a tree again.
void Reseal(std::vector<std::byte>& bytes, std::uint64_t ib) {
  Page page;
  std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(ib), kPageSize, page.begin());
  SealPage(page, static_cast<PageType>(page[496]), {LoadBid(page, 504), ib});
  std::copy(page.begin(), page.end(), bytes.begin() + static_cast<std::ptrdiff_t>(ib));
}

/// Reads everything that a store holds; how many nodes could be read whole.
std::size_t ReadEverything(const StoreReader& store) {
  std::size_t whole = 0;
  for (const NodeEntry& node : store.Nodes()) {
    const auto data = IfReadable([&] { return DataTreeReader::Open(store, node.trees.bidData).ReadAll(1 << 24); });
    const auto subnodes = IfReadable([&] { return ListSubnodes(store, node.trees.bidSub); });
    static_cast<void>(IfReadable([&] { return DataSizeOf(store, node.trees); }));
    static_cast<void>(IfReadable([&] { return FindSubnode(store, node.trees.bidSub, Nid{0x3F}); }));
    whole += data && subnodes ? 1 : 0;
  }
  return whole;
}

TEST(StoreReader, FindsEveryNodeAndBlock) {
  const platform::MemoryFile file(SampleStore());
  const auto store = StoreReader::Open(file);
  EXPECT_EQ(store->Nodes().size(), kNodes);
  EXPECT_TRUE(store->Damage().List().empty());
  EXPECT_EQ(ReadEverything(*store), kNodes);
  EXPECT_FALSE(store->FindNode(Nid{0x122}));
  std::vector<std::byte> block;
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(store->ReadBlock(Bid{0x7FFFFFFC}, block)); }),
            FailureKind::kNotFound);
  const Bid bid = store->FindNode(NidAt(1))->trees.bidData;
  ASSERT_TRUE(store->FindBlock(Bid{Value(bid) | 1}, block)) << "the reserved bit is ignored";
  EXPECT_EQ(block, test::Noise(20, 1));
}

TEST(StoreReader, RefusesWhatIsNoUnicodeStore) {
  const std::vector<std::byte> empty;
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(StoreReader::Open(platform::MemoryFile(empty))); }),
            FailureKind::kCorrupt);
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(StoreReader::Open(platform::MemoryFile(test::Noise(5000)))); }),
            FailureKind::kCorrupt);
}

TEST(StoreReader, TellsABlockThatChanged) {
  std::vector<std::byte> bytes = SampleStore();
  const platform::MemoryFile sound(bytes);
  const Bid bid = StoreReader::Open(sound)->FindNode(NidAt(7))->trees.bidData;
  std::size_t trailer = 0x4800 + 48;  // of blocks of one slot, which stand before the trees
  while (Load<std::uint64_t>(bytes, trailer + 8) != Value(bid) || Load<std::uint16_t>(bytes, trailer) != 20) {
    trailer += 64;
    ASSERT_LT(trailer + 16, bytes.size());
  }
  for (const std::size_t change : {trailer - 48, trailer, trailer + 2, trailer + 4, trailer + 8}) {
    std::vector<std::byte> changed = bytes;
    changed[change] ^= std::byte{0x40};
    const platform::MemoryFile file(changed);
    const auto store = StoreReader::Open(file);
    std::vector<std::byte> block;
    EXPECT_EQ(test::FailureOf([&] { static_cast<void>(store->ReadBlock(bid, block)); }), FailureKind::kCorrupt)
        << change - trailer;
    EXPECT_EQ(ReadEverything(*store), kNodes - 1) << "the others are not touched";
  }
}

TEST(StoreReader, LeavesOutADamagedLeafAndTellsIt) {
  std::vector<std::byte> bytes = SampleStore();
  const Header header = HeaderOf(bytes);
  const std::uint64_t root = header.root.brefNbt.ib;
  const auto child = Load<std::uint64_t>(bytes, root + 16);
  const auto leaf = Load<std::uint8_t>(bytes, child + 491) == 0 ? child : Load<std::uint64_t>(bytes, child + 16);
  bytes[leaf + 5] ^= std::byte{1};
  const platform::MemoryFile file(bytes);
  const auto store = StoreReader::Open(file);
  ASSERT_EQ(store->Damage().Count(), 1u);
  EXPECT_EQ(store->Damage().List()[0].offset, leaf);
  EXPECT_EQ(store->Nodes().size(), kNodes - 15);
}

TEST(StoreReader, EndsWhereATreeRefersToItself) {
  std::vector<std::byte> bytes = SampleStore();
  const Header header = HeaderOf(bytes);
  const std::uint64_t root = header.root.brefNbt.ib;
  for (std::size_t entry = 0; entry < 3; ++entry) {  // three children are the root itself
    Store(bytes, root + entry * 24 + 8, header.root.brefNbt.bid);
    Store<std::uint64_t>(bytes, root + entry * 24 + 16, root);
  }
  Reseal(bytes, root);
  const platform::MemoryFile file(bytes);
  const auto store = StoreReader::Open(file);
  EXPECT_EQ(store->Damage().Count(), 1u) << "the same fault three times";
}

TEST(StoreReader, OpensAStoreWhoseRootsLeadNowhereAsEmpty) {
  std::vector<std::byte> bytes = SampleStore();
  for (const std::uint64_t ib :
       {std::uint64_t{0}, std::uint64_t{0x4400}, std::uint64_t{bytes.size()}, ~std::uint64_t{0}, ~std::uint64_t{511}}) {
    Header header = HeaderOf(bytes);
    header.root.brefNbt.ib = header.root.brefBbt.ib = ib;
    SetHeader(bytes, header);
    const platform::MemoryFile file(bytes);
    const auto store = StoreReader::Open(file);
    EXPECT_TRUE(store->Nodes().empty());
    EXPECT_EQ(store->Damage().Count(), 2u);
  }
}

TEST(StoreReader, ReadsWhatIsThereOfAFileThatWasCutOff) {
  const std::vector<std::byte> bytes = SampleStore();
  for (std::size_t size = 0; size < bytes.size(); size += 30011) {
    const platform::MemoryFile file({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)});
    if (size < Header::kSize) {
      EXPECT_EQ(test::FailureOf([&] { static_cast<void>(StoreReader::Open(file)); }), FailureKind::kCorrupt);
    } else {
      EXPECT_LE(ReadEverything(*StoreReader::Open(file)), kNodes);
    }
  }
}

TEST(StoreReader, SurvivesAnyBytes) {
  const std::vector<std::byte> sound = SampleStore();
  test::Random random(11);
  for (int round = 0; round < 150; ++round) {
    std::vector<std::byte> bytes = sound;
    const std::size_t changes = 1 + random() % 200;
    for (std::size_t i = 0; i < changes; ++i) {
      // Half of the changes go to pages of the trees, which are sealed again, so that they are believed.
      const std::size_t at = 0x4800 + random() % (bytes.size() - 0x4800);
      bytes[at] = static_cast<std::byte>(random());
      const std::uint64_t page = at / kPageSize * kPageSize;
      const auto type = std::to_integer<int>(bytes[page + 496]);
      if (type == 0x80 || type == 0x81) Reseal(bytes, page);
    }
    Header header = HeaderOf(sound);
    if (round % 3 == 0) std::swap(header.root.brefBbt, header.root.brefNbt);
    SetHeader(bytes, header);
    const platform::MemoryFile file(bytes);
    const auto store = StoreReader::Open(file);
    EXPECT_LE(store->Damage().List().size(), Faults::kMostListed);
    ReadEverything(*store);
  }
}

}  // namespace
}  // namespace velmora::ndb
