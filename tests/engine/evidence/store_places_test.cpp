// Where stores lie in a file whose front is missing, that begins with something else, or that holds several of them.
#include "engine/evidence/store_places.h"

#include <gmock/gmock.h>

#include "engine/evidence/evidence_fixture.h"
#include "store/format/header.h"

namespace velmora::engine {
namespace {

using forge::Bytes;

Bytes operator+(Bytes one, const Bytes& other) {
  one.insert(one.end(), other.begin(), other.end());
  return one;
}

Bytes Without(Bytes bytes, std::size_t front) {
  bytes.erase(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(front));
  return bytes;
}

class StorePlacesTest : public testing::TestWithParam<forge::Format> {
 protected:
  static forge::Image Store(int messages) {
    forge::Mailbox box(
        {.format = GetParam(), .compressed = GetParam() == forge::Format::kUnicode4k, .entriesPerPage = 5},
        {.tables = true});
    FillMailbox(box, messages);
    return box.Finish();
  }
  static Bytes WithoutHeader(forge::Image image) {
    forge::WipeHeader(image);
    return image.bytes;
  }

  /// So many bytes behind where the first blocks stand.
  static std::size_t Behind(std::size_t more) { return forge::TraitsOf(GetParam()).firstData + more; }

  std::vector<StorePlace> Find(const Bytes& bytes) {
    Source source;
    source.Open(std::make_unique<platform::MemoryFile>(bytes));
    return FindStores(source, run_);
  }
  std::vector<Origin> Origins(const Bytes& bytes) {
    std::vector<Origin> origins;
    for (const StorePlace& store : Find(bytes)) origins.push_back(store.origin);
    return origins;
  }

  RunContext run_;
};

INSTANTIATE_TEST_SUITE_P(Formats, StorePlacesTest,
                         testing::Values(forge::Format::kAnsi, forge::Format::kUnicode, forge::Format::kUnicode4k));

TEST_P(StorePlacesTest, AWholeStoreIsAllOfTheFile) {
  const Bytes store = Store(12).bytes;
  const std::vector<StorePlace> found = Find(store);
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].origin, 0);
  EXPECT_EQ(found[0].from, 0U);
  EXPECT_EQ(found[0].to, store.size());
  EXPECT_TRUE(found[0].hasHeader);
  EXPECT_GT(found[0].provenBytes, store.size() / 4);
}

TEST_P(StorePlacesTest, TheFrontMayBeMissingUpToAnyByte) {
  const Bytes store = Store(12).bytes;
  for (const std::size_t missing : {512U, 4096U, 0x4400U, 0x5001U, 0x6007U, 0x7800U}) {
    const std::vector<StorePlace> found = Find(Without(store, missing));
    ASSERT_EQ(found.size(), 1U) << missing;
    EXPECT_EQ(found[0].origin, -static_cast<Origin>(missing));
    EXPECT_EQ(found[0].from, 0U);
    EXPECT_EQ(found[0].to, store.size() - missing);
    EXPECT_FALSE(found[0].hasHeader);
  }
}

TEST_P(StorePlacesTest, BlocksAloneTellHowMuchIsMissing) {
  forge::Image image = Store(12);
  forge::WipeTrees(image);
  for (const std::size_t missing : {0x400U, 0x5001U, 0x6000U, 0x7801U}) {
    EXPECT_EQ(Origins(Without(image.bytes, missing)), std::vector<Origin>{-static_cast<Origin>(missing)}) << missing;
  }
}

TEST_P(StorePlacesTest, WhatStandsAheadOfAStoreIsNoPartOfIt) {
  const Bytes store = Store(12).bytes;
  for (const std::size_t ahead : {512U, 4096U, 63U * 512U, 1U, 777U, 100001U}) {
    for (const Bytes& foreign : {Bytes(ahead), forge::Noise(ahead, 5)}) {
      const std::vector<StorePlace> found = Find(foreign + store);
      ASSERT_EQ(found.size(), 1U) << ahead;
      EXPECT_EQ(found[0].origin, static_cast<Origin>(ahead));
      EXPECT_EQ(found[0].from, ahead);
      EXPECT_EQ(found[0].to, ahead + store.size());
      EXPECT_TRUE(found[0].hasHeader);
    }
  }
}

TEST_P(StorePlacesTest, TwoStoresAreToldApartWithTheirHeadersAndWithout) {
  const forge::Image first = Store(9);
  const forge::Image second = Store(17);
  for (const std::size_t between : {0U, 512U, 4097U}) {
    const Origin behind = static_cast<Origin>(first.bytes.size() + between);
    for (const Bytes& one : {first.bytes, WithoutHeader(first)}) {
      for (const Bytes& other : {second.bytes, WithoutHeader(second)}) {
        const std::vector<StorePlace> found = Find(one + forge::Noise(between, 3) + other);
        ASSERT_EQ(found.size(), 2U) << between;
        EXPECT_EQ(found[0].origin, 0);
        EXPECT_LE(found[0].to, static_cast<std::uint64_t>(behind));
        EXPECT_EQ(found[1].origin, behind);
        EXPECT_EQ(found[1].from, static_cast<std::uint64_t>(behind));
      }
    }
  }
}

TEST_P(StorePlacesTest, ASecondStoreWithoutItsFrontIsNoContinuationOfTheFirst) {
  const forge::Image first = Store(9);
  const forge::Image second = Store(40);
  for (const std::size_t missing : {0x5000U, 0x6003U}) {
    const std::vector<StorePlace> found = Find(first.bytes + Without(second.bytes, missing));
    ASSERT_EQ(found.size(), 2U) << missing;
    EXPECT_EQ(found[1].origin, static_cast<Origin>(first.bytes.size()) - static_cast<Origin>(missing));
    EXPECT_GE(found[1].from, first.bytes.size());
  }
}

TEST_P(StorePlacesTest, AStoreThatLostBytesFromItsMiddleIsOneStore) {
  const Bytes store = Store(40).bytes;
  const std::size_t half = store.size() / 2 / 512 * 512;
  for (const std::size_t lost : {512U, 4096U, 777U}) {
    Bytes cut = store;
    cut.erase(cut.begin() + static_cast<std::ptrdiff_t>(half), cut.begin() + static_cast<std::ptrdiff_t>(half + lost));
    EXPECT_EQ(Origins(cut), std::vector<Origin>{0}) << lost;
    Bytes longer = store;
    const Bytes noise = forge::Noise(lost, 9);
    longer.insert(longer.begin() + static_cast<std::ptrdiff_t>(half), noise.begin(), noise.end());
    EXPECT_EQ(Origins(longer), std::vector<Origin>{0}) << lost;
  }
}

/// Without so many bytes behind an offset.
Bytes Cut(Bytes bytes, std::size_t from, std::size_t lost) {
  const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(from);
  bytes.erase(begin, begin + static_cast<std::ptrdiff_t>(lost));
  return bytes;
}

TEST_P(StorePlacesTest, WherePagesNameWhatStandsBehindALargeGapItIsOneStore) {
  const std::vector<StorePlace> found = Find(Cut(Store(80).bytes, Behind(60 * 1024), 90 * 1024));
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].origin, 0);
  EXPECT_FALSE(found[0].doubtfulFrom);
}

TEST_P(StorePlacesTest, WhereNothingNamesWhatStandsBehindALargeGapThatIsSaid) {
  forge::Image image = Store(80);
  forge::WipeTrees(image);
  const std::size_t from = Behind(60 * 1024);
  const std::vector<StorePlace> found = Find(Cut(image.bytes, from, 90 * 1024));
  ASSERT_EQ(found.size(), 1U);
  ASSERT_TRUE(found[0].doubtfulFrom);
  EXPECT_GE(*found[0].doubtfulFrom, from);
  EXPECT_LT(*found[0].doubtfulFrom, from + 70 * 1024);
  EXPECT_EQ(found[0].to, image.bytes.size() - 90 * 1024);
}

TEST_P(StorePlacesTest, WherePagesNameOtherThingsItIsAnotherStoreEvenIfItsIdsGoOn) {
  const Bytes first = WithoutHeader(Store(9));
  forge::Mailbox box({.format = GetParam()}, {.tables = true});
  box.AddMessage(box.AddFolder({.name = u"First"}), {.subject = u"Longer", .plain = std::u16string(1500, u'x')});
  FillMailbox(box, 80);
  const forge::Image second = box.Finish();
  std::uint64_t newest = 0;
  for (const forge::PlacedBlock& block : Store(9).blocks) newest = std::max(newest, block.bid);
  std::uint64_t missing = first.size() + 100 * 1024;
  for (const forge::PlacedBlock& block : second.blocks) {
    if (block.bid <= newest + 1) missing = std::max(missing, block.offset + block.placeSize);
  }
  const std::vector<StorePlace> found = Find(first + Without(second.bytes, missing));
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].origin, 0);
  EXPECT_EQ(found[1].origin, static_cast<Origin>(first.size()) - static_cast<Origin>(missing));
}

TEST_P(StorePlacesTest, PartsOfItselfInTheWrongPlaceMakeNoOtherStore) {
  const Bytes store = Store(80).bytes;
  Bytes twice = store;
  const auto at = [](auto begin, std::size_t more) { return begin + static_cast<std::ptrdiff_t>(Behind(more)); };
  std::copy_n(at(store.begin(), 40 * 1024), 40 * 1024, at(twice.begin(), 120 * 1024));
  EXPECT_EQ(Origins(twice), std::vector<Origin>{0});
}

TEST_P(StorePlacesTest, BlocksOfOneIdWithOtherContentAreOfAnotherStore) {
  forge::Mailbox many({.format = GetParam()}, {.tables = true});
  const forge::Nid inbox = many.AddFolder({.name = u"Inbox"});
  for (int i = 0; i < 60; ++i) many.AddMessage(inbox, {.subject = u"Small", .plain = u"Much is not in it"});
  forge::Image first = many.Finish();
  forge::WipeTrees(first);
  forge::Mailbox few({.format = GetParam()}, {.tables = true});
  for (std::uint32_t i = 0; i < 8; ++i) {
    few.AddMessage(few.AddFolder({.name = u"Large"}),
                   {.subject = u"Large", .attachments = {{.name = u"a.bin", .data = forge::Noise(100000, i)}}});
  }
  forge::Image second = few.Finish();
  forge::WipeTrees(second);
  const std::size_t missing = first.bytes.size() + 512;
  EXPECT_EQ(Origins(first.bytes + Without(second.bytes, missing)), (std::vector<Origin>{0, -512}));
}

TEST_P(StorePlacesTest, WhereOffsetsBeginAnewItIsAnotherStoreWhateverItsIds) {
  const auto blocks = [](forge::Bid first) {
    forge::Store store({.format = GetParam()});
    for (std::uint32_t i = 0; i < 20; ++i) store.AddBlock(forge::Noise(3000, i), {.bid = first + 4 * i});
    forge::Image image = store.Finish();
    forge::WipeTrees(image);
    return image.bytes;
  };
  const Bytes first = blocks(4);
  EXPECT_EQ(Origins(first + blocks(0x10000)), (std::vector<Origin>{0, static_cast<Origin>(first.size())}));
}

TEST_P(StorePlacesTest, AStoreThatIsAttachedToAMessageIsNoOther) {
  forge::Mailbox box({.format = GetParam(), .encoding = forge::Encoding::kNone}, {.tables = true});
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  box.AddMessage(inbox, {.subject = u"Ahead", .plain = std::u16string(6000, u'a')});
  box.AddMessage(inbox, {.subject = u"Holds a store", .attachments = {{.name = u"old.pst", .data = Store(12).bytes}}});
  box.AddMessage(inbox, {.subject = u"Behind", .plain = std::u16string(6000, u'b')});
  const Bytes outer = box.Finish().bytes;
  const std::vector<StorePlace> found = Find(Bytes(4096) + outer);
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].origin, 4096);
}

TEST_P(StorePlacesTest, NothingIsFoundWhereNoStoreIs) {
  EXPECT_THAT(Find(forge::Noise(300000, 8)), testing::IsEmpty());
  EXPECT_THAT(Find(Bytes(300000)), testing::IsEmpty());
  EXPECT_THAT(Find({}), testing::IsEmpty());
}

TEST_P(StorePlacesTest, HeadersWithoutAStoreAreNone) {
  const Bytes store = Store(12).bytes;
  const Bytes header(store.begin(), store.begin() + 1024);
  Bytes many;
  for (int i = 0; i < 10000; ++i)
    many = i % 2 == 0 ? std::move(many) + header : std::move(many) + forge::ToBytes("!BDN");
  const std::vector<StorePlace> found = Find(many + store);
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].origin, static_cast<Origin>(many.size()));
}

TEST(FindOrigins, NoMoreIsTakenForMissingThanAFileOfItsSizeMayLack) {
  const auto origins = [](std::uint64_t offset) {
    Mark map;
    map.kind = MarkKind::kMap;
    map.id = offset;
    return FindOrigins({map}, 1000).origins;
  };
  constexpr Origin kMost = (Origin{4} << 30) + 4000;
  EXPECT_EQ(origins(kMost), (std::vector<Origin>{0, -kMost}));
  EXPECT_EQ(origins(kMost + 512), std::vector<Origin>{0});
  EXPECT_EQ(origins(~std::uint64_t{0}), std::vector<Origin>{0});
}

TEST(MainStore, IsTheOneAtTheBeginningOfTheFileOrElseTheLargest) {
  const auto store = [](Origin origin, std::uint64_t provenBytes) {
    StorePlace place;
    place.origin = origin;
    place.provenBytes = provenBytes;
    return place;
  };
  EXPECT_EQ(MainStore({store(0, 1), store(50, 9)}), 0U);
  EXPECT_EQ(MainStore({store(-10, 1), store(50, 9)}), 1U);
  EXPECT_EQ(MainStore({store(10, 9), store(50, 9)}), 0U);
}

}  // namespace
}  // namespace velmora::engine
