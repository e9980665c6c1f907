#include "workflow/panes/image_list.h"

#include "controls/art.h"

namespace velmora::workflow {

std::vector<QIcon> LoadImageList(int bitmap) {
  controls::CGdiPlusBitmapResource strip;
  strip.Load(bitmap, "BITMAP");
  const int side = strip.Size().height();
  if (side == 0) return {};
  std::vector<QIcon> images(std::size_t(strip.Size().width() / side));
  for (const int scale : {1, 2}) {
    const QPixmap drawn = strip.ToPixmap(strip.Size(), scale);
    for (std::size_t i = 0; i < images.size(); ++i) {
      const QPixmap image = drawn.copy(int(i) * side * scale, 0, side * scale, side * scale);
      // On a selected row too they keep their colours: a tint would drown what is so small.
      for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Selected}) images[i].addPixmap(image, mode);
    }
  }
  return images;
}

}  // namespace velmora::workflow
