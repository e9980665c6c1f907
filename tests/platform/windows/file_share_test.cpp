#include <gtest/gtest.h>

#include <array>

#include "platform/file.h"
#include "platform/instance_lock.h"
#include "platform/user_folders.h"
#include "platform/windows/handle.h"

namespace velmora::platform {
namespace {

class FileShareTest : public testing::Test {
 protected:
  /// Another program's hold of the file, which lets others do what `share` says.
  Handle Hold(DWORD share) {
    return Handle(::CreateFileW(file_.c_str(), GENERIC_READ | GENERIC_WRITE, share, nullptr, OPEN_ALWAYS, 0, nullptr));
  }

  Result<TemporaryFolder> temporary_ = TemporaryFolder::Create();
  std::filesystem::path file_ = temporary_->Path() / L"a.ost";
};

TEST_F(FileShareTest, AFileThatAnotherProgramWritesIsReadWhereItLetsOthersRead) {
  const Handle held = Hold(FILE_SHARE_READ);
  ASSERT_TRUE(held.IsOpen());
  EXPECT_TRUE(OpenForReading(file_));
  EXPECT_EQ(OpenForWriting(file_).error().kind, FailureKind::kDenied);
}

TEST_F(FileShareTest, AFileThatAnotherProgramKeepsForItselfIsDenied) {
  const Handle held = Hold(0);
  ASSERT_TRUE(held.IsOpen());
  EXPECT_EQ(OpenForReading(file_).error().kind, FailureKind::kDenied);
  EXPECT_EQ(InstanceLock::Take(file_).error().kind, FailureKind::kExists);
}

TEST_F(FileShareTest, AFileThatIsReadStaysOpenToOthers) {
  { ASSERT_TRUE(Hold(0).IsOpen()); }
  const auto file = OpenForReading(file_);
  ASSERT_TRUE(file);
  EXPECT_TRUE(Hold(FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE).IsOpen());
  EXPECT_TRUE(DeleteFile(file_));
}

TEST_F(FileShareTest, AFileWithoutANameIsGoneWhenItIsClosed) {
  auto file = CreateUnnamedFile();
  ASSERT_TRUE(file);
  const std::array<std::byte, 2> bytes{std::byte{7}, std::byte{8}};
  ASSERT_TRUE((*file)->WriteAt(1, bytes));
  std::array<std::byte, 3> read{};
  EXPECT_EQ(*(*file)->ReadAt(0, read), 3u);
  EXPECT_EQ(read[2], std::byte{8});
  wchar_t folder[MAX_PATH + 1];
  ASSERT_NE(::GetTempPathW(MAX_PATH + 1, folder), 0u);
  const auto countFiles = [&] {
    WIN32_FIND_DATAW found{};
    int count = 0;
    const std::wstring mine = std::wstring(folder) + L"velmora-" + std::to_wstring(::GetCurrentProcessId()) + L"-*.tmp";
    const HANDLE search = ::FindFirstFileW(mine.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return 0;
    do {
      ++count;
    } while (::FindNextFileW(search, &found));
    ::FindClose(search);
    return count;
  };
  EXPECT_EQ(countFiles(), 1);
  file->reset();
  EXPECT_EQ(countFiles(), 0);
}

TEST_F(FileShareTest, ReservedRoomIsTakenAndReadsAsZeros) {
  constexpr std::uint64_t kSize = 300000;
  const auto file = CreateFile(file_, Existing::kRefuse);
  ASSERT_TRUE(file);
  const std::array<std::byte, 2> bytes{std::byte{7}, std::byte{8}};
  ASSERT_TRUE((*file)->WriteAt(0, bytes));
  ASSERT_TRUE((*file)->Reserve(kSize));
  EXPECT_EQ((*file)->Size(), kSize);
  const Handle same(::CreateFileW(file_.c_str(), 0, 7, nullptr, OPEN_EXISTING, 0, nullptr));
  FILE_STANDARD_INFO info{};
  ASSERT_TRUE(::GetFileInformationByHandleEx(same.Get(), FileStandardInfo, &info, sizeof info));
  EXPECT_GE(info.AllocationSize.QuadPart, static_cast<LONGLONG>(kSize));
  std::array<std::byte, 3> read{};
  ASSERT_EQ(*(*file)->ReadAt(1, read), 3u);
  EXPECT_EQ(read, (std::array<std::byte, 3>{std::byte{8}, std::byte{0}, std::byte{0}}));
  ASSERT_TRUE((*file)->Reserve(10));
  EXPECT_EQ((*file)->Size(), kSize) << "a file that is long enough stays as it is";
}

TEST_F(FileShareTest, ADeviceIsNoSource) { EXPECT_EQ(OpenForReading("NUL").error().kind, FailureKind::kDenied); }

}  // namespace
}  // namespace velmora::platform
