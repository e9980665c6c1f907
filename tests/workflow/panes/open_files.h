// What this process holds open.
#pragma once

#include <QDir>
#include <QFile>
#include <QStringList>

namespace velmora::workflow {

inline QStringList OpenFiles() {
  QStringList names;
  const QDir open("/proc/self/fd");
  for (const QString& number : open.entryList(QDir::Files | QDir::System)) {
    names << QFile::symLinkTarget(open.filePath(number));
  }
  return names;
}

}  // namespace velmora::workflow
