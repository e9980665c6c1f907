#include "store/messaging/session.h"

#include "platform/file.h"
#include "store/messaging/failures.h"
#include "store/messaging/folders/folder_objects.h"
#include "store/messaging/opened_store.h"
#include "store/messaging/values/stored_text.h"

namespace velmora::messaging {
namespace {

using output::Ref;

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
    const std::filesystem::path file = text::ToFileName(path);
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
        OpenedStore::Open(AsReading([&] { return ValueOrRaise(platform::OpenForReading(text::ToFileName(path))); })));
  }

 private:
  Ref<output::RDOStore> Mount(std::shared_ptr<Store> store) {
    stores_->push_back(std::move(store));
    return DefaultStore();
  }

  std::shared_ptr<LibraryState> library_;
  std::shared_ptr<Mounted> stores_;
};

}  // namespace

Session::Session(std::shared_ptr<LibraryState> library)
    : library_(std::move(library)), stores_(std::make_shared<Mounted>()) {}

void Session::Logon(text::TextView profileName) { library_->currentProfile = profileName; }

Ref<output::RDOStores> Session::Stores() { return std::make_shared<StoresObject>(library_, stores_); }

Ref<output::RDOFolder> Session::GetDefaultFolder(output::DefaultFolder kind) {
  if (stores_->empty()) return nullptr;
  const std::shared_ptr<Store>& store = stores_->back();
  return RefOf(store, store->OfNid(store->Defaults().Of(kind)));
}

Ref<output::RDOFolder> Session::GetFolderFromPath(text::TextView path) {
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

}  // namespace velmora::messaging
