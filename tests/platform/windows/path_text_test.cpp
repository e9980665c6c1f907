#include "platform/path_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/file.h"
#include "platform/user_folders.h"
#include "platform/volumes.h"

namespace velmora::platform {
namespace {

TEST(PathText, UnitsTravelAsTheyAre) {
  const std::u16string text = {u'a', 0xD800, u'\u6f22', 0xDC00, 0xD83D, 0xDE00, 0xDCE9, u'b'};
  EXPECT_EQ(TextOfPath(PathOf(text)), text);
  EXPECT_EQ(PathOf(text).native().size(), text.size());
}

TEST(PathText, BytesAreUtf8WithLoneSurrogatesInIt) {
  const std::filesystem::path path = L"caf\u00e9 \U0001F600 \xD800!";
  EXPECT_EQ(BytesOfPath(path), "caf\xC3\xA9 \xF0\x9F\x98\x80 \xED\xA0\x80!");
  EXPECT_EQ(PathOf(std::string_view("caf\xC3\xA9 \xF0\x9F\x98\x80 \xED\xA0\x80!")), path);
  EXPECT_EQ(PathOf(std::string_view("a\xFF"
                                    "b"))
                .native(),
            L"a\uFFFDb");
}

TEST(PathText, EveryUnitComesBackThroughBytes) {
  for (unsigned unit = 1; unit <= 0xFFFF; ++unit) {
    const std::u16string text = {u'a', static_cast<char16_t>(unit), u'b'};
    ASSERT_EQ(TextOfPath(PathOf(BytesOfPath(PathOf(text)))), text) << unit;
  }
}

TEST(PathText, AFileWhoseNameIsNoTextIsFoundAgainByBytes) {
  const auto folder = TemporaryFolder::Create();
  ASSERT_TRUE(folder);
  const std::filesystem::path file = folder->Path() / L"a\xD800!.ost";
  if (!CreateFile(file, Existing::kRefuse)) GTEST_SKIP() << "the file system has no such name";
  const std::vector<FolderEntry> entries = ListFolder(folder->Path());
  ASSERT_EQ(entries.size(), 1u);
  if (entries.front().name != file.filename()) GTEST_SKIP() << "the file system keeps another name for it";
  EXPECT_TRUE(OpenForReading(PathOf(BytesOfPath(folder->Path() / entries.front().name))));
}

}  // namespace
}  // namespace velmora::platform
