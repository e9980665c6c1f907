#include "workflow/drive_search.h"

#include <thread>

#include "workflow/qt_text.h"

namespace velmora::workflow {

std::shared_ptr<DriveSearch> DriveSearch::Start(std::filesystem::path drive, std::string mask, MountPoints drives) {
  // Whoever lets go last, the object ends in the thread of the windows.
  const std::shared_ptr<DriveSearch> search(new DriveSearch, [](DriveSearch* object) { object->deleteLater(); });
  std::thread(&DriveSearch::Main, search, std::move(drive), std::move(mask), std::move(drives)).detach();
  return search;
}

void DriveSearch::Main(std::shared_ptr<DriveSearch> search, std::filesystem::path drive, std::string mask,
                       MountPoints drives) {
  const SearchObserver observer{
      .onFile =
          [&](const std::filesystem::path& file) {
            const std::lock_guard lock(search->mutex_);
            search->found_ << PathToQt(file);
            search->Summon();
          },
      .onFolder =
          [&](const std::filesystem::path& folder) {
            const std::lock_guard lock(search->mutex_);
            search->folder_ = PathToQt(folder);
            search->Summon();
          },
  };
  SearchFolder(drive, mask, observer);
  if (!search->idle_) WalkFolder(drive, mask, drives, search->idle_, observer);
  DriveSearch* object = search.get();
  QMetaObject::invokeMethod(object, [search] {
    search->Tell();
    emit search->Over();
  });
}

void DriveSearch::Summon() {
  if (summoned_) return;
  summoned_ = true;
  QMetaObject::invokeMethod(
      this, [this] { Tell(); }, Qt::QueuedConnection);
}

void DriveSearch::Tell() {
  QStringList files;
  QString folder;
  {
    const std::lock_guard lock(mutex_);
    summoned_ = false;
    files.swap(found_);
    folder.swap(folder_);
  }
  if (!files.isEmpty()) emit Found(files);
  if (!folder.isEmpty()) emit Entered(folder);
}

}  // namespace velmora::workflow
