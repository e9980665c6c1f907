// The thread of a search, and how the page hears of it.
#pragma once

#include <QObject>
#include <QStringList>
#include <atomic>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>

#include "workflow/file_search.h"

namespace velmora::workflow {

/// One search of one drive. The page that began it may be gone before it ends, so it owns itself: nobody
/// waits for it.
class DriveSearch : public QObject {
  Q_OBJECT

 public:
  /// Starts at once. To be called in the thread of the windows, in which all signals come. Of the volumes that are
  /// mounted below the drive, `drives` are searched too.
  static std::shared_ptr<DriveSearch> Start(std::filesystem::path drive, std::string mask, MountPoints drives);

  /// The search stops at the next folder. Over is signalled all the same.
  void Stop() { idle_ = true; }

 signals:
  void Found(const QStringList& files);  ///< full paths, in the order in which they were found
  void Entered(const QString& folder);   ///< the folder that is searched now; some are skipped when they pass quickly
  void Over();

 private:
  DriveSearch() = default;
  static void Main(std::shared_ptr<DriveSearch> search, std::filesystem::path drive, std::string mask,
                   MountPoints drives);

  /// Signals what has been found since the last signal.
  void Tell();
  void Summon();

  std::atomic<bool> idle_{false};
  std::mutex mutex_;
  QStringList found_;
  QString folder_;
  bool summoned_ = false;
};

}  // namespace velmora::workflow
