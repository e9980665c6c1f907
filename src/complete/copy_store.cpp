#include "complete/copy_store.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>

#include "complete/folder_copier.h"
#include "complete/message_copier.h"
#include "engine/content_allowance.h"
#include "engine/node_versions.h"
#include "store/format/property_tags.h"
#include "store/ltp/multi_value.h"

namespace velmora::complete {
namespace {

using messaging::Folder;
using messaging::PropertyBag;

/// The hidden message in which a store keeps the names and colours of its categories.
constexpr text::TextView kCategoryListClass = u"IPM.Configuration.CategoryList";

/// The highest indexes stay free for the nodes that the new store makes itself.
constexpr std::uint32_t kLastKeptIndex = kMaxNidIndex - (1u << 20);

bool IsMessage(Nid nid) {
  return TypeOf(nid) == NidType::kNormalMessage || TypeOf(nid) == NidType::kAssocMessage;
}

bool KeepsId(Nid nid) { return IndexOf(nid) >= kFirstFreeNidIndex && IndexOf(nid) <= kLastKeptIndex; }

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
  StoreCopy(const engine::ScannedStore& found, messaging::StoreWriter& target, const CopyOptions& options,
            engine::RunContext& run, Account& account)
      : options_(options),
        run_(run),
        account_(account),
        target_(target),
        source_(found, account.evidence),
        names_(source_),
        pages_(source_, options.codePage),
        plan_(source_, pages_, options.hidden),
        references_(plan_.RecordKey(), target.RecordKey(), [this](Nid nid) { return TargetOf(nid); }),
        allowance_(engine::ContentAllowance(found.source.Size(), found.layout.formatId == FORMAT_UNICODE_4K,
                                            source_.Nodes().size() + account.evidence.treeBlocks)),
        tools_{source_, names_, pages_, references_, target, allowance_, account},
        folders_(tools_, plan_),
        messages_(tools_) {
    account_.mostLosses = allowance_.MostLosses();
  }

  void Run() {
    KeepIdsApart();
    folders_.CopyAll();
    std::uint64_t count = 0;
    std::uint64_t done = 0;
    for (const ndb::NodeEntry& node : source_.Nodes()) count += IsMessage(node.nid) ? 1 : 0;
    for (const ndb::NodeEntry& node : source_.Nodes()) {
      if (!IsMessage(node.nid)) continue;
      run_.control.PausePoint();
      run_.SayProgress(++done * 100 / count);
      CopyMessage(node);
    }
    CountNodes();
  }

 private:
  /// So that ids which the new store gives itself never meet one that an object has brought along.
  void KeepIdsApart() {
    for (const ndb::NodeEntry& node : source_.Nodes()) {
      const bool isFolder = TypeOf(node.nid) == NidType::kNormalFolder;
      if ((isFolder || IsMessage(node.nid)) && KeepsId(node.nid)) target_.Ndb().NoteNid(node.nid);
    }
  }

  /// Of folders that are made already, and of messages that will be.
  std::optional<Nid> TargetOf(Nid nid) {
    if (const SourceFolder* folder = plan_.Find(nid)) {
      return folder->target != nullptr ? std::optional(folder->target->nid) : std::nullopt;
    }
    if (!IsMessage(nid) || !KeepsId(nid) || !source_.FindNode(nid)) return std::nullopt;
    return nid;
  }

  bool IsWanted(const ndb::NodeEntry& node) {
    if (TypeOf(node.nid) != NidType::kAssocMessage || options_.hidden) return true;
    ndb::Faults faults;
    auto context = ltp::PropertyContext::Open(source_, node.trees, &faults);
    if (!context) return false;
    const auto wide = context->Text(tag::kMessageClass);
    const auto narrow = context->Binary(MakeTag(IdOf(tag::kMessageClass), PropType::kString8));
    if (!wide && !narrow) return false;
    const text::Text messageClass =
        wide ? *wide : pages_.OfStore().Decode({reinterpret_cast<const char*>(narrow->data()), narrow->size()});
    return text::EqualIgnoringCase(messageClass, kCategoryListClass);
  }

  Folder& FolderOf(const ndb::NodeEntry& node) {
    const SourceFolder* folder = plan_.Find(node.nidParent);
    return folder != nullptr && folder->target != nullptr ? *folder->target : folders_.LostAndFound();
  }

  void CopyMessage(const ndb::NodeEntry& node) {
    const bool isHidden = TypeOf(node.nid) == NidType::kAssocMessage;
    const SourceFolder* const of = plan_.Find(node.nidParent);
    // Hidden messages of a folder that stays behind are of use to nobody.
    if (isHidden && (of == nullptr || of->target == nullptr || !IsWanted(node))) {
      fates_[node.nid] = NodeFate::kHidden;
      return;
    }
    allowance_.BeginNode();
    Loss loss{.source = node.nid};
    std::optional<CopiedMessage> copied;
    try {
      copied = messages_.Copy(node.trees);
      const PropertyBag& properties = copied->message.properties;
      loss.messageClass = TextIn(properties, tag::kMessageClass);
      loss.subject = SubjectIn(properties);
      loss.sender = TextIn(properties, tag::kSenderName);
      if (loss.sender.empty()) loss.sender = TextIn(properties, tag::kSentRepresentingName);
      loss.date = DateIn(properties);
      loss.missing = std::move(copied->missing);
      Folder& folder = FolderOf(node);
      loss.folder = PathOf(folder);
      copied->message.isAssociated = isHidden;
      loss.target = target_.Save(std::move(copied->message), folder, KeepsId(node.nid) ? std::optional(node.nid) : std::nullopt);
    } catch (const std::exception&) {
      loss.missing.push_back({.kind = MissingPart::Kind::kObject, .cause = CauseOfLoss()});
    }
    if (loss.target && *loss.target != node.nid) account_.newIds.emplace(node.nid, *loss.target);
    const bool isWhole = loss.target && loss.missing.empty();
    if (!isHidden) {
      ItemCounts& counts = account_.items[loss.messageClass];
      ++counts.live;
      ++(isWhole ? counts.whole : loss.target ? counts.partial : counts.lost);
    }
    fates_[node.nid] = isWhole ? NodeFate::kWritten : loss.target ? NodeFate::kPartial : NodeFate::kUnreadable;
    if (!isWhole) account_.AddLoss(std::move(loss));
  }

  NodeFate FateOfLive(const ndb::NodeEntry& node) {
    if (const auto fate = fates_.find(node.nid); fate != fates_.end()) return fate->second;
    switch (TypeOf(node.nid)) {
      case NidType::kNormalFolder: {
        const SourceFolder* folder = plan_.Find(node.nid);
        return folder->target != nullptr ? NodeFate::kWritten : NodeFate::kInternal;
      }
      case NidType::kSearchFolder:
      case NidType::kSearchUpdateQueue:
      case NidType::kSearchCriteriaObject:
      case NidType::kSearchContentsTable:
        return NodeFate::kSearchFolder;
      default:
        return NodeFate::kInternal;
    }
  }

  /// Gives each node that some page names its one fate.
  void CountNodes() {
    const engine::NodeVersions found = engine::FindNodeVersions(source_.Found().source, source_.Format(), run_);
    account_.evidence.nodePages = found.pages;
    const auto count = [&](NodeFate fate) { ++account_.nodes[static_cast<std::size_t>(fate)]; };
    for (const ndb::NodeEntry& node : source_.Nodes()) count(FateOfLive(node));
    const ndb::NodeEntry* last = nullptr;
    for (const ndb::NodeEntry& entry : found.entries) {
      const auto live = source_.FindNode(entry.nid);
      if (live && live->trees == entry.trees && live->nidParent == entry.nidParent) continue;
      const bool isFirstOfDead = !live && (last == nullptr || last->nid != entry.nid);
      count(isFirstOfDead ? NodeFate::kDeleted : NodeFate::kOlderVersion);
      last = &entry;
    }
  }

  const CopyOptions& options_;
  engine::RunContext& run_;
  Account& account_;
  messaging::StoreWriter& target_;
  LiveStore source_;
  SourceNames names_;
  TextPages pages_;
  FolderPlan plan_;
  References references_;
  engine::ContentAllowance allowance_;
  CopyTools tools_;
  FolderCopier folders_;
  MessageCopier messages_;
  std::unordered_map<Nid, NodeFate> fates_;  ///< of messages
};

}  // namespace

void CopyStore(const engine::ScannedStore& source, messaging::StoreWriter& target, const CopyOptions& options,
               engine::RunContext& run, Account& account) {
  StoreCopy(source, target, options, run, account).Run();
}

}  // namespace velmora::complete
