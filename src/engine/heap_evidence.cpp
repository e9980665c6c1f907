#include "engine/heap_evidence.h"

#include <algorithm>
#include <array>
#include <span>

#include "store/format/byte_view.h"
#include "store/format/heap_format.h"

namespace velmora::engine {
namespace {

constexpr std::uint16_t kContext = HeapWord(ClientSig::kPropertyContext);

/// Two words that no store writes count as well.
constexpr std::uint16_t kSignatures[] = {kContext, HeapWord(ClientSig::kTableContext), 0x8CEC, 0xECEC};

}  // namespace

bool IsHeapSignature(std::uint16_t word) { return std::ranges::count(kSignatures, word) != 0; }

bool AcceptsSignature(StoreKind kind, std::uint16_t word, bool whenOther) {
  switch (kind) {
    case StoreKind::kOst:
      return IsHeapSignature(word);
    case StoreKind::kPst:
      return word == kContext;
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
    if (AcceptsSignature(kind, ByteView(head).U16(kOffHeapWord), false)) return method;
  }
  return std::nullopt;
}

}  // namespace velmora::engine
