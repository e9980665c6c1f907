#include "engine/run_fixture.h"
#include "engine/steps.h"

namespace velmora::engine {
namespace {

class FinishScanTest : public RunTest {
 protected:
  /// A node with a block of those bytes as they stand.
  void AddNode(std::uint32_t nid, const forge::Bytes& stored, std::uint32_t nidParent) {
    const auto bid = static_cast<std::uint32_t>(4 * (records_.size() + 1));
    records_.push_back({bid, static_cast<std::uint32_t>(stored.size()), bytes_.size()});
    bytes_.insert(bytes_.end(), stored.begin(), stored.end());
    bytes_.resize((bytes_.size() + 63) / 64 * 64);
    Found().nodes.Insert({nid, bid, 0, nidParent});
  }

  forge::Bytes Encoded(forge::Encoding encoding) const {
    forge::Bytes heap = forge::Noise(100, 1);
    forge::Put(heap, 2, 0xBCEC, 2);
    forge::Encode(encoding, static_cast<std::uint32_t>(4 * (records_.size() + 1)), heap);
    return heap;
  }

  std::unique_ptr<const ScannedStore> Finish() {
    Attach(bytes_);
    Index(records_);
    return FinishScan(scan_, run_);
  }

 private:
  forge::Bytes bytes_;
  std::vector<BlockRecord> records_;
};

TEST_F(FinishScanTest, TheFirstNodeThatMayBeAFolderAndWhoseBlockIsAHeapTellsTheEncoding) {
  AddNode(0x21, Encoded(forge::Encoding::kNone), 0);       // no parent
  AddNode(0x122, Encoded(forge::Encoding::kNone), 0x122);  // its own parent
  AddNode(0x8022, forge::Bytes(100), 0x122);               // no heap
  AddNode(0x8042, Encoded(forge::Encoding::kCyclic), 0x8022);
  AddNode(0x8062, Encoded(forge::Encoding::kPermute), 0x8022);
  const auto store = Finish();
  EXPECT_EQ(store->blockEncoding, CryptMethod::kCyclic);
  EXPECT_EQ(store->encodingFoundAt, 3u);
}

TEST_F(FinishScanTest, WhereNoNodeTellsItBlocksAreTakenAsTheyAre) {
  AddNode(0x8042, forge::Bytes(100), 0x122);
  const auto store = Finish();
  EXPECT_EQ(store->blockEncoding, CryptMethod::kNone);
  EXPECT_EQ(store->encodingFoundAt, 1u);
}

TEST_F(FinishScanTest, WhatTheBlockScanToldStays) {
  AddNode(0x8042, Encoded(forge::Encoding::kPermute), 0x122);
  scan_.encodingUnknown = false;
  Found().blockEncoding = CryptMethod::kCyclic;
  const auto store = Finish();
  EXPECT_EQ(store->blockEncoding, CryptMethod::kCyclic);
  EXPECT_EQ(store->encodingFoundAt, 0u);
}

TEST_F(FinishScanTest, ARunThatWasAbortedOrHasEndedTellsNone) {
  AddNode(0x8042, Encoded(forge::Encoding::kPermute), 0x122);
  run_.runAborted = true;
  EXPECT_EQ(Finish()->blockEncoding, CryptMethod::kNone);
}

TEST_F(FinishScanTest, AStopLeavesTheSearchForTheEncoding) {
  AddNode(0x8042, Encoded(forge::Encoding::kPermute), 0x122);
  run_.control.RequestStop();
  EXPECT_THROW(static_cast<void>(Finish()), RunStopped);
  EXPECT_NE(scan_.found, nullptr) << "what was found is still there to be told of";
}

}  // namespace
}  // namespace velmora::engine
