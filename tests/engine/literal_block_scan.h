// The block scan written down step by step, with a copy for every read and a loop for every byte, as slow as
// it is plain: what the scan has to find, whatever windows and short cuts it works with.
#pragma once

#include <cstdint>
#include <set>
#include <vector>

#include "engine/block_index.h"
#include "engine/store_scan.h"
#include "forge/forge.h"

namespace velmora::engine {

class LiteralBlockScan {
 public:
  LiteralBlockScan(forge::Bytes source, const Generation& layout, StoreKind kind, bool smart,
                   std::set<std::uint32_t> referenced)
      : source_(std::move(source)), layout_(layout), kind_(kind), smart_(smart), referenced_(std::move(referenced)) {
    Scan();
  }

  std::vector<BlockRecord> records;  ///< in file order
  std::uint32_t recordCount = 0;
  std::uint32_t repeats = 0;         ///< trailers of a block outside the file, which record the last one again
  std::vector<OrphanBlock> orphans;  ///< without the empty element
  int encoding = 0;
  bool encodingUnknown = true;

 private:
  using Bytes = forge::Bytes;

  /// `length` bytes, zeros where the source has none; `delivered` tells how many it had.
  Bytes Read(std::int64_t offset, std::size_t length, std::size_t* delivered = nullptr) const {
    Bytes bytes(length);
    std::size_t n = 0;
    if (offset >= 0) {
      while (n < length && static_cast<std::size_t>(offset) + n < source_.size()) {
        bytes[n] = source_[static_cast<std::size_t>(offset) + n];
        ++n;
      }
    }
    if (delivered != nullptr) *delivered = n;
    return bytes;
  }

  static std::uint64_t At(const Bytes& bytes, std::size_t offset, std::size_t width) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width && offset + i < bytes.size(); ++i) {
      value |= std::to_integer<std::uint64_t>(bytes[offset + i]) << (8 * i);
    }
    return value;
  }

  static std::uint16_t Sig(std::int64_t offset, std::uint32_t id) {
    const std::uint32_t x = static_cast<std::uint32_t>(offset) ^ id;
    return static_cast<std::uint16_t>((x & 0xFFFF) ^ (x >> 16));
  }

  bool Is4k() const { return layout_.formatId == FORMAT_UNICODE_4K; }
  std::size_t Pitch() const { return layout_.formatId == FORMAT_ANSI ? 4 : 8; }

  void Scan() {
    const std::size_t length = Is4k() ? 16384 : 4096;
    const std::size_t stride = Is4k() ? 4096 : 512;
    std::int64_t offset = Is4k() ? 147456 : 18432;
    for (;; offset += 4096) {
      std::size_t delivered = 0;
      const Bytes chunk = Read(offset, length, &delivered);
      if (delivered == 0) return;
      for (std::size_t p = 0; p < 4096; p += stride) {
        const std::uint64_t c = At(chunk, p + layout_.offEntryCount, 1);
        const std::uint64_t m = At(chunk, p + layout_.offEntryMax, 1);
        const std::uint64_t s = At(chunk, p + layout_.offEntrySize, 1);
        const auto pageId = static_cast<std::uint32_t>(At(chunk, p + layout_.offPageId, 4));
        const bool blockPage =
            (s == layout_.nodeEntrySize || s == layout_.blockEntrySize) &&
            At(chunk, p + layout_.offPageSig, 2) == Sig(offset + static_cast<std::int64_t>(p), pageId) && c <= m &&
            m != 0 && At(chunk, p + layout_.offPageType, 2) == 0x8080;
        if (blockPage) {
          Entries(chunk, p, c, pageId, offset);
        } else {
          Slots(chunk, p, stride, offset);
        }
      }
    }
  }

  void Entries(const Bytes& chunk, std::size_t p, std::uint64_t c, std::uint32_t pageId, std::int64_t readOffset) {
    const std::size_t pitch = layout_.formatId == FORMAT_ANSI ? 12 : 24;
    const std::size_t w = layout_.idWidth;
    for (std::size_t i = 0; i < c * pitch; i += pitch) {
      const std::uint64_t id = At(chunk, p + i, w);
      const std::uint64_t place = At(chunk, p + i + w, w);
      const auto size = static_cast<std::uint32_t>(At(chunk, p + i + 2 * w, 2));
      if (id == 0 || place == 0 || size > 65512 || size == 0 || place > source_.size() || place % 16 != 0) return;
      record_ = {static_cast<std::uint32_t>(id), size, place};
      if (smart_) Classify();
      ++recordCount;
      records.push_back(record_);
      if (smart_) {
        record_ = {pageId, size, static_cast<std::uint64_t>(readOffset)};
        if (TrailerAt()) {
          Classify();
          records.push_back(record_);
        }
      }
    }
  }

  void Slots(const Bytes& chunk, std::size_t p, std::size_t stride, std::int64_t offset) {
    for (std::size_t i = 0; i < stride; i += 16) {
      const auto size = static_cast<std::uint32_t>(At(chunk, p + i + layout_.idWidth, 2));
      const auto signature = static_cast<std::uint16_t>(At(chunk, p + i + layout_.idWidth + 2, 2));
      const auto id = static_cast<std::uint32_t>(At(chunk, p + i + 8, 4));
      if (size < 65512 && size != 0 && id != 0) {
        Recover(offset + static_cast<std::int64_t>(p + i), size, signature, id);
      }
    }
  }

  void Recover(std::int64_t q, std::uint32_t size, std::uint16_t signature, std::uint32_t id) {
    std::int64_t z = 1;
    do {
      --q;
      ++z;
      if (q < 0) return;
    } while (source_[static_cast<std::size_t>(q)] == std::byte{0});
    std::int64_t b = q - size;
    while (b % 16 != 0) ++b;
    const std::int64_t first = b;
    for (std::int64_t k = 0; k <= z / 16 + 1; ++k, b += 16) {
      if (signature != Sig(b, id)) continue;
      if (b >= 0 && b < static_cast<std::int64_t>(source_.size())) {
        record_ = {id, size, static_cast<std::uint64_t>(b)};
      } else {
        ++repeats;
      }
      if (smart_) Classify();
      ++recordCount;
      records.push_back(record_);
    }
    if (!smart_) return;
    record_ = {id, size, static_cast<std::uint64_t>(first)};
    if (TrailerAt()) {
      Classify();
      records.push_back(record_);
    }
  }

  bool TrailerAt() const {
    const Bytes bytes = Read(static_cast<std::int64_t>(record_.offset), 8196);
    const auto fits = [&](std::size_t at) {
      return At(bytes, at, 2) == record_.size && At(bytes, at + Pitch(), 4) == record_.bid &&
             At(bytes, at + 2, 1) != 0 && At(bytes, at + 3, 1) != 0;
    };
    if (fits(record_.size)) return true;
    std::size_t at = record_.size + 2;
    while (at < bytes.size() && bytes[at] == std::byte{0}) ++at;
    return at < bytes.size() && fits(at);
  }

  bool Referenced() const { return record_.bid == 0 || referenced_.contains(record_.bid); }

  void Classify() {
    if (static_cast<std::int64_t>(record_.offset) < 0) return;
    Bytes bytes = Read(static_cast<std::int64_t>(record_.offset), record_.size + 8176);
    const auto size16 = static_cast<std::uint16_t>((3 * At(bytes, 2, 2) + 1) * Pitch());
    if (At(bytes, Pitch(), 4) == 0x671 && size16 == record_.size && !Referenced()) {
      orphans.push_back({0, record_.bid});
      return;
    }
    if (encodingUnknown && BlockTrailer(bytes)) Detect();
    Decode(encoding, std::span(bytes).first(record_.size));
    if (Signature(bytes) && !encodingUnknown && !Referenced()) orphans.push_back({record_.bid, 0});
  }

  bool Signature(const Bytes& bytes) const {
    const std::uint64_t word = At(bytes, 2, 2);
    if (kind_ == StoreKind::kPst) return word == 0xBCEC;
    return kind_ == StoreKind::kOst && (word == 0xBCEC || word == 0x7CEC || word == 0x8CEC || word == 0xECEC);
  }

  void Decode(int how, std::span<std::byte> bytes) const {
    forge::Decode(static_cast<forge::Encoding>(how), record_.bid, bytes);
  }

  void Detect() {
    const Bytes stored = Read(static_cast<std::int64_t>(record_.offset), record_.size);
    for (int how = 0; how < 3; ++how) {
      Bytes bytes = stored;
      Decode(how, std::span(bytes).first(std::min<std::size_t>(4, bytes.size())));
      if (!Signature(bytes)) continue;
      encoding = how;
      encodingUnknown = false;
      return;
    }
  }

  bool BlockTrailer(const Bytes& bytes) const {
    std::size_t i = (record_.size + 15) / 16 * 16;
    while (i < bytes.size() && bytes[i] == std::byte{0}) ++i;
    if (i >= bytes.size()) return false;
    i = (i + 1) / 16 * 16;
    const std::uint64_t signature = At(bytes, i + (layout_.wideFormat ? 2 : 6), 2);
    const auto id = static_cast<std::uint32_t>(At(bytes, i + 8, 4));
    return signature != 0 && signature == Sig(static_cast<std::int64_t>(record_.offset), id);
  }

  Bytes source_;
  Generation layout_;
  StoreKind kind_;
  bool smart_;
  std::set<std::uint32_t> referenced_;
  BlockRecord record_;
};

}  // namespace velmora::engine
