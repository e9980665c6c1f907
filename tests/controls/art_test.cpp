#include "controls/art.h"

#include <gtest/gtest.h>

#include <QDirIterator>
#include <QPainter>

namespace velmora::controls {
namespace {

TEST(ArtTest, LoadsAPictureWithItsOwnSize) {
  CGdiPlusBitmapResource picture;
  ASSERT_TRUE(picture.Load(207, "BITMAP"));
  EXPECT_EQ(picture.Size(), QSize(700, 430));
  ASSERT_TRUE(picture.Load(138));
  EXPECT_EQ(picture.Size(), QSize(218, 88));
}

TEST(ArtTest, ANumberWithoutAPictureDropsWhatWasHeld) {
  CGdiPlusBitmapResource picture;
  ASSERT_TRUE(picture.Load(138));
  EXPECT_FALSE(picture.Load(138, "BITMAP")) << "the kind counts";
  EXPECT_TRUE(picture.IsEmpty());
  EXPECT_EQ(picture.Size(), QSize(0, 0));
}

TEST(ArtTest, AnEmptyPictureDrawsNothing) {
  const QImage image = CGdiPlusBitmap().ToPixmap({4, 4}, 1).toImage();
  EXPECT_EQ(image.pixelColor(1, 1).alpha(), 0);
}

TEST(ArtTest, IsDrawnAnewForTheDisplaysScale) {
  CGdiPlusBitmapResource picture;
  ASSERT_TRUE(picture.Load(128, "ICON"));
  const QPixmap pixmap = picture.ToPixmap({32, 32}, 2);
  EXPECT_EQ(pixmap.size(), QSize(64, 64));
  EXPECT_EQ(pixmap.deviceIndependentSize(), QSizeF(32, 32));
}

TEST(ArtTest, EveryPictureCanBeDrawn) {
  int count = 0;
  for (const char* kind : {"PNG", "BITMAP", "ICON"}) {
    for (QDirIterator files(QStringLiteral(":/%1").arg(kind)); files.hasNext(); ++count) {
      files.next();
      CGdiPlusBitmapResource picture;
      ASSERT_TRUE(picture.Load(files.fileInfo().completeBaseName(), kind)) << files.filePath().toStdString();
      const QImage image = picture.ToPixmap(picture.Size(), 1).toImage();
      bool drawn = false;
      for (int y = 0; y < image.height() && !drawn; ++y) {
        for (int x = 0; x < image.width() && !drawn; ++x) drawn = image.pixelColor(x, y).alpha() > 0;
      }
      EXPECT_TRUE(drawn) << files.filePath().toStdString();
    }
  }
  EXPECT_GT(count, 25);
}

}  // namespace
}  // namespace velmora::controls
