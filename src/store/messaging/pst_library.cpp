#include "store/messaging/pst_library.h"

#include <charconv>
#include <cstdlib>
#include <string_view>

#include "platform/file.h"
#include "platform/path_text.h"
#include "store/messaging/failures.h"
#include "store/messaging/mail_item.h"
#include "store/messaging/opened_store.h"
#include "store/messaging/profile_list.h"
#include "store/messaging/store_writer.h"
#include "store/messaging/values/stored_text.h"

namespace velmora::messaging {

/// What the sessions of one library share.
struct LibraryState {
  StoreOptions options;
  text::Text currentProfile;
  std::vector<std::weak_ptr<StoreWriter>> writers;  ///< of all stores that were created
};

namespace {

using output::DefaultFolder;
using output::Ref;

/// What all objects of a folder have: it, and the store, which they keep open.
template <class T>
class OfFolder : public T {
 public:
  OfFolder(std::shared_ptr<Store> store, Folder& folder) : store_(std::move(store)), folder_(folder) {}

 protected:
  std::shared_ptr<Store> store_;
  Folder& folder_;
};

class ItemsObject : public OfFolder<output::RDOItems> {
 public:
  using OfFolder::OfFolder;

  std::int32_t Count() const override { return static_cast<std::int32_t>(store_->ItemsOf(folder_).Count()); }
  Ref<output::RDOMail> Add(text::TextView messageClass) override {
    return std::make_shared<MailItem>(store_, folder_, messageClass);
  }
  Ref<output::RDOMail> GetFirst() override {
    last_ = Nid{};
    return GetNext();
  }
  Ref<output::RDOMail> GetNext() override {
    const ItemRow* next = store_->ItemsOf(folder_).After(last_);
    if (next == nullptr) return nullptr;
    last_ = next->nid;
    return std::make_shared<MailItem>(store_, folder_, last_);
  }

 private:
  Nid last_{};
};

Ref<output::RDOFolder> RefOf(const std::shared_ptr<Store>& store, Folder* folder);

class FoldersObject : public OfFolder<output::RDOFolders> {
 public:
  using OfFolder::OfFolder;

  Ref<output::RDOFolder> Add(text::TextView name, const output::FolderType& type) override {
    StoreWriter& writer = store_->Writer();
    const auto* containerClass = std::get_if<text::Text>(&type);
    Folder& folder = writer.AddFolder(
        folder_, name, containerClass != nullptr ? text::TextView(*containerClass) : kMailContainerClass);
    if (const auto* number = std::get_if<std::int32_t>(&type)) {
      // A second folder of a kind, further down in the tree, does not take the place of the first.
      const auto kind = static_cast<DefaultFolder>(*number);
      if (writer.Defaults().Of(kind) == Nid{}) writer.SetDefaultFolder(kind, folder);
    }
    return RefOf(store_, &folder);
  }
  Ref<output::RDOFolder> Item(text::TextView name) override { return RefOf(store_, ChildOf(folder_, NameOf(name))); }
  std::int32_t Count() const override { return static_cast<std::int32_t>(folder_.children.size()); }
  Ref<output::RDOFolder> At(std::int32_t index) override {
    if (index < 0 || index >= Count())
      throw output::OutputFailure(output::ResultCode::E_INVALIDARG, "There is no folder of that number.");
    return RefOf(store_, folder_.children[static_cast<std::size_t>(index)]);
  }
};

class Folder2Object : public OfFolder<output::RDOFolder2> {
 public:
  using OfFolder::OfFolder;

  void SetAsDefaultFolder(DefaultFolder kind) override {
    StoreWriter& writer = store_->Writer();
    writer.SetContainerClass(folder_, ContainerClassOf(kind));
    writer.SetDefaultFolder(kind, folder_);
  }
  void PutDefaultFolderFlag(std::int32_t) override {}
};

class FolderObject : public OfFolder<output::RDOFolder> {
 public:
  using OfFolder::OfFolder;

  Ref<output::RDOItems> Items() override { return std::make_shared<ItemsObject>(store_, folder_); }
  Ref<output::RDOFolders> Folders() override { return std::make_shared<FoldersObject>(store_, folder_); }
  Ref<output::RDOFolder2> QueryFolder2() override { return std::make_shared<Folder2Object>(store_, folder_); }
  text::Text Name() const override { return folder_.name; }
  text::Text ContainerClass() const override { return folder_.containerClass; }
};

/// A reference to a folder, null for none. Each is an object of its own.
Ref<output::RDOFolder> RefOf(const std::shared_ptr<Store>& store, Folder* folder) {
  if (folder == nullptr) return nullptr;
  return std::make_shared<FolderObject>(store, *folder);
}

using Mounted = std::vector<std::shared_ptr<Store>>;

class StoreObject : public output::RDOStore {
 public:
  explicit StoreObject(std::shared_ptr<Store> store) : store_(std::move(store)) {}
  Ref<output::RDOFolder> IPMRootFolder() override { return RefOf(store_, &store_->Top()); }

 private:
  std::shared_ptr<Store> store_;
};

class StoresObject : public output::RDOStores {
 public:
  StoresObject(std::shared_ptr<LibraryState> library, std::shared_ptr<Mounted> stores)
      : library_(std::move(library)), stores_(std::move(stores)) {}

  Ref<output::RDOStore> DefaultStore() override {
    if (stores_->empty()) return nullptr;
    return std::make_shared<StoreObject>(stores_->back());
  }

  Ref<output::RDOStore> AddPSTStore(text::TextView path, text::TextView displayName) override {
    const std::filesystem::path file = platform::PathOf(path);
    auto bytes = AsOperation([&] { return ValueOrRaise(platform::CreateFile(file, platform::Existing::kRefuse)); });
    try {
      auto store = StoreWriter::Create(std::move(bytes), displayName, library_->options);
      library_->writers.push_back(store);
      return Mount(std::move(store));
    } catch (const output::OutputFailure&) {
      (void)platform::DeleteFile(file);  // this call made it, and it is no store
      throw;
    }
  }

  Ref<output::RDOStore> OpenPSTStore(text::TextView path) override {
    return Mount(
        OpenedStore::Open(AsReading([&] { return ValueOrRaise(platform::OpenForReading(platform::PathOf(path))); })));
  }

 private:
  Ref<output::RDOStore> Mount(std::shared_ptr<Store> store) {
    stores_->push_back(std::move(store));
    return DefaultStore();
  }

  std::shared_ptr<LibraryState> library_;
  std::shared_ptr<Mounted> stores_;
};

class Session : public output::RDOSession {
 public:
  explicit Session(std::shared_ptr<LibraryState> library) : library_(std::move(library)) {}

  void Logon(text::TextView profileName) override { library_->currentProfile = profileName; }
  Ref<output::RDOStores> Stores() override { return std::make_shared<StoresObject>(library_, stores_); }

  Ref<output::RDOFolder> GetDefaultFolder(output::DefaultFolder kind) override {
    if (stores_->empty()) return nullptr;
    const std::shared_ptr<Store>& store = stores_->back();
    return RefOf(store, store->OfNid(store->Defaults().Of(kind)));
  }

  Ref<output::RDOFolder> GetFolderFromPath(text::TextView path) override {
    constexpr text::TextView kStart = u"\\\\";
    if (!path.starts_with(kStart)) return nullptr;
    path.remove_prefix(kStart.size());
    for (const std::shared_ptr<Store>& store : *stores_) {
      // The name of a store may hold backslashes too, so it is compared as a whole, in the form that names have
      // in a store.
      const text::Text& name = store->DisplayName();
      if (path.size() < name.size() || !text::EqualIgnoringCase(NameOf(path.substr(0, name.size())), NameOf(name)))
        continue;
      if (Folder* folder = FolderAt(store->Top(), path.substr(name.size()))) return RefOf(store, folder);
    }
    return nullptr;
  }

 private:
  std::shared_ptr<LibraryState> library_;
  std::shared_ptr<Mounted> stores_ = std::make_shared<Mounted>();
};

class Utils : public output::MAPIUtils {
 public:
  explicit Utils(std::shared_ptr<LibraryState> library) : library_(std::move(library)) {}
  text::Text CurrentProfileName() override { return library_->currentProfile; }

 private:
  std::shared_ptr<LibraryState> library_;
};

}  // namespace

std::optional<std::int64_t> PstLibraryOptions::EpochOfEnvironment() {
  const char* value = std::getenv("SOURCE_DATE_EPOCH");
  if (value == nullptr) return std::nullopt;
  const std::string_view digits = value;
  std::int64_t seconds = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), seconds);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return seconds;
}

PstLibrary::PstLibrary(PstLibraryOptions options)
    : configFolder_(std::move(options.configFolder)), state_(std::make_shared<LibraryState>()) {
  state_->options = {
      .sourceDateEpoch = options.sourceDateEpoch, .codePage = options.codePage, .workers = options.workers};
}

output::Ref<output::ProfileList> PstLibrary::CreateProfileList() {
  return std::make_shared<ProfileFile>(configFolder_);
}
output::Ref<output::RDOSession> PstLibrary::CreateRDOSession() { return std::make_shared<Session>(state_); }
output::Ref<output::MAPIUtils> PstLibrary::CreateMAPIUtils() { return std::make_shared<Utils>(state_); }

std::vector<output::FullTable> PstLibrary::FullTables() const {
  std::vector<output::FullTable> all;
  for (const std::weak_ptr<StoreWriter>& writer : state_->writers) {
    if (const std::shared_ptr<StoreWriter> store = writer.lock()) {
      const auto full = store->FullTables();
      all.insert(all.end(), full.begin(), full.end());
    }
  }
  return all;
}

platform::Result<void> PstLibrary::Seal() {
  platform::Result<void> result;
  for (const std::weak_ptr<StoreWriter>& writer : state_->writers) {
    const std::shared_ptr<StoreWriter> store = writer.lock();
    if (store == nullptr) continue;
    try {
      store->Seal();
    } catch (const output::OutputFailure& failure) {
      if (result) result = tl::unexpected(output::CauseOf(failure));
    }
  }
  return result;
}

}  // namespace velmora::messaging
