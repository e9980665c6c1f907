// The properties of one object, from its property context or its row into a list for the new store.
#pragma once

#include <span>
#include <vector>

#include "complete/account.h"
#include "complete/left_out.h"
#include "complete/live_store.h"
#include "complete/references.h"
#include "complete/source_names.h"
#include "complete/text_pages.h"
#include "engine/content_allowance.h"
#include "store/ltp/property_context.h"
#include "store/messaging/objects/property_bag.h"
#include "store/messaging/store_writer.h"

namespace velmora::complete {

/// What everyone who copies needs.
struct CopyTools {
  const LiveStore& source;
  const SourceNames& names;
  const TextPages& pages;
  const References& references;
  messaging::StoreWriter& target;
  engine::ContentAllowance& allowance;
  Account& account;
};

using Missing = std::vector<MissingPart>;

/// Adds a part to `missing` where blocks of `source` were read since its last TakeHurt whose content is not proven: the
/// value is there, but nobody knows whether it is what it was.
void AddHurt(const LiveStore& source, MissingPart part, Missing& missing);

/// Adds a part to `missing` where `faults` were noted since there were so many of them.
void AddFault(const ndb::Faults& faults, std::size_t before, MissingPart part, Missing& missing);

/// The failure under way, for whoever has caught it and leaves out what failed. A failure of the new store itself goes
/// on.
Failure CauseOfLoss();

/// Whether the bytes of a data block are the same in both stores.
bool IsStoredAlike(const LiveStore& source, const ndb::NdbWriter& target);

class PropertyCopier {
 public:
  explicit PropertyCopier(CopyTools& tools) : tools_(tools) {}

  /// All properties but those that are left out and `kAttachDataObject` (a sub-node, see AttachmentCopier), by
  /// ascending identifier in the new store; of those that the object lacks, the ones of `defaults`. What cannot be read
  /// or written goes to `missing`. `faults` is the list that the context was opened with.
  messaging::PropertyBag Copy(ltp::PropertyContext& from, Owner owner, const text::CodePage& page,
                              const ndb::Faults& faults, const messaging::PropertyBag& defaults, Missing& missing);

  /// Brings one value into the form of the new store and puts it, with the tag `targetTag`. Raises FailureError for one
  /// that its type cannot have.
  void Put(PropTag tag, PropTag targetTag, std::vector<std::byte>& value, const text::CodePage& page,
           messaging::PropertyBag& out);

  /// The tag in the new store. Raises FailureError for an identifier from 0x8000 on that has no name.
  PropTag TargetTag(PropTag tag);

  /// Raises FailureError where `out` has that tag, or another of its identifier: a map that is damaged may give one
  /// name to several identifiers, and nobody knows whose it is.
  static void CheckIsFirst(PropTag tag, PropTag targetTag, const messaging::PropertyBag& out);

  /// A data tree of the source, written to the new store piece by piece.
  ndb::DataTree CopyTree(ndb::DataTreeReader from);

 private:
  void CopyOne(ltp::PropertyContext& from, PropTag tag, PropTag targetTag, const text::CodePage& page,
               messaging::PropertyBag& out);
  /// Takes over the blocks that stand in both stores as they do in one, up to the first that does not. Returns their
  /// number.
  std::size_t CopyStored(const ndb::DataTreeReader& from, ndb::DataTreeWriter& to);
  void TakeBytes(std::uint64_t count);

  /// A property of the new object.
  struct Step {
    PropTag targetTag;
    const PropertyRecord* record;  ///< null: the default
  };

  CopyTools& tools_;
  std::vector<Step> steps_;           ///< of the object under way
  std::vector<std::byte> heapValue_;  ///< under way
  std::vector<std::byte> piece_;      ///< of a tree under way
  std::vector<std::byte> block_;
};

}  // namespace velmora::complete
