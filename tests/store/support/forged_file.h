// Forged stores for the readers: every generation, opened as a file in memory.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "forge/store.h"
#include "platform/memory_file.h"
#include "store/ndb/store_reader.h"

namespace velmora::test {

/// A forged store, opened. Both stay where they are.
class ForgedFile {
 public:
  explicit ForgedFile(const forge::Image& image) : file_(image.bytes), reader_(ndb::StoreReader::Open(file_)) {}

  const ndb::StoreReader& Store() const { return *reader_; }

  ndb::NodeTrees Trees(forge::Nid nid) const { return reader_->FindNode(Nid{nid}).value_or(ndb::NodeEntry{}).trees; }

 private:
  platform::MemoryFile file_;
  std::unique_ptr<ndb::StoreReader> reader_;
};

/// A generation and the way in which its blocks are kept.
struct ForgedFormat {
  forge::Format format;
  forge::Encoding encoding;
  bool compressed;
};

inline std::string NameOf(const testing::TestParamInfo<ForgedFormat>& info) {
  const char* const formats[] = {"Ansi", "Unicode", "Unicode4k"};
  const char* const encodings[] = {"Plain", "Permute", "Cyclic"};
  return std::string(formats[static_cast<int>(info.param.format)]) + encodings[static_cast<int>(info.param.encoding)] +
         (info.param.compressed ? "Packed" : "");
}

inline constexpr ForgedFormat kForgedFormats[] = {
    {forge::Format::kAnsi, forge::Encoding::kPermute, false},
    {forge::Format::kAnsi, forge::Encoding::kCyclic, false},
    {forge::Format::kUnicode, forge::Encoding::kNone, false},
    {forge::Format::kUnicode, forge::Encoding::kCyclic, false},
    {forge::Format::kUnicode4k, forge::Encoding::kNone, true},
    {forge::Format::kUnicode4k, forge::Encoding::kPermute, true},
    {forge::Format::kUnicode4k, forge::Encoding::kNone, false},
};

}  // namespace velmora::test
