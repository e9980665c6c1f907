#include "complete/name_evidence.h"

#include <algorithm>
#include <unordered_map>

#include "store/format/name_map.h"
#include "store/format/store_nodes.h"
#include "store/ltp/property_context.h"

namespace velmora::complete {
namespace {

using messaging::NameEntry;

/// A bucket has no other entries than those that it is the place for.
std::uint16_t BucketOf(const NameEntry& entry, std::uint32_t count) {
  return static_cast<std::uint16_t>(name_map::kFirstBucket + (entry.number ^ entry.setAndKind) % count);
}

}  // namespace

void NameEvidence::Add(const ndb::NodeTrees& map) {
  static_cast<void>(store_.TakeHurt());
  ndb::Faults faults(nid::kNameToIdMap);
  auto context = IfReadable([&] { return ltp::PropertyContext::Open(store_, map, &faults); });
  bool isHeapProven = store_.TakeHurt().empty() && faults.Count() == 0;
  if (!context) return;
  const auto read = [&](PropTag tag) {
    const std::size_t before = faults.Count();
    const auto value = context->Binary(tag);
    const bool isClean = store_.TakeHurt().empty() && faults.Count() == before;
    const PropertyRecord* record = context->Find(IdOf(tag));
    const bool isInHeap = record == nullptr || IsHid(record->dwValueHnid);
    if (!isClean && isInHeap) isHeapProven = false;
    return Stream{value.value_or(Bytes()), value.has_value() && isClean && (isHeapProven || !isInHeap)};
  };
  Version version{read(name_map::kSetStream), read(name_map::kEntryStream), read(name_map::kTextStream)};
  const auto count = static_cast<std::uint32_t>(context->Integer32(name_map::kBucketCount).value_or(0));
  version.areBucketsProven = true;
  for (const PropertyRecord& record : context->Records()) {
    if (record.wPropId < name_map::kFirstBucket || record.wPropType != PropType::kBinary || count == 0) continue;
    const Stream bucket = read(record.Tag());
    version.areBucketsProven = version.areBucketsProven && bucket.isProven;
    for (const NameEntry& entry : messaging::ReadNameEntries(bucket.bytes)) {
      if (BucketOf(entry, count) == record.wPropId) version.buckets.insert(entry);
    }
  }
  versions_.push_back(std::move(version));
}

std::optional<messaging::Uid> NameEvidence::SetOf(const Version& version, std::uint16_t number) const {
  const std::optional<messaging::Uid> own = messaging::SetOfNumber(version.sets.bytes, number);
  if (number < messaging::kFirstSetNumber || version.sets.isProven) return own;
  for (const Version& other : versions_) {
    if (!other.sets.isProven) continue;
    if (const auto proven = messaging::SetOfNumber(other.sets.bytes, number)) return proven;
  }
  if (!own || !messaging::IsPublishedSet(*own)) return std::nullopt;
  // One that stands there twice is another one, of which bits are wrong.
  std::size_t count = 0;
  for (std::size_t at = 0; at + own->size() <= version.sets.bytes.size(); at += own->size()) {
    count += std::ranges::equal(*own, std::span(version.sets.bytes).subspan(at, own->size())) ? 1 : 0;
  }
  return count == 1 ? own : std::nullopt;
}

std::vector<NameEvidence::Told> NameEvidence::ReadEntries(const Version& version) {
  std::vector<Told> told;
  for (const NameEntry& entry : messaging::ReadNameEntries(version.entries.bytes)) {
    told.push_back({entry, entry});
    if (!entry.IsText()) continue;
    told.back().text = messaging::NameTextAt(version.texts.bytes, entry.number);
    told.back().inBucket.number = messaging::HashOfName(told.back().text);
  }
  return told;
}

bool NameEvidence::AgreesWithBuckets(const Version& version, const std::vector<Told>& told, bool texts) {
  std::set<NameEntry> inBuckets;
  for (const Told& name : told) inBuckets.insert(name.inBucket);
  std::size_t all = 0;
  std::size_t agreeing = 0;
  for (const NameEntry& entry : version.buckets) {
    if (entry.IsText() != texts) continue;
    ++all;
    agreeing += inBuckets.contains(entry) ? 1 : 0;
  }
  return agreeing * 2 > all;
}

NameEvidence::Names NameEvidence::NamesOf(const Version& version) const {
  Names names;
  const auto tell = [&](const NameEntry& entry, text::Text text) {
    const auto id = static_cast<std::uint16_t>(name_map::kFirstNamedId + entry.index);
    const std::optional<messaging::Uid> set = SetOf(version, entry.SetNumber());
    if (!set || id < name_map::kFirstNamedId || entry.IsText() == text.empty()) return;
    names.try_emplace(id, messaging::AnyPropertyName{*set, entry.IsText() ? 0 : entry.number, std::move(text)});
  };
  std::unordered_map<std::uint32_t, std::set<text::Text>> textsOf;  // by their hashes
  for (text::Text& text : messaging::AllNameTexts(version.texts.bytes)) {
    const std::uint32_t hash = messaging::HashOfName(text);
    textsOf[hash].insert(std::move(text));
  }
  const std::vector<Told> told = ReadEntries(version);
  const bool areNumbersProven = version.entries.isProven && AgreesWithBuckets(version, told, false);
  const bool areTextsProven =
      version.entries.isProven && version.texts.isProven && AgreesWithBuckets(version, told, true);
  for (const Told& name : told) {
    const bool isProven = name.entry.IsText() ? areTextsProven : areNumbersProven;
    if (name.entry.IsText()) textsOf[name.inBucket.number].insert(name.text);
    if (isProven || version.buckets.contains(name.inBucket)) tell(name.entry, name.text);
  }
  for (const NameEntry& entry : version.buckets) {
    if (!version.areBucketsProven) break;
    const auto texts = textsOf.find(entry.number);
    if (!entry.IsText()) {
      tell(entry, {});
    } else if (texts != textsOf.end() && texts->second.size() == 1) {
      tell(entry, *texts->second.begin());
    }
  }
  return names;
}

NameEvidence::Names NameEvidence::Settle() const {
  Names names;
  for (const Version& version : versions_) {
    Names more = NamesOf(version);
    const bool contradicts = std::ranges::any_of(more, [&](const auto& name) {
      const auto known = names.find(name.first);
      return known != names.end() && known->second != name.second;
    });
    if (!contradicts) names.merge(std::move(more));
  }
  return names;
}

}  // namespace velmora::complete
