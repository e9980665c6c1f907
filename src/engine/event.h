// What a run says, in the order in which it happens. Command line, wizard and tests each make of it what they show.
#pragma once

#include <cstdint>
#include <span>
#include <variant>

#include "platform/failure.h"
#include "text/text.h"

namespace velmora::engine {

struct StageBegun {
  std::uint32_t stage = 0;  ///< 1 opening, 2 probe, 3 set-up, 4 and 5 scans, 6 and 7 folders, 8 items, 9 closing
  friend bool operator==(const StageBegun&, const StageBegun&) = default;
};

enum class Phase : std::uint32_t { kLater = 0, kProbe = 1, kBlockScan = 2, kNodeScan = 3, kFolders = 4 };

/// Said when the number changes, and once more at the beginning of a stage.
struct Progress {
  std::uint32_t percentage = 0;  ///< what is above 100 is no percentage and is not shown
  Phase phase = Phase::kLater;
  friend bool operator==(const Progress&, const Progress&) = default;
};

/// How far a copy of whole objects has come. Said ahead of the percentage that it is.
struct ItemsCopied {
  std::uint64_t items = 0;
  std::uint64_t itemsTotal = 0;
  std::uint64_t bytes = 0;  ///< of blocks of the source, as they are stored, that were read for it
  std::uint64_t bytesTotal = 0;
  friend bool operator==(const ItemsCopied&, const ItemsCopied&) = default;
};

struct FolderRecord {
  std::uint32_t nid = 0;
  std::uint32_t parentNid = 0;  ///< nidParent of its node record
  text::Text name;
  text::Text containerClass;  ///< "IPF.Note" when the folder's block has none

  friend bool operator==(const FolderRecord&, const FolderRecord&) = default;
};

/// Said once, before any FolderReached. An observer that needs the folders longer than its call copies them.
struct FoldersKnown {
  std::span<const FolderRecord> folders;  ///< ordered and thinned
  std::uint32_t topFolderNid = 0;         ///< of the folder "Top of Personal Folders"; 0 without one
};

/// A folder of the new store takes items, or has taken all of them.
struct FolderReached {
  std::uint32_t nid = 0;  ///< of a known folder, or the number of a folder that the source does not have
  text::Text markerName;  ///< name of the latter
  friend bool operator==(const FolderReached&, const FolderReached&) = default;
};

enum class ListField : std::uint32_t { kFrom = 1, kTo = 2, kSubject = 3, kDate = 4 };

/// A field of the mail under work; kFrom begins a new mail.
struct FieldListed {
  ListField field = ListField::kFrom;
  text::Text text;
  friend bool operator==(const FieldListed&, const FieldListed&) = default;
};

/// The mail listed last has attachments.
struct AttachmentsListed {
  friend bool operator==(const AttachmentsListed&, const AttachmentsListed&) = default;
};

/// No mail is under work any more.
struct ListCleared {
  friend bool operator==(const ListCleared&, const ListCleared&) = default;
};

enum class NoticeKind {
  kSourceNotOpened,
  kNotValid,
  kNoIndexFile,
  kComponentMissing,  ///< the output library is not there
  kRegistering,       ///< the program that sets it up was started instead
  kComponentFailed,   ///< it is there and fails
  kNoOutputFolder,
  kNotEnoughSpace,  ///< before the run
  kStoreNotMade,
  kStoreNotWritten,
  kDiskFull,  ///< during the run
  kAborted,   ///< the run was ended from outside
};

/// Something that a person is to read before the run goes on or ends. Its text is looked up from its kind.
struct Notice {
  NoticeKind kind = NoticeKind::kNotValid;
  text::Text path;          ///< of the new store, where the text names it
  platform::Failure cause;  ///< why, for people who look after it; nothing where `cause.message` is empty
};

/// The conversion is complete.
struct Done {
  friend bool operator==(const Done&, const Done&) = default;
};

using Event = std::variant<StageBegun, Progress, ItemsCopied, FoldersKnown, FolderReached, FieldListed,
                           AttachmentsListed, ListCleared, Notice, Done>;

/// Receives everything, in order and in the thread of the run, which waits for it.
class RunObserver {
 public:
  virtual ~RunObserver() = default;
  virtual void OnEvent(const Event& event) = 0;
};

}  // namespace velmora::engine
