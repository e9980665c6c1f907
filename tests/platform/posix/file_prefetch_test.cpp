#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <thread>
#include <vector>

#include "platform/file.h"
#include "platform/user_folders.h"

namespace velmora::platform {
namespace {

constexpr std::size_t kFileSize = std::size_t{1} << 20;

/// Pages of the first bytes of a file that the system holds in memory.
std::ptrdiff_t PagesHeld(int fd, std::size_t length) {
  void* map = ::mmap(nullptr, length, PROT_READ, MAP_SHARED, fd, 0);
  if (map == MAP_FAILED) return -1;
  std::vector<unsigned char> pages(length / static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)));
  const int failed = ::mincore(map, length, pages.data());
  ::munmap(map, length);
  return failed != 0 ? -1 : std::ranges::count_if(pages, [](unsigned char page) { return (page & 1) != 0; });
}

// In a folder in memory nothing is given back, and the file is held all along.
TEST(FilePrefetch, BringsBytesIntoTheMemoryOfTheSystem) {
  const auto temporary = TemporaryFolder::Create();
  const std::filesystem::path path = temporary->Path() / "a";
  {
    auto file = CreateFile(path, Existing::kRefuse);
    ASSERT_TRUE(file);
    ASSERT_TRUE((*file)->WriteAt(0, std::vector<std::byte>(kFileSize, std::byte{1})));
    ASSERT_TRUE((*file)->Flush());
  }
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_GE(fd, 0);
  EXPECT_EQ(::posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED), 0);
  const auto file = OpenForReading(path);
  ASSERT_TRUE(file);
  constexpr std::size_t kAsked = kFileSize / 8;
  ASSERT_TRUE((*file)->Prefetch(0, kAsked));
  const auto all = static_cast<std::ptrdiff_t>(kAsked / static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)));
  for (int i = 0; i < 1000 && PagesHeld(fd, kAsked) < all; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_EQ(PagesHeld(fd, kAsked), all);
  EXPECT_TRUE((*file)->Prefetch(kFileSize - 1, kFileSize)) << "over the end, which is no failure";
  ::close(fd);
}

}  // namespace
}  // namespace velmora::platform
