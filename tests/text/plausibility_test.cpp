#include "text/plausibility.h"

#include <gtest/gtest.h>

namespace velmora::text {
namespace {

TEST(Plausibility, TakesNamesInAnyScript) {
  for (const TextView name : {u"Inbox", u"\u0412\u0445\u043e\u0434\u044f\u0449\u0438\u0435", u"\u53d7\u4fe1\u30c8\u30ec\u30a4", u"\U0001F600", u"a\tb\r\n"}) {
    EXPECT_TRUE(LooksLikeText(name));
  }
}

TEST(Plausibility, RefusesEmptyText) { EXPECT_FALSE(LooksLikeText(u"")); }

TEST(Plausibility, TakesTextOfTheOtherByteOrder) {
  EXPECT_TRUE(LooksLikeText(Text{0x4900, 0x0005}));  // a control as it stands; swapped: "I" and U+0500
}

TEST(Plausibility, RefusesControlsInBothByteOrders) {
  EXPECT_FALSE(LooksLikeText(Text{0x0001, 0x0100}));
  EXPECT_FALSE(LooksLikeText(Text{0x0000}));
}

TEST(Plausibility, RefusesUnpairedSurrogatesAndNonCharactersInBothByteOrders) {
  EXPECT_FALSE(LooksLikeText(Text{0xD800, 0x00D8}));  // swapped: U+00D8, then the lone surrogate
  EXPECT_FALSE(LooksLikeText(Text{0xDC00, 0x00DC}));
  EXPECT_FALSE(LooksLikeText(Text{0xFFFF}));
}

}  // namespace
}  // namespace velmora::text
