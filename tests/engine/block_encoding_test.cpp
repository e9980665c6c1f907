#include "engine/block_encoding.h"

#include <gtest/gtest.h>

#include <string>

#include "forge/bytes.h"

namespace velmora::engine {
namespace {

forge::Bytes FromHex(const std::string& hex) {
  forge::Bytes bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
    bytes.push_back(static_cast<std::byte>(std::stoi(hex.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

const forge::Bytes kCounting = FromHex("000102030405060708090a0b0c0d0e0f");

TEST(BlockEncodingTest, UndoesThePermutation) {
  forge::Bytes bytes = FromHex("41361362a8216ebbf416cc047f64e85d");
  DecodePermute(bytes);
  EXPECT_EQ(bytes, kCounting);
}

TEST(BlockEncodingTest, UndoesTheCyclicEncodingByTheBlocksOwnId) {
  forge::Bytes bytes = FromHex("2e10cd8d5b98c0cdf3c55b0ae8b8cded");
  DecodeCyclic(0x00012344, bytes);
  EXPECT_EQ(bytes, kCounting);
  bytes = FromHex("bbcf3b4f8b7c355d97449da7f26ceccd");
  DecodeCyclic(0x1234, bytes);
  EXPECT_EQ(bytes, forge::Bytes(16));
}

TEST(BlockEncodingTest, TheKeysOfALongBlockWrapAround) {
  // The key word runs through its end; twice the cyclic encoding is none.
  const forge::Bytes plain = forge::Noise(300, 1);
  forge::Bytes bytes = plain;
  DecodeCyclic(0xFFF0, bytes);
  EXPECT_NE(bytes, plain);
  DecodeCyclic(0xFFF0, bytes);
  EXPECT_EQ(bytes, plain);
}

}  // namespace
}  // namespace velmora::engine
