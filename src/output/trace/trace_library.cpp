#include "output/trace/trace_library.h"

#include <map>
#include <ranges>
#include <unordered_map>

#include "output/trace/json_line.h"
#include "output/trace/trace_item.h"
#include "store/format/classes.h"

namespace velmora::output {
namespace {

class TraceStore;

/// Folders are kept for the whole run, each with the number of its saved items.
class TraceFolder : public RDOFolder, public std::enable_shared_from_this<TraceFolder> {
 public:
  /// The top folder of a store has no `parent`. `store` outlives its folders' use by a session.
  TraceFolder(std::shared_ptr<TraceState> state, std::weak_ptr<TraceStore> store, std::weak_ptr<TraceFolder> parent,
              text::TextView name, text::TextView containerClass);

  Ref<RDOItems> Items() override;
  Ref<RDOFolders> Folders() override;
  Ref<RDOFolder2> QueryFolder2() override;
  text::Text Name() const override { return name_; }
  text::Text ContainerClass() const override { return containerClass_; }

  /// Makes a child without tracing it, as a store does for the folders it is born with.
  std::shared_ptr<TraceFolder> MakeChild(text::TextView name, text::TextView containerClass);
  std::shared_ptr<TraceFolder> Child(text::TextView name) const;
  const std::vector<std::shared_ptr<TraceFolder>>& Children() const { return children_; }

  std::shared_ptr<TraceFolder> AddChild(text::TextView name, const FolderType& type);
  void BecomeDefault(DefaultFolder kind);
  std::shared_ptr<TraceItem> AddItem(text::TextView messageClass);

  /// Two backslashes and the name of the store, then each name behind a backslash. Put together anew each time: the
  /// folders of one deep chain would hold more text than all else.
  text::Text Path() const;

  const SavedItems& Saved() const { return *saved_; }

 private:
  std::shared_ptr<TraceState> state_;
  std::weak_ptr<TraceStore> store_;
  std::weak_ptr<TraceFolder> parent_;
  text::Text name_;
  text::Text containerClass_;
  std::vector<std::shared_ptr<TraceFolder>> children_;
  std::unordered_map<text::Text, std::shared_ptr<TraceFolder>> childByName_;  ///< by the folded name
  std::shared_ptr<SavedItems> saved_ = std::make_shared<SavedItems>();
};

/// One store: its name, its top folder and its default folders.
class TraceStore : public RDOStore, public std::enable_shared_from_this<TraceStore> {
 public:
  /// A fresh store has a top and, under it, "Deleted Items".
  static std::shared_ptr<TraceStore> Create(std::shared_ptr<TraceState> state, text::TextView displayName);

  Ref<RDOFolder> IPMRootFolder() override;

  const text::Text& Root() const { return root_; }

  std::shared_ptr<TraceFolder> DefaultOf(DefaultFolder kind) const;
  void SetDefault(DefaultFolder kind, std::shared_ptr<TraceFolder> folder) { defaults_[kind] = std::move(folder); }

  /// The folder at a path below two backslashes and this store's name; null where there is none.
  std::shared_ptr<TraceFolder> FolderAt(text::TextView path) const;

 private:
  explicit TraceStore(text::TextView displayName) : root_(text::Text(u"\\\\") + text::Text(displayName)) {}

  text::Text root_;
  std::shared_ptr<TraceFolder> top_;
  std::map<DefaultFolder, std::shared_ptr<TraceFolder>> defaults_;
};

class TraceItems : public RDOItems {
 public:
  explicit TraceItems(std::shared_ptr<TraceFolder> folder) : folder_(std::move(folder)) {}
  std::int32_t Count() const override { return folder_->Saved().Count(); }
  Ref<RDOMail> Add(text::TextView messageClass) override { return folder_->AddItem(messageClass); }
  Ref<RDOMail> GetFirst() override {
    place_ = 0;
    return GetNext();
  }
  Ref<RDOMail> GetNext() override { return folder_->Saved().Next(place_); }

 private:
  std::shared_ptr<TraceFolder> folder_;
  std::uint64_t place_ = 0;
};

class TraceFolders : public RDOFolders {
 public:
  explicit TraceFolders(std::shared_ptr<TraceFolder> folder) : folder_(std::move(folder)) {}
  Ref<RDOFolder> Add(text::TextView name, const FolderType& type) override { return folder_->AddChild(name, type); }
  Ref<RDOFolder> Item(text::TextView name) override { return folder_->Child(name); }
  std::int32_t Count() const override { return static_cast<std::int32_t>(folder_->Children().size()); }
  Ref<RDOFolder> At(std::int32_t index) override {
    if (index < 0 || index >= Count()) throw OutputFailure(ResultCode::E_INVALIDARG);
    return folder_->Children()[static_cast<std::size_t>(index)];
  }

 private:
  std::shared_ptr<TraceFolder> folder_;
};

class TraceFolder2 : public RDOFolder2 {
 public:
  explicit TraceFolder2(std::shared_ptr<TraceFolder> folder) : folder_(std::move(folder)) {}
  void SetAsDefaultFolder(DefaultFolder kind) override { folder_->BecomeDefault(kind); }
  void PutDefaultFolderFlag(std::int32_t) override {}

 private:
  std::shared_ptr<TraceFolder> folder_;
};

TraceFolder::TraceFolder(std::shared_ptr<TraceState> state, std::weak_ptr<TraceStore> store,
                         std::weak_ptr<TraceFolder> parent, text::TextView name, text::TextView containerClass)
    : state_(std::move(state)),
      store_(std::move(store)),
      parent_(std::move(parent)),
      name_(name),
      containerClass_(containerClass) {}

Ref<RDOItems> TraceFolder::Items() { return std::make_shared<TraceItems>(shared_from_this()); }
Ref<RDOFolders> TraceFolder::Folders() { return std::make_shared<TraceFolders>(shared_from_this()); }
Ref<RDOFolder2> TraceFolder::QueryFolder2() { return std::make_shared<TraceFolder2>(shared_from_this()); }

text::Text TraceFolder::Path() const {
  std::vector<std::shared_ptr<const TraceFolder>> way = {shared_from_this()};  // up to the top folder
  while (auto parent = way.back()->parent_.lock()) way.push_back(std::move(parent));
  way.pop_back();
  const auto store = store_.lock();
  text::Text path = store != nullptr ? store->Root() : text::Text();
  for (const auto& folder : std::views::reverse(way)) path.append(u"\\").append(folder->name_);
  return path;
}

std::shared_ptr<TraceFolder> TraceFolder::Child(text::TextView name) const {
  const auto found = childByName_.find(text::CaseFolded(name));
  return found == childByName_.end() ? nullptr : found->second;
}

std::shared_ptr<TraceFolder> TraceFolder::MakeChild(text::TextView name, text::TextView containerClass) {
  if (name.empty()) throw OutputFailure(ResultCode::E_INVALIDARG);
  const auto [place, fresh] = childByName_.try_emplace(text::CaseFolded(name));
  if (!fresh) throw OutputFailure(ResultCode::MAPI_E_COLLISION);
  place->second = std::make_shared<TraceFolder>(state_, store_, weak_from_this(), name, containerClass);
  children_.push_back(place->second);
  return place->second;
}

std::shared_ptr<TraceFolder> TraceFolder::AddChild(text::TextView name, const FolderType& type) {
  const auto* containerClass = std::get_if<text::Text>(&type);
  const auto* kind = std::get_if<std::int32_t>(&type);
  auto child = MakeChild(name, containerClass != nullptr ? text::TextView(*containerClass) : kMailContainerClass);
  JsonLine line("AddFolder");
  line.Text("parent", Path()).Text("name", name);
  if (containerClass != nullptr) {
    line.Text("type", *containerClass);
  } else if (kind != nullptr) {
    line.Number("type", *kind);
  } else {
    line.Null("type");
  }
  state_->sink->WriteLine(line.End());
  if (kind != nullptr) {
    if (const auto store = store_.lock()) store->SetDefault(static_cast<DefaultFolder>(*kind), child);
  }
  return child;
}

void TraceFolder::BecomeDefault(DefaultFolder kind) {
  state_->sink->WriteLine(
      JsonLine("SetAsDefaultFolder").Text("folder", Path()).Number("kind", static_cast<std::int32_t>(kind)).End());
  containerClass_ = ContainerClassOf(kind);
  if (const auto store = store_.lock()) store->SetDefault(kind, shared_from_this());
}

std::shared_ptr<TraceItem> TraceFolder::AddItem(text::TextView messageClass) {
  const std::int64_t id = ++state_->lastItemId;
  state_->sink->WriteLine(
      JsonLine("AddItem").Number("id", id).Text("folder", Path()).Text("class", messageClass).End());
  return std::make_shared<TraceItem>(state_, saved_, id, messageClass);
}

std::shared_ptr<TraceStore> TraceStore::Create(std::shared_ptr<TraceState> state, text::TextView displayName) {
  std::shared_ptr<TraceStore> store(new TraceStore(displayName));
  store->top_ = std::make_shared<TraceFolder>(std::move(state), store, std::weak_ptr<TraceFolder>(),
                                              u"Top of Personal Folders", kMailContainerClass);
  store->SetDefault(DefaultFolder::kDeletedItems, store->top_->MakeChild(u"Deleted Items", kMailContainerClass));
  return store;
}

Ref<RDOFolder> TraceStore::IPMRootFolder() { return top_; }

std::shared_ptr<TraceFolder> TraceStore::DefaultOf(DefaultFolder kind) const {
  const auto found = defaults_.find(kind);
  return found == defaults_.end() ? nullptr : found->second;
}

std::shared_ptr<TraceFolder> TraceStore::FolderAt(text::TextView path) const {
  if (path.size() < root_.size() || !text::EqualIgnoringCase(path.substr(0, root_.size()), root_)) return nullptr;
  path.remove_prefix(root_.size());
  std::shared_ptr<TraceFolder> folder = top_;
  while (!path.empty() && folder != nullptr) {
    if (path.front() != u'\\') return nullptr;
    path.remove_prefix(1);
    const text::TextView name = path.substr(0, path.find(u'\\'));
    folder = folder->Child(name);
    path.remove_prefix(name.size());
  }
  return folder;
}

using MountedStores = std::vector<std::shared_ptr<TraceStore>>;

class TraceStores : public RDOStores {
 public:
  TraceStores(std::shared_ptr<TraceState> state, std::shared_ptr<MountedStores> stores)
      : state_(std::move(state)), stores_(std::move(stores)) {}

  Ref<RDOStore> DefaultStore() override {
    if (stores_->empty()) return nullptr;
    return stores_->back();
  }

  Ref<RDOStore> AddPSTStore(text::TextView, text::TextView displayName) override {
    stores_->push_back(TraceStore::Create(state_, displayName));
    return stores_->back();
  }

  Ref<RDOStore> OpenPSTStore(text::TextView) override {
    throw OutputFailure(ResultCode::STG_E_READFAULT, "a trace has no stores to open");
  }

 private:
  std::shared_ptr<TraceState> state_;
  std::shared_ptr<MountedStores> stores_;
};

class TraceSession : public RDOSession {
 public:
  explicit TraceSession(std::shared_ptr<TraceState> state) : state_(std::move(state)) {}

  void Logon(text::TextView profileName) override { state_->currentProfile = profileName; }
  Ref<RDOStores> Stores() override { return std::make_shared<TraceStores>(state_, stores_); }

  Ref<RDOFolder> GetDefaultFolder(DefaultFolder kind) override {
    if (stores_->empty()) return nullptr;
    return stores_->back()->DefaultOf(kind);
  }

  Ref<RDOFolder> GetFolderFromPath(text::TextView path) override {
    for (const auto& store : *stores_) {
      if (auto folder = store->FolderAt(path)) return folder;
    }
    return nullptr;
  }

 private:
  std::shared_ptr<TraceState> state_;
  std::shared_ptr<MountedStores> stores_ = std::make_shared<MountedStores>();
};

class TraceProfiles : public ProfileList {
 public:
  explicit TraceProfiles(std::shared_ptr<TraceState> state) : state_(std::move(state)) {}
  bool Item(text::TextView name) override { return state_->profiles.contains(text::Text(name)); }
  text::Text Add(text::TextView name) override { return *state_->profiles.emplace(name).first; }

 private:
  std::shared_ptr<TraceState> state_;
};

class TraceUtils : public MAPIUtils {
 public:
  explicit TraceUtils(std::shared_ptr<TraceState> state) : state_(std::move(state)) {}
  text::Text CurrentProfileName() override { return state_->currentProfile; }

 private:
  std::shared_ptr<TraceState> state_;
};

}  // namespace

TraceLibrary::TraceLibrary(TraceSink& sink) : state_(std::make_shared<TraceState>()) { state_->sink = &sink; }

Ref<ProfileList> TraceLibrary::CreateProfileList() { return std::make_shared<TraceProfiles>(state_); }
Ref<RDOSession> TraceLibrary::CreateRDOSession() { return std::make_shared<TraceSession>(state_); }
Ref<MAPIUtils> TraceLibrary::CreateMAPIUtils() { return std::make_shared<TraceUtils>(state_); }

}  // namespace velmora::output
