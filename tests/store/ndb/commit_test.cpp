// What a file holds when the writer is stopped at any point.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

#include "store/ndb/allocation_map.h"
#include "store/ndb/data_tree_reader.h"
#include "store/ndb/ndb_writer.h"
#include "store/ndb/store_reader.h"
#include "store/support/failures.h"
#include "store/support/pst_check.h"
#include "store/support/test_files.h"

namespace velmora::ndb {
namespace {

/// Nodes and the bytes of each.
using Nodes = std::map<Nid, std::vector<std::byte>>;

/// All nodes of a store; fails the test where the store does not hold what it says.
Nodes NodesOf(const BlockSource& source, std::span<const NodeEntry> entries) {
  Nodes nodes;
  for (const NodeEntry& entry : entries) {
    try {
      nodes[entry.nid] = DataTreeReader::Open(source, entry.trees.bidData).ReadAll(1 << 30);
    } catch (const FailureError& failure) {
      ADD_FAILURE() << TextOf(failure.Cause());
    }
  }
  return nodes;
}

Nodes NodesOfFile(const std::vector<std::byte>& bytes) {
  const platform::MemoryFile file(bytes);
  const auto store = StoreReader::Open(file);
  EXPECT_TRUE(store->Damage().List().empty());
  EXPECT_EQ((file.Size() - kFirstArea) % kAreaSize, 0u);
  return NodesOf(*store, store->Nodes());
}

/// Sets, replaces and removes nodes by chance, and commits now and then, until something fails. `committed` is called
/// after each commit with all nodes.
void ChangeByChance(NdbWriter& ndb, std::uint32_t seed, int steps, const std::function<void(const Nodes&)>& committed) {
  test::Random random(seed);
  Nodes nodes;
  const auto change = [&](int step) {
    const Nid nid = MakeNid(NidType::kInternal, 1 + random() % 40);
    if (random() % 4 == 0) {
      ndb.RemoveNode(nid);
      nodes.erase(nid);
    } else {
      const std::vector<std::byte> bytes = test::Noise(1 + random() % (step % 5 == 0 ? 40000 : 3000), random());
      ndb.SetNode(nid, {ndb.WriteData(bytes).bid});
      nodes[nid] = bytes;
    }
    if (random() % 12 == 0) {
      ndb.Commit();
      committed(nodes);
    }
  };
  test::FailureOf([&] {
    for (int step = 0; step < steps; ++step) change(step);
    ndb.Seal();
    committed(nodes);
  });
}

TEST(Commit, IsWhatTheFileHoldsWheneverTheProcessEnds) {
  Nodes committed;
  bool exists = false;
  int looks = 0;
  // While a commit is made the file turns from the last state into the next with one write, the header's.
  std::vector<std::vector<std::byte>> sinceCommit;
  test::WatchedFile file([&](const std::vector<std::byte>& bytes) {
    if (exists) sinceCommit.push_back(bytes);
  });
  const auto ndb = NdbWriter::Create(file);
  exists = true;
  ChangeByChance(*ndb, 3, 150, [&](const Nodes& nodes) {
    for (const auto& bytes : sinceCommit) {
      ASSERT_EQ(NodesOfFile(bytes), committed);
      ++looks;
    }
    sinceCommit.clear();
    committed = nodes;
    ASSERT_EQ(NodesOfFile(file.Bytes()), committed);
  });
  EXPECT_GT(looks, 100);
  EXPECT_FALSE(committed.empty());
}

TEST(Commit, SurvivesADiskThatIsFullAtAnyByte) {
  platform::MemoryFile whole;
  ChangeByChance(*NdbWriter::Create(whole), 5, 60, [](const Nodes&) {});
  const std::uint64_t created = 0x4400 + 4 * 512;
  int failures = 0;
  for (std::uint64_t limit = created + 10000; limit < 3 * whole.Size(); limit += 2003) {
    test::FailingFile file(limit);
    const auto ndb = NdbWriter::Create(file);
    Nodes committed;
    ChangeByChance(*ndb, 5, 60, [&](const Nodes& nodes) { committed = nodes; });
    ASSERT_EQ(NodesOfFile(file.Bytes()), committed) << limit;
    if (!file.Failed()) break;
    ++failures;
    ASSERT_TRUE(test::FailureOf([&] { static_cast<void>(ndb->WriteData(test::Noise(10))); }))
        << "a failed store stays failed";
    ASSERT_TRUE(test::FailureOf([&] { ndb->Commit(); }));
    ASSERT_TRUE(test::FailureOf([&] { ndb->Seal(); }));
  }
  EXPECT_GT(failures, 50);
}

TEST(Commit, OfAFileThatCannotBeMadeFails) {
  for (const std::uint64_t limit : {0, 100, 3000}) {
    test::FailingFile file(limit);
    EXPECT_TRUE(test::FailureOf([&] { static_cast<void>(NdbWriter::Create(file)); })) << limit;
  }
}

TEST(Commit, WithoutAChangeWritesNothing) {
  int changes = 0;
  test::WatchedFile file([&](const auto&) { ++changes; });
  const auto ndb = NdbWriter::Create(file);
  ndb->SetNode(Nid{0x21}, {ndb->WriteData(test::Noise(10)).bid});
  ndb->Commit();
  changes = 0;
  ndb->Commit();
  EXPECT_EQ(changes, 0);
}

/// Writes down in which order places are written and handed to the disk.
class OrderedFile : public platform::MemoryFile {
 public:
  platform::Result<void> WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
    steps += offset == 0 ? "H" : "w";
    return MemoryFile::WriteAt(offset, bytes);
  }
  platform::Result<void> Flush() override {
    steps += "|";
    return {};
  }
  std::string steps;
};

TEST(Commit, HandsEverythingToTheDiskBeforeTheHeaderAndThenTheHeader) {
  OrderedFile file;
  const auto ndb = NdbWriter::Create(file);
  file.steps.clear();
  ndb->SetNode(Nid{0x21}, {ndb->WriteData(test::Noise(10)).bid});
  ndb->Commit();
  EXPECT_THAT(file.steps, testing::MatchesRegex("w+.H.")) << "blocks and trees";
  EXPECT_EQ(std::count(file.steps.begin(), file.steps.end(), '|'), 2);
  file.steps.clear();
  ndb->Seal();
  EXPECT_THAT(file.steps, testing::MatchesRegex("w+.H.")) << "trees and maps";
  EXPECT_EQ(std::count(file.steps.begin(), file.steps.end(), '|'), 2);
}

TEST(Commit, LetsAStoreThatIsRewrittenAllTheTimeStaySmall) {
  platform::MemoryFile file;
  const auto ndb = NdbWriter::Create(file);
  for (int round = 0; round < 200; ++round) {
    const auto seed = static_cast<std::uint32_t>(round);
    ndb->SetNode(Nid{0x21}, {ndb->WriteData(test::Noise(60000, seed)).bid});
    if (round % 3 == 0) {
      ndb->Commit();
    }
  }
  ndb->Seal();
  EXPECT_LE(file.Size(), AreaOffset(2)) << "60 KB of content";
  EXPECT_EQ(NodesOfFile(file.Bytes()), (Nodes{{Nid{0x21}, test::Noise(60000, 199)}}));
}

TEST(Commit, OfAKilledStoreHasItsMapsMarkedAsNotValidAndTheRestSound) {
  platform::MemoryFile file;
  const auto ndb = NdbWriter::Create(file);
  for (std::uint32_t i = 0; i < 200; ++i) {
    ndb->SetNode(MakeNid(NidType::kInternal, i + 1), {ndb->WriteData(test::Noise(9000, i)).bid});
    if (i % 60 == 59) {
      ndb->Commit();
    }
  }
  VELMORA_NEEDS_PST_CHECK();
  // H11, H12: the file has grown since. A07, A08: the maps call everything used until the store is sealed.
  EXPECT_EQ(test::PstCheck(file.Bytes(), test::Check::kBlocks, "H11,H12,H14,A07,A08,A13"), "");
}

TEST(Seal, FormsAStoreThatTheCheckerAcceptsAfterAnyHistory) {
  VELMORA_NEEDS_PST_CHECK();
  for (std::uint32_t seed = 1; seed < 6; ++seed) {
    platform::MemoryFile file;
    ChangeByChance(*NdbWriter::Create(file), seed, 150, [](const Nodes&) {});
    EXPECT_EQ(test::PstCheck(file.Bytes(), test::Check::kBlocks), "") << seed;
  }
}

}  // namespace
}  // namespace velmora::ndb
