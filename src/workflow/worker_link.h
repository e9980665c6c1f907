// The road from the worker's thread to the windows.
#pragma once

#include <QObject>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>

#include "engine/run.h"

namespace velmora::workflow {

/// Hands everything that a worker says to the thread of the windows and makes the worker wait until it is
/// dealt with. While the link is held nothing is handed over, so that a window's question stands over a
/// page that does not change. A worker that is abandoned leaves its call by engine::RunStopped, so nobody
/// ever waits for a thread that waits for him.
class WorkerLink : public QObject, public engine::RunObserver {
  Q_OBJECT

 public:
  using MessageHandler = std::function<void(const engine::RunMessage&)>;
  using BoxHandler = std::function<void(engine::BoxKind, text::TextView title, text::TextView message)>;

  /// To be made in the thread of the windows, in which both handlers are called.
  WorkerLink(MessageHandler onMessage, BoxHandler onBox);

  // Called by the worker.
  void OnMessage(const engine::RunMessage& message) override;
  void OnBox(engine::BoxKind kind, text::TextView title, text::TextView message) override;

  /// Calls something in the thread of the windows and waits for it. Throws engine::RunStopped when the
  /// worker is abandoned meanwhile; the call may still be under way then, so it owns what it needs.
  void CallAndWait(std::function<void()> call);

  // Called in the thread of the windows.
  void Hold();
  void Resume();
  void Abandon();

  /// Fit for the next worker; called before it says anything.
  void Reset();

 private:
  void Serve();
  void Summon();

  MessageHandler onMessage_;
  BoxHandler onBox_;

  std::mutex mutex_;
  std::condition_variable changed_;
  std::optional<std::function<void()>> pending_;
  std::uint64_t asked_ = 0;     ///< number of the last call
  std::uint64_t answered_ = 0;  ///< number of the last call that was dealt with
  bool held_ = false;
  bool abandoned_ = false;
};

}  // namespace velmora::workflow
