#include "cli/report_json.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace velmora::cli {
namespace {

using Json = nlohmann::ordered_json;

TEST(ReportJson, HasAllFieldsInTheirOrder) {
  const Json json = Json::parse(ReportJson({}, {}));
  std::vector<std::string> names;
  for (const auto& [name, value] : json.items()) names.push_back(name);
  EXPECT_EQ(names,
            (std::vector<std::string>{"source", "destination", "storeKind", "format", "nodeCount", "blockRecordCount",
                                      "orphanBlockCount", "blockEncoding", "folders", "items", "attachments",
                                      "embedded", "skipped", "lost", "refusal", "seconds", "peakRssKiB"}));
  EXPECT_EQ(json["storeKind"], "");
  EXPECT_TRUE(json["format"].is_null());
  EXPECT_TRUE(json["refusal"].is_null());
  EXPECT_EQ(json["skipped"],
            (Json{{"no block", 0}, {"bad heap", 0}, {"no class", 0}, {"refused class", 0}, {"no folder", 0}}));
}

TEST(ReportJson, TellsWhatWasFound) {
  conversion::RunReport report;
  report.storeKind = engine::StoreKind::kOst;
  report.format = FORMAT_UNICODE_4K;
  report.nodeCount = 3;
  report.blockEncoding = CryptMethod::kCyclic;
  report.recovery.folders = {{0x8082, 0x8022, u"Gr\u00FC\u00DFe", u"IPF.Note"}};
  report.recovery.items = {{u"IPM.Note", 2}};
  report.recovery.skipped[recovery::SkipReason::kNoFolder] = 4;
  report.recovery.lost = {{recovery::LossKind::kMessage, 0x200024, 0x1234, u"IPM.Note", u"why"}};
  const Json json = Json::parse(ReportJson({u"/a.ost", u"/out/a.pst", u"Pst/Ost file is not valid.", 1.5, 77}, report));
  EXPECT_EQ(json["source"], "/a.ost");
  EXPECT_EQ(json["destination"], "/out/a.pst");
  EXPECT_EQ(json["storeKind"], "ost");
  EXPECT_EQ(json["format"], "unicode4k");
  EXPECT_EQ(json["nodeCount"], 3);
  EXPECT_EQ(json["blockEncoding"], 2);
  EXPECT_EQ(json["folders"], (Json::parse(R"([{"nid":32898,"parentNid":32802,"name":"Grüße",
                                               "containerClass":"IPF.Note"}])")));
  EXPECT_EQ(json["items"], (Json{{"IPM.Note", 2}}));
  EXPECT_EQ(json["skipped"]["no folder"], 4);
  EXPECT_EQ(json["lost"],
            (Json::parse(R"([{"kind":"message","nid":2097188,"bidData":4660,"class":"IPM.Note","reason":"why"}])")));
  EXPECT_EQ(json["refusal"], "Pst/Ost file is not valid.");
  EXPECT_EQ(json["seconds"], 1.5);
  EXPECT_EQ(json["peakRssKiB"], 77);
}

TEST(ReportJson, ClassesThatHoldLoneSurrogatesAreCountedTogether) {
  conversion::RunReport report;
  report.recovery.items = {{text::Text{0xD800}, 1}, {text::Text{0xD801}, 2}};
  EXPECT_EQ(Json::parse(ReportJson({}, report))["items"], (Json{{"\uFFFD", 3}}));
}

TEST(ReportJson, WhatIsLostAndNotListedIsCounted) {
  conversion::RunReport report;
  report.recovery.lostNotListed = 7;
  const Json lost = Json::parse(ReportJson({}, report))["lost"];
  ASSERT_EQ(lost.size(), 1u);
  EXPECT_EQ(lost[0]["reason"], "7 more, not listed");
}

TEST(ReportJson, EndsInALineEnd) { EXPECT_EQ(ReportJson({}, {}).back(), '\n'); }

}  // namespace
}  // namespace velmora::cli
