// A store beyond the limits of 31 and 32 bits.
#include <gtest/gtest.h>

#include "store/format/little_endian.h"
#include "store/ndb/allocation_map.h"
#include "store/ndb/data_tree_reader.h"
#include "store/ndb/data_tree_writer.h"
#include "store/ndb/ndb_writer.h"
#include "store/ndb/store_reader.h"
#include "store/support/test_files.h"

namespace velmora::ndb {
namespace {

constexpr std::uint64_t kFourGiB = std::uint64_t{1} << 32;

bool HasMap(const platform::ByteSource& file, PageType type, std::uint64_t ib) {
  Page page;
  return file.ReadAt(ib, page).value() == kPageSize && ProvesItself(page, type, {Bid{ib}, ib});
}

TEST(LargeStore, HasItsMapsAndReadsBackBeyondFourGigabytes) {
  // Header and maps, and the end with the trees, which begin in gaps before it.
  test::ForgetfulFile file([](std::uint64_t at) {
    return at < kFirstArea || at >= kFourGiB - (1 << 22) || (at - kFirstArea) % kAreaSize < kMostMapPages * kPageSize;
  });
  const auto ndb = NdbWriter::Create(file, CryptMethod::kNone);
  const std::vector<std::byte> bytes(200 * kMaxBlockData);
  while (ndb->FileSize() <= kFourGiB) {
    DataTreeWriter tree(*ndb);  // of about 1 GB each
    for (int i = 0; i < 660 && ndb->FileSize() <= kFourGiB; ++i) tree.Append(bytes);
    ndb->SetNode(ndb->NewNid(NidType::kNormalMessage), {tree.Finish().bid}, Nid{0x8022});
  }
  const std::vector<std::byte> last = test::Noise(100000);
  ndb->SetNode(Nid{0x21}, {ndb->WriteData(last).bid});
  ndb->Seal();

  const auto areas = static_cast<std::uint32_t>((file.Size() - kFirstArea) / kAreaSize);
  EXPECT_EQ(AreaOffset(areas), file.Size());
  for (std::uint32_t area = 0; area < areas; ++area) {
    std::uint64_t ib = AreaOffset(area);
    for (const PageType type : MapPagesOf(area)) {
      ASSERT_TRUE(HasMap(file, type, ib)) << area;
      ib += kPageSize;
    }
  }
  EXPECT_TRUE(HasMap(file, PageType::kFMap, 0x01F04800));
  EXPECT_TRUE(HasMap(file, PageType::kFPMap, 0x7C004800));
  EXPECT_TRUE(HasMap(file, PageType::kFPMap, 0x7C004A00));

  const auto store = StoreReader::Open(file);
  EXPECT_TRUE(store->Damage().List().empty());
  EXPECT_EQ(store->Nodes().size(), ndb->NodeCount());
  EXPECT_EQ(store->BlockCount(), ndb->BlockCount());
  EXPECT_EQ(DataTreeReader::Open(*store, store->FindNode(Nid{0x21})->trees.bidData).ReadAll(100000), last);
}

}  // namespace
}  // namespace velmora::ndb
