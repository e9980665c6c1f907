#include "workflow/panes/image_list.h"

#include "controls/art.h"

namespace velmora::workflow {

std::vector<QIcon> LoadImageList(int bitmap) {
  constexpr int kSide = 16;
  controls::CGdiPlusBitmapResource strip;
  strip.Load(bitmap, "BITMAP");
  std::vector<QIcon> images(std::size_t(strip.Size().width() / kSide));
  for (const int scale : {1, 2}) {
    const QPixmap drawn = strip.ToPixmap(strip.Size(), scale);
    for (std::size_t i = 0; i < images.size(); ++i) {
      const QPixmap image = drawn.copy(int(i) * kSide * scale, 0, kSide * scale, kSide * scale);
      // On a selected row too they keep their colours: a tint would drown what is so small.
      for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Selected}) images[i].addPixmap(image, mode);
    }
  }
  return images;
}

}  // namespace velmora::workflow
