// The members of the engine object that the scanning steps own, grouped by the step that fills them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "engine/bad_ranges.h"
#include "engine/block_index.h"
#include "engine/node_list.h"
#include "engine/referenced_ids.h"
#include "platform/file.h"
#include "store/format/encoding.h"
#include "store/format/generation.h"

namespace velmora::engine {

/// "pst", "ost", "pab" or the empty text, by the client magic; branches on it are exact.
enum class StoreKind { kNone, kPst, kOst, kPab };

/// A block that no node refers to: one of the two ids is set, the other is 0.
struct OrphanBlock {
  std::uint32_t bidData = 0;  ///< a block with a heap signature
  std::uint32_t bidSub = 0;   ///< a sub-node block that begins with an attachment table
};

struct EngineState {
  // Opening and probe
  std::unique_ptr<platform::ByteSource> source;  ///< null outside a run
  std::optional<platform::Failure> readFailure;  ///< the first read of the source that failed; no step shows it
  BadRanges badRanges;                           ///< of all reads that failed
  StoreKind storeKind = StoreKind::kNone;
  PageLayout layout;
  std::uint64_t percentBase = 0;  ///< divisor of every percentage; 0 for a tiny source

  // Node scan
  NodeList nodes;
  ReferencedIds referencedIds;  ///< Smart Scan only
  std::uint32_t nodeCount = 0;

  // Block scan
  std::filesystem::path outputFolder;   ///< holds the new store and the index file; empty before the set-up
  std::filesystem::path indexFileName;  ///< "FirstTableItem.dat" once the block scan has begun
  BlockIndex index;
  std::uint32_t blockRecordCount = 0;
  /// Smart Scan only. The list ends in its empty element, so a Smart Scan has at least one; a Normal Scan none.
  std::vector<OrphanBlock> orphans;
  std::uint32_t orphanBlockCount = 0;

  // Block reader
  CryptMethod blockEncoding = CryptMethod::kNone;
  bool encodingUnknown = true;

  /// How far a scan has come at this offset of the source, in percent; above 100 behind the end. A source
  /// of less than 100 bytes has no hundredth to count in: everything of it is done.
  std::uint32_t PercentOfSource(std::uint64_t offset) const {
    return percentBase == 0 ? 100 : static_cast<std::uint32_t>(offset / percentBase);
  }
};

}  // namespace velmora::engine
