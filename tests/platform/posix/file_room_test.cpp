#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <array>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "platform/file.h"
#include "platform/user_folders.h"

namespace velmora::platform {
namespace {

class FileRoomTest : public testing::Test {
 protected:
  static std::span<const std::byte> AsBytes(std::string_view text) { return std::as_bytes(std::span(text)); }

  Result<TemporaryFolder> temporary_ = TemporaryFolder::Create();
  std::filesystem::path folder_ = temporary_->Path();
};

/// Bytes of the file system that a file holds.
std::uint64_t Taken(const std::filesystem::path& path) {
  struct stat status {};
  stat(path.c_str(), &status);
  return static_cast<std::uint64_t>(status.st_blocks) * 512;
}

TEST_F(FileRoomTest, ReservedRoomIsTakenAndReadsAsZeros) {
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

TEST_F(FileRoomTest, RoomThatIsNotThereLeavesTheFileAsItIs) {
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

TEST_F(FileRoomTest, ADeviceIsNoSource) { EXPECT_EQ(OpenForReading("/dev/null").error().kind, FailureKind::kDenied); }

}  // namespace
}  // namespace velmora::platform
