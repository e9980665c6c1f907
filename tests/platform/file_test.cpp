#include "platform/file.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include "platform/memory_file.h"

namespace velmora::platform {
namespace {

class FileTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = (std::filesystem::temp_directory_path() / "velmora-file-test-XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    folder_ = name;
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  std::filesystem::path folder_;
};

std::span<const std::byte> AsBytes(std::string_view text) { return std::as_bytes(std::span(text)); }

TEST_F(FileTest, ReadsShortOnlyAtTheEnd) {
  std::ofstream(folder_ / "a") << "hello";
  auto file = OpenForReading(folder_ / "a");
  ASSERT_TRUE(file);
  std::array<std::byte, 8> buffer{};
  EXPECT_EQ((*file)->Size(), 5u);
  EXPECT_EQ(*(*file)->ReadAt(3, buffer), 2u);
  EXPECT_EQ(buffer[0], std::byte{'l'});
  EXPECT_EQ(*(*file)->ReadAt(5, buffer), 0u);
  EXPECT_EQ(*(*file)->ReadAt(1ull << 40, buffer), 0u);
}

TEST_F(FileTest, TellsWhatIsWrongWithASource) {
  EXPECT_EQ(OpenForReading(folder_ / "missing").error().kind, FailureKind::kNotFound);
  EXPECT_EQ(OpenForReading(folder_).error().kind, FailureKind::kDenied);
  EXPECT_EQ(OpenForReading("/dev/null").error().kind, FailureKind::kDenied);
}

TEST_F(FileTest, OverwritesNothingUnlessTold) {
  std::ofstream(folder_ / "a") << "mine";
  auto refused = CreateFile(folder_ / "a", Existing::kRefuse);
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().kind, FailureKind::kExists);
  EXPECT_EQ(std::filesystem::file_size(folder_ / "a"), 4u);
  ASSERT_TRUE(CreateFile(folder_ / "a", Existing::kReplace));
  EXPECT_EQ(std::filesystem::file_size(folder_ / "a"), 0u);
}

TEST_F(FileTest, AGapReadsAsZeros) {
  auto file = CreateFile(folder_ / "a", Existing::kRefuse);
  ASSERT_TRUE(file);
  ASSERT_TRUE((*file)->WriteAt(4, AsBytes("xy")));
  EXPECT_EQ((*file)->Size(), 6u);
  std::array<std::byte, 6> buffer{};
  EXPECT_EQ(*(*file)->ReadAt(0, buffer), 6u);
  EXPECT_EQ(buffer[3], std::byte{0});
  EXPECT_EQ(buffer[4], std::byte{'x'});
}

/// Bytes of the file system that a file holds.
std::uint64_t Taken(const std::filesystem::path& path) {
  struct stat status {};
  stat(path.c_str(), &status);
  return static_cast<std::uint64_t>(status.st_blocks) * 512;
}

TEST_F(FileTest, ReservedRoomIsTakenAndReadsAsZeros) {
  constexpr std::uint64_t kSize = 300000;
  auto file = CreateFile(folder_ / "a", Existing::kRefuse);
  ASSERT_TRUE(file);
  ASSERT_TRUE((*file)->WriteAt(0, AsBytes("hello")));
  ASSERT_TRUE((*file)->Reserve(kSize));
  EXPECT_EQ((*file)->Size(), kSize);
  EXPECT_GE(Taken(folder_ / "a"), kSize);
  std::array<std::byte, 6> buffer{};
  ASSERT_EQ(*(*file)->ReadAt(0, buffer), 6u);
  EXPECT_EQ(std::memcmp(buffer.data(), "hello", 6), 0);
  ASSERT_TRUE((*file)->Reserve(10));
  EXPECT_EQ((*file)->Size(), kSize) << "a file that is long enough stays as it is";
  ASSERT_TRUE((*file)->Resize(5));
  EXPECT_LT(Taken(folder_ / "a"), kSize) << "given back";
}

TEST_F(FileTest, RoomThatIsNotThereLeavesTheFileAsItIs) {
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{100000, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  auto file = CreateFile(folder_ / "a", Existing::kRefuse);
  const bool written = file && (*file)->WriteAt(0, AsBytes("hello"));
  const auto reserved = (*file)->Reserve(200000);
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  ASSERT_TRUE(written);
  ASSERT_FALSE(reserved);
  EXPECT_EQ(reserved.error().kind, FailureKind::kFull);
  EXPECT_EQ((*file)->Size(), 5u);
  EXPECT_EQ(std::filesystem::file_size(folder_ / "a"), 5u);
}

TEST_F(FileTest, MakesAFolderOnce) {
  EXPECT_TRUE(CreateFolder(folder_ / "out"));
  EXPECT_EQ(CreateFolder(folder_ / "out").error().kind, FailureKind::kExists);
  EXPECT_EQ(CreateFolder(folder_ / "no" / "out").error().kind, FailureKind::kNotFound);
}

TEST_F(FileTest, DeletingAMissingFileSaysSo) {
  EXPECT_EQ(DeleteFile(folder_ / "a").error().kind, FailureKind::kNotFound);
}

TEST(MemoryFile, BehavesLikeAFile) {
  MemoryFile file;
  ASSERT_TRUE(file.WriteAt(2, AsBytes("ab")));
  std::array<std::byte, 8> buffer{};
  EXPECT_EQ(*file.ReadAt(1, buffer), 3u);
  EXPECT_EQ(buffer[1], std::byte{'a'});
  ASSERT_TRUE(file.Resize(1));
  EXPECT_EQ(file.Size(), 1u);
}

}  // namespace
}  // namespace velmora::platform
