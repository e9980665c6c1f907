// New stores, their folders, and what is found of them when they are opened again.
#include <fstream>

#include "platform/path_text.h"
#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"
#include "store/messaging/store_fixture.h"
#include "store/messaging/values/identity.h"

namespace velmora::messaging {
namespace {

using output::DefaultFolder;
using output::FolderType;
using output::RDOFolder;
using output::Ref;
using output::ResultCode;
using text::Text;

TEST_F(StoreTest, StartsWithItsTopFolderAndDeletedItems) {
  EXPECT_EQ(top_->Name(), u"Top of Personal Folders");
  const Ref<RDOFolder> deletedItems = top_->Folders()->Item(u"deleted items");
  ASSERT_TRUE(deletedItems);
  EXPECT_EQ(deletedItems->ContainerClass(), u"IPF.Note");
  EXPECT_EQ(session_->GetDefaultFolder(DefaultFolder::kDeletedItems)->Name(), u"Deleted Items");
  EXPECT_EQ(session_->GetFolderFromPath(u"\\\\Test store\\Deleted Items")->Name(), u"Deleted Items");
  ExpectSound();
}

TEST_F(StoreTest, IsNeverWrittenOverAFileThatExists) {
  const auto add = [&] { session_->Stores()->AddPSTStore(platform::TextOfPath(path_), u"Other"); };
  EXPECT_EQ(CodeOf(add), ResultCode::MAPI_E_COLLISION);
  const auto foreign = folder_.path() / "foreign.pst";
  std::ofstream(foreign) << "not ours";
  EXPECT_EQ(CodeOf([&] { session_->Stores()->AddPSTStore(platform::TextOfPath(foreign), u"Other"); }),
            ResultCode::MAPI_E_COLLISION);
  EXPECT_EQ(forge::TextOf(foreign), "not ours");
  EXPECT_EQ(session_->Stores()->DefaultStore()->IPMRootFolder()->Folders()->Count(), 2);
}

TEST_F(StoreTest, InAFolderThatIsNotThereIsAFailureOfWriting) {
  const auto path = folder_.path() / "nowhere" / "a.pst";
  EXPECT_EQ(CodeOf([&] { session_->Stores()->AddPSTStore(platform::TextOfPath(path), u"x"); }),
            ResultCode::STG_E_WRITEFAULT);
}

TEST_F(StoreTest, ThatIsNoneCannotBeOpened) {
  const auto path = folder_.path() / "text.pst";
  std::ofstream(path) << std::string(2000, 'x');
  EXPECT_EQ(CodeOf([&] { session_->Stores()->OpenPSTStore(platform::TextOfPath(path)); }), ResultCode::STG_E_READFAULT);
  EXPECT_EQ(CodeOf([&] { session_->Stores()->OpenPSTStore(u"/nowhere/a.pst"); }), ResultCode::STG_E_READFAULT);
}

TEST_F(StoreTest, FindsFoldersByNameAndPathWithoutRegardToCase) {
  const Ref<RDOFolder> sub =
      inbox_->Folders()->Add(u"Gr\u00fc\u00dfe \u041f\u0440\u0438\u0432\u0435\u0442", Text(u"IPF.Note"));
  ASSERT_TRUE(sub);
  for (const bool reopened : {false, true}) {
    if (reopened) Reopen();
    EXPECT_TRUE(inbox_->Folders()->Item(u"gR\u00dc\u00dfe \u043f\u0440\u0418\u0432\u0435\u0442"));
    EXPECT_FALSE(inbox_->Folders()->Item(u"none"));
    EXPECT_FALSE(inbox_->Folders()->Item(u""));
    EXPECT_EQ(
        session_->GetFolderFromPath(u"\\\\TEST STORE\\INBOX\\gr\u00fc\u00dfe \u043f\u0440\u0438\u0432\u0435\u0442")
            ->Name(),
        u"Gr\u00fc\u00dfe \u041f\u0440\u0438\u0432\u0435\u0442");
    EXPECT_EQ(session_->GetFolderFromPath(u"\\\\Test store")->Name(), u"Top of Personal Folders");
    for (const text::TextView path : {u"", u"\\\\", u"\\\\Test", u"\\\\Test store\\", u"\\\\Test store\\\\Inbox",
                                      u"\\\\Test store\\Inbox\\none", u"Test store\\Inbox", u"\\\\Test storeInbox"}) {
      EXPECT_FALSE(session_->GetFolderFromPath(path)) << text::ToUtf8(path);
    }
  }
}

TEST_F(StoreTest, IsFoundByAnyNameThatASourceFileCanHave) {
  // A file name that is no UTF-8, one with a line end, one with a backslash, and one that is too long for a name.
  for (const Text& name : {Text{u'a', 0xDC80}, Text(u"a\nb"), Text(u"a\\b"), Text(300, u'n')}) {
    const auto path = folder_.path() / "odd.pst";
    std::filesystem::remove(path);
    auto session = library_->CreateRDOSession();
    session->Stores()->AddPSTStore(platform::TextOfPath(path), name);
    EXPECT_TRUE(session->GetFolderFromPath(u"\\\\" + name + u"\\Deleted Items"));
    ASSERT_TRUE(library_->Seal());
    if (name.size() > 255) continue;
    session = library_->CreateRDOSession();
    session->Stores()->OpenPSTStore(platform::TextOfPath(path));
    EXPECT_TRUE(session->GetFolderFromPath(u"\\\\" + name + u"\\Deleted Items"));
  }
}

TEST_F(StoreTest, RefusesFoldersWithoutANameOrWithOneThatIsThere) {
  EXPECT_EQ(CodeOf([&] { top_->Folders()->Add(u"", std::monostate()); }), ResultCode::E_INVALIDARG);
  EXPECT_EQ(CodeOf([&] { top_->Folders()->Add(u"INBOX", std::monostate()); }), ResultCode::MAPI_E_COLLISION);
  EXPECT_EQ(CodeOf([&] { top_->Folders()->Add(u"Deleted items", std::int32_t{3}); }), ResultCode::MAPI_E_COLLISION);
  EXPECT_EQ(top_->Folders()->Count(), 2);
  EXPECT_EQ(CodeOf([&] { top_->Folders()->At(2); }), ResultCode::E_INVALIDARG);
  EXPECT_EQ(CodeOf([&] { top_->Folders()->At(-1); }), ResultCode::E_INVALIDARG);
}

TEST_F(StoreTest, GivesAFolderTheClassOfItsType) {
  top_->Folders()->Add(u"As given", Text(u"IPM.Contact"));
  top_->Folders()->Add(u"By number", std::int32_t{20});
  top_->Folders()->Add(u"Without", FolderType());
  Reopen();
  EXPECT_EQ(top_->Folders()->Item(u"As given")->ContainerClass(), u"IPM.Contact");
  EXPECT_EQ(top_->Folders()->Item(u"By number")->ContainerClass(), u"IPF.Note");
  EXPECT_EQ(top_->Folders()->Item(u"Without")->ContainerClass(), u"IPF.Note");
  EXPECT_EQ(session_->GetDefaultFolder(DefaultFolder::kSyncIssues)->Name(), u"By number");
  ExpectSound();
}

TEST_F(StoreTest, KeepsFoldersInTheOrderOfTheirCreation) {
  for (const text::TextView name : {u"Zebra", u"Alpha", u"Middle"}) top_->Folders()->Add(name, FolderType());
  Reopen();
  ASSERT_EQ(top_->Folders()->Count(), 5);
  EXPECT_EQ(top_->Folders()->At(0)->Name(), u"Deleted Items");
  EXPECT_EQ(top_->Folders()->At(2)->Name(), u"Zebra");
  EXPECT_EQ(top_->Folders()->At(4)->Name(), u"Middle");
}

TEST_F(StoreTest, CutsAFolderNameAndReplacesWhatNoNameHolds) {
  const text::Text odd = Text(300, u'n') + text::Text{u'\t', 0xD800};
  top_->Folders()->Add(odd, FolderType());
  top_->Folders()->Add(text::Text{u'a', 0xDC00, u'\n'}, FolderType());
  EXPECT_TRUE(top_->Folders()->Item(odd));
  Reopen();
  EXPECT_EQ(top_->Folders()->At(2)->Name(), Text(255, u'n'));
  EXPECT_EQ(top_->Folders()->At(3)->Name(), (text::Text{u'a', 0xFFFD, u' '}));
  ExpectSound();
}

struct DefaultRow {
  DefaultFolder kind;
  text::TextView name;
  text::TextView containerClass;
  PropTag entryId;
};

constexpr DefaultRow kDefaults[] = {
    {DefaultFolder::kContacts, u"Contacts", u"IPF.Contact", 0x36D10102},
    {DefaultFolder::kJournal, u"Journal", u"IPF.Journal", 0x36D20102},
    {DefaultFolder::kTasks, u"Tasks", u"IPF.Task", 0x36D40102},
    {DefaultFolder::kNotes, u"Notes", u"IPF.StickyNote", 0x36D30102},
    {DefaultFolder::kCalendar, u"Calendar", u"IPF.Appointment", 0x36D00102},
};

TEST_F(StoreTest, NotesItsDefaultFoldersOnTheRootFolder) {
  for (const DefaultRow& row : kDefaults) {
    EXPECT_FALSE(session_->GetDefaultFolder(row.kind));
    const auto folder2 = top_->Folders()->Add(row.name, FolderType())->QueryFolder2();
    folder2->SetAsDefaultFolder(row.kind);
    folder2->PutDefaultFolderFlag(1);
    EXPECT_EQ(session_->GetDefaultFolder(row.kind)->Name(), row.name);
  }
  Reopen();
  for (const DefaultRow& row : kDefaults) {
    EXPECT_EQ(session_->GetDefaultFolder(row.kind)->Name(), row.name);
    EXPECT_EQ(top_->Folders()->Item(row.name)->ContainerClass(), row.containerClass);
  }
  const RawStore raw = Raw();
  auto root = raw.Node(nid::kRootFolder);
  for (const DefaultRow& row : kDefaults) EXPECT_EQ(root.Binary(row.entryId).value_or(Bytes()).size(), 24u);
  ExpectSound();
}

TEST_F(StoreTest, KeepsItsFirstFolderOfAKindThatIsAddedByNumber) {
  inbox_->Folders()->Add(u"Deleted Items", std::int32_t{3});
  inbox_->Folders()->Add(u"Local Failures", std::int32_t{21});
  top_->Folders()->Add(u"Local Failures", std::int32_t{21})->Folders()->Add(u"Below the second", FolderType());
  EXPECT_EQ(session_->GetDefaultFolder(DefaultFolder::kLocalFailures)->Folders()->Count(), 0);
  Reopen();
  EXPECT_EQ(session_->GetDefaultFolder(DefaultFolder::kLocalFailures)->Folders()->Count(), 0);
  const RawStore raw = Raw();
  auto store = raw.Node(nid::kMessageStore);
  Uid key;
  const Bytes recordKey = store.Binary(tag::kRecordKey).value();
  std::copy(recordKey.begin(), recordKey.end(), key.begin());
  const auto wastebasket = NodeOfEntryId(store.Binary(tag::kIpmWastebasketEntryId).value(), key);
  EXPECT_EQ(raw.Reader().FindNode(*wastebasket)->nidParent,
            NodeOfEntryId(store.Binary(tag::kIpmSubTreeEntryId).value(), key));
  ExpectSound();
}

TEST_F(StoreTest, HasTheFixedNodesInTheirPlaces) {
  const RawStore raw = Raw();
  for (const std::uint32_t nid : {0x21,   0x61,   0x122,  0x12D,  0x12E,  0x12F,  0x1E1,  0x201,  0x261,  0x60D,
                                  0x60E,  0x60F,  0x610,  0x62B,  0x64C,  0x671,  0x692,  0x6B6,  0x6D7,  0x6F8,
                                  0x2223, 0x2226, 0x2227, 0x2230, 0x8022, 0x802D, 0x802E, 0x802F, 0x8042, 0x8062}) {
    EXPECT_TRUE(raw.Reader().FindNode(Nid{nid})) << std::hex << nid;
  }
  EXPECT_TRUE(raw.Reader().Damage().List().empty());
  auto store = raw.Node(nid::kMessageStore);
  EXPECT_EQ(store.Text(tag::kDisplayName), u"Test store");
  auto received = raw.Table(nid::kReceiveFolderTable);
  ASSERT_EQ(received.RowCount(), 1u);
  EXPECT_EQ(received.Text(0, tag::kMessageClass), u"");
  EXPECT_EQ(received.Integer32(0, tag::kReceiveFolderNid), 0x122);
}

TEST_F(StoreTest, FindsAFolderAmongManyWithoutWalkingThem) {
  constexpr int kFolders = 1500;
  for (int i = 0; i < kFolders; ++i)
    inbox_->Folders()->Add(text::FromUtf8("Folder " + std::to_string(i)), FolderType());
  Reopen();
  EXPECT_EQ(inbox_->Folders()->Count(), kFolders);
  for (int i = 0; i < kFolders; ++i) {
    ASSERT_TRUE(
        session_->GetFolderFromPath(u"\\\\Test store\\Inbox\\" + text::FromUtf8("folder " + std::to_string(i))));
  }
  ExpectSound();
}

TEST_F(StoreTest, OpenForReadingRefusesChanges) {
  NewItem()->Save();
  Reopen();
  EXPECT_EQ(CodeOf([&] { top_->Folders()->Add(u"New", FolderType()); }), ResultCode::E_FAIL);
  EXPECT_EQ(CodeOf([&] { inbox_->Items()->Add(u"IPM.Note"); }), ResultCode::E_FAIL);
  const auto item = FirstItem();
  EXPECT_EQ(CodeOf([&] { item->Put(output::Field::Body, Text(u"x")); }), ResultCode::E_FAIL);
  EXPECT_EQ(CodeOf([&] { item->Save(); }), ResultCode::E_FAIL);
  EXPECT_EQ(CodeOf([&] { item->Delete(); }), ResultCode::E_FAIL);
  EXPECT_EQ(CodeOf([&] { item->Attachments()->Add(TextContent("x"), u"x"); }), ResultCode::E_FAIL);
}

TEST_F(StoreTest, OnceSealedIsReadOnAndRefusesChanges) {
  const auto item = NewItem();
  Put(item, output::Field::Body, Text(u"kept"));
  item->Save();
  ASSERT_TRUE(library_->Seal());
  EXPECT_EQ(TextOf(FirstItem(), output::Field::Body), u"kept");
  EXPECT_EQ(CodeOf([&] { item->Save(); }), ResultCode::E_FAIL);
  EXPECT_EQ(CodeOf([&] { top_->Folders()->Add(u"New", FolderType()); }), ResultCode::E_FAIL);
  EXPECT_TRUE(library_->Seal());
  ExpectSound();
}

TEST_F(StoreTest, IsSealedWhenTheLastReferenceGoes) {
  auto item = NewItem();
  item->Save();
  inbox_ = top_ = nullptr;
  session_ = nullptr;
  item = nullptr;
  EXPECT_EQ(RawStore(path_).Messages().size(), 1u);
  ExpectSound();
}

TEST_F(StoreTest, OfTheSameOperationsAndEpochHasTheSameBytes) {
  const auto write = [&](const char* name) {
    const auto path = folder_.path() / name;
    const auto session = library_->CreateRDOSession();
    const auto top = session->Stores()->AddPSTStore(platform::TextOfPath(path), u"Same")->IPMRootFolder();
    for (int i = 0; i < 200; ++i) {
      const auto item = top->Folders()->Item(u"Deleted Items")->Items()->Add(u"IPM.Note");
      Put(item, output::Field::Subject, text::FromUtf8("Subject " + std::to_string(i)));
      item->Attachments()->Add(TextContent(PatternOf(20000)), u"a.bin");
      item->Save();
    }
    EXPECT_TRUE(library_->Seal());
    return forge::TextOf(path);
  };
  const std::string first = write("first.pst");
  EXPECT_FALSE(first.empty());
  EXPECT_TRUE(first == write("second.pst"));
}

TEST_F(StoreTest, KnowsTheProfileThatWasLoggedOnTo) {
  EXPECT_EQ(library_->CreateMAPIUtils()->CurrentProfileName(), u"");
  session_->Logon(u"VelmoraRepairOutlook0");
  EXPECT_EQ(library_->CreateMAPIUtils()->CurrentProfileName(), u"VelmoraRepairOutlook0");
  EXPECT_EQ(library_->CreateProfileList()->Add(u"A"), u"A");
  EXPECT_TRUE(library_->CreateProfileList()->Item(u"A"));
}

}  // namespace
}  // namespace velmora::messaging
