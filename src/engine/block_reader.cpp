#include "engine/block_reader.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <memory>


#include "engine/engine_state.h"
#include "engine/source_window.h"

namespace velmora::engine {
namespace {

constexpr std::size_t kInflateInput = 100000;
constexpr std::size_t kInflateOutput = 200000;

/// The word that tells a heap lies behind a two-byte offset.
constexpr std::size_t kSignatureOffset = 2;

}  // namespace

bool IsHeapSignature(std::uint16_t word) {
  return word == 0xBCEC || word == 0x7CEC || word == 0x8CEC || word == 0xECEC;
}

std::optional<BlockRecord> BlockReader::FindBlock(std::uint32_t id) const {
  if (id == 0) return std::nullopt;
  return state_.index.Find(id);
}

std::optional<BlockRecord> BlockReader::FindBlockOrLower(std::uint32_t id) const {
  if (id == 0) return std::nullopt;
  const auto record = FindBlock(id);
  return record ? record : FindBlock(id - 1);
}

std::optional<Bytes> BlockReader::ReadChunk(std::uint64_t offset, std::uint32_t length,
                                            std::uint32_t* delivered) const {
  Bytes bytes(length);
  const auto read = ReadFromSource(state_, offset, bytes);
  if (!read) return std::nullopt;
  if (delivered != nullptr) *delivered = static_cast<std::uint32_t>(*read);
  return bytes;
}

bool BlockReader::DetectEncoding(std::uint32_t id, std::uint64_t offset, std::uint32_t size) {
  std::array<std::byte, 4> stored{};
  if (!ReadFromSource(state_, offset, std::span(stored).first(std::min<std::size_t>(size, stored.size()))))
    return false;
  for (const CryptMethod method : {CryptMethod::kNone, CryptMethod::kPermute, CryptMethod::kCyclic}) {
    std::array<std::byte, 4> head = stored;
    velmora::DecodeBlock(method, Bid{id}, head);
    if (!AcceptsSignature(ByteView(head).U16(kSignatureOffset), false)) continue;
    state_.blockEncoding = method;
    return true;
  }
  return false;
}

void BlockReader::DecodeBlock(std::uint32_t id, std::span<std::byte> bytes) const {
  velmora::DecodeBlock(state_.blockEncoding, Bid{id}, bytes);
}

std::uint32_t BlockReader::InflateBlock(Bytes& bytes) const {
  if (state_.layout.formatId != FORMAT_UNICODE_4K) return static_cast<std::uint32_t>(bytes.size());
  const auto output = std::make_unique_for_overwrite<std::byte[]>(kInflateOutput);
  z_stream stream{};
  stream.next_in = reinterpret_cast<Bytef*>(bytes.data());
  stream.avail_in = static_cast<uInt>(std::min(bytes.size(), kInflateInput));
  stream.next_out = reinterpret_cast<Bytef*>(output.get());
  stream.avail_out = kInflateOutput;
  // What is not a stream gives no bytes or too few, and the reader's signature test refuses it; so the
  // results of the calls say nothing that is needed.
  inflateInit_(&stream, "1.2.11", static_cast<int>(sizeof stream));
  inflate(&stream, Z_NO_FLUSH);
  inflateEnd(&stream);
  bytes.assign(output.get(), output.get() + stream.total_out);
  return static_cast<std::uint32_t>(bytes.size());
}

bool BlockReader::AcceptsSignature(std::uint16_t word, bool whenOther) const {
  switch (state_.storeKind) {
    case StoreKind::kOst:
      return IsHeapSignature(word);
    case StoreKind::kPst:
      return word == 0xBCEC;
    default:
      return whenOther;
  }
}

}  // namespace velmora::engine
