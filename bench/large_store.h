// Stores of any size, written to disk as they are made.
#pragma once

#include <cstdint>
#include <filesystem>

namespace velmora::bench {

struct LargeStoreOptions {
  std::uint64_t bytes = 0;           ///< the store is complete when it has grown to this size,
  std::uint64_t items = 0;           ///< or holds so many messages; 0 for no such limit
  bool small = false;                ///< mails of about 2 KB in place of 2 to 200 KB
  bool oneFolder = false;            ///< all in one folder, whose tables then have more levels than some readers follow
  std::uint64_t perFolder = 400;     ///< messages; a folder's tables stay of one level up to 447 rows
  std::uint64_t attachmentSize = 0;  ///< each mail carries one file of so many bytes; 0: as it comes
};

struct LargeStoreCounts {
  std::uint64_t folders = 0;
  std::uint64_t messages = 0;
  std::uint64_t attachments = 0;
};

/// Makes a Unicode store with all tables. What is held in memory is the trees' entries and the table rows of
/// one folder. Throws std::runtime_error when the disk refuses.
LargeStoreCounts MakeLargeStore(const std::filesystem::path& path, const LargeStoreOptions& options);

}  // namespace velmora::bench
