#include "complete/copy_store.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include "complete/copy_source.h"
#include "complete/file_map.h"
#include "complete/folder_copier.h"
#include "complete/message_copier.h"
#include "complete/read_ahead.h"
#include "complete/value_form.h"
#include "engine/content_allowance.h"
#include "store/format/property_tags.h"
#include "store/ltp/multi_value.h"

namespace velmora::complete {
namespace {

using messaging::Folder;
using messaging::PropertyBag;

text::Text TextIn(const PropertyBag& properties, PropTag tag) { return ltp::DecodeText(properties.Value(tag)); }

/// Without the two characters ahead of a subject that tell the length of its prefix.
text::Text SubjectIn(const PropertyBag& properties) {
  const text::Text subject = TextIn(properties, tag::kSubject);
  return !subject.empty() && subject[0] == 1 ? subject.substr(std::min<std::size_t>(2, subject.size())) : subject;
}

std::optional<text::FileTime> DateIn(const PropertyBag& properties) {
  for (const PropTag tag : {tag::kMessageDeliveryTime, tag::kClientSubmitTime, tag::kCreationTime}) {
    const auto value = properties.Value(tag);
    if (value.size() == sizeof(text::FileTime)) return Load<std::uint64_t>(value, 0);
  }
  return std::nullopt;
}

class StoreCopy {
 public:
  StoreCopy(const engine::ProvenStore& found, messaging::StoreWriter& target, const CopyOptions& options,
            engine::RunContext& run, Account& account)
      : options_(options),
        run_(run),
        account_(account),
        target_(target),
        from_(found, options.codePage, options.hidden),
        references_(plan_.RecordKey(), target.RecordKey(), [this](Nid nid) { return TargetOf(nid); }),
        allowance_(engine::ContentAllowance(found.Bytes().Size(), found.Format().formatId == FORMAT_UNICODE_4K,
                                            found.Nodes().size() + found.Found().blocks.size())),
        tools_{source_, from_.names, from_.pages, references_, target, allowance_, account},
        folders_(tools_, plan_),
        messages_(tools_) {
    account_.mostLosses = allowance_.MostLosses();
  }

  void Run() {
    account_.evidence = EvidenceOf(source_.Found());
    account_.fileMap = MapOf(source_.Found());
    run_.BeginStage(8);
    const std::vector<ndb::NodeEntry> deleted = options_.deleted ? DeletedMessages() : std::vector<ndb::NodeEntry>();
    GiveIds(deleted);
    folders_.CopyAll();
    folderCounts_.reserve(account_.folders);
    engine::ItemsCopied progress = WhatIsToCopy(deleted.size());
    const auto copy = [&](const std::vector<ndb::NodeEntry>& nodes, bool areDeleted) {
      ReadAhead ahead(
          source_, IsStoredAlike(source_, target_.Ndb()), *run_.workers, nodes,
          [&](const ndb::NodeEntry& node) { return IsMessage(node.nid) && (areDeleted || from_.Takes(node)); });
      for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (!IsMessage(nodes[i].nid)) continue;
        run_.control.PausePoint();
        run_.SayCopied(progress);
        ahead.Reach(i);
        CopyMessage(nodes[i], areDeleted);
        ++progress.items;
        progress.bytes = std::min(source_.BytesRead(), progress.bytesTotal);
      }
    };
    copy(source_.Nodes(), false);
    copy(deleted, true);
    progress.bytes = progress.bytesTotal;
    run_.SayCopied(progress);
    for (const engine::MessageRow& row : source_.Found().Lost().messageRows) CountRow(row);
    for (const ndb::NodeEntry& node : source_.Nodes()) Count(FateOfLive(node));
    CountOldNodes();
    account_.folderAccounts.reserve(folderCounts_.size());
    for (auto& [folder, counts] : folderCounts_) account_.folderAccounts.push_back(std::move(counts));
    std::ranges::sort(account_.folderAccounts, {}, &FolderAccount::path);
  }

 private:
  /// A deleted message counts for as many bytes as the others on the average.
  engine::ItemsCopied WhatIsToCopy(std::uint64_t deleted) const {
    std::uint64_t live = 0;
    for (const ndb::NodeEntry& node : source_.Nodes()) live += IsMessage(node.nid) ? 1 : 0;
    const std::uint64_t bytes = source_.BytesInUse();
    return {.itemsTotal = live + deleted, .bytesTotal = bytes + bytes / std::max<std::uint64_t>(live, 1) * deleted};
  }

  /// Notes the ids that objects bring along, so that those which the new store gives itself stay apart from them; then
  /// gives the messages new ones that cannot keep theirs.
  void GiveIds(const std::vector<ndb::NodeEntry>& deleted) {
    std::vector<Nid> anew;
    const auto give = [&](Nid nid) {
      if (KeepsId(nid)) {
        target_.Ndb().NoteNid(nid);
      } else if (IsMessage(nid)) {
        anew.push_back(nid);
      }
    };
    for (const ndb::NodeEntry& node : source_.Nodes()) {
      if (from_.Takes(node)) give(node.nid);
    }
    for (const ndb::NodeEntry& node : deleted) give(node.nid);
    for (const Nid nid : anew) account_.newIds.emplace(nid, target_.Ndb().NewNid(TypeOf(nid)));
  }

  /// What references lead to may be lost on the way.
  std::optional<Nid> TargetOf(Nid nid) {
    return from_.Takes(nid) ? std::optional(account_.NewIdOf(nid)) : std::nullopt;
  }

  Folder& FolderOf(const ndb::NodeEntry& node) {
    const SourceFolder* folder = plan_.Find(node.nidParent);
    return folder != nullptr && folder->target != nullptr ? *folder->target : folders_.LostAndFound();
  }

  /// Of each message that is no longer live the newest version that can be opened, by ascending id.
  std::vector<ndb::NodeEntry> DeletedMessages() {
    std::vector<ndb::NodeEntry> deleted;
    std::unordered_set<Nid> taken;
    const auto take = [&](const engine::NodeClaim& claim) {
      const ndb::NodeEntry& node = claim.node;
      if (claim.standing != engine::Standing::kDeleted || TypeOf(node.nid) != NidType::kNormalMessage) return;
      if (source_.FindNode(node.nid) || taken.contains(node.nid)) return;
      ndb::Faults faults;
      const auto open = [&] { return ltp::PropertyContext::Open(source_, node.trees, &faults).Records().size(); };
      if (IfReadable(open).value_or(0) == 0) return;
      deleted.push_back(node);
      taken.insert(node.nid);
    };
    std::ranges::for_each(source_.Found().Lost().nodes, take);  // these replace what a claim of the same id says
    std::ranges::for_each(source_.Found().Judged().nodes, take);
    std::ranges::sort(deleted, {}, &ndb::NodeEntry::nid);
    return deleted;
  }

  FolderAccount& CountsOf(const Folder& folder) {
    FolderAccount& counts = folderCounts_[&folder];
    if (counts.path.empty()) counts.path = PathOf(folder);
    return counts;
  }

  void CountRow(const engine::MessageRow& row) {
    Loss loss{.source = row.nid, .messageClass = row.messageClass, .subject = row.subject, .sender = row.sender};
    if (row.delivered) loss.date = *row.delivered;
    const SourceFolder* folder = plan_.Find(row.nidParent);
    if (folder != nullptr && folder->target != nullptr) {
      loss.folder = PathOf(*folder->target);
      ++CountsOf(*folder->target).lost;
    }
    loss.missing.push_back({.kind = MissingPart::Kind::kObject,
                            .size = row.size,
                            .cause = {FailureKind::kNotFound,
                                      {ObjectKind::kNode, row.nid},
                                      {},
                                      "only its row in the table of its folder is left"}});
    ItemCounts& counts = account_.items[loss.messageClass];
    ++counts.live;
    ++counts.lost;
    account_.AddLoss(std::move(loss));
  }

  void CopyMessage(const ndb::NodeEntry& node, bool isDeleted) {
    const bool isHidden = TypeOf(node.nid) == NidType::kAssocMessage;
    if (!isDeleted && !from_.Takes(node)) {
      fates_[node.nid] = NodeFate::kHidden;
      return;
    }
    static_cast<void>(source_.TakeHurt());
    allowance_.BeginNode();
    Loss loss{.source = node.nid};
    Folder* folder = nullptr;
    try {
      CopiedMessage copied = messages_.Copy(node.trees);
      Describe(copied.message.properties, loss);
      loss.missing = std::move(copied.missing);
      folder = isDeleted ? &folders_.RecoveredFrom(plan_.Find(node.nidParent)) : &FolderOf(node);
      copied.message.isAssociated = isHidden;
      loss.target = target_.Save(std::move(copied.message), *folder, account_.NewIdOf(node.nid));
    } catch (const std::exception&) {
      loss.missing.push_back({.kind = MissingPart::Kind::kObject, .cause = CauseOfLoss()});
      NameByRow(node, loss);
    }
    const bool isWhole = loss.target && loss.missing.empty();
    if (isDeleted) {
      // What is missing of it is no loss of a message that somebody has deleted.
      if (!loss.target) return;
      ++CountsOf(*folder).deleted;
      deletedWritten_.insert(node.nid);
      account_.recovered.emplace(*loss.target, Account::Recovered{node, loss.missing.empty()});
      return;
    }
    if (!isHidden) {
      ItemCounts& counts = account_.items[loss.messageClass];
      ++counts.live;
      ++(isWhole ? counts.whole : loss.target ? counts.partial : counts.lost);
      if (folder != nullptr) {
        FolderAccount& ofFolder = CountsOf(*folder);
        ++(isWhole ? ofFolder.whole : loss.target ? ofFolder.partial : ofFolder.lost);
      }
    }
    if (isWhole) return;
    const SourceFolder* had = plan_.Find(node.nidParent);
    if (folder == nullptr && had != nullptr) folder = had->target;
    if (folder != nullptr) loss.folder = PathOf(*folder);
    fates_[node.nid] = loss.target ? NodeFate::kPartial : NodeFate::kUnreadable;
    account_.AddLoss(std::move(loss));
  }

  /// What the table of its folder tells of a message that cannot be read.
  void NameByRow(const ndb::NodeEntry& node, Loss& loss) {
    if (!loss.messageClass.empty()) return;
    const auto tableNode = source_.FindNode(Sibling(node.nidParent, NidType::kContentsTable));
    if (!tableNode) return;
    ndb::Faults faults(tableNode->nid);
    auto table = IfReadable([&] { return ltp::TableContext::Open(source_, tableNode->trees, &faults); });
    const auto row = table ? table->FindRow(Value(node.nid)) : std::nullopt;
    if (!row) return;
    PropertyBag properties;
    PropertyCopier copier(tools_);
    for (const ltp::Column& column : table->Columns()) {
      if (IdOf(column.tag) >= name_map::kFirstNamedId) continue;
      try {
        if (auto cell = table->Cell(*row, column.tag)) {
          copier.Put(column.tag, TargetForm(column.tag), *cell, from_.pages.OfStore(), properties);
        }
      } catch (const FailureError&) {
        // The others name it as well.
      }
    }
    Describe(properties, loss);
  }

  static void Describe(const PropertyBag& properties, Loss& loss) {
    loss.messageClass = TextIn(properties, tag::kMessageClass);
    loss.subject = SubjectIn(properties);
    loss.sender = TextIn(properties, tag::kSenderName);
    if (loss.sender.empty()) loss.sender = TextIn(properties, tag::kSentRepresentingName);
    loss.date = DateIn(properties);
  }

  NodeFate FateOfLive(const ndb::NodeEntry& node) {
    if (const auto fate = fates_.find(node.nid); fate != fates_.end()) return fate->second;
    switch (TypeOf(node.nid)) {
      case NidType::kNormalMessage:
      case NidType::kAssocMessage:
        return NodeFate::kWritten;
      case NidType::kNormalFolder: {
        const SourceFolder* folder = plan_.Find(node.nid);
        return folder->target != nullptr ? NodeFate::kWritten : NodeFate::kInternal;
      }
      case NidType::kSearchFolder:
      case NidType::kSearchUpdateQueue:
      case NidType::kSearchCriteriaObject:
      case NidType::kSearchContentsTable:  // or the template of all of them
        return source_.FindNode(Sibling(node.nid, NidType::kSearchFolder)) ? NodeFate::kSearchFolder
                                                                           : NodeFate::kInternal;
      default:
        return NodeFate::kInternal;
    }
  }

  void Count(NodeFate fate) { ++account_.nodes[static_cast<std::size_t>(fate)]; }

  /// What pages name that is no longer so. A node that is not live counts as deleted once, whatever it was before.
  void CountOldNodes() {
    Nid lastDead = kNoNid;
    const auto count = [&](const engine::NodeClaim& claim) {
      const Nid nid = claim.node.nid;
      const bool isDeleted = claim.standing == engine::Standing::kDeleted;
      if (!isDeleted && claim.standing != engine::Standing::kOlder) return;
      if (!isDeleted || nid == lastDead || source_.FindNode(nid)) return Count(NodeFate::kOlderVersion);
      Count(deletedWritten_.contains(nid) ? NodeFate::kDeletedWritten : NodeFate::kDeleted);
      lastDead = nid;
    };
    std::ranges::for_each(source_.Found().Judged().nodes, count);
    std::ranges::for_each(source_.Found().Lost().nodes, count);
  }

  const CopyOptions& options_;
  engine::RunContext& run_;
  Account& account_;
  messaging::StoreWriter& target_;
  CopySource from_;
  const LiveStore& source_ = from_.live;
  FolderPlan& plan_ = from_.plan;
  References references_;
  engine::ContentAllowance allowance_;
  CopyTools tools_;
  FolderCopier folders_;
  MessageCopier messages_;
  std::unordered_map<const Folder*, FolderAccount> folderCounts_;
  std::unordered_set<Nid> deletedWritten_;
  std::unordered_map<Nid, NodeFate> fates_;  ///< of messages that were not written whole
};

}  // namespace

void CopyStore(const engine::ProvenStore& source, messaging::StoreWriter& target, const CopyOptions& options,
               engine::RunContext& run, Account& account) {
  StoreCopy(source, target, options, run, account).Run();
}

}  // namespace velmora::complete
