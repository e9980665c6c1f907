#include "store/ndb/write_window.h"

#include <cassert>
#include <cstring>

namespace velmora::ndb {

WriteWindow::WriteWindow(platform::ByteStore& file)
    : file_(file), bytes_(std::make_unique_for_overwrite<std::byte[]>(kCapacity)) {}

std::span<std::byte> WriteWindow::Place(std::uint64_t ib, std::size_t size) {
  assert(size <= kCapacity);
  if (!Holds(ib, size)) {
    if (ib != start_ + size_ || size_ + size > kCapacity) {
      Flush();
      start_ = ib;
    }
    size_ += size;
  }
  return {bytes_.get() + (ib - start_), size};
}

void WriteWindow::Flush() {
  if (size_ == 0) return;
  ValueOrRaise(file_.WriteAt(start_, std::span(bytes_.get(), size_)));
  size_ = 0;
}

std::size_t WriteWindow::Read(std::uint64_t ib, std::span<std::byte> out) const {
  if (!Holds(ib, out.size())) return ValueOrRaise(file_.ReadAt(ib, out));
  std::memcpy(out.data(), bytes_.get() + (ib - start_), out.size());
  return out.size();
}

}  // namespace velmora::ndb
