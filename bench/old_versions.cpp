#include "bench/old_versions.h"

#include <type_traits>

namespace velmora::bench {

using forge::BlockEntry;
using forge::NodeEntry;

void OldVersions::Write(const forge::Message& mail) {
  for (due_ += percent_; due_ >= 100; due_ -= 100) {
    forge::Message version = mail;
    version.flags ^= 1;  // most often it was saved again because it was read
    const forge::Bid first = box_.store().NextBid();
    last_ = forge::WriteMessage(box_.store(), box_.names(), version);
    const auto freed = box_.store().FreeFrom(first);
    blocks_.insert(blocks_.end(), freed.begin(), freed.end());
    ++count_;
  }
}

void OldVersions::Name(forge::Nid nid, forge::Nid folder) {
  // A page names a node once; the versions before the last one were named by pages that are gone.
  if (last_) nodes_.push_back({.nid = nid, .bidData = last_->bidData, .bidSub = last_->bidSub, .nidParent = folder});
  last_.reset();
  WriteFullPages<NodeEntry>(nodes_, forge::NodePage);
  WriteFullPages<BlockEntry>(blocks_, forge::BlockPage);
}

template <typename Entry>
void OldVersions::WriteFullPages(std::vector<Entry>& entries,
                                 forge::PageSpec (*form)(forge::Format, const std::vector<Entry>&)) {
  const auto& traits = box_.store().traits();
  const std::size_t size = std::is_same_v<Entry, NodeEntry> ? traits.nodeEntrySize : traits.blockEntrySize;
  const std::size_t capacity = forge::PageCapacity(box_.store().options().format, size);
  std::size_t at = 0;
  for (; at + capacity <= entries.size(); at += capacity) {
    const auto first = entries.begin() + static_cast<std::ptrdiff_t>(at);
    box_.store().AddOldPage(
        form(box_.store().options().format, {first, first + static_cast<std::ptrdiff_t>(capacity)}));
  }
  entries.erase(entries.begin(), entries.begin() + static_cast<std::ptrdiff_t>(at));
}

}  // namespace velmora::bench
