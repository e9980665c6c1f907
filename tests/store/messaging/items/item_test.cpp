// Items as the operations promise them: reading and writing fields, saving, deleting, walking.
#include "platform/path_text.h"
#include "store/format/property_tags.h"
#include "store/messaging/store_fixture.h"

namespace velmora::messaging {
namespace {

using output::Field;
using output::FieldRead;
using output::ItemInterface;
using output::RDOMail;
using output::Ref;
using output::ResultCode;
using text::OleDate;
using text::Text;

class ItemTest : public StoreTest {};

TEST_F(ItemTest, TellsAFieldNeverWrittenFromOneWrittenWithTheEmptyText) {
  const auto item = NewItem(u"IPM.Contact");
  FieldRead read = item->Get(Field::FullName);
  EXPECT_FALSE(read.written);
  EXPECT_EQ(read.AsText(), u"");
  Put(item, Field::FullName, Text());
  read = item->Get(Field::FullName);
  EXPECT_TRUE(read.written);
  EXPECT_EQ(read.AsText(), u"");
  Put(item, Field::FullName, Text(u"Ann"));
  EXPECT_EQ(TextOf(item, Field::FullName), u"Ann");
}

TEST_F(ItemTest, AfterSaveAnAbsentFieldIsSimplyEmpty) {
  const auto item = NewItem();
  Put(item, Field::Body, Text());
  Put(item, Field::Mileage, Text(u"12 km"));
  item->Save();
  for (const Ref<RDOMail>& each : {item, FirstItem()}) {
    EXPECT_FALSE(each->Get(Field::Body).written);
    EXPECT_FALSE(each->Get(Field::BillingInformation).written);
    EXPECT_EQ(each->Get(Field::FlagDueBy).value, output::FieldValue(OleDate{0.0}));
    EXPECT_EQ(each->Get(Field::FlagStatus).value, output::FieldValue(std::int32_t{0}));
    EXPECT_EQ(each->Get(Field::NoAging).value, output::FieldValue(false));
    EXPECT_TRUE(each->Get(Field::Mileage).written);
    EXPECT_EQ(TextOf(each, Field::Mileage), u"12 km");
  }
}

TEST_F(ItemTest, ReadsFieldsWrittenSinceTheLastSaveAsTheyWereWritten) {
  const auto item = NewItem();
  Put(item, Field::Body, Text(u"first"));
  Put(item, Field::Mileage, Text(u"12 km"));
  item->Save();
  Put(item, Field::Body, Text());
  EXPECT_TRUE(item->Get(Field::Body).written);
  EXPECT_EQ(TextOf(item, Field::Body), u"");
  EXPECT_EQ(TextOf(item, Field::Mileage), u"12 km");
  EXPECT_EQ(TextOf(FirstItem(), Field::Body), u"first");
}

TEST_F(ItemTest, AnswersToTheInterfaceOfItsKindAlone) {
  const auto contact = NewItem(u"IPM.Contact");
  EXPECT_TRUE(output::Query(contact, ItemInterface::RDOMail));
  EXPECT_TRUE(output::Query(contact, ItemInterface::RDOContactItem));
  EXPECT_FALSE(output::Query(contact, ItemInterface::RDOTaskItem));
  EXPECT_EQ(CodeOf([&] { Put(contact, Field::Status, std::int32_t{1}); }), ResultCode::E_NOINTERFACE);
  EXPECT_EQ(CodeOf([&] { contact->Get(Field::Status); }), ResultCode::E_NOINTERFACE);
  EXPECT_EQ(CodeOf([&] { NewItem()->AddPicture(TextContent("x")); }), ResultCode::E_NOINTERFACE);
  const Ref<RDOMail> nothing;
  EXPECT_EQ(CodeOf([&] { nothing->Save(); }), ResultCode::E_POINTER);
}

TEST_F(ItemTest, RefusesAValueOfAnotherType) {
  const auto item = NewItem();
  EXPECT_EQ(CodeOf([&] { Put(item, Field::Subject, true); }), ResultCode::E_INVALIDARG);
  EXPECT_EQ(CodeOf([&] { Put(item, Field::SentOn, Text(u"x")); }), ResultCode::E_INVALIDARG);
  EXPECT_EQ(CodeOf([&] { Put(item, Field::Sent, std::int32_t{1}); }), ResultCode::E_INVALIDARG);
  EXPECT_EQ(CodeOf([&] { Put(item, Field::Importance, OleDate{}); }), ResultCode::E_INVALIDARG);
}

TEST_F(ItemTest, KeepsTheLow16BitsOfA16BitNumber) {
  const auto item = NewItem(u"IPM.Contact");
  Put(item, Field::Gender, std::int32_t{0x12345});
  EXPECT_EQ(item->Get(Field::Gender).value, output::FieldValue(std::int32_t{0x2345}));
  Put(item, Field::Gender, std::int32_t{0xFFFE});
  EXPECT_EQ(item->Get(Field::Gender).value, output::FieldValue(std::int32_t{-2}));
  item->Save();
  EXPECT_EQ(FirstItem()->Get(Field::Gender).value, output::FieldValue(std::int32_t{-2}));
}

TEST_F(ItemTest, KeepsAClassTextThatNobodyKnows) {
  for (const text::TextView known : {u"IPM.Note", u"IPM.Contact", u"Report.IPM.Note.IPNRN", u"IPM.Some.Thing", u"XY"}) {
    const auto item = NewItem(known);
    EXPECT_EQ(item->MessageClass(), known);
    item->Save();
  }
  ExpectSound();
}

TEST_F(ItemTest, TakesAClassTextThatNoMessageHasForAMail) {
  for (const Text& damaged : {Text(), Text(u"IPM.Note."), Text(u"\u4e00\u4e01"), Text(300, u'x'), Text{u'a', 1}}) {
    const auto item = NewItem(damaged);
    EXPECT_EQ(item->MessageClass(), u"IPM.Note");
    item->Save();
  }
  ExpectSound();
}

TEST_F(ItemTest, IsInItsFolderFromTheFirstSaveOn) {
  const auto first = NewItem();
  const auto second = NewItem();
  EXPECT_EQ(inbox_->Items()->Count(), 0);
  EXPECT_FALSE(FirstItem());
  Put(first, Field::Subject, Text(u"first"));
  Put(second, Field::Subject, Text(u"second"));
  second->Save();
  first->Save();
  second->Save();
  EXPECT_EQ(inbox_->Items()->Count(), 2);
  const auto items = inbox_->Items();
  EXPECT_EQ(TextOf(items->GetFirst(), Field::Subject), u"second");
  EXPECT_EQ(TextOf(items->GetNext(), Field::Subject), u"first");
  EXPECT_FALSE(items->GetNext());
  EXPECT_EQ(TextOf(items->GetFirst(), Field::Subject), u"second");
}

TEST_F(ItemTest, ReplacesWhatItWasAtTheNextSave) {
  const auto item = NewItem();
  Put(item, Field::Body, Text(100000, u'a'));
  item->Save();
  const auto size = item->Size();
  EXPECT_GT(size, 200000);
  Put(item, Field::Body, Text(u"short"));
  item->Save();
  EXPECT_LT(item->Size(), 2000);
  const RawStore raw = Raw();
  auto message = raw.Message();
  EXPECT_EQ(message.Text(tag::kBody), u"short");
  EXPECT_LT(std::filesystem::file_size(path_), 600000u);
  ExpectSound();
}

TEST_F(ItemTest, ReadBackCanBeChangedAndSaved) {
  auto item = NewItem(u"IPM.Task");
  Put(item, Field::Subject, Text(u"Re: Task"));
  Put(item, Field::Categories, Text(u"A; B"));
  Put(item, Field::HTMLBody, Text(u"<p>caf\u00e9</p>"));
  item->Attachments()->Add(TextContent(PatternOf(50000)), u"long.bin");
  item->Attachments()->Add(TextContent("short"), u"short.txt");
  item->Attachments()->Add(NewItem(), u"mail");
  item->Save();
  item = FirstItem();
  Put(item, Field::Owner, Text(u"Ann"));
  item->Attachments()->Add(TextContent("more"), u"more.txt");
  item->Save();
  EXPECT_EQ(inbox_->Items()->Count(), 1);
  Reopen();
  item = FirstItem();
  EXPECT_EQ(TextOf(item, Field::Subject), u"Re: Task");
  EXPECT_EQ(TextOf(item, Field::Categories), u"A; B");
  EXPECT_EQ(TextOf(item, Field::HTMLBody), u"<p>caf\u00e9</p>");
  EXPECT_EQ(TextOf(item, Field::Owner), u"Ann");
  EXPECT_EQ(item->AttachmentCount(), 4);
  ExpectSound();
}

TEST_F(ItemTest, LeavesItsFolderWhenItIsDeleted) {
  std::vector<Ref<RDOMail>> items;
  for (int i = 0; i < 5; ++i) {
    items.push_back(NewItem());
    Put(items.back(), Field::Subject, text::FromUtf8(std::to_string(i)));
    items.back()->Save();
  }
  const auto walk = inbox_->Items();
  EXPECT_EQ(TextOf(walk->GetFirst(), Field::Subject), u"0");
  items[1]->Delete();
  items[2]->Delete();
  EXPECT_EQ(TextOf(walk->GetNext(), Field::Subject), u"3");
  EXPECT_EQ(inbox_->Items()->Count(), 3);
  items[1]->Delete();
  items[1]->Save();
  EXPECT_EQ(inbox_->Items()->Count(), 3) << "a deleted item does not come back";
  EXPECT_EQ(TextOf(items[1], Field::Subject), u"1");
  FirstItem()->Delete();
  Reopen();
  EXPECT_EQ(inbox_->Items()->Count(), 2);
  EXPECT_EQ(TextOf(FirstItem(), Field::Subject), u"3");
  ExpectSound();
}

TEST_F(ItemTest, NeverSavedLeavesNothing) {
  const auto empty = folder_.path() / "empty.pst";
  {
    const auto session = library_->CreateRDOSession();
    session->Stores()
        ->AddPSTStore(platform::TextOfPath(empty), u"Test store")
        ->IPMRootFolder()
        ->Folders()
        ->Add(u"Inbox", std::monostate());
  }
  for (int i = 0; i < 20; ++i) {
    const auto item = NewItem();
    Put(item, Field::Body, Text(50000, u'x'));
    item->Attachments()->Add(TextContent(PatternOf(300000)), u"a.bin");
    const auto outer = NewItem();
    outer->Attachments()->Add(item, u"inner");
  }
  const RawStore raw = Raw();
  EXPECT_EQ(raw.Reader().BlockCount(), RawStore(empty).Reader().BlockCount());
  EXPECT_TRUE(raw.Messages().empty());
  ExpectSound();
}

TEST_F(ItemTest, CountsWhatIsUnread) {
  const auto unread = NewItem();
  unread->Save();
  const auto read = NewItem();
  Put(read, Field::UnRead, false);
  read->Save();
  NewItem(u"IPM.Contact")->Save();
  EXPECT_EQ(unread->Get(Field::UnRead).value, output::FieldValue(true)) << "a mail is unread until somebody reads it";
  EXPECT_EQ(read->Get(Field::UnRead).value, output::FieldValue(false));
  Put(unread, Field::UnRead, false);
  unread->Save();
  Put(read, Field::UnRead, true);
  read->Save();
  const RawStore raw = Raw();
  const auto folder = raw.Reader().FindNode(raw.Messages()[0])->nidParent;
  EXPECT_EQ(raw.Node(folder).Integer32(tag::kContentCount), 3);
  EXPECT_EQ(raw.Node(folder).Integer32(tag::kContentUnreadCount), 1);
  ExpectSound();
}

TEST_F(ItemTest, IsADraftUntilItIsMarkedAsSent) {
  const auto draft = NewItem();
  draft->Save();
  EXPECT_EQ(draft->Get(Field::Sent).value, output::FieldValue(false));
  const auto sent = NewItem();
  Put(sent, Field::Sent, true);
  sent->Save();
  const auto again = NewItem();
  Put(again, Field::Sent, true);
  Put(again, Field::UnRead, false);
  Put(again, Field::Sent, false);
  again->Save();
  const RawStore raw = Raw();
  const auto flags = [&](std::size_t i) { return raw.Node(raw.Messages()[i]).Integer32(tag::kMessageFlags); };
  EXPECT_EQ(flags(0), 0x8);
  EXPECT_EQ(flags(1), 0x0);
  EXPECT_EQ(flags(2), 0x9);
}

TEST_F(ItemTest, ThatWasAnsweredKeepsIconAndVerb) {
  const auto item = NewItem();
  Put(item, Field::Subject, Text(u"Re: Plan"));
  Put(item, Field::SenderName, Text(u"Ann"));
  const auto reply = item->Reply();
  EXPECT_EQ(TextOf(reply, Field::Subject), u"RE: Plan");
  EXPECT_EQ(TextOf(reply, Field::To), u"Ann");
  item->Save();
  const auto forwarded = NewItem();
  EXPECT_EQ(TextOf(forwarded->Forward(), Field::Subject), u"FW: ");
  forwarded->Save();
  const RawStore raw = Raw();
  ASSERT_EQ(raw.Messages().size(), 2u) << "answers are not saved by themselves";
  auto first = raw.Node(raw.Messages()[0]);
  EXPECT_EQ(first.Integer32(tag::kIconIndex), 0x105);
  EXPECT_EQ(first.Integer32(tag::kLastVerbExecuted), 102);
  auto second = raw.Node(raw.Messages()[1]);
  EXPECT_EQ(second.Integer32(tag::kIconIndex), 0x106);
  EXPECT_EQ(second.Integer32(tag::kLastVerbExecuted), 104);
  ExpectSound();
}

TEST_F(ItemTest, HasTimesAndASearchKeyOfItsOwn) {
  const auto item = NewItem();
  Put(item, Field::SentOn, OleDate{45000.5});
  item->Save();
  NewItem()->Save();
  const RawStore raw = Raw();
  auto first = raw.Node(raw.Messages()[0]);
  auto second = raw.Node(raw.Messages()[1]);
  const auto epoch = static_cast<std::int64_t>(text::FileTimeOfUnixSeconds(kTestEpoch));
  EXPECT_EQ(first.Integer64(tag::kCreationTime), epoch);
  EXPECT_EQ(first.Integer64(tag::kLastModificationTime), epoch);
  EXPECT_EQ(first.Integer64(tag::kMessageDeliveryTime), static_cast<std::int64_t>(*text::FileTimeOf(OleDate{45000.5})));
  EXPECT_EQ(second.Integer64(tag::kMessageDeliveryTime), epoch) << "folders sort by it, so each message has one";
  EXPECT_EQ(first.Binary(tag::kSearchKey)->size(), 16u);
  EXPECT_NE(first.Binary(tag::kSearchKey), second.Binary(tag::kSearchKey));
}

TEST_F(ItemTest, LeavesOutADateThatNoStoreHolds) {
  const auto item = NewItem();
  Put(item, Field::SentOn, OleDate{-109205.0});
  Put(item, Field::FlagDueBy, OleDate{0.0});
  item->Save();
  EXPECT_FALSE(item->Get(Field::SentOn).written);
  EXPECT_TRUE(item->Get(Field::FlagDueBy).written) << "30 December 1899 is a date like any";
  ExpectSound();
}

TEST_F(ItemTest, ShowsItsSizeOnceItIsSaved) {
  const auto item = NewItem();
  EXPECT_EQ(item->Size(), 0);
  item->Attachments()->Add(TextContent(PatternOf(100000)), u"a.bin");
  item->Save();
  EXPECT_GT(item->Size(), 100000);
  EXPECT_LT(item->Size(), 102000);
  Reopen();
  EXPECT_GT(FirstItem()->Size(), 100000);
}

}  // namespace
}  // namespace velmora::messaging
