// The messages that are copied one after another, read ahead by the workers of the run.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "complete/live_store.h"
#include "engine/blocks_ahead.h"
#include "platform/workers.h"

namespace velmora::complete {

/// Reads batches of messages, as many at a time as there are jobs, and one more where it would have to wait. What is
/// copied does not depend on it.
class ReadAhead {
 public:
  /// `source` gets the blocks, `nodes` are those of which Reach is told; both must outlive it. Messages that `isWanted`
  /// denies are passed over.
  ReadAhead(const LiveStore& source, bool keepStored, platform::Workers& workers, std::span<const ndb::NodeEntry> nodes,
            std::function<bool(const ndb::NodeEntry&)> isWanted);
  ~ReadAhead();
  ReadAhead(const ReadAhead&) = delete;
  ReadAhead& operator=(const ReadAhead&) = delete;

  /// Node number `index` comes next; to be called with ascending numbers.
  void Reach(std::size_t index);

 private:
  struct Batch {
    std::size_t end = 0;  ///< number of the first node behind it
    std::vector<ndb::NodeTrees> messages;
    std::unique_ptr<const engine::BlocksAhead> blocks;
    std::unique_ptr<platform::Workers::Step> step;  ///< goes first
  };

  void Start();

  const LiveStore& source_;
  bool keepStored_;
  platform::Workers& workers_;
  std::span<const ndb::NodeEntry> nodes_;
  std::function<bool(const ndb::NodeEntry&)> isWanted_;
  std::size_t messagesOfBatch_;
  std::size_t next_ = 0;
  std::deque<Batch> batches_;
};

}  // namespace velmora::complete
