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
  page[496] = page[497] = static_cast<std::byte>(type);
  Store<std::uint16_t>(page, 498, PageSignature(type, ref));
  Store<std::uint32_t>(page, 500, WeakCrc(std::span(page).first<kPageContent>()));
  Store(page, 504, ref.bid);
}

bool ProvesItself(PageView page, PageType type, const Bref& ref) {
  return page[496] == static_cast<std::byte>(type) && page[497] == page[496] &&
         Load<std::uint16_t>(page, 498) == PageSignature(type, ref) && LoadBid(page, 504) == ref.bid &&
         Load<std::uint32_t>(page, 500) == WeakCrc(page.first<kPageContent>());
}

void Encode(const BtPageHead& head, Page& page) {
  page[488] = std::byte{head.cEnt};
  page[489] = std::byte{head.cEntMax};
  page[490] = std::byte{head.cbEnt};
  page[491] = std::byte{head.cLevel};
  Store<std::uint32_t>(page, 492, 0);
}

BtPageHead DecodeBtPageHead(PageView page) {
  return {Load<std::uint8_t>(page, 488), Load<std::uint8_t>(page, 489), Load<std::uint8_t>(page, 490),
          Load<std::uint8_t>(page, 491)};
}

void Encode(const BtEntry& entry, std::span<std::byte> out) {
  Store<std::uint64_t>(out, 0, entry.btkey);
  Store(out, 8, entry.ref.bid);
  Store<std::uint64_t>(out, 16, entry.ref.ib);
}

BtEntry DecodeBtEntry(std::span<const std::byte> in) {
  return {Load<std::uint64_t>(in, 0), {LoadBid(in, 8), Load<std::uint64_t>(in, 16)}};
}

void Encode(const BbtEntry& entry, std::span<std::byte> out) {
  Store(out, 0, entry.ref.bid);
  Store<std::uint64_t>(out, 8, entry.ref.ib);
  Store<std::uint16_t>(out, 16, entry.cb);
  Store<std::uint16_t>(out, 18, entry.cRef);
  Store<std::uint32_t>(out, 20, 0);
}

BbtEntry DecodeBbtEntry(std::span<const std::byte> in) {
  return {{LoadBid(in, 0), Load<std::uint64_t>(in, 8)}, Load<std::uint16_t>(in, 16), Load<std::uint16_t>(in, 18)};
}

void Encode(const NbtEntry& entry, std::span<std::byte> out) {
  Store<std::uint64_t>(out, 0, Value(entry.nid));
  Store(out, 8, entry.bidData);
  Store(out, 16, entry.bidSub);
  Store(out, 24, Value(entry.nidParent));
  Store<std::uint32_t>(out, 28, 0);
}

NbtEntry DecodeNbtEntry(std::span<const std::byte> in) {
  return {LoadNid(in, 0), LoadBid(in, 8), LoadBid(in, 16), LoadNid(in, 24)};
}

}  // namespace velmora
