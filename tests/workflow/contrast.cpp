#include "workflow/contrast.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace velmora::workflow {
namespace {

double Luminance(const QColor& colour) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

}  // namespace

double Contrast(const QColor& one, const QColor& other) {
  const auto [dark, light] = std::minmax({Luminance(one), Luminance(other)});
  return (light + 0.05) / (dark + 0.05);
}

double ContrastIn(const QImage& picture) {
  std::map<QRgb, int> colours;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) ++colours[picture.pixel(x, y)];
  }
  if (colours.empty()) return 1;
  const auto fewer = [](const auto& a, const auto& b) { return a.second < b.second; };
  const QColor ground = std::max_element(colours.begin(), colours.end(), fewer)->first;
  double best = 1;
  for (const auto& [colour, count] : colours) best = std::max(best, Contrast(ground, colour));
  return best;
}

}  // namespace velmora::workflow
