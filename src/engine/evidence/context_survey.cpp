#include "engine/evidence/context_survey.h"

#include <ranges>

#include "engine/evidence/name_maps.h"
#include "store/format/little_endian.h"
#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"

namespace velmora::engine {
namespace {

constexpr std::size_t kEntryIdSize = 24;
constexpr std::size_t kOffNidInEntryId = 20;

/// The folder that an entry id of the store names.
Nid FolderOf(ltp::PropertyContext& context, PropTag tag) {
  const auto value = SmallValue(context, IdOf(tag));
  if (!value || value->size() != kEntryIdSize) return kNoNid;
  const Nid nid = LoadNid(*value, kOffNidInEntryId);
  return TypeOf(nid) == NidType::kNormalFolder ? nid : kNoNid;
}

bool IsStore(const ltp::PropertyContext& context) {
  return context.Find(IdOf(tag::kIpmSubTreeEntryId)) != nullptr || context.Find(IdOf(tag::kPstPassword)) != nullptr;
}

/// Gives each listed folder the newest context that is like its row. Of folders that are alike the younger has the
/// newer.
std::unordered_map<Nid, Bid> ContextsOf(const EvidenceView& view, std::span<const ListedFolder> folders,
                                        std::unordered_map<std::uint32_t, std::vector<Bid>>& like) {
  std::unordered_map<Nid, Bid> contextOf;
  for (const ListedFolder& folder : folders | std::views::reverse) {
    std::vector<Bid>& contexts = like[folder.fingerprint];
    if (view.InUse(folder.nid) != nullptr || contexts.empty()) continue;
    contextOf[folder.nid] = contexts.back();
    contexts.pop_back();
  }
  return contextOf;
}

/// Folders of which the node that stands in is an older version than the newest context that is like the row, which is
/// like that of no other folder.
std::unordered_map<Nid, Bid> NewerContextsOf(const EvidenceView& view, std::span<const ListedFolder> folders,
                                             const std::unordered_map<std::uint32_t, std::vector<Bid>>& like) {
  std::unordered_map<std::uint32_t, std::size_t> alike;
  for (const ListedFolder& folder : folders) ++alike[folder.fingerprint];
  std::unordered_map<Nid, Bid> contextOf;
  for (const ListedFolder& folder : folders) {
    const NodeClaim* claim = view.InUse(folder.nid);
    const std::vector<Bid>& contexts = like.at(folder.fingerprint);
    if (claim == nullptr || claim->standing != Standing::kDoubtful || contexts.empty()) continue;
    if (alike[folder.fingerprint] == 1 && contexts.back() > claim->node.trees.bidData) {
      contextOf[folder.nid] = contexts.back();
    }
  }
  return contextOf;
}

std::uint32_t FingerprintOf(ltp::PropertyContext& folder) {
  const auto bytes = [&](PropTag tag) { return SmallValue(folder, IdOf(tag)).value_or(std::vector<std::byte>{}); };
  const auto number = [&](PropTag tag) { return static_cast<std::uint32_t>(folder.Integer32(tag).value_or(0)); };
  return FolderFingerprint(bytes(tag::kDisplayName), bytes(tag::kContainerClass), number(tag::kContentCount),
                           number(tag::kContentUnreadCount), folder.Boolean(tag::kSubfolders).value_or(false));
}

}  // namespace

ContextSurvey SurveyContexts(const EvidenceView& view, std::span<const Bid> bids, const SubnodeLists& lists,
                             std::span<const ListedFolder> folders, RowMatching& rows, RunContext& run) {
  ContextSurvey survey;
  std::unordered_map<std::uint32_t, std::vector<Bid>> like;  // the listed folders, by their fingerprints
  for (const ListedFolder& folder : folders) like[folder.fingerprint];
  const NodeClaim* const store = view.InUse(nid::kMessageStore);
  for (const Bid bid : bids) {
    run.control.PausePoint();
    ndb::Faults faults;
    auto context = IfReadable([&] { return ltp::PropertyContext::Open(view.Blocks(), {bid, kNoBid}, &faults); });
    if (!context) continue;
    const bool isOld = view.IsFreed(bid) && !view.IsDataInUse(bid);
    if (IsMessage(*context)) {
      if (!isOld) rows.Offer(static_cast<std::uint32_t>(survey.messages.facts.size()), IsHidden(*context), *context);
      AddFacts(bid, *context, lists, survey.messages);
    } else if (isOld) {
      continue;
    } else if (IsStore(*context)) {
      if (store != nullptr && Canonical(store->node.trees.bidData) != bid) continue;
      survey.store = bid;
      survey.folders = {FolderOf(*context, tag::kIpmSubTreeEntryId), FolderOf(*context, tag::kIpmWastebasketEntryId),
                        FolderOf(*context, tag::kFinderEntryId)};
    } else if (IsNameMap(*context)) {
      survey.nameMap = bid;
    } else if (context->Find(IdOf(tag::kContentCount)) != nullptr && !view.IsDataInUse(bid)) {
      const auto folder = like.find(FingerprintOf(*context));
      if (folder != like.end()) folder->second.push_back(bid);
    }
  }
  survey.newerContextOf = NewerContextsOf(view, folders, like);
  survey.contextOf = ContextsOf(view, folders, like);
  return survey;
}

std::vector<Nid> KeysOfContext(const EvidenceView& view, Bid bid) {
  std::vector<Nid> keys;
  ndb::Faults faults;
  if (const auto context = IfReadable([&] {
        return ltp::PropertyContext::Open(view.Blocks(), {bid, kNoBid}, &faults);
      }))
    AppendKeys(*context, keys);
  return keys;
}

}  // namespace velmora::engine
