// What is left of a store when its disk is full: everything that was saved before.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "aids/shared_file.h"
#include "store/format/property_tags.h"
#include "store/messaging/failures.h"
#include "store/messaging/opened_store.h"
#include "store/messaging/store_fixture.h"
#include "store/messaging/store_writer.h"
#include "store/support/pst_check.h"
#include "store/support/test_files.h"

namespace velmora::messaging {
namespace {

using output::Field;
using output::ResultCode;
using text::Text;

/// The subjects of a folder's items.
using Contents = std::map<Text, std::multiset<Text>>;

/// A kind of mailbox: how often it makes folders, and how large its items are.
struct Mailbox {
  const char* name;
  std::uint32_t itemsPerFolder;
  std::uint32_t subject;  ///< characters at most, as all the other lengths
  std::uint32_t body;
  std::uint32_t attachment;
};
constexpr Mailbox kMailboxes[] = {
    {"notes", 100000, 20, 100, 0},         {"long subjects", 100000, 250, 10, 0},   {"folders", 1, 20, 20, 0},
    {"attachments", 300, 60, 3000, 60000}, {"one after another", 150, 100, 500, 0},
};

/// Fills a store until `steps` are done or the disk is full; `saved` is what it took.
class Filler {
 public:
  Filler(StoreWriter& store, const Mailbox& mailbox, Contents& saved)
      : store_(store), mailbox_(mailbox), saved_(saved) {}

  void Fill(int steps) {
    for (int step = 0; step < steps; ++step) {
      if (step % mailbox_.itemsPerFolder == 0) AddFolder(step);
      const std::uint32_t chance = random_();
      if (chance % 16 == 0 && !nids_.empty()) {
        SaveAgain(chance / 16 % nids_.size());
      } else {
        Save(step);
      }
    }
  }

 private:
  void AddFolder(int step) {
    nids_.clear();
    items_.clear();
    // Every third lies in the one before.
    Folder& parent = folder_ != nullptr && step % 3 == 0 ? *folder_ : store_.Top();
    const Text name = text::FromUtf8("Folder " + std::to_string(step));
    folder_ = &store_.AddFolder(parent, name, u"IPF.Note");
    saved_[name];
  }

  void Save(int step) {
    ItemState item = NewItemState(store_);
    Text subject = text::FromUtf8(std::to_string(step) + " ");
    subject.append(random_() % (mailbox_.subject + 1), u'x');
    subject.back() = u'.';
    item.fields.Put(Field::Subject, subject);
    item.fields.Put(Field::SenderName, Text(random_() % (mailbox_.subject + 1), u's'));
    item.fields.Put(Field::To, Text(random_() % (mailbox_.subject + 1), u't'));
    item.fields.Put(Field::Body, Text(random_() % (mailbox_.body + 1), u'b'));
    std::vector<ItemAttachment> attachments;
    if (mailbox_.attachment != 0) {
      const TextContent content(PatternOf(random_() % mailbox_.attachment));
      store_.PutStream(attachments.emplace_back(ItemAttachment{u"a.bin", false, {}}).content, tag::kAttachDataBinary,
                       content);
    }
    const Nid nid = SaveItem(store_, item, *folder_, {}, attachments);
    saved_[folder_->name].insert(subject);
    nids_.push_back(nid);
    items_.push_back(std::move(item));
  }

  /// Another text, or none at all any more.
  void SaveAgain(std::size_t at) {
    const Text before(items_[at].fields.Text(Field::Subject));
    if (at % 2 == 0) {
      store_.Delete(*folder_, nids_[at]);
      nids_.erase(nids_.begin() + static_cast<std::ptrdiff_t>(at));
      items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(at));
    } else {
      ItemState changed = items_[at];
      changed.fields.Put(Field::Subject, Text(u"again"));
      SaveItem(store_, changed, *folder_, nids_[at]);
      items_[at] = changed;
      saved_[folder_->name].insert(u"again");
    }
    auto& subjects = saved_[folder_->name];
    subjects.erase(subjects.find(before));
  }

  StoreWriter& store_;
  const Mailbox& mailbox_;
  Contents& saved_;
  test::Random random_{7};
  Folder* folder_ = nullptr;
  std::vector<Nid> nids_;
  std::vector<ItemState> items_;
};

void AddContents(OpenedStore& store, Folder& folder, Contents& contents) {
  for (Folder* child : folder.children) {
    if (child->name.starts_with(u"Folder ")) {
      auto& subjects = contents[child->name];
      store.ItemsOf(*child).ForEach([&](const ItemRow& row) {
        auto message = ltp::PropertyContext::Open(store.Source(), store.Source().FindNode(row.nid)->trees);
        subjects.insert(message.Text(tag::kConversationTopic).value_or(Text()));
      });
    }
    AddContents(store, *child, contents);
  }
}

Contents ContentsOf(const std::vector<std::byte>& bytes) {
  Contents contents;
  const auto store = OpenedStore::Open(std::make_unique<platform::MemoryFile>(bytes));
  AddContents(*store, store->Top(), contents);
  return contents;
}

struct Outcome {
  Contents saved;
  ResultCode filling = ResultCode::S_OK;
  ResultCode sealing = ResultCode::S_OK;
};

Outcome FillDisk(const std::shared_ptr<platform::ByteStore>& disk, const Mailbox& mailbox, int steps) {
  Outcome outcome;
  const auto store = StoreWriter::Create(std::make_unique<test::SharedFile>(disk), u"Test store",
                                         {kTestEpoch, text::CodePage::Lossless()});
  outcome.filling = CodeOf([&] { Filler(*store, mailbox, outcome.saved).Fill(steps); });
  outcome.sealing = CodeOf([&] { store->Seal(); });
  return outcome;
}

class FullDisk : public ::testing::TestWithParam<Mailbox> {};
INSTANTIATE_TEST_SUITE_P(Kinds, FullDisk, ::testing::ValuesIn(kMailboxes),
                         [](const auto& kind) { return std::to_string(kind.index); });

TEST_P(FullDisk, LeavesAllThatWasSaved) {
  constexpr int kSteps = 700;
  const auto whole = std::make_shared<test::SmallDisk>(1 << 30);
  const Outcome all = FillDisk(whole, GetParam(), kSteps);
  ASSERT_EQ(all.filling, ResultCode::S_OK);
  ASSERT_EQ(ContentsOf(whole->Bytes()), all.saved);

  constexpr std::uint64_t kSmallest = 790000;  // an empty store, and its reserve
  constexpr int kDisks = 30;
  for (int i = 0; i < kDisks; ++i) {
    const std::uint64_t capacity = kSmallest + (whole->Size() - kSmallest) * static_cast<std::uint64_t>(i) / kDisks;
    const auto disk = std::make_shared<test::SmallDisk>(capacity);
    const Outcome outcome = FillDisk(disk, GetParam(), kSteps);
    ASSERT_EQ(outcome.filling, ResultCode::STG_E_MEDIUMFULL) << capacity;
    ASSERT_EQ(outcome.sealing, ResultCode::STG_E_MEDIUMFULL) << capacity;
    ASSERT_EQ(ContentsOf(disk->Bytes()), outcome.saved) << capacity;
    if (i == kDisks / 2 && test::HasPstCheck()) {
      ASSERT_EQ(test::PstCheck(disk->Bytes(), test::Check::kMail), "") << capacity;
    }
  }
}

TEST_P(FullDisk, IsNotMetWhereTheStoreAndItsLastCommitFit) {
  constexpr int kSteps = 700;
  const auto whole = std::make_shared<test::SmallDisk>(1 << 30);
  FillDisk(whole, GetParam(), kSteps);
  const auto disk = std::make_shared<test::SmallDisk>(whole->Size() * 5 / 4 + (1 << 20));
  const Outcome outcome = FillDisk(disk, GetParam(), kSteps);
  EXPECT_EQ(outcome.filling, ResultCode::S_OK);
  EXPECT_EQ(outcome.sealing, ResultCode::S_OK);
  EXPECT_EQ(disk->Bytes(), whole->Bytes()) << "the room that was kept is given back";
}

}  // namespace
}  // namespace velmora::messaging
