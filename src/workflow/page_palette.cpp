#include "workflow/page_palette.h"

namespace velmora::workflow {

QPalette PagePalette() {
  const QColor text("#14284A"), faint("#7688A6"), paper("#FFFFFF"), page("#F3F6FB"), line("#C8D5E8"), accent("#1F5BE3");
  QPalette palette;
  for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
    const QColor ink = group == QPalette::Disabled ? faint : text;
    palette.setColor(group, QPalette::Window, page);
    palette.setColor(group, QPalette::WindowText, ink);
    palette.setColor(group, QPalette::Base, paper);
    palette.setColor(group, QPalette::AlternateBase, page);
    palette.setColor(group, QPalette::Text, ink);
    palette.setColor(group, QPalette::PlaceholderText, faint);
    palette.setColor(group, QPalette::Button, paper);
    palette.setColor(group, QPalette::ButtonText, ink);
    palette.setColor(group, QPalette::Light, paper);
    palette.setColor(group, QPalette::Midlight, page);
    palette.setColor(group, QPalette::Mid, line);
    palette.setColor(group, QPalette::Dark, line.darker(120));
    palette.setColor(group, QPalette::Highlight, accent);
    palette.setColor(group, QPalette::HighlightedText, paper);
    palette.setColor(group, QPalette::Link, accent);
    palette.setColor(group, QPalette::ToolTipBase, paper);
    palette.setColor(group, QPalette::ToolTipText, text);
  }
  return palette;
}

}  // namespace velmora::workflow
