#include "engine/block_reader.h"

#include <zlib.h>

#include <algorithm>
#include <memory>

namespace velmora::engine {
namespace {

constexpr std::size_t kInflateInput = 100000;
constexpr std::size_t kInflateOutput = 200000;

}  // namespace

std::optional<BlockRecord> BlockReader::FindBlock(std::uint32_t id) const {
  if (id == 0) return std::nullopt;
  return store_.index.Find(id);
}

std::optional<BlockRecord> BlockReader::FindBlockOrLower(std::uint32_t id) const {
  if (id == 0) return std::nullopt;
  const auto record = FindBlock(id);
  return record ? record : FindBlock(id - 1);
}

std::optional<Bytes> BlockReader::ReadChunk(std::uint64_t offset, std::uint32_t length) const {
  Bytes bytes(length);
  if (!store_.source.Read(offset, bytes)) return std::nullopt;
  return bytes;
}

void BlockReader::DecodeBlock(std::uint32_t id, std::span<std::byte> bytes) const {
  velmora::DecodeBlock(store_.blockEncoding, Bid{id}, bytes);
}

std::uint32_t BlockReader::InflateBlock(Bytes& bytes) const {
  if (store_.layout.formatId != FORMAT_UNICODE_4K) return static_cast<std::uint32_t>(bytes.size());
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

}  // namespace velmora::engine
