// Whole stores, from end to end.
#include <algorithm>

#include "complete/complete_fixture.h"
#include "forge/demo_store.h"

namespace velmora::complete {
namespace {

class CopyStoreTest : public CompleteTest {
 protected:
  /// A store with something of everything.
  static Bytes Forge() {
    forge::Mailbox box = NewBox();
    const forge::Nid inbox = box.AddFolder({.name = u"Inbox", .containerClass = u"IPF.Note"});
    const forge::Nid contacts = box.AddFolder({.name = u"Contacts", .containerClass = u"IPF.Contact"});
    forge::Message full = Mail(u"Re: Full", {forge::Named(forge::PropertySet::kOwn, u"Own", Texts(0, {u"a", u"b"})),
                                             Binary(0x6901, Noise(100'000, 1))});
    full.subjectPrefix = 4;
    full.html = ToBytes("<p>Html</p>");
    full.recipients = {{u"To", u"to@example.org"},
                       {.name = u"Cc",
                        .address = u"cc@example.org",
                        .kind = forge::RecipientKind::kCc,
                        .properties = {Int32(0x5FFF, 3)}}};
    full.attachments = {{.name = u"file.bin", .data = Noise(70'000, 2)},
                        {.displayName = u"Inner", .embedded = std::make_shared<const forge::Message>(Mail(u"Inner"))},
                        {.name = u"object", .object = forge::OleObject{Noise(4000, 3), {Noise(50, 4)}}}};
    box.AddMessage(inbox, full);
    forge::Message contact = Mail(u"Ana");
    contact.messageClass = u"IPM.Contact";
    const forge::Nid ana = box.AddMessage(contacts, contact).nid;
    forge::Message list =
        Mail(u"List", {forge::Named(forge::PropertySet::kAddress, 0x8055, Binaries(0, {forge::MemberEntryId(ana)}))});
    list.messageClass = u"IPM.DistList";
    box.AddMessage(contacts, list);
    box.AddMessage(forge::kDeletedItems, Mail(u"Deleted"));
    for (int i = 0; i < 600; ++i) box.AddMessage(inbox, Mail(u"One of many"));
    return box.Finish().bytes;
  }
};
INSTANTIATE_TEST_SUITE_P(Formats, CopyStoreTest, AllFormats(), NameOf);

TEST_P(CopyStoreTest, AStoreOfSomethingOfEverythingComesAcross) {
  Copy(Forge());
  EXPECT_EQ(target_->Messages(), source_->Messages());
  EXPECT_TRUE(account_.IsWhole());
  EXPECT_EQ(account_.Totals().whole, 604U);
  ExpectSound();
}

TEST_P(CopyStoreTest, AnEmptyStoreBecomesAnEmptyStore) {
  forge::Mailbox box = NewBox();
  Copy(box);
  EXPECT_TRUE(target_->Messages().empty());
  EXPECT_EQ(target_->Folders().size(), 4U) << "the top and in it the deleted items, and the two of searches";
  EXPECT_TRUE(account_.IsWhole());
  EXPECT_EQ(account_.Totals().live, 0U);
  ExpectSound();
}

TEST_P(CopyStoreTest, AStoreWithoutTablesComesAcrossByTheParentsOfItsNodes) {
  forge::Mailbox box = NewBox({});
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  box.AddMessage(inbox, Mail(u"No row names it"));
  Copy(box);
  EXPECT_EQ(target_->FolderOf(NodeOf(inbox)).messages.size(), 1U);
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(CopyStoreTest, AStoreOfNothingButMessagesComesAcross) {
  forge::Mailbox box = NewBox({.base = false, .nameMap = false});
  const forge::Nid message = box.AddMessage(0x8082, Mail(u"Alone")).nid;
  Copy(box);
  ASSERT_TRUE(target_->Has(NodeOf(message)));
  ExpectSound();
}

TEST_P(CopyStoreTest, EachEncodingComesAcross) {
  for (const forge::Encoding encoding : {forge::Encoding::kNone, forge::Encoding::kPermute, forge::Encoding::kCyclic}) {
    forge::Mailbox box({.format = GetParam(), .encoding = encoding}, {.tables = true});
    box.AddMessage(box.AddFolder({.name = u"Inbox"}), Mail(u"Encoded", {Binary(0x6901, Noise(30'000, 1))}));
    Copy(box);
    ExpectAllWhole();
  }
}

TEST_P(CopyStoreTest, TheSameSourceGivesTheSameBytes) {
  const Bytes source = Forge();
  Copy(source);
  const Bytes first = target_->File();
  Copy(source);
  EXPECT_TRUE(first == target_->File());
}

TEST_P(CopyStoreTest, ACopyOfACopyHasTheSameBytes) {
  Copy(Forge());
  const Bytes first = target_->File();
  Copy(Bytes(first));
  EXPECT_TRUE(account_.IsWhole());
  EXPECT_EQ(first.size(), target_->File().size());
  EXPECT_TRUE(first == target_->File()) << "first at "
                                        << std::ranges::mismatch(first, target_->File()).in1 - first.begin();
}

TEST_P(CopyStoreTest, ItPassesAPausePointAheadOfEachMessageAndTellsItsProgress) {
  std::vector<std::uint32_t> said;
  listener_.onEvent = [&](const engine::Event& event) {
    const auto* progress = std::get_if<engine::Progress>(&event);
    if (progress != nullptr && progress->phase == engine::Phase::kLater) said.push_back(progress->percentage);
  };
  Copy(Forge());
  EXPECT_TRUE(std::ranges::is_sorted(said));
  EXPECT_GE(said.size(), 25U) << "one of the messages is a fifth of all, or more";
  ASSERT_FALSE(said.empty());
  EXPECT_EQ(said.back(), 100U);
}

TEST_P(CopyStoreTest, TheShareThatItTellsIsThatOfTheBytes) {
  std::map<std::uint64_t, std::uint32_t> shareAt;  // by items
  std::uint64_t items = 0;
  listener_.onEvent = [&](const engine::Event& event) {
    if (const auto* copied = std::get_if<engine::ItemsCopied>(&event)) items = copied->items;
    const auto* progress = std::get_if<engine::Progress>(&event);
    if (progress != nullptr && progress->phase == engine::Phase::kLater) shareAt.insert({items, progress->percentage});
  };
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  for (std::uint32_t i = 0; i < 20; ++i) {
    forge::Message message = Mail(u"Large or small");
    if (i == 0 || i == 19) message.attachments = {{.name = u"file.bin", .data = Noise(1'000'000, i)}};
    box.AddMessage(inbox, message);
  }
  Copy(box);
  ASSERT_TRUE(shareAt.contains(1));
  EXPECT_NEAR(shareAt.at(1), 49, 4);
  EXPECT_NEAR(std::prev(shareAt.upper_bound(19))->second, 50, 4) << "eighteen small ones are hardly anything";
  EXPECT_EQ(shareAt.at(20), 100U);
}

TEST_P(CopyStoreTest, AStopLeavesAnAccountOfWhatWasDone) {
  listener_.onEvent = [&](const engine::Event& event) {
    const auto* progress = std::get_if<engine::Progress>(&event);
    if (progress != nullptr && progress->phase == engine::Phase::kLater && progress->percentage >= 50)
      run_.control.RequestStop();
  };
  EXPECT_THROW(Copy(Forge()), engine::RunStopped);
  EXPECT_GE(account_.Totals().whole, 1U);
  EXPECT_LT(account_.Totals().whole, 604U);
}

TEST_P(CopyStoreTest, ADiskThatIsFullIsAFailureOfTheNewStore) {
  class FullDisk : public platform::MemoryFile {
   public:
    Result<void> Resize(std::uint64_t size) override {
      if (size > 2'000'000) return Refuse();
      return MemoryFile::Resize(size);
    }
    Result<void> WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
      if (offset + bytes.size() > 2'000'000) return Refuse();
      return MemoryFile::WriteAt(offset, bytes);
    }

   private:
    static Result<void> Refuse() { return tl::unexpected(Failure{FailureKind::kFull, "file", 0, "no room"}); }
  };
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  for (std::uint32_t i = 0; i < 40; ++i) {
    forge::Message message = Mail(u"With a file");
    message.attachments = {{.name = u"file.bin", .data = Noise(100'000, i)}};
    box.AddMessage(inbox, message);
  }
  const auto scanned = Scan(box.Finish().bytes);
  const auto target =
      messaging::StoreWriter::Create(std::make_unique<FullDisk>(), u"Copy", {.sourceDateEpoch = kEpoch});
  EXPECT_THROW(CopyStore(*scanned, *target, {}, run_, account_), output::OutputFailure);
  EXPECT_GT(account_.Totals().whole, 5U);
  EXPECT_LT(account_.Totals().whole, 40U);
}

class CopyDemoStoreTest : public CompleteTest {};

TEST_F(CopyDemoStoreTest, EveryItemOfTheDemoStoreComesAcross) {
  Copy(forge::ForgeDemoStore(forge::DemoState::kSound).bytes);
  for (const auto& [name, count] : forge::DemoItems()) {
    EXPECT_EQ(account_.items[std::u16string(name.begin(), name.end())].whole, static_cast<std::uint64_t>(count))
        << name;
  }
  EXPECT_EQ(account_.Totals().whole, account_.Totals().live);
  ExpectSound();
}

}  // namespace
}  // namespace velmora::complete
