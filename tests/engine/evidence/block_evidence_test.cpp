#include "engine/evidence/block_evidence.h"

#include <gtest/gtest.h>

#include "forge/heap.h"
#include "forge/store.h"

namespace velmora::engine {
namespace {

using forge::Encoding;
using forge::Format;

constexpr std::uint8_t kPropertyHeap = 0xBC;
constexpr std::uint8_t kTableHeap = 0x7C;

/// By the encoding of a store of packed blocks.
class PackedBlockKindTest : public testing::TestWithParam<Encoding> {
 protected:
  /// A heap with allocations of so many bytes in all, in one block.
  static forge::Bytes Heap(std::uint8_t client, std::size_t size) {
    forge::Heap heap(Format::kUnicode4k, client);
    for (std::size_t left = size; left > 0;) {
      const std::size_t step = std::min<std::size_t>(left, 1000);
      forge::Bytes halves = forge::Noise(step, static_cast<std::uint32_t>(left));
      for (std::byte& half : halves) half &= std::byte{0xF};
      heap.Add(halves);
      left -= step;
    }
    return heap.Blocks().front();
  }

  /// What the block of that content is taken for under the encoding that it has, with `bytes` of it zeros at its end.
  BlockKind KindOf(std::span<const std::byte> content, std::size_t bytes = 0) {
    forge::Store store({.format = Format::kUnicode4k, .encoding = GetParam(), .compressed = true});
    const forge::Bid bid = store.AddBlock(content);
    const forge::Image image = store.Finish();
    const forge::PlacedBlock& block = image.Block(bid);
    EXPECT_NE(block.size, block.inflatedSize) << "it should be packed";
    auto stored = std::vector(image.bytes.begin() + static_cast<std::ptrdiff_t>(block.offset),
                              image.bytes.begin() + static_cast<std::ptrdiff_t>(block.offset + block.size));
    std::ranges::fill(std::span(stored).last(bytes), std::byte{0});
    const BlockTrailer trailer{
        .cb = static_cast<std::uint16_t>(block.size), .bid = Bid{bid}, .cbInflated = block.inflatedSize};
    const auto method = static_cast<std::size_t>(GetParam());
    const BlockKind kind = KindsOf(stored, trailer, generations::kUnicode4k)[method];
    EXPECT_EQ(velmora::engine::KindOf(stored, trailer, generations::kUnicode4k, kMethods[method]), kind);
    atSight_ = KindsAtSight(stored, trailer, generations::kUnicode4k);
    return kind;
  }

  Kinds atSight_{};  ///< of the block that was asked for last
};

INSTANTIATE_TEST_SUITE_P(Encodings, PackedBlockKindTest,
                         testing::Values(Encoding::kNone, Encoding::kPermute, Encoding::kCyclic));

TEST_P(PackedBlockKindTest, AHeapIsKnownWhateverItsSize) {
  for (const std::size_t size : {500, 3900, 4000, 4060, 4070, 4096, 5000, 20000, 60000}) {
    EXPECT_EQ(KindOf(Heap(kPropertyHeap, size)), BlockKind::kPropertyContext) << size;
    EXPECT_EQ(KindOf(Heap(kTableHeap, size)), BlockKind::kTable) << size;
  }
}

TEST_P(PackedBlockKindTest, AHeapWhosePageMapDoesNotFitIsData) {
  for (const std::size_t size : {500, 20000}) {
    forge::Bytes heap = Heap(kPropertyHeap, size);
    forge::Put(heap, forge::Get(heap, 0, 2) + 4, 0x0D, 2);  // where the first allocation begins
    EXPECT_EQ(KindOf(heap), BlockKind::kData) << size;
  }
}

TEST_P(PackedBlockKindTest, TextIsData) {
  for (const std::size_t size : {500, 20000}) {
    EXPECT_EQ(KindOf(std::vector(size, std::byte{'x'})), BlockKind::kData) << size;
  }
}

TEST_P(PackedBlockKindTest, AtSightItIsKnownAsPackedUnderItsEncodingAlone) {
  Kinds packed{};  // data under each
  packed[static_cast<std::size_t>(GetParam())] = BlockKind::kPacked;
  for (const std::size_t size : {500, 20000}) {
    KindOf(Heap(kPropertyHeap, size));
    EXPECT_EQ(atSight_, packed) << size;
    KindOf(std::vector(size, std::byte{'x'}));
    EXPECT_EQ(atSight_, packed) << size;
  }
}

TEST_P(PackedBlockKindTest, AHeapIsKnownWhereOnlyTheSumOfItsStreamIsHurt) {
  for (const std::size_t size : {500, 20000}) {
    EXPECT_EQ(KindOf(Heap(kPropertyHeap, size), 4), BlockKind::kPropertyContext) << size;
  }
}

TEST_P(PackedBlockKindTest, AHeapWhosePageMapIsLostIsData) {
  for (const std::size_t size : {3000, 20000}) {
    EXPECT_EQ(KindOf(Heap(kPropertyHeap, size), 500), BlockKind::kData) << size;
  }
}

}  // namespace
}  // namespace velmora::engine
