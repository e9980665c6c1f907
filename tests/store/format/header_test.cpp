#include "store/format/header.h"

#include <gtest/gtest.h>

#include "store/format/checksum.h"
#include "store/format/little_endian.h"
#include "store/support/failures.h"

namespace velmora {
namespace {

Header Sample() {
  Header header;
  header.bidNextP = Bid{0x77};
  header.bidNextB = Bid{0x1234};
  header.dwUnique = 9;
  header.rgnid.fill(0x400);
  header.rgnid[4] = 0x10007;
  header.root = {0x42400, 0x4400, 0x3000, {Bid{0x20}, 0x4A00}, {Bid{0x21}, 0x4C00}, AMapValid::kValid2};
  return header;
}

TEST(Header, PutsEveryFieldInItsPlace) {
  const auto bytes = Encode(Sample());
  EXPECT_EQ(bytes.size(), 564u);
  EXPECT_EQ(Load<std::uint32_t>(bytes, 0x000), 0x4E444221u);
  EXPECT_EQ(Load<std::uint16_t>(bytes, 0x008), 0x4D53);
  EXPECT_EQ(Load<std::uint16_t>(bytes, 0x00A), 23);
  EXPECT_EQ(Load<std::uint16_t>(bytes, 0x00C), 19);
  EXPECT_EQ(Load<std::uint16_t>(bytes, 0x00E), 0x0101);
  EXPECT_EQ(Load<std::uint64_t>(bytes, 0x020), 0x77u);
  EXPECT_EQ(Load<std::uint32_t>(bytes, 0x028), 9u);
  EXPECT_EQ(Load<std::uint32_t>(bytes, 0x02C), 0x400u);
  EXPECT_EQ(Load<std::uint32_t>(bytes, 0x02C + 16), 0x10007u);
  EXPECT_EQ(Load<std::uint64_t>(bytes, 0x0B8), 0x42400u);
  EXPECT_EQ(Load<std::uint64_t>(bytes, 0x0C0), 0x4400u);
  EXPECT_EQ(Load<std::uint64_t>(bytes, 0x0C8), 0x3000u);
  EXPECT_EQ(Load<std::uint64_t>(bytes, 0x0D0), 0u);
  EXPECT_EQ(Load<std::uint64_t>(bytes, 0x0D8), 0x20u);
  EXPECT_EQ(Load<std::uint64_t>(bytes, 0x0E0), 0x4A00u);
  EXPECT_EQ(Load<std::uint64_t>(bytes, 0x0E8), 0x21u);
  EXPECT_EQ(Load<std::uint64_t>(bytes, 0x0F0), 0x4C00u);
  EXPECT_EQ(Load<std::uint8_t>(bytes, 0x0F8), 2);
  for (std::size_t i = 0x100; i < 0x200; ++i) ASSERT_EQ(bytes[i], std::byte{0xFF});
  EXPECT_EQ(Load<std::uint16_t>(bytes, 0x200), 0x0180);
  EXPECT_EQ(Load<std::uint64_t>(bytes, 0x204), 0x1234u);
}

TEST(Header, HasBothChecksums) {
  const auto bytes = Encode(Sample());
  const auto all = std::span<const std::byte>(bytes);
  EXPECT_EQ(Load<std::uint32_t>(bytes, 0x004), WeakCrc(all.subspan(8, 471)));
  EXPECT_EQ(Load<std::uint32_t>(bytes, 0x20C), WeakCrc(all.subspan(8, 516)));
}

TEST(Header, ComesBack) {
  const Header header = DecodeHeader(Encode(Sample()));
  EXPECT_EQ(header.bidNextB, Bid{0x1234});
  EXPECT_EQ(header.bidNextP, Bid{0x77});
  EXPECT_EQ(header.dwUnique, 9u);
  EXPECT_EQ(header.rgnid, Sample().rgnid);
  EXPECT_EQ(header.root.brefBbt.ib, 0x4C00u);
  EXPECT_EQ(header.root.fAMapValid, AMapValid::kValid2);
  EXPECT_EQ(header.bCryptMethod, CryptMethod::kPermute);
}

std::optional<FailureKind> Refusal(std::size_t offset, int value) {
  auto bytes = Encode(Sample());
  bytes[offset] = static_cast<std::byte>(value);
  return test::FailureOf([&] { static_cast<void>(DecodeHeader(bytes)); });
}

TEST(Header, OfAnUnknownVersionIsNotSupported) {
  EXPECT_EQ(Refusal(0x00A, 13), FailureKind::kNotSupported);
  EXPECT_EQ(Refusal(0x00A, 99), FailureKind::kNotSupported);
}

TEST(Header, TellsTheGenerationByItsVersion) {
  EXPECT_EQ(GenerationOfVersion(14), &generations::kAnsi);
  EXPECT_EQ(GenerationOfVersion(15), &generations::kAnsi);
  EXPECT_EQ(GenerationOfVersion(21), &generations::kUnicode);
  EXPECT_EQ(GenerationOfVersion(23), &generations::kUnicode);
  EXPECT_EQ(GenerationOfVersion(36), &generations::kUnicode4k);
  EXPECT_EQ(GenerationOfVersion(99), nullptr);
}

TEST(Header, ThatChangedIsCorrupt) {
  EXPECT_EQ(Refusal(0x000, 0), FailureKind::kCorrupt);
  EXPECT_EQ(Refusal(0x0D8, 0x30), FailureKind::kCorrupt);
  EXPECT_EQ(Refusal(0x200, 0), FailureKind::kCorrupt);
}

TEST(Header, OfWhichOnlyTheFirstSectorReachedTheDiskIsRead) {
  auto bytes = Encode(Sample());
  Header next = Sample();
  next.bidNextB = Bid{Value(next.bidNextB) + 4};
  next.root.brefNbt.ib = 0x5000;
  const auto newer = Encode(next);
  std::copy_n(newer.begin(), 512, bytes.begin());
  EXPECT_EQ(DecodeHeader(bytes).root.brefNbt.ib, 0x5000u);
}

TEST(Header, OfAnEncodingWithoutAPublishedKeyIsNotSupported) {
  Header header = Sample();
  header.bCryptMethod = static_cast<CryptMethod>(0x10);
  EXPECT_EQ(test::FailureOf([&] { static_cast<void>(DecodeHeader(Encode(header))); }), FailureKind::kNotSupported);
}

}  // namespace
}  // namespace velmora
