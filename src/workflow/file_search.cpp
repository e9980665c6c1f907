#include "workflow/file_search.h"

#include <algorithm>
#include <vector>

#include "platform/file_system.h"
#include "platform/path_text.h"
#include "platform/volumes.h"
#include "text/text.h"

namespace velmora::workflow {
namespace {

bool Matches(const std::filesystem::path& name, std::string_view mask) {
  const text::Text ending = text::FromUtf8(mask.substr(mask.find('*') + 1));
  const text::Text whole = platform::TextOfPath(name);
  return whole.size() >= ending.size() &&
         text::EqualIgnoringCase(text::TextView(whole).substr(whole.size() - ending.size()), ending);
}

/// The folder may be named by a road of its own: through a link, or from above.
bool IsOneOf(const MountPoints& drives, const std::filesystem::path& folder) {
  const auto place = platform::RealPath(folder);
  return place && std::find(drives.begin(), drives.end(), *place) != drives.end();
}

}  // namespace

void SearchFolder(const std::filesystem::path& folder, std::string_view mask, const SearchObserver& observer) {
  for (const platform::FolderEntry& entry : platform::ListFolder(folder)) {
    if (!entry.isFolder && Matches(entry.name, mask)) observer.onFile(folder / entry.name);
  }
}

void WalkFolder(const std::filesystem::path& folder, std::string_view mask, const MountPoints& drives,
                const std::atomic<bool>& idle, const SearchObserver& observer) {
  // Folders that are still to be listed; the last one is next, so a folder's own folders come before its
  // neighbours, however deep the tree is.
  std::vector<std::filesystem::path> waiting;
  const auto enter = [&](const std::filesystem::path& next) {
    std::vector<platform::FolderEntry> entries = platform::ListFolder(next);
    for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
      if (entry->isFolder && (!entry->isOtherVolume || IsOneOf(drives, next / entry->name))) {
        waiting.push_back(next / entry->name);
      }
    }
  };
  if (!idle) enter(folder);
  while (!waiting.empty() && !idle) {
    const std::filesystem::path next = std::move(waiting.back());
    waiting.pop_back();
    observer.onFolder(next);
    SearchFolder(next, mask, observer);
    if (!idle) enter(next);
  }
}

}  // namespace velmora::workflow
