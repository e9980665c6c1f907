#include "controls/display_class.h"

#include <gtest/gtest.h>

namespace velmora::controls {
namespace {

TEST(DisplayClassTest, BothDirectionsDecide) {
  EXPECT_EQ(DisplayClassOf(96, 96), DisplayClass::Natural);
  EXPECT_EQ(DisplayClassOf(97, 97), DisplayClass::Medium);
  EXPECT_EQ(DisplayClassOf(120, 120), DisplayClass::Medium);
  EXPECT_EQ(DisplayClassOf(125, 125), DisplayClass::Medium);
  EXPECT_EQ(DisplayClassOf(127, 127), DisplayClass::Large);
  EXPECT_EQ(DisplayClassOf(150, 150), DisplayClass::Large);
  EXPECT_EQ(DisplayClassOf(151, 150), DisplayClass::Natural);
  EXPECT_EQ(DisplayClassOf(120, 144), DisplayClass::Natural) << "one class across and another down is neither";
}

TEST(DisplayClassTest, BetweenTheClassesIsAGap) {
  EXPECT_EQ(DisplayClassOf(126, 126), DisplayClass::Natural);
  EXPECT_EQ(DisplayClassOf(126, 120), DisplayClass::Natural);
  EXPECT_EQ(DisplayClassOf(144, 126), DisplayClass::Natural);
}

TEST(DisplayClassTest, ThePagesHaveFixedSizes) {
  EXPECT_EQ(PageArtSize(DisplayClass::Natural), QSize(700, 430));
  EXPECT_EQ(PageArtSize(DisplayClass::Medium), QSize(815, 530));
  EXPECT_EQ(PageArtSize(DisplayClass::Large), QSize(1050, 629));
  EXPECT_EQ(kProfileArtSize, QSize(815, 516));
}

TEST(DisplayClassTest, TheProgressPageHasARuleOfItsOwn) {
  EXPECT_EQ(ProgressArtSize(126, 120), QSize(815, 530)) << "Natural on every other page";
  EXPECT_EQ(ProgressArtSize(120, 126), QSize(700, 430));
  EXPECT_EQ(ProgressArtSize(151, 150), QSize(1050, 629));
  EXPECT_EQ(ProgressArtSize(151, 151), QSize(700, 430));
  EXPECT_EQ(ProgressArtSize(96, 96), QSize(700, 430));
}

}  // namespace
}  // namespace velmora::controls
