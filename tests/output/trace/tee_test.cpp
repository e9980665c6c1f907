#include "output/trace/tee.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "output/trace/trace_lines.h"

namespace velmora::output {
namespace {

using testing::ElementsAre;

class TeeTest : public testing::Test {
 protected:
  TraceLines first_, second_;
  Tee tee_{{std::make_shared<TraceLibrary>(first_), std::make_shared<TraceLibrary>(second_)}};
};

TEST_F(TeeTest, EveryOperationReachesEveryLibrary) {
  TracedStore store(tee_);
  auto inbox = store.top->Folders()->Add(u"Inbox", {});
  inbox->QueryFolder2()->SetAsDefaultFolder(DefaultFolder::kTasks);
  inbox->Folders()->Add(u"Sub", {});
  auto contact = store.session->GetFolderFromPath(u"\\\\outlook Converted\\Inbox\\Sub")->Items()->Add(u"IPM.Contact");
  auto mail = store.session->GetDefaultFolder(DefaultFolder::kDeletedItems)->Items()->Add(u"IPM.Note");
  mail->Put(Field::Subject, text::Text(u"s"));
  mail->PutBytes(Field::HTMLBody, "caf\xE9");
  mail->Reply();
  mail->Forward();
  mail->Attachments()->Add(TextContent("abc"), u"a.txt");
  contact->AddPicture(TextContent("p"));
  contact->Attachments()->Add(mail, u"mail");
  contact->Save();
  mail->Delete();
  EXPECT_EQ(first_.lines.size(), 14u);
  EXPECT_EQ(second_.lines, first_.lines);
}

TEST_F(TeeTest, ReadsAreThoseOfTheFirstLibrary) {
  TracedStore store(tee_);
  auto item = store.top->Folders()->Add(u"Inbox", {})->Items()->Add(u"IPM.Note");
  item->Put(Field::Subject, text::Text(u"s"));
  item->Save();
  EXPECT_EQ(item->Get(Field::Subject).AsText(), u"s");
  EXPECT_EQ(item->MessageClass(), u"IPM.Note");
  auto items = store.top->Folders()->At(1)->Items();
  EXPECT_EQ(items->Count(), 1);
  EXPECT_EQ(items->GetFirst()->Get(Field::Subject).AsText(), u"s");
  EXPECT_FALSE(items->GetNext());
}

TEST_F(TeeTest, WhatIsAbsentInTheFirstLibraryIsNull) {
  TracedStore store(tee_);
  EXPECT_FALSE(store.session->GetFolderFromPath(u"\\\\outlook Converted\\None"));
  EXPECT_FALSE(store.top->Folders()->Item(u"None"));
  EXPECT_FALSE(store.session->GetDefaultFolder(DefaultFolder::kTasks));
}

TEST_F(TeeTest, AFailureOfTheFirstLibraryIsRaisedAndReachesNoOther) {
  TracedStore store(tee_);
  EXPECT_EQ(CodeOf([&] { store.top->Folders()->Add(u"", {}); }), ResultCode::E_INVALIDARG);
  EXPECT_EQ(CodeOf([&] { store.top->Folders()->Add(u"Deleted Items", {}); }), ResultCode::MAPI_E_COLLISION);
  EXPECT_THAT(second_.lines, ElementsAre());
}

/// A library whose items fail with a code, and one that has no session.
class FailingItems : public RDOItems {
 public:
  explicit FailingItems(ResultCode code) : code_(code) {}
  std::int32_t Count() const override { return 0; }
  Ref<RDOMail> Add(text::TextView) override { throw OutputFailure(code_, "no space left"); }
  Ref<RDOMail> GetFirst() override { return nullptr; }
  Ref<RDOMail> GetNext() override { return nullptr; }

 private:
  ResultCode code_;
};

class FailingFolder : public RDOFolder {
 public:
  explicit FailingFolder(ResultCode code) : code_(code) {}
  Ref<RDOItems> Items() override { return std::make_shared<FailingItems>(code_); }
  Ref<RDOFolders> Folders() override { return nullptr; }
  Ref<RDOFolder2> QueryFolder2() override { return nullptr; }
  text::Text Name() const override { return u"f"; }
  text::Text ContainerClass() const override { return {}; }

 private:
  ResultCode code_;
};

class FailingLibrary : public OutputLibrary, public RDOSession {
 public:
  explicit FailingLibrary(ResultCode code) : code_(code) {}
  Ref<ProfileList> CreateProfileList() override { return nullptr; }
  Ref<RDOSession> CreateRDOSession() override { return std::make_shared<FailingLibrary>(code_); }
  Ref<MAPIUtils> CreateMAPIUtils() override { return nullptr; }
  void Logon(text::TextView) override {}
  Ref<RDOStores> Stores() override { return nullptr; }
  Ref<RDOFolder> GetDefaultFolder(DefaultFolder) override { return std::make_shared<FailingFolder>(code_); }
  Ref<RDOFolder> GetFolderFromPath(text::TextView) override { return nullptr; }

 private:
  ResultCode code_;
};

Ref<RDOItems> ItemsOf(Tee& tee) {
  return tee.CreateRDOSession()->GetDefaultFolder(DefaultFolder::kDeletedItems)->Items();
}

TEST(TeeFailures, AFailureOfTheFirstStoreIsRaisedAsItIs) {
  Tee tee({std::make_shared<FailingLibrary>(ResultCode::STG_E_MEDIUMFULL)});
  EXPECT_EQ(CodeOf([&] { ItemsOf(tee)->Add(u"IPM.Note"); }), ResultCode::STG_E_MEDIUMFULL);
}

TEST(TeeFailures, AFailureOfAnotherLibraryChangesNothingInTheFirst) {
  TraceLines trace;
  Tee tee({std::make_shared<TraceLibrary>(trace), std::make_shared<FailingLibrary>(ResultCode::STG_E_MEDIUMFULL)});
  TracedStore store(tee);
  store.session->GetDefaultFolder(DefaultFolder::kDeletedItems)->Items()->Add(u"IPM.Note")->Save();
  EXPECT_EQ(trace.lines.size(), 2u);
}

TEST(TeeFailures, AMissingClassGivesANullReference) {
  Tee tee({std::make_shared<FailingLibrary>(ResultCode::E_FAIL)});
  EXPECT_FALSE(tee.CreateProfileList());
  EXPECT_FALSE(tee.CreateMAPIUtils());
}

}  // namespace
}  // namespace velmora::output
