#include "recovery/name_to_id_map.h"

#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

using engine::StoreKind;

constexpr std::string_view kMapiTail("\0\0\0\0\0\x46", 6);
constexpr std::string_view kInternetTail("\0\xAA\0\x3F\x13\x05", 6);
constexpr std::string_view kOtherTail("\x01\x02\x03\x04\x05\x06", 6);

Bytes Guid(std::string_view tail) {
  Bytes guid(10);
  Append(guid, BytesOf(tail));
  return guid;
}

Bytes Entry(std::uint32_t longId, std::uint16_t index, std::uint8_t flags = 0) {
  Bytes entry;
  AppendNumber(entry, longId);
  AppendNumber<std::uint16_t>(entry, flags);
  AppendNumber(entry, index);
  return entry;
}

/// The bucket of one entry that stands twice, the only form of 16 bytes with one name.
Bytes Bucket(const Bytes& entry) {
  Bytes bucket = entry;
  Append(bucket, entry);
  return bucket;
}

class NameMapTest : public RecoveryTest {
 protected:
  /// A map's context: the list of property sets, then one record a bucket, then records of other types.
  static Bytes MapBlock(const Bytes& guids, const std::vector<Bytes>& buckets, std::size_t records = 60) {
    std::vector<RecordSpec> specs = {Data(0x0002, 0x0102, guids)};
    for (const Bytes& bucket : buckets) specs.push_back(Data(0x1000, 0x0102, bucket));
    while (specs.size() < records) specs.push_back(Value(0x0001, 0x0003, 251));
    return HeapBlock(specs);
  }

  void Read(std::uint32_t bidData, std::uint32_t bidSub = 0) {
    Settle();
    NameMapReader(engine_, map_).ReadNameToIdMap(bidData, bidSub, engine_.blockEncoding);
  }

  NamedPropMap map_;
};

TEST(NamedPropMapTest, AnIdWithoutAPairIsReturnedAsItIs) {
  EXPECT_EQ(NamedPropMap().TranslateNamedId(0x8005), 0x8005u);
}

TEST(NamedPropMapTest, TheFirstPairOfALocalOrALongIdWins) {
  NamedPropMap map;
  map.AddNamedProp(0x8503, 0x8001);
  map.AddNamedProp(0x8504, 0x8001);
  map.AddNamedProp(0x8503, 0x8002);
  EXPECT_EQ(map.TranslateNamedId(0x8001), 0x8503u);
  EXPECT_EQ(map.TranslateNamedId(0x8002), 0x8002u);
}

TEST(NamedPropMapTest, AMapWithGroupsButWithoutGroupZeroTakesNoPair) {
  NamedPropMap map;
  map.AddNamedPropGroup(3);
  map.AddNamedProp(0x8503, 0x8001);
  EXPECT_EQ(map.TranslateNamedId(0x8001), 0x8001u);
  map.AddNamedPropGroup(0);
  map.AddNamedProp(0x8503, 0x8001);
  EXPECT_EQ(map.TranslateNamedId(0x8001), 0x8503u);
}

TEST_F(NameMapTest, ABucketOfSixteenBytesGivesItsFirstEntry) {
  Bytes bucket = Entry(0x8503, 1);
  Append(bucket, Entry(0x8504, 2));
  AddBlock(8, MapBlock(Guid(kMapiTail), {bucket}));
  Read(8);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8503u);
  EXPECT_EQ(map_.TranslateNamedId(0x8002), 0x8002u);
}

TEST_F(NameMapTest, ABucketOfOneOrOfThreeEntriesAddsNothing) {
  Bytes three = Entry(0x8504, 2);
  Append(three, Bucket(Entry(0x8505, 3)));
  AddBlock(8, MapBlock(Guid(kMapiTail), {Entry(0x8503, 1), three}));
  Read(8);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8001u);
  EXPECT_EQ(map_.TranslateNamedId(0x8002), 0x8002u);
}

TEST_F(NameMapTest, AStringNameNeverEntersTheMap) {
  AddBlock(8, MapBlock(Guid(kMapiTail), {Bucket(Entry(0x8503, 1, 1))}));
  Read(8);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8001u);
}

TEST_F(NameMapTest, OnlyLongIdsFrom8001To8FfeReachTheMap) {
  AddBlock(
      8, MapBlock(Guid(kMapiTail), {Bucket(Entry(0x8000, 1)), Bucket(Entry(0x8001, 2)), Bucket(Entry(0x8FFE, 3)),
                                    Bucket(Entry(0x8FFF, 4)), Bucket(Entry(0x0001, 5)), Bucket(Entry(0x00010503, 6))}));
  Read(8);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8001u);
  EXPECT_EQ(map_.TranslateNamedId(0x8002), 0x8001u);
  EXPECT_EQ(map_.TranslateNamedId(0x8003), 0x8FFEu);
  EXPECT_EQ(map_.TranslateNamedId(0x8004), 0x8004u);
  EXPECT_EQ(map_.TranslateNamedId(0x8005), 0x8005u);
  EXPECT_EQ(map_.TranslateNamedId(0x8006), 0x8006u);
}

TEST_F(NameMapTest, APairThatRepeatsALocalIdIsDropped) {
  AddBlock(8, MapBlock(Guid(kMapiTail), {Bucket(Entry(0x8503, 1)), Bucket(Entry(0x8504, 1))}));
  Read(8);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8503u);
}

TEST_F(NameMapTest, WhetherPairsAreTakenAtAllHangsOnTheFirstPropertySet) {
  Bytes guids = Guid(kOtherTail);
  Append(guids, Guid(kInternetTail));
  AddBlock(8, MapBlock(guids, {Bucket(Entry(0x8503, 1))}));
  Read(8);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8001u) << "group 1 is there, group 0 is not";

  map_ = {};
  AddBlock(12, MapBlock(Guid(kOtherTail), {Bucket(Entry(0x8503, 1))}));
  Read(12);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8503u) << "no group at all: the first pair makes group 0";
}

TEST_F(NameMapTest, TheNumberOfAPropertySetIsOneByte) {
  Bytes guids;
  for (int i = 0; i < 256; ++i) Append(guids, Guid(kOtherTail));
  Append(guids, Guid(kMapiTail));  // number 256, which is 0 again
  Append(guids, Guid(kMapiTail));
  AddBlock(8, MapBlock(guids, {Bucket(Entry(0x8503, 1))}));
  Read(8);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8503u);
}

TEST_F(NameMapTest, TheListOfSetsIsTakenForABucketToo) {
  Bytes guids = Entry(0x8503, 1);
  Append(guids, Bytes(8));  // 16 bytes: one set, or one bucket
  AddBlock(8, MapBlock(guids, {}));
  Read(8);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8503u);
}

TEST_F(NameMapTest, RecordsOfOtherTypesAreSkipped) {
  std::vector<RecordSpec> specs = {Data(0x0002, 0x0102, Guid(kMapiTail)),
                                   Data(0x0003, 0x001F, Bucket(Entry(0x8503, 1)))};
  while (specs.size() < 60) specs.push_back(Value(1, 3, 0));
  AddBlock(8, HeapBlock(specs));
  Read(8);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8001u);
}

TEST_F(NameMapTest, AContextOfFewerThanFiftyRecordsIsNotTheMapAndLeavesItToTheBlockWalks) {
  AddBlock(8, MapBlock(Guid(kMapiTail), {Bucket(Entry(0x8503, 1))}, 49));
  AddBlock(12, Entry(0x8504, 2));
  AddBlock(16, SubNodeBlock({{0x3F, 12, 0}}));
  Read(8, 16);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8001u);
  EXPECT_EQ(map_.TranslateNamedId(0x8002), 0x8504u);
}

TEST_F(NameMapTest, TheBlockWalksFollowTheHeapToo) {
  AddBlock(8, MapBlock(Guid(kMapiTail), {Bucket(Entry(0x8503, 1))}));
  AddBlock(12, Entry(0x8504, 2));
  AddBlock(16, SubNodeBlock({{0x3F, 12, 0}}));
  Read(8, 16);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8503u);
  EXPECT_EQ(map_.TranslateNamedId(0x8002), 0x8504u);
}

TEST_F(NameMapTest, ABlockThatIsNoHeapIsTriedAsAList) {
  Bytes entries = Entry(0x8503, 1);
  Append(entries, Entry(0x8504, 2));
  AddBlock(12, entries);
  AddBlock(8, SubNodeBlock({{0x3F, 12, 0}}));
  Read(8);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8503u);
  EXPECT_EQ(map_.TranslateNamedId(0x8002), 0x8504u) << "every 8 bytes are an entry";
}

TEST_F(NameMapTest, AnEntryThatIsNotWhollyInItsBlockIsNotRead) {
  Bytes entries = Entry(0x8503, 1);
  Append(entries, Entry(0x8504, 0));
  entries.pop_back();
  AddBlock(12, entries);
  AddBlock(8, SubNodeBlock({{0x3F, 12, 0}}));
  Read(8);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8503u);
  EXPECT_EQ(map_.TranslateNamedId(0x8000), 0x8000u);
}

TEST_F(NameMapTest, TheSubNodesAreWalkedBeforeTheNodesOwnBlock) {
  AddBlock(12, Entry(0x8503, 1));
  AddBlock(16, SubNodeBlock({{0x3F, 12, 0}}));
  AddBlock(20, Entry(0x8504, 1));
  AddBlock(8, SubNodeBlock({{0x3F, 20, 0}}));
  Read(8, 16);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8503u);
}

TEST_F(NameMapTest, AChainIsReadAsEntriesItselfFourBytesFurtherOn) {
  Bytes chain = ChainBlock({});
  chain.resize(12);
  PutNumber<std::uint32_t>(chain, 4, 0x8503);
  PutNumber<std::uint16_t>(chain, 8, 0);
  PutNumber<std::uint16_t>(chain, 10, 7);
  AddBlock(8, chain);
  Read(8);
  EXPECT_EQ(map_.TranslateNamedId(0x8007), 0x8503u);
}

TEST_F(NameMapTest, AMapOfAnOstThatIsEncodedIsNotReadAsAHeap) {
  AddBlock(8, MapBlock(Guid(kMapiTail), {Bucket(Entry(0x8503, 1))}));
  engine_.storeKind = StoreKind::kOst;
  Read(8);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8503u);
  map_ = {};
  engine_.blockEncoding = CryptMethod::kPermute;
  Read(8);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8503u) << "plain as it is stored, so no encoding is undone";
}

TEST_F(NameMapTest, ACopyOfTheNodeIsReadAgainOnceTheEncodingIsKnown) {
  const Bytes plain = MapBlock(Guid(kMapiTail), {Bucket(Entry(0x8503, 1))});
  engine_.blockEncoding = CryptMethod::kPermute;
  Bytes decoded(256);
  for (std::size_t i = 0; i < decoded.size(); ++i) decoded[i] = static_cast<std::byte>(i);
  engine::BlockReader(engine_).DecodeBlock(8, decoded);
  Bytes encoded(plain.size());
  for (std::size_t i = 0; i < plain.size(); ++i) {
    encoded[i] = static_cast<std::byte>(std::ranges::find(decoded, plain[i]) - decoded.begin());
  }
  AddBlock(8, encoded);
  Settle();

  NameMapReader reader(engine_, map_);
  reader.ReadNameToIdMap(8, 0, CryptMethod::kNone);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8001u);
  reader.ReadNameToIdMap(8, 0, CryptMethod::kPermute);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8503u);
}

TEST_F(NameMapTest, ABucketBehindTheBlockMakesALongerReadOfIt) {
  std::vector<RecordSpec> specs = {Data(0x0002, 0x0102, Guid(kMapiTail))};
  while (specs.size() < 60) specs.push_back(Value(1, 3, 0));
  Bytes block = HeapBlock(specs);
  const std::uint16_t ibHnpm = ByteView(block).U16(0);
  const std::size_t position = block.size() + 200;
  const auto records = PropertyContext(ByteView(block), engine_, kNameMapRules).Records();
  PutNumber<std::uint16_t>(block, records.start + 8 + 2, 0x0102);
  PutNumber(block, records.start + 8 + 4, static_cast<std::uint32_t>((position - ibHnpm - 2) << 4));
  AddBlock(8, block);

  // What stands behind the block in the source: a place in the page map, and the bucket that it names.
  const std::size_t behindAt = (block.size() + 63) / 64 * 64;
  Bytes behind(600);
  PutNumber(behind, position - behindAt, static_cast<std::uint16_t>(position + 24));
  PutNumber(behind, position - behindAt + 2, static_cast<std::uint16_t>(position + 40));
  const Bytes bucket = Bucket(Entry(0x8503, 1));
  std::copy(bucket.begin(), bucket.end(), behind.begin() + static_cast<std::ptrdiff_t>(position + 24 - behindAt));
  AddBlock(12, behind);
  Read(8);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8503u);
}

TEST_F(NameMapTest, EachBucketBehindTheBlockIsReadAnewAsFarAsItAsks) {
  std::vector<RecordSpec> specs = {Data(0x0002, 0x0102, Guid(kMapiTail))};
  while (specs.size() < 60) specs.push_back(Value(1, 3, 0));
  Bytes block = HeapBlock(specs);
  const std::uint16_t ibHnpm = ByteView(block).U16(0);
  const auto records = PropertyContext(ByteView(block), engine_, kNameMapRules).Records();
  const std::size_t near = block.size() + 100;
  const std::size_t far = block.size() + 1000;
  std::uint32_t record = records.start;
  for (const std::size_t position : {far, near}) {
    record += 8;
    PutNumber<std::uint16_t>(block, record + 2, 0x0102);
    PutNumber(block, record + 4, static_cast<std::uint32_t>((position - ibHnpm - 2) << 4));
  }

  // One bucket stands where the second read reaches, one where only the first, longer one would.
  const std::size_t behindAt = (block.size() + 63) / 64 * 64;
  const auto readWithBucketAt = [&](std::uint32_t bid, std::size_t bucketAt) {
    AddBlock(bid, block);
    Bytes behind(1600);
    PutNumber(behind, near - behindAt, static_cast<std::uint16_t>(bucketAt));
    PutNumber(behind, near - behindAt + 2, static_cast<std::uint16_t>(bucketAt + 16));
    std::ranges::copy(Bucket(Entry(0x8503, 1)), behind.begin() + static_cast<std::ptrdiff_t>(bucketAt - behindAt));
    AddBlock(bid + 4, behind);
    map_ = {};
    Read(bid);
    return map_.TranslateNamedId(0x8001);
  };
  EXPECT_EQ(readWithBucketAt(8, near + 400), 0x8503u);
  EXPECT_EQ(readWithBucketAt(16, near + 600), 0x8001u);
}

TEST_F(NameMapTest, AHugeMapIsFound) {
  std::vector<Bytes> buckets;
  for (std::uint16_t i = 1; i < 1000; ++i) buckets.push_back(Bucket(Entry(0x8100u + i, i)));
  AddBlock(8, MapBlock(Guid(kMapiTail), buckets));
  Read(8);
  EXPECT_EQ(map_.TranslateNamedId(0x8000 + 999), 0x8100u + 999);
}

TEST_F(NameMapTest, ListsThatNameThemselvesEnd) {
  // Slots of 2 and of 257 lead to the blocks of those ids, which lead back.
  Bytes chain = ChainBlock({});
  for (int i = 0; i < 4000; ++i) {
    AppendNumber<std::uint32_t>(chain, 2);
    AppendNumber<std::uint32_t>(chain, 257);
  }
  AddBlock(2, chain);
  AddBlock(257, chain);
  Bytes list = SubNodeBlock({});
  for (int i = 0; i < 4000; ++i) AppendNumber<std::uint32_t>(list, 2);
  AddBlock(8, list);
  Read(8, 2);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8001u);
}

TEST_F(NameMapTest, APageMapThatIsCutOffInItsLastNumberIsReadAsIfZerosFollowed) {
  Bytes block = HeapBlock({Value(0x0001, 0x0003, 251)});
  block.pop_back();  // the end of the records is below 256
  AddBlock(8, block);
  AddBlock(12, SubNodeBlock({{0x3F, 16, 0}}));
  AddBlock(16, Entry(0x8503, 1));
  Read(8, 12);
  EXPECT_EQ(map_.TranslateNamedId(0x8001), 0x8503u) << "too few records: the block walks come next";
}

}  // namespace
}  // namespace velmora::recovery
