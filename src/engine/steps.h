// The scanning steps of a run, in the order in which the worker calls them. Each step is implemented in
// the file named for it. A step returns no value: a failure shows in `runAborted`, or ends the worker by
// throwing WorkerEnded after its box.
#pragma once

#include <filesystem>
#include <memory>

#include "engine/run.h"
#include "engine/store_scan.h"

namespace velmora::engine {

/// steps.cpp. Makes the scan new, so nothing of an earlier run stays; sends stage 1, opens the file
/// with read sharing and sets `percentBase`. A source that cannot be opened shows its box and throws
/// WorkerEnded; `source` is closed then.
void OpenSource(StoreScan& scan, RunContext& run, const std::filesystem::path& path,
                const platform::SourceOpener& open = platform::OpenForReading);

enum class [[nodiscard]] ProbeResult{kFound, kRefused};

/// format_probe.cpp. Sends stage 2, finds store kind and page layout. On kRefused the caller closes source
/// and log, shows the refusal, runs the clean-up and ends the worker. kFound is also the answer when the
/// run had ended, since nothing is refused then.
ProbeResult ProbeFormat(StoreScan& scan, RunContext& run);

/// node_page_scan.cpp. Sends stage 4; fills `nodes`, `nodeCount` and, in a Smart Scan, `referencedIds` and
/// the first element of `orphans`.
void ScanNodePages(StoreScan& scan, RunContext& run);

/// block_page_scan.cpp. Sends stage 5; writes the index file and builds `index`; in a Smart Scan fills
/// `orphans`, whose first element the node scan has made. Needs `outputFolder`. An index file that cannot be made or
/// written, and fewer than 2 records, show their box and raise `runAborted`.
void ScanBlockPages(StoreScan& scan, RunContext& run);

/// steps.cpp. Gives what was found away, constant from now on, whatever became of the steps. In a run that goes
/// on it tells the encoding first, unless the block scan did.
[[nodiscard]] std::unique_ptr<const ScannedStore> FinishScan(StoreScan& scan, RunContext& run);

}  // namespace velmora::engine
