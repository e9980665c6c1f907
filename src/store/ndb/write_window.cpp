#include "store/ndb/write_window.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <utility>

#include "store/format/block.h"
#include "store/format/checksum.h"

namespace velmora::ndb {

WriteWindow::WriteWindow(platform::ByteStore& file, platform::Workers& workers) : file_(file), workers_(workers) {}

std::span<std::byte> WriteWindow::Place(std::uint64_t ib, std::size_t size) {
  assert(size <= kCapacity);
  if (filling_.Holds(ib, size)) {  // a place that was freed: what is still unsealed there is nobody's any more
    std::erase_if(filling_.unsealed, [&](const UnsealedBlock& old) {
      return old.ib < ib + size && ib < old.ib + BlockSizeOnDisk(old.cb);
    });
    return filling_.At(ib, size);
  }
  const bool goesOn = filling_.used != 0 && (ib == filling_.End() || (filling_.End() == end_ && ib > end_));
  if (!goesOn || ib + size > filling_.start + kCapacity) {
    Send();
    filling_.start = ib;
  }
  const std::uint64_t gap = ib - filling_.End();
  std::memset(filling_.bytes.get() + filling_.used, 0, gap);
  filling_.used += gap + size;
  end_ = std::max(end_, filling_.End());
  return filling_.At(ib, size);
}

std::span<std::byte> WriteWindow::Place(const UnsealedBlock& block) {
  const auto place = Place(block.ib, BlockSizeOnDisk(block.cb));
  filling_.unsealed.push_back(block);
  return place.first(block.cb);
}

void WriteWindow::Send() {
  Await();
  if (filling_.used == 0) return;
  std::swap(filling_, sent_);
  step_ = workers_.Start([this] {
    Seal(sent_);
    ValueOrRaise(file_.WriteAt(sent_.start, sent_.At(sent_.start, sent_.used)));
  });
}

void WriteWindow::Await() {
  if (step_ == nullptr) return;
  step_->Wait();
  step_.reset();
  sent_.used = 0;
  sent_.unsealed.clear();
}

void WriteWindow::Flush() {
  Send();
  Await();
}

void WriteWindow::Drop() {
  step_.reset();
  filling_.used = 0;
  filling_.unsealed.clear();
}

void WriteWindow::Seal(const Stretch& stretch) {
  for (const UnsealedBlock& block : stretch.unsealed) {
    const auto place = stretch.At(block.ib, BlockSizeOnDisk(block.cb));
    const auto stored = place.first(block.cb);
    if (block.encoding != CryptMethod::kNone) EncodeBlock(block.encoding, block.bid, stored, stored);
    std::ranges::fill(place.subspan(block.cb, place.size() - block.cb - kBlockTrailerSize), std::byte{0});
    const std::uint32_t crc = block.crc ? *block.crc : WeakCrc(stored);
    Encode(BlockTrailer{block.cb, ComputeSig(block.ib, Value(block.bid)), crc, block.bid},
           place.last(kBlockTrailerSize));
  }
}

std::size_t WriteWindow::ReadBlock(std::uint64_t ib, std::span<std::byte> out, bool& isEncoded) const {
  isEncoded = true;
  if (!filling_.Holds(ib, out.size())) {
    if (step_ != nullptr && ib < sent_.End() && sent_.start < ib + out.size()) step_->Wait();
    return ValueOrRaise(file_.ReadAt(ib, out));
  }
  const auto unsealed = std::ranges::find(filling_.unsealed, ib, &UnsealedBlock::ib);
  isEncoded = unsealed == filling_.unsealed.end() || unsealed->encoding == CryptMethod::kNone;
  std::memcpy(out.data(), filling_.At(ib, out.size()).data(), out.size());
  return out.size();
}

}  // namespace velmora::ndb
