// Attachments: files, messages within messages, contact pictures.
#include "platform/memory_file.h"
#include "platform/path_text.h"
#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"
#include "store/messaging/items/item_attachments.h"
#include "store/messaging/objects/message_writer.h"
#include "store/messaging/store_fixture.h"
#include "store/messaging/tables/named_properties.h"
#include "store/messaging/tables/table_schemas.h"

namespace velmora::messaging {
namespace {

using output::Field;
using output::RDOMail;
using output::Ref;
using output::ResultCode;
using text::Text;

/// The attachment behind so many others.
constexpr Nid AttachmentAt(std::size_t index) {
  return MakeNid(NidType::kAttachment, 0x401 + static_cast<std::uint32_t>(index));
}

class AttachmentsTest : public StoreTest {
 protected:
  static std::string ContentOf(ltp::PropertyContext& attachment) {
    const Bytes bytes = attachment.Binary(tag::kAttachDataBinary).value();
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
  }

  static ltp::PropertyContext Embedded(const RawStore& raw, ltp::PropertyContext& attachment) {
    return raw.SubNode(attachment, attachment.ReadObject(tag::kAttachDataObject).value().nid);
  }
};

TEST_F(AttachmentsTest, KeepTheirBytesWhateverTheirSize) {
  // Around the limits of a heap value, of a block, and of the blocks that one block names.
  const std::size_t sizes[] = {0, 1, 1024, 1025, 8176, 8177, 100000, 8176 * 1021, 8176 * 1022 + 1};
  const auto item = NewItem();
  for (const std::size_t size : sizes) item->Attachments()->Add(TextContent(PatternOf(size)), u"a.bin");
  EXPECT_EQ(item->Attachments()->Count(), 9);
  item->Save();
  const RawStore raw = Raw();
  auto message = raw.Message();
  EXPECT_EQ(message.Integer32(tag::kMessageFlags), 0x18);
  auto table = raw.SubTable(message, nid::kAttachmentTable);
  ASSERT_EQ(table.RowCount(), std::size(sizes));
  for (std::size_t i = 0; i < std::size(sizes); ++i) {
    auto attachment = raw.SubNode(message, AttachmentAt(i));
    EXPECT_TRUE(ContentOf(attachment) == PatternOf(sizes[i])) << sizes[i];
    EXPECT_EQ(attachment.Integer32(tag::kAttachMethod), 1);
    EXPECT_EQ(table.Integer32(i, tag::kAttachSize), attachment.Integer32(tag::kAttachSize));
  }
  ExpectSound();
}

TEST(LargeAttachments, AboveTwoGibibytesHaveTheLargestSizeThatReadersTakeForOne) {
  constexpr std::int32_t kLargest = 0x7FFFFFFF;
  platform::MemoryFile file;
  const auto ndb = ndb::NdbWriter::Create(file);
  // What counts is the size that a tree is said to have; these bytes are few.
  const auto large = [&](std::uint64_t size) {
    const ndb::WrittenNode value{{ndb->WriteData(std::vector<std::byte>(2000)).bid, {}}, size};
    PropertyBag attachment;
    attachment.PutStored(tag::kAttachDataBinary, std::make_shared<StoredValue>(*ndb, value));
    return attachment;
  };
  MessageWriter messages(*ndb);
  // The table of a message's attachments, and the object of the first.
  const auto sizesOf = [&](const WrittenMessage& written) {
    auto message = ltp::PropertyContext::Open(*ndb, written.node.trees);
    auto table = ltp::TableContext::Open(*ndb, message.FindSubnode(nid::kAttachmentTable)->trees);
    auto object = ltp::PropertyContext::Open(*ndb, message.FindSubnode(AttachmentAt(0))->trees);
    EXPECT_EQ(table.Integer32(0, tag::kAttachSize), kLargest);
    EXPECT_EQ(object.Integer32(tag::kAttachSize), kLargest);
    EXPECT_EQ(message.Integer32(tag::kMessageSize), kLargest);
    return object;
  };
  for (const auto& sizes : {std::vector<std::uint64_t>{0x7FFFFFFF}, std::vector<std::uint64_t>{0xFFFFFFF0},
                            std::vector<std::uint64_t>{0xFFFFFFF0, 0x80000000}}) {
    Message message;
    for (const std::uint64_t size : sizes) message.attachments.push_back(large(size));
    const WrittenMessage inner = messages.Write(std::move(message));
    EXPECT_GT(inner.node.dataSize, sizes.front());
    EXPECT_EQ(RowOf(schema::kContents, inner.properties).Integer32(tag::kMessageSize), kLargest);
    sizesOf(inner);

    Message outer;
    outer.attachments.emplace_back().PutStored(
        tag::kAttachDataObject, std::make_shared<StoredValue>(*ndb, inner.node, ndb->NewNid(NidType::kNormalMessage)));
    auto embedded = sizesOf(messages.Write(std::move(outer)));
    EXPECT_EQ(embedded.ReadObject(tag::kAttachDataObject)->size, static_cast<std::uint32_t>(kLargest));
  }
}

TEST_F(AttachmentsTest, KeepTheirNameAndGetAShortOne) {
  const auto item = NewItem();
  for (const text::TextView name : {u"A long report name.html", u"..", u"plain.txt", u""}) {
    item->Attachments()->Add(TextContent("x"), name);
  }
  item->Save();
  const RawStore raw = Raw();
  auto message = raw.Message();
  auto first = raw.SubNode(message, AttachmentAt(0));
  EXPECT_EQ(first.Text(tag::kAttachLongFilename), u"A long report name.html");
  EXPECT_EQ(first.Text(tag::kDisplayName), u"A long report name.html");
  EXPECT_EQ(first.Text(tag::kAttachFilename), u"ALONGR~1.HTM");
  EXPECT_EQ(first.Text(tag::kAttachExtension), u".html");
  EXPECT_EQ(raw.SubNode(message, AttachmentAt(1)).Text(tag::kAttachLongFilename), u"..");
  EXPECT_EQ(raw.SubNode(message, AttachmentAt(2)).Text(tag::kAttachFilename), u"PLAIN.TXT");
  EXPECT_EQ(raw.SubNode(message, AttachmentAt(3)).Find(0x3707), nullptr);
  ExpectSound();
}

TEST_F(AttachmentsTest, AMailThatIsSavedWithEachMessageInItIsNotWrittenEachTime) {
  constexpr std::size_t kBody = std::size_t{1} << 20;
  const auto outer = NewItem();
  Put(outer, Field::Body, Text(kBody / 2, u'x'));
  outer->Save();
  for (int i = 0; i < 100; ++i) {
    const auto inner = NewItem();
    Put(inner, Field::Subject, Text(u"inner"));
    outer->Attachments()->Add(inner, u"inner");
    outer->Save();
  }
  outer->Attachments()->Add(TextContent("x"), u"never saved.txt");
  Close();
  EXPECT_LT(std::filesystem::file_size(path_), 5 * kBody);
  const RawStore raw = Raw();
  auto message = raw.Message();
  EXPECT_EQ(raw.SubTable(message, nid::kAttachmentTable).RowCount(), 100u);
  ExpectSound();
}

TEST_F(AttachmentsTest, ASaveThatIsNotYetWrittenIsSeenAndKeptApartFromWhatFollows) {
  const auto item = NewItem();
  item->Save();
  Put(item, Field::Subject, Text(u"saved"));
  item->Save();
  EXPECT_EQ(TextOf(FirstItem(), Field::Subject), u"saved");
  EXPECT_EQ(TextOf(item, Field::Subject), u"saved");
  item->Save();
  Put(item, Field::Subject, Text(u"never saved"));
  Reopen();
  EXPECT_EQ(TextOf(FirstItem(), Field::Subject), u"saved");
}

TEST_F(AttachmentsTest, ADeletedItemIsNotWrittenAnyMore) {
  const auto item = NewItem();
  item->Save();
  item->Save();
  item->Delete();
  EXPECT_EQ(inbox_->Items()->Count(), 0);
  Raw();
  ExpectSound();
}

TEST(ShortFileName, IsWhatOldReadersTake) {
  EXPECT_EQ(ShortFileName(u"readme.txt"), u"README.TXT");
  EXPECT_EQ(ShortFileName(u"readme"), u"README");
  EXPECT_EQ(ShortFileName(u"my file.tar.gz"), u"MYFILE~1.GZ");
  EXPECT_EQ(ShortFileName(u"\u041e\u0442\u0447\u0451\u0442.docx"), u"_____~1.DOC");
  EXPECT_EQ(ShortFileName(u"a+b.c"), u"A_B~1.C");
  EXPECT_EQ(ShortFileName(u".."), u"~1");
  EXPECT_EQ(ShortFileName(u""), u"");
}

class FailingContent : public output::ContentSource {
 public:
  std::uint64_t Size() const override { return 100000; }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    if (offset > 0) throw output::OutputFailure(ResultCode::STG_E_READFAULT, "the content is gone");
    std::fill(out.begin(), out.end(), std::byte{1});
    return out.size() / 2;
  }
};

TEST_F(AttachmentsTest, WhoseContentFailsAreNotThereAndTheItemGoesOn) {
  const auto item = NewItem();
  EXPECT_EQ(CodeOf([&] { item->Attachments()->Add(FailingContent(), u"a"); }), ResultCode::STG_E_READFAULT);
  EXPECT_EQ(item->AttachmentCount(), 0);
  item->Save();
  EXPECT_EQ(Raw().Message().Integer32(tag::kMessageFlags), 0x8);
  ExpectSound();
}

TEST_F(AttachmentsTest, EmbedAnItemAsItStandsNow) {
  const auto inner = NewItem();
  Put(inner, Field::Subject, Text(u"then"));
  Put(inner, Field::Sent, true);
  Put(inner, Field::UnRead, false);
  inner->Attachments()->Add(TextContent(PatternOf(30000)), u"in.bin");
  const auto outer = NewItem();
  outer->Attachments()->Add(inner, u"The inner one");
  Put(inner, Field::Subject, Text(u"later"));
  outer->Save();
  const RawStore raw = Raw();
  auto message = raw.Message();
  auto attachment = raw.SubNode(message, AttachmentAt(0));
  EXPECT_EQ(attachment.Integer32(tag::kAttachMethod), 5);
  EXPECT_EQ(attachment.Text(tag::kDisplayName), u"The inner one");
  EXPECT_EQ(attachment.Find(0x3704), nullptr) << "a message has no file name";
  const auto object = attachment.ReadObject(tag::kAttachDataObject);
  ASSERT_TRUE(object);
  EXPECT_FALSE(raw.Reader().FindNode(object->nid)) << "some readers take the id for that of a message of a folder";
  auto embedded = Embedded(raw, attachment);
  EXPECT_EQ(embedded.Text(tag::kSubject), (Text{1, 1} + u"then"));
  EXPECT_EQ(embedded.Integer32(tag::kMessageFlags), 0x11);
  EXPECT_EQ(static_cast<std::uint32_t>(embedded.Integer32(tag::kMessageSize).value()), object->size);
  auto file = raw.SubNode(embedded, AttachmentAt(0));
  EXPECT_TRUE(ContentOf(file) == PatternOf(30000));
  ExpectSound();
}

TEST_F(AttachmentsTest, NestToAnyDepthAndShareTheirContents) {
  constexpr int kDepth = 12;
  auto item = NewItem();
  item->Attachments()->Add(TextContent(PatternOf(1000000)), u"deep.bin");
  for (int depth = 0; depth < kDepth; ++depth) {
    auto outer = NewItem();
    Put(outer, Field::Subject, text::FromUtf8("level " + std::to_string(depth)));
    outer->Attachments()->Add(item, u"inner");
    item = outer;
  }
  item->Save();
  NewItem()->Attachments();
  const RawStore raw = Raw();
  EXPECT_LT(std::filesystem::file_size(path_), 2000000u) << "the content is there once";
  auto message = raw.Message();
  for (int depth = 0; depth < kDepth; ++depth) {
    auto attachment = raw.SubNode(message, AttachmentAt(0));
    message = Embedded(raw, attachment);
  }
  auto file = raw.SubNode(message, AttachmentAt(0));
  EXPECT_TRUE(ContentOf(file) == PatternOf(1000000));
  ExpectSound();
}

// The way of a message with an embedded one that has an embedded one: each is built in the folder first.
TEST_F(AttachmentsTest, StayWithAParentThatIsDeletedOnceItIsEmbedded) {
  const auto top = NewItem();
  const auto middle = NewItem();
  const auto bottom = NewItem();
  Put(top, Field::Subject, Text(u"top"));
  Put(middle, Field::Subject, Text(u"middle"));
  Put(bottom, Field::Subject, Text(u"bottom"));
  middle->Attachments()->Add(TextContent(PatternOf(60000)), u"middle.bin");
  bottom->Attachments()->Add(TextContent(PatternOf(70000)), u"bottom.bin");
  middle->Attachments()->Add(bottom, u"bottom");
  middle->Save();
  EXPECT_EQ(inbox_->Items()->Count(), 1);
  top->Attachments()->Add(middle, u"middle");
  top->Save();
  middle->Delete();
  top->Save();
  EXPECT_EQ(inbox_->Items()->Count(), 1);

  const auto later = NewItem();
  later->Attachments()->Add(middle, u"deleted before");
  later->Save();
  const RawStore raw = Raw();
  ASSERT_EQ(raw.Messages().size(), 2u);
  for (const Nid nid : raw.Messages()) {
    auto message = raw.Node(nid);
    auto attachment = raw.SubNode(message, AttachmentAt(0));
    auto embedded = Embedded(raw, attachment);
    EXPECT_EQ(embedded.Text(tag::kSubject), (Text{1, 1} + u"middle"));
    auto file = raw.SubNode(embedded, AttachmentAt(0));
    EXPECT_TRUE(ContentOf(file) == PatternOf(60000));
    auto inner = raw.SubNode(embedded, AttachmentAt(1));
    auto innermost = Embedded(raw, inner);
    auto innerFile = raw.SubNode(innermost, AttachmentAt(0));
    EXPECT_TRUE(ContentOf(innerFile) == PatternOf(70000));
  }
  ExpectSound();
}

TEST_F(AttachmentsTest, OfAnItemThatIsSavedTwiceAreThereOnce) {
  const auto item = NewItem();
  item->Attachments()->Add(TextContent(PatternOf(500000)), u"a.bin");
  for (int i = 0; i < 5; ++i) item->Save();
  item->Attachments()->Add(TextContent(PatternOf(1)), u"b.bin");
  item->Save();
  const RawStore raw = Raw();
  EXPECT_LT(std::filesystem::file_size(path_), 1100000u);
  auto message = raw.Message();
  auto file = raw.SubNode(message, AttachmentAt(0));
  EXPECT_TRUE(ContentOf(file) == PatternOf(500000));
  ExpectSound();
}

TEST_F(AttachmentsTest, CannotBeItemsOfAnotherStore) {
  const auto other = folder_.path() / "other.pst";
  const auto session = library_->CreateRDOSession();
  const auto top = session->Stores()->AddPSTStore(platform::TextOfPath(other), u"Other")->IPMRootFolder();
  const auto item = NewItem();
  EXPECT_EQ(CodeOf([&] { item->Attachments()->Add(top->Items()->Add(u"IPM.Note"), u"x"); }), ResultCode::E_INVALIDARG);
  EXPECT_EQ(CodeOf([&] { item->Attachments()->Add(Ref<RDOMail>(), u"x"); }), ResultCode::E_POINTER);
}

TEST_F(AttachmentsTest, OfAnItemThatEmbedsItselfAreTheItemAsItWas) {
  const auto item = NewItem();
  item->Attachments()->Add(item, u"myself");
  item->Attachments()->Add(item, u"myself again");
  item->Save();
  EXPECT_EQ(item->AttachmentCount(), 2);
  ExpectSound();
}

TEST_F(AttachmentsTest, OfAContactCanBeItsPicture) {
  const auto contact = NewItem(u"IPM.Contact");
  contact->AddPicture(TextContent("first"));
  contact->AddPicture(TextContent("second"));
  contact->Save();
  EXPECT_EQ(contact->AttachmentCount(), 1);
  const RawStore raw = Raw();
  auto message = raw.Message();
  EXPECT_EQ(message.Boolean(Named(PropertySet::kAddress, 0x8015, PropType::kBoolean)), true);
  auto picture = raw.SubNode(message, AttachmentAt(0));
  EXPECT_EQ(ContentOf(picture), "second");
  EXPECT_EQ(picture.Text(tag::kAttachLongFilename), u"ContactPicture.jpg");
  EXPECT_EQ(picture.Boolean(tag::kAttachmentContactPhoto), true);
  ExpectSound();
}

TEST_F(AttachmentsTest, AreManyInOneMessage) {
  const auto item = NewItem();
  for (int i = 0; i < 700; ++i) item->Attachments()->Add(TextContent("content " + std::to_string(i)), u"a.txt");
  item->Save();
  Reopen();
  EXPECT_EQ(FirstItem()->AttachmentCount(), 700);
  ExpectSound();
}

}  // namespace
}  // namespace velmora::messaging
