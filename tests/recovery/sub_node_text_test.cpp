#include "recovery/sub_node_text.h"

#include "recovery/heap_text.h"
#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

using engine::StoreKind;

class SubNodeTextTest : public RecoveryTest {
 protected:
  text::Text Read(PropType type, std::uint32_t value) {
    Settle();
    SubNodeText texts({engine_, *state_.codePage, allowance_}, subNodes_, ByteView(messageBlock_));
    return texts.ReadSubnodeString(type, value);
  }

  SubNodeList subNodes_ = {{0x671, 0, 0}, {0x803F, 8, 0}};
  Bytes messageBlock_ = HeapBlock({});
  engine::ContentAllowance allowance_{1 << 20, false, 100};
};

TEST_F(SubNodeTextTest, TheTextIsThatOfTheSubNodeWhoseIdIsTheValue) {
  AddBlock(8, BytesOf(u"a long list of names"));
  EXPECT_EQ(Read(PropType::kString, 0x803F), u"a long list of names");
  EXPECT_EQ(Read(PropType::kString, 0x805F), u"");
}

TEST_F(SubNodeTextTest, EightBitTextGoesByTheCodePage) {
  AddBlock(8, BytesOf("caf\xE9"));
  EXPECT_EQ(Read(PropType::kString8, 0x803F), u"café");
}

TEST_F(SubNodeTextTest, OtherTypesGiveNothing) {
  AddBlock(8, BytesOf(u"text"));
  EXPECT_EQ(Read(PropType::kBinary, 0x803F), u"");
}

TEST_F(SubNodeTextTest, DoublePercentSignsBecomeOneAndOthersStay) {
  AddBlock(8, BytesOf(u"100%% of %s, %%%d, 5%"));
  EXPECT_EQ(Read(PropType::kString, 0x803F), u"100% of %s, %%d, 5%");
}

TEST_F(SubNodeTextTest, PercentSignsOfEightBitTextStay) {
  AddBlock(8, BytesOf("100%%"));
  EXPECT_EQ(Read(PropType::kString8, 0x803F), u"100%%");
}

TEST_F(SubNodeTextTest, ItsBlockIsFoundThroughTheNextLowerIdToo) {
  subNodes_[1].bidData = 9;
  AddBlock(8, BytesOf(u"text"));
  EXPECT_EQ(Read(PropType::kString, 0x803F), u"text");
}

TEST_F(SubNodeTextTest, ItIsDecodedByTheIdOfTheRecordThatWasFound) {
  subNodes_[1].bidData = 9;
  engine_.blockEncoding = CryptMethod::kCyclic;
  Bytes decoded = BytesOf(u"text");
  Settle();
  engine::BlockReader(engine_).DecodeBlock(8, decoded);
  AddBlock(8, BytesOf(u"text"));
  EXPECT_EQ(Read(PropType::kString, 0x803F), CopyHeapText(ByteView(decoded), true, *state_.codePage));
}

TEST_F(SubNodeTextTest, APackedTextIsNotInflatedBecauseTheMessagesOwnBlockIsLookedAt) {
  UseFormat(FORMAT_UNICODE_4K, StoreKind::kOst);
  const Bytes packed = Packed(BytesOf(u"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"));
  AddBlock(8, packed);
  EXPECT_EQ(Read(PropType::kString, 0x803F), WideText(ByteView(packed)));

  messageBlock_ = HeapBlock({}, {.signature = 0x1234});
  EXPECT_EQ(Read(PropType::kString, 0x803F), u"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa");
}

}  // namespace
}  // namespace velmora::recovery
