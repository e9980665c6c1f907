#include "store/ndb/block_buffer.h"

#include <utility>

namespace velmora::ndb {

BlockBuffer::~BlockBuffer() {
  if (bytes_ != nullptr) pool_->free_.push_back(std::move(bytes_));
}

BlockBuffer::BlockBuffer(BlockBuffer&& other) noexcept
    : pool_(other.pool_), bytes_(std::exchange(other.bytes_, nullptr)) {}

BlockBuffer& BlockBuffer::operator=(BlockBuffer&& other) noexcept {
  std::swap(pool_, other.pool_);
  std::swap(bytes_, other.bytes_);
  return *this;
}

BlockBuffer BlockBufferPool::Take() {
  if (free_.empty()) return {*this, std::make_unique_for_overwrite<BlockBuffer::Bytes>()};
  std::unique_ptr<BlockBuffer::Bytes> bytes = std::move(free_.back());
  free_.pop_back();
  return {*this, std::move(bytes)};
}

}  // namespace velmora::ndb
