// A whole run from a disk with bad places, up to the exit code.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "cli/convert_command.h"
#include "engine/bad_disk.h"
#include "forge/mailbox.h"
#include "platform/user_folders.h"

namespace velmora::cli {
namespace {

class BadDiskRun : public testing::Test {
 protected:
  BadDiskRun() {
    forge::Mailbox box({.fullLength = true});
    const forge::Nid inbox = box.AddFolder({.name = u"Inbox", .containerClass = u"IPF.Note"});
    box.AddMessage(inbox, {.subject = u"First", .plain = u"one"});
    box.Finish().Save(Source());
    size_ = std::filesystem::file_size(Source());
  }

  std::filesystem::path Source() const { return folder_.Path() / "outlook.pst"; }
  std::filesystem::path ReportFile() const { return folder_.Path() / "report.json"; }

  ExitCode Run(const std::vector<engine::BadPlace>& bad) {
    Options options;
    options.source = Source().string();
    options.destination = folder_.Path().string();
    options.report = ReportFile().string();
    options.dryRun = true;
    options.quiet = true;
    std::filesystem::remove(ReportFile());
    return Convert(options, engine::OpenBadDisk(bad));
  }

  nlohmann::json Report() const {
    std::ifstream file(ReportFile());
    return nlohmann::json::parse(file);
  }

  platform::TemporaryFolder folder_ = platform::TemporaryFolder::Create().value();
  std::uint64_t size_ = 0;
};

TEST_F(BadDiskRun, AGoodDiskLosesNothing) {
  EXPECT_EQ(Run({}), ExitCode::kDone);
  EXPECT_TRUE(Report()["lost"].empty());
}

TEST_F(BadDiskRun, BadSectorsAreLossesAndNoEnd) {
  // Free space at the end of the file, so that everything is saved.
  EXPECT_EQ(Run({{size_ - 1, size_}, {size_ - 50'000, size_ - 49'999}}), ExitCode::kLosses);
  const nlohmann::json report = Report();
  ASSERT_EQ(report["lost"].size(), 2u);
  for (const auto& lost : report["lost"]) {
    EXPECT_EQ(lost["kind"], "source range");
    EXPECT_EQ(lost["nid"], 0);
  }
  EXPECT_EQ(report["items"]["IPM.Note"], 1);
  EXPECT_TRUE(report["refusal"].is_null());
}

TEST_F(BadDiskRun, ARunThatCannotReadWhatKindOfStoreItIsEndsWithAFailureOfReading) {
  EXPECT_EQ(Run({{0, 1}}), ExitCode::kInputOutput);
  EXPECT_EQ(Report()["refusal"], "Pst/Ost file is not valid.");
}

}  // namespace
}  // namespace velmora::cli
