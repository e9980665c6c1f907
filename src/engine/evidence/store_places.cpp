#include "engine/evidence/store_places.h"

#include <algorithm>
#include <span>
#include <unordered_map>

#include "engine/evidence/page_evidence.h"
#include "store/format/byte_view.h"

namespace velmora::engine {
namespace {

/// Blocks that tell a store: what has fewer holds no mail.
constexpr std::size_t kFewestBlocks = 3;

/// Blocks of one id and different content that tell two stores apart: within one store hardly ever there are any.
constexpr std::size_t kTellingContradictions = 2;

/// Bytes that are lost or put in without a further question.
constexpr std::uint64_t kNear = 65536;

/// Pages that are read to learn what they name.
constexpr std::size_t kMostPages = 4096;

/// Marks of one origin, from the first to the last.
struct Span {
  Origin origin = 0;
  std::uint64_t from = 0;
  std::uint64_t to = 0;
  std::uint64_t bytes = 0;
  std::size_t blocks = 0;
  std::optional<std::uint64_t> toldSize;  ///< by the header
  std::vector<const Mark*> marks;         ///< by ascending place

  std::uint64_t FirstOffset() const { return OffsetOf(*marks.front(), origin); }
  std::uint64_t EndOffset() const { return to - static_cast<std::uint64_t>(origin); }
  FormatId Format() const { return marks.front()->format; }

  void Take(const Mark& mark) {
    if (marks.empty()) from = mark.place;
    to = std::max(to, mark.place + mark.size);
    bytes += mark.size;
    blocks += mark.kind == MarkKind::kBlock ? 1 : 0;
    if (mark.kind == MarkKind::kHeader) toldSize = mark.id;
    marks.push_back(&mark);
  }
};

/// One for each origin; what stands alone among marks of others is there by chance.
std::vector<Span> SpansOf(const std::vector<Mark>& marks, const MarkedOrigins& found) {
  std::vector<Span> spans(found.origins.size());
  for (std::size_t i = 0; i < spans.size(); ++i) spans[i].origin = found.origins[i];
  std::size_t before = kNoOrigin;
  for (std::size_t i = 0; i < marks.size(); ++i) {
    const std::size_t of = found.of[i];
    if (of == kNoOrigin) continue;
    const auto next = std::find_if(found.of.begin() + static_cast<std::ptrdiff_t>(i) + 1, found.of.end(),
                                   [](std::size_t origin) { return origin != kNoOrigin; });
    const bool isConfirmed = of == before || (next != found.of.end() && *next == of);
    if (isConfirmed || marks[i].kind == MarkKind::kHeader) spans[of].Take(marks[i]);
    before = of;
  }
  std::erase_if(spans, [](const Span& span) { return span.blocks < kFewestBlocks; });
  std::ranges::sort(spans, {}, &Span::from);
  return spans;
}

/// Of those that overlap the one that most is proven of.
std::vector<Span> WithoutNested(std::vector<Span> spans) {
  std::vector<Span> kept;
  for (Span& span : spans) {
    while (!kept.empty() && kept.back().to > span.from && kept.back().bytes < span.bytes) kept.pop_back();
    if (kept.empty() || kept.back().to <= span.from) kept.push_back(std::move(span));
  }
  return kept;
}

/// Blocks that both have under one id, with different content.
std::size_t Contradictions(const Span& one, const Span& other) {
  std::unordered_map<std::uint64_t, std::uint32_t> sums;
  for (const Mark* mark : one.marks) {
    if (mark->kind == MarkKind::kBlock) sums.emplace(mark->id, mark->crc);
  }
  return static_cast<std::size_t>(std::ranges::count_if(other.marks, [&](const Mark* mark) {
    const auto found = mark->kind == MarkKind::kBlock ? sums.find(mark->id) : sums.end();
    return found != sums.end() && found->second != mark->crc;
  }));
}

/// What the pages of one stretch say of places in another.
struct Naming {
  std::size_t right = 0;
  std::size_t wrong = 0;
};

class NamedPlaces {
 public:
  NamedPlaces(const Source& source, const Span& named) : source_(source), named_(named) {}

  Naming By(const Span& naming) {
    std::size_t pages = 0;
    for (const Mark* mark : naming.marks) {
      if (mark->kind == MarkKind::kPage && pages++ < kMostPages) Read(*mark);
    }
    return seen_;
  }

 private:
  void Read(const Mark& mark) {
    const Generation& layout = LayoutOf(mark.format);
    std::vector<std::byte> page(layout.pageSize);
    if (source_.Read(mark.place, page).value_or(0) != page.size()) return;
    const auto type = static_cast<PageType>(page[layout.offPageType]);
    const auto head = SoundHead(page, type, layout);
    if (!head || (head->cLevel == 0 && type != PageType::kBbt)) return;  // what else is a leaf names no places
    for (std::size_t i = 0; i < head->cEnt; ++i) {
      const auto entry = std::span(page).subspan(i * head->cbEnt, head->cbEnt);
      const Bref ref = head->cLevel == 0 ? DecodeBbtEntry(entry, layout).ref : DecodeBtEntry(entry, layout).ref;
      Compare(ref, head->cLevel == 0 ? MarkKind::kBlock : MarkKind::kPage);
    }
  }

  /// Against what stands at that place, or over it.
  void Compare(const Bref& ref, MarkKind kind) {
    const auto offset = [this](const Mark* mark) { return OffsetOf(*mark, named_.origin); };
    const auto behind = std::ranges::upper_bound(named_.marks, ref.ib, {}, offset);
    if (behind == named_.marks.begin()) return;
    const Mark& there = **std::prev(behind);
    if (ref.ib - offset(&there) >= there.size) return;
    const bool isSame = there.kind == kind &&
                        (kind == MarkKind::kPage ? there.id == Value(ref.bid) : there.id == Value(Canonical(ref.bid)));
    ++(isSame && offset(&there) == ref.ib ? seen_.right : seen_.wrong);
  }

  const Source& source_;
  const Span& named_;
  Naming seen_;
};

enum class Relation : std::uint8_t { kSame, kOther, kDoubtful };

Relation RelationOf(const Source& source, const Span& span, const Span& next) {
  if (next.Format() != span.Format() || next.FirstOffset() < span.EndOffset()) return Relation::kOther;
  if (Contradictions(span, next) >= kTellingContradictions) return Relation::kOther;
  const Origin apart = next.origin - span.origin;
  if (static_cast<std::uint64_t>(std::abs(apart)) <= kNear) return Relation::kSame;
  const Naming there = NamedPlaces(source, next).By(span);
  const Naming back = NamedPlaces(source, span).By(next);
  const std::size_t right = there.right + back.right;
  const std::size_t wrong = there.wrong + back.wrong;
  if (right == 0 && wrong == 0) return Relation::kDoubtful;
  return right > wrong ? Relation::kSame : Relation::kOther;
}

/// As far as its header tells, unless something of it lies behind that.
std::uint64_t EndOf(const Span& span, std::uint64_t fileSize) {
  if (!span.toldSize || *span.toldSize > fileSize - span.from) return fileSize;
  return std::max(span.to, span.from + *span.toldSize);
}

}  // namespace

std::vector<StorePlace> FindStores(const Source& source, RunContext& run) {
  const std::vector<Mark> marks = FindMarks(source, run);
  const std::vector<Span> spans = WithoutNested(SpansOf(marks, FindOrigins(marks, source.Size())));
  std::vector<StorePlace> stores;
  for (std::size_t i = 0; i < spans.size(); ++i) {
    const Span& span = spans[i];
    const std::uint64_t behind = i == 0 ? 0 : spans[i - 1].to;
    const Relation relation = i == 0 ? Relation::kOther : RelationOf(source, spans[i - 1], span);
    if (relation == Relation::kOther) {
      const std::uint64_t begin = span.origin < 0 ? 0 : static_cast<std::uint64_t>(span.origin);
      const std::uint64_t from = begin >= behind ? begin : span.from;
      if (!stores.empty()) stores.back().to = std::min(stores.back().to, from);
      stores.push_back({.origin = span.origin,
                        .from = from,
                        .to = EndOf(span, source.Size()),
                        .hasHeader = span.toldSize.has_value(),
                        .doubtfulFrom = {}});
    } else {
      stores.back().to = source.Size();
      if (relation == Relation::kDoubtful && !stores.back().doubtfulFrom) stores.back().doubtfulFrom = span.from;
    }
    stores.back().provenBytes += span.bytes;
  }
  return stores;
}

std::size_t MainStore(const std::vector<StorePlace>& stores) {
  if (stores.front().origin == 0) return 0;
  const auto most = std::ranges::max_element(stores, {}, &StorePlace::provenBytes);
  return static_cast<std::size_t>(most - stores.begin());
}

}  // namespace velmora::engine
