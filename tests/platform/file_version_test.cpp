#include "platform/file_version.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>

#include "platform/user_folders.h"

namespace velmora::platform {
namespace {

std::string Bytes(const FileVersionBlock& block) {
  std::string bytes(sizeof block, '\0');
  std::memcpy(bytes.data(), &block, sizeof block);
  return bytes;
}

TEST(FileVersionTest, ReadsTheBlockWhereverItLies) {
  const auto folder = TemporaryFolder::Create();
  const FileVersionBlock block{.fileVersionHigh = 0x0001'0002, .fileVersionLow = 0x0003'0108};
  for (const std::size_t place : {0u, 3u, (1u << 20) - 15, (1u << 20) - 1, 1u << 20, (2u << 20) - 30}) {
    std::ofstream(folder->Path() / "program", std::ios::binary) << std::string(place, '\xBD') << Bytes(block) << "tail";
    EXPECT_EQ(ReadFileVersion(folder->Path() / "program"), (FileVersion{1, 2, 3, 264})) << place;
  }
}

TEST(FileVersionTest, AFileWithoutABlockHasNone) {
  const auto folder = TemporaryFolder::Create();
  std::ofstream(folder->Path() / "short") << "MZ";
  std::ofstream(folder->Path() / "cut", std::ios::binary) << Bytes({}).substr(0, 15);
  std::ofstream(folder->Path() / "other", std::ios::binary)
      << Bytes({.structureVersion = 2, .fileVersionHigh = 1}) << "........";
  std::ofstream(folder->Path() / "unfilled", std::ios::binary) << Bytes({}) << "........";
  for (const char* name : {"short", "cut", "other", "unfilled", "missing"})
    EXPECT_EQ(ReadFileVersion(folder->Path() / name), std::nullopt);
}

}  // namespace
}  // namespace velmora::platform
