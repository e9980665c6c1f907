#include "cli/complete_report_json.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "conversion/run_report.h"

namespace velmora::cli {
namespace {

using complete::MissingPart;
using complete::NodeFate;
using Object = nlohmann::ordered_json;

Object Parsed(const conversion::CompleteReport& report, const ReportFrame& frame = {}) {
  return Object::parse(CompleteReportJson(frame, report));
}

std::vector<std::string> NamesOf(const Object& json) {
  std::vector<std::string> names;
  for (const auto& [name, value] : json.items()) names.push_back(name);
  return names;
}

TEST(CompleteReportJson, HasAllFieldsInTheirOrder) {
  const Object json = Parsed({});
  EXPECT_EQ(NamesOf(json),
            (std::vector<std::string>{"schemaVersion",   "conversion", "source",  "destination",    "storeKind",
                                      "format",          "nodes",      "items",   "folders",        "recipients",
                                      "attachments",     "embedded",   "bytes",   "undefinedBytes", "losses",
                                      "lossesNotListed", "evidence",   "refusal", "seconds",        "peakRssKiB"}));
  EXPECT_EQ(json["schemaVersion"], 2);
  EXPECT_EQ(json["conversion"], "complete");
  EXPECT_TRUE(json["format"].is_null());
  EXPECT_TRUE(json["refusal"].is_null());
  EXPECT_EQ(json["losses"], Object::array());
}

TEST(CompleteReportJson, TellsOfTheRunWhatTheOtherReportTells) {
  conversion::CompleteReport report;
  report.storeKind = engine::StoreKind::kOst;
  report.format = FORMAT_ANSI;
  const Object json = Parsed(report, {u"/a.ost", u"/out/a.pst", u"Pst/Ost file is not valid.", 1.5, 77});
  EXPECT_EQ(json["source"], "/a.ost");
  EXPECT_EQ(json["destination"], "/out/a.pst");
  EXPECT_EQ(json["storeKind"], "ost");
  EXPECT_EQ(json["format"], "ansi");
  EXPECT_EQ(json["refusal"], "Pst/Ost file is not valid.");
  EXPECT_EQ(json["seconds"], 1.5);
  EXPECT_EQ(json["peakRssKiB"], 77);
}

TEST(CompleteReportJson, TellsWhereTheStoreLiesInAFileThatIsMoreOrLess) {
  conversion::CompleteReport report;
  EXPECT_FALSE(Parsed(report).contains("place"));
  EXPECT_FALSE(Parsed(report).contains("otherStores"));
  report.place.emplace();
  report.place->origin = -512;
  report.place->to = 9000;
  report.place->doubtfulFrom = 7000;
  engine::StorePlace other;
  other.origin = other.from = 9000;
  other.to = 20000;
  other.hasHeader = true;
  report.others = {other};
  EXPECT_EQ(Parsed(report)["place"],
            (Object{{"from", 0}, {"to", 9000}, {"missing", 512}, {"header", false}, {"doubtfulFrom", 7000}}));
  EXPECT_EQ(
      Parsed(report)["otherStores"],
      (Object::array({{{"from", 9000}, {"to", 20000}, {"missing", 0}, {"header", true}, {"doubtfulFrom", nullptr}}})));
}

TEST(CompleteReportJson, GivesEachFateOfANodeItsName) {
  conversion::CompleteReport report;
  for (std::size_t i = 0; i < complete::kNodeFates; ++i) report.account.nodes[i] = i + 1;
  EXPECT_EQ(Parsed(report)["nodes"], (Object{{"written", 1},
                                             {"partial", 2},
                                             {"older version", 3},
                                             {"deleted", 4},
                                             {"deleted, written", 5},
                                             {"hidden", 6},
                                             {"search folder", 7},
                                             {"internal", 8},
                                             {"unreadable", 9}}));
  report.account.nodes = {};
  report.account.nodes[static_cast<std::size_t>(NodeFate::kDeletedWritten)] = 1;
  EXPECT_EQ(Parsed(report)["nodes"]["deleted, written"], 1);
}

TEST(CompleteReportJson, CountsItemsByClassAndTheRestInAll) {
  conversion::CompleteReport report;
  complete::Account& account = report.account;
  account.items = {
      {u"IPM.Note", {10, 7, 2, 1}}, {text::Text{0xD800}, {1, 1, 0, 0}}, {text::Text{0xD801}, {2, 0, 1, 1}}};
  account.folders = 4;
  account.recipients = 5;
  account.attachments = 6;
  account.embedded = 7;
  account.bytes = 1ull << 40;
  account.undefinedBytes = 8;
  const Object json = Parsed(report);
  EXPECT_EQ(json["items"], (Object::parse(R"({"IPM.Note":{"live":10,"whole":7,"partial":2,"lost":1},
                                              "\uFFFD":{"live":3,"whole":1,"partial":1,"lost":1}})")));
  EXPECT_EQ(json["folders"], 4);
  EXPECT_EQ(json["recipients"], 5);
  EXPECT_EQ(json["attachments"], 6);
  EXPECT_EQ(json["embedded"], 7);
  EXPECT_EQ(json["bytes"], 1ull << 40);
  EXPECT_EQ(json["undefinedBytes"], 8);
}

TEST(CompleteReportJson, TellsOfALossWhatItWasAndWhatOfItIsMissing) {
  using Kind = MissingPart::Kind;
  const Failure cause{FailureKind::kCorrupt, "block 0x1A4", 5632, "the checksum is wrong"};
  conversion::CompleteReport report;
  report.account.losses = {{.source = Nid{0x200024},
                            .target = Nid{0x200044},
                            .folder = u"/Inbox",
                            .messageClass = u"IPM.Note",
                            .subject = u"Gr\u00FC\u00DFe",
                            .sender = u"Anna",
                            .date = text::FileTimeOfUnixSeconds(1620050571),
                            .missing = {{.kind = Kind::kProperty, .tag = 0x0037001F, .cause = cause},
                                        {.kind = Kind::kRecipients},
                                        {.kind = Kind::kAttachment, .name = u"a.txt", .size = 0},
                                        {.kind = Kind::kBytes, .tag = 0x1000001F, .size = 8176}}},
                           {.source = Nid{0x200064}, .missing = {{.kind = Kind::kObject}}}};
  report.account.lossesNotListed = 9;
  const Object json = Parsed(report);
  EXPECT_EQ(json["losses"], Object::parse(R"([
    {"source":2097188,"target":2097220,"folder":"/Inbox","subject":"Grüße","sender":"Anna",
     "date":"2021-05-03T14:02:51Z","class":"IPM.Note","missing":[
      {"kind":"property","tag":"0x0037001F","cause":{"kind":"corrupt","object":"block 0x1A4","offset":5632,
                                                     "message":"the checksum is wrong"}},
      {"kind":"recipients","cause":null},
      {"kind":"attachment","name":"a.txt","size":0,"cause":null},
      {"kind":"bytes","tag":"0x1000001F","size":8176,"cause":null}],"missingNotListed":0},
    {"source":2097252,"target":null,"folder":"","subject":"","sender":"","date":null,"class":"","missing":[
      {"kind":"object","cause":null}],"missingNotListed":0}])"));
  EXPECT_EQ(json["lossesNotListed"], 9);
}

TEST(CompleteReportJson, TellsOnWhatTheAnswerStands) {
  conversion::CompleteReport report;
  report.account.evidence = {true, true, false, 12, 3, 4, 34, 5, 6, 7};
  report.unread = {{512, 1024}, {4096, 4097}};
  EXPECT_EQ(Parsed(report)["evidence"], Object::parse(R"({
    "headerUsed":true,"nodesAreExact":true,"blocksAreExact":false,"liveNodes":12,"nodePages":3,"blockPages":4,
    "liveBlocks":34,"freedBlocks":5,"hurtBlocks":6,"failedBlocks":7,
    "unread":[{"from":512,"to":1024},{"from":4096,"to":4097}],"unreadBytes":513})"));
}

TEST(CompleteReportJson, ListsAThousandUnreadStretchesAndTheBytesOfAll) {
  conversion::CompleteReport report;
  for (std::uint64_t i = 0; i <= conversion::kMostUnreadRanges; ++i)
    report.unread.emplace_back(i * 1024, i * 1024 + 512);
  const Object evidence = Parsed(report)["evidence"];
  EXPECT_EQ(evidence["unread"].size(), conversion::kMostUnreadRanges);
  EXPECT_EQ(evidence["unreadBytes"], 512 * (conversion::kMostUnreadRanges + 1));
}

TEST(CompleteReportJson, TellsOfAComparisonWhereOneWasMade) {
  conversion::CompleteReport report;
  report.account.isVerified = true;
  report.account.objectsCompared = 3;
  EXPECT_EQ(Parsed(report)["verify"],
            (Object{{"compared", 3}, {"differences", Object::array()}, {"differencesNotListed", 0}}));
  report.account.differences = {{Nid{0x24}, Nid{0x44}, "recipient 3: \xFF"}};
  report.account.differencesNotListed = 2;
  EXPECT_EQ(Parsed(report)["verify"],
            Object::parse(R"({"compared":3,"differences":[{"source":36,"target":68,"what":"recipient 3: \uFFFD"}],
                              "differencesNotListed":2})"));
}

TEST(CompleteReportJson, AFailureThatNamesAPathInNoKnownLettersIsStillText) {
  conversion::CompleteReport report;
  report.account.losses = {{.missing = {{.cause = {FailureKind::kInputOutput, "/mnt/\xFF.ost", 0, "why"}}}}};
  EXPECT_EQ(Parsed(report)["losses"][0]["missing"][0]["cause"]["object"], "/mnt/\uFFFD.ost");
}

}  // namespace
}  // namespace velmora::cli
