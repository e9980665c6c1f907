#include <gtest/gtest.h>

#include <array>

#include "engine/evidence/lost_nodes_fixture.h"
#include "engine/run_fixture.h"
#include "forge/table.h"
#include "store/format/store_nodes.h"

namespace velmora::engine {
namespace {

using forge::Mailbox;
using forge::Message;

constexpr forge::Nid kUnknownNode = 0x200024;  // the first that a forged mailbox gives a message

forge::FileTime Noon(unsigned day) { return forge::TimeOf(2019, 3, day, 12); }

Message Letter(const std::u16string& subject, unsigned day) {
  return {.subject = subject,
          .plain = u"Body of " + subject,
          .senderName = u"Ada",
          .senderAddress = u"ada@example.org",
          .delivered = Noon(day)};
}

Message LetterTo(const std::u16string& subject, unsigned day) {
  Message message = Letter(subject, day);
  message.recipients = {{u"Grace", u"grace@example.org"}};
  return message;
}

std::vector<Nid> NidsOf(const LostNodes& lost) {
  std::vector<Nid> nids;
  for (const NodeClaim& claim : lost.nodes) nids.push_back(claim.node.nid);
  return nids;
}

std::size_t CountOf(const LostNodes& lost, Standing standing) {
  return static_cast<std::size_t>(
      std::ranges::count(lost.nodes, standing, [](const NodeClaim& claim) { return claim.standing; }));
}

const FolderRow* RowOf(const LostNodes& lost, forge::Nid nid) {
  const auto row = std::ranges::find(lost.folderRows, Nid{nid}, &FolderRow::nid);
  return row == lost.folderRows.end() ? nullptr : &*row;
}

class LostNodesTest : public testing::TestWithParam<forge::Format> {
 protected:
  LostNodesTest()
      : box_({.format = GetParam(), .compressed = GetParam() == forge::Format::kUnicode4k}, {.tables = true}) {}

  forge::Store& Store() { return box_.store(); }

  /// A version of a message, or a deleted one: blocks that no node names.
  ndb::NodeTrees WithoutNode(const Message& message) {
    const forge::WrittenMessage written = forge::WriteMessage(Store(), box_.names(), message);
    return {Bid{written.bidData}, Bid{written.bidSub}};
  }

  Mailbox box_;
};

INSTANTIATE_TEST_SUITE_P(Generations, LostNodesTest,
                         testing::Values(forge::Format::kAnsi, forge::Format::kUnicode, forge::Format::kUnicode4k),
                         FormatName);

TEST_P(LostNodesTest, NothingIsLookedForWhereTheNodesAreExactAndDeletedOnesAreNotWanted) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto letter = box_.AddMessage(inbox, Letter(u"One", 1));
  WreckedStore store(box_.Finish());
  store.Judged().nodesAreExact = true;
  store.Lose(letter.nid);
  EXPECT_TRUE(store.Find().nodes.empty());
  EXPECT_EQ(store.Find(true).nodes.size(), 1u);
}

TEST_P(LostNodesTest, AMessageOfALostPageIsFoundByItsRowWithItsIdAndItsFolder) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto first = box_.AddMessage(inbox, LetterTo(u"First", 1));
  const auto second = box_.AddMessage(inbox, LetterTo(u"Second", 2));
  WreckedStore store(box_.Finish());
  store.Lose(first.nid);
  store.Lose(second.nid);
  const LostNodes lost = store.Find();
  EXPECT_EQ(NidsOf(lost), (std::vector{Nid{first.nid}, Nid{second.nid}}));
  for (const auto& letter : {first, second}) {
    EXPECT_EQ(ClaimTo(lost, letter.nid).node, store.Entry(letter.nid));
    EXPECT_EQ(ClaimTo(lost, letter.nid).standing, Standing::kFound);
  }
  EXPECT_TRUE(lost.folderRows.empty());
  EXPECT_TRUE(lost.messageRows.empty());
}

TEST_P(LostNodesTest, WithoutAnyNodeEveryMessageAndFolderIsInItsPlace) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto work = box_.AddFolder({.name = u"Work", .containerClass = u"IPF.Note"});
  const auto deep = box_.AddFolder({.name = u"Deep", .parent = work});
  std::vector<forge::Nid> letters;
  for (unsigned day = 1; day <= 3; ++day) letters.push_back(box_.AddMessage(inbox, LetterTo(u"In", day)).nid);
  for (unsigned day = 4; day <= 5; ++day) letters.push_back(box_.AddMessage(work, Letter(u"At work", day)).nid);
  letters.push_back(box_.AddMessage(deep, WithKeys(Letter(u"Deep", 6), 0x9003F)).nid);
  WreckedStore store(box_.Finish());
  store.LoseAllNodes();
  const LostNodes lost = store.Find();
  for (const forge::Nid letter : letters) EXPECT_EQ(ClaimTo(lost, letter).node, store.Entry(letter)) << letter;
  EXPECT_TRUE(lost.messageRows.empty());
  EXPECT_EQ(RowOf(lost, forge::kTopFolder)->nidParent, Nid{forge::kRootFolder});
  EXPECT_EQ(RowOf(lost, inbox)->nidParent, Nid{forge::kTopFolder});
  ASSERT_NE(RowOf(lost, deep), nullptr);
  EXPECT_EQ(RowOf(lost, deep)->nidParent, Nid{work});
  EXPECT_EQ(RowOf(lost, forge::kRootFolder)->nidParent, Nid{forge::kRootFolder});
  EXPECT_EQ(ClaimTo(lost, forge::kStoreNode).node, store.Entry(forge::kStoreNode));
  EXPECT_EQ(ClaimTo(lost, forge::kNameMapNode).node, store.Entry(forge::kNameMapNode));
  EXPECT_EQ(ClaimTo(lost, deep).node, store.Entry(deep)) << "with its own properties";
}

TEST_P(LostNodesTest, AMessageWhosePropertiesFillSeveralBlocksIsFound) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  Message letter = LetterTo(u"Long", 1);
  for (std::uint16_t id = 0x6800; id < 0x6850; ++id) {
    letter.properties.push_back(forge::Text(id, std::u16string(1000, u'x'), forge::Place::kHeap));
  }
  const auto added = box_.AddMessage(inbox, letter);
  WreckedStore store(box_.Finish());
  ASSERT_TRUE(IsInternal(store.Entry(added.nid).trees.bidData)) << "a list of blocks";
  store.LoseAllNodes();
  EXPECT_EQ(ClaimTo(store.Find(), added.nid).node, store.Entry(added.nid));
}

TEST_P(LostNodesTest, AFolderKnownByItsRowAloneKeepsItsNameAndItsClass) {
  const auto work = box_.AddFolder({.name = u"Work \u00E9", .containerClass = u"IPF.Note"});
  WreckedStore store(box_.Finish());
  const Bid properties = store.Entry(work).trees.bidData;
  store.Lose(work);
  store.LoseBlock(properties);
  const LostNodes lost = store.Find();
  ASSERT_EQ(lost.folderRows.size(), 1u);
  EXPECT_EQ(lost.folderRows[0].nid, Nid{work});
  EXPECT_EQ(lost.folderRows[0].nidParent, Nid{forge::kTopFolder});
  EXPECT_EQ(lost.folderRows[0].name, u"Work \u00E9");
  EXPECT_EQ(lost.folderRows[0].containerClass, u"IPF.Note");
  EXPECT_TRUE(lost.nodes.empty());
}

TEST_P(LostNodesTest, AMessageIsFoundWithTheListThatHoldsItsKeys) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  std::vector<Mailbox::Added> letters;
  for (forge::Nid i = 0; i < 5; ++i) {
    letters.push_back(box_.AddMessage(inbox, WithKeys(Letter(u"Same", 1), 0x9003F + 0x100 * i)));
  }
  WreckedStore store(box_.Finish());
  for (const auto& letter : letters) store.Lose(letter.nid);
  const LostNodes lost = store.Find();
  std::map<Bid, Bid> listOf;
  for (const NodeClaim& claim : lost.nodes) listOf[claim.node.trees.bidData] = claim.node.trees.bidSub;
  ASSERT_EQ(listOf.size(), 5u);
  for (const auto& letter : letters) EXPECT_EQ(listOf.at(Bid{letter.bidData}), Bid{letter.bidSub});
}

TEST_P(LostNodesTest, OfTwoListsWithTheKeysOfAMessageTheOneThatMakesUpItsSizeCounts) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto letter = box_.AddMessage(inbox, WithKeys(Letter(u"Kept", 1), 0x9003F));
  Message longer = WithKeys(Letter(u"Kept", 1), 0x9003F);
  longer.plain = u"Another and longer text of the same message, written later on";
  const ndb::NodeTrees later = WithoutNode(longer);
  WreckedStore store(box_.Finish());
  store.LoseBlock(later.bidData);
  store.Lose(letter.nid);
  EXPECT_EQ(ClaimTo(store.Find(), letter.nid).node.trees.bidSub, Bid{letter.bidSub});
  store.SetStatus(Bid{letter.bidSub}, BlockStatus::kFreed);
  EXPECT_EQ(ClaimTo(store.Find(), letter.nid).node.trees.bidSub, later.bidSub) << "a freed list is none of a live one";
}

TEST_P(LostNodesTest, AMessageWithoutKeysIsFoundWithTheListThatFitsItsRecipientsAndItsSize) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  Message many = LetterTo(u"Many", 1);
  many.recipients.push_back({u"Second", u"second@example.org"});
  Message attached = Letter(u"Attached", 2);
  attached.attachments = {{.name = u"a.txt", .data = forge::Noise(100, 1)}};
  const std::array letters = {box_.AddMessage(inbox, LetterTo(u"One", 3)), box_.AddMessage(inbox, many),
                              box_.AddMessage(inbox, attached), box_.AddMessage(inbox, Letter(u"None", 4))};
  WreckedStore store(box_.Finish());
  for (const auto& letter : letters) store.Lose(letter.nid);
  const LostNodes lost = store.Find();
  for (const auto& letter : letters) EXPECT_EQ(ClaimTo(lost, letter.nid).node, store.Entry(letter.nid)) << letter.nid;
}

TEST_P(LostNodesTest, MessagesThatAreAlikeEachGetTheirOwnList) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  std::vector<Mailbox::Added> letters;
  for (unsigned day = 1; day <= 9; ++day) letters.push_back(box_.AddMessage(inbox, LetterTo(u"Alike", day)));
  WreckedStore store(box_.Finish());
  for (const auto& letter : letters) store.Lose(letter.nid);
  const LostNodes lost = store.Find();
  for (const auto& letter : letters) EXPECT_EQ(ClaimTo(lost, letter.nid).node, store.Entry(letter.nid));
}

TEST_P(LostNodesTest, OfTwoListsAsNearTheOneCountsOnWhoseSideTheStoreWritesThem) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  std::vector<Mailbox::Added> letters;
  for (unsigned day = 1; day <= 20; ++day) letters.push_back(box_.AddMessage(inbox, LetterTo(u"Alike", day)));
  WreckedStore store(box_.Finish());
  store.Lose(letters[10].nid);
  store.LoseBlock(Bid{letters[10].bidData});
  store.Lose(letters[11].nid);
  EXPECT_EQ(ClaimTo(store.Find(), letters[11].nid).node, store.Entry(letters[11].nid));
}

TEST_P(LostNodesTest, OfTwoVersionsTheOneWhoseTableIsNewerCounts) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto kept = box_.AddMessage(inbox, Letter(u"Kept", 1));
  // The table as it was while there was one message more.
  const forge::Nid gone = 0x300024;
  forge::PropertyList cells =
      forge::CellsOf(forge::ContentsColumns(), forge::MessageProperties(box_.names(), Letter(u"Gone", 2)));
  forge::PropertyList keptCells =
      forge::CellsOf(forge::ContentsColumns(), forge::MessageProperties(box_.names(), Letter(u"Kept", 1)));
  const forge::Context old =
      forge::FormTable(Store(), forge::ContentsColumns(), {{kept.nid, keptCells}, {gone, cells}});
  const forge::Bid oldTable = Store().AddDataBlocks(old.blocks);
  WreckedStore store(box_.Finish());
  store.LoseBlockTree();
  store.LoseAllNodes();
  EXPECT_TRUE(store.Found().Find(Bid{oldTable}));
  const LostNodes lost = store.Find();
  EXPECT_EQ(ClaimTo(lost, kept.nid).node, store.Entry(kept.nid));
  EXPECT_TRUE(lost.messageRows.empty()) << "the older table had a row more";
}

TEST_P(LostNodesTest, ARowOfWhichNothingElseIsLeftTellsOfItsMessage) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto letter = box_.AddMessage(inbox, Letter(u"Lost \u00FC", 1));
  WreckedStore store(box_.Finish());
  store.Lose(letter.nid);
  store.LoseBlock(Bid{letter.bidData});
  const LostNodes lost = store.Find();
  ASSERT_EQ(lost.messageRows.size(), 1u);
  const MessageRow& row = lost.messageRows[0];
  EXPECT_EQ(row.nid, Nid{letter.nid});
  EXPECT_EQ(row.nidParent, Nid{inbox});
  EXPECT_EQ(row.subject, u"Lost \u00FC");
  EXPECT_EQ(row.sender, u"Ada");
  EXPECT_EQ(row.messageClass, u"IPM.Note");
  EXPECT_EQ(row.delivered, Noon(1));
  EXPECT_GT(row.size, 100u);
  EXPECT_TRUE(lost.nodes.empty());
}

TEST_P(LostNodesTest, AFreedMessageIsNoneThatATableLists) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto letter = box_.AddMessage(inbox, Letter(u"Gone", 1));
  WreckedStore store(box_.Finish());
  store.Lose(letter.nid);
  store.SetStatus(Bid{letter.bidData}, BlockStatus::kFreed);
  const LostNodes lost = store.Find();
  EXPECT_TRUE(lost.nodes.empty());
  EXPECT_EQ(lost.messageRows.size(), 1u);
}

TEST_P(LostNodesTest, ALiveMessageComesAheadOfAnEqualOneOfWhichThatIsNotKnown) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto letter = box_.AddMessage(inbox, Letter(u"Twice", 1));
  const ndb::NodeTrees other = WithoutNode(Letter(u"Twice", 1));
  WreckedStore store(box_.Finish());
  store.Lose(letter.nid);
  store.SetStatus(other.bidData, BlockStatus::kUnknown);
  EXPECT_EQ(ClaimTo(store.Find(), letter.nid).node.trees.bidData, Bid{letter.bidData});
  store.LoseBlockTree();
  EXPECT_EQ(ClaimTo(store.Find(), letter.nid).node.trees.bidData, other.bidData) << "else the newest";
}

TEST_P(LostNodesTest, CopiesShareTheBlocksOfWhatTheyWereMadeFrom) {
  const forge::Nid letter = 0x300024;
  const forge::Nid copy = 0x300044;
  const forge::Nid archive = 0x9002;
  const forge::WrittenMessage written = forge::WriteMessage(Store(), box_.names(), LetterTo(u"Copied", 1));
  Store().AddNode(letter, written.bidData, written.bidSub, forge::kDeletedItems);
  forge::AddContextNode(Store(), archive, forge::kTopFolder, {forge::Text(0x3001, u"Archive")});
  forge::AddTableNode(Store(), 0x900E, forge::ContentsColumns(),
                      {{copy, forge::CellsOf(forge::ContentsColumns(), written.properties)}});
  WreckedStore store(box_.Finish());
  const LostNodes lost = store.Find();
  EXPECT_EQ(NidsOf(lost), std::vector{Nid{copy}});
  EXPECT_EQ(ClaimTo(lost, copy).node, (ndb::NodeEntry{Nid{copy}, store.Entry(letter).trees, Nid{archive}}));
}

TEST_P(LostNodesTest, EqualMessagesAreEachFoundOnce) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  std::set<Bid> blocks;
  for (int i = 0; i < 200; ++i) blocks.insert(Bid{box_.AddMessage(inbox, Letter(u"Same", 1)).bidData});
  WreckedStore store(box_.Finish());
  store.LoseBlockTree();
  store.Lose([](const ndb::NodeEntry& node) { return TypeOf(node.nid) == NidType::kNormalMessage; });
  const LostNodes lost = store.Find();
  EXPECT_EQ(lost.nodes.size(), 200u);
  EXPECT_TRUE(lost.messageRows.empty());
  std::set<Bid> found;
  for (const NodeClaim& claim : lost.nodes) {
    found.insert(claim.node.trees.bidData);
    EXPECT_EQ(claim.node.nidParent, Nid{inbox});
  }
  EXPECT_EQ(found, blocks);
}

TEST_P(LostNodesTest, AMessageInNoTableIsFoundUnderAnIdAboveAllOthers) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto letter = box_.AddMessage(inbox, Letter(u"Listed", 1));
  const ndb::NodeTrees stray = WithoutNode(LetterTo(u"Stray", 2));
  WreckedStore store(box_.Finish());
  LostNodes lost = store.Find();
  ASSERT_EQ(lost.nodes.size(), 1u);
  EXPECT_EQ(lost.nodes[0].node, (ndb::NodeEntry{Nid{letter.nid + 0x20}, stray, kNoNid}));
  EXPECT_EQ(lost.nodes[0].standing, Standing::kFound);
  store.Claim({Nid{0xFFFFFFFF}, {}, {}}, Standing::kDeleted);
  lost = store.Find();
  EXPECT_EQ(TypeOf(lost.nodes[0].node.nid), NidType::kNormalMessage);
  EXPECT_EQ(IndexOf(lost.nodes[0].node.nid), kFirstFreeNidIndex - 1 + 5) << "where ids are left";
}

TEST_P(LostNodesTest, WhatIsFreedIsDeletedAndHandedOutOnRequestAlone) {
  const ndb::NodeTrees gone = WithoutNode(LetterTo(u"Gone", 2));
  WreckedStore store(box_.Finish());
  store.SetStatus(gone.bidData, BlockStatus::kFreed);
  EXPECT_TRUE(store.Find().nodes.empty());
  const LostNodes lost = store.Find(true);
  ASSERT_EQ(lost.nodes.size(), 1u);
  EXPECT_EQ(lost.nodes[0].standing, Standing::kDeleted);
  EXPECT_EQ(lost.nodes[0].node.trees, gone);
}

TEST_P(LostNodesTest, AnOlderVersionIsNotHandedOutAsDeleted) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const forge::Property key = forge::Binary(0x300B, forge::Noise(16, 7));
  const auto version = [&](unsigned day) {
    Message message = Letter(u"Draft", day);
    message.properties = {key};
    return message;
  };
  const ndb::NodeTrees withoutValues = WithoutNode(version(1));
  box_.AddMessage(inbox, version(2));
  const forge::Property otherKey = forge::Binary(0x300B, forge::Noise(16, 8));
  Message large = WithKeys(Letter(u"Large", 3), 0x9003F);
  large.properties = {otherKey};
  const ndb::NodeTrees withValues = WithoutNode(large);
  box_.AddMessage(inbox, large);
  Message copy = WithKeys(Letter(u"Large", 4), 0xA003F);
  copy.properties = {otherKey};
  const ndb::NodeTrees deletedCopy = WithoutNode(copy);
  WreckedStore store(box_.Finish());
  store.Judged().nodesAreExact = true;
  for (const Bid bid : {withoutValues.bidData, withValues.bidData, deletedCopy.bidData}) {
    store.SetStatus(bid, BlockStatus::kFreed);
  }
  std::map<Bid, Standing> found;
  for (const NodeClaim& claim : store.Find(true).nodes) found[claim.node.trees.bidData] = claim.standing;
  EXPECT_EQ(found, (std::map<Bid, Standing>{{withoutValues.bidData, Standing::kOlder},
                                            {withValues.bidData, Standing::kOlder},
                                            {deletedCopy.bidData, Standing::kDeleted}}));
}

TEST_P(LostNodesTest, ADeletedMessageComesOnceHoweverManyVersionsThereAre) {
  const forge::Property key = forge::Binary(0x300B, forge::Noise(16, 7));
  std::vector<ndb::NodeTrees> versions;
  for (unsigned day = 1; day <= 4; ++day) {
    Message message = Letter(u"Draft", day);
    message.properties = {key};
    versions.push_back(WithoutNode(message));
  }
  WreckedStore store(box_.Finish());
  store.Judged().nodesAreExact = true;
  const LostNodes lost = store.Find(true);
  EXPECT_EQ(CountOf(lost, Standing::kOlder), 3u);
  ASSERT_EQ(CountOf(lost, Standing::kDeleted), 1u);
  const auto deleted = std::ranges::find(lost.nodes, Standing::kDeleted, &NodeClaim::standing);
  EXPECT_EQ(deleted->node.trees, versions.back()) << "the newest";
}

TEST_P(LostNodesTest, WhatAnOldEntryNamesIsNoSecondFindOfTheDeleted) {
  const ndb::NodeTrees gone = WithoutNode(Letter(u"Gone", 2));
  WreckedStore store(box_.Finish());
  store.Judged().nodesAreExact = true;
  store.Claim({Nid{kUnknownNode}, gone, Nid{forge::kDeletedItems}}, Standing::kDeleted);
  EXPECT_TRUE(store.Find(true).nodes.empty());
}

TEST_P(LostNodesTest, AListedMessageThatAnOlderEntryNamesInFullIsFoundByIt) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto letter = box_.AddMessage(inbox, LetterTo(u"Listed", 1));
  WreckedStore store(box_.Finish());
  const ndb::NodeEntry entry = store.Entry(letter.nid);
  store.Lose(letter.nid);
  ndb::NodeEntry old = entry;
  old.nidParent = Nid{forge::kDeletedItems};
  store.Claim(old, Standing::kOlder);
  EXPECT_EQ(ClaimTo(store.Find(), letter.nid).node, entry) << "in the folder of the table";
}

TEST_P(LostNodesTest, ADoubtfulMessageGetsTheFolderWhoseProvenTableListsIt) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto letter = box_.AddMessage(inbox, Letter(u"Moved", 1));
  WreckedStore store(box_.Finish());
  const ndb::NodeEntry entry = store.Entry(letter.nid);
  store.Lose(letter.nid);
  store.Claim(entry, Standing::kDoubtful);
  EXPECT_TRUE(store.Find().nodes.empty());
  ndb::NodeEntry old = entry;
  old.nidParent = Nid{forge::kDeletedItems};
  store.Lose(letter.nid);
  store.Claim(old, Standing::kDoubtful);
  EXPECT_EQ(ClaimTo(store.Find(), letter.nid).node, entry);
  EXPECT_EQ(ClaimTo(store.Find(), letter.nid).standing, Standing::kDoubtful);
}

TEST_P(LostNodesTest, ALongTableIsReadWithTheListThatItsRowsAreIn) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto work = box_.AddFolder({.name = u"Work"});
  std::vector<Mailbox::Added> letters;
  for (int i = 0; i < 300; ++i) {
    letters.push_back(box_.AddMessage(inbox, Letter(u"Letter " + text::Decimal(i), 1)));
    letters.push_back(box_.AddMessage(work, Letter(u"Report " + text::Decimal(i), 2)));
  }
  letters.push_back(box_.AddMessage(work, Letter(u"One more", 3)));
  WreckedStore store(box_.Finish());
  for (const forge::Nid folder : {inbox, work}) {
    EXPECT_NE(store.Entry((folder & ~0x1Fu) | 0x0E).trees.bidSub, kNoBid) << "the table must be long";
  }
  store.LoseAllNodes();
  const LostNodes lost = store.Find();
  for (const auto& letter : letters) ASSERT_EQ(ClaimTo(lost, letter.nid).node, store.Entry(letter.nid)) << letter.nid;
}

TEST_P(LostNodesTest, AmongEqualCountsATableGoesToAFolderForItsKind) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto calendar = box_.AddFolder({.name = u"Calendar", .containerClass = u"IPF.Appointment"});
  Message meeting = Letter(u"Meeting", 2);
  meeting.messageClass = u"IPM.Appointment";
  const auto letter = box_.AddMessage(inbox, Letter(u"Letter", 1));
  const auto appointment = box_.AddMessage(calendar, meeting);
  box_.CloseFolder(calendar);  // so by age its table would be the inbox's
  box_.CloseFolder(inbox);
  WreckedStore store(box_.Finish());
  store.LoseAllNodes();
  const LostNodes lost = store.Find();
  EXPECT_EQ(ClaimTo(lost, letter.nid).node.nidParent, Nid{inbox});
  EXPECT_EQ(ClaimTo(lost, appointment.nid).node.nidParent, Nid{calendar});
}

TEST_P(LostNodesTest, TablesOfFoldersThatAreAlikeGoByAge) {
  std::map<forge::Nid, forge::Nid> folderOf;
  for (unsigned i = 0; i < 30; ++i) {
    const auto folder = box_.AddFolder({.name = u"Archive"});
    for (unsigned n = 0; n < 2; ++n) {
      folderOf[box_.AddMessage(folder, Letter(u"Letter " + text::Decimal(i), n + 1)).nid] = folder;
    }
    box_.CloseFolder(folder);
  }
  WreckedStore store(box_.Finish());
  store.LoseAllNodes();
  const LostNodes lost = store.Find();
  for (const auto& [letter, folder] : folderOf) EXPECT_EQ(ClaimTo(lost, letter).node.nidParent, Nid{folder});
}

TEST_P(LostNodesTest, OldEntriesOfItsMessagesTellWhoseATableIs) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto work = box_.AddFolder({.name = u"Work"});
  const auto letter = box_.AddMessage(inbox, Letter(u"Letter", 1));
  const auto report = box_.AddMessage(work, Letter(u"Report", 2));
  box_.CloseFolder(work);
  box_.CloseFolder(inbox);
  WreckedStore store(box_.Finish());
  store.LoseAllNodes();
  EXPECT_EQ(ClaimTo(store.Find(), letter.nid).node.nidParent, Nid{work}) << "by age";
  for (const auto& [message, folder] : {std::pair(letter, inbox), std::pair(report, work)}) {
    store.Claim({Nid{message.nid}, {Bid{0xFFFF0}, kNoBid}, Nid{folder}}, Standing::kDeleted);
  }
  const LostNodes lost = store.Find();
  EXPECT_EQ(ClaimTo(lost, letter.nid).node, store.Entry(letter.nid));
  EXPECT_EQ(ClaimTo(lost, report.nid).node, store.Entry(report.nid));
}

TEST_P(LostNodesTest, OlderVersionsOfATableTellWhoseItIs) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto work = box_.AddFolder({.name = u"Work"});
  const auto letter = box_.AddMessage(inbox, Letter(u"Letter", 1));
  box_.AddMessage(work, Letter(u"Report", 2));
  const forge::Context old = forge::FormTable(Store(), forge::ContentsColumns(), {{letter.nid, {}}, {0x300024, {}}});
  const Bid oldTable{Store().AddDataBlocks(old.blocks)};
  box_.CloseFolder(work);
  box_.CloseFolder(inbox);
  WreckedStore store(box_.Finish());
  store.LoseAllNodes();
  store.SetStatus(oldTable, BlockStatus::kFreed);
  EXPECT_EQ(ClaimTo(store.Find(), letter.nid).node.nidParent, Nid{work}) << "by age";
  store.Claim({Nid{(inbox & ~0x1Fu) | 0x0E}, {oldTable, kNoBid}, kNoNid}, Standing::kOlder);
  EXPECT_EQ(ClaimTo(store.Find(), letter.nid).node.nidParent, Nid{inbox});
}

TEST_P(LostNodesTest, AFolderWhoseTableIsDoubtfulGetsTheNewerOneThatFitsItAlone) {
  const auto work = box_.AddFolder({.name = u"Work"});
  const forge::Context old = forge::FormTable(Store(), forge::ContentsColumns(), {{0x300024, {}}, {0x300044, {}}});
  const Bid oldTable{Store().AddDataBlocks(old.blocks)};
  const auto first = box_.AddMessage(work, Letter(u"First", 1));
  const auto second = box_.AddMessage(work, Letter(u"Second", 2));
  WreckedStore store(box_.Finish());
  const forge::Nid contents = (work & ~0x1Fu) | 0x0E;
  store.LoseBlockTree();
  for (const forge::Nid nid : {first.nid, second.nid, contents}) store.Lose(nid);
  store.Claim({Nid{contents}, {oldTable, kNoBid}, kNoNid}, Standing::kDoubtful);
  const LostNodes lost = store.Find();
  EXPECT_EQ(ClaimTo(lost, first.nid).node, store.Entry(first.nid));
  EXPECT_EQ(ClaimTo(lost, second.nid).node, store.Entry(second.nid));
}

TEST_P(LostNodesTest, WhatAFolderListedBeforeItWasWrittenAnewIsGone) {
  const auto work = box_.AddFolder({.name = u"Work"});
  const Bid oldFolder{Store().AddDataBlocks(
      forge::FormContext(Store(), {forge::Text(0x3001, u"Work"), forge::Int32(0x3602, 1)}).blocks)};
  const ndb::NodeTrees gone = WithoutNode(LetterTo(u"Gone", 3));
  const forge::Context old = forge::FormTable(Store(), forge::ContentsColumns(), {{0x300024, {}}});
  const Bid oldTable{Store().AddDataBlocks(old.blocks)};
  const auto kept = box_.AddMessage(work, Letter(u"Kept", 1));
  const auto other = box_.AddFolder({.name = u"Other"});
  for (unsigned day = 4; day < 7; ++day) box_.AddMessage(other, Letter(u"Other", day));
  WreckedStore store(box_.Finish());
  const forge::Nid contents = (work & ~0x1Fu) | 0x0E;
  const ndb::NodeEntry folder = store.Entry(work);
  store.LoseBlockTree();
  for (const forge::Nid nid : {kept.nid, contents, work}) store.Lose(nid);
  store.Claim({Nid{contents}, {oldTable, kNoBid}, kNoNid}, Standing::kDoubtful);
  store.Claim({Nid{0x300024}, gone, Nid{work}}, Standing::kDoubtful);
  store.Claim({Nid{work}, {oldFolder, kNoBid}, folder.nidParent}, Standing::kDoubtful);
  EXPECT_EQ(store.Find().gone, std::vector{Nid{0x300024}});
  EXPECT_EQ(ClaimTo(store.Find(), kept.nid).node, store.Entry(kept.nid));

  store.Lose(work);
  store.Claim(folder, Standing::kDoubtful);
  EXPECT_TRUE(store.Find().gone.empty()) << "the folder may be the one of that time";

  store.Lose(work);
  store.Claim({Nid{work}, {oldFolder, kNoBid}, folder.nidParent}, Standing::kDoubtful);
  store.LoseBlock(store.Entry((other & ~0x1Fu) | 0x0E).trees.bidData);
  store.Lose((other & ~0x1Fu) | 0x0E);
  EXPECT_TRUE(store.Find().gone.empty()) << "it may have been moved to where the table is lost";
}

TEST_P(LostNodesTest, WhereTheTablesTellOfAllAMessageThatNoneListsIsGoneWhateverPageNamesIt) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto work = box_.AddFolder({.name = u"Work"});
  const ndb::NodeTrees gone = WithoutNode(LetterTo(u"Gone", 2));
  box_.AddMessage(inbox, Letter(u"Kept", 1));
  box_.AddMessage(work, Letter(u"Report", 4));
  WreckedStore store(box_.Finish());
  const ndb::NodeEntry table = store.Entry((work & ~0x1Fu) | 0x0E);
  store.LoseBlockTree();
  store.Claim({Nid{0x300024}, gone, Nid{inbox}}, Standing::kLive);
  EXPECT_EQ(store.Find().gone, std::vector{Nid{0x300024}});

  store.SetStatus(gone.bidData, BlockStatus::kLive);
  EXPECT_TRUE(store.Find().gone.empty()) << "the block tree says that it is there";
  store.SetStatus(gone.bidData, BlockStatus::kUnknown);
  store.LoseBlock(table.trees.bidData);
  store.Lose(Value(table.nid));
  EXPECT_TRUE(store.Find().gone.empty()) << "it may be in the folder whose table is lost";
}

TEST_P(LostNodesTest, AMessageThatIsNewerThanTheTableOfItsFolderIsNotGone) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  box_.AddMessage(inbox, Letter(u"Kept", 1));
  forge::Image image = box_.Finish();
  WreckedStore store(image);
  store.LoseBlockTree();
  ndb::NodeEntry newer = store.Entry(forge::kNameMapNode);  // written last
  ASSERT_GT(newer.trees.bidData, store.Entry((inbox & ~0x1Fu) | 0x0E).trees.bidData);
  newer.nid = Nid{0x300024};
  newer.nidParent = Nid{inbox};
  store.Claim(newer, Standing::kLive);
  EXPECT_TRUE(store.Find().gone.empty());
}

TEST_P(LostNodesTest, WhereTheTablesTellOfAllWhatHasTheSearchKeyOfANewerMessageIsAnOlderStateOfIt) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto work = box_.AddFolder({.name = u"Work"});
  const auto draft = [](std::int32_t importance) {
    Message message = LetterTo(u"Draft", 2);
    message.importance = importance;
    message.properties = {forge::Binary(0x300B, forge::Noise(16, 7))};
    return message;
  };
  const ndb::NodeTrees before = WithoutNode(draft(2));
  box_.AddMessage(inbox, draft(1));
  box_.AddMessage(work, Letter(u"Report", 4));
  const ndb::NodeTrees behind = WithoutNode(draft(0));
  WreckedStore store(box_.Finish());
  const ndb::NodeEntry table = store.Entry((work & ~0x1Fu) | 0x0E);
  store.LoseBlockTree();
  const LostNodes lost = store.Find();
  ASSERT_EQ(lost.nodes.size(), 1u);
  EXPECT_EQ(lost.nodes[0].node.trees, behind) << "newer than the one that a node has";

  std::map<Bid, Standing> found;
  for (const NodeClaim& claim : store.Find(true).nodes) found[claim.node.trees.bidData] = claim.standing;
  EXPECT_EQ(found, (std::map<Bid, Standing>{{before.bidData, Standing::kOlder}, {behind.bidData, Standing::kFound}}));

  store.LoseBlock(table.trees.bidData);
  store.Lose(Value(table.nid));
  EXPECT_EQ(CountOf(store.Find(), Standing::kFound), 2u) << "one may be a copy in the folder whose table is lost";
}

TEST_P(LostNodesTest, MessagesInNoTableAreOfTheOneFolderThatIsShortOfThem) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto work = box_.AddFolder({.name = u"Work"});
  for (unsigned day = 1; day <= 3; ++day) box_.AddMessage(inbox, Letter(u"Letter", day));
  const auto report = box_.AddMessage(work, Letter(u"Report", 4));
  WreckedStore store(box_.Finish());
  const Bid tables[] = {store.Entry((inbox & ~0x1Fu) | 0x0E).trees.bidData,
                        store.Entry((work & ~0x1Fu) | 0x0E).trees.bidData};
  store.Lose([](const ndb::NodeEntry& node) { return TypeOf(node.nid) == NidType::kNormalMessage; });
  store.LoseBlock(tables[0]);
  LostNodes lost = store.Find();
  ASSERT_EQ(lost.nodes.size(), 4u);
  for (const NodeClaim& claim : lost.nodes) {
    EXPECT_EQ(claim.node.nidParent, Nid{claim.node.nid == Nid{report.nid} ? work : inbox});
  }
  store.LoseBlock(tables[1]);
  lost = store.Find();
  ASSERT_EQ(lost.nodes.size(), 4u);
  for (const NodeClaim& claim : lost.nodes) EXPECT_EQ(claim.node.nidParent, kNoNid) << "two folders may be theirs";
}

TEST_P(LostNodesTest, TheTableOfAFolderThatIsGoneMakesNoLiveMessages) {
  const forge::Nid gone = 0x9002;
  const forge::WrittenMessage written = forge::WriteMessage(Store(), box_.names(), Letter(u"Gone", 1));
  const forge::Context table = forge::FormTable(
      Store(), forge::ContentsColumns(), {{0x300024, forge::CellsOf(forge::ContentsColumns(), written.properties)}});
  const Bid tableBid{Store().AddDataBlocks(table.blocks)};
  WreckedStore store(box_.Finish());
  store.Claim({Nid{(gone & ~0x1Fu) | 0x0E}, {tableBid, kNoBid}, kNoNid}, Standing::kOlder);
  const LostNodes lost = store.Find();
  ASSERT_EQ(lost.nodes.size(), 1u) << "its block is live all the same";
  EXPECT_EQ(lost.nodes[0].node.nidParent, kNoNid);
  EXPECT_TRUE(lost.messageRows.empty());
}

TEST_P(LostNodesTest, AWholeMessageThatNewerPagesDoWithoutIsDeleted) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  box_.AddMessage(inbox, Letter(u"Kept", 1));
  const ndb::NodeTrees gone = WithoutNode(LetterTo(u"Gone", 2));
  WreckedStore store(box_.Finish());
  store.LoseBlockTree();
  EXPECT_EQ(store.Find().nodes.size(), 1u) << "unless an entry tells, it is handed out as found";
  store.Claim({Nid{0x300024}, gone, Nid{inbox}}, Standing::kDeleted);
  EXPECT_TRUE(store.Find().nodes.empty());
  const ndb::NodeEntry table = store.Entry((inbox & ~0x1Fu) | 0x0E);
  store.Lose((inbox & ~0x1Fu) | 0x0E);
  EXPECT_TRUE(store.Find().nodes.empty()) << "whoever owns the table";
  store.LoseBlock(gone.bidSub);
  store.Claim(table, Standing::kLive);
  EXPECT_TRUE(store.Find().nodes.empty()) << "the table of its folder does without it";
  store.Lose((inbox & ~0x1Fu) | 0x0E);
  EXPECT_EQ(ClaimTo(store.Find(), 0x300024).node, (ndb::NodeEntry{Nid{0x300024}, gone, Nid{inbox}}))
      << "nothing tells any more";
}

TEST_P(LostNodesTest, ValuesThatEachMessageNumbersAlikeDoNotMixThemUp) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  std::vector<Mailbox::Added> letters;
  for (int i = 0; i < 100; ++i) letters.push_back(box_.AddMessage(inbox, WithKeys(Letter(u"Same", 1), 0x803F)));
  WreckedStore store(box_.Finish());
  store.LoseBlockTree();
  for (const auto& letter : letters) store.Lose(letter.nid);
  const LostNodes lost = store.Find();
  ASSERT_EQ(lost.nodes.size(), letters.size());
  for (const auto& letter : letters) EXPECT_EQ(ClaimTo(lost, letter.nid).node, store.Entry(letter.nid));
}

TEST_P(LostNodesTest, RowsThatEqualAMessageAndItsOlderVersionAreCopiesOfTheMessage) {
  const forge::Nid copies[] = {0x300024, 0x300044};
  const Message letter = WithKeys(Letter(u"Copied", 1), 0x9003F);
  WithoutNode(letter);
  const forge::WrittenMessage written = forge::WriteMessage(Store(), box_.names(), letter);
  const auto cells = forge::CellsOf(forge::ContentsColumns(), written.properties);
  forge::AddContextNode(Store(), 0x9002, forge::kTopFolder, {forge::Text(0x3001, u"Archive")});
  forge::AddTableNode(Store(), 0x900E, forge::ContentsColumns(), {{copies[0], cells}, {copies[1], cells}});
  WreckedStore store(box_.Finish());
  store.LoseBlockTree();
  const LostNodes lost = store.Find();
  EXPECT_EQ(NidsOf(lost), (std::vector{Nid{copies[0]}, Nid{copies[1]}}));
  for (const forge::Nid copy : copies) EXPECT_EQ(ClaimTo(lost, copy).node.trees.bidData, Bid{written.bidData});
}

TEST_P(LostNodesTest, AHiddenItemIsFoundAmongHiddenOnes) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  Message hidden = Letter(u"Settings", 1);
  hidden.flags = 0x41;
  const auto item = box_.AddMessage(inbox, hidden, 0x300028);
  const auto letter = box_.AddMessage(inbox, Letter(u"Settings", 1));
  const ndb::NodeTrees stray = WithoutNode(hidden);
  WreckedStore store(box_.Finish());
  store.Lose(letter.nid);
  const LostNodes lost = store.Find();
  EXPECT_EQ(ClaimTo(lost, letter.nid).node, store.Entry(letter.nid));
  const auto other =
      std::ranges::find(lost.nodes, stray.bidData, [](const NodeClaim& c) { return c.node.trees.bidData; });
  ASSERT_NE(other, lost.nodes.end());
  EXPECT_EQ(TypeOf(other->node.nid), NidType::kAssocMessage);
  EXPECT_NE(other->node.nid, Nid{item.nid});
}

TEST_P(LostNodesTest, ManyMessagesWithOneSearchKeyTakeNoPairwiseComparison) {
  const forge::Property key = forge::Binary(0x300B, forge::Noise(16, 7));
  for (unsigned i = 0; i < 2000; ++i) {
    Message message = Letter(u"Draft", 1);
    message.properties = {key, forge::Time(0x3008, Noon(1) + i)};
    WithoutNode(message);
  }
  WreckedStore store(box_.Finish());
  store.Judged().nodesAreExact = true;
  const LostNodes lost = store.Find(true);
  EXPECT_EQ(CountOf(lost, Standing::kDeleted), 1u);
  EXPECT_EQ(CountOf(lost, Standing::kOlder), 1999u);
}

TEST_P(LostNodesTest, TheListOfAMessageInUseIsNoneOfAnother) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  const auto kept = box_.AddMessage(inbox, LetterTo(u"Kept", 1));
  const auto letter = box_.AddMessage(inbox, LetterTo(u"Lost", 2));
  WreckedStore store(box_.Finish());
  store.Lose(letter.nid);
  store.LoseBlock(Bid{letter.bidSub});
  EXPECT_EQ(ClaimTo(store.Find(), letter.nid).node.trees, (ndb::NodeTrees{Bid{letter.bidData}, kNoBid}));
  store.Lose(kept.nid);
  EXPECT_EQ(ClaimTo(store.Find(), kept.nid).node.trees.bidSub, Bid{kept.bidSub});
}

TEST_P(LostNodesTest, MoreMessagesThanAFolderIsShortOfAreNotPlacedInIt) {
  const auto inbox = box_.AddFolder({.name = u"Inbox"});
  box_.AddMessage(inbox, Letter(u"Letter", 1));
  WithoutNode(Letter(u"Stray", 2));
  WreckedStore store(box_.Finish());
  const Bid table = store.Entry((inbox & ~0x1Fu) | 0x0E).trees.bidData;
  store.Lose([](const ndb::NodeEntry& node) { return TypeOf(node.nid) == NidType::kNormalMessage; });
  store.LoseBlock(table);
  const LostNodes lost = store.Find();
  ASSERT_EQ(lost.nodes.size(), 2u);
  for (const NodeClaim& claim : lost.nodes) EXPECT_EQ(claim.node.nidParent, kNoNid);
}

TEST_P(LostNodesTest, AListedMessageWhoseRowIsEmptyIsFoundByAnOlderEntry) {
  const forge::Nid nid = 0x300024;
  const ndb::NodeTrees trees = WithoutNode(LetterTo(u"Listed", 1));
  forge::AddContextNode(Store(), 0x9002, forge::kTopFolder, {forge::Text(0x3001, u"Archive")});
  forge::AddTableNode(Store(), 0x900E, forge::ContentsColumns(), {{nid, {}}});
  WreckedStore store(box_.Finish());
  store.Claim({Nid{nid}, trees, Nid{forge::kDeletedItems}}, Standing::kOlder);
  const LostNodes lost = store.Find();
  EXPECT_EQ(NidsOf(lost), std::vector{Nid{nid}});
  EXPECT_EQ(ClaimTo(lost, nid).node, (ndb::NodeEntry{Nid{nid}, trees, Nid{0x9002}}));
}

TEST_P(LostNodesTest, ATableThatIsOlderThanAProvenOneOfItsFolderMakesNoMessages) {
  const auto work = box_.AddFolder({.name = u"Work"});
  const forge::Context old = forge::FormTable(Store(), forge::ContentsColumns(), {{0x300024, {}}});
  const Bid oldTable{Store().AddDataBlocks(old.blocks)};
  box_.AddMessage(work, Letter(u"Report", 1));
  WreckedStore store(box_.Finish());
  store.LoseBlockTree();
  EXPECT_EQ(store.Find().messageRows.size(), 1u) << "as long as nothing tells whose it is";
  store.Claim({Nid{(work & ~0x1Fu) | 0x0E}, {oldTable, kNoBid}, kNoNid}, Standing::kOlder);
  EXPECT_TRUE(store.Find().messageRows.empty());
}

}  // namespace
}  // namespace velmora::engine
