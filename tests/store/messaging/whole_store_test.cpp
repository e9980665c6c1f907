// Stores as a whole: what other readers list of them, many items, failures on the way.
#include <random>

#include "aids/shared_file.h"
#include "platform/memory_file.h"
#include "store/format/property_tags.h"
#include "store/messaging/opened_store.h"
#include "store/messaging/store_fixture.h"
#include "store/messaging/store_writer.h"

namespace velmora::messaging {
namespace {

using output::Field;
using output::FolderType;
using output::RDOFolder;
using output::RDOMail;
using output::Ref;
using output::ResultCode;
using text::Text;

class WholeStore : public StoreTest {
 protected:
  void PutMail(const Ref<RDOFolder>& folder, const std::string& subject, bool withAttachment = false) {
    const auto item = folder->Items()->Add(u"IPM.Note");
    Put(item, Field::Sent, true);
    Put(item, Field::Subject, text::FromUtf8(subject));
    Put(item, Field::Body, text::FromUtf8("Body of " + subject));
    Put(item, Field::SenderName, Text(u"Ann Lee"));
    Put(item, Field::To, Text(u"bob@example.org"));
    if (withAttachment) item->Attachments()->Add(TextContent(PatternOf(40000)), u"a.bin");
    item->Save();
  }
};

TEST_F(WholeStore, IsListedByOtherReadersAsItWasWritten) {
  VELMORA_NEEDS_PEERS();
  const auto sub = inbox_->Folders()->Add(u"Gr\u00fc\u00dfe", FolderType());
  for (int i = 0; i < 10; ++i) PutMail(inbox_, "Mail " + std::to_string(i), i % 3 == 0);
  PutMail(sub, "Deeper");
  constexpr text::TextView kOthers[] = {u"IPM.Contact", u"IPM.Task", u"IPM.Appointment", u"IPM.Activity",
                                        u"IPM.StickyNote"};
  for (const text::TextView other : kOthers) {
    const auto item = sub->Items()->Add(other);
    Put(item, Field::Subject, Text(u"One of each"));
    if (item->Answers(output::ItemInterface::RDOAppointmentItem))
      Put(item, Field::AppointmentStart, text::OleDate{45000.5});
    if (item->Answers(output::ItemInterface::RDOJournalItem)) Put(item, Field::JournalStart, text::OleDate{45000.5});
    item->Save();
  }
  Close();
  const auto exported = CountOfExportedItems();
  const auto read = CountOfReadItems();
  if (!exported || !read) FAIL() << "pffexport or readpst is not installed";
  EXPECT_EQ(exported, 16);
  // readpst has no file for tasks and notes.
  EXPECT_EQ(read, 14);
}

TEST_F(WholeStore, ShowsOtherReadersEachEmbeddedMessageAsItself) {
  VELMORA_NEEDS_PEERS();
  if (!forge::IsInstalled("pffexport")) FAIL() << "pffexport is not installed";
  PutMail(inbox_, "The first of the store");
  const auto inner = NewItem();
  Put(inner, Field::Subject, Text(u"The innermost"));
  const auto middle = NewItem();
  Put(middle, Field::Subject, Text(u"The one between"));
  middle->Attachments()->Add(inner, u"inner");
  const auto outer = NewItem();
  outer->Attachments()->Add(middle, u"middle");
  outer->Save();
  Close();
  ASSERT_TRUE(forge::RunIn(folder_, "pffexport -q -t peer '" + path_.string() + "'"));
  const std::filesystem::path attachment = "Attachments/Attachment00001/Message00001";
  const std::filesystem::path message = folder_.path() / "peer.export/Top of Personal Folders/Inbox/Message00002";
  const std::string headers = "OutlookHeaders.txt";
  EXPECT_EQ(forge::CountOf(forge::TextOf(message / attachment / headers), "\tThe one between\n"), 2)
      << "as subject and as topic";
  EXPECT_EQ(forge::CountOf(forge::TextOf(message / attachment / attachment / headers), "\tThe innermost\n"), 2);
}

TEST_F(WholeStore, OfManyItemsInOneFolderHoldsThemAllInOrder) {
  constexpr int kItems = 20000;
  for (int i = 0; i < kItems; ++i) {
    const auto item = NewItem();
    Put(item, Field::Sent, true);
    Put(item, Field::Subject, text::FromUtf8("Mail " + std::to_string(i)));
    item->Save();
  }
  EXPECT_EQ(inbox_->Items()->Count(), kItems);
  Reopen();
  const auto items = inbox_->Items();
  ASSERT_EQ(items->Count(), kItems);
  int i = 0;
  for (Ref<RDOMail> item = items->GetFirst(); item; item = items->GetNext(), ++i) {
    if (i % 997 == 0 || i == kItems - 1) {
      EXPECT_EQ(TextOf(item, Field::Subject), text::FromUtf8("Mail " + std::to_string(i)));
    }
  }
  EXPECT_EQ(i, kItems);
  Close();
  const RawStore raw(path_);
  const Nid folder = raw.Reader().FindNode(raw.Messages()[0])->nidParent;
  auto table = raw.Table(Sibling(folder, NidType::kContentsTable));
  ASSERT_EQ(table.RowCount(), static_cast<std::size_t>(kItems));
  for (const std::size_t row : {std::size_t{0}, std::size_t{446}, std::size_t{447}, std::size_t{19999}}) {
    EXPECT_EQ(table.Text(row, tag::kConversationTopic), text::FromUtf8("Mail " + std::to_string(row)));
  }
}

TEST_F(WholeStore, OfItemsThatComeByTurnsHoldsEachInItsFolder) {
  std::vector<Ref<RDOFolder>> folders;
  constexpr int kFolders = 4;  // of 500 items each: more than one item of a heap can list
  for (int i = 0; i < kFolders; ++i)
    folders.push_back(top_->Folders()->Add(text::FromUtf8("Folder " + std::to_string(i)), FolderType()));
  for (int i = 0; i < 2000; ++i) PutMail(folders[static_cast<std::size_t>(i) % folders.size()], std::to_string(i));
  Reopen();
  for (int i = 0; i < kFolders; ++i) {
    const auto items = top_->Folders()->Item(text::FromUtf8("Folder " + std::to_string(i)))->Items();
    ASSERT_EQ(items->Count(), 500);
    EXPECT_EQ(TextOf(items->GetFirst(), Field::Subject), text::FromUtf8(std::to_string(i)));
    EXPECT_EQ(TextOf(items->GetNext(), Field::Subject), text::FromUtf8(std::to_string(i + kFolders)));
  }
  ExpectSound();
}

// ---------------------------------------------------------------------------------------- failures

/// Fails as a full disk does, once so many bytes are written.
class FailingDisk : public platform::MemoryFile {
 public:
  FailingDisk(std::uint64_t bytesLeft, platform::FailureKind kind) : bytesLeft_(bytesLeft), kind_(kind) {}
  platform::Result<void> WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
    if (bytes.size() > bytesLeft_) {
      return tl::unexpected(platform::Failure{kind_, "store.pst", offset, "No space left on device"});
    }
    bytesLeft_ -= bytes.size();
    return MemoryFile::WriteAt(offset, bytes);
  }

 private:
  std::uint64_t bytesLeft_;
  platform::FailureKind kind_;
};

TEST(FailingStore, RaisesOnceAndForAllAndKeepsWhatWasCommitted) {
  std::mt19937 random(5);
  int opened = 0;
  for (int round = 0; round < 16; ++round) {
    const std::uint64_t room = 300000 + random() % 3000000;
    const auto kind = round % 2 == 0 ? platform::FailureKind::kFull : platform::FailureKind::kInputOutput;
    const auto disk = std::make_shared<FailingDisk>(room, kind);
    const auto expected = round % 2 == 0 ? ResultCode::STG_E_MEDIUMFULL : ResultCode::STG_E_WRITEFAULT;
    int saved = 0;
    {
      const auto store = StoreWriter::Create(std::make_unique<test::SharedFile>(disk), u"Test store",
                                             {kTestEpoch, text::CodePage::Lossless()});
      Folder& folder = store->AddFolder(store->Top(), u"Inbox", u"IPF.Note");
      ItemState item = NewItemState(*store);
      const auto save = [&] {
        item.fields.Put(Field::Subject, text::FromUtf8(std::to_string(saved)));
        item.fields.Put(Field::Body, Text(1 + random() % 3000, u'x'));
        item.searchKey = store->NewUid();
        SaveItem(*store, item, folder);
      };
      ResultCode code = ResultCode::S_OK;
      std::string information;
      Failure cause;
      while (code == ResultCode::S_OK) {
        try {
          save();
          ++saved;
        } catch (const output::OutputFailure& failure) {
          code = failure.Code();
          information = failure.Information();
          cause = CauseOf(failure);
        }
      }
      EXPECT_EQ(cause.kind, kind) << "the failure of the disk, whole";
      EXPECT_EQ(TextOf(cause), "store.pst: No space left on device");
      EXPECT_TRUE(cause.offset);
      EXPECT_EQ(code, expected);
      EXPECT_NE(information.find("No space left on device"), std::string::npos) << information;
      EXPECT_EQ(CodeOf(save), expected);
      EXPECT_EQ(CodeOf([&] { store->AddFolder(store->Top(), u"Other", u""); }), expected);
      EXPECT_EQ(CodeOf([&] {
                  PropertyBag bag;
                  store->PutStream(bag, tag::kAttachDataBinary, TextContent(PatternOf(100)));
                }),
                expected);
      EXPECT_EQ(CodeOf([&] { store->Delete(folder, Nid{0x200024}); }), expected);
      EXPECT_EQ(CodeOf([&] { store->Seal(); }), expected);
    }
    const auto store = OpenedStore::Open(std::make_unique<test::SharedFile>(disk));
    Folder* folder = ChildOf(store->Top(), u"Inbox");
    if (folder == nullptr) continue;
    ++opened;
    const std::size_t count = store->ItemsOf(*folder).Count();
    EXPECT_LE(count, static_cast<std::size_t>(saved));
    EXPECT_GE(count * 2 + 130, static_cast<std::size_t>(saved)) << "a third is lost at most, but for the first commits";
  }
  EXPECT_GT(opened, 8);
}

/// Cells of the table of the only folder's items that are there.
std::size_t CellsOf(const platform::MemoryFile& file) {
  const auto reader = ndb::StoreReader::Open(file);
  std::size_t cells = 0;
  for (const ndb::NodeEntry& node : reader->Nodes()) {
    if (TypeOf(node.nid) != NidType::kContentsTable || node.trees.bidSub == Bid{}) continue;
    auto table = ltp::TableContext::Open(*reader, node.trees);
    for (std::size_t row = 0; row < table.RowCount(); ++row) {
      for (const PropTag tag : {tag::kSubject, tag::kSenderName, tag::kDisplayTo, tag::kConversationTopic}) {
        cells += static_cast<std::size_t>(table.Text(row, tag).has_value());
      }
    }
  }
  return cells;
}

TEST(FullTable, IsToldWithItsFolderAndWhatItLacks) {
  const auto write = [](std::size_t maxTableBlocks, std::vector<output::FullTable>& full) {
    auto file = std::make_shared<platform::MemoryFile>();
    const auto store = StoreWriter::Create(std::make_unique<test::SharedFile>(file), u"Test store",
                                           {kTestEpoch, text::CodePage::Lossless(), maxTableBlocks});
    Folder& folder = store->AddFolder(store->Top(), u"Inbox", u"IPF.Note");
    ItemState item = NewItemState(*store);
    for (int i = 0; i < 300; ++i) {
      item.fields.Put(Field::Subject, text::FromUtf8(std::to_string(i)) + Text(200, u's'));
      item.searchKey = store->NewUid();
      SaveItem(*store, item, folder);
    }
    store->Seal();
    full = store->FullTables();
    return file;
  };
  std::vector<output::FullTable> none;
  std::vector<output::FullTable> full;
  const auto whole = write(kMaxHeapBlocks, none);
  const auto limited = write(20, full);
  EXPECT_TRUE(none.empty());
  ASSERT_EQ(full.size(), 1u);
  EXPECT_EQ(full[0].folder, u"Inbox");
  EXPECT_GT(full[0].valuesLeftOut, 300u);
  EXPECT_LT(CellsOf(*limited), CellsOf(*whole));
  EXPECT_LE(CellsOf(*whole) - CellsOf(*limited), full[0].valuesLeftOut);
}

TEST(FailingStore, ThatCannotEvenBeMadeSaysSo) {
  const auto disk = std::make_shared<FailingDisk>(1000, platform::FailureKind::kFull);
  EXPECT_EQ(
      CodeOf([&] {
        StoreWriter::Create(std::make_unique<test::SharedFile>(disk), u"x", {kTestEpoch, text::CodePage::Lossless()});
      }),
      ResultCode::STG_E_MEDIUMFULL);
}

}  // namespace
}  // namespace velmora::messaging
