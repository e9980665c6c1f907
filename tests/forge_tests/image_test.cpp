// Damage does what it says and nothing else.
#include "forge/image.h"

#include <gtest/gtest.h>

#include "forge/checksum.h"
#include "forge_tests/sample.h"

namespace velmora::forge {
namespace {

class DamagedStore : public testing::TestWithParam<Format> {
 protected:
  DamagedStore() : sound_(ForgeSample({.format = GetParam()})), image_(sound_) {}

  // The offsets at which the image differs from the sound one.
  std::vector<std::uint64_t> Changed() const {
    std::vector<std::uint64_t> changed;
    for (std::uint64_t i = 0; i < image_.bytes.size(); ++i) {
      if (image_.bytes[i] != sound_.bytes[i]) changed.push_back(i);
    }
    return changed;
  }

  const FormatTraits& traits() const { return TraitsOf(GetParam()); }

  Image sound_;
  Image image_;
};

TEST_P(DamagedStore, LosesItsHeaderAndMapsAndKeepsItsData) {
  WipeHeader(image_);
  ASSERT_FALSE(Changed().empty());
  EXPECT_EQ(Changed().front(), 0U);
  EXPECT_LT(Changed().back(), traits().firstData);
}

TEST_P(DamagedStore, LosesItsTreesAndKeepsItsBlocks) {
  WipeTrees(image_);
  for (const PlacedPage& page : image_.pages)
    EXPECT_EQ(Get(image_.bytes, page.offset + traits().offPageTrailer, 2), 0U);
  for (const PlacedBlock& block : image_.blocks) {
    for (std::uint64_t i = block.offset; i < block.offset + block.placeSize; ++i)
      ASSERT_EQ(image_.bytes[i], sound_.bytes[i]);
  }
}

TEST_P(DamagedStore, HasAPageThatNoLongerProvesItself) {
  const PlacedPage page = image_.TreePages(PageType::kNodes).front();
  BreakSignature(image_, page);
  EXPECT_EQ(Changed().size(), 2U);
  EXPECT_NE(Get(image_.bytes, page.offset + traits().offPageTrailer + 2, 2), Signature(page.offset, page.pageId));
}

TEST_P(DamagedStore, HasABlockThatNoLongerProvesItself) {
  const PlacedBlock block = image_.blocks.at(3);
  BreakSignature(image_, block);
  EXPECT_EQ(Changed().size(), 2U);
  EXPECT_NE(Get(image_.bytes, block.offset + block.placeSize - traits().blockTrailerSize + 2, 2),
            Signature(block.offset, block.bid));
  WipeTrailer(image_, block);
  EXPECT_EQ(Get(image_.bytes, block.offset + block.placeSize - 4, 4), 0U);
}

TEST_P(DamagedStore, HasWrongDataUnderASoundTrailer) {
  const PlacedBlock block = image_.blocks.at(3);
  BreakData(image_, block, 5);
  EXPECT_EQ(Changed(), std::vector<std::uint64_t>{block.offset + 5});
}

TEST_P(DamagedStore, IsCutOff) {
  Truncate(image_, 20000);
  EXPECT_EQ(image_.bytes.size(), 20000U);
  Truncate(image_, 30000);
  EXPECT_EQ(image_.bytes.size(), 20000U) << "cutting does not lengthen";
}

TEST_P(DamagedStore, KnowsItsNodesAndBlocks) {
  EXPECT_EQ(image_.Node(0x200024).nidParent, 0x8082U);
  EXPECT_EQ(&image_.Block(image_.Node(0x200024).bidData | 1), &image_.Block(image_.Node(0x200024).bidData));
  EXPECT_THROW(image_.Node(0x9999), std::out_of_range);
  EXPECT_THROW(image_.Block(0x999999), std::out_of_range);
}

INSTANTIATE_TEST_SUITE_P(Formats, DamagedStore, testing::Values(Format::kAnsi, Format::kUnicode, Format::kUnicode4k));

}  // namespace
}  // namespace velmora::forge
