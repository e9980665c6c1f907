// The tip of a cell, as it comes on the screen.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QLabel>
#include <QTextDocument>

namespace velmora::controls {

/// Lets the mouse rest on a cell. Null: no tip came.
inline const QLabel* ShownTip(QAbstractItemView& view, const QModelIndex& cell) {
  view.scrollTo(cell);
  const QPoint place = view.visualRect(cell).center();
  QHelpEvent rest(QEvent::ToolTip, place, view.viewport()->mapToGlobal(place));
  QApplication::sendEvent(view.viewport(), &rest);
  for (const QWidget* window : QApplication::topLevelWidgets()) {
    if (window->inherits("QTipLabel") && window->isVisible()) return qobject_cast<const QLabel*>(window);
  }
  return nullptr;
}

/// What somebody reads on a label that decides by itself whether its text is HTML.
inline QString ReadOn(const QLabel& label) {
  EXPECT_EQ(label.textFormat(), Qt::AutoText);
  if (!Qt::mightBeRichText(label.text())) return label.text();
  QTextDocument document;
  document.setHtml(label.text());
  return document.toPlainText();
}

}  // namespace velmora::controls
