// Texts that a careless window would take for HTML, and what they are after.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <atomic>
#include <chrono>
#include <thread>

namespace velmora::controls {

/// A named pipe that notices when somebody opens it for reading, and lets that reader go on: it would wait for
/// ever otherwise.
class WatchedPipe {
 public:
  WatchedPipe() {
    EXPECT_EQ(mkfifo(QFile::encodeName(Path()).constData(), 0600), 0);
    watcher_ = std::thread([this] { Watch(); });
  }
  ~WatchedPipe() { Stop(); }

  QString Path() const { return folder_.filePath(QStringLiteral("pipe")); }

  /// Has anybody opened it? To be asked once, at the end.
  bool WasOpened() {
    Stop();
    return opened_;
  }

 private:
  void Watch() {
    while (!stop_) {
      // Succeeds only where somebody reads.
      const int end = open(QFile::encodeName(Path()).constData(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
      if (end >= 0) {
        opened_ = true;
        close(end);
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
  void Stop() {
    stop_ = true;
    if (watcher_.joinable()) watcher_.join();
  }

  QTemporaryDir folder_;
  std::atomic<bool> opened_{false}, stop_{false};
  std::thread watcher_;
};

/// `file` is what they would have opened.
inline QStringList HostileTexts(const QString& file) {
  return {QStringLiteral("<img src='file:%1'>").arg(file),
          QStringLiteral("<!doctype html><img src='%1'>").arg(file),
          QStringLiteral("<?xml version='1.0'?><img src='file://%1'>").arg(file),
          QStringLiteral("<p>Hello<style>@import url(file:%1)</style>").arg(file),
          QStringLiteral("&lt;img src='file:%1'&gt;").arg(file),
          QStringLiteral("</p><img src=\"file:%1\">").arg(file),
          QStringLiteral("<b>bold</b>"),
          QStringLiteral("Fish & chips"),
          QStringLiteral("Fish &amp; chips"),
          QStringLiteral("two  blanks\nand\n\nlines")};
}

}  // namespace velmora::controls
