#include "store/format/page.h"

#include "store/format/checksum.h"
#include "store/format/little_endian.h"

namespace velmora {
namespace {

std::uint16_t PageSignature(PageType type, const Bref& ref) {
  return IsMap(type) ? 0 : ComputeSig(ref.ib, Value(ref.bid));
}

}  // namespace

void SealPage(Page& page, PageType type, const Bref& ref) {
  constexpr Generation kFormed = generations::kUnicode;
  Store<std::uint16_t>(page, kFormed.offPageType, TypeWord(type));
  Store<std::uint16_t>(page, kFormed.offPageSig, PageSignature(type, ref));
  Store<std::uint32_t>(page, kFormed.offPageCrc, WeakCrc(std::span(page).first<kPageContent>()));
  Store(page, kFormed.offPageId, ref.bid);
}

bool ProvesItself(PageView page, PageType type, const Bref& ref, const Generation& generation) {
  return page.size() == generation.pageSize && Load<std::uint16_t>(page, generation.offPageType) == TypeWord(type) &&
         Load<std::uint16_t>(page, generation.offPageSig) == PageSignature(type, ref) &&
         Bid{generation.LoadWord(page, generation.offPageId)} == ref.bid &&
         Load<std::uint32_t>(page, generation.offPageCrc) == WeakCrc(page.first(generation.offPageType));
}

void Encode(const BtPageHead& head, Page& page) {
  constexpr Generation kFormed = generations::kUnicode;
  Store(page, kFormed.offEntryCount, static_cast<std::uint8_t>(head.cEnt));
  Store(page, kFormed.offEntryMax, static_cast<std::uint8_t>(head.cEntMax));
  Store(page, kFormed.offEntrySize, head.cbEnt);
  Store(page, kFormed.offEntrySize + 1, head.cLevel);
  Store<std::uint32_t>(page, kFormed.offEntrySize + 2, 0);
}

BtPageHead DecodeBtPageHead(PageView page, const Generation& generation) {
  const auto count = [&](std::size_t at) -> std::uint16_t {
    // The counts have the room up to the next field.
    if (generation.offEntryMax - generation.offEntryCount == 2) return Load<std::uint16_t>(page, at);
    return Load<std::uint8_t>(page, at);
  };
  return {count(generation.offEntryCount), count(generation.offEntryMax),
          Load<std::uint8_t>(page, generation.offEntrySize), Load<std::uint8_t>(page, generation.offEntrySize + 1u)};
}

void Encode(const BtEntry& entry, std::span<std::byte> out) {
  Store<std::uint64_t>(out, 0, entry.btkey);
  Store(out, 8, entry.ref.bid);
  Store<std::uint64_t>(out, 16, entry.ref.ib);
}

BtEntry DecodeBtEntry(std::span<const std::byte> in, const Generation& generation) {
  const std::size_t word = generation.idWidth;
  return {generation.LoadWord(in, 0), {Bid{generation.LoadWord(in, word)}, generation.LoadWord(in, 2 * word)}};
}

void Encode(const BbtEntry& entry, std::span<std::byte> out) {
  Store(out, 0, entry.ref.bid);
  Store<std::uint64_t>(out, 8, entry.ref.ib);
  Store<std::uint16_t>(out, 16, entry.cb);
  Store<std::uint16_t>(out, 18, entry.cRef);
  Store<std::uint32_t>(out, 20, 0);
}

BbtEntry DecodeBbtEntry(std::span<const std::byte> in, const Generation& generation) {
  const std::size_t word = generation.idWidth;
  // Where blocks are packed, the size that they inflate to stands between size and count.
  const std::size_t offCount = 2 * word + (generation.offInflatedSize != 0 ? 4 : 2);
  return {{Bid{generation.LoadWord(in, 0)}, generation.LoadWord(in, word)},
          Load<std::uint16_t>(in, 2 * word),
          Load<std::uint16_t>(in, offCount)};
}

void Encode(const NbtEntry& entry, std::span<std::byte> out) {
  Store<std::uint64_t>(out, 0, Value(entry.nid));
  Store(out, 8, entry.bidData);
  Store(out, 16, entry.bidSub);
  Store(out, 24, Value(entry.nidParent));
  Store<std::uint32_t>(out, 28, 0);
}

NbtEntry DecodeNbtEntry(std::span<const std::byte> in, const Generation& generation) {
  const std::size_t word = generation.idWidth;
  return {LoadNid(in, 0), Bid{generation.LoadWord(in, word)}, Bid{generation.LoadWord(in, 2 * word)},
          LoadNid(in, 3 * word)};
}

}  // namespace velmora
