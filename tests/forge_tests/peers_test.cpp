// What is forged is read back by programs that share no line with the forge.
#include "forge_tests/peers.h"

#include <gtest/gtest.h>

#include "forge/demo_store.h"
#include "forge_tests/sample.h"

namespace velmora::forge {
namespace {

namespace fs = std::filesystem;

struct Kind {
  Format format;
  Encoding encoding;
  Client client;
  bool compressed = false;
};

class ForgedStore : public testing::TestWithParam<Kind> {
 protected:
  StoreOptions Options() const {
    return {.format = GetParam().format,
            .encoding = GetParam().encoding,
            .client = GetParam().client,
            .compressed = GetParam().compressed};
  }
  ScratchFolder folder_;
};

TEST_P(ForgedStore, IsExportedWhole) {
  if (!IsInstalled("pffexport")) FAIL() << "pffexport is not installed";
  ForgeSample(Options(), {.tables = true}).Save(folder_.path() / "s.pst");
  ASSERT_TRUE(RunIn(folder_, "pffexport -q -m items -t out s.pst")) << TextOf(folder_.path() / "output");
  const fs::path inbox = folder_.path() / "out.export" / "Top of Personal Folders" / "Inbox";
  EXPECT_EQ(CountFiles(folder_.path() / "out.export", "OutlookHeaders.txt"), 4) << "three messages and an embedded one";
  EXPECT_TRUE(fs::exists(inbox / u8"Grüße" / "Message00002"));
  const std::string headers = TextOf(inbox / "Message00001" / "OutlookHeaders.txt");
  EXPECT_NE(headers.find("Re: Hello"), std::string::npos);
  EXPECT_NE(headers.find("ann@example.org"), std::string::npos);
  EXPECT_NE(headers.find("Feb 29, 2020 12:01:00"), std::string::npos);
  EXPECT_NE(TextOf(inbox / "Message00001" / "Recipients.txt").find("bob@example.org"), std::string::npos);
  EXPECT_EQ(fs::file_size(inbox / u8"Grüße" / "Message00001" / "Message.txt"), 30000U);
  const fs::path files = inbox / u8"Grüße" / "Message00002" / "Attachments";
  EXPECT_EQ(TextOf(files / "1_a.txt"), "abc");
  const Bytes chained = Noise(100000, 2);
  EXPECT_EQ(TextOf(files / "3_c.bin"), std::string(reinterpret_cast<const char*>(chained.data()), chained.size()));
}

TEST_P(ForgedStore, IsListedWithoutTables) {
  if (!IsInstalled("readpst")) FAIL() << "readpst is not installed";
  ForgeSample(Options()).Save(folder_.path() / "s.pst");
  ASSERT_TRUE(RunIn(folder_, "mkdir out && readpst -S -j0 -D -o out s.pst")) << TextOf(folder_.path() / "output");
  const fs::path inbox = folder_.path() / "out" / "Forged store" / "Inbox";
  EXPECT_EQ(CountFiles(inbox, "1"), 1);
  EXPECT_EQ(CountFiles(inbox / u8"Grüße", "2"), 1);
  EXPECT_TRUE(fs::exists(inbox / u8"Grüße" / "2-c.bin"));
  EXPECT_NE(TextOf(inbox / u8"Grüße" / "2").find("in.txt"), std::string::npos) << "the embedded message's attachment";
}

TEST_P(ForgedStore, IsDumpedByTheChecker) {
  if (ToolsFolder().empty()) GTEST_SKIP() << test::kWithoutTools;
  ForgeSample(Options()).Save(folder_.path() / "s.pst");
  ASSERT_TRUE(RunIn(folder_, "python3 '" + (ToolsFolder() / "pstcheck.py").string() + "' --dump s.pst"));
  const std::string dump = TextOf(folder_.path() / "output");
  EXPECT_EQ(CountOf(dump, "\"kind\": \"message\""), 3);
  EXPECT_EQ(CountOf(dump, "\"kind\": \"embedded\""), 1);
  EXPECT_EQ(CountOf(dump, "\"method\": 1"), 4) << "attachments by value, one of them within the embedded message";
  EXPECT_EQ(CountOf(dump, "\"errors\""), 0);
  EXPECT_EQ(CountOf(dump, ":Keywords\""), 1);
}

std::string NameOf(const testing::TestParamInfo<Kind>& info) {
  constexpr const char* kFormats[] = {"Ansi", "Unicode", "Unicode4k"};
  constexpr const char* kEncodings[] = {"Plain", "Permuted", "Cyclic"};
  const Kind& kind = info.param;
  return std::string(kFormats[static_cast<int>(kind.format)]) + kEncodings[static_cast<int>(kind.encoding)] +
         (kind.compressed ? "Compressed" : "");
}

INSTANTIATE_TEST_SUITE_P(FormatsAndEncodings, ForgedStore,
                         testing::Values(Kind{Format::kAnsi, Encoding::kNone, Client::kPersonal},
                                         Kind{Format::kAnsi, Encoding::kPermute, Client::kOffline},
                                         Kind{Format::kAnsi, Encoding::kCyclic, Client::kPersonal},
                                         Kind{Format::kUnicode, Encoding::kNone, Client::kPersonal},
                                         Kind{Format::kUnicode, Encoding::kPermute, Client::kOffline},
                                         Kind{Format::kUnicode, Encoding::kCyclic, Client::kPersonal},
                                         Kind{Format::kUnicode4k, Encoding::kNone, Client::kOffline},
                                         Kind{Format::kUnicode4k, Encoding::kNone, Client::kOffline, true},
                                         Kind{Format::kUnicode4k, Encoding::kPermute, Client::kOffline},
                                         Kind{Format::kUnicode4k, Encoding::kCyclic, Client::kOffline}),
                         NameOf);

TEST(ForgedStoreAtFullLength, HasNothingForTheStrictCheckerToFind) {
  if (ToolsFolder().empty()) GTEST_SKIP() << test::kWithoutTools;
  for (const Encoding encoding : {Encoding::kNone, Encoding::kPermute, Encoding::kCyclic}) {
    ScratchFolder folder;
    ForgeSample({.encoding = encoding, .fullLength = true}, {.tables = true}).Save(folder.path() / "s.pst");
    EXPECT_TRUE(RunIn(folder, "python3 '" + (ToolsFolder() / "pstcheck.py").string() + "' --strict s.pst"))
        << TextOf(folder.path() / "output");
  }
}

TEST(DemoStore, HoldsWhatItSaysWhileItIsSound) {
  if (ToolsFolder().empty()) GTEST_SKIP() << test::kWithoutTools;
  ScratchFolder folder;
  ForgeDemoStore(DemoState::kSound).Save(folder.path() / "s.ost");
  ASSERT_TRUE(RunIn(folder, "python3 '" + (ToolsFolder() / "pstcheck.py").string() + "' --dump s.ost"));
  const std::string dump = TextOf(folder.path() / "output");
  int all = 0;
  for (const auto& [messageClass, count] : DemoItems()) {
    EXPECT_EQ(CountOf(dump, "\"class\": \"" + messageClass + "\""), count + (messageClass == "IPM.Note" ? 1 : 0))
        << messageClass << ", the embedded message included";
    all += count;
  }
  EXPECT_EQ(CountOf(dump, "\"kind\": \"message\""), all);
  EXPECT_EQ(CountOf(dump, "\"kind\": \"folder\", \"path\": [\"Top of Personal Folders\", "), kDemoFolders);
  EXPECT_EQ(CountOf(dump, "\"errors\""), 0);
}

TEST(DemoStore, OpensForNobodyOnceItIsDamaged) {
  if (!IsInstalled("pffexport") || !IsInstalled("readpst")) FAIL() << "pffexport or readpst is not installed";
  ScratchFolder folder;
  ForgeDemoStore(DemoState::kDamaged).Save(folder.path() / "s.ost");
  EXPECT_FALSE(RunIn(folder, "pffexport -q -m items -t out s.ost"));
  RunIn(folder, "mkdir out && readpst -S -j0 -D -o out s.ost");
  EXPECT_EQ(CountFiles(folder.path() / "out.export") + CountFiles(folder.path() / "out"), 0);
}

}  // namespace
}  // namespace velmora::forge
