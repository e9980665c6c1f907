// The figures that other programs of this format agree on.
#include "forge/encoding.h"

#include <gtest/gtest.h>

#include "forge/bytes.h"
#include "forge/checksum.h"

namespace velmora::forge {
namespace {

Bytes FromHex(std::string_view hex) {
  Bytes bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2)
    Append(bytes, std::stoul(std::string(hex.substr(i, 2)), nullptr, 16), 1);
  return bytes;
}

Bytes Counting(std::size_t count) {
  Bytes bytes;
  for (std::size_t i = 0; i < count; ++i) Append(bytes, i, 1);
  return bytes;
}

TEST(ForgeChecksum, AgreesWithPublishedValues) {
  EXPECT_EQ(Checksum({}), 0U);
  EXPECT_EQ(Checksum(ToBytes("123456789")), 0x2DFD2D88U);
  EXPECT_EQ(Checksum(Bytes(496, std::byte{0xFF})), 0xA1AAE76EU);
}

TEST(ForgeSignature, MixesOffsetAndId) {
  EXPECT_EQ(Signature(0x12345678, 0x24), 0x4468);
  EXPECT_EQ(Signature(0x4200, 0x1AB), 0x43AB);
  EXPECT_EQ(Signature(0x100004200, 0x1AB), 0x43AB) << "the upper halves do not count";
}

TEST(ForgeEncoding, PermutesAsPublished) {
  Bytes data = Counting(16);
  Encode(Encoding::kPermute, 0, data);
  EXPECT_EQ(data, FromHex("41361362a8216ebbf416cc047f64e85d"));
}

TEST(ForgeEncoding, CyclesAsPublished) {
  Bytes zeros(16);
  Encode(Encoding::kCyclic, 0x1234, zeros);
  EXPECT_EQ(zeros, FromHex("bbcf3b4f8b7c355d97449da7f26ceccd"));
  Bytes data = Counting(16);
  Encode(Encoding::kCyclic, 0x00012344, data);
  EXPECT_EQ(data, FromHex("2e10cd8d5b98c0cdf3c55b0ae8b8cded"));
}

TEST(ForgeEncoding, DecodingGivesTheDataBack) {
  for (const Encoding encoding : {Encoding::kNone, Encoding::kPermute, Encoding::kCyclic}) {
    Bytes data = Counting(256);
    Encode(encoding, 0xFFFE, data);
    Decode(encoding, 0xFFFE, data);
    EXPECT_EQ(data, Counting(256));
  }
}

}  // namespace
}  // namespace velmora::forge
