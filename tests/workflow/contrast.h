// How well a text stands out from what is behind it.
#pragma once

#include <QColor>
#include <QImage>

namespace velmora::workflow {

/// From 1 (the same) to 21 (black on white), as the guidelines for readable texts count it.
double Contrast(const QColor& one, const QColor& other);

/// Of the most frequent colour of a picture and the colour in it that stands out most.
double ContrastIn(const QImage& picture);

}  // namespace velmora::workflow
