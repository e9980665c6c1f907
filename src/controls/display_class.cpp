#include "controls/display_class.h"

namespace velmora::controls {
namespace {

constexpr QSize kNaturalArt{700, 430};

bool Within(int value, int low, int high) { return low <= value && value <= high; }

}  // namespace

DisplayClass DisplayClassOf(int dpiX, int dpiY) {
  if (Within(dpiX, 97, 125) && Within(dpiY, 97, 125)) return DisplayClass::Medium;
  if (Within(dpiX, 127, 150) && Within(dpiY, 127, 150)) return DisplayClass::Large;
  return DisplayClass::Natural;
}

QSize PageArtSize(DisplayClass display) {
  switch (display) {
    case DisplayClass::Medium:
      return {815, 530};
    case DisplayClass::Large:
      return {1050, 629};
    default:
      return kNaturalArt;
  }
}

QSize ProgressArtSize(int dpiX, int dpiY) {
  if (Within(dpiX, 97, 126) && Within(dpiY, 97, 125)) return {815, 530};
  if (Within(dpiX, 127, 151) && Within(dpiY, 127, 150)) return {1050, 629};
  return kNaturalArt;
}

}  // namespace velmora::controls
