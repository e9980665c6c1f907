// How many threads work on a copy is nobody's business but theirs.
#include <algorithm>
#include <optional>

#include "aids/shared_file.h"
#include "complete/complete_fixture.h"
#include "store/messaging/failures.h"
#include "store/support/test_files.h"

namespace velmora::complete {
namespace {

constexpr unsigned kJobs[] = {1, 3};

class JobsTest : public CompleteTest {
 protected:
  struct Result {
    Bytes bytes;
    Account account;
    bool isStopped = false;
    bool failed = false;
  };

  /// Values in heaps and beside them, of one block and of many, and more of them than are read ahead at a time.
  static Bytes Forge() {
    forge::Mailbox box = NewBox();
    const forge::Nid inbox = box.AddFolder({.name = u"Inbox", .containerClass = u"IPF.Note"});
    const auto inner = std::make_shared<const forge::Message>(WithAttachments({10'000, 3'000}));
    for (std::uint32_t i = 0; i < 25; ++i) {
      box.AddMessage(inbox, Mail(u"Short"));
      forge::Message mail = WithAttachments({100, 3'000, 20'000, 8'176, 2 * 8'176 + i});
      mail.plain = std::u16string(4'000 + 997 * i, u'b');
      mail.html = Noise(50'000, i);
      if (i % 10 == 0) mail.attachments.push_back({.name = u"long", .data = Noise(900'000, i)});
      if (i % 7 == 0) mail.attachments.push_back({.displayName = u"Inner", .embedded = inner});
      if (i == 3)
        mail.attachments.push_back({.name = u"ole", .object = forge::OleObject{Noise(4000, 3), {Noise(50, 4)}}});
      box.AddMessage(inbox, mail);
    }
    return box.Finish().bytes;
  }

  static forge::Message WithAttachments(std::initializer_list<std::size_t> sizes) {
    forge::Message mail = Mail(u"Attachments");
    for (const std::size_t size : sizes) {
      mail.attachments.push_back({.name = u"file", .data = Noise(size, static_cast<std::uint32_t>(size))});
    }
    return mail;
  }

  Result CopyWith(unsigned jobs, const Bytes& source, std::shared_ptr<platform::MemoryFile> file = nullptr) {
    platform::Workers workers(jobs);
    run_.workers = &workers;
    if (file == nullptr) file = std::make_shared<platform::MemoryFile>();
    Result result;
    const auto found = Scan(source);
    try {
      const auto target = messaging::StoreWriter::Create(std::make_unique<test::SharedFile>(file), u"Copy",
                                                         {.sourceDateEpoch = kEpoch, .workers = &workers});
      try {
        CopyStore(*found, *target, {}, run_, result.account);
      } catch (const engine::RunStopped&) {
        result.isStopped = true;
      } catch (const output::OutputFailure&) {
        result.failed = true;
      }
      target->Seal();
    } catch (const output::OutputFailure&) {
      result.failed = true;
    }
    run_.workers = &platform::Workers::WithoutThreads();
    result.bytes = file->Bytes();
    return result;
  }

  /// What a person reads of losses.
  static std::vector<std::string> Losses(const Account& account) {
    std::vector<std::string> lines;
    for (const Loss& loss : account.losses) {
      for (const MissingPart& part : loss.missing) {
        lines.push_back(std::to_string(velmora::Value(loss.source)) + " " + std::to_string(part.tag) + " " +
                        TextOf(part.cause));
      }
    }
    return lines;
  }
};
INSTANTIATE_TEST_SUITE_P(Formats, JobsTest, AllFormats(), NameOf);

TEST_P(JobsTest, TheNewStoreDoesNotDependOnTheirNumber) {
  const Bytes source = Forge();
  Copy(source);
  ExpectAllWhole();
  ExpectSound();
  const Result alone = CopyWith(1, source);
  ASSERT_EQ(alone.account.Totals().whole, 50U);
  for (const unsigned jobs : kJobs) {
    const Result result = CopyWith(jobs, source);
    EXPECT_TRUE(result.bytes == alone.bytes) << jobs;
    EXPECT_EQ(result.account.bytes, alone.account.bytes) << jobs;
    EXPECT_EQ(result.account.attachments, alone.account.attachments) << jobs;
  }
}

TEST_P(JobsTest, NorDoesWhatIsSaidOfAStoreThatIsDamaged) {
  Bytes source = Forge();
  for (std::size_t at = 200'000; at + 100 < source.size(); at += 150'000) {
    std::fill_n(source.begin() + static_cast<std::ptrdiff_t>(at), 100, std::byte{0xA5});
  }
  const Result alone = CopyWith(1, source);
  ASSERT_GT(Losses(alone.account).size(), 3U);
  for (const unsigned jobs : kJobs) {
    const Result result = CopyWith(jobs, source);
    EXPECT_TRUE(result.bytes == alone.bytes) << jobs;
    EXPECT_EQ(Losses(result.account), Losses(alone.account)) << jobs;
  }
}

TEST_P(JobsTest, NorDoesWhatIsThereAfterAStop) {
  const Bytes source = Forge();
  std::optional<Bytes> alone;
  for (const unsigned jobs : kJobs) {
    std::uint64_t items = 0;
    listener_.onEvent = [&](const engine::Event& event) {
      const auto* copied = std::get_if<engine::ItemsCopied>(&event);
      if (copied == nullptr || copied->items < 33 || items != 0) return;
      items = copied->items;
      run_.control.RequestStop();
    };
    const Result result = CopyWith(jobs, source);
    listener_.onEvent = nullptr;
    run_.control.Reset();
    EXPECT_TRUE(result.isStopped) << jobs;
    EXPECT_LT(items, 40U);
    EXPECT_EQ(result.account.Totals().whole, items + 1) << jobs << ": the one under work was finished";
    if (!alone) alone = result.bytes;
    EXPECT_TRUE(result.bytes == *alone) << jobs;
  }
}

TEST_P(JobsTest, NorDoesWhatADiskThatIsFullStillTakes) {
  const Bytes source = Forge();
  const Result whole = CopyWith(1, source);
  for (const std::uint64_t size : {whole.bytes.size() / 3, whole.bytes.size() * 2 / 3}) {
    std::optional<Bytes> alone;
    for (const unsigned jobs : kJobs) {
      const Result result = CopyWith(jobs, source, std::make_shared<test::SmallDisk>(size));
      EXPECT_TRUE(result.failed) << jobs;
      EXPECT_GT(result.account.Totals().whole, 5U);
      if (!alone) alone = result.bytes;
      EXPECT_TRUE(result.bytes == *alone) << jobs << " jobs, " << size << " bytes";
    }
  }
}

TEST_P(JobsTest, NorDoesTheLastCommitOfADiskThatBreaks) {
  const Bytes source = Forge();
  for (const std::uint64_t size : {500'000u, 2'000'000u}) {
    std::optional<std::size_t> alone;
    for (const unsigned jobs : kJobs) {
      const Result result = CopyWith(jobs, source, std::make_shared<test::FailingFile>(size));
      EXPECT_TRUE(result.failed) << jobs;
      const StoreObjects left(result.bytes);
      if (!alone) alone = left.Messages().size();
      EXPECT_EQ(left.Messages().size(), *alone) << jobs;
    }
  }
}

}  // namespace
}  // namespace velmora::complete
