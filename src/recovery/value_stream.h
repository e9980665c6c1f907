// Values that lie in data blocks of their own: in one, or in a list of them (XBLOCK, see store/format/block.h).
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "engine/block_reader.h"
#include "engine/content_allowance.h"
#include "engine/scanned_store.h"
#include "text/code_page.h"
#include "text/text.h"

namespace velmora::recovery {

/// Where the pieces of one value lie.
struct BlockChain {
  bool hasList = false;                    ///< a list was built, if only an empty one
  std::vector<std::uint32_t> pieces = {};  ///< ids in order; 0 names no piece
  std::uint32_t singleDataBid = 0;         ///< the one data block of a value reached through a sub-node block

  // For the report alone.
  engine::BlockRecord last = {};    ///< the block that the walk ended at
  std::uint16_t lastSignature = 0;  ///< its first word
  std::uint32_t missing = 0;        ///< id that the last block names, a sub-node block, and that has no block
  std::uint64_t total = 0;          ///< bytes of the value, as a list tells; 0 where no list does
  bool takenForList = false;        ///< the data, `total` bytes, was taken for a list of blocks
  std::uint64_t read = 0;           ///< bytes of pieces that were read
};

/// What is missing of a value, in plain words, when `written` bytes were taken from the chain; empty when nothing is.
text::Text MissingOf(const BlockChain& chain, std::uint64_t written);

/// Fills the chain from the block at the record, and `total` too where it is a list of lists, which is no list here.
/// True when the value is a list of pieces; false when it is one plain block, and also when a sub-node block led to the
/// pieces.
bool BuildBlockChain(const engine::ScannedStore& store, const engine::BlockRecord& record,
                     engine::ContentAllowance& allowance, BlockChain& chain);

/// The same walk, but true as soon as a sub-node block led to a block that is there.
bool BuildBlockChainAt(const engine::ScannedStore& store, const engine::BlockRecord& record,
                       engine::ContentAllowance& allowance, BlockChain& chain);

struct DataBlock {
  Bytes bytes;
  bool inflated = false;
};

/// A data block, decoded with the key `id`; in the 4K format inflated, unless it shows a heap signature, is no packed
/// stream, or `inflates` is false. Nothing when it cannot be read or the allowance is spent.
std::optional<DataBlock> ReadDataBlock(const engine::ScannedStore& store, const engine::BlockRecord& record,
                                       std::uint32_t id, engine::ContentAllowance& allowance, bool inflates = true);

/// The pieces as one text, of the width that texts of the store have. `kind` is the id of the property. Each piece ends
/// at its first NUL and is converted by itself. A piece that is missing, or that only the lower id finds, is left out.
text::Text ReadStreamAsText(const engine::ScannedStore& store, BlockChain& chain, std::uint16_t kind,
                            const text::CodePage& codePage, engine::ContentAllowance& allowance);

/// The pieces of a value of 8-bit text in every store, by the same rules.
std::string ReadStreamAsBytes(const engine::ScannedStore& store, BlockChain& chain,
                              engine::ContentAllowance& allowance);

using PieceWriter = std::function<void(const Bytes&)>;

/// Gives each piece, in order, to `write`; a piece that is missing is left out.
void WriteStreamToFile(const engine::ScannedStore& store, BlockChain& chain, engine::ContentAllowance& allowance,
                       const PieceWriter& write);

/// The 8-bit page of a body: HTML and RTF travel by the one that changes no byte, whatever the setting is.
const text::CodePage& BodyCodePage(std::uint16_t tag, const text::CodePage& codePage);

}  // namespace velmora::recovery
