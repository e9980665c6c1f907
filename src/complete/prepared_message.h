// Messages that are brought into the form of the new store ahead of their turn, by whichever thread has time.
//
// What such a thread sees is constant, so it prepares just what the copy itself would make of the message. All that has
// to wait for the message's turn (a block that was not read ahead or is not proven, a name that has no identifier yet,
// a part that is lost, a message in a message, a new id, more than the allowance may have left) ends the preparation,
// and the message is copied as if nobody had tried.
#pragma once

#include <memory>
#include <memory_resource>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "complete/account.h"
#include "complete/copy_target.h"
#include "complete/live_store.h"
#include "complete/references.h"
#include "complete/target_names.h"
#include "complete/text_pages.h"
#include "engine/blocks_ahead.h"
#include "engine/content_allowance.h"
#include "store/format/block.h"
#include "store/messaging/objects/message_writer.h"

namespace velmora::complete {

/// Whole, but for its long values.
struct PreparedMessage {
  struct LongValue {
    std::shared_ptr<messaging::StoredValue> value;  ///< that the message holds
    std::vector<StoredData> blocks;                 ///< as they were read ahead and stay in both stores
    std::vector<std::byte> bytes;                   ///< where there are none
  };

  messaging::Message message;
  std::vector<LongValue> longValues;  ///< in the order in which they are written
  engine::ContentAllowance::Taken taken;
  CopiedSums sums;
  std::uint64_t bytesRead = 0;

  /// Writes the long values, and gives them to the message. Raises OutputFailure where they cannot be written. The
  /// blocks that were read ahead must be there.
  void WriteLongValues(ndb::NdbWriter& target);
};

/// What all preparations of a run share. All of it outlives them, and does not change but for `names`.
struct Preparation {
  const engine::ProvenStore& source;
  const TextPages& pages;
  const References& references;
  const TargetNames& names;
  const messaging::StoreWriter& target;  ///< tells the time and nothing else
  const engine::ContentAllowance allowance;
  const bool areStoredAlike;
};

/// Those messages of a batch that could be prepared, whose blocks are among `ahead`; nothing for the others. Together
/// they hold no more than a few megabytes, in one memory: that which another thread has asked for is slow to give back
/// piece by piece.
class PreparedMessages {
 public:
  PreparedMessages(const Preparation& preparation, const engine::BlocksAhead& ahead,
                   std::span<const ndb::NodeTrees> messages);

  /// Hands out the message of that number, which goes before this does and before `ahead`.
  std::optional<PreparedMessage> Take(std::size_t number) { return std::exchange(messages_[number], std::nullopt); }

 private:
  std::pmr::monotonic_buffer_resource memory_;
  std::vector<std::optional<PreparedMessage>> messages_;
};

}  // namespace velmora::complete
