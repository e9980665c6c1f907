// What became of everything that the source holds: the account of a complete conversion.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "store/format/failures.h"
#include "store/format/ids.h"
#include "store/format/prop_tag.h"
#include "store/ndb/block_source.h"
#include "text/calendar.h"
#include "text/text.h"

namespace velmora::complete {

/// What became of a node that some page of the file names. Each has just one fate, so their counts add up to the number
/// of nodes found.
enum class NodeFate : std::size_t {
  kWritten,       ///< the object is in the new store, whole
  kPartial,       ///< it is there without something that could not be read
  kOlderVersion,  ///< an old page names it as it was before: with other blocks than now
  kDeleted,       ///< no longer live
  kDeletedWritten,
  kHidden,        ///< an associated message, which was not asked for
  kSearchFolder,  ///< a search folder or what belongs to one: it holds nothing of its own
  kInternal,  ///< of the store itself (tables, queues, its name map, folders without a message that nobody sees): made
              ///< anew or not needed
  kUnreadable,  ///< live, and nothing of it could be read
};
inline constexpr std::size_t kNodeFates = 9;

/// The messages of one class.
struct ItemCounts {
  std::uint64_t live = 0;
  std::uint64_t whole = 0;
  std::uint64_t partial = 0;
  std::uint64_t lost = 0;
};

/// Something of a message or attachment that did not come across.
struct MissingPart {
  enum class Kind {
    kObject,      ///< all of it
    kProperty,    ///< one property: `tag`
    kRecipients,  ///< the table of recipients, or rows of it
    kAttachment,  ///< `name`, of `size` bytes
    kBytes,       ///< a part of the value `tag`, which reads as zeros
  };
  Kind kind = Kind::kObject;
  PropTag tag = 0;
  text::Text name = {};
  std::uint64_t size = 0;
  Failure cause = {};  ///< kind, object, offset and cause in plain words
};

/// A message or folder of which not everything came across, named as a person knows it.
struct Loss {
  Nid source{};
  std::optional<Nid> target = {};  ///< nothing where nothing of it could be written
  text::Text folder = {};          ///< path in the new store, each name behind a slash
  text::Text messageClass = {};
  text::Text subject = {};
  text::Text sender = {};
  std::optional<text::FileTime> date = {};
  std::vector<MissingPart> missing = {};  ///< no more than kMostParts
  std::uint64_t missingNotListed = 0;     ///< those beyond
  static constexpr std::size_t kMostParts = 20;
};

/// A folder of the new store, and what became of the messages that stood in it.
struct FolderAccount {
  text::Text path;  ///< as in Loss::folder; a folder stands behind the one that it is in
  std::uint64_t whole = 0;
  std::uint64_t partial = 0;
  std::uint64_t lost = 0;
  std::uint64_t deleted = 0;  ///< deleted ones that came back
};

/// What a stretch of the file holds. Where it holds several, the one that comes last here is told.
enum class FileUse : std::uint8_t {
  kNeverUsed,
  kFreed,       ///< blocks that are not in use any more
  kLive,        ///< blocks in use
  kTree,        ///< pages of the trees and maps, and the header
  kFailed,      ///< blocks or pages whose checksum is wrong
  kUnreadable,  ///< the system could not read it, or the file lacks it
};

/// The file from its beginning to its end, in cells of one size.
struct FileMap {
  std::uint64_t cellBytes = 0;  ///< 0: there is no map
  std::vector<FileUse> cells;   ///< no more than kMostCells
  static constexpr std::size_t kMostCells = 4096;
};

/// On what the answer stands.
struct Evidence {
  bool headerUsed = false;      ///< it proves itself, and what was found bears it out
  bool nodesAreExact = false;   ///< the newest node tree is whole: its entries are the live nodes
  bool blocksAreExact = false;  ///< likewise the block tree
  std::uint64_t liveNodes = 0;
  std::uint64_t nodePages = 0;     ///< pages of node trees that were found, old ones too
  std::uint64_t blockPages = 0;    ///< likewise of block trees
  std::uint64_t liveBlocks = 0;    ///< in use, or not shown to be freed
  std::uint64_t freedBlocks = 0;   ///< not in use any more
  std::uint64_t hurtBlocks = 0;    ///< of both: those whose checksum is wrong or whose trailer is gone
  std::uint64_t failedBlocks = 0;  ///< stretches that look like a block and fail their checksum
};

/// A difference that a comparison of the two stores found.
struct Difference {
  Nid source{};
  Nid target{};
  std::string what;  ///< in plain words: "property 0x1000001F", "recipient 3: ..."
};

struct Account {
  std::array<std::uint64_t, kNodeFates> nodes{};
  std::uint64_t NodesFound() const;

  std::map<text::Text, ItemCounts> items;  ///< by message class
  std::uint64_t folders = 0;               ///< of the source that are in the new store
  std::uint64_t recipients = 0;
  std::uint64_t attachments = 0;     ///< with those of embedded messages
  std::uint64_t embedded = 0;        ///< messages in attachments
  std::uint64_t bytes = 0;           ///< of values that were copied
  std::uint64_t undefinedBytes = 0;  ///< of 8-bit texts, in no place of their code page: kept one by one

  std::vector<Loss> losses;
  std::uint64_t lossesNotListed = 0;
  Evidence evidence;
  std::vector<FolderAccount> folderAccounts;
  FileMap fileMap;

  /// Objects that have another id in the new store than in the source, and which.
  std::map<Nid, Nid> newIds;
  Nid NewIdOf(Nid source) const;

  /// Deleted messages that are in the new store, by the id that they have there.
  struct Recovered {
    ndb::NodeEntry node;
    bool isWhole = false;
  };
  std::map<Nid, Recovered> recovered;

  /// Of a comparison, where one was asked for.
  bool isVerified = false;
  std::uint64_t objectsCompared = 0;
  std::vector<Difference> differences;
  std::uint64_t differencesNotListed = 0;

  ItemCounts Totals() const;

  /// Whether everything that is live came across whole.
  bool IsWhole() const { return losses.empty() && lossesNotListed == 0; }

  /// Lists a loss with the first of its parts, or counts it where there are as many as `mostLosses` already.
  void AddLoss(Loss loss);
  std::uint64_t mostLosses = 10000;
};

}  // namespace velmora::complete
