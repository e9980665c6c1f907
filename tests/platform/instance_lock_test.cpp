#include "platform/instance_lock.h"

#include <gtest/gtest.h>

#include <fstream>

#include "platform/user_folders.h"

namespace velmora::platform {
namespace {

TEST(InstanceLockTest, OneHolderAtATime) {
  const auto folder = TemporaryFolder::Create();
  const std::filesystem::path file = folder->Path() / "new" / "lock";
  {
    const auto first = InstanceLock::Take(file);
    ASSERT_TRUE(first);
    EXPECT_EQ(InstanceLock::Take(file).error().kind, FailureKind::kExists);
  }
  EXPECT_TRUE(InstanceLock::Take(file)) << "it goes with its holder";
}

TEST(InstanceLockTest, AFileThatCannotBeMadeIsAnotherFailure) {
  const auto folder = TemporaryFolder::Create();
  std::ofstream(folder->Path() / "file") << "x";
  EXPECT_EQ(InstanceLock::Take(folder->Path() / "file" / "lock").error().kind, FailureKind::kDenied);
}

}  // namespace
}  // namespace velmora::platform
