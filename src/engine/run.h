// What every step of a run shares: the flags, the one observer, the pause points.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "text/text.h"

namespace velmora::engine {

/// Codes of the messages of a run. Those of the panes are sent by the recovery and the converters.
enum MessageCode : std::uint32_t {
  MSG_ERROR_NOTICE = 32785,  ///< to the main window, just before every error box
  MSG_PROGRESS = 32804,  ///< number: percentage; detail: phase (1 probe, 2 block scan, 3 node scan, 4 folders, 0 later)
  MSG_DONE = 32805,      ///< the conversion is complete
  MSG_STAGE = 32806,     ///< number: stage; detail: 0, or 1 to force stage 9
  MSG_ADD_FOLDER = 32816,       ///< number: folder id or marker; text: name of a marker
  MSG_LIST_FIELD = 32832,       ///< number: 1 from, 2 to, 3 subject, 4 date; text: the field
  MSG_CLEAR_LIST = 32833,       ///< deletes all rows of the item list
  MSG_LIST_ATTACHMENT = 32835,  ///< the current row has attachments
  MSG_CLEAR_BODY = 32849,       ///< blanks the body pane
};

struct RunMessage {
  std::uint32_t code = 0;
  std::uint32_t number = 0;
  std::uint32_t detail = 0;
  text::Text text = {};

  friend bool operator==(const RunMessage&, const RunMessage&) = default;
};

enum class BoxKind { kError, kInformation };

/// Everything that a run says, in order and synchronously: the worker waits for the observer. Command
/// line, pages, panes and tests are observers.
class RunObserver {
 public:
  virtual ~RunObserver() = default;
  virtual void OnMessage(const RunMessage& message) = 0;

  /// A message box with one OK button. The title is "Error" or "Information".
  virtual void OnBox(BoxKind kind, text::TextView title, text::TextView message) = 0;
};

/// The text log of a run, LogInformation.log. It only tells; nothing of a run depends on it.
class RunLog {
 public:
  virtual ~RunLog() = default;
  /// Appends the characters as they stand: line ends are part of the text.
  virtual void Write(text::TextView text) = 0;
};

/// Thrown through a run that is stopped for good. It is no failure: no frame of the run catches it, so it
/// does not derive from std::exception.
struct RunStopped {};

/// Thrown by a step that ends the worker after its box and its clean-up; caught by the worker alone.
struct WorkerEnded {};

/// Holds and stops a run from another thread (or, RequestStop alone, from a signal handler).
class RunControl {
 public:
  /// Called by the worker at every page, block, node and item. Waits while the run is held; throws
  /// RunStopped when it is to stop.
  void PausePoint();

  void Hold();
  void Resume();

  /// Async-signal-safe; a worker that is held must be resumed to see it.
  void RequestStop() noexcept { stop_.store(true, std::memory_order_relaxed); }

  /// Fit for the next run: neither held nor stopped.
  void Reset();

 private:
  std::atomic<bool> stop_{false};
  std::atomic<bool> held_{false};
  std::mutex mutex_;
  std::condition_variable resumed_;
};

/// The flags and partners of a run. `runEnded` is raised by the worker as its last action and cleared by
/// the frame; `runAborted` says that a step failed after showing its message.
struct RunContext {
  std::atomic<bool> runEnded{false};
  std::atomic<bool> runAborted{false};
  std::atomic<bool> smartScan{false};
  RunObserver* observer = nullptr;  ///< not owned; null: messages are lost
  RunLog* log = nullptr;            ///< not owned; null while the log switch is off
  RunControl control;

  /// One piece of the log, if the switch is on.
  void Log(text::TextView piece) const {
    if (log != nullptr) log->Write(piece);
  }

  void Send(std::uint32_t code, std::uint32_t number = 0, std::uint32_t detail = 0, text::TextView text = {}) const {
    if (observer != nullptr) observer->OnMessage({code, number, detail, text::Text(text)});
  }

  /// MSG_ERROR_NOTICE, then the box under the title "Error".
  void ShowError(text::TextView message) const;

  /// A box under the title "Information", with no notice before it.
  void ShowInformation(text::TextView message) const;
};

}  // namespace velmora::engine
