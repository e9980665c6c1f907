#include "complete/text_pages.h"

#include <algorithm>
#include <string>

namespace velmora::complete {
namespace {

constexpr PropTag kMessageCodepage = 0x3FFD0003;
constexpr PropTag kMessageLocaleId = 0x3FF10003;
constexpr PropTag kInternetCodepage = 0x3FDE0003;

/// Messages that are asked for their page, all over the store; more do not change the answer.
constexpr std::size_t kMostAsked = 1000;

constexpr int kWesternEurope = 1252;

struct NumberPair {
  int from;
  int ansi;
};

/// The page in which Windows keeps texts of a language: by the low 10 bits of its id.
constexpr NumberPair kPageOfLanguage[] = {
    {0x01, 1256}, {0x02, 1251}, {0x05, 1250}, {0x08, 1253}, {0x0D, 1255}, {0x0E, 1250},           {0x11, 932},
    {0x12, 949},  {0x15, 1250}, {0x18, 1250}, {0x19, 1251}, {0x1A, 1250}, {0x1B, 1250},           {0x1C, 1250},
    {0x1E, 874},  {0x1F, 1254}, {0x20, 1256}, {0x22, 1251}, {0x23, 1251}, {0x24, 1250},           {0x25, 1257},
    {0x26, 1257}, {0x27, 1257}, {0x29, 1256}, {0x2A, 1258}, {0x2C, 1254}, {0x2D, kWesternEurope}, {0x2F, 1251},
};
constexpr int kChinese = 0x04;
constexpr int kTraditionalChinese[] = {0x0404, 0x0C04, 0x1404};

/// The page of the system on which a message of an internet code page is read.
constexpr NumberPair kPageOfInternet[] = {
    {874, 874},    {932, 932},    {936, 936},    {949, 949},    {950, 950},    {20866, 1251},
    {21866, 1251}, {28592, 1250}, {28594, 1257}, {28595, 1251}, {28596, 1256}, {28597, 1253},
    {28598, 1255}, {28599, 1254}, {38598, 1255}, {50220, 932},  {50221, 932},  {50222, 932},
    {50225, 949},  {51932, 932},  {51949, 949},  {52936, 936},
};

std::optional<int> Look(std::span<const NumberPair> table, int from) {
  const auto row = std::ranges::find(table, from, &NumberPair::from);
  return row != table.end() ? std::optional(row->ansi) : std::nullopt;
}

int PageOfLanguage(int locale) {
  if ((locale & 0x3FF) == kChinese) return std::ranges::count(kTraditionalChinese, locale & 0xFFFF) != 0 ? 950 : 936;
  return Look(kPageOfLanguage, locale & 0x3FF).value_or(kWesternEurope);
}

/// What a message tells of its texts; nothing where it tells nothing.
std::optional<int> NumberOf(ltp::PropertyContext& message) {
  const int page = message.Integer32(kMessageCodepage).value_or(0);
  if (page > 0 && page <= 0xFFFF) return page;
  const int locale = message.Integer32(kMessageLocaleId).value_or(0);
  if ((locale & 0xFFFF) != 0) return PageOfLanguage(locale);
  const int internet = message.Integer32(kInternetCodepage).value_or(0);
  if (internet >= 1250 && internet <= 1258) return internet;
  return Look(kPageOfInternet, internet);
}

}  // namespace

TextPages::TextPages(const LiveStore& source, const text::CodePage& last) : last_(last), ofStore_(&last) {
  if (source.Format().formatId != FORMAT_ANSI) return;
  const auto messages =
      static_cast<std::size_t>(std::ranges::count_if(source.Nodes(), IsMessage, &ndb::NodeEntry::nid));
  const std::size_t step = (messages + kMostAsked - 1) / kMostAsked;
  std::map<int, std::size_t> told;
  std::size_t number = 0;
  for (const ndb::NodeEntry& node : source.Nodes()) {
    if (!IsMessage(node.nid) || number++ % step != 0) continue;
    ndb::Faults faults(node.nid);
    auto message = IfReadable([&] { return ltp::PropertyContext::Open(source, node.trees, &faults); });
    const auto page = message ? NumberOf(*message) : std::nullopt;
    if (!page || Find(*page) == nullptr) continue;
    ++told[*page];
  }
  const auto most = std::ranges::max_element(told, {}, [](const auto& entry) { return entry.second; });
  if (most != told.end()) ofStore_ = Find(most->first);
}

const text::CodePage* TextPages::Find(int windowsNumber) const {
  const auto [entry, isNew] = pages_.try_emplace(windowsNumber);
  if (isNew) entry->second = text::CodePage::Find(std::to_string(windowsNumber));
  return entry->second ? &*entry->second : nullptr;
}

const text::CodePage& TextPages::Of(ltp::PropertyContext& message) const {
  const auto number = NumberOf(message);
  const text::CodePage* page = number ? Find(*number) : nullptr;
  return page != nullptr ? *page : *ofStore_;
}

std::optional<text::Text> ReadText(ltp::PropertyContext& from, PropTag tag, const text::CodePage& page) {
  if (auto text = from.Text(tag)) return text;
  const auto bytes = from.Binary(MakeTag(IdOf(tag), PropType::kString8));
  if (!bytes) return std::nullopt;
  return page.Decode({reinterpret_cast<const char*>(bytes->data()), bytes->size()});
}

}  // namespace velmora::complete
