// One walk over the pages of a source, for whatever is looked for in them.
#pragma once

#include <cstdint>

#include "engine/run.h"
#include "engine/source_window.h"
#include "engine/store_scan.h"
#include "store/format/byte_view.h"

namespace velmora::engine {

/// Takes the pages in file order.
class PageVisitor {
 public:
  virtual ~PageVisitor() = default;

  /// `page` begins at the file offset `offset` and reaches to the end of what was read with it, at `readOffset`; it is
  /// empty where the source has ended before.
  virtual void VisitPage(std::uint64_t offset, ByteView page, std::uint64_t readOffset) = 0;
};

/// How a scan reads, in bytes.
struct WalkSizes {
  std::uint32_t read;   ///< what the pages of a step are cut from
  std::uint32_t step;   ///< from one read to the next; no more than `read`
  std::uint32_t reach;  ///< what the window holds from the beginning of a step on, for the visitor; no less than `read`
};

/// From one page to the next, in a store of that format or of none.
constexpr std::uint32_t StrideOf(const Generation& layout) { return LayoutOf(layout.formatId).pageSize; }

/// Of the first page: there is none ahead of the first allocation map, which is page 34, nor of the map of pages behind
/// it.
constexpr std::uint64_t FirstPage(const Generation& layout) { return 36ull * StrideOf(layout); }
static_assert(FirstPage(generations::kUnicode) == 18432 && FirstPage(generations::kUnicode4k) == 147456);

/// From the first page of the store to the end of its source; what is not worth a visit is not even read. Reports each
/// step with `phase`; ends early once `runEnded` is raised.
void WalkPages(const StoreScan& scan, RunContext& run, SourceWindow& window, const WalkSizes& sizes, Phase phase,
               const StepMarks& marks, PageVisitor& visitor);

}  // namespace velmora::engine
