#include "conversion/free_space.h"

#include "platform/disk_space.h"
#include "platform/file.h"

namespace velmora::conversion {

bool IsEnoughSpace(std::uint64_t sourceBytes, std::uint64_t freeBytes) {
  return (sourceBytes >> 20) < static_cast<std::uint32_t>(freeBytes >> 20);
}

bool HasEnoughFreeSpace(text::TextView destination, text::TextView sourcePath) {
  const auto source = platform::OpenForReading(text::ToFileName(sourcePath));
  const auto free = platform::FreeSpace(text::ToFileName(destination));
  return IsEnoughSpace(source ? (*source)->Size() : 0, free.value_or(0));
}

}  // namespace velmora::conversion
