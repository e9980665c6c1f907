// A file whose small reads that lie near one another are served from larger ones.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>

#include "platform/file.h"
#include "platform/workers.h"

namespace velmora::engine {

/// For a reader that asks for a block here and a block there, most of them close to the last one, as a message was
/// written: a disk that has to seek does so seldom, and the system is asked seldom. Where one window follows the other
/// the next two are read ahead, more of it each time. Reads that lie far apart are made as they are asked for, and so
/// are those of a little here and there of what is passed by, if the system can be asked to bring the rest into its
/// memory: to copy all of it would take longer. A disk that failed once is asked for nothing any more that nobody
/// wants.
class NearBytes : public platform::ByteSource {
 public:
  /// Bytes that are read at a time, and the most that are read ahead.
  static constexpr std::size_t kWindow = std::size_t{64} << 10;
  static constexpr std::size_t kMostAhead = std::size_t{512} << 10;

  /// Reads are sparse that ask for less than one so-manieth part of the way that they go.
  static constexpr std::uint64_t kSparse = 4;

  /// The workers read ahead, and must outlive it.
  explicit NearBytes(std::shared_ptr<const platform::ByteSource> bytes,
                     platform::Workers& workers = platform::Workers::WithoutThreads())
      : bytes_(std::move(bytes)), workers_(workers) {}

  std::uint64_t Size() const override { return bytes_->Size(); }
  platform::Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override;

 private:
  struct Window {
    std::uint64_t begin = 0;
    std::size_t length = 0;  ///< for which it is there; some of what lies behind is read along
    std::unique_ptr<std::byte[]> bytes;
    std::size_t size = 0;  ///< of what was read; 0 where the disk fails
    bool hasFailed = false;

    bool IsFor(std::uint64_t offset) const { return offset >= begin && offset - begin < length; }
    std::span<const std::byte> Part(std::uint64_t offset, std::size_t wanted) const;
  };

  /// A window that is read before anybody asks for it.
  struct Ahead {
    Window window;
    std::unique_ptr<platform::Workers::Step> reading;  ///< fills it; goes first

    bool IsFor(std::uint64_t offset) const { return reading != nullptr && window.IsFor(offset); }
  };

  bool IsNear(std::uint64_t offset) const;
  bool IsSparse() const { return kSparse * asked_ < way_; }
  void NoteRead(std::uint64_t offset, std::size_t size) const;
  bool IsPrefetched(std::uint64_t offset) const;
  void Load(std::uint64_t offset) const;
  bool TakeAhead(std::uint64_t offset) const;
  void ReadAhead(std::uint64_t begin, std::size_t length, Ahead& ahead) const;
  void ReadBehind(const Window& window, Ahead& ahead) const;
  void Fill(Window& window) const;
  platform::Result<std::size_t> ReadFromDisk(std::uint64_t offset, std::span<std::byte> out) const;

  std::shared_ptr<const platform::ByteSource> bytes_;
  platform::Workers& workers_;
  mutable std::atomic<bool> diskHasFailed_ = false;
  mutable std::mutex mutex_;               ///< guards what follows
  mutable std::array<Window, 2> windows_;  ///< a message may lie in both
  mutable std::size_t newest_ = 0;
  mutable std::uint64_t last_ = UINT64_MAX;
  mutable bool hasFailed_ = false;
  mutable std::uint64_t asked_ = 0;           ///< bytes that the last reads asked for; older ones count less
  mutable std::uint64_t way_ = 0;             ///< how far these went
  mutable std::uint64_t prefetchedFrom_ = 0;  ///< what the system was asked for last
  mutable std::uint64_t prefetchedTo_ = 0;
  mutable std::array<Ahead, 2> ahead_;  ///< a reader who is faster than a thread wakes up reads one himself
};

}  // namespace velmora::engine
