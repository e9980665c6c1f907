// The store of the last run, as the panes read it.
#pragma once

#include <functional>
#include <mutex>

#include "store/operations.h"

namespace velmora::workflow {

/// Opened at the first read. The panes read from several threads and the objects of a session are for one at
/// a time, so every use of them stands inside a read. A read must not wait for the thread of the windows.
class FinishedStore {
 public:
  /// Gives a session that has the store at that path mounted; raises OutputFailure where it cannot.
  using Opener = std::function<output::Ref<output::RDOSession>(text::TextView path)>;

  /// `session` outlives this object; whoever else releases it does so while nobody reads.
  FinishedStore(output::Ref<output::RDOSession>& session, Opener open) : session_(session), open_(std::move(open)) {}

  /// From now on the store at `path` is meant. It need not be complete before the first read.
  void Use(text::TextView path) {
    const std::lock_guard lock(mutex_);
    session_.Release();
    path_ = path;
  }

  /// Calls `read` with the session and gives its result. Raises what opening and reading raise.
  template <class Reader>
  auto Read(Reader&& read) {
    const std::lock_guard lock(mutex_);
    if (!session_) session_ = open_(path_);
    return read(*session_);
  }

  /// The file is in use no longer than until the last object read from it goes. The next read opens it again.
  void LetGo() {
    const std::lock_guard lock(mutex_);
    session_.Release();
  }

  /// The same, and no store is meant any more.
  void Close() { Use({}); }

 private:
  std::mutex mutex_;
  output::Ref<output::RDOSession>& session_;
  Opener open_;
  text::Text path_;
};

}  // namespace velmora::workflow
