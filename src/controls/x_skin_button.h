// A radio button made of pictures.
#pragma once

#include <array>

#include "controls/art.h"
#include "controls/art_button.h"

namespace velmora::controls {

/// A radio whose face is one of four pictures, cut out by a mask. It is drawn as pressed while it is checked.
class CxSkinButton : public ArtButton {
  Q_OBJECT

 public:
  explicit CxSkinButton(QWidget* parent);

  /// Numbers of the pictures. In the mask black is kept and white shows what is behind the button.
  void SetSkin(int normal, int down, int over, int disabled, int mask);

  /// Number of the picture that is shown now.
  int ShownPicture() const;

  /// Where the text stands.
  QRect TextRect() const;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  struct Picture {
    int id = 0;
    CGdiPlusBitmapResource art;
  };
  const Picture& Shown() const;

  Picture normal_, down_, over_, disabled_, mask_;
  const QColor textColour_;
};

}  // namespace velmora::controls
