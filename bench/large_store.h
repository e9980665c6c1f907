// Stores of any size, written to disk as they are made.
#pragma once

#include <cstdint>
#include <filesystem>

#include "forge/format.h"

namespace velmora::bench {

struct LargeStoreOptions {
  forge::Format format = forge::Format::kUnicode;  ///< of 4K pages: an offline store whose blocks are packed
  forge::Encoding encoding = forge::Encoding::kPermute;
  std::uint64_t bytes = 0;           ///< the store is complete when so much of it is written,
  std::uint64_t items = 0;           ///< or holds so many messages; 0 for no such limit
  bool small = false;                ///< mails of about 2 KB in place of 2 to 200 KB
  bool tiny = false;                 ///< mails of a subject and a line, one block each
  unsigned withFiles = 25;           ///< percent of the mails of 2 to 200 KB that carry files
  unsigned oldVersions = 0;          ///< for each 100 messages so many that were there once: their blocks and the pages
                                     ///< that named them are still in the file
  bool strewn = false;               ///< blocks and pages lie all over the file, as after years of use
  bool oneFolder = false;            ///< all in one folder, whose tables then have more levels than some readers follow
  std::uint64_t perFolder = 400;     ///< messages; a folder's tables stay of one level up to 447 rows
  std::uint64_t attachmentSize = 0;  ///< each mail carries one file of so many bytes; 0: as it comes
};

struct LargeStoreCounts {
  std::uint64_t folders = 0;
  std::uint64_t messages = 0;
  std::uint64_t attachments = 0;
  std::uint64_t oldVersions = 0;
};

/// Makes a store with all tables. What is held in memory is the trees' entries, about 150 bytes a block, and the table
/// rows of one folder, up to 2 KB each. Throws std::runtime_error when the disk refuses, and what the format has no
/// room for: above 2 GB, or above 65,535 messages a folder, in an ANSI store.
LargeStoreCounts MakeLargeStore(const std::filesystem::path& path, const LargeStoreOptions& options);

}  // namespace velmora::bench
