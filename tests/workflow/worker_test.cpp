// The worker's thread and its road to the windows.
#include "workflow/worker.h"

#include <QThread>

#include "workflow/harness.h"

namespace velmora::workflow {
namespace {

class WorkerTest : public testing::Test {
 protected:
  std::shared_ptr<Worker> Run(std::function<void()> run, std::shared_ptr<Worker> before = {}) {
    return std::make_shared<Worker>(std::move(before), control_, link_, std::move(run));
  }

  engine::RunControl control_;
  std::vector<engine::Event> events_;
  WorkerLink link_{[this](const engine::Event& event) {
    EXPECT_EQ(QThread::currentThread(), qApp->thread());
    events_.push_back(event);
  }};
};

engine::FolderReached Folder(std::uint32_t nid) { return {nid, {}}; }

TEST_F(WorkerTest, EverythingArrivesInOrderAndTheWorkerGoesOnMeanwhile) {
  std::atomic<bool> ended{false};
  const auto worker = Run([&] {
    for (std::uint32_t i = 0; i < 100; ++i) link_.OnEvent(Folder(i));
    ended = true;
  });
  while (!ended) QThread::msleep(1);  // nothing is taken meanwhile
  EXPECT_TRUE(events_.empty());
  ASSERT_TRUE(Comes([&] { return events_.size() == 100; }));
  for (std::uint32_t i = 0; i < 100; ++i) EXPECT_EQ(std::get<engine::FolderReached>(events_[i]).nid, i);
}

TEST_F(WorkerTest, TheWorkerWaitsUntilANoticeTheClosingAndTheEndAreDealtWith) {
  const std::vector<engine::Event> waited = {engine::Notice{engine::NoticeKind::kAborted, {}, {}},
                                             engine::StageBegun{9}, engine::ListCleared{}, engine::Done{}};
  std::atomic<bool> ended{false};
  const auto worker = Run([&] {
    std::size_t said = 0;
    for (const engine::Event& event : waited) {
      link_.OnEvent(Folder(1));
      link_.OnEvent(event);
      EXPECT_EQ(events_.size(), said += 2);
    }
    ended = true;
  });
  EXPECT_TRUE(Comes([&] { return ended.load(); }));
}

TEST_F(WorkerTest, OfPercentagesThatNobodyHasTakenTheNewestCounts) {
  std::atomic<bool> ended{false};
  const auto worker = Run([&] {
    for (const std::uint32_t percentage : {1, 2, 3}) link_.OnEvent(engine::Progress{percentage});
    link_.OnEvent(Folder(7));
    for (const std::uint32_t percentage : {4, 5}) link_.OnEvent(engine::Progress{percentage});
    ended = true;
  });
  while (!ended) QThread::msleep(1);
  ASSERT_TRUE(Comes([&] { return events_.size() == 3; }));
  EXPECT_EQ(std::get<engine::Progress>(events_[0]).percentage, 3u);
  EXPECT_EQ(std::get<engine::FolderReached>(events_[1]).nid, 7u);
  EXPECT_EQ(std::get<engine::Progress>(events_[2]).percentage, 5u);
}

TEST_F(WorkerTest, ANumberThatIsNoPercentageTakesTheRoomOfNone) {
  std::atomic<bool> ended{false};
  const auto worker = Run([&] {
    for (const std::uint32_t number : {99, 100, 101, 102}) link_.OnEvent(engine::Progress{number});
    ended = true;
  });
  while (!ended) QThread::msleep(1);
  ASSERT_TRUE(Comes([&] { return !events_.empty(); }));
  EXPECT_EQ(std::get<engine::Progress>(events_[0]).percentage, 100u) << "the last that is shown";
}

TEST_F(WorkerTest, AWorkerThatIsFarAheadWaits) {
  std::atomic<std::uint32_t> said{0};
  const auto worker = Run([&] {
    for (std::uint32_t i = 0; i < 5000; ++i) {
      link_.OnEvent(Folder(i));
      ++said;
    }
  });
  QThread::msleep(200);
  EXPECT_EQ(said, 1000u);
  ASSERT_TRUE(Comes([&] { return events_.size() == 5000; }));
  EXPECT_EQ(std::get<engine::FolderReached>(events_.back()).nid, 4999u);
}

TEST_F(WorkerTest, WhatAWindowOfACallWaitsForComesWhileItWaits) {
  std::vector<std::uint32_t> numbers;
  WorkerLink link([&](const engine::Event& event) {
    const std::uint32_t nid = std::get<engine::FolderReached>(event).nid;
    if (nid == 1) {
      EXPECT_TRUE(Comes([&] { return numbers.size() == 2; }));
    }
    numbers.push_back(nid);
  });
  std::atomic<bool> ended{false};
  const auto worker = Run([&] {
    for (const std::uint32_t nid : {1, 2, 3}) link.OnEvent(Folder(nid));
    link.CallAndWait([] {});
    ended = true;
  });
  EXPECT_TRUE(Comes([&] { return ended.load(); }));
  EXPECT_EQ(numbers, (std::vector<std::uint32_t>{2, 3, 1}));
}

TEST_F(WorkerTest, KnownFoldersAreTheLinksOwn) {
  std::vector<text::Text> names;
  WorkerLink link([&](const engine::Event& event) {
    for (const auto& folder : std::get<engine::FoldersKnown>(event).folders) names.push_back(folder.name);
  });
  const auto worker = Run([&] {
    const std::vector<engine::FolderRecord> folders = {{1, 2, u"Inbox", {}}, {3, 2, u"Sent", {}}};
    link.OnEvent(engine::FoldersKnown{folders, 2});
  });
  worker->Join();
  EXPECT_TRUE(Comes([&] { return names.size() == 2; }));
  EXPECT_EQ(names, (std::vector<text::Text>{u"Inbox", u"Sent"}));
}

TEST_F(WorkerTest, AHeldLinkHandsNothingOver) {
  std::atomic<bool> said{false};
  const auto worker = Run([&] {
    link_.OnEvent(engine::Done{});
    said = true;
  });
  worker->Hold();
  QTest::qWait(60);
  EXPECT_TRUE(events_.empty());
  worker->Resume();
  EXPECT_TRUE(Comes([&] { return said.load(); }));
}

TEST_F(WorkerTest, AWorkerThatWaitsForTheWindowsIsJoinedByThem) {
  bool left = false;
  const auto worker = Run([&] {
    try {
      link_.OnEvent(engine::Done{});
    } catch (const engine::RunStopped&) {
      left = true;
      throw;
    }
  });
  QThread::msleep(30);  // it has spoken, and nobody listens
  worker->Stop();
  worker->Join();
  EXPECT_TRUE(left);
  QTest::qWait(20);
  EXPECT_TRUE(events_.empty()) << "what it had to say is lost";
}

TEST_F(WorkerTest, AnAbandonedWorkerSaysNothingMore) {
  std::atomic<int> refused{0};
  const auto worker = Run([&] {
    for (int i = 0; i < 2; ++i) {
      try {
        for (;;) {
          control_.PausePoint();
          QThread::msleep(1);
        }
      } catch (const engine::RunStopped&) {
      }
      try {
        link_.OnEvent(engine::StageBegun{1});
      } catch (const engine::RunStopped&) {
        ++refused;
      }
    }
  });
  QThread::msleep(10);
  worker->Stop();
  worker->Join();
  EXPECT_EQ(refused, 2);
  EXPECT_TRUE(events_.empty());
}

TEST_F(WorkerTest, TheNextRunBeginsWhenTheOneBeforeHasEnded) {
  std::atomic<int> running{0}, most{0}, ended{0};
  const auto run = [&] {
    most = std::max(most.load(), ++running);
    QThread::msleep(20);
    --running;
    ++ended;
  };
  std::shared_ptr<Worker> worker;
  for (int i = 0; i < 4; ++i) worker = Run(run, worker);
  worker->Join();
  EXPECT_EQ(ended, 4);
  EXPECT_EQ(most, 1);
}

TEST_F(WorkerTest, ARunAfterAStoppedOneIsNotStopped) {
  const auto first = Run([&] {
    for (;;) {
      control_.PausePoint();
      QThread::msleep(1);
    }
  });
  QThread::msleep(10);
  first->Stop();
  std::atomic<bool> ended{false};
  const auto second = Run(
      [&] {
        control_.PausePoint();
        link_.OnEvent(engine::Done{});
        ended = true;
      },
      first);
  EXPECT_TRUE(Comes([&] { return ended.load(); }));
  EXPECT_EQ(events_.size(), 1u);
}

}  // namespace
}  // namespace velmora::workflow
