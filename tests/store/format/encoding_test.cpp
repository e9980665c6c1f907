#include "store/format/encoding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <vector>

#include "store/format/checksum.h"
#include "store/support/test_files.h"

namespace velmora {
namespace {

std::vector<std::byte> Encoded(CryptMethod method, Bid bid, std::span<const std::byte> plain) {
  std::vector<std::byte> out(plain.size());
  EncodeBlock(method, bid, plain, out);
  return out;
}

std::vector<std::byte> CountingBytes(std::size_t count) {
  std::vector<std::byte> bytes(count);
  for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::byte>(i);
  return bytes;
}

TEST(Encoding, PermutesByTheTableOfTheFormat) {
  EXPECT_EQ(
      Encoded(CryptMethod::kPermute, Bid{4}, CountingBytes(16)),
      test::Bytes({0x41, 0x36, 0x13, 0x62, 0xa8, 0x21, 0x6e, 0xbb, 0xf4, 0x16, 0xcc, 0x04, 0x7f, 0x64, 0xe8, 0x5d}));
  EXPECT_EQ(WeakCrc(Encoded(CryptMethod::kPermute, Bid{4}, CountingBytes(256))), 0x82A02835u);
  std::vector<std::byte> inverse = CountingBytes(256);
  DecodeBlock(CryptMethod::kPermute, Bid{4}, inverse);
  EXPECT_EQ(WeakCrc(inverse), 0x6D4E07FEu);
}

TEST(Encoding, CyclesFromTheBlocksOwnId) {
  EXPECT_EQ(
      Encoded(CryptMethod::kCyclic, Bid{0x1234}, std::vector<std::byte>(16)),
      test::Bytes({0xbb, 0xcf, 0x3b, 0x4f, 0x8b, 0x7c, 0x35, 0x5d, 0x97, 0x44, 0x9d, 0xa7, 0xf2, 0x6c, 0xec, 0xcd}));
  EXPECT_EQ(
      Encoded(CryptMethod::kCyclic, Bid{0x00012344}, CountingBytes(16)),
      test::Bytes({0x2e, 0x10, 0xcd, 0x8d, 0x5b, 0x98, 0xc0, 0xcd, 0xf3, 0xc5, 0x5b, 0x0a, 0xe8, 0xb8, 0xcd, 0xed}));
}

TEST(Encoding, CyclesByTheLowHalfOfTheIdAlone) {
  const std::vector<std::byte> plain = test::Noise(100);
  EXPECT_EQ(Encoded(CryptMethod::kCyclic, Bid{0x700012344}, plain), Encoded(CryptMethod::kCyclic, Bid{0x12344}, plain));
}

TEST(Encoding, TheKeysOfALongBlockWrapAround) {
  // The key word runs through its end; twice the cyclic encoding is none.
  const std::vector<std::byte> plain = test::Noise(300);
  std::vector<std::byte> bytes = plain;
  DecodeBlock(CryptMethod::kCyclic, Bid{0xFFF0}, bytes);
  EXPECT_NE(bytes, plain);
  DecodeBlock(CryptMethod::kCyclic, Bid{0xFFF0}, bytes);
  EXPECT_EQ(bytes, plain);
}

TEST(Encoding, CyclesManyBytesAsOneByOne) {
  for (const std::uint64_t id : {0x1234U, 0x12F1U, 0xFFF0U, 0x00FFFEF4U}) {
    const std::vector<std::byte> plain = test::Noise(1000);
    std::vector<std::byte> expected = plain;
    for (std::size_t i = 0; i < plain.size(); ++i) {
      DecodeBlock(CryptMethod::kCyclic, Bid{id}, std::span(expected).subspan(i, 1), i);
    }
    for (std::size_t length = 0; length <= plain.size(); length += length < 600 ? 1 : 57) {
      std::vector<std::byte> bytes(plain.begin(), plain.begin() + static_cast<std::ptrdiff_t>(length));
      DecodeBlock(CryptMethod::kCyclic, Bid{id}, bytes);
      ASSERT_TRUE(std::equal(bytes.begin(), bytes.end(), expected.begin())) << length << " bytes of block " << id;
    }
  }
}

TEST(Encoding, APartOfABlockComesBackByItself) {
  const std::vector<std::byte> plain = CountingBytes(70000);
  for (const CryptMethod method : {CryptMethod::kNone, CryptMethod::kPermute, CryptMethod::kCyclic}) {
    const std::vector<std::byte> encoded = Encoded(method, Bid{0x00015678}, plain);
    std::vector<std::byte> part(encoded.begin() + 66000, encoded.begin() + 66100);
    DecodeBlock(method, Bid{0x00015678}, part, 66000);
    EXPECT_TRUE(std::equal(part.begin(), part.end(), plain.begin() + 66000)) << static_cast<int>(method);
  }
}

TEST(Encoding, ComesBackByEveryMethod) {
  const std::vector<std::byte> plain = test::Noise(8176);
  for (const CryptMethod method : {CryptMethod::kNone, CryptMethod::kPermute, CryptMethod::kCyclic}) {
    std::vector<std::byte> bytes = Encoded(method, Bid{0xABCDEF4}, plain);
    EXPECT_EQ(bytes == plain, method == CryptMethod::kNone);
    DecodeBlock(method, Bid{0xABCDEF4}, bytes);
    EXPECT_EQ(bytes, plain);
  }
}

}  // namespace
}  // namespace velmora
