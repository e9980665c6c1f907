// Processes that are killed while they write a store.
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <random>

#include "platform/path_text.h"
#include "store/messaging/store_fixture.h"

namespace velmora::messaging {
namespace {

using output::Field;
using output::FolderType;
using output::RDOMail;
using output::Ref;

using KilledWriter = StoreTest;

/// What a process leaves that writes mails into `path` until it is killed after `milliseconds`.
void WriteAndDie(const std::filesystem::path& path, int milliseconds) {
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    PstLibrary library({path.parent_path() / "config", kTestEpoch, text::CodePage::Lossless()});
    const auto session = library.CreateRDOSession();
    const auto top = session->Stores()->AddPSTStore(platform::TextOfPath(path), u"Test store")->IPMRootFolder();
    const auto folder = top->Folders()->Add(u"Inbox", FolderType());
    for (int i = 0;; ++i) {
      const auto item = folder->Items()->Add(u"IPM.Note");
      item->Put(Field::Subject, text::FromUtf8(std::to_string(i)));
      if (i % 50 == 0) item->Attachments()->Add(TextContent(PatternOf(30000)), u"a.bin");
      item->Save();
      if (i % 7 == 3) item->Save();
      if (i % 11 == 5) item->Delete();
    }
  }
  ::usleep(static_cast<useconds_t>(milliseconds) * 1000);
  ::kill(child, SIGKILL);
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status));
}

TEST_F(KilledWriter, LeavesAStoreThatOpensWithItsLastCommit) {
  std::mt19937 random(std::random_device{}());
  int held = 0;
  for (int round = 0; round < 4; ++round) {
    const auto path = folder_.path() / ("killed" + std::to_string(round) + ".pst");
    const int milliseconds = 60 + static_cast<int>(random() % 300);
    WriteAndDie(path, milliseconds);
    if (!std::filesystem::exists(path) || std::filesystem::file_size(path) == 0) continue;
    SCOPED_TRACE("killed after " + std::to_string(milliseconds) + " ms");
    const auto session = library_->CreateRDOSession();
    const auto top = session->Stores()->OpenPSTStore(platform::TextOfPath(path))->IPMRootFolder();
    EXPECT_EQ(top->Folders()->At(0)->Name(), u"Deleted Items");
    const auto inbox = top->Folders()->Item(u"Inbox");
    if (!inbox) continue;
    const auto items = inbox->Items();
    int last = -1;
    for (Ref<RDOMail> item = items->GetFirst(); item; item = items->GetNext()) {
      const int number = std::stoi(text::ToUtf8(TextOf(item, Field::Subject)));
      for (int missing = last + 1; missing < number; ++missing)
        EXPECT_EQ(missing % 11, 5) << "only deleted ones are not there";
      last = number;
      ++held;
    }
    if (forge::ToolsFolder().empty()) continue;
    // Space that was taken after the commit is in no map yet, and blocks of items in the making are not referred to.
    const std::string checker =
        "python3 '" + (forge::ToolsFolder() / "pstcheck.py").string() + "' --no-messaging --json ";
    forge::RunIn(folder_, checker + "'" + path.string() + "'");
    const std::string findings = forge::TextOf(folder_.path() / "output");
    for (const char* code :
         {"\"N01\"", "\"N21\"", "\"N22\"", "\"N30\"", "\"B0", "\"A05\"", "\"H05\"", "\"H06\"", "\"L"}) {
      EXPECT_EQ(forge::CountOf(findings, code), 0) << findings;
    }
  }
  EXPECT_GT(held, 0) << "no round lived long enough to commit items";
}

}  // namespace
}  // namespace velmora::messaging
