#include "forge/heap.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace velmora::forge {
namespace {

constexpr std::size_t kFirstHead = 12;
constexpr std::size_t kPlainHead = 2;
constexpr std::size_t kFillHead = 66;
constexpr std::size_t kMaxIndex = 2047;
constexpr std::size_t kUsualHeap = 1000;  // bytes of a small message or folder

std::size_t HeadSize(std::size_t block) {
  if (block == 0) return kFirstHead;
  return block >= 8 && (block - 8) % 128 == 0 ? kFillHead : kPlainHead;
}

// How full a block is, in the sixteen levels of the fill map.
std::uint8_t FillLevel(std::size_t freeBytes) {
  constexpr std::array<std::size_t, 15> kAtLeast = {3584, 2560, 2048, 1792, 1536, 1280, 1024, 768,
                                                    512,  256,  128,  64,   32,   16,   4};
  const auto level =
      std::find_if(kAtLeast.begin(), kAtLeast.end(), [&](std::size_t least) { return freeBytes >= least; });
  return static_cast<std::uint8_t>(level - kAtLeast.begin());
}

}  // namespace

Heap::Heap(Format format, std::uint8_t clientSignature, std::uint8_t signature)
    : traits_(TraitsOf(format)), clientSignature_(clientSignature), signature_(signature) {
  OpenBlock();
}

void Heap::OpenBlock() {
  const std::size_t head = HeadSize(blocks_.size());
  Block& block = blocks_.emplace_back();
  block.data.reserve(kUsualHeap);
  block.data.resize(head);
  block.ends.push_back(static_cast<std::uint16_t>(head));
}

std::size_t Heap::SizeWithMap(const Block& block, std::size_t moreData, std::size_t moreAllocations) const {
  const std::size_t data = block.data.size() + moreData;
  return data + data % 2 + 4 + 2 * (block.ends.size() + moreAllocations);
}

Hid Heap::Add(std::span<const std::byte> data) {
  if (SizeWithMap(blocks_.back(), data.size(), 1) > traits_.maxBlockData || blocks_.back().ends.size() > kMaxIndex) {
    OpenBlock();
    if (SizeWithMap(blocks_.back(), data.size(), 1) > traits_.maxBlockData) {
      throw std::length_error("forge: an allocation larger than a block");
    }
  }
  Block& block = blocks_.back();
  Append(block.data, data);
  block.ends.push_back(static_cast<std::uint16_t>(block.data.size()));
  const std::size_t index = block.ends.size() - 1;
  return static_cast<Hid>((blocks_.size() - 1) << traits_.heapBlockShift | index << 5);
}

std::size_t Heap::OffsetOf(Hid hid) const {
  return blocks_.at(hid >> traits_.heapBlockShift).ends.at(IndexOf(hid) - 1);
}

std::span<std::byte> Heap::At(Hid hid) {
  Block& block = blocks_.at(hid >> traits_.heapBlockShift);
  const std::size_t start = OffsetOf(hid);
  return std::span(block.data).subspan(start, block.ends.at(IndexOf(hid)) - start);
}

std::vector<Bytes> Heap::Blocks() const {
  std::vector<Bytes> out;
  for (const Block& block : blocks_) {
    Bytes bytes = block.data;
    bytes.resize(bytes.size() + bytes.size() % 2);
    Put(bytes, 0, bytes.size(), 2);
    const std::size_t emptyOnes = [&] {
      std::size_t count = 0;
      for (std::size_t i = 1; i < block.ends.size(); ++i) count += block.ends[i] == block.ends[i - 1] ? 1 : 0;
      return count;
    }();
    Append(bytes, block.ends.size() - 1, 2);
    Append(bytes, emptyOnes, 2);
    for (const std::uint16_t end : block.ends) Append(bytes, end, 2);
    if (out.size() + 1 < blocks_.size()) bytes.resize(traits_.maxBlockData);
    out.push_back(std::move(bytes));
  }
  Put(out.front(), 2, signature_, 1);
  Put(out.front(), 3, clientSignature_, 1);
  Put(out.front(), 4, userRoot_, 4);
  // The fill map of blocks 0 to 7 stands in the first head, that of 128 more in each long head.
  for (std::size_t i = 0; i < blocks_.size(); ++i) {
    const std::size_t used = blocks_[i].data.size() + 4 + 2 * blocks_[i].ends.size();
    const auto level = FillLevel(traits_.maxBlockData - std::min<std::size_t>(used, traits_.maxBlockData));
    const std::size_t holder = i < 8 ? 0 : 8 + (i - 8) / 128 * 128;
    const std::size_t nibble = i - holder;
    std::byte& at = out[holder][(holder == 0 ? 8 : 2) + nibble / 2];
    at |= static_cast<std::byte>(level << (nibble % 2 * 4));
  }
  return out;
}

}  // namespace velmora::forge
