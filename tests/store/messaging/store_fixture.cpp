#include "store/messaging/store_fixture.h"

#include <algorithm>
#include <cstring>

#include "platform/path_text.h"

namespace velmora::messaging {
namespace {

/// Stores that tests left for the checker, as files named for the tests.
class StoresToCheck : public ::testing::Environment {
 public:
  void Add(const std::filesystem::path& store) {
    if (forge::ToolsFolder().empty()) return;
    if (!folder_) folder_.emplace();
    const ::testing::TestInfo& test = *::testing::UnitTest::GetInstance()->current_test_info();
    const auto name = std::string(test.test_suite_name()) + "." + test.name() + "." + std::to_string(++count_) + ".pst";
    std::filesystem::copy_file(store, folder_->path() / name);
  }

  void TearDown() override {
    if (!folder_) return;
    const std::string program =
        "import sys, glob; sys.path.insert(0, sys.argv[1]); import pstcheck; "
        "found = [pstcheck.main(['--strict', s]) for s in sorted(glob.glob('*.pst'))]; sys.exit(max(found))";
    EXPECT_TRUE(forge::RunIn(*folder_, "python3 -B -c \"" + program + "\" '" + forge::ToolsFolder().string() + "'"))
        << forge::TextOf(folder_->path() / "output");
    EXPECT_EQ(forge::CountOf(forge::TextOf(folder_->path() / "output"), ": 0 errors, 0 warnings"), count_);
    folder_.reset();
  }

 private:
  std::optional<forge::ScratchFolder> folder_;
  int count_ = 0;
};

// The test program owns it.
StoresToCheck* const g_stores = static_cast<StoresToCheck*>(::testing::AddGlobalTestEnvironment(new StoresToCheck));

}  // namespace

using output::Field;
using output::RDOMail;
using output::Ref;

std::size_t TextContent::ReadAt(std::uint64_t offset, std::span<std::byte> out) const {
  if (offset >= bytes_.size()) return 0;
  const std::size_t length = std::min<std::size_t>(out.size(), bytes_.size() - offset);
  std::memcpy(out.data(), bytes_.data() + offset, length);
  return length;
}

std::string PatternOf(std::size_t size) {
  std::string bytes(size, '\0');
  std::uint32_t state = 12345;
  for (char& byte : bytes) {
    state = state * 1664525 + 1013904223;
    byte = static_cast<char>(state >> 24);
  }
  return bytes;
}

RawStore::RawStore(const std::filesystem::path& path) {
  auto file = platform::OpenForReading(path);
  if (!file) throw std::runtime_error("cannot open " + path.string());
  file_ = std::move(*file);
  reader_ = ndb::StoreReader::Open(*file_);
}

ltp::PropertyContext RawStore::Node(Nid nid) const {
  const auto node = reader_->FindNode(nid);
  if (!node) throw std::runtime_error("no such node");
  return ltp::PropertyContext::Open(*reader_, node->trees);
}

ltp::TableContext RawStore::Table(Nid nid) const {
  const auto node = reader_->FindNode(nid);
  if (!node) throw std::runtime_error("no such node");
  return ltp::TableContext::Open(*reader_, node->trees);
}

std::vector<Nid> RawStore::Messages() const {
  std::vector<Nid> messages;
  for (const ndb::NodeEntry& node : reader_->Nodes()) {
    if (TypeOf(node.nid) == NidType::kNormalMessage) messages.push_back(node.nid);
  }
  return messages;
}

ltp::PropertyContext RawStore::Message() const {
  const auto messages = Messages();
  if (messages.size() != 1) throw std::runtime_error(std::to_string(messages.size()) + " messages");
  return Node(messages[0]);
}

ltp::TableContext RawStore::SubTable(ltp::PropertyContext& message, Nid nid) const {
  const auto entry = message.FindSubnode(nid);
  if (!entry) throw std::runtime_error("no such sub-node");
  return ltp::TableContext::Open(*reader_, entry->trees);
}

ltp::PropertyContext RawStore::SubNode(ltp::PropertyContext& message, Nid nid) const {
  const auto entry = message.FindSubnode(nid);
  if (!entry) throw std::runtime_error("no such sub-node");
  return ltp::PropertyContext::Open(*reader_, entry->trees);
}

StoreTest::StoreTest()
    : library_(std::make_unique<PstLibrary>(
          PstLibraryOptions{folder_.path() / "config", kTestEpoch, text::CodePage::Lossless()})),
      session_(library_->CreateRDOSession()) {
  top_ = session_->Stores()->AddPSTStore(platform::TextOfPath(path_), u"Test store")->IPMRootFolder();
  inbox_ = top_->Folders()->Add(u"Inbox", std::monostate());
}

void StoreTest::Put(const Ref<RDOMail>& item, Field field, output::FieldValue value) { item->Put(field, value); }

text::Text StoreTest::TextOf(const Ref<RDOMail>& item, Field field) { return item->Get(field).AsText(); }

Ref<RDOMail> StoreTest::NewItem(text::TextView messageClass) { return inbox_->Items()->Add(messageClass); }

void StoreTest::Close() {
  const auto sealed = library_->Seal();
  ASSERT_TRUE(sealed) << sealed.error().message;
  inbox_ = top_ = nullptr;
  session_ = nullptr;
}

void StoreTest::Reopen() {
  Close();
  session_ = library_->CreateRDOSession();
  top_ = session_->Stores()->OpenPSTStore(platform::TextOfPath(path_))->IPMRootFolder();
  inbox_ = top_->Folders()->Item(u"Inbox");
}

RawStore StoreTest::Raw() {
  if (session_) Close();
  return RawStore(path_);
}

void StoreTest::ExpectSound() {
  if (session_) Close();
  g_stores->Add(path_);
}

std::optional<int> StoreTest::CountOfExportedItems() {
  if (!forge::IsInstalled("pffexport")) return std::nullopt;
  std::filesystem::remove_all(folder_.path() / "peer.export");
  EXPECT_TRUE(forge::RunIn(folder_, "pffexport -q -m items -t peer '" + path_.string() + "'"));
  int count = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.path() / "peer.export")) {
    const std::string name = entry.path().filename().string();
    // Each item is a folder named for its kind and number: Message00001, Contact00001, ...
    const bool inAttachments = entry.path().string().find("Attachments") != std::string::npos;
    count += entry.is_directory() && name.size() > 5 &&
             name.find_first_not_of("0123456789", name.size() - 5) == std::string::npos && !inAttachments;
  }
  return count;
}

std::optional<int> StoreTest::CountOfReadItems() {
  if (!forge::IsInstalled("readpst")) return std::nullopt;
  const std::filesystem::path out = folder_.path() / "read";
  std::filesystem::remove_all(out);
  std::filesystem::create_directories(out);
  EXPECT_TRUE(forge::RunIn(folder_, "readpst -q -j0 -D -S -o read '" + path_.string() + "'"))
      << forge::TextOf(folder_.path() / "output");
  int count = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(out)) {
    const std::string name = entry.path().filename().string();
    count += entry.is_regular_file() && name.find_first_not_of("0123456789") == std::string::npos;
  }
  return count;
}

ItemState NewItemState(StoreWriter& store, text::TextView messageClass) {
  ItemState item;
  item.messageClass = messageClass;
  item.searchKey = store.NewUid();
  item.created = store.Now();
  return item;
}

Nid SaveItem(StoreWriter& store, const ItemState& item, Folder& folder, std::optional<Nid> nid,
             std::span<const ItemAttachment> attachments) {
  return store.Save(ComposeMessage(item, attachments, store.Now(), store.CodePage()), folder, nid);
}

}  // namespace velmora::messaging
