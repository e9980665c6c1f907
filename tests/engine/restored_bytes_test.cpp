// A file from which bytes were lost, read as it was.
#include "engine/restored_bytes.h"

#include <gtest/gtest.h>

#include "forge/bytes.h"
#include "platform/memory_file.h"

namespace velmora::engine {
namespace {

std::shared_ptr<const platform::ByteSource> FileOf(const std::string& text) {
  return std::make_shared<platform::MemoryFile>(forge::ToBytes(text));
}

TEST(RestoredBytes, ReadsEveryRangeOfItAsItWas) {
  const auto whole = forge::ToBytes("\r\nab\r\n\r\ncde\r");
  const RestoredBytes restored(FileOf("\nab\n\ncde"), {0, 4, 6, 11});
  ASSERT_EQ(restored.Size(), whole.size());
  for (std::size_t offset = 0; offset <= whole.size(); ++offset) {
    for (std::size_t length = 0; length <= whole.size() + 2; ++length) {
      std::vector<std::byte> out(length);
      const auto read = restored.ReadAt(offset, out);
      ASSERT_TRUE(read);
      ASSERT_EQ(*read, std::min(length, whole.size() - offset));
      out.resize(*read);
      EXPECT_TRUE(std::ranges::equal(out, std::span(whole).subspan(offset, *read))) << offset << ' ' << length;
    }
  }
}

TEST(RestoredBytes, HandsOnWhyTheFileCannotBeRead) {
  class Broken : public platform::ByteSource {
   public:
    std::uint64_t Size() const override { return 8; }
    platform::Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte>) const override {
      return tl::unexpected(platform::Failure{platform::FailureKind::kInputOutput, "disk", offset, "is broken"});
    }
  };
  const RestoredBytes restored(std::make_shared<Broken>(), {2});
  std::vector<std::byte> out(4);
  const auto read = restored.ReadAt(0, out);
  ASSERT_FALSE(read);
  EXPECT_EQ(read.error().kind, platform::FailureKind::kInputOutput);
}

}  // namespace
}  // namespace velmora::engine
