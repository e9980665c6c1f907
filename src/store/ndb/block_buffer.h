// Memory for one block, kept for the next one that needs it.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include "store/format/block.h"

namespace velmora::ndb {

class BlockBufferPool;

/// A buffer of kMaxBlockData bytes of unspecified content; goes back to its pool with its owner.
class BlockBuffer {
 public:
  using Bytes = std::array<std::byte, kMaxBlockData>;

  BlockBuffer() = default;
  BlockBuffer(BlockBufferPool& pool, std::unique_ptr<Bytes> bytes) : pool_(&pool), bytes_(std::move(bytes)) {}
  ~BlockBuffer();
  BlockBuffer(BlockBuffer&& other) noexcept;
  BlockBuffer& operator=(BlockBuffer&& other) noexcept;

  explicit operator bool() const { return bytes_ != nullptr; }
  Bytes& operator*() const { return *bytes_; }
  Bytes* operator->() const { return bytes_.get(); }

 private:
  BlockBufferPool* pool_ = nullptr;
  std::unique_ptr<Bytes> bytes_;
};

/// Hands out buffers and takes them back. Must outlive them.
class BlockBufferPool {
 public:
  BlockBuffer Take();

 private:
  friend class BlockBuffer;
  std::vector<std::unique_ptr<BlockBuffer::Bytes>> free_;
};

}  // namespace velmora::ndb
