#include "engine/heap_evidence.h"

#include "engine/run_fixture.h"

namespace velmora::engine {
namespace {

class HeapEvidenceTest : public RunTest {
 protected:
  /// A block of a heap that begins with those four bytes, encoded for the id, as the whole source.
  void AttachHead(forge::Encoding encoding, std::uint32_t id, std::uint16_t signature = 0xBCEC) {
    forge::Bytes block(64);
    forge::Put(block, 2, signature, 2);
    forge::Encode(encoding, id, block);
    Attach(block);
  }

  std::optional<CryptMethod> Detect(std::uint32_t id, std::uint32_t size = 64) const {
    return DetectEncoding(Found().source, Found().storeKind, {id, size, 0});
  }
};

TEST_F(HeapEvidenceTest, EachEncodingIsDetectedByTheHeapSignature) {
  for (const auto encoding : {forge::Encoding::kNone, forge::Encoding::kPermute, forge::Encoding::kCyclic}) {
    AttachHead(encoding, 0x1234);
    EXPECT_EQ(Detect(0x1234), static_cast<CryptMethod>(encoding));
  }
}

TEST_F(HeapEvidenceTest, ABlockThatShowsNoSignatureTellsNoEncoding) {
  AttachHead(forge::Encoding::kCyclic, 0x1234);
  EXPECT_FALSE(Detect(0x5678)) << "the wrong key";
  EXPECT_EQ(Detect(0x1234), CryptMethod::kCyclic);
}

TEST_F(HeapEvidenceTest, TheSignatureOfATableCountsInAnOfflineStoreAlone) {
  for (const std::uint16_t signature : std::initializer_list<std::uint16_t>{0x7CEC, 0x8CEC, 0xECEC}) {
    AttachHead(forge::Encoding::kPermute, 4, signature);
    EXPECT_FALSE(Detect(4));
    Found().storeKind = StoreKind::kOst;
    EXPECT_TRUE(Detect(4));
  }
  AttachHead(forge::Encoding::kNone, 4);
  Found().storeKind = StoreKind::kNone;
  EXPECT_FALSE(Detect(4));
}

TEST_F(HeapEvidenceTest, ABlockOfFewerThanFourBytesIsDetectedWithoutReadingPastIt) {
  AttachHead(forge::Encoding::kNone, 4);
  EXPECT_FALSE(Detect(4, 3)) << "half of the signature lies behind the block";
}

TEST_F(HeapEvidenceTest, TheAcceptedSignaturesGoByTheKindOfStore) {
  for (const std::uint16_t word : std::initializer_list<std::uint16_t>{0xBCEC, 0x7CEC, 0x8CEC, 0xECEC}) {
    EXPECT_TRUE(IsHeapSignature(word));
    EXPECT_TRUE(AcceptsSignature(StoreKind::kOst, word, false));
    EXPECT_EQ(AcceptsSignature(StoreKind::kPst, word, true), word == 0xBCEC);
    EXPECT_TRUE(AcceptsSignature(StoreKind::kPab, word, true));
    EXPECT_FALSE(AcceptsSignature(StoreKind::kPab, word, false));
  }
  EXPECT_FALSE(IsHeapSignature(0xB5EC));
}

}  // namespace
}  // namespace velmora::engine
