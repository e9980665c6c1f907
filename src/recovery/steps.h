// The recovery steps of a run, in the order in which the worker calls them. A step returns no value.
//
// Both raise output::OutputFailure: where the new store itself fails (output::IsStoreFailure), and where a step
// has to leave by exception (an embedded message that cannot be attached, "Orphaned Mails" that cannot be
// made). engine::RunStopped passes through both.
#pragma once

#include "engine/run.h"
#include "engine/scanned_store.h"
#include "recovery/recovery_state.h"

namespace velmora::recovery {

/// recover_folders.cpp. Sends stage 6; takes the folders out of the node list, reads the name-to-id map, then
/// makes the folders in the new store.
void RecoverFolders(RecoveryState& state, const engine::ScannedStore& store, engine::RunContext& run);

/// create_target_folders.cpp, the last thing that RecoverFolders does. Sends stage 7; orders and thins the list.
void CreateTargetFolders(RecoveryState& state, std::vector<FolderRecord> recovered, engine::RunContext& run);

/// recover_orphans.cpp. Sends stage 8; turns every node that is left into an item, then every orphan.
void RecoverOrphans(RecoveryState& state, const engine::ScannedStore& store, engine::RunContext& run);

}  // namespace velmora::recovery
