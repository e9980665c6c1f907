// A whole complete conversion, up to the exit code and the report.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <set>

#include "aids/system.h"
#include "cli/convert_command.h"
#include "engine/bad_disk.h"
#include "forge/mailbox.h"
#include "platform/instance_lock.h"
#include "platform/user_folders.h"

namespace velmora::cli {
namespace {

using testing::HasSubstr;

class CompleteConversionRun : public testing::Test {
 protected:
  CompleteConversionRun() {
    forge::Mailbox box({.fullLength = true});
    const forge::Nid inbox = box.AddFolder({.name = u"Inbox", .containerClass = u"IPF.Note"});
    box.AddMessage(inbox, {.subject = u"First", .plain = u"one"});
    box.Finish().Save(Source());
    size_ = std::filesystem::file_size(Source());
    options_.source = Source().string();
    options_.destination = folder_.Path().string();
    options_.complete = true;
    options_.quiet = true;
  }

  std::filesystem::path Source() const { return folder_.Path() / "outlook.pst"; }
  std::filesystem::path Store() const { return folder_.Path() / "outlook Converted0" / "outlook Converted.pst"; }

  /// On one thread, so that a disk that counts its reads has them in one order.
  ExitCode Run(const platform::SourceOpener& open = platform::OpenForReading) {
    options_.jobs = 1;
    options_.report = (folder_.Path() / "report.json").string();
    std::filesystem::remove(options_.report);
    std::filesystem::remove_all(folder_.Path() / "outlook Converted0");
    testing::internal::CaptureStderr();
    const ExitCode code = Convert(options_, open);
    said_ = testing::internal::GetCapturedStderr();
    std::ifstream file(options_.report);
    report_ = nlohmann::json::parse(file);
    return code;
  }

  platform::TemporaryFolder folder_ = platform::TemporaryFolder::Create().value();
  std::uint64_t size_ = 0;
  Options options_;
  std::string said_;
  nlohmann::json report_;
};

TEST_F(CompleteConversionRun, WhatComesAcrossWholeIsDone) {
  EXPECT_EQ(Run(), ExitCode::kDone);
  EXPECT_EQ(report_["conversion"], "complete");
  EXPECT_EQ(report_["items"], nlohmann::json::parse(R"({"IPM.Note":{"live":1,"whole":1,"partial":0,"lost":0}})"));
  EXPECT_FALSE(report_.contains("verify"));
  EXPECT_EQ(said_, "");
}

TEST_F(CompleteConversionRun, AComparisonThatFindsNothingIsInTheReport) {
  options_.verify = true;
  EXPECT_EQ(Run(), ExitCode::kDone) << said_;
  EXPECT_GT(report_["verify"]["compared"], 1);
  EXPECT_TRUE(report_["verify"]["differences"].empty());
}

TEST_F(CompleteConversionRun, BadSectorsWhereNothingStandsAreToldAndNoLoss) {
  const std::vector<engine::BadPlace> bad = {{size_ - 1, size_}};
  EXPECT_EQ(Run(engine::OpenBadDisk(bad)), ExitCode::kDone) << said_;
  EXPECT_TRUE(report_["losses"].empty());
  EXPECT_EQ(report_["evidence"]["unread"].size(), 1u);
}

TEST_F(CompleteConversionRun, ALongBadStretchCostsTheMessageInIt) {
  forge::Mailbox box({.fullLength = true});
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox", .containerClass = u"IPF.Note"});
  box.AddMessage(inbox, {.subject = u"Ahead", .plain = u"one"});
  const std::uint64_t begin = box.store().End() + 100'000;
  box.AddMessage(inbox, {.subject = u"In it", .attachments = {{.name = u"a", .data = forge::Noise(8 << 20, 1)}}});
  const std::uint64_t end = box.store().End() - 100'000;
  box.AddMessage(inbox, {.subject = u"Behind", .plain = u"two"});
  box.Finish().Save(Source());
  const std::vector<engine::BadPlace> bad = {{begin, end}};
  EXPECT_EQ(Run(engine::OpenBadDisk(bad)), ExitCode::kLosses);
  EXPECT_EQ(report_["items"], nlohmann::json::parse(R"({"IPM.Note":{"live":3,"whole":2,"partial":1,"lost":0}})"));
  EXPECT_EQ(report_["losses"][0]["subject"], "In it");
  ASSERT_EQ(report_["evidence"]["unread"].size(), 1u) << report_["evidence"]["unread"];
  const auto& unread = report_["evidence"]["unread"][0];
  EXPECT_LE(unread["from"], begin);
  EXPECT_GE(unread["to"], end);
  EXPECT_LT(report_["evidence"]["unreadBytes"], end - begin + 2 * 4096);
}

TEST_F(CompleteConversionRun, AHeaderThatCannotBeReadIsNotNeeded) {
  const std::vector<engine::BadPlace> bad = {{0, 1}};
  EXPECT_EQ(Run(engine::OpenBadDisk(bad)), ExitCode::kDone) << said_;
  EXPECT_FALSE(report_["evidence"]["headerUsed"]);
  EXPECT_EQ(report_["items"]["IPM.Note"]["whole"], 1);
}

class CompleteConversionOfPartOfAFile : public CompleteConversionRun {
 protected:
  CompleteConversionOfPartOfAFile() {
    std::ifstream file(Source(), std::ios::binary);
    first_.assign(std::istreambuf_iterator<char>(file), {});
    forge::Mailbox box({.fullLength = true});
    const forge::Nid inbox = box.AddFolder({.name = u"Inbox", .containerClass = u"IPF.Note"});
    for (int i = 0; i < 3; ++i) box.AddMessage(inbox, {.subject = u"Other", .plain = u"two"});
    const forge::Bytes other = box.Finish().bytes;
    second_.assign(reinterpret_cast<const char*>(other.data()), other.size());
  }

  void Save(const std::string& bytes) const { std::ofstream(Source(), std::ios::binary) << bytes; }

  std::string first_;
  std::string second_;
};

TEST_F(CompleteConversionOfPartOfAFile, OtherStoresOfTheFileAreNamedAndNotConverted) {
  Save(first_ + second_);
  options_.verify = true;
  EXPECT_EQ(Run(), ExitCode::kDone);
  EXPECT_EQ(report_["items"]["IPM.Note"]["whole"], 1);
  EXPECT_EQ(report_["place"]["to"], first_.size());
  ASSERT_EQ(report_["otherStores"].size(), 1U);
  EXPECT_EQ(report_["otherStores"][0]["from"], first_.size());
  EXPECT_EQ(report_["otherStores"][0]["to"], first_.size() + second_.size());
  EXPECT_THAT(said_, HasSubstr("--at " + std::to_string(first_.size()) + " converts it"));
}

TEST_F(CompleteConversionOfPartOfAFile, TheStoreThatIsAskedForIsConverted) {
  Save(first_ + second_);
  options_.at = first_.size();
  EXPECT_EQ(Run(), ExitCode::kDone);
  EXPECT_EQ(report_["items"]["IPM.Note"]["whole"], 3);
  EXPECT_EQ(report_["place"]["from"], first_.size());
  EXPECT_EQ(report_["otherStores"][0]["from"], 0);
}

TEST_F(CompleteConversionOfPartOfAFile, WhereNoStoreBeginsTheRunEndsAndNamesThoseThatThereAre) {
  Save(first_ + second_);
  options_.at = 512;
  EXPECT_EQ(Run(), ExitCode::kNotValid);
  EXPECT_THAT(said_, HasSubstr("no store begins at byte 512, but at 0, " + std::to_string(first_.size())));
  EXPECT_FALSE(std::filesystem::exists(Store()));
}

TEST_F(CompleteConversionOfPartOfAFile, AMissingFrontIsSaid) {
  Save(second_.substr(0x4400));
  const ExitCode code = Run();
  EXPECT_TRUE(code == ExitCode::kDone || code == ExitCode::kLosses);
  EXPECT_EQ(report_["place"]["missing"], 0x4400);
  EXPECT_EQ(report_["items"]["IPM.Note"]["whole"], 3);
  EXPECT_THAT(said_, HasSubstr("the first 17408 bytes of the store are missing"));
}

TEST_F(CompleteConversionRun, ARunThatCanReadNothingEndsWithAFailureOfReading) {
  const std::vector<engine::BadPlace> bad = {{0, size_}};
  EXPECT_EQ(Run(engine::OpenBadDisk(bad)), ExitCode::kInputOutput);
  EXPECT_EQ(report_["refusal"], "Pst/Ost file is not valid.");
}

/// A disk that tells the number of each read ahead of it, and fails where it is answered false.
class WatchedDisk : public platform::ByteSource {
 public:
  using Watch = std::function<bool(int)>;
  WatchedDisk(std::unique_ptr<const platform::ByteSource> content, int& reads, const Watch& watch)
      : content_(std::move(content)), reads_(reads), watch_(watch) {}
  std::uint64_t Size() const override { return content_->Size(); }
  platform::Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    if (!watch_(++reads_)) {
      return tl::unexpected(platform::Failure{platform::FailureKind::kInputOutput, "disk", offset, "dead"});
    }
    return content_->ReadAt(offset, out);
  }

  /// Counts the reads of the source that was opened last.
  static platform::SourceOpener Open(int& reads, const Watch& watch) {
    return [&](const std::filesystem::path& path) {
      reads = 0;
      return platform::OpenForReading(path).map([&](std::unique_ptr<platform::ByteSource> file) {
        return std::unique_ptr<platform::ByteSource>(std::make_unique<WatchedDisk>(std::move(file), reads, watch));
      });
    };
  }

 private:
  std::unique_ptr<const platform::ByteSource> content_;
  int& reads_;
  const Watch& watch_;
};

/// Asks for the end of the run at that read of the disk.
WatchedDisk::Watch StopsAt(const int& read) {
  return [&read](int now) {
    if (now == read) std::raise(SIGINT);
    return true;
  };
}

TEST_F(CompleteConversionRun, AStopAtAnyTimeLeavesNoStoreOrOneThatOpensWithWhatWasCopied) {
  if (test::kIsWindows) GTEST_SKIP() << "no signal can be raised there; tests/windows stops runs";
  forge::Mailbox box({.fullLength = true});
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox", .containerClass = u"IPF.Note"});
  const text::Text body(300'000, u'x');  // more in all than is read ahead at a time
  constexpr int kMails = 12;
  for (int i = 0; i < kMails; ++i) box.AddMessage(inbox, {.subject = u"Mail", .plain = body});
  box.Finish().Save(Source());

  int reads = 0;
  int stopAt = 0;
  const WatchedDisk::Watch watch = StopsAt(stopAt);
  const platform::SourceOpener open = WatchedDisk::Open(reads, watch);
  ASSERT_EQ(Run(open), ExitCode::kDone);
  const int all = reads;
  std::set<std::uint64_t> counts;
  for (stopAt = 1; stopAt <= all; stopAt += 1 + all / 15) {
    SCOPED_TRACE(stopAt);
    const ExitCode code = Run(open);
    if (code == ExitCode::kDone) continue;  // told behind the last pause point
    ASSERT_EQ(code, ExitCode::kStopped) << said_;
    if (said_ == "Stopped. No store was written.\n") continue;
    EXPECT_EQ(said_, "Stopped. Recovered at: " + Store().string() + "\n");
    Options again = options_;
    again.source = Store().string();
    again.dryRun = true;
    again.report = (folder_.Path() / "again.json").string();
    std::filesystem::remove(again.report);
    EXPECT_EQ(Convert(again), ExitCode::kDone);
    std::ifstream file(again.report);
    const auto items = nlohmann::json::parse(file)["items"];
    counts.insert(items.empty() ? 0 : items["IPM.Note"]["whole"].get<std::uint64_t>());
  }
  EXPECT_GT(counts.size(), 3u);
  EXPECT_LE(*counts.rbegin(), kMails);
}

TEST_F(CompleteConversionRun, ADifferenceThatIsFoundIsAFailureAndNamed) {
  int reads = 0;
  int most = std::numeric_limits<int>::max();
  const WatchedDisk::Watch watch = [&](int read) { return read <= most; };
  const platform::SourceOpener open = WatchedDisk::Open(reads, watch);
  ASSERT_EQ(Run(open), ExitCode::kDone);
  most = reads;  // so that copying works, and reading once more does not
  options_.verify = true;
  EXPECT_EQ(Run(open), ExitCode::kInputOutput);
  ASSERT_FALSE(report_["verify"]["differences"].empty());
  EXPECT_THAT(said_, HasSubstr("velmora-convert: --verify: node 0x"));
  EXPECT_THAT(said_, HasSubstr(report_["verify"]["differences"][0]["what"].get<std::string>()));
  EXPECT_TRUE(std::filesystem::exists(Store()));
}

TEST_F(CompleteConversionRun, AFileThatGrowsWhileItIsReadComesAcrossAsItWas) {
  int reads = 0;
  const WatchedDisk::Watch watch = [&](int read) {
    if (read == 3) std::ofstream(Source(), std::ios::app) << std::string(5000, 'x');
    return true;
  };
  EXPECT_EQ(Run(WatchedDisk::Open(reads, watch)), ExitCode::kDone);
  EXPECT_EQ(report_["grownBy"], 5000);
  EXPECT_EQ(report_["items"]["IPM.Note"]["whole"], 1);
  EXPECT_THAT(said_, HasSubstr("the file grew by 5.0 KB while it was read"));
}

TEST_F(CompleteConversionRun, AFileThatAnotherProgramHoldsOpenComesAcross) {
  if (test::kIsWindows) GTEST_SKIP() << "who holds a file says there what others may do; tests/windows asks that";
  const auto held = platform::InstanceLock::Take(Source());
  ASSERT_TRUE(held);
  EXPECT_EQ(Run(), ExitCode::kDone);
  EXPECT_EQ(report_["items"]["IPM.Note"]["whole"], 1);
  EXPECT_FALSE(report_.contains("grownBy"));
}

TEST_F(CompleteConversionRun, AStopWhileTheStoresAreComparedLeavesTheStoreAndNoResult) {
  if (test::kIsWindows) GTEST_SKIP() << "no signal can be raised there; tests/windows stops runs";
  int reads = 0;
  int stopAt = 0;
  const WatchedDisk::Watch watch = StopsAt(stopAt);
  const platform::SourceOpener open = WatchedDisk::Open(reads, watch);
  ASSERT_EQ(Run(open), ExitCode::kDone);
  stopAt = reads + 1;
  options_.verify = true;
  EXPECT_EQ(Run(open), ExitCode::kStopped) << said_;
  EXPECT_EQ(said_, "Stopped. Recovered at: " + Store().string() + "\n");
  EXPECT_FALSE(report_.contains("verify"));
}

TEST_F(CompleteConversionRun, AStoreThatIsCutOffBeforeItIsComparedIsAFailure) {
  int reads = 0;
  int cutAt = 0;
  const WatchedDisk::Watch watch = [&](int read) {
    if (read == cutAt) std::filesystem::resize_file(Store(), 100);
    return true;
  };
  const platform::SourceOpener open = WatchedDisk::Open(reads, watch);
  ASSERT_EQ(Run(open), ExitCode::kDone);
  cutAt = reads + 1;
  options_.verify = true;
  EXPECT_EQ(Run(open), ExitCode::kInputOutput) << said_;
  EXPECT_THAT(said_, HasSubstr(Store().string()));
  EXPECT_FALSE(report_.contains("verify"));
}

}  // namespace
}  // namespace velmora::cli
