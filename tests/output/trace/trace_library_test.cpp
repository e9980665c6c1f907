#include "output/trace/trace_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "output/trace/trace_lines.h"

namespace velmora::output {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TraceLibraryTest : public testing::Test {
 protected:
  TraceLines trace_;
  TraceLibrary library_{trace_};
  TracedStore store_{library_};

  Ref<RDOMail> AddItem(text::TextView messageClass) { return store_.top->Items()->Add(messageClass); }
};

TEST_F(TraceLibraryTest, AFreshStoreHasDeletedItemsAndSaysNothingAboutIt) {
  EXPECT_THAT(trace_.lines, IsEmpty());
  ASSERT_EQ(store_.top->Folders()->Count(), 1);
  EXPECT_EQ(store_.top->Folders()->At(0)->Name(), u"Deleted Items");
  EXPECT_EQ(store_.session->GetDefaultFolder(DefaultFolder::kDeletedItems)->Name(), u"Deleted Items");
  EXPECT_FALSE(store_.session->GetDefaultFolder(DefaultFolder::kTasks));
}

TEST_F(TraceLibraryTest, FoldersAreWrittenWithTheKindTheyWereGiven) {
  auto inbox = store_.top->Folders()->Add(u"Inbox", text::Text(u"IPF.Note"));
  inbox->Folders()->Add(u"Sync \"Issues\"", std::int32_t{20});
  auto contacts = store_.top->Folders()->Add(u"Contacts", {});
  auto folder2 = contacts->QueryFolder2();
  folder2->SetAsDefaultFolder(DefaultFolder::kContacts);
  folder2->PutDefaultFolderFlag(1);
  EXPECT_THAT(
      trace_.lines,
      ElementsAre(R"({"op":"AddFolder","parent":"\\\\outlook Converted","name":"Inbox","type":"IPF.Note"})",
                  R"({"op":"AddFolder","parent":"\\\\outlook Converted\\Inbox","name":"Sync \"Issues\"","type":20})",
                  R"({"op":"AddFolder","parent":"\\\\outlook Converted","name":"Contacts","type":null})",
                  R"({"op":"SetAsDefaultFolder","folder":"\\\\outlook Converted\\Contacts","kind":10})"));
  EXPECT_EQ(contacts->ContainerClass(), u"IPF.Contact");
  EXPECT_EQ(store_.session->GetDefaultFolder(DefaultFolder::kContacts)->Name(), u"Contacts");
  EXPECT_EQ(store_.session->GetDefaultFolder(DefaultFolder::kSyncIssues)->Name(), u"Sync \"Issues\"");
}

TEST_F(TraceLibraryTest, AFolderThatIsNotMadeLeavesNoLine) {
  auto folders = store_.top->Folders();
  EXPECT_EQ(CodeOf([&] { folders->Add(u"", {}); }), ResultCode::E_INVALIDARG);
  EXPECT_EQ(CodeOf([&] { folders->Add(u"DELETED items", {}); }), ResultCode::MAPI_E_COLLISION);
  EXPECT_THAT(trace_.lines, IsEmpty());
}

TEST_F(TraceLibraryTest, FolderNamesCompareWithoutRegardToCase) {
  store_.top->Folders()->Add(u"Inbox", {})->Folders()->Add(u"\u00C4rger", {});
  EXPECT_EQ(store_.top->Folders()->Item(u"INBOX")->Name(), u"Inbox");
  EXPECT_EQ(store_.session->GetFolderFromPath(u"\\\\OUTLOOK converted\\inbox\\\u00E4rger")->Name(), u"\u00C4rger");
}

TEST_F(TraceLibraryTest, PathsThatNameNoFolderFindNone) {
  store_.top->Folders()->Add(u"Inbox", {})->Folders()->Add(u"A", {});
  EXPECT_EQ(store_.session->GetFolderFromPath(u"\\\\outlook Converted")->Name(), u"Top of Personal Folders");
  for (const text::TextView path :
       {u"\\\\outlook Converted\\", u"\\\\outlook Converted\\\\Inbox", u"\\\\outlook Converted\\Inbox\\",
        u"\\\\outlook Converted\\Inbox\\B", u"\\\\outlook ConvertedX", u"\\\\other\\Inbox", u"Inbox", u""}) {
    EXPECT_FALSE(store_.session->GetFolderFromPath(path)) << text::ToUtf8(path);
  }
  EXPECT_FALSE(store_.top->Folders()->Item(u""));
}

TEST_F(TraceLibraryTest, AStoreNameMayHoldABackslash) {
  TracedStore odd(library_, u"a\\b Converted");
  auto inbox = odd.top->Folders()->Add(u"Inbox", {});
  EXPECT_EQ(odd.session->GetFolderFromPath(u"\\\\a\\b Converted\\Inbox"), inbox);
}

TEST_F(TraceLibraryTest, ItemsAreNumberedInTheOrderOfTheirCreation) {
  auto first = AddItem(u"IPM.Note");
  auto second = AddItem(u"IPM.Contact");
  second->Put(Field::Subject, text::Text(u"s"));
  second->Put(Field::Gender, std::int32_t{0x1FFFF});
  first->Put(Field::ReceivedTime, OleDate{2.0});
  first->Put(Field::Sent, true);
  second->Save();
  first->Delete();
  EXPECT_THAT(trace_.lines,
              ElementsAre(R"({"op":"AddItem","id":1,"folder":"\\\\outlook Converted","class":"IPM.Note"})",
                          R"({"op":"AddItem","id":2,"folder":"\\\\outlook Converted","class":"IPM.Contact"})",
                          R"({"op":"Put","id":2,"field":"Subject","value":"s"})",
                          R"({"op":"Put","id":2,"field":"Gender","value":-1})",
                          R"({"op":"Put","id":1,"field":"ReceivedTime","value":"1900-01-01T00:00:00"})",
                          R"({"op":"Put","id":1,"field":"Sent","value":true})", R"({"op":"Save","id":2})",
                          R"({"op":"Delete","id":1})"));
}

TEST_F(TraceLibraryTest, FieldsOfTheSameNameAreTracedByTheirOperation) {
  auto appointment = AddItem(u"IPM.Appointment");
  auto journal = AddItem(u"IPM.Activity");
  trace_.lines.clear();
  appointment->Put(Field::AppointmentDuration, std::int32_t{30});
  journal->Put(Field::JournalDuration, std::int32_t{31});
  journal->Put(Field::JournalType, text::Text(u"Phone call"));
  EXPECT_THAT(trace_.lines, ElementsAre(R"({"op":"Put","id":1,"field":"Duration","value":30})",
                                        R"({"op":"Put","id":2,"field":"Duration","value":31})",
                                        R"({"op":"Put","id":2,"field":"Type","value":"Phone call"})"));
}

TEST_F(TraceLibraryTest, BytesAreTracedAsTheTextThatCarriesThem) {
  const auto mail = AddItem(u"IPM.Note");
  mail->Put(Field::HTMLBody, text::Text(u"\u20ac\u00e9\u0081"));
  mail->PutBytes(Field::HTMLBody, "\x80\xE9\x81");
  ASSERT_EQ(trace_.lines.size(), 3u);
  EXPECT_EQ(trace_.lines[2], trace_.lines[1]);
  EXPECT_EQ(mail->Get(Field::HTMLBody).AsText(), u"\u20ac\u00e9\u0081");
}

TEST_F(TraceLibraryTest, AReadTellsAFieldNeverWrittenFromOneWrittenEmpty) {
  auto item = AddItem(u"IPM.Contact");
  EXPECT_FALSE(item->Get(Field::FullName).written);
  EXPECT_EQ(item->Get(Field::FullName).AsText(), u"");
  item->Put(Field::FullName, text::Text());
  EXPECT_TRUE(item->Get(Field::FullName).written);
  item->Put(Field::FullName, text::Text(u"A B"));
  EXPECT_EQ(item->Get(Field::FullName).AsText(), u"A B");
  EXPECT_EQ(std::get<OleDate>(item->Get(Field::Birthday).value), OleDate{0.0});
}

TEST_F(TraceLibraryTest, FieldsOfAnotherKindOrTypeAreRefused) {
  auto item = AddItem(u"IPM.Note");
  trace_.lines.clear();
  EXPECT_EQ(CodeOf([&] { item->Put(Field::FullName, text::Text(u"x")); }), ResultCode::E_NOINTERFACE);
  EXPECT_EQ(CodeOf([&] { item->Get(Field::FullName); }), ResultCode::E_NOINTERFACE);
  EXPECT_EQ(CodeOf([&] { item->Put(Field::Subject, true); }), ResultCode::E_INVALIDARG);
  EXPECT_EQ(CodeOf([&] { item->AddPicture(TextContent("p")); }), ResultCode::E_NOINTERFACE);
  EXPECT_THAT(trace_.lines, IsEmpty());
}

TEST_F(TraceLibraryTest, AnItemAnswersToTheInterfaceOfItsClassAlone) {
  EXPECT_TRUE(Query(AddItem(u"IPM.Contact"), ItemInterface::RDOContactItem));
  EXPECT_FALSE(Query(AddItem(u"IPM.Contact"), ItemInterface::RDOTaskItem));
  EXPECT_TRUE(Query(AddItem(u"IPM.Note"), ItemInterface::RDOMail));
  EXPECT_EQ(AddItem(u"no class at all")->MessageClass(), u"no class at all");
}

TEST_F(TraceLibraryTest, AttachmentsAreWrittenWithSizeAndHashOrWithTheItem) {
  auto parent = AddItem(u"IPM.Note");
  auto embedded = AddItem(u"IPM.Note");
  trace_.lines.clear();
  parent->Attachments()->Add(TextContent("abc"), u"a.txt");
  parent->Attachments()->Add(TextContent(""), u"");
  parent->Attachments()->Add(embedded, u"mail");
  EXPECT_THAT(
      trace_.lines,
      ElementsAre(
          R"({"op":"AddAttachment","id":1,"name":"a.txt","size":3,"sha256":"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"})",
          R"({"op":"AddAttachment","id":1,"name":"","size":0,"sha256":"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"})",
          R"({"op":"AddAttachment","id":1,"name":"mail","item":2})"));
  EXPECT_EQ(parent->AttachmentCount(), 3);
  EXPECT_EQ(CodeOf([&] { parent->Attachments()->Add(Ref<RDOMail>(), u"x"); }), ResultCode::E_POINTER);
}

TEST_F(TraceLibraryTest, ThePictureOfAContactIsWritten) {
  auto contact = AddItem(u"IPF.Contact");
  contact->AddPicture(TextContent("a"));
  EXPECT_EQ(
      trace_.lines.back(),
      R"({"op":"AddPicture","id":1,"size":1,"sha256":"ca978112ca1bbdcafac231b39a23dc4da786eff8147c4e72b9807785afee48bb"})");
}

TEST_F(TraceLibraryTest, AnswersAreTracedAndTakeNoNumber) {
  auto item = AddItem(u"IPM.Note");
  item->Reply()->Put(Field::Subject, text::Text(u"RE"));
  item->Forward()->Save();
  AddItem(u"IPM.Note");
  EXPECT_THAT(trace_.lines,
              ElementsAre(R"({"op":"AddItem","id":1,"folder":"\\\\outlook Converted","class":"IPM.Note"})",
                          R"({"op":"Reply","id":1})", R"({"op":"Forward","id":1})",
                          R"({"op":"AddItem","id":2,"folder":"\\\\outlook Converted","class":"IPM.Note"})"));
}

TEST_F(TraceLibraryTest, AFolderCountsItsSavedItemsAndWalksThoseThatAreHeld) {
  auto items = store_.top->Items();
  auto first = AddItem(u"A"), second = AddItem(u"B"), unsaved = AddItem(u"C");
  second->Save();
  first->Save();
  first->Save();
  AddItem(u"released")->Save();
  EXPECT_EQ(items->Count(), 3);
  EXPECT_EQ(items->GetFirst(), second);
  EXPECT_EQ(items->GetNext(), first);
  EXPECT_FALSE(items->GetNext());
  first->Delete();
  EXPECT_EQ(items->Count(), 2);
  first->Save();
  EXPECT_EQ(items->Count(), 2) << "a deleted item does not come back";
}

TEST_F(TraceLibraryTest, AnItemThatIsReleasedIsGone) {
  std::weak_ptr<RDOMail> item;
  {
    auto added = AddItem(u"IPM.Note");
    added->Save();
    item = added.Object();
  }
  EXPECT_TRUE(item.expired());
}

TEST(TraceLibraryProfiles, AProfileThatWasAddedIsFound) {
  TraceLines trace;
  TraceLibrary library(trace);
  EXPECT_FALSE(library.CreateProfileList()->Item(u"VelmoraRepairOutlook0"));
  EXPECT_EQ(library.CreateProfileList()->Add(u"VelmoraRepairOutlook0"), u"VelmoraRepairOutlook0");
  EXPECT_EQ(library.CreateProfileList()->Add(u"VelmoraRepairOutlook0"), u"VelmoraRepairOutlook0");
  EXPECT_TRUE(library.CreateProfileList()->Item(u"VelmoraRepairOutlook0"));
  library.CreateRDOSession()->Logon(u"VelmoraRepairOutlook0");
  EXPECT_EQ(library.CreateMAPIUtils()->CurrentProfileName(), u"VelmoraRepairOutlook0");
}

TEST(TraceLibrarySession, ObjectsOutliveTheLibraryThatMadeThem) {
  TraceLines trace;
  Ref<RDOMail> item;
  {
    TraceLibrary library(trace);
    item = TracedStore(library).top->Items()->Add(u"IPM.Note");
  }
  item->Save();
  EXPECT_EQ(trace.lines.size(), 2u);
}

}  // namespace
}  // namespace velmora::output
