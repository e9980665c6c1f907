// Looking for stores on a drive.
#pragma once

#include <atomic>
#include <filesystem>
#include <functional>
#include <string_view>
#include <vector>

namespace velmora::workflow {

/// Where a search tells what it does. Called by the searching thread.
struct SearchObserver {
  std::function<void(const std::filesystem::path& file)> onFile = {};
  std::function<void(const std::filesystem::path& folder)> onFolder = {};
};

/// The files of one folder whose name ends as the mask "*.XYZ" says, whatever the case of its letters.
void SearchFolder(const std::filesystem::path& folder, std::string_view mask, const SearchObserver& observer);

using MountPoints = std::vector<std::filesystem::path>;

/// Goes through all folders below `folder`, each before its own folders, and searches each. Links are not
/// followed. Of other volumes, those that are mounted at one of `drives` are entered. A search that `idle` ends stops
/// at the next folder.
void WalkFolder(const std::filesystem::path& folder, std::string_view mask, const MountPoints& drives,
                const std::atomic<bool>& idle, const SearchObserver& observer);

}  // namespace velmora::workflow
