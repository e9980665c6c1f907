// A whole complete conversion, up to the exit code and the report.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "cli/convert_command.h"
#include "engine/bad_disk.h"
#include "forge/mailbox.h"
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

  ExitCode Run(const platform::SourceOpener& open = platform::OpenForReading) {
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

/// A disk that begins to fail once so many reads have succeeded.
class DyingDisk : public platform::ByteSource {
 public:
  DyingDisk(std::unique_ptr<const platform::ByteSource> content, int& reads, int most)
      : content_(std::move(content)), reads_(reads), most_(most) {}
  std::uint64_t Size() const override { return content_->Size(); }
  platform::Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    if (++reads_ > most_) {
      return tl::unexpected(platform::Failure{platform::FailureKind::kInputOutput, "disk", offset, "dead"});
    }
    return content_->ReadAt(offset, out);
  }

 private:
  std::unique_ptr<const platform::ByteSource> content_;
  int& reads_;
  int most_;
};

/// A disk from which the program is told to stop at one of the reads.
class InterruptingDisk : public platform::ByteSource {
 public:
  InterruptingDisk(std::unique_ptr<const platform::ByteSource> content, int& reads, int stopAt)
      : content_(std::move(content)), reads_(reads), stopAt_(stopAt) {}
  std::uint64_t Size() const override { return content_->Size(); }
  platform::Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    if (++reads_ == stopAt_) std::raise(SIGINT);
    return content_->ReadAt(offset, out);
  }

 private:
  std::unique_ptr<const platform::ByteSource> content_;
  int& reads_;
  int stopAt_;
};

TEST_F(CompleteConversionRun, AStopAtAnyTimeLeavesNoStoreOrOneThatOpensWithWhatWasCopied) {
  forge::Mailbox box({.fullLength = true});
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox", .containerClass = u"IPF.Note"});
  const text::Text body(20'000, u'x');
  constexpr int kMails = 12;
  for (int i = 0; i < kMails; ++i) box.AddMessage(inbox, {.subject = u"Mail", .plain = body});
  box.Finish().Save(Source());

  int reads = 0;
  int stopAt = 0;
  const platform::SourceOpener open = [&](const std::filesystem::path& path) {
    reads = 0;
    return platform::OpenForReading(path).map([&](std::unique_ptr<platform::ByteSource> file) {
      return std::unique_ptr<platform::ByteSource>(std::make_unique<InterruptingDisk>(std::move(file), reads, stopAt));
    });
  };
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
  const platform::SourceOpener open = [&](const std::filesystem::path& path) {
    reads = 0;
    return platform::OpenForReading(path).map([&](std::unique_ptr<platform::ByteSource> file) {
      return std::unique_ptr<platform::ByteSource>(std::make_unique<DyingDisk>(std::move(file), reads, most));
    });
  };
  ASSERT_EQ(Run(open), ExitCode::kDone);
  most = reads;  // so that copying works, and reading once more does not
  options_.verify = true;
  EXPECT_EQ(Run(open), ExitCode::kInputOutput);
  ASSERT_FALSE(report_["verify"]["differences"].empty());
  EXPECT_THAT(said_, HasSubstr("velmora-convert: --verify: node 0x"));
  EXPECT_THAT(said_, HasSubstr(report_["verify"]["differences"][0]["what"].get<std::string>()));
  EXPECT_TRUE(std::filesystem::exists(Store()));
}

}  // namespace
}  // namespace velmora::cli
