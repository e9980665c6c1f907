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

QString FieldStyle() {
  // By value: the roles of a style sheet are those of the desktop's palette.
  const QPalette palette = PagePalette();
  const auto name = [&](QPalette::ColorRole role) { return palette.color(QPalette::Active, role).name(); };
  return QStringLiteral(
             "QLineEdit, QComboBox, QTreeView { background: %1; border: 1px solid %2; border-radius: 8px; }"
             "QLineEdit, QComboBox { padding: 0 9px; }"
             "QLineEdit:focus, QComboBox:focus, QTreeView:focus { border-color: %3; }"
             "QComboBox:disabled, QTreeView:disabled { background: %4; }"
             "QComboBox QLineEdit { border: none; padding: 0; background: transparent; }"
             "QComboBox::drop-down { border: none; width: 28px; }"
             "QComboBox::down-arrow { image: url(:/BITMAP/down.svg); width: 12px; height: 12px; }"
             "QTreeView { padding: 3px; }"
             "QHeaderView { background: transparent; }"
             "QHeaderView::section { background: %4; color: %5; border: none; padding: 4px 8px; }")
      .arg(name(QPalette::Base), name(QPalette::Mid), name(QPalette::Highlight), name(QPalette::Window),
           name(QPalette::Text));
}

QString BareFieldStyle() { return QStringLiteral("QLineEdit { border: none; background: transparent; }"); }

}  // namespace velmora::workflow
