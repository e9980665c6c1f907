#include "cli/report_json.h"

#include <nlohmann/json.hpp>

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

Json NameOf(const std::optional<engine::FormatId>& format) {
  if (!format) return nullptr;
  switch (*format) {
    case engine::FORMAT_ANSI:
      return "ansi";
    case engine::FORMAT_UNICODE:
      return "unicode";
    case engine::FORMAT_UNICODE_4K:
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

Json FoldersOf(const recovery::RecoveryReport& report) {
  Json folders = Json::array();
  for (const recovery::RecoveredFolder& folder : report.folders) {
    folders.push_back({{"nid", folder.nid},
                       {"parentNid", folder.parentNid},
                       {"name", text::ToUtf8(folder.name)},
                       {"containerClass", text::ToUtf8(folder.containerClass)}});
  }
  return folders;
}

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

Json LostOf(const recovery::RecoveryReport& report) {
  Json lost = Json::array();
  for (const recovery::LostObject& object : report.lost) {
    lost.push_back({{"nid", object.nid},
                    {"bidData", object.bidData},
                    {"class", text::ToUtf8(object.messageClass)},
                    {"reason", text::ToUtf8(object.reason)}});
  }
  if (report.lostUntold != 0) {
    const std::string more = std::to_string(report.lostUntold) + " more, not listed";
    lost.push_back({{"nid", 0}, {"bidData", 0}, {"class", ""}, {"reason", more}});
  }
  return lost;
}

}  // namespace

std::string ReportJson(const ReportFrame& frame, const conversion::RunReport& report) {
  Json json;
  json["source"] = text::ToUtf8(frame.source);
  json["destination"] = text::ToUtf8(frame.destination);
  json["storeKind"] = NameOf(report.storeKind);
  json["format"] = NameOf(report.format);
  json["nodeCount"] = report.nodeCount;
  json["blockRecordCount"] = report.blockRecordCount;
  json["orphanBlockCount"] = report.orphanBlockCount;
  json["blockEncoding"] = static_cast<int>(report.blockEncoding);
  json["folders"] = FoldersOf(report.recovery);
  json["items"] = ItemsOf(report.recovery);
  json["attachments"] = report.recovery.attachments;
  json["embedded"] = report.recovery.embedded;
  json["skipped"] = SkippedOf(report.recovery);
  json["lost"] = LostOf(report.recovery);
  json["refusal"] = frame.refusal.empty() ? Json(nullptr) : Json(text::ToUtf8(frame.refusal));
  json["seconds"] = frame.seconds;
  json["peakRssKiB"] = frame.peakRssKiB;
  return json.dump(2) + "\n";
}

}  // namespace velmora::cli
