#include "platform/windows/long_path.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "platform/file.h"
#include "platform/file_system.h"
#include "platform/user_folders.h"

namespace velmora::platform {
namespace {

TEST(LongPath, HasTheFormThatNoLimitHoldsFor) {
  EXPECT_EQ(LongPath(L"C:\\a\\b"), L"\\\\?\\C:\\a\\b");
  EXPECT_EQ(LongPath(L"C:/a/../b c"), L"\\\\?\\C:\\b c");
  EXPECT_EQ(LongPath(L"\\\\server\\share\\a"), L"\\\\?\\UNC\\server\\share\\a");
}

TEST(LongPath, LeavesWhatHasAFormOfItsOwn) {
  EXPECT_EQ(LongPath(L"\\\\?\\C:\\a"), L"\\\\?\\C:\\a");
  EXPECT_EQ(LongPath(L"NUL"), L"\\\\.\\NUL") << "a device is no file";
  EXPECT_EQ(LongPath(L""), L"");
}

TEST(LongPath, GoesBackToTheUsualForm) {
  EXPECT_EQ(WithoutPrefix(L"\\\\?\\C:\\a"), L"C:\\a");
  EXPECT_EQ(WithoutPrefix(L"\\\\?\\UNC\\server\\share"), L"\\\\server\\share");
  EXPECT_EQ(WithoutPrefix(L"C:\\a"), L"C:\\a");
}

TEST(LongPath, FilesBeyondTheLimitAreMadeReadReplacedAndDeleted) {
  const auto temporary = TemporaryFolder::Create();
  ASSERT_TRUE(temporary);
  std::filesystem::path folder = temporary->Path();
  for (int i = 0; i < 3; ++i) folder /= std::wstring(200, static_cast<wchar_t>(L'a' + i));
  ASSERT_TRUE(CreateFolders(folder));
  const std::filesystem::path file = folder / L"a file";
  ASSERT_GT(file.native().size(), 600u);
  const std::array<std::byte, 3> bytes{std::byte{1}, std::byte{2}, std::byte{3}};
  {
    const auto made = CreateFile(file, Existing::kRefuse);
    ASSERT_TRUE(made) << TextOf(made.error());
    ASSERT_TRUE((*made)->WriteAt(0, bytes));
  }
  EXPECT_EQ(*FileSize(file), 3u);
  EXPECT_TRUE(FreeSpace(folder));
  ASSERT_TRUE(Replace(file, folder / L"another"));
  std::array<std::byte, 3> read{};
  const auto opened = OpenForReading(folder / L"another");
  ASSERT_TRUE(opened);
  EXPECT_EQ(*(*opened)->ReadAt(0, read), 3u);
  EXPECT_EQ(read, bytes);
  EXPECT_FALSE(Exists(file));
  EXPECT_TRUE(DeleteFile(folder / L"another"));
}

}  // namespace
}  // namespace velmora::platform
