#include "store/format/generation.h"

#include <gtest/gtest.h>

#include "store/format/checksum.h"
#include "store/format/header.h"
#include "store/format/heap_format.h"

namespace velmora {
namespace {

TEST(Generation, AnUnknownFormatGivesTheAnsiValues) {
  EXPECT_EQ(LayoutOf(0), LayoutOf(FORMAT_ANSI));
  EXPECT_EQ(LayoutOf(1), LayoutOf(FORMAT_ANSI));
  EXPECT_EQ(LayoutOf(77), LayoutOf(FORMAT_ANSI));
  EXPECT_EQ(LayoutOf(77).formatId, FORMAT_ANSI);
}

TEST(Generation, AnIdHasFourBytesInAnsiAndEightInTheWideFormats) {
  EXPECT_EQ(LayoutOf(FORMAT_ANSI).idWidth, 4u);
  EXPECT_EQ(LayoutOf(FORMAT_UNICODE).idWidth, 8u);
  EXPECT_EQ(LayoutOf(FORMAT_UNICODE_4K).idWidth, 8u);
}

TEST(Generation, ANodeEntryIsFourFieldsOfTheWidthOfAnId) {
  for (const FormatId format : {FORMAT_ANSI, FORMAT_UNICODE, FORMAT_UNICODE_4K}) {
    EXPECT_EQ(LayoutOf(format).nodeEntrySize, 4 * LayoutOf(format).idWidth);
    EXPECT_EQ(LayoutOf(format).SubnodeEntrySize(), 3u * LayoutOf(format).idWidth);
    EXPECT_EQ(LayoutOf(format).wideFormat, format != FORMAT_ANSI);
  }
}

TEST(Generation, ThePlacesInItsHeaderAreThoseOfItsWidth) {
  EXPECT_EQ(PlacesInHeader(generations::kAnsi).brefNbt, 0xB8u);
  EXPECT_EQ(PlacesInHeader(generations::kAnsi).brefBbt, 0xC0u);
  EXPECT_EQ(PlacesInHeader(generations::kUnicode).brefNbt, 0xD8u);
  EXPECT_EQ(PlacesInHeader(generations::kUnicode4k).brefBbt, 0xE8u);
}

TEST(Words, AsTheyStandInPagesAndBlocks) {
  EXPECT_EQ(TypeWord(PageType::kBbt), 0x8080);
  EXPECT_EQ(TypeWord(PageType::kNbt), 0x8181);
  EXPECT_EQ(kXBlock, 0x0101);
  EXPECT_EQ(kXxBlock, 0x0201);
  EXPECT_EQ(kSlBlock, 0x0002);
  EXPECT_EQ(kSiBlock, 0x0102);
  EXPECT_EQ(HeapWord(ClientSig::kPropertyContext), 0xBCEC);
  EXPECT_EQ(HeapWord(ClientSig::kTableContext), 0x7CEC);
}

TEST(SignatureTest, FoldsOffsetAndId) {
  EXPECT_EQ(ComputeSig(0, 0), 0);
  EXPECT_EQ(ComputeSig(0x00012345, 0), 0x2344);
  EXPECT_EQ(ComputeSig(0x4800, 0x31), 0x4831);
  EXPECT_EQ(ComputeSig(0x4800, 0x4800), 0);
}

TEST(SignatureTest, OnlyTheLow32BitsOfOffsetAndIdCount) {
  EXPECT_EQ(ComputeSig(0x7'0000'4800, 0x31), ComputeSig(0x4800, 0x31));
  EXPECT_EQ(ComputeSig(0x4800, 0x5'0000'0031), ComputeSig(0x4800, 0x31));
}

}  // namespace
}  // namespace velmora
