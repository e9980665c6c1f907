#include "engine/block_reader.h"

#include <zlib.h>

#include "engine/run_fixture.h"

namespace velmora::engine {
namespace {

class BlockReaderTest : public RunTest {
 protected:
  /// A block of a heap that begins with those four bytes, encoded for the id, as the whole source.
  void AttachHead(forge::Encoding encoding, std::uint32_t id, std::uint16_t signature = 0xBCEC) {
    forge::Bytes block(64);
    forge::Put(block, 2, signature, 2);
    forge::Encode(encoding, id, block);
    Attach(block);
  }

  void Index(const std::vector<BlockRecord>& records) {
    state_.index.Add(records);
    state_.index.Settle(state_, run_);
  }

  BlockReader reader_{state_};
};

std::vector<std::byte> Deflated(std::span<const std::byte> content) {
  uLongf length = compressBound(content.size());
  std::vector<std::byte> packed(length);
  EXPECT_EQ(compress(reinterpret_cast<Bytef*>(packed.data()), &length, reinterpret_cast<const Bytef*>(content.data()),
                     content.size()),
            Z_OK);
  packed.resize(length);
  return packed;
}

TEST_F(BlockReaderTest, AnIdWithALowBitThatTheIndexLacksIsFoundAtTheNextLowerId) {
  Attach(std::vector<std::byte>(1000));
  Index({{4, 10, 64}, {9, 10, 128}});
  EXPECT_FALSE(reader_.FindBlock(5)) << "nothing is tried in its place";
  EXPECT_EQ(reader_.FindBlockOrLower(5), (BlockRecord{4, 10, 64}));
  EXPECT_EQ(reader_.FindBlockOrLower(9), (BlockRecord{9, 10, 128}));
  EXPECT_FALSE(reader_.FindBlockOrLower(8));
}

TEST_F(BlockReaderTest, Id0IsNoBlock) {
  Attach(std::vector<std::byte>(1000));
  Index({{0, 10, 64}, {0xFFFFFFFF, 10, 128}});
  EXPECT_FALSE(reader_.FindBlock(0));
  EXPECT_FALSE(reader_.FindBlockOrLower(0));
}

TEST_F(BlockReaderTest, AReadPastTheEndLeavesZerosBehindTheData) {
  Attach({std::byte{1}, std::byte{2}, std::byte{3}});
  std::uint32_t delivered = 77;
  const auto bytes = reader_.ReadChunk(1, 5, &delivered);
  ASSERT_TRUE(bytes);
  EXPECT_EQ(*bytes, (Bytes{std::byte{2}, std::byte{3}, std::byte{0}, std::byte{0}, std::byte{0}}));
  EXPECT_EQ(delivered, 2u);
  EXPECT_EQ(*reader_.ReadChunk(50, 2, &delivered), Bytes(2));
  EXPECT_EQ(delivered, 0u);
}

TEST_F(BlockReaderTest, AnOffsetThatNoFileHasFailsTheRead) {
  Attach(std::vector<std::byte>(10));
  EXPECT_FALSE(reader_.ReadChunk(0xFFFFFFFFFFFFFFF0, 5));
}

TEST_F(BlockReaderTest, AFailedReadGivesNothingAndIsRemembered) {
  class Broken : public platform::ByteSource {
   public:
    std::uint64_t Size() const override { return 1000; }
    platform::Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte>) const override {
      return tl::unexpected(platform::Failure{platform::FailureKind::kInputOutput, "source", offset, "bad sector"});
    }
  };
  state_.source = std::make_unique<Broken>();
  EXPECT_FALSE(reader_.ReadChunk(64, 5));
  EXPECT_FALSE(reader_.DetectEncoding(4, 128, 64));
  ASSERT_TRUE(state_.readFailure);
  EXPECT_EQ(state_.readFailure->offset, 64u) << "the first one";
}

TEST_F(BlockReaderTest, EachEncodingIsDetectedByTheHeapSignature) {
  for (const auto encoding : {forge::Encoding::kNone, forge::Encoding::kPermute, forge::Encoding::kCyclic}) {
    AttachHead(encoding, 0x1234);
    EXPECT_TRUE(reader_.DetectEncoding(0x1234, 0, 64));
    EXPECT_EQ(static_cast<int>(state_.blockEncoding), static_cast<int>(encoding));
  }
  EXPECT_TRUE(state_.encodingUnknown) << "the caller's to clear";
}

TEST_F(BlockReaderTest, ABlockThatShowsNoSignatureLeavesTheEncodingUnknown) {
  AttachHead(forge::Encoding::kCyclic, 0x1234);
  state_.blockEncoding = CryptMethod::kPermute;
  EXPECT_FALSE(reader_.DetectEncoding(0x5678, 0, 64)) << "the wrong key";
  EXPECT_EQ(state_.blockEncoding, CryptMethod::kPermute);
  EXPECT_TRUE(reader_.DetectEncoding(0x1234, 0, 64)) << "and the next block is tried";
}

TEST_F(BlockReaderTest, TheSignatureOfATableCountsInAnOfflineStoreAlone) {
  for (const std::uint16_t signature : std::initializer_list<std::uint16_t>{0x7CEC, 0x8CEC, 0xECEC}) {
    AttachHead(forge::Encoding::kPermute, 4, signature);
    EXPECT_FALSE(reader_.DetectEncoding(4, 0, 64));
    state_.storeKind = StoreKind::kOst;
    EXPECT_TRUE(reader_.DetectEncoding(4, 0, 64));
  }
  AttachHead(forge::Encoding::kNone, 4);
  state_.storeKind = StoreKind::kNone;
  EXPECT_FALSE(reader_.DetectEncoding(4, 0, 64));
}

TEST_F(BlockReaderTest, ABlockOfFewerThanFourBytesIsDetectedWithoutReadingPastIt) {
  AttachHead(forge::Encoding::kNone, 4);
  EXPECT_FALSE(reader_.DetectEncoding(4, 0, 3)) << "half of the signature lies behind the block";
}

TEST_F(BlockReaderTest, TheAcceptedSignaturesGoByTheKindOfStore) {
  for (const std::uint16_t word : std::initializer_list<std::uint16_t>{0xBCEC, 0x7CEC, 0x8CEC, 0xECEC}) {
    EXPECT_TRUE(IsHeapSignature(word));
    state_.storeKind = StoreKind::kOst;
    EXPECT_TRUE(reader_.AcceptsSignature(word, false));
    state_.storeKind = StoreKind::kPst;
    EXPECT_EQ(reader_.AcceptsSignature(word, true), word == 0xBCEC);
    state_.storeKind = StoreKind::kPab;
    EXPECT_TRUE(reader_.AcceptsSignature(word, true));
    EXPECT_FALSE(reader_.AcceptsSignature(word, false));
  }
  EXPECT_FALSE(IsHeapSignature(0xB5EC));
}

TEST_F(BlockReaderTest, BlocksAreDecodedByTheEncodingOfTheRun) {
  const forge::Bytes plain = forge::Noise(300, 5);
  for (const auto encoding : {forge::Encoding::kNone, forge::Encoding::kPermute, forge::Encoding::kCyclic}) {
    forge::Bytes block = plain;
    forge::Encode(encoding, 0x98765432, block);
    state_.blockEncoding = static_cast<CryptMethod>(encoding);
    reader_.DecodeBlock(0x98765432, block);
    EXPECT_EQ(block, plain);
  }
}

TEST_F(BlockReaderTest, InACyclicStoreTheSameBytesDecodeDifferentlyForDifferentIds) {
  state_.blockEncoding = CryptMethod::kCyclic;
  forge::Bytes one(16), other(16);
  reader_.DecodeBlock(4, one);
  reader_.DecodeBlock(8, other);
  EXPECT_NE(one, other);
}

TEST_F(BlockReaderTest, OnlyThe4kFormatInflates) {
  const auto packed = Deflated(forge::Bytes(5000, std::byte{7}));
  for (const FormatId format : {FORMAT_ANSI, FORMAT_UNICODE}) {
    state_.layout = LayoutOf(format);
    Bytes bytes = packed;
    EXPECT_EQ(reader_.InflateBlock(bytes), packed.size());
    EXPECT_EQ(bytes, packed);
  }
  state_.layout = LayoutOf(FORMAT_UNICODE_4K);
  Bytes bytes = packed;
  EXPECT_EQ(reader_.InflateBlock(bytes), 5000u);
  EXPECT_EQ(bytes, Bytes(5000, std::byte{7}));
}

TEST_F(BlockReaderTest, ABlockThatIsNoStreamInflatesToNothing) {
  state_.layout = LayoutOf(FORMAT_UNICODE_4K);
  Bytes bytes = forge::Noise(500, 9);
  EXPECT_EQ(reader_.InflateBlock(bytes), 0u);
  EXPECT_TRUE(bytes.empty());
  EXPECT_EQ(reader_.InflateBlock(bytes), 0u) << "nor does an empty one";
}

TEST_F(BlockReaderTest, AStreamThatIsCutOffGivesWhatItHas) {
  state_.layout = LayoutOf(FORMAT_UNICODE_4K);
  const auto content = forge::Noise(20000, 3);
  Bytes bytes = Deflated(content);
  bytes.resize(bytes.size() / 2);
  const std::uint32_t size = reader_.InflateBlock(bytes);
  EXPECT_GT(size, 0u);
  EXPECT_LT(size, content.size());
  EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), content.begin()));
}

TEST_F(BlockReaderTest, WhatFollowsTheStreamDoesNoHarm) {
  state_.layout = LayoutOf(FORMAT_UNICODE_4K);
  Bytes bytes = Deflated(forge::Bytes(100, std::byte{7}));
  bytes.resize(bytes.size() + 1000);
  EXPECT_EQ(reader_.InflateBlock(bytes), 100u);
}

TEST_F(BlockReaderTest, AStreamInflatesTo200000BytesAtMost) {
  state_.layout = LayoutOf(FORMAT_UNICODE_4K);
  Bytes bytes = Deflated(forge::Bytes(1'000'000, std::byte{7}));
  EXPECT_EQ(reader_.InflateBlock(bytes), 200'000u);
  EXPECT_EQ(bytes, Bytes(200'000, std::byte{7}));
}

TEST_F(BlockReaderTest, AStreamIsReadUpTo100000BytesAtMost) {
  state_.layout = LayoutOf(FORMAT_UNICODE_4K);
  const auto content = forge::Noise(150'000, 4);
  Bytes bytes = Deflated(content);
  ASSERT_GT(bytes.size(), 140'000u);
  const std::uint32_t size = reader_.InflateBlock(bytes);
  EXPECT_GT(size, 90'000u);
  EXPECT_LE(size, 100'000u);
}

}  // namespace
}  // namespace velmora::engine
