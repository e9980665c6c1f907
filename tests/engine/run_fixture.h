// What the tests of the engine share: a run that writes down what it says, a source that is put together by
// hand, and a folder for the index file.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "engine/run.h"
#include "engine/store_scan.h"
#include "forge/forge.h"
#include "platform/memory_file.h"
#include "platform/user_folders.h"

namespace velmora::engine {

/// Everything that a run said, in order.
class Recorder : public RunObserver {
 public:
  void OnEvent(const Event& event) override {
    if (const auto* begun = std::get_if<StageBegun>(&event)) stages_.push_back(begun->stage);
    if (const auto* progress = std::get_if<Progress>(&event)) progress_.push_back(*progress);
    if (const auto* notice = std::get_if<Notice>(&event)) notices_.push_back(notice->kind);
  }

  const std::vector<std::uint32_t>& Stages() const { return stages_; }
  const std::vector<NoticeKind>& Notices() const { return notices_; }

  /// The percentages of one phase.
  std::vector<std::uint32_t> Percentages(Phase phase) const {
    std::vector<std::uint32_t> numbers;
    for (const Progress& progress : progress_) {
      if (progress.phase == phase) numbers.push_back(progress.percentage);
    }
    return numbers;
  }

 private:
  std::vector<std::uint32_t> stages_;
  std::vector<Progress> progress_;
  std::vector<NoticeKind> notices_;
};

/// Bytes of a source, put in by hand; what is not put in is zero.
struct Canvas {
  forge::Bytes bytes;

  void Put(std::uint64_t offset, std::span<const std::byte> more) {
    if (bytes.size() < offset + more.size()) bytes.resize(offset + more.size());
    std::copy(more.begin(), more.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
  }
  void Number(std::uint64_t offset, std::uint64_t value, std::size_t width) {
    if (bytes.size() < offset + width) bytes.resize(offset + width);
    forge::Put(bytes, offset, value, width);
  }
  /// A page, sealed for its place unless `spec` says otherwise.
  void Page(forge::Format format, std::uint64_t offset, const forge::PageSpec& spec) {
    Put(offset, forge::FormPage(format, spec, offset, spec.pageId.value_or(0x31)));
  }
};

inline FormatId IdOf(forge::Format format) {
  switch (format) {
    case forge::Format::kAnsi:
      return FORMAT_ANSI;
    case forge::Format::kUnicode:
      return FORMAT_UNICODE;
    default:
      return FORMAT_UNICODE_4K;
  }
}

inline std::string FormatName(const testing::TestParamInfo<forge::Format>& param) {
  return std::vector<std::string>{"Ansi", "Unicode", "Unicode4k"}.at(IdOf(param.param) - 1u);
}

class RunTest : public testing::Test {
 protected:
  RunTest() {
    run_.observer = &recorder_;
    scan_.outputFolder = folder_;
  }

  /// The bytes are the source from now on, of a personal store of that format.
  void Attach(std::vector<std::byte> bytes, forge::Format format = forge::Format::kUnicode) {
    scan_.percentBase = bytes.size() / 100;
    scan_.seenByProbe = {};
    Found().storeKind = StoreKind::kPst;
    Found().layout = LayoutOf(IdOf(format));
    Found().source.Open(std::make_unique<platform::MemoryFile>(std::move(bytes)));
  }

  /// What the scans have found so far.
  ScannedStore& Found() { return *scan_.found; }
  const ScannedStore& Found() const { return *scan_.found; }

  /// Takes blocks into the index and settles it.
  void Index(const std::vector<BlockRecord>& records) {
    Found().index.Add(Placed(records));
    Found().index.Settle(Found().source, Found().layout, run_);
  }

  static std::vector<PlacedBlock> Placed(std::span<const BlockRecord> records) {
    std::vector<PlacedBlock> blocks;
    for (const BlockRecord& record : records) blocks.emplace_back(record.bid, record.size, record.offset);
    return blocks;
  }

  /// The index file, read back.
  std::vector<BlockRecord> IndexFileRecords() const {
    std::ifstream file(folder_ / "FirstTableItem.dat", std::ios::binary);
    const std::vector<char> chars{std::istreambuf_iterator<char>(file), {}};
    const auto bytes = std::as_bytes(std::span(chars));
    EXPECT_EQ(bytes.size() % 16, 0u);
    std::vector<BlockRecord> records;
    for (std::size_t at = 0; at + 16 <= bytes.size(); at += 16) {
      records.push_back({static_cast<std::uint32_t>(forge::Get(bytes, at, 4)),
                         static_cast<std::uint32_t>(forge::Get(bytes, at + 4, 4)), forge::Get(bytes, at + 8, 8)});
    }
    return records;
  }

  platform::TemporaryFolder temporary_ = platform::TemporaryFolder::Create().value();
  const std::filesystem::path& folder_ = temporary_.Path();
  Recorder recorder_;
  RunContext run_;
  StoreScan scan_;
};

inline void PrintTo(const BlockRecord& record, std::ostream* out) {
  *out << "{bid " << record.bid << ", size " << record.size << ", offset " << record.offset << "}";
}
inline void PrintTo(const NodeRecord& node, std::ostream* out) {
  *out << "{" << node.nid << ", " << Value(node.bidData) << ", " << Value(node.bidSub) << ", " << node.nidParent << "}";
}

}  // namespace velmora::engine
