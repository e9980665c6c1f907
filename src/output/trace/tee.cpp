#include "output/trace/tee.h"

#include "output/trace/tee_items.h"

namespace velmora::output {
namespace {

class TeeFolder2 : public RDOFolder2 {
 public:
  explicit TeeFolder2(std::vector<Ref<RDOFolder2>> targets) : targets_(std::move(targets)) {}
  void SetAsDefaultFolder(DefaultFolder kind) override {
    targets_.Each([&](RDOFolder2& folder) { folder.SetAsDefaultFolder(kind); });
  }
  void PutDefaultFolderFlag(std::int32_t flag) override {
    targets_.Each([&](RDOFolder2& folder) { folder.PutDefaultFolderFlag(flag); });
  }

 private:
  TeeTargets<RDOFolder2> targets_;
};

class TeeFolder : public RDOFolder {
 public:
  explicit TeeFolder(std::vector<Ref<RDOFolder>> targets) : targets_(std::move(targets)) {}
  Ref<RDOItems> Items() override {
    return targets_.Make<TeeItems>([](RDOFolder& folder) { return folder.Items(); });
  }
  Ref<RDOFolders> Folders() override;
  Ref<RDOFolder2> QueryFolder2() override {
    return targets_.Make<TeeFolder2>([](RDOFolder& folder) { return folder.QueryFolder2(); });
  }
  text::Text Name() const override { return targets_.Primary().Name(); }
  text::Text ContainerClass() const override { return targets_.Primary().ContainerClass(); }

 private:
  TeeTargets<RDOFolder> targets_;
};

class TeeFolders : public RDOFolders {
 public:
  explicit TeeFolders(std::vector<Ref<RDOFolders>> targets) : targets_(std::move(targets)) {}
  Ref<RDOFolder> Add(text::TextView name, const FolderType& type) override {
    return targets_.Make<TeeFolder>([&](RDOFolders& folders) { return folders.Add(name, type); });
  }
  Ref<RDOFolder> Item(text::TextView name) override {
    return targets_.Make<TeeFolder>([&](RDOFolders& folders) { return folders.Item(name); });
  }
  std::int32_t Count() const override { return targets_.Primary().Count(); }
  Ref<RDOFolder> At(std::int32_t index) override { return Item(targets_.Primary().At(index)->Name()); }

 private:
  TeeTargets<RDOFolders> targets_;
};

Ref<RDOFolders> TeeFolder::Folders() {
  return targets_.Make<TeeFolders>([](RDOFolder& folder) { return folder.Folders(); });
}

class TeeStore : public RDOStore {
 public:
  explicit TeeStore(std::vector<Ref<RDOStore>> targets) : targets_(std::move(targets)) {}
  Ref<RDOFolder> IPMRootFolder() override {
    return targets_.Make<TeeFolder>([](RDOStore& store) { return store.IPMRootFolder(); });
  }

 private:
  TeeTargets<RDOStore> targets_;
};

class TeeStores : public RDOStores {
 public:
  explicit TeeStores(std::vector<Ref<RDOStores>> targets) : targets_(std::move(targets)) {}
  Ref<RDOStore> DefaultStore() override {
    return targets_.Make<TeeStore>([](RDOStores& stores) { return stores.DefaultStore(); });
  }
  Ref<RDOStore> AddPSTStore(text::TextView path, text::TextView displayName) override {
    return targets_.Make<TeeStore>([&](RDOStores& stores) { return stores.AddPSTStore(path, displayName); });
  }
  Ref<RDOStore> OpenPSTStore(text::TextView path) override { return targets_.Primary().OpenPSTStore(path); }

 private:
  TeeTargets<RDOStores> targets_;
};

class TeeSession : public RDOSession {
 public:
  explicit TeeSession(std::vector<Ref<RDOSession>> targets) : targets_(std::move(targets)) {}
  void Logon(text::TextView profileName) override {
    targets_.Each([&](RDOSession& session) { session.Logon(profileName); });
  }
  Ref<RDOStores> Stores() override {
    return targets_.Make<TeeStores>([](RDOSession& session) { return session.Stores(); });
  }
  Ref<RDOFolder> GetDefaultFolder(DefaultFolder kind) override {
    return targets_.Make<TeeFolder>([&](RDOSession& session) { return session.GetDefaultFolder(kind); });
  }
  Ref<RDOFolder> GetFolderFromPath(text::TextView path) override {
    return targets_.Make<TeeFolder>([&](RDOSession& session) { return session.GetFolderFromPath(path); });
  }

 private:
  TeeTargets<RDOSession> targets_;
};

}  // namespace

// Profiles and the profile in use are matters of the machine, not of a store: the first library has them.
Ref<ProfileList> Tee::CreateProfileList() { return libraries_.front()->CreateProfileList(); }
Ref<MAPIUtils> Tee::CreateMAPIUtils() { return libraries_.front()->CreateMAPIUtils(); }

Ref<RDOSession> Tee::CreateRDOSession() {
  std::vector<Ref<RDOSession>> sessions;
  for (const auto& library : libraries_) {
    Ref<RDOSession> session = library->CreateRDOSession();
    if (session) {
      sessions.push_back(std::move(session));
    } else if (sessions.empty()) {
      return nullptr;
    }
  }
  return std::make_shared<TeeSession>(std::move(sessions));
}

}  // namespace velmora::output
