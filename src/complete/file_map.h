// The picture of a file: what each stretch of it holds.
#pragma once

#include "complete/account.h"
#include "engine/proven_store.h"

namespace velmora::complete {

FileMap MapOf(const engine::ProvenStore& store);

/// What the store was told by, in numbers.
Evidence EvidenceOf(const engine::ProvenStore& store);

}  // namespace velmora::complete
