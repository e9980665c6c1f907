// What a store that has been used for years has beside its messages: messages that were saved again or deleted, whose
// blocks are free by now, and pages of both trees that named them.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "forge/mailbox.h"

namespace velmora::bench {

class OldVersions {
 public:
  /// `percent` old versions for each 100 messages.
  OldVersions(forge::Mailbox& box, unsigned percent) : box_(box), percent_(percent) {}

  /// Writes what `mail` was before, so many times as its turn comes to. To be called ahead of adding the message.
  void Write(const forge::Message& mail);

  /// Tells under which node the message stands now that was written last; pages that are full are written.
  void Name(forge::Nid nid, forge::Nid folder);

  std::uint64_t Count() const { return count_; }

 private:
  template <typename Entry>
  void WriteFullPages(std::vector<Entry>& entries, forge::PageSpec (*form)(forge::Format, const std::vector<Entry>&));

  forge::Mailbox& box_;
  unsigned percent_;
  unsigned due_ = 0;
  std::uint64_t count_ = 0;
  std::optional<forge::WrittenMessage> last_;  ///< whose node is not known yet
  std::vector<forge::NodeEntry> nodes_;
  std::vector<forge::BlockEntry> blocks_;
};

}  // namespace velmora::bench
