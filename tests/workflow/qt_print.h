// How a failed test shows the texts of Qt.
#pragma once

#include <QString>
#include <QStringList>
#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }

inline void PrintTo(const QStringList& texts, std::ostream* out) {
  for (const QString& text : texts) *out << "\n  \"" << text.toStdString() << '"';
}
