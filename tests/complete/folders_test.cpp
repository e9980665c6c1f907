// Folders: which are copied, where they stand, what they are called.
#include "complete/complete_fixture.h"

namespace velmora::complete {
namespace {

using forge::EntryId;

const std::u16string kTop = u"/Top of Personal Folders";

class FoldersTest : public CompleteTest {
 protected:
  /// The folders below the top of the new store.
  std::vector<std::u16string> TargetFolders() const {
    std::vector<std::u16string> paths;
    for (const auto& [path, nid] : target_->Folders()) {
      if (path.starts_with(kTop + u"/")) paths.push_back(path.substr(kTop.size()));
    }
    return paths;
  }
  velmora::Nid TargetFolder(const std::u16string& path) const { return target_->Folders().at(kTop + path); }
  /// The folder to which an entry id in the new store leads.
  velmora::Nid LedTo(const Properties& properties, std::uint16_t id) const {
    const Value* value = Find(properties, id);
    if (value == nullptr || value->bytes.size() != 24) return kNoNid;
    const Bytes key = Find(target_->PropertiesOf(velmora::Nid{0x21}), 0x0FF9)->bytes;
    EXPECT_TRUE(std::equal(key.begin(), key.end(), value->bytes.begin() + 4)) << "the key of another store";
    return velmora::Nid{static_cast<std::uint32_t>(forge::Get(value->bytes, 20, 4))};
  }
};
INSTANTIATE_TEST_SUITE_P(Formats, FoldersTest, AllFormats(), NameOf);

TEST_P(FoldersTest, TheTreeComesAcrossWithIdsClassesAndProperties) {
  forge::Mailbox box = NewBox();
  const forge::PropertyList said = {forge::Text(0x3004, u"A comment"), forge::Text(0x36E5, u"IPM.Task.Own"),
                                    Binary(0x36DA, Noise(6, 1)), Time(0x3007, forge::TimeOf(2020, 1, 2) + 5),
                                    Binary(0x6901, Noise(3000, 2))};
  const forge::Nid tasks = box.AddFolder({.name = u"Tasks", .containerClass = u"IPF.Task", .properties = said});
  const forge::Nid inner = box.AddFolder({.name = u"Inner", .parent = tasks});
  const forge::Nid deep = box.AddFolder({.name = u"Deep", .parent = inner, .nid = 0x123E2});
  box.AddMessage(deep, Mail(u"Deep"));
  box.AddFolder({.name = u"Empty"});
  Copy(box);
  EXPECT_THAT(TargetFolders(),
              testing::ElementsAre(u"/Deleted Items", u"/Empty", u"/Tasks", u"/Tasks/Inner", u"/Tasks/Inner/Deep"));
  EXPECT_EQ(TargetFolder(u"/Tasks"), NodeOf(tasks));
  EXPECT_EQ(TargetFolder(u"/Tasks/Inner/Deep"), NodeOf(deep));
  ExpectHas(target_->PropertiesOf(NodeOf(tasks)), said);
  EXPECT_EQ(TextOf(target_->PropertiesOf(NodeOf(tasks)), 0x3613), u"IPF.Task");
  EXPECT_EQ(Find(target_->PropertiesOf(NodeOf(inner)), 0x3613), nullptr) << "none where the source has none";
  EXPECT_EQ(target_->FolderOf(NodeOf(deep)).messages.size(), 1U);
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(FoldersTest, AClassThatIsThereAndEmptyStaysSo) {
  forge::Mailbox box = NewBox();
  const forge::Nid plain = box.AddFolder({.name = u"Plain", .properties = {forge::Text(0x3613, u"")}});
  Copy(box);
  ExpectHas(target_->PropertiesOf(NodeOf(plain)), {forge::Text(0x3613, u"")});
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(FoldersTest, CountsAreThoseOfWhatIsWritten) {
  forge::Mailbox box = NewBox();
  const forge::Nid inbox =
      box.AddFolder({.name = u"Inbox", .properties = {Int32(0x3602, 77), Int32(0x3603, 66), Bool(0x360A, false)}});
  box.AddFolder({.name = u"Inner", .parent = inbox});
  for (const std::uint32_t flags : {0U, 1U, 1U}) {
    forge::Message message = Mail(u"Counted");
    message.flags = flags;
    box.AddMessage(inbox, message);
  }
  Copy(box);
  ExpectHas(target_->PropertiesOf(NodeOf(inbox)), {Int32(0x3602, 3), Int32(0x3603, 1), Bool(0x360A, true)});
  ExpectSound();
}

TEST_P(FoldersTest, NamesComeAcrossWhateverTheyAreMadeOf) {
  std::vector<std::u16string> names = {u"back\\slash",
                                       u"sl/ash",
                                       u"dot.",
                                       u" blank ",
                                       u"tab\tand\x01"
                                       u"control",
                                       u"quote\"<>|*?:",
                                       u"caf\u00E9 \u00DF"};
  if (GetParam() != forge::Format::kAnsi) {
    for (const char16_t* name :
         {u"\u65E5\u672C\u8A9E", u"\u0420\u0443\u0441\u0441\u043A\u0438\u0439", u"\u05E2\u05D1\u05E8\u05D9\u05EA",
          u"\u0627\u0644\u0639\u0631\u0628\u064A\u0629", u"\uD55C\uAD6D\uC5B4", u"\u0E44\u0E17\u0E22",
          u"\u0939\u093F\u0928\u094D\u0926\u0940", u"e\u0301", u"\U0001F4C1", u"\u202Eright", u"\uFEFFmark"}) {
      names.emplace_back(name);
    }
    names.push_back(std::u16string(u"lone ") + char16_t(0xD83D) + u" surrogate");
    names.push_back(std::u16string(u"lone ") + char16_t(0xDC01));
  }
  forge::Mailbox box = NewBox();
  std::vector<forge::Nid> nids;
  for (const std::u16string& name : names) {
    nids.push_back(box.AddFolder({.name = name}));
    box.AddMessage(nids.back(), Mail(u"Inside"));
  }
  Copy(box);
  for (std::size_t i = 0; i < names.size(); ++i) {
    EXPECT_EQ(TextOf(target_->PropertiesOf(NodeOf(nids[i])), 0x3001), names[i]);
    EXPECT_EQ(target_->FolderOf(NodeOf(nids[i])).messages.size(), 1U);
  }
  ExpectAllWhole();
}

TEST_P(FoldersTest, ANameOfTenThousandCharactersComesAcross) {
  forge::Mailbox box = NewBox();
  const std::u16string name(10'000, u'n');
  const forge::Nid nid = box.AddFolder({.name = name});
  box.AddMessage(nid, Mail(u"Inside"));
  Copy(box);
  EXPECT_EQ(TextOf(target_->PropertiesOf(NodeOf(nid)), 0x3001), name);
  ExpectAllWhole();
}

TEST_P(FoldersTest, AFolderWithoutANameKeepsItsMessages) {
  forge::Mailbox box = NewBox();
  const forge::Nid nid = box.AddFolder({.name = u""});
  const forge::Nid message = box.AddMessage(nid, Mail(u"Inside")).nid;
  Copy(box);
  ASSERT_TRUE(target_->Has(NodeOf(message)));
  const velmora::Nid parent = target_->Reader().FindNode(NodeOf(message))->nidParent;
  EXPECT_NE(TextOf(target_->PropertiesOf(parent), 0x3001), u"") << "it has some name";
  EXPECT_EQ(target_->FolderOf(parent).parent, NodeOf(forge::kTopFolder));
  ExpectSound();
}

TEST_P(FoldersTest, SiblingsOfOneNameAreToldApartByANumber) {
  forge::Mailbox box = NewBox();
  const forge::Nid first = box.AddFolder({.name = u"Twin"});
  const forge::Nid second = box.AddFolder({.name = u"Twin"});
  const forge::Nid elsewhere = box.AddFolder({.name = u"Twin", .parent = first});
  box.AddMessage(first, Mail(u"In the first"));
  box.AddMessage(second, Mail(u"In the second"));
  Copy(box);
  EXPECT_EQ(TextOf(target_->PropertiesOf(NodeOf(first)), 0x3001), u"Twin");
  EXPECT_EQ(TextOf(target_->PropertiesOf(NodeOf(second)), 0x3001), u"Twin (2)");
  EXPECT_EQ(TextOf(target_->PropertiesOf(NodeOf(elsewhere)), 0x3001), u"Twin");
  EXPECT_EQ(target_->FolderOf(NodeOf(first)).messages.size(), 1U);
  EXPECT_EQ(target_->FolderOf(NodeOf(second)).messages.size(), 1U);
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(FoldersTest, ThreeHundredOneInTheOtherComeAcross) {
  forge::Mailbox box = NewBox();
  forge::Nid parent = forge::kTopFolder;
  for (int i = 0; i < 300; ++i) parent = box.AddFolder({.name = u"f", .parent = parent});
  const forge::Nid message = box.AddMessage(parent, Mail(u"At the bottom")).nid;
  Copy(box);
  EXPECT_EQ(target_->Reader().FindNode(NodeOf(message))->nidParent, NodeOf(parent));
  EXPECT_EQ(TargetFolders().size(), 301U);
  ExpectAllWhole();
}

TEST_P(FoldersTest, TheTopIsTheFolderToWhichTheStorePoints) {
  forge::Mailbox box = NewBox({.tables = true, .storeProperties = {Binary(0x35E0, EntryId(0x9002))}});
  box.AddFolder({.name = u"Oberste Ebene", .parent = forge::kRootFolder, .nid = 0x9002});
  const forge::Nid inbox = box.AddFolder({.name = u"Posteingang", .parent = 0x9002});
  box.AddMessage(inbox, Mail(u"Inside"));
  const forge::Nid beside = box.AddFolder({.name = u"Beside"});
  box.AddMessage(beside, Mail(u"Under another folder"));
  Copy(box);
  EXPECT_EQ(TargetFolder(u"/Posteingang"), NodeOf(inbox));
  EXPECT_TRUE(account_.IsWhole());
  EXPECT_EQ(target_->Messages().size(), 2U) << "a folder outside of the tree that holds a message comes along";
  ExpectSound();
}

TEST_P(FoldersTest, WithoutAPointerTheTopIsTheLargestTreeBelowTheRoot) {
  forge::Mailbox box =
      NewBox({.tables = true, .storeProperties = {Binary(0x35E0, {}), Binary(0x35E3, {}), Binary(0x35E7, {})}});
  box.AddFolder({.name = u"Haut de la bo\u00EEte", .parent = forge::kRootFolder, .nid = 0x9002});
  for (const char16_t* name : {u"Un", u"Deux", u"Trois", u"Quatre"}) box.AddFolder({.name = name, .parent = 0x9002});
  const forge::Nid inner = box.AddFolder({.name = u"Cinq", .parent = 0x9002});
  box.AddMessage(inner, Mail(u"Inside"));
  Copy(box);
  EXPECT_EQ(TargetFolder(u"/Cinq"), NodeOf(inner));
  EXPECT_FALSE(target_->Folders().contains(kTop + u"/Haut de la bo\u00EEte"));
  ExpectSound();
}

TEST_P(FoldersTest, DeletedItemsKeepTheirNameAndTheirPlace) {
  forge::Mailbox box = NewBox();
  box.AddFolder({.name = u"Gel\u00F6schte Elemente",
                 .nid = forge::kDeletedItems,
                 .properties = {forge::Text(0x3004, u"Kommentar")}});
  box.AddMessage(forge::kDeletedItems, Mail(u"Deleted"));
  box.AddFolder({.name = u"Inside", .parent = forge::kDeletedItems});
  Copy(box);
  const velmora::Nid deleted = LedTo(target_->PropertiesOf(velmora::Nid{0x21}), 0x35E3);
  ASSERT_NE(deleted, kNoNid);
  EXPECT_EQ(TextOf(target_->PropertiesOf(deleted), 0x3001), u"Gel\u00F6schte Elemente");
  EXPECT_EQ(TextOf(target_->PropertiesOf(deleted), 0x3004), u"Kommentar");
  EXPECT_EQ(target_->FolderOf(deleted).messages.size(), 1U);
  EXPECT_THAT(TargetFolders(), testing::ElementsAre(u"/Gel\u00F6schte Elemente", u"/Gel\u00F6schte Elemente/Inside"))
      << "and no second one";
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(FoldersTest, DeletedItemsAreFoundByTheirNameWhereNothingPointsToThem) {
  forge::Mailbox box = NewBox({.tables = true, .storeProperties = {Binary(0x35E3, {})}});
  box.AddMessage(forge::kDeletedItems, Mail(u"Deleted"));
  Copy(box);
  const velmora::Nid deleted = LedTo(target_->PropertiesOf(velmora::Nid{0x21}), 0x35E3);
  ASSERT_NE(deleted, kNoNid);
  EXPECT_EQ(target_->FolderOf(deleted).messages.size(), 1U);
  EXPECT_THAT(TargetFolders(), testing::ElementsAre(u"/Deleted Items"));
}

TEST_P(FoldersTest, AFolderThatNobodySeesComesAcrossWhereItHoldsAMessage) {
  forge::Mailbox box = NewBox();
  box.AddFolder({.name = u"Views", .parent = forge::kRootFolder});
  const forge::Nid shared = box.AddFolder({.name = u"Shared Data", .parent = forge::kRootFolder});
  const forge::Nid inner = box.AddFolder({.name = u"Inner", .parent = shared});
  box.AddMessage(inner, Mail(u"Ordinary"));
  const forge::Nid settings = box.AddFolder({.name = u"Settings", .parent = forge::kRootFolder});
  forge::Message hidden = Mail(u"Hidden");
  hidden.flags = 0x41;
  box.AddMessage(settings, hidden, 0x100028);
  Copy(box);
  EXPECT_THAT(TargetFolders(), testing::ElementsAre(u"/Deleted Items", u"/Shared Data", u"/Shared Data/Inner"));
  EXPECT_EQ(target_->FolderOf(NodeOf(inner)).messages.size(), 1U);
  EXPECT_GE(Count(NodeFate::kInternal), 2U) << "the folders of no message among them";
  EXPECT_TRUE(account_.IsWhole());
  ExpectSound();
}

TEST_P(FoldersTest, SearchFoldersStayBehind) {
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  const forge::Nid message = box.AddMessage(inbox, Mail(u"Found")).nid;
  box.AddFolder({.name = u"Unread Mail", .parent = forge::kSearchRoot, .nid = 0x80023, .found = {message}});
  Copy(box);
  EXPECT_THAT(target_->Messages(), testing::ElementsAre(NodeOf(message)));
  EXPECT_THAT(TargetFolders(), testing::ElementsAre(u"/Deleted Items", u"/Inbox"));
  EXPECT_FALSE(target_->Has(NodeOf(0x80023)));
  EXPECT_EQ(Count(NodeFate::kSearchFolder), 8U) << "two folders, each with queue, criteria and table";
  ExpectSound();
}

TEST_P(FoldersTest, DefaultFoldersAreMarkedAsInTheSource) {
  forge::Mailbox box = NewBox();
  std::vector<forge::Property> pointers;
  const auto add = [&](const char16_t* name, const char16_t* folderClass, std::uint16_t pointer) {
    const forge::Nid nid = box.AddFolder({.name = name, .containerClass = folderClass});
    if (pointer != 0) pointers.push_back(Binary(pointer, EntryId(nid)));
    return nid;
  };
  const forge::Nid calendar = add(u"Agenda", u"IPF.Appointment", 0x36D0);
  const forge::Nid contacts = add(u"Contactos", u"IPF.Contact", 0x36D1);
  const forge::Nid journal = add(u"Diario", u"IPF.Journal", 0x36D2);
  const forge::Nid notes = add(u"Notas", u"IPF.StickyNote", 0x36D3);
  const forge::Nid tasks = add(u"Tareas", u"IPF.Task", 0x36D4);
  const forge::Nid drafts = add(u"Borradores", u"IPF.Note", 0x36D7);
  add(u"Otra agenda", u"IPF.Appointment", 0);
  const forge::Nid junk = add(u"Basura", u"IPF.Note", 0);
  pointers.push_back(Binaries(0x36D8, {{}, {}, {}, {}, EntryId(junk)}));
  box.AddFolder({.name = u"", .parent = forge::kRootFolder, .nid = forge::kRootFolder, .properties = pointers});
  Copy(box);
  const Properties root = target_->PropertiesOf(velmora::Nid{0x122});
  EXPECT_EQ(LedTo(root, 0x36D0), NodeOf(calendar));
  EXPECT_EQ(LedTo(root, 0x36D1), NodeOf(contacts));
  EXPECT_EQ(LedTo(root, 0x36D2), NodeOf(journal));
  EXPECT_EQ(LedTo(root, 0x36D3), NodeOf(notes));
  EXPECT_EQ(LedTo(root, 0x36D4), NodeOf(tasks));
  EXPECT_EQ(LedTo(root, 0x36D7), NodeOf(drafts));
  const Value* array = Find(root, 0x36D8);
  ASSERT_NE(array, nullptr) << "where the junk folder is pointed to";
  ASSERT_GE(array->bytes.size(), 24U);
  EXPECT_EQ(forge::Get(array->bytes, array->bytes.size() - 4, 4), junk);
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(FoldersTest, WithoutMarksAFolderIsKnownByItsClassAlone) {
  forge::Mailbox box = NewBox();
  const forge::Nid first = box.AddFolder({.name = u"First", .containerClass = u"IPF.Appointment"});
  const forge::Nid second = box.AddFolder({.name = u"Second", .containerClass = u"IPF.Appointment"});
  Copy(box);
  EXPECT_EQ(TextOf(target_->PropertiesOf(NodeOf(first)), 0x3613), u"IPF.Appointment");
  EXPECT_EQ(TextOf(target_->PropertiesOf(NodeOf(second)), 0x3613), u"IPF.Appointment");
  EXPECT_THAT(TargetFolders(), testing::ElementsAre(u"/Deleted Items", u"/First", u"/Second")) << "none is made for it";
}

TEST_P(FoldersTest, OutboxAndSentItemsAreMarkedAsInTheSource) {
  forge::Mailbox box =
      NewBox({.tables = true, .storeProperties = {Binary(0x35E2, EntryId(0x9002)), Binary(0x35E4, EntryId(0x9022))}});
  box.AddFolder({.name = u"Postausgang", .nid = 0x9002});
  box.AddFolder({.name = u"Gesendet", .nid = 0x9022});
  Copy(box);
  const Properties store = target_->PropertiesOf(velmora::Nid{0x21});
  EXPECT_EQ(LedTo(store, 0x35E2), NodeOf(0x9002));
  EXPECT_EQ(LedTo(store, 0x35E4), NodeOf(0x9022));
  ExpectSound();
}

TEST_P(FoldersTest, AFolderOfTheHighestIdLeavesIdsForThoseThatAreMade) {
  forge::Mailbox box = NewBox();
  const forge::Nid highest = box.AddFolder({.name = u"Highest", .nid = 0xFFFFFFE2});
  box.AddMessage(highest, Mail(u"In it"));
  box.AddMessage(0x20002, Mail(u"Of a folder that is gone"));
  Copy(box);
  EXPECT_EQ(account_.Totals().whole, 2U);
  EXPECT_THAT(TargetFolders(), testing::ElementsAre(u"/Deleted Items", u"/Highest", u"/Lost & Found"));
  ExpectSound();
}

TEST_P(FoldersTest, AMessageWhoseFolderIsGoneIsInLostAndFound) {
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  box.AddMessage(inbox, Mail(u"At home"));
  const forge::Nid lost = box.AddMessage(0xABC2, Mail(u"Homeless")).nid;
  Copy(box);
  ASSERT_TRUE(target_->Has(NodeOf(lost)));
  EXPECT_EQ(target_->Reader().FindNode(NodeOf(lost))->nidParent, TargetFolder(u"/Lost & Found"));
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(FoldersTest, AFolderWhoseParentIsGoneComesAcross) {
  forge::Mailbox box = NewBox();
  const forge::Nid orphan = box.AddFolder({.name = u"Orphan", .parent = 0xABC2});
  const forge::Nid message = box.AddMessage(orphan, Mail(u"Inside")).nid;
  Copy(box);
  ASSERT_TRUE(target_->Has(NodeOf(message)));
  const velmora::Nid home = target_->Reader().FindNode(NodeOf(message))->nidParent;
  EXPECT_EQ(TextOf(target_->PropertiesOf(home), 0x3001), u"Orphan");
  ExpectSound();
}

TEST_P(FoldersTest, FoldersInARingCostNoMessage) {
  forge::Mailbox box = NewBox();
  box.AddFolder({.name = u"One", .parent = 0x9022, .nid = 0x9002});
  box.AddFolder({.name = u"Other", .parent = 0x9002, .nid = 0x9022});
  const forge::Nid message = box.AddMessage(0x9022, Mail(u"Inside")).nid;
  Copy(box);
  EXPECT_TRUE(target_->Has(NodeOf(message)));
  ExpectSound();
}

TEST_P(FoldersTest, MessagesOfTheTopAndOfTheRootComeAcross) {
  forge::Mailbox box = NewBox();
  const forge::Nid top = box.AddMessage(forge::kTopFolder, Mail(u"In the top")).nid;
  const forge::Nid root = box.AddMessage(forge::kRootFolder, Mail(u"In the root")).nid;
  Copy(box);
  ASSERT_TRUE(target_->Has(NodeOf(top)) && target_->Has(NodeOf(root)));
  EXPECT_EQ(target_->Reader().FindNode(NodeOf(top))->nidParent, NodeOf(forge::kTopFolder));
  ExpectAllWhole();
  ExpectSound();
}

class OfflineFoldersTest : public FoldersTest {};
INSTANTIATE_TEST_SUITE_P(Formats, OfflineFoldersTest, AllFormats(), NameOf);

TEST_P(OfflineFoldersTest, TheFoldersOfAnOfflineStoreAreKnownByTheirFixedIds) {
  forge::Mailbox box = NewBox({.tables = true, .offline = true}, forge::Client::kOffline);
  const forge::Nid own = box.AddFolder({.name = u"Own", .parent = forge::kOfflineInbox});
  for (const forge::Nid folder :
       {forge::kOfflineInbox, forge::kOfflineDeletedItems, forge::kOfflineSentItems, forge::kOfflineOutbox, own}) {
    box.AddMessage(folder, Mail(u"Inside"));
  }
  Copy(box);
  EXPECT_THAT(TargetFolders(),
              testing::ElementsAre(u"/Deleted Items", u"/Inbox", u"/Inbox/Own", u"/Outbox", u"/Sent Items"));
  const Properties store = target_->PropertiesOf(velmora::Nid{0x21});
  EXPECT_EQ(LedTo(store, 0x35E3), TargetFolder(u"/Deleted Items"));
  EXPECT_EQ(LedTo(store, 0x35E2), TargetFolder(u"/Outbox"));
  EXPECT_EQ(LedTo(store, 0x35E4), TargetFolder(u"/Sent Items"));
  for (const char16_t* path : {u"/Deleted Items", u"/Inbox", u"/Inbox/Own", u"/Outbox", u"/Sent Items"}) {
    EXPECT_EQ(target_->FolderOf(TargetFolder(path)).messages.size(), 1U);
    EXPECT_GT(IndexOf(TargetFolder(path)), 0x400U);
  }
  EXPECT_EQ(TargetFolder(u"/Inbox/Own"), NodeOf(own));
  ExpectAllWhole();
  ExpectSound();
}

}  // namespace
}  // namespace velmora::complete
