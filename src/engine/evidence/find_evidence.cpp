#include <algorithm>
#include <array>

#include "engine/evidence/block_map.h"
#include "engine/evidence/evidence.h"
#include "engine/evidence/evidence_pass.h"
#include "engine/evidence/text_copy.h"
#include "engine/restored_bytes.h"
#include "store/format/header.h"

namespace velmora::engine {
namespace {

/// Fewer pages than this may be chance, or what is left of another store.
constexpr std::uint64_t kTellingPages = 20;

/// Bytes: a page or two that cannot be told do not make a copy in text mode.
constexpr std::uint64_t kMuchUnproven = 4096;

/// The layout that most was found of; the told one in doubt. Null where nothing was found.
Finds* Likeliest(std::vector<Finds>& finds, const Generation* told) {
  const auto most = std::ranges::max_element(finds, {}, &Finds::wholePages)->wholePages;
  const auto weight = [&](const Finds& of) { return most < kTellingPages ? of.Count() : of.wholePages; };
  Finds* best = nullptr;
  for (Finds& of : finds) {
    const bool isMore = best == nullptr || weight(of) > weight(*best);
    if (isMore || (weight(of) == weight(*best) && of.layout == told)) best = &of;
  }
  return best->Count() == 0 ? nullptr : best;
}

CryptMethod LikeliestEncoding(const Finds& finds, const std::optional<ToldByHeader>& told) {
  const auto most = std::ranges::max_element(finds.votes);
  const bool isTold = told && told->layout == finds.layout;
  if (isTold && finds.votes[static_cast<std::size_t>(told->encoding)] == *most) return told->encoding;
  return kMethods[static_cast<std::size_t>(most - finds.votes.begin())];
}

/// What is in use, which is what does not end in zeros, against what proves itself.
bool HasLittleProven(const Finds& finds) {
  const std::uint64_t taken = finds.taken.Taken();
  return finds.usedSlots > taken + taken / 3 + kMuchUnproven / finds.layout->slotSize;
}
bool HasUnprovenTail(const Finds& finds) {
  return finds.usedSlots > finds.usedAheadOfLast + kMuchUnproven / finds.layout->slotSize;
}

bool HasStrays(const Finds& finds) {
  const auto isMoved = [](const FoundPage& page) { return page.grade == Grade::kMoved; };
  return HasLittleProven(finds) || HasUnprovenTail(finds) || finds.hasMovedBlocks ||
         std::ranges::any_of(finds.pages, isMoved);
}

/// Where bytes were lost nothing proves itself behind some point, or little in all.
void PutBackLostBytes(Source& source, Finds& finds, RunContext& run) {
  const bool isLittle = HasLittleProven(finds);
  if (!isLittle && !HasUnprovenTail(finds)) return;
  LostBytes lost = FindLostBytes(source, isLittle ? source.Begin() : finds.end, *finds.layout, run);
  if (lost.places.empty() || (isLittle && lost.things <= finds.Count())) return;
  source.Open(std::make_shared<RestoredBytes>(source.Bytes(), std::move(lost.places)), source.Begin());
  finds = std::move(LookThrough(source, std::array{finds.layout}, run).front());
}

}  // namespace

std::optional<FoundBlock> Evidence::Find(Bid bid) const {
  const std::size_t number = blocks.FirstFrom(Canonical(bid));
  if (number == blocks.size()) return std::nullopt;
  const FoundBlock block = blocks[number];
  return block.bid == Canonical(bid) ? std::optional(block) : std::nullopt;
}

std::optional<ToldByHeader> ReadHeader(const Source& source) {
  std::array<std::byte, Header::kSize> bytes{};
  if (source.Read(0, bytes).value_or(0) != bytes.size()) return std::nullopt;
  const auto header = IfReadable([&] { return DecodeHeader(bytes); });
  if (!header) return std::nullopt;
  return ToldByHeader{header->generation, header->bCryptMethod, header->root.brefNbt, header->root.brefBbt};
}

Evidence FindEvidence(Source& source, const std::optional<ToldByHeader>& told, RunContext& run) {
  constexpr std::array<const Generation*, 3> kLayouts = {&generations::kUnicode, &generations::kAnsi,
                                                         &generations::kUnicode4k};
  Evidence evidence;
  std::vector<Finds> all = LookThrough(source, kLayouts, run);
  Finds* best = Likeliest(all, told ? told->layout : nullptr);
  if (best == nullptr) {
    evidence.hasStrays = source.Size() != 0;
    return evidence;
  }
  Finds finds = std::move(*best);
  all.clear();
  if (!finds.soughtMoved) finds = std::move(LookThrough(source, std::array{finds.layout}, run).front());
  PutBackLostBytes(source, finds, run);
  evidence.hasStrays = HasStrays(finds);
  evidence.layout = finds.layout;
  evidence.encoding = LikeliestEncoding(finds, told);
  MapBlocks(source, std::move(finds), told && told->layout == evidence.layout ? told : std::nullopt, evidence, run);
  return evidence;
}

}  // namespace velmora::engine
