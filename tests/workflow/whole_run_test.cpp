// The wizard from the start page to the new store, with the engine itself.
#include <unistd.h>

#include <QLabel>
#include <QLineEdit>
#include <atomic>
#include <chrono>
#include <semaphore>

#include "conversion/free_space.h"
#include "forge/forge.h"
#include "output/trace/trace_library.h"
#include "workflow/custom_dlg.h"
#include "workflow/harness.h"
#include "workflow/progress_dlg.h"

namespace velmora::workflow {
namespace {

using namespace resources;
using testing::ElementsAre;

class TraceLines : public output::TraceSink {
 public:
  void WriteLine(std::string_view line) override {
    lines.emplace_back(line);
    if (!line.starts_with("{\"op\":\"AddItem\"")) return;
    if (++items == waitsAt) static_cast<void>(goOn.try_acquire_for(std::chrono::seconds(10)));
  }
  std::vector<std::string> lines;  ///< written by the worker; to be read once the run is over
  std::atomic<int> items{0};
  int waitsAt = 0;  ///< the worker goes on from that item when it may; 0: it never waits
  std::binary_semaphore goOn{0};
};

/// Somebody without the rights of the administrator, for whom no file is closed: then as long as this lives the
/// process is any user, who may go through `folder`.
class AsAnyUser {
 public:
  explicit AsAnyUser(const std::filesystem::path& folder) : isAdministrator_(geteuid() == 0) {
    std::filesystem::permissions(folder, std::filesystem::perms::all);
    if (isAdministrator_ && seteuid(kAnyUser) != 0) throw std::runtime_error("no other user can be had");
  }
  ~AsAnyUser() {
    if (isAdministrator_ && seteuid(0) != 0) std::abort();
  }
  AsAnyUser(const AsAnyUser&) = delete;
  AsAnyUser& operator=(const AsAnyUser&) = delete;

 private:
  static constexpr uid_t kAnyUser = 65534;
  bool isAdministrator_;
};

class WholeRunTest : public WizardTest {
 protected:
  void SetUp() override {
    machine_.makeOutput = [this] {
      return conversion::RunOutput{std::make_shared<output::TraceLibrary>(*trace_), [this, kept = trace_] {
                                     ++seals_;
                                     return platform::Result<void>{};
                                   }};
    };
    machine_.hasEnoughFreeSpace = conversion::HasEnoughFreeSpace;
    std::filesystem::create_directory(destination_);
    Start();
  }

  std::filesystem::path MakeSource(int messages) {
    const auto path = machine_.folder.Path() / "outlook.ost";
    forge::Mailbox box({.client = forge::Client::kOffline});
    const forge::Nid inbox = box.AddFolder({.name = u"Inbox", .containerClass = u"IPF.Note"});
    for (int i = 0; i < messages; ++i) box.AddMessage(inbox, {.subject = u"A message", .plain = u"text"});
    box.Finish().Save(path);
    return path;
  }

  /// From the start page to a destination page that is ready for the run.
  void PickSourceAndDestination(const std::filesystem::path& source) {
    Press(kBrowseStartId);
    PickInDialog(PathToQt(source));
    Press(kBrowseId);
    ASSERT_TRUE(Control<QWidget>(kNextId).isEnabled()) << "that the file is there is all that counts here";
    Press(kNextId);
    PickInDialog(PathToQt(destination_));
    Press(kBrowseId);
    ASSERT_TRUE(Control<QWidget>(kNextId).isEnabled());
  }

  /// From the start page to the run.
  void Convert(const std::filesystem::path& source) {
    PickSourceAndDestination(source);
    Press(kNextId);
    ASSERT_TRUE(IsPage<CProgressDlg>());
  }

  bool CanFinish() {
    return frame_->progressDialog != nullptr && frame_->progressDialog->Control<QWidget>(kFinishId)->isEnabled();
  }

  std::filesystem::path destination_ = machine_.folder.Path() / "out";
  std::shared_ptr<TraceLines> trace_ = std::make_shared<TraceLines>();
  std::atomic<int> seals_{0};
};

TEST_F(WholeRunTest, FromTheStartPageToTheFolderOfTheNewStoreAndBack) {
  Convert(MakeSource(5));
  ASSERT_TRUE(Comes([this] { return CanFinish(); }));
  EXPECT_EQ(trace_->items, 5);
  EXPECT_EQ(seals_, 1);
  EXPECT_THAT(machine_.Log("open "), ElementsAre("open " + (destination_ / "outlook Converted0").string()));
  EXPECT_TRUE(boxes_.seen.empty());
  Press(kFinishId);
  EXPECT_TRUE(IsPage<CCustomDlg>());
}

TEST_F(WholeRunTest, StoppedForGoodItRunsAgainFromTheStart) {
  const auto source = MakeSource(30);
  trace_->waitsAt = 10;
  Convert(source);
  ASSERT_TRUE(Comes([this] { return trace_->items == 10; }));
  boxes_.Answer(QMessageBox::Yes, [this] { trace_->goOn.release(); });  // by then the question holds the run
  Press(kCancelId);
  ASSERT_TRUE(IsPage<CCustomDlg>());
  ASSERT_TRUE(Comes([this] { return seals_ == 1; })) << "what was written is sealed";
  EXPECT_EQ(trace_->items, 10);
  EXPECT_TRUE(std::filesystem::exists(destination_ / "outlook Converted0")) << "nothing is rolled back";

  std::filesystem::rename(destination_, machine_.folder.Path() / "stopped");
  std::filesystem::create_directory(destination_);
  trace_ = std::make_shared<TraceLines>();
  Convert(source);
  ASSERT_TRUE(Comes([this] { return CanFinish(); }, 60000));
  EXPECT_EQ(trace_->items, 30);
}

TEST_F(WholeRunTest, HeldAndLetGoItComesToItsEnd) {
  trace_->waitsAt = 10;
  Convert(MakeSource(30));
  ASSERT_TRUE(Comes([this] { return trace_->items == 10; }));
  boxes_.Answer(QMessageBox::No, [this] {
    trace_->goOn.release();
    QTest::qWait(100);
    EXPECT_EQ(trace_->items, 10) << "the question holds the run";
  });
  Press(kCancelId);
  ASSERT_TRUE(Comes([this] { return CanFinish(); }, 60000));
  EXPECT_EQ(trace_->items, 30);
}

TEST_F(WholeRunTest, AFileThatIsNoStoreIsToldAndThePageStays) {
  const auto source = machine_.Write("no.ost", std::string(4096, 'x'));
  Convert(source);
  boxes_.Answer(QMessageBox::Ok);
  ASSERT_TRUE(Comes([this] { return boxes_.seen.size() == 1; }));
  EXPECT_EQ(boxes_.Texts(), QStringList("Error: Pst/Ost file is not valid."));
  Settle();
  EXPECT_TRUE(IsPage<CProgressDlg>());
  EXPECT_FALSE(CanFinish());
}

TEST_F(WholeRunTest, AnEmptyFileIsNoStore) {
  Convert(machine_.Write("empty.ost"));
  boxes_.Answer(QMessageBox::Ok);
  ASSERT_TRUE(Comes([this] { return boxes_.seen.size() == 1; }));
  EXPECT_EQ(boxes_.Texts(), QStringList("Error: Pst/Ost file is not valid."));
}

TEST_F(WholeRunTest, ASourceThatMayNotBeReadIsToldWhenTheRunBegins) {
  const auto source = MakeSource(1);
  std::filesystem::permissions(source, std::filesystem::perms::none);
  PickSourceAndDestination(source);
  boxes_.Answer(QMessageBox::Ok);
  {
    const AsAnyUser anyUser(machine_.folder.Path());
    Press(kNextId);
    ASSERT_TRUE(Comes([this] { return boxes_.seen.size() == 1; }));
  }
  EXPECT_EQ(boxes_.Texts(),
            QStringList("Error: Source file could not open.Make sure that another application is not using. "));
  EXPECT_TRUE(IsPage<CProgressDlg>());
  EXPECT_TRUE(std::filesystem::is_empty(destination_));
}

TEST_F(WholeRunTest, ASourceLargerThanTheRoomThatIsLeftIsRefusedAndNoWindowIsLeft) {
  const auto source = machine_.Write("large.ost");
  std::error_code refused;
  // The file is one hole: it has the size and takes no room.
  std::filesystem::resize_file(source, std::filesystem::space(destination_).available + (std::uintmax_t{1} << 36),
                               refused);
  if (refused == std::errc::file_too_large) GTEST_SKIP() << "the file system holds no file larger than its free space";
  ASSERT_FALSE(refused) << refused.message();
  PickSourceAndDestination(source);
  boxes_.Answer(QMessageBox::Ok);
  Press(kNextId);
  EXPECT_EQ(boxes_.Texts(),
            QStringList("Information: Not enough free disk space available to save converted .pst file.\n"
                        "Please start the process again by selecting another destination path."));
  EXPECT_TRUE(IsNowhere());
  EXPECT_EQ(frame_->WorkerThread(), nullptr);
  EXPECT_TRUE(std::filesystem::is_empty(destination_));
}

TEST_F(WholeRunTest, ASourceThatCannotBeOpenedIsTold) {
  const auto source = machine_.Write("gone.ost");
  PickSourceAndDestination(source);
  std::filesystem::remove(source);
  boxes_.Answer(QMessageBox::Ok);
  Press(kNextId);
  ASSERT_TRUE(Comes([this] { return boxes_.seen.size() == 1; }));
  EXPECT_EQ(boxes_.Texts(),
            QStringList("Error: Source file could not open.Make sure that another application is not using. "));
  boxes_.Answer(QMessageBox::Yes);
  CloseBox();
  EXPECT_EQ(boxes_.Texts().last(), "Confirmation: Do you want to stop the process?");
  EXPECT_TRUE(IsPage<CCustomDlg>());
}

TEST_F(WholeRunTest, ADestinationThatVanishedIsTold) {
  const auto source = MakeSource(1);
  PickSourceAndDestination(source);
  std::filesystem::remove(destination_);
  boxes_.Answer(QMessageBox::Ok);
  Press(kNextId);
  ASSERT_TRUE(Comes([this] { return boxes_.seen.size() == 1; }));
  ASSERT_EQ(boxes_.seen.size(), 1u);
  EXPECT_TRUE(
      boxes_.Texts()[0].startsWith("Error: Unable to create folder to save recovered .pst file.\n"
                                   "Please select another location to save recovered .pst file.\n\n" +
                                   PathToQt(destination_ / "outlook Converted0") + ": "))
      << boxes_.Texts()[0].toStdString();
  ASSERT_TRUE(Comes([this] { return State().run.runEnded.load(); }));
  boxes_.Answer(QMessageBox::No);
  CloseBox();
  EXPECT_EQ(boxes_.Texts().last(), "Information: Do you want to exit the application?");
}

TEST_F(WholeRunTest, ASecondRunIntoTheSameFolderSaysThatItIsThereAlready) {
  const auto source = MakeSource(1);
  std::filesystem::create_directory(destination_ / "outlook Converted0");
  Convert(source);
  boxes_.Answer(QMessageBox::Ok);
  ASSERT_TRUE(Comes([this] { return boxes_.seen.size() == 1; }));
  EXPECT_EQ(boxes_.Texts(),
            QStringList("Error: Unable to create folder to save recovered .pst file.\n"
                        "Please select another location to save recovered .pst file.\n\n" +
                        PathToQt(destination_ / "outlook Converted0") + ": the folder is there already"));
}

TEST_F(WholeRunTest, ARunThatMeetsTheEndOfOneThatWasLeftIsTold) {
  const auto source = MakeSource(2000);
  trace_->waitsAt = 1990;
  Convert(source);
  Key(Qt::Key_Escape);
  ASSERT_TRUE(IsPage<CCustomDlg>());
  ASSERT_TRUE(Comes([this] { return trace_->items == 1990; }));
  Convert(source);
  trace_->goOn.release();  // the second has begun, and is far from its first item
  boxes_.Answer(QMessageBox::Ok);
  ASSERT_TRUE(Comes([this] { return !boxes_.seen.empty(); }, 60000));
  EXPECT_TRUE(boxes_.Texts().first().startsWith("Information: Recovery process aborted.\nRecovered at:"));
  EXPECT_EQ(trace_->items, 2000) << "the first came to its end";
}

}  // namespace
}  // namespace velmora::workflow
