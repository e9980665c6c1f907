#include "cli/report_json.h"

#include <algorithm>

#include "cli/json_text.h"
#include "cli/result_text.h"

namespace velmora::cli {
namespace {

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

  JsonText json;
  json.AddStores(frame, report.storeKind, report.format);
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
  return json.Finish(frame);
}

}  // namespace velmora::cli
