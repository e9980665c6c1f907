// velmora-floor: what no conversion on one thread can be faster than. Reads every block that the block tree of a store
// lists once, in the order of the file, checks, inflates and decodes it, and writes its content in blocks of a Unicode
// store: encoded, summed, behind one another. Nothing is read but the header, the block tree and the blocks, and what
// is written is no store. Prints what went through as one JSON object.
//
// With --by-bytes the permuting encoding takes byte after byte through its table, as a program does that has no vector
// instructions for it.
#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file.h"
#include "store/format/block.h"
#include "store/format/checksum.h"
#include "store/format/header.h"
#include "store/format/ids.h"

namespace velmora::bench {
namespace {

constexpr std::size_t kPiece = 1 << 20;  // of reading and of writing
constexpr int kMostLevels = 8;

/// How the bytes of blocks are encoded and decoded.
class Codec {
 public:
  explicit Codec(bool byBytes) : byBytes_(byBytes) {
    for (std::size_t i = 0; i < encoded_.size(); ++i) encoded_[i] = decoded_[i] = static_cast<std::byte>(i);
    EncodeBlock(CryptMethod::kPermute, {}, encoded_, encoded_);
    DecodeBlock(CryptMethod::kPermute, {}, decoded_);
  }

  void Encode(CryptMethod method, Bid bid, std::span<const std::byte> plain, std::span<std::byte> encoded) const {
    if (!IsByBytes(method)) return EncodeBlock(method, bid, plain, encoded);
    for (std::size_t i = 0; i < plain.size(); ++i) encoded[i] = encoded_[std::to_integer<std::size_t>(plain[i])];
  }
  void Decode(CryptMethod method, Bid bid, std::span<std::byte> bytes) const {
    if (!IsByBytes(method)) return DecodeBlock(method, bid, bytes);
    for (std::byte& byte : bytes) byte = decoded_[std::to_integer<std::size_t>(byte)];
  }

 private:
  bool IsByBytes(CryptMethod method) const { return byBytes_ && method == CryptMethod::kPermute; }

  const bool byBytes_;
  std::array<std::byte, 256> encoded_{};
  std::array<std::byte, 256> decoded_{};
};

/// The source in large pieces, as long as what is asked for goes forward.
class Pieces {
 public:
  explicit Pieces(const platform::ByteSource& file) : file_(file) {}

  std::span<const std::byte> Bytes(std::uint64_t offset, std::size_t size) {
    if (offset < start_ || offset + size > start_ + piece_.size()) {
      start_ = offset;
      piece_.resize(std::max(size, kPiece));
      piece_.resize(ValueOrRaise(file_.ReadAt(offset, piece_)));
      if (piece_.size() < size) throw std::runtime_error("the file ends within a block or page");
    }
    return std::span(piece_).subspan(offset - start_, size);
  }

 private:
  const platform::ByteSource& file_;
  std::vector<std::byte> piece_;
  std::uint64_t start_ = 0;
};

/// Forms blocks and hands them on in large pieces.
class BlockSink {
 public:
  BlockSink(platform::ByteStore& file, const Codec& codec) : file_(file), codec_(codec) {
    out_.reserve(kPiece + kMaxBlockSize);
  }

  void Write(std::span<const std::byte> content, bool isInternal) {
    while (!content.empty()) {
      WriteBlock(content.first(std::min(content.size(), kMaxBlockData)), isInternal);
      content = content.subspan(std::min(content.size(), kMaxBlockData));
    }
    if (out_.size() >= kPiece) HandOn();
  }

  void HandOn() {
    ValueOrRaise(file_.WriteAt(written_, out_));
    written_ += out_.size();
    out_.clear();
  }

 private:
  void WriteBlock(std::span<const std::byte> data, bool isInternal) {
    const std::uint64_t offset = written_ + out_.size();
    const Bid bid{next_ += kBidStep};
    out_.resize(out_.size() + BlockSizeOnDisk(data.size()));
    const auto block = std::span(out_).subspan(offset - written_);
    codec_.Encode(isInternal ? CryptMethod::kNone : CryptMethod::kPermute, bid, data, block.first(data.size()));
    const auto cb = static_cast<std::uint16_t>(data.size());
    Encode(BlockTrailer{.cb = cb,
                        .wSig = ComputeSig(offset, Value(bid)),
                        .dwCRC = WeakCrc(block.first(data.size())),
                        .bid = bid,
                        .cbInflated = cb},
           block.last(kBlockTrailerSize));
  }

  platform::ByteStore& file_;
  const Codec& codec_;
  std::vector<std::byte> out_;
  std::uint64_t written_ = 0;
  std::uint64_t next_ = 0;
};

std::vector<BbtEntry> BlocksOf(const platform::ByteSource& file, const Header& header) {
  const Generation& format = *header.generation;
  std::vector<BbtEntry> blocks;
  const auto walk = [&](const auto& self, const Bref& ref, int depth) -> void {
    std::vector<std::byte> page(format.pageSize);
    page.resize(ValueOrRaise(file.ReadAt(ref.ib, page)));
    if (page.size() < format.pageSize || depth > kMostLevels || !ProvesItself(page, PageType::kBbt, ref, format)) {
      throw std::runtime_error("the block tree is damaged");
    }
    const BtPageHead head = DecodeBtPageHead(page, format);
    for (std::size_t i = 0; i < std::min(head.cEnt, MaxEntries(format.blockEntrySize, format)); ++i) {
      const auto entry = std::span(page).subspan(i * format.blockEntrySize, format.blockEntrySize);
      if (head.cLevel > 0) {
        self(self, DecodeBtEntry(entry, format).ref, depth + 1);
      } else {
        blocks.push_back(DecodeBbtEntry(entry, format));
      }
    }
  };
  walk(walk, header.root.brefBbt, 0);
  std::ranges::sort(blocks, {}, [](const BbtEntry& block) { return block.ref.ib; });
  return blocks;
}

/// The plain content of one block after the other.
class Contents {
 public:
  Contents(const platform::ByteSource& file, const Header& header, const Codec& codec)
      : pieces_(file),
        codec_(codec),
        format_(*header.generation),
        method_(header.bCryptMethod),
        inflater_(libdeflate_alloc_decompressor(), libdeflate_free_decompressor),
        inflated_(0x10000) {}

  std::span<const std::byte> Of(const BbtEntry& block) {
    const auto stored = pieces_.Bytes(block.ref.ib, BlockSizeOnDisk(block.cb, format_));
    if (const auto why = WhyNotBlock(stored, block.ref, block.cb, format_); !why.empty()) {
      throw std::runtime_error(std::string(why));
    }
    if (IsInternal(block.ref.bid)) return stored.first(block.cb);
    const BlockTrailer trailer = DecodeBlockTrailer(stored.last(format_.blockTrailerSize), format_);
    decoded_.assign(stored.begin(), stored.begin() + block.cb);
    codec_.Decode(method_, Canonical(block.ref.bid), decoded_);
    if (trailer.cbInflated == block.cb) return decoded_;
    if (libdeflate_zlib_decompress(inflater_.get(), decoded_.data(), decoded_.size(), inflated_.data(),
                                   trailer.cbInflated, nullptr) != LIBDEFLATE_SUCCESS) {
      throw std::runtime_error("a block does not inflate to its size");
    }
    ++packed_;
    return std::span(inflated_).first(trailer.cbInflated);
  }

  std::uint64_t PackedBlocks() const { return packed_; }

 private:
  Pieces pieces_;
  const Codec& codec_;
  const Generation& format_;
  CryptMethod method_;
  std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> inflater_;
  std::vector<std::byte> decoded_;
  std::vector<std::byte> inflated_;
  std::uint64_t packed_ = 0;
};

void Run(const char* source, const char* out, bool byBytes) {
  const auto file = ValueOrRaise(platform::OpenForReading(source));
  const auto made = ValueOrRaise(platform::CreateFile(out, platform::Existing::kReplace));
  std::array<std::byte, Header::kSize> bytes{};
  ValueOrRaise(file->ReadAt(0, bytes));
  const Header header = DecodeHeader(bytes);
  const std::vector<BbtEntry> blocks = BlocksOf(*file, header);
  const Codec codec(byBytes);
  Contents contents(*file, header, codec);
  BlockSink sink(*made, codec);
  std::uint64_t sum = 0;
  for (const BbtEntry& block : blocks) {
    const auto content = contents.Of(block);
    sum += content.size();
    sink.Write(content, IsInternal(block.ref.bid));
  }
  sink.HandOn();
  ValueOrRaise(made->Flush());
  std::printf("{\"blocks\": %zu, \"packed\": %llu, \"bytes\": %llu}\n", blocks.size(),
              static_cast<unsigned long long>(contents.PackedBlocks()), static_cast<unsigned long long>(sum));
}

}  // namespace
}  // namespace velmora::bench

int main(int argc, char** argv) {
  const bool byBytes = argc == 4 && std::string_view(argv[1]) == "--by-bytes";
  if (argc != 3 && !byBytes) {
    std::fputs("Usage: velmora-floor [--by-bytes] STORE OUT\n", stderr);
    return 64;
  }
  try {
    velmora::bench::Run(argv[argc - 2], argv[argc - 1], byBytes);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "velmora-floor: %s\n", error.what());
    return 74;
  }
  return 0;
}
