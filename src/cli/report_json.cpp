#include "cli/report_json.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>
#include <utility>

#include "cli/result_text.h"

namespace velmora::cli {
namespace {

using Json = nlohmann::ordered_json;

const char* NameOf(engine::StoreKind kind) {
  switch (kind) {
    case engine::StoreKind::kPst:
      return "pst";
    case engine::StoreKind::kOst:
      return "ost";
    case engine::StoreKind::kPab:
      return "pab";
    case engine::StoreKind::kNone:
      break;
  }
  return "";
}

Json NameOf(const std::optional<FormatId>& format) {
  if (!format) return nullptr;
  switch (*format) {
    case FORMAT_ANSI:
      return "ansi";
    case FORMAT_UNICODE:
      return "unicode";
    case FORMAT_UNICODE_4K:
      return "unicode4k";
  }
  return nullptr;
}

struct SkipRow {
  recovery::SkipReason reason;
  const char* name;
};

constexpr SkipRow kSkipReasons[] = {
    {recovery::SkipReason::kNoBlock, "no block"},   {recovery::SkipReason::kBadHeap, "bad heap"},
    {recovery::SkipReason::kNoClass, "no class"},   {recovery::SkipReason::kRefusedClass, "refused class"},
    {recovery::SkipReason::kNoFolder, "no folder"},
};

Json ItemsOf(const recovery::RecoveryReport& report) {
  Json items = Json::object();
  for (const auto& [messageClass, count] : report.items) {
    Json& sum = items[text::ToUtf8(messageClass)];
    sum = (sum.is_null() ? 0 : sum.get<std::uint64_t>()) + count;
  }
  return items;
}

Json SkippedOf(const recovery::RecoveryReport& report) {
  Json skipped = Json::object();
  for (const SkipRow& row : kSkipReasons) {
    const auto found = report.skipped.find(row.reason);
    skipped[row.name] = found == report.skipped.end() ? 0 : found->second;
  }
  return skipped;
}

Json FolderOf(const engine::FolderRecord& folder) {
  return {{"nid", folder.nid},
          {"parentNid", folder.parentNid},
          {"name", text::ToUtf8(folder.name)},
          {"containerClass", text::ToUtf8(folder.containerClass)}};
}

Json LostOf(const recovery::LostObject& object) {
  return {{"kind", std::ranges::find(kLossNames, object.kind, &LossName::kind)->name},
          {"nid", object.nid},
          {"bidData", object.bidData},
          {"class", text::ToUtf8(object.messageClass)},
          {"reason", text::ToUtf8(object.reason)}};
}

/// Puts the object together field by field and the long lists element by element, a line each: as one tree of
/// values they would take many times the memory of the text.
class ReportText {
 public:
  void Add(std::string_view name, const Json& value) { Begin(name).append(value.dump()); }

  template <class Elements, class Form>
  void AddList(std::string_view name, const Elements& elements, Form form, const std::optional<Json>& last = {}) {
    Begin(name).push_back('[');
    const char* separator = "\n    ";
    const auto add = [&](const Json& element) {
      text_.append(separator).append(element.dump());
      separator = ",\n    ";
    };
    for (const auto& element : elements) add(form(element));
    if (last) add(*last);
    text_.push_back(']');
  }

  std::string Finish() { return std::move(text_.append("\n}\n")); }

 private:
  std::string& Begin(std::string_view name) {
    return text_.append(text_.empty() ? "{\n  \"" : ",\n  \"").append(name).append("\": ");
  }

  std::string text_;
};

}  // namespace

std::string ReportJson(const ReportFrame& frame, const conversion::RunReport& report) {
  const recovery::RecoveryReport& recovery = report.recovery;
  std::optional<Json> beyond;
  if (recovery.lostNotListed != 0) {
    beyond = Json{{"kind", "more"},
                  {"nid", 0},
                  {"bidData", 0},
                  {"class", ""},
                  {"reason", std::to_string(recovery.lostNotListed) + " more, not listed"}};
  }

  ReportText json;
  json.Add("source", text::ToUtf8(frame.source));
  json.Add("destination", text::ToUtf8(frame.destination));
  json.Add("storeKind", NameOf(report.storeKind));
  json.Add("format", NameOf(report.format));
  json.Add("nodeCount", report.nodeCount);
  json.Add("blockRecordCount", report.blockRecordCount);
  json.Add("orphanBlockCount", report.orphanBlockCount);
  json.Add("blockEncoding", static_cast<int>(report.blockEncoding));
  json.AddList("folders", recovery.folders, FolderOf);
  json.Add("items", ItemsOf(recovery));
  json.Add("attachments", recovery.attachments);
  json.Add("embedded", recovery.embedded);
  json.Add("skipped", SkippedOf(recovery));
  json.AddList("lost", recovery.lost, LostOf, beyond);
  json.Add("refusal", frame.refusal.empty() ? Json(nullptr) : Json(text::ToUtf8(frame.refusal)));
  json.Add("seconds", frame.seconds);
  json.Add("peakRssKiB", frame.peakRssKiB);
  return json.Finish();
}

}  // namespace velmora::cli
