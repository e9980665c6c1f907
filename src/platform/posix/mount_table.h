// The volumes that a mount table lists.
#pragma once

#include <filesystem>
#include <functional>
#include <string_view>
#include <vector>

#include "platform/volumes.h"

namespace velmora::platform {

/// What MountedVolumes says of the text of a mount table (one line a mount, as the kernel lists them to a process).
/// `isRemovable` is asked with a device's "major:minor", `isFolder` with a mount point.
std::vector<Volume> ParseMountTable(std::string_view table, const std::function<bool(std::string_view)>& isRemovable,
                                    const std::function<bool(const std::filesystem::path&)>& isFolder);

}  // namespace velmora::platform
