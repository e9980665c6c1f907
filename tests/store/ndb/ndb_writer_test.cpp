#include "store/ndb/ndb_writer.h"

#include <gtest/gtest.h>

#include "store/format/header.h"
#include "store/ndb/data_tree_reader.h"
#include "store/ndb/store_reader.h"
#include "store/ndb/subnode_tree_writer.h"
#include "store/support/failures.h"
#include "store/support/pst_check.h"
#include "store/support/test_files.h"

namespace velmora::ndb {
namespace {

class NdbWriters : public testing::Test {
 protected:
  NodeTrees Data(std::size_t size, std::uint32_t seed = 1) { return {ndb_->WriteData(test::Noise(size, seed)).bid}; }

  std::vector<std::byte> Content(const BlockSource& source, Nid nid) {
    const std::optional<NodeEntry> node = source.FindNode(nid);
    if (!node) return {};
    return DataTreeReader::Open(source, node->trees.bidData).ReadAll(1 << 30);
  }

  Header HeaderOfFile() {
    return DecodeHeader(std::span<const std::byte, Header::kSize>(file_.Bytes().data(), Header::kSize));
  }

  std::uint32_t Counter(NidType type) { return HeaderOfFile().rgnid[static_cast<std::size_t>(type)]; }

  platform::MemoryFile file_;
  std::unique_ptr<NdbWriter> ndb_ = NdbWriter::Create(file_);
};

TEST_F(NdbWriters, MakeAnEmptyStoreThatOpens) {
  EXPECT_EQ(file_.Size(), 271360u);
  const auto store = StoreReader::Open(file_);
  EXPECT_TRUE(store->Nodes().empty());
  EXPECT_TRUE(store->Damage().List().empty());
  ndb_->Seal();
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(test::PstCheck(file_.Bytes(), test::Check::kBlocks), "");
}

TEST_F(NdbWriters, ReplaceWhatTheFileHeld) {
  platform::MemoryFile used(test::Noise(1'000'000));
  const auto ndb = NdbWriter::Create(used);
  ndb->Seal();
  ndb_->Seal();
  EXPECT_EQ(used.Bytes(), file_.Bytes());
}

TEST_F(NdbWriters, HandOutNodeIdsBehindThoseOfAnEmptyStore) {
  EXPECT_EQ(ndb_->NewNid(NidType::kNormalFolder), Nid{0x8022});
  EXPECT_EQ(ndb_->NewNid(NidType::kNormalFolder), Nid{0x8042});
  EXPECT_EQ(ndb_->NewNid(NidType::kSearchFolder), Nid{0x80023});
  EXPECT_EQ(ndb_->NewNid(NidType::kNormalMessage), Nid{0x200024});
  EXPECT_EQ(ndb_->NewNid(NidType::kAttachment), Nid{0x8025});
  EXPECT_EQ(ndb_->NewNid(NidType::kAssocMessage), Nid{0x100028});
  EXPECT_EQ(ndb_->NewNid(NidType::kLtp), Nid{0x803F});
}

TEST_F(NdbWriters, CountNodesThatWereGivenTheirIds) {
  ndb_->SetNode(MakeNid(NidType::kNormalFolder, 0x500), Data(1), Nid{0x122});
  ndb_->SetNode(Nid{0x2223}, Data(1), Nid{0x122});
  EXPECT_EQ(ndb_->NewNid(NidType::kNormalFolder), MakeNid(NidType::kNormalFolder, 0x501));
  SubnodeTreeWriter subnodes(*ndb_);
  subnodes.Add(MakeNid(NidType::kAttachment, 0x777), {Data(1), 1});
  const Bid bidSub = subnodes.Finish().bid;
  ndb_->SetNode(Nid{0x200024}, {Data(1).bidData, bidSub}, Nid{0x8022});
  ndb_->Seal();
  for (const NidType type :
       {NidType::kNormalFolder, NidType::kHierarchyTable, NidType::kContentsTable, NidType::kAssocContentsTable}) {
    EXPECT_EQ(Counter(type), 0x501u) << "the four nodes of a folder count together";
  }
  EXPECT_EQ(Counter(NidType::kSearchFolder), 0x4000u) << "fixed nodes do not count";
  EXPECT_EQ(Counter(NidType::kAttachment), 0x777u);
  EXPECT_EQ(Counter(NidType::kNormalMessage), 0x10001u);
}

TEST_F(NdbWriters, NumberRowsFromOneAndKeepTheCounterAbove) {
  EXPECT_EQ(ndb_->NewRowVersion(), 1u);
  EXPECT_EQ(ndb_->NewRowVersion(), 2u);
  ndb_->Seal();
  EXPECT_EQ(HeaderOfFile().dwUnique, 3u);
}

TEST_F(NdbWriters, ReadBackWhatIsNotCommitted) {
  const std::vector<std::byte> bytes = test::Noise(50000);
  ndb_->SetNode(Nid{0x21}, {ndb_->WriteData(bytes).bid});
  EXPECT_EQ(Content(*ndb_, Nid{0x21}), bytes);
  EXPECT_FALSE(ndb_->FindNode(Nid{0x61}));
  EXPECT_FALSE(StoreReader::Open(file_)->FindNode(Nid{0x21}));
}

TEST_F(NdbWriters, KeepNodesWithoutTrees) {
  ndb_->SetNode(Nid{0x1E1}, {});
  ndb_->Seal();
  EXPECT_EQ(StoreReader::Open(file_)->FindNode(Nid{0x1E1}), (NodeEntry{Nid{0x1E1}}));
}

TEST_F(NdbWriters, FreeTheTreesOfANodeThatIsReplacedOrRemoved) {
  ndb_->SetNode(Nid{0x21}, Data(100000));
  ndb_->SetNode(Nid{0x61}, Data(10));
  ndb_->SetNode(Nid{0x21}, Data(20));
  EXPECT_EQ(ndb_->BlockCount(), 2u);
  ndb_->RemoveNode(Nid{0x61});
  ndb_->RemoveNode(Nid{0x61});
  EXPECT_EQ(ndb_->BlockCount(), 1u);
  EXPECT_EQ(ndb_->NodeCount(), 1u);
}

TEST_F(NdbWriters, KeepATreeAsLongAsOneNodeRefersToIt) {
  const std::vector<std::byte> content = test::Noise(30000);
  const DataTree shared = ndb_->WriteData(content);
  SubnodeTreeWriter subnodes(*ndb_);
  subnodes.Add(Nid{0x8025}, {{shared.bid}, shared.size});
  const Bid bidSub = subnodes.Finish().bid;
  ndb_->SetNode(Nid{0x200024}, {Data(1).bidData, bidSub}, Nid{0x8022});
  ndb_->SetNode(Nid{0x200044}, {Data(2).bidData, bidSub}, Nid{0x8022});
  ndb_->SetNode(Nid{0x201}, {shared.bid});
  ndb_->RemoveNode(Nid{0x200024});
  EXPECT_EQ(FindSubnode(*ndb_, bidSub, Nid{0x8025})->trees.bidData, shared.bid);
  ndb_->Commit();
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(test::PstCheck(file_.Bytes(), test::Check::kBlocks, "H14,A07,A06,A08"), "")
      << "the counts are those of all";
  ndb_->RemoveNode(Nid{0x200044});
  std::vector<std::byte> block;
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(ndb_->ReadBlock(bidSub, block)); }), FailureKind::kNotFound);
  EXPECT_EQ(Content(*ndb_, Nid{0x201}), content);
  ndb_->RemoveNode(Nid{0x201});
  EXPECT_EQ(ndb_->BlockCount(), 0u);
}

TEST_F(NdbWriters, GiveANodeItsOwnTreesAgain) {
  ndb_->SetNode(Nid{0x21}, Data(30000));
  const NodeTrees trees = ndb_->FindNode(Nid{0x21})->trees;
  ndb_->SetNode(Nid{0x21}, trees, Nid{0x122});
  EXPECT_EQ(Content(*ndb_, Nid{0x21}), test::Noise(30000));
}

TEST_F(NdbWriters, RefuseNodesOfBlocksThatAreNotThere) {
  EXPECT_EQ(test::FailureOf([&] { ndb_->SetNode(Nid{0x21}, {Bid{0x4444}}); }), FailureKind::kNotFound);
  const NodeTrees data = Data(1);
  EXPECT_EQ(test::FailureOf([&] { ndb_->SetNode(Nid{0x21}, {data.bidData, Bid{0x4446}}); }), FailureKind::kNotFound);
  EXPECT_EQ(test::FailureOf([&] { ndb_->SetNode(Nid{0x21}, {kNoBid, data.bidData}); }), FailureKind::kCorrupt);
  EXPECT_EQ(test::FailureOf([&] { ndb_->SetNode(kNoNid, data); }), FailureKind::kNotSupported);
  EXPECT_EQ(ndb_->NodeCount(), 0u);
  ndb_->Discard(data);
  EXPECT_EQ(ndb_->BlockCount(), 0u) << "a refused node leaves its trees as they were: nobody's";
}

TEST_F(NdbWriters, RefuseToShareABlockMoreOftenThanItsCountHolds) {
  const NodeTrees data = Data(1);
  for (std::uint32_t i = 0; i < BlockTable::kMaxReferences; ++i) {
    ndb_->SetNode(MakeNid(NidType::kInternal, i + 1), data);
  }
  EXPECT_EQ(test::FailureOf([&] { ndb_->SetNode(MakeNid(NidType::kNormalMessage, 1), data); }),
            FailureKind::kNotSupported);
}

TEST_F(NdbWriters, DropWhatNothingRefersToWhenTheStoreIsSealed) {
  ndb_->SetNode(Nid{0x21}, Data(10));
  SubnodeTreeWriter subnodes(*ndb_);
  subnodes.Add(Nid{0x8025}, {Data(20000), 20000});
  static_cast<void>(subnodes.Finish());
  Data(100);
  EXPECT_EQ(ndb_->BlockCount(), 7u);
  ndb_->Commit();
  ndb_->Seal();
  EXPECT_EQ(ndb_->BlockCount(), 1u);
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(test::PstCheck(file_.Bytes(), test::Check::kBlocks), "");
}

TEST_F(NdbWriters, LeaveATreeThatIsReferredToWhenItIsDiscarded) {
  ndb_->SetNode(Nid{0x21}, Data(20000));
  ndb_->Discard(ndb_->FindNode(Nid{0x21})->trees);
  EXPECT_EQ(Content(*ndb_, Nid{0x21}), test::Noise(20000));
}

TEST_F(NdbWriters, KeepAHeldTreeUntilItIsLetGoAsOftenAsItWasHeld) {
  const std::size_t blocks = ndb_->BlockCount();
  const NodeTrees trees = Data(20000);
  ndb_->Hold(trees);
  ndb_->Hold(trees);
  ndb_->SetNode(Nid{0x21}, trees);
  ndb_->RemoveNode(Nid{0x21});
  ndb_->Discard(trees);
  ndb_->LetGo(trees);
  ndb_->SetNode(Nid{0x41}, trees);
  EXPECT_EQ(Content(*ndb_, Nid{0x41}), test::Noise(20000));
  ndb_->LetGo(trees);
  EXPECT_EQ(Content(*ndb_, Nid{0x41}), test::Noise(20000)) << "a node refers to it";
  ndb_->RemoveNode(Nid{0x41});
  EXPECT_EQ(ndb_->BlockCount(), blocks);
}

TEST_F(NdbWriters, KeepAHeldTreeBelowASubNodeThatIsFreed) {
  const std::size_t blocks = ndb_->BlockCount();
  const NodeTrees trees = Data(20000);
  ndb_->Hold(trees);
  SubnodeTreeWriter subnodes(*ndb_);
  subnodes.Add(Nid{0x803F}, {trees, 20000});
  ndb_->SetNode(Nid{0x21}, {Data(5).bidData, subnodes.Finish().bid});
  ndb_->RemoveNode(Nid{0x21});
  ndb_->SetNode(Nid{0x41}, trees);
  EXPECT_EQ(Content(*ndb_, Nid{0x41}), test::Noise(20000));
  ndb_->RemoveNode(Nid{0x41});
  ndb_->LetGo(trees);
  EXPECT_EQ(ndb_->BlockCount(), blocks);
}

TEST_F(NdbWriters, DropHeldTreesThatNothingRefersToWhenTheStoreIsSealed) {
  ndb_->SetNode(Nid{0x21}, Data(10));
  const std::size_t blocks = ndb_->BlockCount();
  const NodeTrees trees = Data(20000);
  ndb_->Hold(trees);
  ndb_->Seal();
  EXPECT_EQ(ndb_->BlockCount(), blocks);
  ndb_->LetGo(trees);
  EXPECT_EQ(Content(*ndb_, Nid{0x21}), test::Noise(10));
}

TEST_F(NdbWriters, RefuseChangesAfterSealAndSealAgain) {
  ndb_->SetNode(Nid{0x21}, Data(10));
  ndb_->Seal();
  const std::vector<std::byte> sealed = file_.Bytes();
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(ndb_->WriteData(test::Noise(10))); }), FailureKind::kDenied);
  EXPECT_EQ(test::FailureOf([&] { ndb_->SetNode(Nid{0x21}, {}); }), FailureKind::kDenied);
  EXPECT_EQ(test::FailureOf([&] { ndb_->RemoveNode(Nid{0x21}); }), FailureKind::kDenied);
  EXPECT_EQ(test::FailureOf([&] { ndb_->Commit(); }), FailureKind::kDenied);
  ndb_->Discard(ndb_->FindNode(Nid{0x21})->trees);
  ndb_->Seal();
  EXPECT_EQ(Content(*ndb_, Nid{0x21}), test::Noise(10));
  EXPECT_EQ(file_.Bytes(), sealed);
}

TEST_F(NdbWriters, WriteEveryEncodingReadably) {
  for (const CryptMethod method : {CryptMethod::kNone, CryptMethod::kPermute, CryptMethod::kCyclic}) {
    platform::MemoryFile file;
    const auto ndb = NdbWriter::Create(file, method);
    ndb->SetNode(Nid{0x21}, {ndb->WriteData(test::Noise(20000)).bid});
    EXPECT_EQ(Content(*ndb, Nid{0x21}), test::Noise(20000));
    ndb->Seal();
    EXPECT_EQ(Content(*StoreReader::Open(file), Nid{0x21}), test::Noise(20000));
    if (test::HasPstCheck()) {
      EXPECT_EQ(test::PstCheck(file.Bytes(), test::Check::kBlocks), "");
    }
  }
}

TEST_F(NdbWriters, FormTreesOfThreeLevelsThatTheCheckerAccepts) {
  for (std::uint32_t i = 0; i < 9000; ++i) {
    ndb_->SetNode(MakeNid(NidType::kNormalMessage, 0x10001 + i), Data(1 + i % 50, i), Nid{0x8022});
    ndb_->SetNode(MakeNid(NidType::kInternal, 1 + i), {});
    if (i % 1000 == 999) {
      ndb_->Commit();
    }
    if (i % 7 == 6) {
      ndb_->RemoveNode(MakeNid(NidType::kNormalMessage, 0x10001 + i - 3));
    }
  }
  ndb_->Seal();
  const auto store = StoreReader::Open(file_);
  EXPECT_TRUE(store->Damage().List().empty());
  EXPECT_EQ(store->Nodes().size(), ndb_->NodeCount());
  EXPECT_EQ(store->BlockCount(), ndb_->BlockCount());
  EXPECT_EQ(Content(*store, MakeNid(NidType::kNormalMessage, 0x10001 + 8998)), test::Noise(1 + 8998 % 50, 8998));
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(test::PstCheck(file_.Bytes(), test::Check::kBlocks), "");
}

TEST_F(NdbWriters, FormLargeTreesThatTheCheckerAccepts) {
  SubnodeTreeWriter inner(*ndb_);
  for (std::uint32_t i = 0; i < 1000; ++i) inner.Add(MakeNid(NidType::kLtp, 0x401 + i), {Data(1500, i), 1500});
  const SubnodeTree below = inner.Finish();
  SubnodeTreeWriter outer(*ndb_);
  outer.Add(Nid{0x8025}, {{Data(9'000'000).bidData, below.bid}, 0});
  outer.Add(Nid{0x8045}, {Data(8176 * 3), 0});
  ndb_->SetNode(Nid{0x200024}, {Data(100000).bidData, outer.Finish().bid});
  ndb_->Seal();
  const auto store = StoreReader::Open(file_);
  EXPECT_EQ(DataSizeOf(*store, store->FindNode(Nid{0x200024})->trees), 1500u * 1000 + 9'000'000 + 8176 * 3 + 100000);
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(test::PstCheck(file_.Bytes(), test::Check::kBlocks), "");
}

TEST_F(NdbWriters, GiveTheSameBytesForTheSameSteps) {
  std::vector<std::vector<std::byte>> files;
  for (int round = 0; round < 2; ++round) {
    platform::MemoryFile file;
    const auto ndb = NdbWriter::Create(file);
    for (std::uint32_t i = 0; i < 300; ++i) {
      const Nid nid = ndb->NewNid(NidType::kNormalMessage);
      ndb->SetNode(nid, {ndb->WriteData(test::Noise(i * 40 + 1, i)).bid});
      if (i % 50 == 49) {
        ndb->RemoveNode(nid);
        ndb->Commit();
      }
    }
    ndb->Seal();
    files.push_back(file.Bytes());
  }
  EXPECT_EQ(files[0], files[1]);
}

}  // namespace
}  // namespace velmora::ndb
