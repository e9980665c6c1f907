#include "recovery/property_context.h"

#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

using engine::StoreKind;
using Fault = PropertyContext::Fault;

class PropertyContextTest : public RecoveryTest {
 protected:
  Fault FaultOf(const Bytes& block, const ContextRules& rules, StoreKind kind) {
    engine_.storeKind = kind;
    return PropertyContext(ByteView(block), engine_, rules).GetFault();
  }

  Bytes Read(std::uint32_t bid, const ContextRules& rules) {
    Settle();
    const engine::BlockReader blocks(engine_);
    return ReadHeapBlock(engine_, engine_.blockEncoding, *blocks.FindBlock(bid), bid, rules).value();
  }

  const Bytes sound_ = HeapBlock({Value(0x0E08, 3, 77), Wide(0x3001, u"Name")});
};

TEST_F(PropertyContextTest, ThePlaceOfAnIdentifierIsThePageMapPlusTwoPlusItsUpperBits) {
  EXPECT_EQ(HeapPosition(100, 0x20), 104u);
  EXPECT_EQ(HeapPosition(100, 0x40), 106u);
}

TEST_F(PropertyContextTest, TheBlockIndexOfAnIdentifierIsNotMaskedOut) {
  const std::uint32_t intoTheSecondBlock = 0x10000 | HidOf(0);
  EXPECT_EQ(HeapPosition(100, intoTheSecondBlock), 100u + 2 + 0x1002);
  EXPECT_FALSE(
      RangeOf(ByteView(sound_), ReadHeapHeader(ByteView(sound_)).ibHnpm, intoTheSecondBlock, EmptyEnd::kAllowed));
}

TEST_F(PropertyContextTest, AUserRootInALaterBlockMakesTheBlockUnreadable) {
  const Bytes block = HeapBlock({}, {.userRoot = 0x00010020});
  EXPECT_EQ(FaultOf(block, kFolderRules, StoreKind::kPst), Fault::kRootRange);
  EXPECT_EQ(FaultOf(block, kMessageRules, StoreKind::kPst), Fault::kRootRange);
}

TEST_F(PropertyContextTest, AnIdentifierWhosePlaceEndsWithTheBlockIsTheLastThatCanBeRead) {
  Bytes block(10);
  PutNumber<std::uint16_t>(block, 6, 1);
  PutNumber<std::uint16_t>(block, 8, 3);
  EXPECT_TRUE(RangeOf(ByteView(block), 2, 0x20, EmptyEnd::kRefused));
  block.pop_back();
  EXPECT_FALSE(RangeOf(ByteView(block), 2, 0x20, EmptyEnd::kRefused));
}

TEST_F(PropertyContextTest, ARangeThatRunsBackwardsOrOutOfTheBlockIsNone) {
  Bytes block(10);
  PutNumber<std::uint16_t>(block, 6, 4);
  PutNumber<std::uint16_t>(block, 8, 3);
  EXPECT_FALSE(RangeOf(ByteView(block), 2, 0x20, EmptyEnd::kAllowed));
  PutNumber<std::uint16_t>(block, 8, 11);
  EXPECT_FALSE(RangeOf(ByteView(block), 2, 0x20, EmptyEnd::kAllowed));
  PutNumber<std::uint16_t>(block, 8, 10);
  EXPECT_TRUE(RangeOf(ByteView(block), 2, 0x20, EmptyEnd::kAllowed));
}

TEST_F(PropertyContextTest, AnAllocationThatEndsAtZeroIsRefusedByMessagesAndAttachmentsAlone) {
  const Bytes block(10);
  EXPECT_TRUE(RangeOf(ByteView(block), 2, 0x20, kFolderRules.emptyEnd));
  EXPECT_FALSE(RangeOf(ByteView(block), 2, 0x20, kMessageRules.emptyEnd));
  EXPECT_FALSE(RangeOf(ByteView(block), 2, 0x20, kAttachmentRules.emptyEnd));
}

TEST_F(PropertyContextTest, RecordsComeInStoredOrder) {
  engine_.storeKind = StoreKind::kPst;
  const PropertyContext context(ByteView(sound_), engine_, kMessageRules);
  ASSERT_EQ(context.GetFault(), Fault::kNone);
  ASSERT_EQ(context.Count(), 2u);
  EXPECT_EQ(context.Record(0).wPropId, 0x0E08);
  EXPECT_EQ(context.Record(0).wPropType, PropType::kInteger32);
  EXPECT_EQ(context.Record(0).dwValueHnid, 77u);
  EXPECT_EQ(context.Record(1).wPropId, 0x3001);
}

TEST_F(PropertyContextTest, AnEmptyRecordArrayHasNoRecordsAndNoFault) {
  const Bytes block = HeapBlock({});
  const PropertyContext context(ByteView(block), engine_, kMessageRules);
  EXPECT_EQ(context.GetFault(), Fault::kNone);
  EXPECT_EQ(context.Count(), 0u);
}

TEST_F(PropertyContextTest, AnIncompleteLastRecordDoesNotCount) {
  Bytes block = HeapBlock({Value(1, 3, 0), Value(2, 3, 0)});
  const std::uint16_t ibHnpm = ReadHeapHeader(ByteView(block)).ibHnpm;
  const auto range = RangeOf(ByteView(block), ibHnpm, HidOf(1), EmptyEnd::kAllowed);
  PutNumber(block, HeapPosition(ibHnpm, HidOf(1)) + 2, static_cast<std::uint16_t>(range->end - 1));
  EXPECT_EQ(PropertyContext(ByteView(block), engine_, kMessageRules).Count(), 1u);
}

TEST_F(PropertyContextTest, WhichSignaturesPassDependsOnTheStore) {
  for (const std::uint16_t signature : std::initializer_list<std::uint16_t>{0xBCEC, 0x7CEC, 0x8CEC, 0xECEC, 0x0101}) {
    const Bytes block = HeapBlock({}, {.signature = signature});
    const bool isHeap = signature != 0x0101;
    for (const ContextRules& rules : {kFolderRules, kMessageRules, kAttachmentRules, kNameMapRules}) {
      EXPECT_EQ(FaultOf(block, rules, StoreKind::kOst) != Fault::kSignature, isHeap) << signature;
      EXPECT_EQ(FaultOf(block, rules, StoreKind::kPst) != Fault::kSignature, signature == 0xBCEC) << signature;
    }
    EXPECT_EQ(FaultOf(block, kFolderRules, StoreKind::kPab), Fault::kNone) << "no test in other stores";
    EXPECT_EQ(FaultOf(block, kMessageRules, StoreKind::kPab), Fault::kNone) << "no test in other stores";
    EXPECT_EQ(FaultOf(block, kAttachmentRules, StoreKind::kPab), Fault::kTreeHeader);
    EXPECT_EQ(FaultOf(block, kNameMapRules, StoreKind::kPab), Fault::kSignature);
  }
}

TEST_F(PropertyContextTest, AFolderWantsATreeHeaderOfEightBytesAndNothingElseOfIt) {
  EXPECT_EQ(FaultOf(HeapBlock({}, {.marker = 0xFFFF}), kFolderRules, StoreKind::kPst), Fault::kNone);
  EXPECT_EQ(FaultOf(HeapBlock({}, {.rootLength = 10}), kFolderRules, StoreKind::kPst), Fault::kTreeHeader);
}

TEST_F(PropertyContextTest, AMessageWantsTheMarkerUnlessTheStoreIsNeitherOstNorPst) {
  const Bytes unmarked = HeapBlock({}, {.marker = 0x02B6});
  EXPECT_EQ(FaultOf(unmarked, kMessageRules, StoreKind::kPst), Fault::kTreeHeader);
  EXPECT_EQ(FaultOf(unmarked, kMessageRules, StoreKind::kOst), Fault::kTreeHeader);
  EXPECT_EQ(FaultOf(unmarked, kMessageRules, StoreKind::kNone), Fault::kNone);
  EXPECT_EQ(FaultOf(HeapBlock({}, {.rootLength = 10}), kMessageRules, StoreKind::kPst), Fault::kNone);
}

TEST_F(PropertyContextTest, AnAttachmentWantsTheMarkerAndAnOstOrPst) {
  EXPECT_EQ(FaultOf(HeapBlock({}, {.marker = 0x02B6}), kAttachmentRules, StoreKind::kPst), Fault::kTreeHeader);
  EXPECT_EQ(FaultOf(sound_, kAttachmentRules, StoreKind::kOst), Fault::kNone);
  EXPECT_EQ(FaultOf(sound_, kAttachmentRules, StoreKind::kNone), Fault::kTreeHeader);
}

TEST_F(PropertyContextTest, TheNameMapTakesTheAllocationBehindTheRootForItsRecords) {
  const Bytes block = HeapBlock({Value(1, 3, 0), Value(2, 3, 0)}, {.recordRoot = 0x00770020});
  EXPECT_EQ(FaultOf(block, kMessageRules, StoreKind::kPst), Fault::kRecordRange);
  EXPECT_EQ(PropertyContext(ByteView(block), engine_, kNameMapRules).Count(), 2u);
}

TEST_F(PropertyContextTest, ATableContextOfAPstIsRefusedWithoutAnAttemptAtInflation) {
  UseFormat(FORMAT_UNICODE_4K, StoreKind::kPst);
  const Bytes table = HeapBlock({}, {.signature = 0x7CEC});
  EXPECT_EQ(FaultOf(table, kMessageRules, StoreKind::kPst), Fault::kSignature);
  const Bytes packed = Packed(sound_);
  EXPECT_EQ(Read(AddBlock(8, packed), kMessageRules), packed);
}

TEST_F(PropertyContextTest, ABlockOfAnOstWithoutASignatureIsInflatedOnceInThePackedFormat) {
  UseFormat(FORMAT_UNICODE_4K, StoreKind::kOst);
  EXPECT_EQ(Read(AddBlock(8, Packed(sound_)), kFolderRules), sound_);
}

TEST_F(PropertyContextTest, ABlockOfTheOlderFormatsIsNeverInflated) {
  UseFormat(FORMAT_UNICODE, StoreKind::kOst);
  const Bytes packed = Packed(sound_);
  const Bytes read = Read(AddBlock(8, packed), kFolderRules);
  EXPECT_EQ(read, packed);
  EXPECT_EQ(FaultOf(read, kFolderRules, StoreKind::kOst), Fault::kSignature);
}

TEST_F(PropertyContextTest, ABlockThatShowsASignatureIsTakenAsPlain) {
  UseFormat(FORMAT_UNICODE_4K, StoreKind::kOst);
  Bytes block = Packed(Bytes(400));
  PutNumber<std::uint16_t>(block, 2, 0x8CEC);
  EXPECT_EQ(Read(AddBlock(8, block), kMessageRules), block);
}

TEST_F(PropertyContextTest, AnAttachmentIsInflatedWhateverTheStore) {
  UseFormat(FORMAT_UNICODE_4K, StoreKind::kPst);
  EXPECT_EQ(Read(AddBlock(8, Packed(sound_)), kAttachmentRules), sound_);
}

TEST_F(PropertyContextTest, ABlockThatIsNoPackedStreamStaysAsItWasRead) {
  UseFormat(FORMAT_UNICODE_4K, StoreKind::kOst);
  const Bytes plain = BytesOf("nothing that inflates");
  EXPECT_EQ(Read(AddBlock(8, plain), kMessageRules), plain);
}

TEST_F(PropertyContextTest, TheNameMapOfAnOstIsNotDecoded) {
  engine_.blockEncoding = CryptMethod::kPermute;
  const std::uint32_t bid = AddBlock(8, sound_);
  engine_.storeKind = StoreKind::kOst;
  EXPECT_EQ(Read(bid, kNameMapRules), sound_);
  EXPECT_NE(Read(bid, kMessageRules), sound_);
  engine_.storeKind = StoreKind::kPst;
  EXPECT_NE(Read(bid, kNameMapRules), sound_);
}

}  // namespace
}  // namespace velmora::recovery
