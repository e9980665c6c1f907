#include "cli/place_words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::cli {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

engine::StorePlace PlaceOf(engine::Origin origin, std::uint64_t from, std::uint64_t to) {
  engine::StorePlace place;
  place.origin = origin;
  place.from = from;
  place.to = to;
  return place;
}

TEST(PlaceWords, NothingIsSaidOfAStoreThatIsAllOfItsFile) { EXPECT_THAT(PlaceLines({}), IsEmpty()); }

TEST(PlaceWords, AStoreBehindSomethingElseTellsWhereItBegins) {
  conversion::CompleteReport report;
  report.place = PlaceOf(4096, 4096, 9000);
  EXPECT_THAT(PlaceLines(report), ElementsAre("the store begins at byte 4096 of the file; other places that are named "
                                              "count from there"));
}

TEST(PlaceWords, AMissingFrontIsCounted) {
  conversion::CompleteReport report;
  report.place = PlaceOf(-513, 0, 9000);
  EXPECT_THAT(PlaceLines(report), ElementsAre(HasSubstr("the first 513 bytes of the store are missing from the file")));
}

TEST(PlaceWords, WhatCannotBeToldIsSaid) {
  conversion::CompleteReport report;
  report.place = PlaceOf(0, 0, 9000);
  report.place->doubtfulFrom = 7000;
  EXPECT_THAT(PlaceLines(report),
              ElementsAre("nothing tells whether what lies from byte 7000 of the file on is of this "
                          "store or of another; it was read as a part of this one"));
}

TEST(PlaceWords, OtherStoresAreNamedWithTheWayToThemUpToTen) {
  conversion::CompleteReport report;
  report.others = {PlaceOf(2048, 2048, 3048)};
  EXPECT_THAT(PlaceLines(report), ElementsAre("the file holds another store, from byte 2048 to byte 3048 (1.0 KB); "
                                              "nothing of it was converted, --at 2048 converts it"));
  report.others.resize(13, PlaceOf(1, 1, 2));
  EXPECT_EQ(PlaceLines(report).size(), 11U);
  EXPECT_EQ(PlaceLines(report).back(), "the file holds 3 more stores");
}

}  // namespace
}  // namespace velmora::cli
