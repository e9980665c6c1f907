// The push button of the pages: a picture and a text.
#pragma once

#include "controls/art.h"
#include "controls/art_button.h"

namespace velmora::controls {

class PictureButton : public ArtButton {
  Q_OBJECT

 public:
  /// Where the picture stands to the text.
  enum class Relation { Above, Left };

  explicit PictureButton(QWidget* parent);

  /// Number of the picture.
  void SetPicture(int id);
  int Picture() const { return id_; }
  void SetRelation(Relation relation);

  /// Distance of the text from the edge that it stands next to, in pixels.
  void SetTextMargin(int margin);
  int TextMargin() const { return textMargin_; }

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  int id_ = 0;
  CGdiPlusBitmapResource picture_;
  Relation relation_ = Relation::Above;
  int textMargin_ = 4;
};

}  // namespace velmora::controls
