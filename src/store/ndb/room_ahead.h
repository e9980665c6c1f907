// Takes room on the disk for a file that grows, a little more than is needed and by another thread, since a file system
// takes its time for it.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/file.h"
#include "platform/workers.h"

namespace velmora::ndb {

class RoomAhead {
 public:
  /// Both must outlive it. With one job nothing is taken ahead.
  RoomAhead(platform::ByteStore& file, platform::Workers& workers) : file_(file), workers_(workers) {}

  /// Makes the file at least `size` bytes long, as ByteStore::Reserve does. Whether there is room for more is no
  /// failure.
  [[nodiscard]] platform::Result<void> Require(std::uint64_t size);

  /// Makes the file empty.
  [[nodiscard]] platform::Result<void> Clear();

  /// Gives what the file has beyond `size` back to the disk.
  [[nodiscard]] platform::Result<void> Trim(std::uint64_t size);

 private:
  void Await();

  platform::ByteStore& file_;
  platform::Workers& workers_;
  std::uint64_t have_ = 0;
  std::uint64_t asked_ = 0;  ///< by the step
  platform::Result<void> given_;
  bool isNearlyFull_ = false;  ///< the disk had no room ahead
  std::unique_ptr<platform::Workers::Step> step_;
};

}  // namespace velmora::ndb
