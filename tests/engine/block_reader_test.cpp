#include "engine/block_reader.h"

#include <zlib.h>

#include "engine/run_fixture.h"

namespace velmora::engine {
namespace {

class BlockReaderTest : public RunTest {
 protected:
  BlockReader reader_{Found()};
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
  EXPECT_EQ(reader_.ReadChunk(1, 5), (Bytes{std::byte{2}, std::byte{3}, std::byte{0}, std::byte{0}, std::byte{0}}));
  EXPECT_EQ(reader_.ReadChunk(50, 2), Bytes(2));
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
  Found().source.Open(std::make_unique<Broken>());
  EXPECT_FALSE(reader_.ReadChunk(64, 5));
  EXPECT_FALSE(DetectEncoding(Found().source, StoreKind::kPst, {4, 64, 128}));
  ASSERT_TRUE(Found().source.FirstFailure());
  EXPECT_EQ(Found().source.FirstFailure()->offset, 64u) << "the first one";
}

TEST_F(BlockReaderTest, BlocksAreDecodedByTheEncodingOfTheRun) {
  const forge::Bytes plain = forge::Noise(300, 5);
  for (const auto encoding : {forge::Encoding::kNone, forge::Encoding::kPermute, forge::Encoding::kCyclic}) {
    forge::Bytes block = plain;
    forge::Encode(encoding, 0x98765432, block);
    Found().blockEncoding = static_cast<CryptMethod>(encoding);
    reader_.DecodeBlock(0x98765432, block);
    EXPECT_EQ(block, plain);
  }
}

TEST_F(BlockReaderTest, InACyclicStoreTheSameBytesDecodeDifferentlyForDifferentIds) {
  Found().blockEncoding = CryptMethod::kCyclic;
  forge::Bytes one(16), other(16);
  reader_.DecodeBlock(4, one);
  reader_.DecodeBlock(8, other);
  EXPECT_NE(one, other);
}

TEST_F(BlockReaderTest, OnlyThe4kFormatInflates) {
  const auto packed = Deflated(forge::Bytes(5000, std::byte{7}));
  for (const FormatId format : {FORMAT_ANSI, FORMAT_UNICODE}) {
    Found().layout = LayoutOf(format);
    Bytes bytes = packed;
    EXPECT_EQ(reader_.InflateBlock(bytes), packed.size());
    EXPECT_EQ(bytes, packed);
  }
  Found().layout = LayoutOf(FORMAT_UNICODE_4K);
  Bytes bytes = packed;
  EXPECT_EQ(reader_.InflateBlock(bytes), 5000u);
  EXPECT_EQ(bytes, Bytes(5000, std::byte{7}));
}

TEST_F(BlockReaderTest, ABlockThatIsNoStreamInflatesToNothing) {
  Found().layout = LayoutOf(FORMAT_UNICODE_4K);
  Bytes bytes = forge::Noise(500, 9);
  EXPECT_EQ(reader_.InflateBlock(bytes), 0u);
  EXPECT_TRUE(bytes.empty());
  EXPECT_EQ(reader_.InflateBlock(bytes), 0u) << "nor does an empty one";
}

TEST_F(BlockReaderTest, AStreamThatIsCutOffGivesWhatItHas) {
  Found().layout = LayoutOf(FORMAT_UNICODE_4K);
  const auto content = forge::Noise(20000, 3);
  Bytes bytes = Deflated(content);
  bytes.resize(bytes.size() / 2);
  const std::uint32_t size = reader_.InflateBlock(bytes);
  EXPECT_GT(size, 0u);
  EXPECT_LT(size, content.size());
  EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), content.begin()));
}

TEST_F(BlockReaderTest, WhatFollowsTheStreamDoesNoHarm) {
  Found().layout = LayoutOf(FORMAT_UNICODE_4K);
  Bytes bytes = Deflated(forge::Bytes(100, std::byte{7}));
  bytes.resize(bytes.size() + 1000);
  EXPECT_EQ(reader_.InflateBlock(bytes), 100u);
}

TEST_F(BlockReaderTest, AStreamInflatesTo200000BytesAtMost) {
  Found().layout = LayoutOf(FORMAT_UNICODE_4K);
  Bytes bytes = Deflated(forge::Bytes(1'000'000, std::byte{7}));
  EXPECT_EQ(reader_.InflateBlock(bytes), 200'000u);
  EXPECT_EQ(bytes, Bytes(200'000, std::byte{7}));
}

TEST_F(BlockReaderTest, AStreamIsReadUpTo100000BytesAtMost) {
  Found().layout = LayoutOf(FORMAT_UNICODE_4K);
  const auto content = forge::Noise(150'000, 4);
  Bytes bytes = Deflated(content);
  ASSERT_GT(bytes.size(), 140'000u);
  const std::uint32_t size = reader_.InflateBlock(bytes);
  EXPECT_GT(size, 90'000u);
  EXPECT_LE(size, 100'000u);
}

}  // namespace
}  // namespace velmora::engine
