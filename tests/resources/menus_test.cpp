#include "resources/menus.h"

#include <gtest/gtest.h>

namespace velmora::resources {
namespace {

TEST(MenusTest, TheFrameHasThreeMenus) {
  const auto menus = FrameMenu();
  ASSERT_EQ(menus.size(), 3u);
  EXPECT_EQ(menus[0].text, u"&File");
  EXPECT_EQ(menus[1].text, u"&View");
  EXPECT_EQ(menus[2].text, u"&Help");
  ASSERT_EQ(menus[2].submenu.size(), 5u);
  EXPECT_EQ(menus[2].submenu[2].text, u"How to repair outlook data file (.pst) ?");
  EXPECT_EQ(menus[2].submenu[4].id, 57664);
  EXPECT_EQ(menus[1].submenu[0].submenu[0].id, 59392);
}

TEST(MenusTest, TheMenuOfThePagesHasHelpAndAbout) {
  ASSERT_EQ(PageMenu().size(), 2u);
  EXPECT_EQ(PageMenu()[0].text, u"&Help");
  EXPECT_EQ(PageMenu()[0].id, 32829);
  EXPECT_EQ(PageMenu()[0].picture, 32832);
  EXPECT_EQ(PageMenu()[1].text, u"&About");
  EXPECT_EQ(PageMenu()[1].id, 32831);
  EXPECT_EQ(PageMenu()[1].picture, 32833);
}

TEST(MenusTest, NoKeyStandsForTwoCommands) {
  const auto keys = FrameAccelerators();
  for (std::size_t i = 0; i < keys.size(); ++i) {
    for (std::size_t j = i + 1; j < keys.size(); ++j) EXPECT_NE(keys[i].keys, keys[j].keys);
  }
}

TEST(MenusTest, TheIconStripHasItsOrder) {
  const std::uint16_t expected[] = {32780, 32782, 32817, 32781, 32776, 57664, 32772, 32777, 32778};
  ASSERT_EQ(IconStrip().size(), std::size(expected));
  for (std::size_t i = 0; i < std::size(expected); ++i) EXPECT_EQ(IconStrip()[i], expected[i]);
}

}  // namespace
}  // namespace velmora::resources
