#include "engine/block_trailer.h"

#include "engine/run_fixture.h"
#include "forge/checksum.h"

namespace velmora::engine {
namespace {

/// A slot as HasBlockTrailer reads it: in the wide layouts size and signature lead, in ANSI they stand 4 further.
forge::Bytes Slot(FormatId format, std::uint64_t offset, std::uint32_t id) {
  forge::Bytes slot(16);
  const std::size_t at = format == FORMAT_ANSI ? 4 : 0;
  forge::Put(slot, at, 20, 2);
  forge::Put(slot, at + 2, forge::Signature(offset, id), 2);
  forge::Put(slot, 8, id, 4);
  return slot;
}

bool Has(FormatId format, std::uint64_t offset, const forge::Bytes& tail) {
  return HasBlockTrailer(LayoutOf(format), offset, ByteView(tail));
}

TEST(HasBlockTrailerTest, AValidSlotBehindTheZerosIsATrailer) {
  for (const FormatId format : {FORMAT_ANSI, FORMAT_UNICODE, FORMAT_UNICODE_4K}) {
    for (const std::size_t zeros : {0u, 16u, 160u}) {
      Canvas tail;
      tail.Put(zeros, Slot(format, 0x4800, 0x24));
      EXPECT_TRUE(Has(format, 0x4800, tail.bytes)) << format;
      EXPECT_FALSE(Has(format, 0x4810, tail.bytes)) << format;
    }
  }
}

TEST(HasBlockTrailerTest, ASlotWhoseLastByteAloneIsSetIsPassedOver) {
  // The look moves just behind the first byte that is not zero, and only then back to a multiple of 16.
  Canvas tail;
  tail.Number(15, 1, 1);
  tail.Put(16, Slot(FORMAT_UNICODE, 0x4800, 0x24));
  EXPECT_TRUE(Has(FORMAT_UNICODE, 0x4800, tail.bytes));
  tail.Number(14, 1, 1);
  EXPECT_FALSE(Has(FORMAT_UNICODE, 0x4800, tail.bytes));
}

TEST(HasBlockTrailerTest, ASignatureOfZeroIsNone) {
  EXPECT_FALSE(Has(FORMAT_UNICODE, 0x4800, Slot(FORMAT_UNICODE, 0x4800, 0x4800)));
}

TEST(HasBlockTrailerTest, NothingButZerosIsNone) {
  EXPECT_FALSE(Has(FORMAT_UNICODE, 0x4800, forge::Bytes(8176)));
  EXPECT_FALSE(Has(FORMAT_UNICODE, 0x4800, {}));
}

/// What follows the data: size, a word of two bytes that are not zero, and the id one pitch behind the size.
void PutTrailer(Canvas& tail, std::uint64_t at, std::uint32_t pitch, std::uint16_t size, std::uint16_t next,
                std::uint32_t id) {
  tail.Number(at, size, 2);
  tail.Number(at + 2, next, 2);
  tail.Number(at + pitch, id, 4);
}

bool Fits(const Canvas& tail, std::uint32_t pitch = 8) { return HasTrailerAt(pitch, 0x24, 300, ByteView(tail.bytes)); }

TEST(HasTrailerAtTest, ATrailerRightBehindTheDataFits) {
  for (const std::uint32_t pitch : {4u, 8u}) {
    Canvas tail;
    PutTrailer(tail, 0, pitch, 300, 0x0101, 0x24);
    EXPECT_TRUE(Fits(tail, pitch));
  }
}

TEST(HasTrailerAtTest, SizeIdAndBothBytesOfTheSignatureCount) {
  Canvas wrongSize, wrongId, lowZero, highZero;
  PutTrailer(wrongSize, 0, 8, 301, 0x0101, 0x24);
  PutTrailer(wrongId, 0, 8, 300, 0x0101, 0x25);
  PutTrailer(lowZero, 0, 8, 300, 0x0100, 0x24);
  PutTrailer(highZero, 0, 8, 300, 0x0001, 0x24);
  for (const Canvas* tail : {&wrongSize, &wrongId, &lowZero, &highZero}) EXPECT_FALSE(Fits(*tail));
}

TEST(HasTrailerAtTest, TheStepForwardBeginsAtTheThirdByte) {
  Canvas tail;
  tail.Number(0, 0xFFFF, 2);  // rest of the padding, which the step does not see
  PutTrailer(tail, 2, 8, 300, 0x0101, 0x24);
  EXPECT_TRUE(Fits(tail));
  Canvas early;
  tail.Number(0, 0, 1);
  PutTrailer(early, 1, 8, 300, 0x0101, 0x24);
  EXPECT_FALSE(Fits(early)) << "one byte too early";
}

TEST(HasTrailerAtTest, TheFirstByteThatIsNotZeroDecides) {
  Canvas tail;
  PutTrailer(tail, 64, 8, 300, 0x0101, 0x24);
  EXPECT_TRUE(Fits(tail));
  tail.Number(63, 1, 1);
  EXPECT_FALSE(Fits(tail));
}

TEST(HasTrailerAtTest, WhatLiesBeyondTheViewIsZero) {
  Canvas tail;
  PutTrailer(tail, 0, 8, 300, 0x0101, 0x24);
  EXPECT_TRUE(HasTrailerAt(8, 0x24, 300, ByteView(tail.bytes).Slice(0, 9))) << "the id's other bytes are zero";
  EXPECT_FALSE(HasTrailerAt(8, 0x24, 300, ByteView(tail.bytes).Slice(0, 8)));
  EXPECT_FALSE(HasTrailerAt(8, 0x24, 300, ByteView()));
}

}  // namespace
}  // namespace velmora::engine
