#include "cli/complete_report_json.h"

#include <fmt/format.h>

#include "cli/json_text.h"
#include "cli/node_fates.h"
#include "conversion/run_report.h"

namespace velmora::cli {
namespace {

using complete::MissingPart;

constexpr int kSchemaVersion = 2;

const char* FailureName(FailureKind kind) {
  switch (kind) {
    case FailureKind::kNotFound:
      return "not found";
    case FailureKind::kExists:
      return "exists";
    case FailureKind::kDenied:
      return "denied";
    case FailureKind::kFull:
      return "full";
    case FailureKind::kInputOutput:
      return "input/output";
    case FailureKind::kCorrupt:
      return "corrupt";
    case FailureKind::kNotSupported:
      return "not supported";
  }
  return "";
}

/// A failure may name a path, which need not be text.
std::string Valid(std::string_view bytes) { return text::ToUtf8(text::FromUtf8(bytes)); }

Json CauseJson(const Failure& failure) {
  if (failure.message.empty()) return nullptr;
  return {{"kind", FailureName(failure.kind)},
          {"object", Valid(TextOf(failure.object))},
          {"offset", failure.offset ? Json(*failure.offset) : Json(nullptr)},
          {"message", Valid(failure.message)}};
}

Json MissingJson(const MissingPart& part) {
  Json json = Json::object();
  switch (part.kind) {
    case MissingPart::Kind::kObject:
      json["kind"] = "object";
      break;
    case MissingPart::Kind::kProperty:
      json["kind"] = "property";
      break;
    case MissingPart::Kind::kRecipients:
      json["kind"] = "recipients";
      break;
    case MissingPart::Kind::kAttachment:
      json["kind"] = "attachment";
      json["name"] = text::ToUtf8(part.name);
      break;
    case MissingPart::Kind::kBytes:
      json["kind"] = "bytes";
      break;
  }
  if (part.tag != 0) json["tag"] = fmt::format("0x{:08X}", part.tag);
  if (part.kind == MissingPart::Kind::kAttachment || part.size != 0) json["size"] = part.size;
  json["cause"] = CauseJson(part.cause);
  return json;
}

Json DateJson(const std::optional<text::FileTime>& time) {
  if (!time) return nullptr;
  const text::DateParts parts = text::PartsOf(text::DateOf(*time));
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", parts.year, parts.month, parts.day, parts.hour,
                     parts.minute, parts.second);
}

Json LossJson(const complete::Loss& loss) {
  Json missing = Json::array();
  for (const MissingPart& part : loss.missing) missing.push_back(MissingJson(part));
  return {{"source", Value(loss.source)},
          {"target", loss.target ? Json(Value(*loss.target)) : Json(nullptr)},
          {"folder", text::ToUtf8(loss.folder)},
          {"subject", text::ToUtf8(loss.subject)},
          {"sender", text::ToUtf8(loss.sender)},
          {"date", DateJson(loss.date)},
          {"class", text::ToUtf8(loss.messageClass)},
          {"missing", std::move(missing)},
          {"missingNotListed", loss.missingNotListed}};
}

Json NodesJson(const complete::Account& account) {
  Json nodes = Json::object();
  for (const FateRow& row : kFates) nodes[row.name] = account.nodes[static_cast<std::size_t>(row.fate)];
  return nodes;
}

Json ItemsJson(const complete::Account& account) {
  std::map<std::string, complete::ItemCounts> byName;  // texts that are no UTF-16 may have one name in JSON
  for (const auto& [messageClass, counts] : account.items) {
    complete::ItemCounts& sum = byName[text::ToUtf8(messageClass)];
    sum.live += counts.live;
    sum.whole += counts.whole;
    sum.partial += counts.partial;
    sum.lost += counts.lost;
  }
  Json items = Json::object();
  for (const auto& [name, counts] : byName) {
    items[name] = {{"live", counts.live}, {"whole", counts.whole}, {"partial", counts.partial}, {"lost", counts.lost}};
  }
  return items;
}

Json EvidenceJson(const conversion::CompleteReport& report) {
  const complete::Evidence& evidence = report.account.evidence;
  Json unread = Json::array();
  std::uint64_t unreadBytes = 0;
  for (const auto& [from, to] : report.unread) {
    if (unread.size() < conversion::kMostUnreadRanges) unread.push_back({{"from", from}, {"to", to}});
    unreadBytes += to - from;
  }
  return {{"headerUsed", evidence.headerUsed},
          {"nodesAreExact", evidence.nodesAreExact},
          {"blocksAreExact", evidence.blocksAreExact},
          {"liveNodes", evidence.liveNodes},
          {"nodePages", evidence.nodePages},
          {"blockPages", evidence.blockPages},
          {"liveBlocks", evidence.liveBlocks},
          {"freedBlocks", evidence.freedBlocks},
          {"hurtBlocks", evidence.hurtBlocks},
          {"failedBlocks", evidence.failedBlocks},
          {"unread", std::move(unread)},
          {"unreadBytes", unreadBytes}};
}

Json PlaceJson(const engine::StorePlace& place) {
  return {{"from", place.from},
          {"to", place.to},
          {"missing", place.Missing()},
          {"header", place.hasHeader},
          {"doubtfulFrom", place.doubtfulFrom ? Json(*place.doubtfulFrom) : Json(nullptr)}};
}

Json VerifyJson(const complete::Account& account) {
  Json differences = Json::array();
  for (const complete::Difference& difference : account.differences) {
    differences.push_back(
        {{"source", Value(difference.source)}, {"target", Value(difference.target)}, {"what", Valid(difference.what)}});
  }
  return {{"compared", account.objectsCompared},
          {"differences", std::move(differences)},
          {"differencesNotListed", account.differencesNotListed}};
}

}  // namespace

std::string CompleteReportJson(const ReportFrame& frame, const conversion::CompleteReport& report) {
  const complete::Account& account = report.account;
  JsonText json;
  json.Add("schemaVersion", kSchemaVersion);
  json.Add("conversion", "complete");
  json.AddStores(frame, report.storeKind, report.format);
  if (report.place) json.Add("place", PlaceJson(*report.place));
  if (!report.others.empty()) json.AddList("otherStores", report.others, PlaceJson);
  if (report.grownBy != 0) json.Add("grownBy", report.grownBy);
  json.Add("nodes", NodesJson(account));
  json.Add("items", ItemsJson(account));
  json.Add("folders", account.folders);
  json.Add("recipients", account.recipients);
  json.Add("attachments", account.attachments);
  json.Add("embedded", account.embedded);
  json.Add("bytes", account.bytes);
  json.Add("undefinedBytes", account.undefinedBytes);
  json.AddList("losses", account.losses, LossJson);
  json.Add("lossesNotListed", account.lossesNotListed);
  json.Add("evidence", EvidenceJson(report));
  if (account.isVerified) json.Add("verify", VerifyJson(account));
  return json.Finish(frame);
}

}  // namespace velmora::cli
