#include "store/format/substitution.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

namespace velmora {
namespace {

/// Each byte gets another one, and none of them is an arithmetic of it.
SubstitutionTable ShuffledTable() {
  SubstitutionTable table{};
  std::iota(table.begin(), table.end(), std::uint8_t{0});
  std::shuffle(table.begin(), table.end(), std::mt19937(20));
  return table;
}

class SubstitutionTest : public testing::Test {
 protected:
  std::vector<std::byte> RandomBytes(std::size_t size) {
    std::vector<std::byte> bytes(size);
    std::ranges::generate(bytes, [&] { return static_cast<std::byte>(random_() & 0xFF); });
    return bytes;
  }
  std::vector<std::byte> Expected(std::span<const std::byte> from) const {
    std::vector<std::byte> to;
    for (const std::byte byte : from) to.push_back(static_cast<std::byte>(table_.at(std::to_integer<unsigned>(byte))));
    return to;
  }

  const SubstitutionTable table_ = ShuffledTable();
  std::mt19937 random_{21};
};

TEST_F(SubstitutionTest, EveryWayGivesTheTablesByteForEachLengthAndPlace) {
  for (const Substitution substitute : Substitutions()) {
    for (std::size_t size = 0; size < 200; ++size) {
      const std::size_t place = size % 7;
      const auto from = RandomBytes(size + place);
      const auto source = std::span(from).subspan(place);
      std::vector<std::byte> to(size + 2, std::byte{0x5A});
      substitute(table_, source, std::span(to).subspan(1, size));
      EXPECT_EQ(to.front(), std::byte{0x5A});
      EXPECT_EQ(to.back(), std::byte{0x5A});
      EXPECT_TRUE(std::ranges::equal(std::span(to).subspan(1, size), Expected(source))) << size;
    }
  }
}

TEST_F(SubstitutionTest, EveryWayWorksInPlaceAndKnowsAllBytes) {
  std::vector<std::byte> all(256);
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<std::byte>(i);
  for (const Substitution substitute : Substitutions()) {
    auto bytes = all;
    substitute(table_, bytes, bytes);
    EXPECT_EQ(bytes, Expected(all));
  }
}

TEST_F(SubstitutionTest, AnyProcessorHasAWay) { EXPECT_FALSE(Substitutions().empty()); }

}  // namespace
}  // namespace velmora
