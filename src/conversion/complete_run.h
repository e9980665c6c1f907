// One complete conversion, from opening the source to sealing the new store, on the calling thread.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "complete/account.h"
#include "complete/copy_store.h"
#include "conversion/worker.h"
#include "engine/evidence/store_places.h"
#include "engine/heap_evidence.h"
#include "engine/run.h"
#include "platform/file.h"
#include "store/format/generation.h"

namespace velmora::conversion {

struct CompleteRequest {
  std::filesystem::path source;
  std::filesystem::path destination;  ///< the folder in which the new one is made; must exist
  complete::CopyOptions copy;
  std::optional<std::uint64_t> at;  ///< where in the file the store begins that is wanted
  bool verify = false;
  bool dryRun = false;  ///< everything is read, and written to a store without a file
  bool log = false;     ///< LogInformation.log beside the new store
  platform::SourceOpener open = platform::OpenForReading;
};

struct CompleteReport {
  engine::StoreKind storeKind = engine::StoreKind::kNone;
  std::optional<FormatId> format;           ///< nothing while no format was found
  std::optional<engine::StorePlace> place;  ///< where in the file it lies, if it is not all of it
  std::vector<engine::StorePlace> others;   ///< that the file holds besides
  std::uint64_t grownBy = 0;                ///< bytes that the file got at its end while it was read; they were not
  std::filesystem::path store;              ///< of the new store; empty while none was made
  complete::Account account;
  std::optional<Failure> readFailure;                           ///< the first read of the source that failed
  std::vector<std::pair<std::uint64_t, std::uint64_t>> unread;  ///< ranges of the source: from, to
};

/// Says stages 1 (opening), 2 (looking through the source), 3 (set-up), 8 (items) and 9 (sealing and comparing),
/// progress within 2, 8 and 9, and at the end Done or the one notice of what ended it; never both. A stop leaves the
/// store sealed with what was copied.
RunEnd RunComplete(const CompleteRequest& request, engine::RunContext& run, CompleteReport& report);

}  // namespace velmora::conversion
