// How large the art of the pages is on a display. Nothing is scaled by a factor: the art has one fixed size
// for each class of display.
#pragma once

#include <QSize>

namespace velmora::controls {

enum class DisplayClass {
  Natural,  ///< 96 dots per inch, and all that is in neither other class
  Medium,   ///< around 120
  Large,    ///< around 144
};

/// The class of a display of that many dots per inch. 126 belongs to neither Medium nor Large.
DisplayClass DisplayClassOf(int dpiX, int dpiY);

/// Size of the background of the pages of 700 by 430.
QSize PageArtSize(DisplayClass display);

/// The same for the progress page, whose classes reach a little further: 126 across counts as Medium.
QSize ProgressArtSize(int dpiX, int dpiY);

/// Size of the background of the profile page, whatever the display.
inline constexpr QSize kProfileArtSize{815, 516};

}  // namespace velmora::controls
