// A folder of 20,000 items in a real store: how long the panes take over it, and how long the windows wait.
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>
#include <cstdio>

#include "platform/path_text.h"
#include "platform/process.h"
#include "platform/user_folders.h"
#include "store/messaging/pst_library.h"
#include "workflow/panes/grid_rows.h"
#include "workflow/panes/grid_view.h"
#include "workflow/panes/list_view_right.h"

namespace velmora::workflow {
namespace {

using output::Field;

constexpr int kItems = 20000;
constexpr int kLongestWait = 1000;  // milliseconds; a build without optimisation under load is slow

/// Ticks while the windows are alive, and keeps the longest time between two ticks.
class Pulse {
 public:
  Pulse() {
    QObject::connect(&timer_, &QTimer::timeout, [this] { longest_ = std::max(longest_, clock_.restart()); });
    clock_.start();
    timer_.start(5);
  }
  qint64 Longest() { return std::max(longest_, clock_.elapsed()); }

 private:
  QTimer timer_;
  QElapsedTimer clock_;
  qint64 longest_ = 0;
};

class LargeFolderTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = std::make_unique<platform::TemporaryFolder>(platform::TemporaryFolder::Create().value());
    const auto session = Library().CreateRDOSession();
    const auto store = session->Stores()->AddPSTStore(StorePath(), u"Large");
    const auto folders = store->IPMRootFolder()->Folders();
    const auto mails = folders->Add(u"Mails", text::Text(u"IPF.Note"))->Items();
    const auto tasks = folders->Add(u"Tasks", text::Text(u"IPF.Task"))->Items();
    for (int i = 0; i < kItems; ++i) {
      const text::Text number = text::FromUtf8(std::to_string(i));
      const auto mail = mails->Add(u"IPM.Note");
      mail->Put(Field::SenderName, text::Text(u"Sender ") + number);
      mail->Put(Field::To, u"Recipient of this mail");
      mail->Put(Field::Subject, u"Subject of the mail number " + number);
      mail->Save();
      const auto task = tasks->Add(u"IPM.Task");
      task->Put(Field::Subject, u"Task number " + number);
      task->Put(Field::Owner, u"Owner of this task");
      task->Save();
    }
  }
  static void TearDownTestSuite() { folder_.reset(); }

  static messaging::PstLibrary Library() {
    messaging::PstLibraryOptions options;
    options.configFolder = folder_->Path();
    return messaging::PstLibrary(std::move(options));
  }
  static text::Text StorePath() { return platform::TextOfPath(folder_->Path() / "large.pst"); }

  LargeFolderTest() { finished_->Use(StorePath()); }

  void Print(const char* what, qint64 time, qint64 longest) const {
    const std::uint64_t peak = platform::PeakRssKiB();
    std::printf("%d items, %s: %lld ms, longest wait of the windows %lld ms, peak memory %llu KiB, %llu of it new\n",
                kItems, what, static_cast<long long>(time), static_cast<long long>(longest),
                static_cast<unsigned long long>(peak), static_cast<unsigned long long>(peak - peakBefore_));
  }

  const std::uint64_t peakBefore_ = platform::PeakRssKiB();
  static inline std::unique_ptr<platform::TemporaryFolder> folder_;
  output::Ref<output::RDOSession> session_;
  std::shared_ptr<FinishedStore> finished_ = std::make_shared<FinishedStore>(session_, [](text::TextView path) {
    auto session = Library().CreateRDOSession();
    session->Stores()->OpenPSTStore(path);
    return session;
  });
};

TEST_F(LargeFolderTest, TheListStaysAliveWhileItFills) {
  CListViewRight list(nullptr, finished_, [](const RunMessage&) {});
  list.BuildColumns();
  list.resize(800, 400);
  list.show();
  Pulse pulse;
  QElapsedTimer clock;
  clock.start();
  list.OnMessage({.code = 32834, .text = u"\\\\Large\\Mails"});
  int atFirstRow = 0;
  ASSERT_TRUE(QTest::qWaitFor(
      [&] {
        if (atFirstRow == 0 && list.RowCount() > 0) atFirstRow = list.RowCount();
        return !list.ListBusy();
      },
      120000));
  Print("list", clock.elapsed(), pulse.Longest());
  EXPECT_EQ(list.RowCount(), kItems);
  EXPECT_LT(atFirstRow, kItems / 2) << "rows are there long before the last one is read";
  EXPECT_LT(pulse.Longest(), kLongestWait);
}

TEST_F(LargeFolderTest, TheGridStaysAliveWhileItFills) {
  CGridView grid(nullptr, finished_);
  grid.resize(800, 400);
  grid.show();
  Pulse pulse;
  QElapsedTimer clock;
  clock.start();
  grid.OnMessage({.code = 32838, .text = u"\\\\Large\\Tasks"});
  Print("grid", clock.elapsed(), pulse.Longest());
  EXPECT_EQ(grid.Rows().rowCount(), kItems);
  EXPECT_LT(pulse.Longest(), kLongestWait);
}

TEST_F(LargeFolderTest, TheRowsOfARunCostNoMoreTheMoreThereAre) {
  CListViewRight list(nullptr, finished_, [](const RunMessage&) {});
  list.BuildColumns();
  QElapsedTimer clock;
  const auto addHalf = [&] {
    clock.start();
    for (int i = 0; i < kItems / 2; ++i) {
      for (const std::uint32_t field : {1u, 2u, 3u, 4u}) {
        list.OnMessage({.code = 32832, .number = field, .text = u"A text of some length"});
      }
      QCoreApplication::processEvents();
    }
    return clock.elapsed();
  };
  const qint64 first = addHalf();
  const qint64 second = addHalf();
  Print("rows of a run", first + second, 0);
  EXPECT_EQ(list.RowCount(), kItems);
  EXPECT_LT(second, 3 * first + 500);
}

}  // namespace
}  // namespace velmora::workflow
