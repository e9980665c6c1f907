#include "engine/heap_evidence.h"

#include <algorithm>
#include <array>
#include <span>

#include "store/format/byte_view.h"

namespace velmora::engine {
namespace {

/// The word that tells a heap lies behind a two-byte offset.
constexpr std::size_t kSignatureOffset = 2;

}  // namespace

bool IsHeapSignature(std::uint16_t word) {
  return word == 0xBCEC || word == 0x7CEC || word == 0x8CEC || word == 0xECEC;
}

bool AcceptsSignature(StoreKind kind, std::uint16_t word, bool whenOther) {
  switch (kind) {
    case StoreKind::kOst:
      return IsHeapSignature(word);
    case StoreKind::kPst:
      return word == 0xBCEC;
    default:
      return whenOther;
  }
}

std::optional<CryptMethod> DetectEncoding(const Source& source, StoreKind kind, const BlockRecord& block) {
  std::array<std::byte, 4> stored{};
  if (!source.Read(block.offset, std::span(stored).first(std::min<std::size_t>(block.size, stored.size())))) {
    return std::nullopt;
  }
  for (const CryptMethod method : {CryptMethod::kNone, CryptMethod::kPermute, CryptMethod::kCyclic}) {
    std::array<std::byte, 4> head = stored;
    DecodeBlock(method, Bid{block.bid}, head);
    if (AcceptsSignature(kind, ByteView(head).U16(kSignatureOffset), false)) return method;
  }
  return std::nullopt;
}

}  // namespace velmora::engine
