#include "output/trace/trace_library.h"

#include "output/trace/trace_folder.h"

namespace velmora::output {

namespace {

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
