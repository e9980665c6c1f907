// What a run tells about the store that it read and about what became of it.
#pragma once

#include <cstdint>
#include <map>
#include <optional>

#include "conversion/summary.h"
#include "engine/heap_evidence.h"
#include "engine/source.h"
#include "platform/failure.h"
#include "recovery/recovery_report.h"
#include "store/format/generation.h"
#include "store/operations.h"

namespace velmora::conversion {

/// What a run that could not go on has left behind: the store on disk as whoever opens it finds it, whatever the run
/// believed to have written.
struct LeftStore {
  StoreContents contents;
  std::map<text::Text, std::uint64_t> items;  ///< by message class
  output::AttachmentTotals attachments;
};

struct RunReport {
  engine::StoreKind storeKind = engine::StoreKind::kNone;
  std::optional<FormatId> format;  ///< nothing while no format was found
  // As the scans left them.
  std::uint32_t nodeCount = 0;
  std::uint32_t blockRecordCount = 0;
  std::uint32_t orphanBlockCount = 0;
  CryptMethod blockEncoding = CryptMethod::kNone;
  recovery::RecoveryReport recovery;
  /// What the new store holds where it could not be written to the end; the counts of `recovery` are of it then.
  std::optional<LeftStore> left;
  std::optional<platform::Failure> readFailure;  ///< the first read of the source that failed
};

/// Stretches that a report lists; of those beyond it has the number and the bytes.
inline constexpr std::size_t kMostUnreadRanges = 1000;

/// Adds a loss for each stretch: nobody knows what stood there, and what did is not in the new store.
void ReportUnreadRanges(const engine::BadRanges& bad, recovery::RecoveryReport& report);

}  // namespace velmora::conversion
