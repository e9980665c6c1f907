// How long the windows let an event wait while a conversion is on.
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <semaphore>
#include <thread>

#include "bench/large_store.h"
#include "store/messaging/pst_library.h"
#include "workflow/harness.h"
#include "workflow/progress_dlg.h"

namespace velmora::workflow {
namespace {

using namespace resources;
using Milliseconds = std::chrono::duration<double, std::milli>;
using std::chrono::steady_clock;

#if defined(__SANITIZE_ADDRESS__)
constexpr std::uint64_t kStoreBytes = 10u << 20;  // instrumented, the full size would take a minute
#else
constexpr std::uint64_t kStoreBytes = 100u << 20;
#endif

/// Puts one event after the other into the queue of the windows' thread, and notes how long each lies there.
class EventDelays {
 public:
  EventDelays() : thread_([this] { Ask(); }) {}

  /// To be called in the windows' thread, which answers until then.
  const std::vector<double>& Stop() {
    leave_ = true;
    // The last event waits for this very thread.
    Comes([this] { return left_.load(); });
    thread_.join();
    std::sort(delays_.begin(), delays_.end());
    return delays_;
  }

 private:
  void Ask() {
    while (!leave_) {
      const auto asked = steady_clock::now();
      QMetaObject::invokeMethod(
          &receiver_,
          [this, asked] {
            delays_.push_back(Milliseconds(steady_clock::now() - asked).count());
            answered_.release();
          },
          Qt::QueuedConnection);
      answered_.acquire();
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    left_ = true;
  }

  QObject receiver_;
  std::vector<double> delays_;  ///< written by the windows' thread alone
  std::binary_semaphore answered_{0};
  std::atomic<bool> leave_{false}, left_{false};
  std::thread thread_;
};

class ResponsivenessTest : public WizardTest {
 protected:
  void SetUp() override {
    machine_.makeOutput = [this] {
      messaging::PstLibraryOptions options;
      options.configFolder = machine_.folder.Path() / "config";
      const auto store = std::make_shared<messaging::PstLibrary>(std::move(options));
      return conversion::RunOutput{store, [store] { return store->Seal(); }};
    };
    Start();
  }
};

TEST_F(ResponsivenessTest, EventsOfTheWindowsPassWhileALargeStoreIsConverted) {
  const auto source = machine_.folder.Path() / "large.ost";
  bench::MakeLargeStore(source, {.bytes = kStoreBytes});
  const auto destination = machine_.folder.Path() / "out";
  std::filesystem::create_directory(destination);
  State().sourcePath = FromQt(PathToQt(source));
  State().sourceFileName = u"large.ost";
  State().destinationPath = FromQt(PathToQt(destination));
  LeavePage();

  EventDelays events;
  frame_->StartConversion();
  ASSERT_TRUE(IsPage<CProgressDlg>());
  const bool finished = Comes([this] { return Control<QWidget>(kFinishId).isEnabled(); }, 300000);
  const std::vector<double>& delays = events.Stop();

  ASSERT_TRUE(finished);
  EXPECT_TRUE(boxes_.seen.empty());
  EXPECT_GT(std::filesystem::file_size(destination / "large Converted0" / "large Converted.pst"), kStoreBytes / 2);
  ASSERT_GT(delays.size(), 20u) << "events passed all the time";
  // How long is long depends on the machine and on what else it does: the figures are to be read.
  const auto late = delays.end() - std::upper_bound(delays.begin(), delays.end(), 100.0);
  std::printf(
      "Of %zu events during the run, %td waited longer than 100 ms; the longest %.1f ms, 99%% at most %.1f ms\n",
      delays.size(), late, delays.back(), delays[delays.size() * 99 / 100]);
}

}  // namespace
}  // namespace velmora::workflow
