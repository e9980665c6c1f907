#include "store/format/checksum.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

#include "store/support/test_files.h"

namespace velmora {
namespace {

std::uint32_t CrcOf(std::string_view text) { return WeakCrc(std::as_bytes(std::span(text))); }

/// The definition, one bit at a time.
std::uint32_t PlainCrc(std::span<const std::byte> bytes) {
  std::uint32_t crc = 0;
  for (const std::byte byte : bytes) {
    crc ^= std::to_integer<std::uint32_t>(byte);
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320u : 0);
  }
  return crc;
}

TEST(WeakCrc, HasItsKnownSums) {
  EXPECT_EQ(CrcOf(""), 0u);
  EXPECT_EQ(CrcOf("123456789"), 0x2DFD2D88u);
  EXPECT_EQ(WeakCrc(std::vector<std::byte>(496)), 0u);
  EXPECT_EQ(WeakCrc(std::vector<std::byte>(496, std::byte{0xFF})), 0xA1AAE76Eu);
  EXPECT_EQ(CrcOf("password"), 0x50E099BCu);
  EXPECT_EQ(CrcOf("Pass"), 0x4F06A406u);
}

TEST(WeakCrc, OfEveryLengthAndPlaceIsThatOfTheDefinition) {
  const std::vector<std::byte> bytes = test::Noise(200);
  for (std::size_t start = 0; start < 17; ++start) {
    for (std::size_t size = 0; start + size <= bytes.size(); ++size) {
      const auto part = std::span(bytes).subspan(start, size);
      ASSERT_EQ(WeakCrc(part), PlainCrc(part)) << start << " " << size;
    }
  }
}

TEST(SingleWrongBit, IsFoundInEachPlace) {
  std::vector<std::byte> bytes = test::Noise(496);
  const std::uint32_t sum = WeakCrc(bytes);
  for (std::size_t bit = 0; bit < bytes.size() * 8; ++bit) {
    const auto flip = [&] { bytes[bit / 8] ^= std::byte{1} << bit % 8; };
    flip();
    ASSERT_EQ(SingleWrongBit(sum ^ WeakCrc(bytes), bytes.size()), bit);
    flip();
  }
}

TEST(SingleWrongBit, IsNotWhatSeveralAreTakenFor) {
  std::vector<std::byte> bytes = test::Noise(496);
  const std::uint32_t sum = WeakCrc(bytes);
  EXPECT_EQ(SingleWrongBit(0, bytes.size()), std::nullopt) << "nothing is wrong";
  for (std::size_t at = 1; at < bytes.size(); ++at) {
    std::vector<std::byte> wrong = bytes;
    wrong[0] ^= std::byte{1};
    wrong[at] ^= std::byte{0x10};
    ASSERT_EQ(SingleWrongBit(sum ^ WeakCrc(wrong), wrong.size()), std::nullopt) << at;
  }
}

}  // namespace
}  // namespace velmora
