// The comparison of a new store with its source.
#include "complete/complete_fixture.h"

namespace velmora::complete {
namespace {

class CompareTest : public CompleteTest {
 protected:
  /// The new store that was copied last, compared with what it came from.
  void Compare(const CopyOptions& options = {}) {
    const auto scanned = Scan(source_->File());
    CompareStores(*scanned, target_->Source(), options, run_, account_);
  }
  /// A store of one of each; `change` is done to the mail.
  Bytes Forge(const std::function<void(forge::Message&)>& change = {}) {
    forge::Mailbox box = NewBox();
    const forge::Nid inbox = box.AddFolder({.name = u"Inbox", .properties = {forge::Text(0x3004, u"Comment")}});
    forge::Message message = Mail(u"Compared", {Int32(0x6901, 1), Binary(0x6902, Noise(20'000, 1)),
                                                forge::Named(forge::PropertySet::kOwn, 5, Int32(0, 2))});
    message.recipients = {{u"To", u"to@example.org"}};
    message.attachments = {
        {.name = u"file.bin", .data = Noise(30'000, 2)},
        {.displayName = u"Inner", .embedded = std::make_shared<const forge::Message>(Mail(u"Inner"))},
        {.name = u"object", .object = forge::OleObject{Noise(4000, 3), {Noise(50, 4)}}}};
    if (change) change(message);
    nid_ = box.AddMessage(inbox, message).nid;
    return box.Finish().bytes;
  }
  /// Copies the store, and compares what came of it with a source that is another by `change`.
  void CompareWith(const std::function<void(forge::Message&)>& change) {
    Copy(Forge());
    source_ = std::make_unique<StoreObjects>(Forge(change));
    Compare();
  }
  void ExpectOneDifference(const std::string& what) const {
    ASSERT_EQ(account_.differences.size(), 1U);
    EXPECT_EQ(account_.differences[0].source, NodeOf(nid_));
    EXPECT_EQ(account_.differences[0].target, NodeOf(nid_));
    EXPECT_THAT(account_.differences[0].what, testing::HasSubstr(what));
  }
  forge::Nid nid_ = 0;
};
INSTANTIATE_TEST_SUITE_P(Formats, CompareTest, AllFormats(), NameOf);

TEST_P(CompareTest, ACopyIsWhatItsSourceIs) {
  Copy(Forge());
  Compare();
  EXPECT_TRUE(account_.isVerified);
  EXPECT_GE(account_.objectsCompared, 2U) << "the mail and its folder at least";
  for (const Difference& difference : account_.differences) ADD_FAILURE() << difference.what;
  EXPECT_EQ(account_.differencesNotListed, 0U);
}

TEST_P(CompareTest, WithHiddenMessagesTheyAreComparedToo) {
  forge::Mailbox box = NewBox();
  forge::Message hidden = Mail(u"Hidden");
  hidden.flags = 0x41;
  box.AddMessage(box.AddFolder({.name = u"Inbox"}), hidden, 0x100028);
  Copy(box, {.hidden = true});
  Compare({.hidden = true});
  EXPECT_TRUE(account_.isVerified);
  EXPECT_TRUE(account_.differences.empty());
  Copy(source_->File());
  Compare({.hidden = true});
  EXPECT_FALSE(account_.differences.empty()) << "it is not there, and was asked for";
}

TEST_P(CompareTest, APropertyThatIsAnotherIsNamed) {
  CompareWith([](forge::Message& message) { message.properties[0] = Int32(0x6901, 3); });
  ExpectOneDifference("6901");
}

TEST_P(CompareTest, APropertyThatIsMissingIsNamed) {
  CompareWith([](forge::Message& message) { message.properties.push_back(Int32(0x6910, 3)); });
  ExpectOneDifference("6910");
}

TEST_P(CompareTest, APropertyThatIsThereOnTopIsNamed) {
  CompareWith([](forge::Message& message) { message.properties.erase(message.properties.begin()); });
  ExpectOneDifference("6901");
}

TEST_P(CompareTest, ALongValueThatDiffersInItsMiddleIsNamed) {
  CompareWith([](forge::Message& message) { message.properties[1].data[10'000] ^= std::byte{1}; });
  ExpectOneDifference("6902");
}

TEST_P(CompareTest, ARecipientThatIsAnotherIsNamed) {
  CompareWith([](forge::Message& message) { message.recipients[0].properties = {Int32(0x3900, 6)}; });
  ExpectOneDifference("recipient");
}

TEST_P(CompareTest, AFileThatIsAnotherIsNamed) {
  CompareWith([](forge::Message& message) { message.attachments[0].data[29'999] ^= std::byte{1}; });
  ExpectOneDifference("37010102");
}

TEST_P(CompareTest, AnObjectWhosePartIsAnotherIsNamed) {
  CompareWith([](forge::Message& message) { message.attachments[2].object->parts[0][49] ^= std::byte{1}; });
  ExpectOneDifference("attachment");
}

TEST_P(CompareTest, AnEmbeddedMessageThatIsAnotherIsNamed) {
  CompareWith([](forge::Message& message) {
    message.attachments[1].embedded = std::make_shared<const forge::Message>(Mail(u"Inner", {Int32(0x6901, 9)}));
  });
  ExpectOneDifference("6901");
}

TEST_P(CompareTest, AnEmbeddedMessageThatNoPropertyNamesIsComparedToo) {
  const auto withInner = [](std::int32_t value) {
    return [value](forge::Message& message) {
      const forge::Message inner = Mail(u"Inner", {Int32(0x6901, value)});
      message.attachments = {{.embedded = std::make_shared<const forge::Message>(inner), .bare = true}};
    };
  };
  Copy(Forge(withInner(1)));
  Compare();
  for (const Difference& difference : account_.differences) ADD_FAILURE() << difference.what;
  source_ = std::make_unique<StoreObjects>(Forge(withInner(2)));
  Compare();
  ExpectOneDifference("6901");
}

TEST_P(CompareTest, AMessageThatIsMissingIsNamed) {
  Copy(Forge());
  forge::Mailbox box = NewBox();
  box.AddMessage(box.AddFolder({.name = u"Inbox", .properties = {forge::Text(0x3004, u"Comment")}}), Mail(u"Other"),
                 0x212344);
  source_ = std::make_unique<StoreObjects>(box.Finish().bytes);
  Compare();
  bool isNamed = false;
  for (const Difference& difference : account_.differences) isNamed |= difference.source == NodeOf(0x212344);
  EXPECT_TRUE(isNamed);
}

TEST_P(CompareTest, AReferenceToAMessageThatIsLostIsNoDifference) {
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  box.AddMessage(inbox, Mail(u"Refers", {Binary(0x6903, forge::EntryId(0x300004))}));
  box.store().AddNode(0x300004, 0x70000, 0, inbox);  // no such block
  Copy(box);
  ASSERT_NE(LossOf(0x300004), nullptr);
  Compare();
  for (const Difference& difference : account_.differences) ADD_FAILURE() << difference.what;
  EXPECT_TRUE(account_.isVerified);
}

TEST_P(CompareTest, AFolderThatWasLeftBehindIsNotTakenForOneThatTheNewStoreMade) {
  forge::Mailbox box = NewBox();
  const forge::Nid outside = box.AddFolder({.name = u"Outside", .parent = forge::kRootFolder});
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox", .nid = 0x122 + 0x20 * 3});  // gets a new id
  box.AddMessage(inbox, Mail(u"Refers", {Binary(0x6903, forge::EntryId(outside))}));
  Copy(box);
  Compare();
  for (const Difference& difference : account_.differences) ADD_FAILURE() << difference.what;
}

}  // namespace
}  // namespace velmora::complete
