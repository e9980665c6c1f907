// Folders and messages given property by property, as they come from another store.
#include <gmock/gmock.h>

#include <cstring>

#include "store/format/little_endian.h"
#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"
#include "store/messaging/opened_store.h"
#include "store/messaging/store_fixture.h"
#include "store/messaging/tables/table_schemas.h"

namespace velmora::messaging {
namespace {

using output::ResultCode;
using ::testing::ElementsAre;

constexpr Nid kFirstAttachment = MakeNid(NidType::kAttachment, 0x401);
constexpr text::FileTime kSomeTime = 133'444'736'001'234'567;  // with a fraction of a second

Bytes BytesOf(std::string_view text) {
  const auto bytes = std::as_bytes(std::span(text));
  return {bytes.begin(), bytes.end()};
}

/// The least that a message has.
Message NewMessage(text::TextView subject, text::TextView messageClass = u"IPM.Note") {
  Message message;
  message.properties.PutText(tag::kMessageClass, messageClass);
  message.properties.PutText(tag::kSubject, subject);
  message.properties.PutTime(tag::kCreationTime, kSomeTime);
  message.properties.PutTime(tag::kLastModificationTime, kSomeTime);
  message.properties.PutTime(tag::kMessageDeliveryTime, kSomeTime);
  message.properties.PutInteger32(tag::kMessageFlags, kMessageRead);
  message.properties.PutBytes(tag::kSearchKey, BytesOf("0123456789ABCDEF"));
  return message;
}

PropertyBag NewAttachment(std::int32_t method) {
  PropertyBag attachment;
  attachment.PutInteger32(tag::kAttachMethod, method);
  attachment.PutInteger32(tag::kRenderingPosition, -1);
  return attachment;
}

PropertyBag NewFolder(text::TextView name) {
  PropertyBag properties;
  properties.PutText(tag::kDisplayName, name);
  return properties;
}

class ObjectsTest : public StoreTest {
 protected:
  ObjectsTest() {
    Close();
    path_ = folder_.path() / "Objects.pst";
    auto file = platform::CreateFile(path_, platform::Existing::kRefuse);
    store_ = StoreWriter::Create(std::move(*file), u"Objects", {kTestEpoch, text::CodePage::Lossless()});
    inbox_ = &store_->AddFolder(store_->Top(), NewFolder(u"Inbox"));
  }

  RawStore Sealed() {
    store_->Seal();
    ExpectSound();
    return RawStore(path_);
  }

  std::shared_ptr<StoreWriter> store_;
  Folder* inbox_ = nullptr;
};

TEST_F(ObjectsTest, AMessageKeepsPropertiesOfAnyType) {
  Message message = NewMessage(u"all types");
  const std::pair<PropTag, Bytes> values[] = {
      {0x66190002, BytesOf("ab")},
      {0x661A0003, BytesOf("abcd")},
      {0x661B0004, BytesOf("abcd")},
      {0x661C0005, BytesOf("abcdefgh")},
      {0x661D0006, BytesOf("abcdefgh")},
      {0x661E0007, BytesOf("abcdefgh")},
      {0x661F000A, BytesOf("abcd")},
      {0x6620000B, Bytes{std::byte{1}}},
      {0x66210014, BytesOf("abcdefgh")},
      {0x6623001F, BytesOf(std::string_view("w\0i\0d\0", 6))},
      {0x66240040, BytesOf(std::string_view("\x87\xD6\x12\x00\x00\x00\xDA\x01", 8))},
      {0x66250048, BytesOf("0123456789abcdef")},
      {0x66260102, BytesOf(PatternOf(9000))},
      {0x66271003, BytesOf("abcdefgh")},
      {0x66280102, {}},
  };
  for (const auto& [tag, value] : values) message.properties.PutBytes(tag, value);
  store_->Save(std::move(message), *inbox_);
  const RawStore raw = Sealed();
  auto saved = raw.Message();
  for (const auto& [tag, value] : values) EXPECT_EQ(saved.Read(tag).value(), value) << std::hex << tag;
  EXPECT_EQ(saved.Integer64(tag::kCreationTime), static_cast<std::int64_t>(kSomeTime));
}

TEST_F(ObjectsTest, WhatFollowsFromTheRestIsTheWritersWhateverTheListsSay) {
  Message message = NewMessage(u"derived");
  message.properties.PutInteger32(tag::kMessageFlags, kMessageUnsent | kMessageHasAttachments | kMessageAssociated);
  message.properties.PutInteger32(tag::kMessageSize, 77);
  store_->Save(std::move(message), *inbox_);
  message = NewMessage(u"derived");
  message.attachments.push_back(NewAttachment(1));
  message.attachments[0].PutInteger32(tag::kAttachSize, 77);
  message.attachments[0].PutBytes(tag::kAttachDataBinary, BytesOf("12345"));
  store_->Save(std::move(message), *inbox_);
  const RawStore raw = Sealed();
  auto bare = raw.Node(raw.Messages()[0]);
  EXPECT_EQ(bare.Integer32(tag::kMessageFlags), kMessageUnsent);
  EXPECT_GT(bare.Integer32(tag::kMessageSize), 77);
  auto full = raw.Node(raw.Messages()[1]);
  EXPECT_EQ(full.Integer32(tag::kMessageFlags), kMessageRead | kMessageHasAttachments);
  EXPECT_EQ(raw.SubNode(full, kFirstAttachment).Integer32(tag::kAttachSize), 5 + 3 * 4);
  auto folder = raw.Node(inbox_->nid);
  EXPECT_EQ(folder.Integer32(tag::kContentCount), 2);
  EXPECT_EQ(folder.Integer32(tag::kContentUnreadCount), 1);
}

TEST_F(ObjectsTest, RecipientsKeepAllTheirColumns) {
  Message message = NewMessage(u"recipients");
  for (const int number : {0, 1}) {
    PropertyBag& row = message.recipients.emplace_back();
    row.PutInteger32(tag::kRecipientType, 1 + number);
    row.PutInteger32(tag::kObjectType, 6);
    row.PutInteger32(tag::kDisplayType, 0);
    row.PutBoolean(tag::kResponsibility, true);
    row.PutBoolean(tag::kSendRichInfo, number == 1);
    row.PutText(tag::kDisplayName, u"Name");
    row.PutBytes(0x5FF70102, BytesOf("entry id"));
    row.PutTime(0x5FFB0040, kSomeTime);
    if (number == 1) continue;
    row.PutInteger32(0x5FFF0003, 5);
    row.PutInteger16(0x66190002, -7);
    row.PutBoolean(0x661A000B, true);
    row.PutText(0x5FF6001F, u"Tracked name");
  }
  store_->Save(std::move(message), *inbox_);
  const RawStore raw = Sealed();
  auto saved = raw.Message();
  auto table = raw.SubTable(saved, nid::kRecipientTable);
  ASSERT_EQ(table.RowCount(), 2u);
  EXPECT_EQ(table.Columns().size(), schema::kRecipients.columns.size() + 6);
  EXPECT_EQ(table.Integer32(0, 0x5FFF0003), 5);
  EXPECT_EQ(table.Cell(0, 0x66190002), BytesOf("\xF9\xFF"));
  EXPECT_EQ(table.Boolean(0, 0x661A000B), true);
  EXPECT_EQ(table.Text(0, 0x5FF6001F), u"Tracked name");
  EXPECT_EQ(table.Boolean(1, tag::kSendRichInfo), true);
  EXPECT_EQ(table.Boolean(1, 0x661A000B), std::nullopt);
  EXPECT_EQ(table.Integer64(1, 0x5FFB0040), static_cast<std::int64_t>(kSomeTime));
  EXPECT_EQ(table.Cell(1, 0x5FF70102), BytesOf("entry id"));
}

TEST_F(ObjectsTest, AttachmentsComeInEveryWay) {
  constexpr std::int32_t kLinked = 2;
  constexpr std::int32_t kObject = 6;
  const std::string large = PatternOf(100000);
  Message message = NewMessage(u"attachments");
  auto& attachments = message.attachments;
  attachments.push_back(NewAttachment(1));
  attachments.back().PutBytes(tag::kAttachDataBinary, BytesOf("short"));
  attachments.push_back(NewAttachment(1));
  store_->PutStream(attachments.back(), tag::kAttachDataBinary, TextContent(large));
  attachments.push_back(NewAttachment(1));
  store_->PutTree(attachments.back(), tag::kAttachDataBinary, store_->Ndb().WriteData(BytesOf(large)));
  attachments.push_back(NewAttachment(kLinked));
  attachments.back().PutText(0x3708001F, u"\\\\server\\file");

  // An object with a storage and a sub-node of its own.
  const ndb::DataTree storage = store_->Ndb().WriteData(BytesOf("storage"));
  const ndb::DataTree part = store_->Ndb().WriteData(BytesOf("a part"));
  ndb::SubnodeTreeWriter parts(store_->Ndb());
  parts.Add(MakeNid(NidType::kLtp, 0x401), {{part.bid, {}}, part.size});
  attachments.push_back(NewAttachment(kObject));
  store_->PutObject(attachments.back(), {{storage.bid, parts.Finish().bid}, storage.size + part.size});

  Message inner = NewMessage(u"inner");
  Message innermost = NewMessage(u"innermost");
  inner.attachments.push_back(NewAttachment(5));
  store_->PutMessage(inner.attachments.back(), std::move(innermost));
  attachments.push_back(NewAttachment(5));
  store_->PutMessage(attachments.back(), std::move(inner));
  store_->Save(std::move(message), *inbox_);

  const RawStore raw = Sealed();
  auto saved = raw.Message();
  ASSERT_EQ(raw.SubTable(saved, nid::kAttachmentTable).RowCount(), 6u);
  const auto attachment = [&](std::uint32_t index) {
    return raw.SubNode(saved, MakeNid(NidType::kAttachment, 0x401 + index));
  };
  EXPECT_EQ(attachment(0).Binary(tag::kAttachDataBinary), BytesOf("short"));
  EXPECT_EQ(attachment(1).Binary(tag::kAttachDataBinary), BytesOf(large));
  EXPECT_EQ(attachment(2).Binary(tag::kAttachDataBinary), BytesOf(large));
  EXPECT_EQ(attachment(3).Text(0x3708001F), u"\\\\server\\file");
  EXPECT_FALSE(attachment(3).Find(IdOf(tag::kAttachDataBinary)));
  auto object = attachment(4);
  const auto node = object.FindSubnode(object.ReadObject(tag::kAttachDataObject)->nid);
  ASSERT_TRUE(node);
  EXPECT_EQ(object.ReadObject(tag::kAttachDataObject)->size, std::strlen("storagea part"));
  EXPECT_EQ(ndb::DataTreeReader::Open(raw.Reader(), node->trees.bidData).ReadAll(100), BytesOf("storage"));
  EXPECT_EQ(ndb::ListSubnodes(raw.Reader(), node->trees.bidSub).size(), 1u);
  auto outer = attachment(5);
  auto read = raw.SubNode(outer, outer.ReadObject(tag::kAttachDataObject)->nid);
  EXPECT_EQ(read.Text(tag::kSubject), u"inner");
  auto within = raw.SubNode(read, kFirstAttachment);
  EXPECT_EQ(raw.SubNode(within, within.ReadObject(tag::kAttachDataObject)->nid).Text(tag::kSubject), u"innermost");
}

TEST_F(ObjectsTest, GivenNodeIdsStayInWhateverOrderTheyCome) {
  const Nid folderId = MakeNid(NidType::kNormalFolder, 0x5000);
  const auto messageId = [](std::uint32_t index) { return MakeNid(NidType::kNormalMessage, index); };
  Folder& folder = store_->AddFolder(store_->Top(), NewFolder(u"Given"), folderId);
  for (const std::uint32_t index : {0x20000, 0x1F000, 0x21000}) {
    EXPECT_EQ(store_->Save(NewMessage(text::Decimal(index)), folder, messageId(index)), messageId(index));
  }
  const Nid next = store_->Save(NewMessage(u"next"), folder);
  EXPECT_EQ(next, messageId(0x21001));
  store_->Save(NewMessage(u"again"), folder, messageId(0x1F000));
  EXPECT_EQ(store_->AddFolder(store_->Top(), NewFolder(u"Next")).nid, MakeNid(NidType::kNormalFolder, 0x5001));
  const RawStore raw = Sealed();
  EXPECT_THAT(raw.Messages(), ElementsAre(messageId(0x1F000), messageId(0x20000), messageId(0x21000), next));
  EXPECT_EQ(raw.Table(Sibling(folderId, NidType::kContentsTable)).RowCount(), 4u);
  EXPECT_EQ(raw.Node(messageId(0x1F000)).Text(tag::kSubject), u"again");
}

TEST_F(ObjectsTest, IdsThatAreTakenOrNoneForTheObjectAreRefused) {
  const Nid id = store_->Save(NewMessage(u"a"), *inbox_, MakeNid(NidType::kNormalMessage, 0x20000));
  Folder& other = store_->AddFolder(store_->Top(), NewFolder(u"Other"));
  const auto save = [&](Nid nid) { return CodeOf([&] { store_->Save(NewMessage(u"b"), other, nid); }); };
  EXPECT_EQ(save(id), ResultCode::MAPI_E_COLLISION);
  EXPECT_EQ(save(MakeNid(NidType::kAssocMessage, 0x20000)), ResultCode::E_INVALIDARG);
  EXPECT_EQ(save(MakeNid(NidType::kNormalMessage, 0x400)), ResultCode::E_INVALIDARG);
  const auto add = [&](Nid nid) { return CodeOf([&] { store_->AddFolder(store_->Top(), NewFolder(u"New"), nid); }); };
  EXPECT_EQ(add(inbox_->nid), ResultCode::MAPI_E_COLLISION);
  EXPECT_EQ(add(nid::kRootFolder), ResultCode::E_INVALIDARG);
  EXPECT_EQ(CodeOf([&] { store_->AddFolder(store_->Top(), NewFolder(u"INBOX")); }), ResultCode::MAPI_E_COLLISION);
  EXPECT_EQ(CodeOf([&] { store_->AddFolder(store_->Top(), PropertyBag()); }), ResultCode::E_INVALIDARG);
  EXPECT_EQ(Sealed().Messages().size(), 1u);
}

TEST_F(ObjectsTest, HiddenMessagesStandInATableOfTheirOwn) {
  Message message = NewMessage(u"", u"IPM.Configuration.CategoryList");
  message.isAssociated = true;
  message.properties.PutBytes(0x7C080102, BytesOf("<categories/>"));
  const Nid given = MakeNid(NidType::kAssocMessage, 0x9000);
  EXPECT_EQ(store_->Save(message, *inbox_, given), given);
  message.properties.PutInteger32(tag::kMessageFlags, 0);
  EXPECT_EQ(store_->Save(message, *inbox_), MakeNid(NidType::kAssocMessage, 0x9001));
  const RawStore raw = Sealed();
  EXPECT_TRUE(raw.Messages().empty());
  EXPECT_EQ(raw.Table(Sibling(inbox_->nid, NidType::kContentsTable)).RowCount(), 0u);
  auto table = raw.Table(Sibling(inbox_->nid, NidType::kAssocContentsTable));
  ASSERT_EQ(table.RowCount(), 2u);
  EXPECT_EQ(table.Text(0, tag::kMessageClass), u"IPM.Configuration.CategoryList");
  EXPECT_EQ(table.Integer32(0, tag::kMessageFlags), kMessageRead | kMessageAssociated);
  EXPECT_EQ(raw.Node(given).Binary(0x7C080102), BytesOf("<categories/>"));
  auto folder = raw.Node(inbox_->nid);
  EXPECT_EQ(folder.Integer32(tag::kContentCount), 0);
  EXPECT_EQ(folder.Integer32(tag::kPstHiddenCount), 2);
  EXPECT_EQ(folder.Integer32(tag::kPstHiddenUnread), 1);
}

TEST_F(ObjectsTest, FoldersKeepTheirPropertiesAndTakeOthers) {
  PropertyBag properties = NewFolder(u"Rules");
  properties.PutText(tag::kContainerClass, u"IPF.Note.Special");
  properties.PutInteger32(tag::kContentCount, 99);
  properties.PutText(0x3004001F, u"A comment");
  properties.PutBytes(0x36DA0102, BytesOf(PatternOf(5000)));
  Folder& folder = store_->AddFolder(store_->Top(), properties);
  Folder& renamed = store_->AddFolder(store_->Top(), NewFolder(u"Before"));
  store_->Save(NewMessage(u"a"), renamed);
  properties = NewFolder(u"After");
  properties.PutText(0x3004001F, u"Another");
  store_->SetProperties(renamed, properties);
  EXPECT_EQ(CodeOf([&] { store_->SetProperties(renamed, NewFolder(u"rules")); }), ResultCode::MAPI_E_COLLISION);
  EXPECT_EQ(ChildOf(store_->Top(), u"Before"), nullptr);
  EXPECT_EQ(ChildOf(store_->Top(), u"after"), &renamed);
  const RawStore raw = Sealed();
  auto saved = raw.Node(folder.nid);
  EXPECT_EQ(saved.Text(tag::kContainerClass), u"IPF.Note.Special");
  EXPECT_EQ(saved.Integer32(tag::kContentCount), 0);
  EXPECT_EQ(saved.Text(0x3004001F), u"A comment");
  EXPECT_EQ(saved.Binary(0x36DA0102), BytesOf(PatternOf(5000)));
  auto other = raw.Node(renamed.nid);
  EXPECT_EQ(other.Text(tag::kDisplayName), u"After");
  EXPECT_EQ(other.Text(0x3004001F), u"Another");
  EXPECT_EQ(other.Integer32(tag::kContentCount), 1);
}

TEST_F(ObjectsTest, NamesOfPropertiesInAnySetGetIdentifiersOfTheirOwn) {
  Uid set{};
  set[0] = std::byte{0x77};
  // {00062008-0000-0000-C000-000000000046}
  Uid common{std::byte{0x08}, std::byte{0x20}, std::byte{0x06}};
  common[8] = std::byte{0xC0};
  common[15] = std::byte{0x46};
  EXPECT_EQ(store_->NamedId({common, 0x8501, {}}), name_map::kFirstNamedId + 1) << "a name that every store has";
  const std::uint16_t first = store_->NamedId({set, 0x8501, {}});
  EXPECT_EQ(first, name_map::kFirstNamedId + kPropertyNameCount);
  EXPECT_EQ(store_->NamedId({set, 0, u"x-header"}), first + 1);
  EXPECT_EQ(store_->NamedId({Uid{}, 0, u"of no set"}), first + 2);
  EXPECT_EQ(store_->NamedId({set, 0, u"x-header"}), first + 1);
  EXPECT_EQ(store_->NamedId({set, 0, u"X-Header"}), first + 3) << "names are told apart as they are spelled";
  Message message = NewMessage(u"named");
  message.properties.PutText(MakeTag(static_cast<std::uint16_t>(first + 1), PropType::kString), u"value");
  store_->Save(std::move(message), *inbox_);
  const RawStore raw = Sealed();
  EXPECT_EQ(raw.Message().Text(MakeTag(static_cast<std::uint16_t>(first + 1), PropType::kString)), u"value");
  auto map = raw.Node(nid::kNameToIdMap);
  const Bytes entries = map.Binary(0x00030102).value();
  ASSERT_EQ(entries.size(), 8 * (kPropertyNameCount + 4));
  const Bytes strings = map.Binary(0x00040102).value();
  const std::size_t entry = 8 * (kPropertyNameCount + 1);
  const std::size_t place = Load<std::uint32_t>(entries, entry);
  EXPECT_EQ(Load<std::uint32_t>(strings, place), 16u);
  EXPECT_EQ(std::memcmp(strings.data() + place + 4, u"x-header", 16), 0);
  EXPECT_EQ(Load<std::uint16_t>(entries, entry + 6), kPropertyNameCount + 1);
}

TEST_F(ObjectsTest, WhatTheFormatCannotHoldIsRefusedAndTheStoreGoesOn) {
  Message message = NewMessage(u"broken");
  message.properties.PutBytes(0x66190003, BytesOf("five!"));
  message.attachments.push_back(NewAttachment(1));
  message.attachments.back().PutBytes(tag::kAttachDataBinary, BytesOf(PatternOf(20000)));
  try {
    store_->Save(std::move(message), *inbox_);
    ADD_FAILURE() << "a number of five bytes";
  } catch (const output::OutputFailure& failure) {
    EXPECT_EQ(failure.Code(), ResultCode::E_FAIL);
    EXPECT_EQ(failure.Information(),
              "The store cannot hold this (property 0x66190003): the value does not fit its type");
  }
  store_->Save(NewMessage(u"sound"), *inbox_);
  EXPECT_EQ(Sealed().Message().Text(tag::kSubject), u"sound");
}

}  // namespace
}  // namespace velmora::messaging
