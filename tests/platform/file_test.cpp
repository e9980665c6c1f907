#include "platform/file.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <string_view>

#include "platform/memory_file.h"
#include "platform/user_folders.h"

namespace velmora::platform {
namespace {

class FileTest : public testing::Test {
 protected:
  Result<TemporaryFolder> temporary_ = TemporaryFolder::Create();
  std::filesystem::path folder_ = temporary_->Path();
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
