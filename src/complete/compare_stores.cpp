// Reads a copy back and holds it beside its source, object by object.
#include <algorithm>
#include <set>
#include <unordered_map>

#include "complete/copy_source.h"
#include "complete/copy_store.h"
#include "complete/left_out.h"
#include "complete/limits.h"
#include "complete/message_parts.h"
#include "complete/references.h"
#include "complete/value_form.h"
#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"
#include "store/ltp/table_context.h"
#include "store/ndb/data_tree_reader.h"
#include "store/ndb/store_reader.h"

namespace velmora::complete {
namespace {

/// Differences that are listed; more of them tell no more.
constexpr std::size_t kMostListed = 1000;

constexpr std::size_t kComparedAtOnce = std::size_t{64} << 10;

using Subnodes = std::vector<ndb::SubnodeEntry>;

/// What an object of the new store has though the source may not: sizes and counts, and what every one must have.
constexpr std::uint16_t kMade[] = {
    IdOf(tag::kMessageClass),        IdOf(tag::kMessageFlags),      IdOf(tag::kMessageSize),
    IdOf(tag::kAttachSize),          IdOf(tag::kDisplayName),       IdOf(tag::kCreationTime),
    IdOf(tag::kSearchKey),           IdOf(tag::kContentCount),      IdOf(tag::kContentUnreadCount),
    IdOf(tag::kSubfolders),          IdOf(tag::kPstHiddenCount),    IdOf(tag::kPstHiddenUnread),
    IdOf(tag::kAttachMethod),        IdOf(tag::kRenderingPosition), IdOf(tag::kInternetCodepage),
    IdOf(tag::kLastModificationTime)};

/// A message, folder or attachment in both stores.
struct Pair {
  Nid source{};
  Nid target{};
  const Loss* loss = nullptr;  ///< what of it is known to be missing; null: nothing
};

std::string NameOf(PropTag tag) { return platform::TextOf({ObjectKind::kProperty, tag}); }

class StoreComparison {
 public:
  StoreComparison(const engine::ProvenStore& found, const platform::ByteSource& target, const CopyOptions& options,
                  engine::RunContext& run, Account& account)
      : run_(run),
        account_(account),
        from_(found, options.codePage, options.hidden),
        target_(ndb::StoreReader::Open(target)),
        references_(plan_.RecordKey(), TargetKey(), [this](Nid nid) { return ReferredTo(nid); }) {
    for (const Loss& loss : account_.losses) losses_.emplace(loss.source, &loss);
    SourceNames(*target_).ForEach(
        [this](std::uint16_t id, const messaging::AnyPropertyName& name) { targetIds_.emplace(name, id); });
  }

  void Run() {
    if (target_->Damage().Count() != 0) Note({}, "the new store's trees are damaged");
    std::uint64_t done = 0;
    for (const ndb::NodeEntry& node : source_.Nodes()) {
      run_.control.PausePoint();
      run_.SayProgress(++done * 100 / source_.Nodes().size());
      if (TypeOf(node.nid) == NidType::kNormalFolder) CompareFolder(node);
      if (IsMessage(node.nid)) CompareTopMessage(node);
    }
    for (const auto& [nid, recovered] : account_.recovered) CompareRecovered(nid, recovered);
    CompareCounts();
    account_.isVerified = true;
  }

 private:
  void CompareRecovered(Nid nid, const Account::Recovered& recovered) {
    const Pair pair{recovered.node.nid, nid, nullptr};
    const auto written = target_->FindNode(nid);
    if (!written) return Note(pair, "the deleted message is not in the new store");
    ++account_.objectsCompared;
    ++countIn_[written->nidParent];
    if (recovered.isWhole) CompareMessages(pair, recovered.node.trees, written->trees, 0);
  }

  void Note(const Pair& of, std::string what) {
    if (account_.differences.size() < kMostListed) {
      account_.differences.push_back({of.source, of.target, std::move(what)});
    } else {
      ++account_.differencesNotListed;
    }
  }

  messaging::Uid TargetKey() const {
    messaging::Uid key{};
    const auto node = target_->FindNode(nid::kMessageStore);
    auto store = node ? IfReadable([&] { return ltp::PropertyContext::Open(*target_, node->trees); }) : std::nullopt;
    const auto bytes = store ? store->Binary(tag::kRecordKey) : std::nullopt;
    if (bytes && bytes->size() == key.size()) std::ranges::copy(*bytes, key.begin());
    return key;
  }

  /// The id that a copied object has in the new store.
  std::optional<Nid> TargetOf(Nid nid) const {
    const SourceFolder* folder = plan_.Find(nid);
    if (folder != nullptr ? !folder->isCopied : !source_.FindNode(nid)) return std::nullopt;
    // What could not be made may have the id of something that the new store has for itself.
    if (!KeepsId(nid) && !account_.newIds.contains(nid)) return std::nullopt;
    const Nid target = account_.NewIdOf(nid);
    return target_->FindNode(target) ? std::optional(target) : std::nullopt;
  }

  /// What references lead to: what was to come across, even if it was lost.
  std::optional<Nid> ReferredTo(Nid nid) {
    return from_.Takes(nid) ? std::optional(account_.NewIdOf(nid)) : std::nullopt;
  }

  const Loss* LossOf(Nid nid) const {
    const auto found = losses_.find(nid);
    return found != losses_.end() ? found->second : nullptr;
  }

  void CompareFolder(const ndb::NodeEntry& node) {
    const SourceFolder* folder = plan_.Find(node.nid);
    if (!folder->isCopied || folder == plan_.Top()) return;
    const Loss* loss = LossOf(node.nid);
    const auto target = TargetOf(node.nid);
    if (!target) {
      if (loss == nullptr) Note({node.nid}, "the folder is not in the new store");
      return;
    }
    ++account_.objectsCompared;
    const Pair pair{node.nid, *target, loss};
    const SourceFolder* parent = plan_.ParentOf(*folder);
    const auto written = target_->FindNode(*target);
    if (parent != nullptr && TargetOf(parent->nid) != written->nidParent)
      Note(pair, "the folder stands in another one");
    try {
      auto from = ltp::PropertyContext::Open(source_, node.trees, &faults_);
      auto to = ltp::PropertyContext::Open(*target_, written->trees);
      CompareProperties(pair, from, to, kFolder, from_.pages.OfStore());
    } catch (const FailureError& failure) {
      if (loss == nullptr) Note(pair, TextOf(failure.Cause()));
    }
  }

  void CompareTopMessage(const ndb::NodeEntry& node) {
    const Loss* loss = LossOf(node.nid);
    const auto target = TargetOf(node.nid);
    const auto written = target ? target_->FindNode(*target) : std::nullopt;
    if (!written || TypeOf(*target) != TypeOf(node.nid)) {
      if (loss == nullptr && account_.lossesNotListed == 0 && from_.Takes(node)) {
        Note({node.nid}, "the message is not in the new store");
      }
      return;
    }
    const Pair pair{node.nid, *target, loss};
    ++account_.objectsCompared;
    ++countIn_[written->nidParent];
    const SourceFolder* folder = plan_.Find(node.nidParent);
    const auto folderId = folder != nullptr && folder->isCopied ? TargetOf(folder->nid) : std::nullopt;
    const bool isFolderThere = LossOf(node.nidParent) == nullptr || LossOf(node.nidParent)->target.has_value();
    if (folderId && isFolderThere && *folderId != written->nidParent)
      Note(pair, "the message stands in another folder");
    CompareMessages(pair, node.trees, written->trees, 0);
  }

  void CompareMessages(const Pair& pair, const ndb::NodeTrees& source, const ndb::NodeTrees& target, int depth) {
    try {
      auto from = ltp::PropertyContext::Open(source_, source, &faults_);
      auto to = ltp::PropertyContext::Open(*target_, target);
      const text::CodePage& page = from_.pages.Of(from);
      CompareProperties(pair, from, to, kMessage, page);
      const Subnodes fromBelow = from.Subnodes();
      const Subnodes toBelow = to.Subnodes();
      const MessageParts parts(fromBelow);
      const MessageParts written(toBelow);
      CompareRecipients(pair, parts.recipientTable, written.recipientTable, page);
      CompareAttachments(pair, parts, written, page, depth);
    } catch (const FailureError& failure) {
      if (pair.loss == nullptr) Note(pair, TextOf(failure.Cause()));
    }
  }

  /// Parts of a loss that are not listed may be any.
  bool IsMissing(const Pair& pair, PropTag tag) const {
    return pair.loss != nullptr &&
           (pair.loss->missingNotListed != 0 || std::ranges::any_of(pair.loss->missing, [&](const MissingPart& part) {
              return part.tag == tag || part.tag == 0;
            }));
  }

  bool Lacks(const Pair& pair, MissingPart::Kind kind) const {
    return pair.loss != nullptr &&
           (pair.loss->missingNotListed != 0 || std::ranges::count(pair.loss->missing, kind, &MissingPart::kind) != 0);
  }

  /// The tag that a property of the source has in the new store; nothing where that has no such name.
  std::optional<PropTag> TargetTag(PropTag tag) const {
    tag = TargetForm(tag);
    if (IdOf(tag) < name_map::kFirstNamedId) return tag;
    const messaging::AnyPropertyName* name = from_.names.Of(IdOf(tag));
    const auto id = name != nullptr ? targetIds_.find(*name) : targetIds_.end();
    if (id == targetIds_.end()) return std::nullopt;
    return MakeTag(id->second, TypeOf(tag));
  }

  void CompareProperties(const Pair& pair, ltp::PropertyContext& from, ltp::PropertyContext& to, Owner owner,
                         const text::CodePage& page) {
    std::set<std::uint16_t> expectedIds(std::begin(kMade), std::end(kMade));
    for (const PropertyRecord& record : from.Records()) {
      const PropTag tag = record.Tag();
      if (IsLeftOut(IdOf(tag), owner) || tag == tag::kAttachDataObject) continue;
      if (const auto targetTag = TargetTag(tag)) expectedIds.insert(IdOf(*targetTag));
      if (IsMissing(pair, tag)) continue;
      if (owner == kFolder && IdOf(tag) == IdOf(tag::kDisplayName)) {
        CompareName(pair, from, to, tag, page);
        continue;
      }
      const std::string name = NameOf(tag);
      const auto targetTag = TargetTag(tag);
      if (!targetTag || to.Find(IdOf(*targetTag)) == nullptr || to.Find(IdOf(*targetTag))->Tag() != *targetTag) {
        if (!LeadsNowhere(from, tag)) Note(pair, name + " is not there");
        continue;
      }
      const std::uint64_t size = from.SizeOf(tag).value_or(0);
      if (size > kComparedAtOnce && IsCopiedAsItIs(tag, size)) {
        CompareTrees(pair, from.TreeOf(tag)->bid, to.TreeOf(*targetTag)->bid, name);
        continue;
      }
      auto expected = *from.Read(tag, kMostConverted);
      const auto written = *to.Read(*targetTag, 2 * kMostConverted);
      BringIntoForm(tag, expected, page, references_, undefinedBytes_);
      const bool isFlags = tag == tag::kMessageFlags && expected.size() == 4 && written.size() == 4;
      if (isFlags) expected[0] = (expected[0] & ~kComputedFlags) | (written[0] & kComputedFlags);
      if (expected != written) Note(pair, name + " has another value");
    }
    for (const PropertyRecord& record : to.Records()) {
      if (record.Tag() == tag::kAttachDataObject) continue;  // see CompareObjects
      if (!expectedIds.contains(record.wPropId)) Note(pair, NameOf(record.Tag()) + " is not the source's");
    }
  }

  /// A folder may have got a number behind its name, or a name where it had none.
  void CompareName(const Pair& pair, ltp::PropertyContext& from, ltp::PropertyContext& to, PropTag tag,
                   const text::CodePage& page) {
    auto bytes = *from.Read(tag, kMostConverted);
    BringIntoForm(tag, bytes, page, references_, undefinedBytes_);
    const auto written = to.Binary(tag::kDisplayName).value_or(Bytes());
    if (written.size() < bytes.size() || !std::ranges::equal(bytes, std::span(written).first(bytes.size()))) {
      Note(pair, "the folder has another name");
    }
  }

  bool LeadsNowhere(ltp::PropertyContext& from, PropTag tag) {
    if (TypeOf(tag) != PropType::kBinary) return false;
    auto value = from.Binary(tag).value_or(Bytes());
    return references_.IsEntryId(value) && references_.Rewrite(value) != 0;
  }

  void CompareTrees(const Pair& pair, Bid source, Bid target, const std::string& what) {
    auto from = ndb::DataTreeReader::Open(source_, source, &faults_);
    auto to = ndb::DataTreeReader::Open(*target_, target);
    if (from.Size() != to.Size()) return Note(pair, what + " has another length");
    Bytes a(kComparedAtOnce);
    Bytes b(kComparedAtOnce);
    for (std::uint64_t offset = 0; offset < from.Size(); offset += kComparedAtOnce) {
      const std::size_t read = from.ReadAt(offset, a);
      if (to.ReadAt(offset, b) != read || !std::equal(a.begin(), a.begin() + read, b.begin())) {
        return Note(pair, what + " has other bytes from " + std::to_string(offset) + " on");
      }
    }
  }

  void CompareRecipients(const Pair& pair, const ndb::SubnodeEntry* source, const ndb::SubnodeEntry* target,
                         const text::CodePage& page) {
    if (source == nullptr || Lacks(pair, MissingPart::Kind::kRecipients)) return;
    auto rows = ltp::TableContext::Open(source_, source->trees, &faults_);
    if (rows.RowCount() == 0) return;
    if (target == nullptr) return Note(pair, "the recipients are not there");
    auto written = ltp::TableContext::Open(*target_, target->trees);
    if (written.RowCount() != rows.RowCount()) return Note(pair, "there is another number of recipients");
    for (std::size_t row = 0; row < rows.RowCount(); ++row) {
      for (const ltp::Column& column : rows.Columns()) {
        if (column.tag == tag::kLtpRowId || column.tag == tag::kLtpRowVer) continue;
        if (IsLeftOut(IdOf(column.tag), kRecipient)) continue;
        auto expected = rows.Cell(row, column.tag);
        if (!expected) continue;
        BringIntoForm(column.tag, *expected, page, references_, undefinedBytes_);
        const auto targetTag = TargetTag(column.tag);
        const auto cell = targetTag ? written.Cell(row, *targetTag) : std::nullopt;
        if (cell != expected) {
          Note(pair, "recipient " + std::to_string(row + 1) + ": " + NameOf(column.tag) + " has another value");
        }
      }
    }
  }

  void CompareAttachments(const Pair& pair, const MessageParts& from, const MessageParts& to,
                          const text::CodePage& page, int depth) {
    if (Lacks(pair, MissingPart::Kind::kAttachment)) return;
    if (from.attachments.size() != to.attachments.size()) {
      return Note(pair, "there is another number of attachments");
    }
    for (std::size_t i = 0; i < from.attachments.size(); ++i) {
      auto context = ltp::PropertyContext::Open(source_, from.attachments[i]->trees, &faults_);
      auto written = ltp::PropertyContext::Open(*target_, to.attachments[i]->trees);
      CompareProperties(pair, context, written, kAttachment, page);
      CompareObjects(pair, context, written, depth);
    }
  }

  void CompareObjects(const Pair& pair, ltp::PropertyContext& from, ltp::PropertyContext& to, int depth) {
    const auto source = ObjectOf(from);
    const auto target = ObjectOf(to);
    if (source && !target) return Note(pair, "an attachment's object is not there");
    if (target && !source) return Note(pair, "an attachment's object is not the source's");
    if (!source || depth == kMostDepth) return;
    if (TypeOf(source->nid) == NidType::kNormalMessage) {
      CompareMessages(pair, source->trees, target->trees, depth + 1);
    } else {
      CompareNodes(pair, source->trees, target->trees, depth);
    }
  }

  void CompareNodes(const Pair& pair, const ndb::NodeTrees& source, const ndb::NodeTrees& target, int depth) {
    CompareTrees(pair, source.bidData, target.bidData, "an attachment's object");
    const Subnodes from = ndb::ListSubnodes(source_, source.bidSub, &faults_);
    const Subnodes to = ndb::ListSubnodes(*target_, target.bidSub);
    if (from.size() != to.size()) return Note(pair, "an attachment's object has another number of parts");
    for (std::size_t i = 0; i < from.size() && depth < kMostDepth; ++i) {
      CompareNodes(pair, from[i].trees, to[i].trees, depth + 1);
    }
  }

  /// Each folder tells how many messages it holds, and holds no others than those that came from the source.
  void CompareCounts() {
    std::unordered_map<Nid, std::uint64_t> held;
    for (const ndb::NodeEntry& node : target_->Nodes()) {
      if (IsMessage(node.nid)) ++held[node.nidParent];
    }
    for (const auto& [folder, count] : held) {
      if (countIn_[folder] != count) Note({{}, folder}, "the folder holds messages that are not the source's");
      const auto node = target_->FindNode(folder);
      auto context =
          node ? IfReadable([&] { return ltp::PropertyContext::Open(*target_, node->trees); }) : std::nullopt;
      if (!context) {
        Note({{}, folder}, "the folder cannot be read");
        continue;
      }
      const auto told = [&](PropTag tag) { return std::uint64_t(context->Integer32(tag).value_or(0)); };
      if (told(tag::kContentCount) + told(tag::kPstHiddenCount) != count) {
        Note({{}, folder}, "the folder tells another number of messages");
      }
    }
  }

  /// Has attachments, is hidden: what the writer knows better.
  static constexpr std::byte kComputedFlags{messaging::kMessageHasAttachments | messaging::kMessageAssociated};

  engine::RunContext& run_;
  Account& account_;
  ndb::Faults faults_;
  CopySource from_;
  const LiveStore& source_ = from_.live;
  FolderPlan& plan_ = from_.plan;
  std::unique_ptr<ndb::StoreReader> target_;
  References references_;
  std::map<messaging::AnyPropertyName, std::uint16_t> targetIds_;
  std::unordered_map<Nid, const Loss*> losses_;
  std::unordered_map<Nid, std::uint64_t> countIn_;  ///< messages of a folder of the new store that were compared
  std::uint64_t undefinedBytes_ = 0;
};

}  // namespace

void CompareStores(const engine::ProvenStore& source, const platform::ByteSource& target, const CopyOptions& options,
                   engine::RunContext& run, Account& account) {
  StoreComparison(source, target, options, run, account).Run();
}

}  // namespace velmora::complete
