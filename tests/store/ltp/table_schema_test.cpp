#include "store/ltp/table_schema.h"

#include <gtest/gtest.h>

namespace velmora::ltp {
namespace {

constexpr std::array<Column, 6> kSoundColumns{{{0x0E07'0003, 8, 4, 2},
                                               {0x0E33'0014, 12, 8, 3},
                                               {0x3001'001F, 20, 4, 4},
                                               {0x360A'000B, 24, 1, 5},
                                               {tag::kLtpRowId, 0, 4, 0},
                                               {tag::kLtpRowVer, 4, 4, 1}}};
constexpr TableSchema kSoundSchema{kSoundColumns, {24, 24, 25, 26}};
static_assert(IsSound(kSoundSchema));

struct Change {
  const char* what;
  void (*make)(std::array<Column, 6>& columns, std::array<std::uint16_t, 4>& rgib);
};

class UnsoundSchema : public testing::TestWithParam<Change> {};

TEST_P(UnsoundSchema, IsTold) {
  std::array<Column, 6> columns = kSoundColumns;
  std::array<std::uint16_t, 4> rgib = kSoundSchema.rgib;
  GetParam().make(columns, rgib);
  EXPECT_FALSE(IsSound({columns, rgib})) << GetParam().what;
}

INSTANTIATE_TEST_SUITE_P(All, UnsoundSchema,
                         testing::Values(Change{"columns out of order", [](auto& c, auto&) { std::swap(c[0], c[1]); }},
                                         Change{"one tag twice", [](auto& c, auto&) { c[1].tag = c[0].tag; }},
                                         Change{"size of another type", [](auto& c, auto&) { c[0].cbData = 8; }},
                                         Change{"cells overlap", [](auto& c, auto&) { c[2].ibData = 16; }},
                                         Change{"cell outside its group", [](auto& c, auto&) { c[3].ibData = 23; }},
                                         Change{"cell not aligned", [](auto& c, auto&) { c[2].ibData = 21; }},
                                         Change{"bit twice", [](auto& c, auto&) { c[2].iBit = 2; }},
                                         Change{"bit beyond the columns", [](auto& c, auto&) { c[2].iBit = 6; }},
                                         Change{"row id not first",
                                                [](auto& c, auto&) { std::swap(c[4].ibData, c[5].ibData); }},
                                         Change{"no row version", [](auto& c, auto&) { c[5].tag = 0x67F4'0003; }},
                                         Change{"groups out of order", [](auto&, auto& r) { r[1] = 20; }},
                                         Change{"row size", [](auto&, auto& r) { r[3] = 27; }}));

TEST(TableSchema, KeepsNumbersOfUpToEightBytesInTheRow) {
  EXPECT_EQ(CellSize(PropType::kBoolean), 1);
  EXPECT_EQ(CellSize(PropType::kInteger16), 2);
  EXPECT_EQ(CellSize(PropType::kInteger32), 4);
  EXPECT_EQ(CellSize(PropType::kTime), 8);
  EXPECT_EQ(CellSize(PropType::kGuid), 4) << "its HNID";
  EXPECT_EQ(CellSize(PropType::kString), 4);
  EXPECT_EQ(CellSize(PropType::kMultipleInteger32), 4);
}

}  // namespace
}  // namespace velmora::ltp
