// A button made of images.
#pragma once

#include "controls/art.h"
#include "controls/art_button.h"
#include "controls/display_class.h"

namespace velmora::controls {

/// Shows one of three images and, unless it is image-only, its caption in white over it.
class CXCmdBtn : public ArtButton {
  Q_OBJECT

 public:
  explicit CXCmdBtn(QWidget* parent);

  /// Numbers of the images. Returns whether all of them are there.
  bool SetImages(int normal, int hover, int pressed);
  void SetDisplayClass(DisplayClass display);
  void SetImageOnly(bool imageOnly);

  /// Number of the image that is shown now.
  int ShownImage() const;

  /// Size at which that image is drawn: fixed for images of 218 by 88 and of 44 by 44, the button's own
  /// rectangle for others, but the image's own size on a Natural display.
  QSize DrawnSize() const;

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  struct Image {
    int id = 0;
    CGdiPlusBitmapResource art;
  };
  const Image& Shown() const;

  /// From the edges of the image to the line of the focus, which is white: well within the face. The large images
  /// have a rim that is white while the mouse is over them, and their shadow below.
  QMarginsF FocusMargins() const;

  Image normal_, hover_, pressed_;
  DisplayClass display_ = DisplayClass::Natural;
  bool imageOnly_ = false;
};

}  // namespace velmora::controls
