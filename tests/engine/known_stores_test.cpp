// The scans over stores whose counts an independent model of the same rules has computed.
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>

#include "aids/aids.h"
#include "engine/run_fixture.h"
#include "engine/steps.h"

namespace velmora::engine {
namespace {

const std::map<StoreKind, std::string> kKindNames = {
    {StoreKind::kNone, ""}, {StoreKind::kPst, "pst"}, {StoreKind::kOst, "ost"}, {StoreKind::kPab, "pab"}};
const std::map<FormatId, std::string> kFormatNames = {
    {FORMAT_ANSI, "ansi"}, {FORMAT_UNICODE, "unicode"}, {FORMAT_UNICODE_4K, "unicode4k"}};

class KnownStoresTest : public RunTest {
 protected:
  void Check(const std::filesystem::path& store, const std::filesystem::path& expectedFile, bool smart) {
    SCOPED_TRACE(expectedFile.filename());
    std::ifstream file(expectedFile);
    ASSERT_TRUE(file) << "no expected report";
    const auto expected = nlohmann::json::parse(file);

    RunContext run;
    StoreScan scan;
    run.smartScan = smart;
    OpenSource(scan, run, store);
    scan.outputFolder = folder_;
    const bool refused = ProbeFormat(scan, run) == ProbeResult::kRefused;
    EXPECT_EQ(expected["storeKind"], kKindNames.at(scan.found->storeKind));
    if (!refused) {
      EXPECT_EQ(expected["format"], kFormatNames.at(scan.found->layout.formatId));
      ScanNodePages(scan, run);
      ScanBlockPages(scan, run);
    }
    EXPECT_EQ(expected["nodeCount"], scan.found->nodeCount);
    EXPECT_EQ(expected["blockRecordCount"], scan.found->blockRecordCount);
    EXPECT_EQ(expected["orphanBlockCount"], scan.found->orphanBlockCount);
    EXPECT_EQ(scan.found->orphans.size(), smart && !refused ? scan.found->orphanBlockCount + 1 : 0);
    const auto found = FinishScan(scan, run);
    EXPECT_EQ(expected["blockEncoding"], static_cast<int>(found->blockEncoding));
    EXPECT_EQ(!expected["refusal"].is_null(), refused || run.runAborted);
  }

  void CheckAll(bool smart) {
    const std::filesystem::path stores = test::StoresFolder();
    const std::filesystem::path expected = test::ExpectedFolder();
    if (stores.empty()) GTEST_SKIP() << "no folder of stores beside the sources; VELMORA_STORES names one";
    ASSERT_FALSE(expected.empty()) << "stores without their expected reports; VELMORA_EXPECTED names them";
    std::size_t checked = 0;
    for (const auto& [folder, reports] : {std::pair(stores, "stores"), std::pair(stores / "forged", "forged")}) {
      for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".pst" && entry.path().extension() != ".ost") continue;
        const std::string report = entry.path().filename().string() + (smart ? ".smart.json" : ".normal.json");
        Check(entry.path(), expected / reports / report, smart);
        ++checked;
      }
    }
    EXPECT_GT(checked, 0u);
  }
};

TEST_F(KnownStoresTest, NormalScanCountsAsTheModelDoes) { CheckAll(false); }
TEST_F(KnownStoresTest, SmartScanCountsAsTheModelDoes) { CheckAll(true); }

}  // namespace
}  // namespace velmora::engine
