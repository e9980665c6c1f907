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
  std::vector<engine::RunMessage> messages_;
  std::vector<text::Text> boxes_;
  WorkerLink link_{[this](const engine::RunMessage& message) {
                     EXPECT_EQ(QThread::currentThread(), qApp->thread());
                     messages_.push_back(message);
                   },
                   [this](engine::BoxKind, text::TextView, text::TextView message) { boxes_.emplace_back(message); }};
};

TEST_F(WorkerTest, EverythingArrivesInOrderAndTheWorkerWaitsForIt) {
  std::atomic<bool> ended{false};
  const auto worker = Run([&] {
    for (std::uint32_t i = 0; i < 100; ++i) {
      link_.OnMessage({engine::MSG_PROGRESS, i, 0, {}});
      EXPECT_EQ(messages_.size(), i + 1);
    }
    link_.OnBox(engine::BoxKind::kError, u"Error", u"text");
    ended = true;
  });
  EXPECT_TRUE(Comes([&] { return ended.load(); }));
  for (std::uint32_t i = 0; i < 100; ++i) EXPECT_EQ(messages_[i].number, i);
  EXPECT_EQ(boxes_, std::vector<text::Text>{u"text"});
}

TEST_F(WorkerTest, AHeldLinkHandsNothingOver) {
  std::atomic<bool> said{false};
  const auto worker = Run([&] {
    link_.OnMessage({engine::MSG_STAGE, 1, 0, {}});
    said = true;
  });
  worker->Hold();
  QTest::qWait(60);
  EXPECT_TRUE(messages_.empty());
  worker->Resume();
  EXPECT_TRUE(Comes([&] { return said.load(); }));
}

TEST_F(WorkerTest, AWorkerThatWaitsForTheWindowsIsJoinedByThem) {
  bool left = false;
  const auto worker = Run([&] {
    try {
      link_.OnMessage({engine::MSG_STAGE, 1, 0, {}});
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
  EXPECT_TRUE(messages_.empty()) << "what it had to say is lost";
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
        link_.OnMessage({engine::MSG_STAGE, 9, 0, {}});
      } catch (const engine::RunStopped&) {
        ++refused;
      }
    }
  });
  QThread::msleep(10);
  worker->Stop();
  worker->Join();
  EXPECT_EQ(refused, 2);
  EXPECT_TRUE(messages_.empty());
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
        link_.OnMessage({engine::MSG_DONE, 0, 0, {}});
        ended = true;
      },
      first);
  EXPECT_TRUE(Comes([&] { return ended.load(); }));
  EXPECT_EQ(messages_.size(), 1u);
}

}  // namespace
}  // namespace velmora::workflow
