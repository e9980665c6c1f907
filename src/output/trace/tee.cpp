#include "output/trace/tee.h"

#include <type_traits>
#include <utility>
#include <vector>

namespace velmora::output {
namespace {

/// One object stands for the same object of every library; a library that has none is left out, but the first is always
/// there.
template <class T>
class TeeOf : public T {
 public:
  explicit TeeOf(std::vector<Ref<T>> targets) : targets_(std::move(targets)) {}

  T& Primary() const { return *targets_.front(); }
  const std::vector<Ref<T>>& All() const { return targets_; }

  /// Calls `operation` on each target, the first one first.
  template <class Operation>
  void Each(Operation&& operation) const {
    operation(Primary());
    for (std::size_t i = 1; i < targets_.size(); ++i) {
      try {
        operation(*targets_[i]);
      } catch (const OutputFailure&) {  // the first library's word stands
      }
    }
  }

  /// As Each, and wraps the objects that the operation gives in a Wrapper; null where the first gives null.
  template <class Wrapper, class Operation>
  auto Make(Operation&& operation) const {
    using Result = std::invoke_result_t<Operation, T&>;
    std::vector<Result> made;
    Each([&](T& target) {
      if (made.empty()) {
        made.push_back(operation(target));
      } else if (made.front()) {
        if (Result another = operation(target)) made.push_back(std::move(another));
      }
    });
    return made.front() ? Result(std::make_shared<Wrapper>(std::move(made))) : Result();
  }

 private:
  std::vector<Ref<T>> targets_;
};

class TeeMail : public TeeOf<RDOMail> {
 public:
  using TeeOf::TeeOf;

  void Save() override {
    Each([](RDOMail& item) { item.Save(); });
  }
  void Put(Field field, const FieldValue& value) override {
    Each([&](RDOMail& item) { item.Put(field, value); });
  }
  void PutBytes(Field field, std::string_view bytes) override {
    Each([&](RDOMail& item) { item.PutBytes(field, bytes); });
  }
  FieldRead Get(Field field) const override { return Primary().Get(field); }
  bool Answers(ItemInterface interface) const override { return Primary().Answers(interface); }
  Ref<RDOAttachments> Attachments() override;
  void Delete() override {
    Each([](RDOMail& item) { item.Delete(); });
  }
  Ref<RDOMail> Reply() override {
    return Make<TeeMail>([](RDOMail& item) { return item.Reply(); });
  }
  Ref<RDOMail> Forward() override {
    return Make<TeeMail>([](RDOMail& item) { return item.Forward(); });
  }
  void AddPicture(const ContentSource& content) override {
    Each([&](RDOMail& item) { item.AddPicture(content); });
  }
  text::Text MessageClass() const override { return Primary().MessageClass(); }
  std::int32_t Size() const override { return Primary().Size(); }
  std::int32_t AttachmentCount() const override { return Primary().AttachmentCount(); }
  AttachmentTotals SavedAttachments() const override { return Primary().SavedAttachments(); }
};

class TeeAttachments : public TeeOf<RDOAttachments> {
 public:
  using TeeOf::TeeOf;

  void Add(const ContentSource& content, text::TextView displayName) override {
    Each([&](RDOAttachments& attachments) { attachments.Add(content, displayName); });
  }

  /// The item's own object of each library is attached there.
  void Add(const Ref<RDOMail>& item, text::TextView displayName) override {
    const auto* embedded = dynamic_cast<const TeeMail*>(&*item);
    if (embedded == nullptr) throw OutputFailure(ResultCode::E_INVALIDARG);
    auto next = embedded->All().begin();
    Each([&](RDOAttachments& attachments) {
      if (next == embedded->All().end()) throw OutputFailure(ResultCode::E_POINTER);
      attachments.Add(*next++, displayName);
    });
  }

  std::int32_t Count() const override { return Primary().Count(); }
};

Ref<RDOAttachments> TeeMail::Attachments() {
  return Make<TeeAttachments>([](RDOMail& item) { return item.Attachments(); });
}

/// An item read back from the first library alone.
Ref<RDOMail> ReadBack(Ref<RDOMail> item) {
  if (!item) return nullptr;
  return std::make_shared<TeeMail>(std::vector<Ref<RDOMail>>{std::move(item)});
}

class TeeItems : public TeeOf<RDOItems> {
 public:
  using TeeOf::TeeOf;
  std::int32_t Count() const override { return Primary().Count(); }
  Ref<RDOMail> Add(text::TextView messageClass) override {
    return Make<TeeMail>([&](RDOItems& items) { return items.Add(messageClass); });
  }
  Ref<RDOMail> GetFirst() override { return ReadBack(Primary().GetFirst()); }
  Ref<RDOMail> GetNext() override { return ReadBack(Primary().GetNext()); }
};

class TeeFolder2 : public TeeOf<RDOFolder2> {
 public:
  using TeeOf::TeeOf;
  void SetAsDefaultFolder(DefaultFolder kind) override {
    Each([&](RDOFolder2& folder) { folder.SetAsDefaultFolder(kind); });
  }
  void PutDefaultFolderFlag(std::int32_t flag) override {
    Each([&](RDOFolder2& folder) { folder.PutDefaultFolderFlag(flag); });
  }
};

class TeeFolder : public TeeOf<RDOFolder> {
 public:
  using TeeOf::TeeOf;
  Ref<RDOItems> Items() override {
    return Make<TeeItems>([](RDOFolder& folder) { return folder.Items(); });
  }
  Ref<RDOFolders> Folders() override;
  Ref<RDOFolder2> QueryFolder2() override {
    return Make<TeeFolder2>([](RDOFolder& folder) { return folder.QueryFolder2(); });
  }
  text::Text Name() const override { return Primary().Name(); }
  text::Text ContainerClass() const override { return Primary().ContainerClass(); }
};

class TeeFolders : public TeeOf<RDOFolders> {
 public:
  using TeeOf::TeeOf;
  Ref<RDOFolder> Add(text::TextView name, const FolderType& type) override {
    return Make<TeeFolder>([&](RDOFolders& folders) { return folders.Add(name, type); });
  }
  Ref<RDOFolder> Item(text::TextView name) override {
    return Make<TeeFolder>([&](RDOFolders& folders) { return folders.Item(name); });
  }
  std::int32_t Count() const override { return Primary().Count(); }
  Ref<RDOFolder> At(std::int32_t index) override { return Item(Primary().At(index)->Name()); }
};

Ref<RDOFolders> TeeFolder::Folders() {
  return Make<TeeFolders>([](RDOFolder& folder) { return folder.Folders(); });
}

class TeeStore : public TeeOf<RDOStore> {
 public:
  using TeeOf::TeeOf;
  Ref<RDOFolder> IPMRootFolder() override {
    return Make<TeeFolder>([](RDOStore& store) { return store.IPMRootFolder(); });
  }
};

class TeeStores : public TeeOf<RDOStores> {
 public:
  using TeeOf::TeeOf;
  Ref<RDOStore> DefaultStore() override {
    return Make<TeeStore>([](RDOStores& stores) { return stores.DefaultStore(); });
  }
  Ref<RDOStore> AddPSTStore(text::TextView path, text::TextView displayName) override {
    return Make<TeeStore>([&](RDOStores& stores) { return stores.AddPSTStore(path, displayName); });
  }
  Ref<RDOStore> OpenPSTStore(text::TextView path) override { return Primary().OpenPSTStore(path); }
};

class TeeSession : public TeeOf<RDOSession> {
 public:
  using TeeOf::TeeOf;
  void Logon(text::TextView profileName) override {
    Each([&](RDOSession& session) { session.Logon(profileName); });
  }
  Ref<RDOStores> Stores() override {
    return Make<TeeStores>([](RDOSession& session) { return session.Stores(); });
  }
  Ref<RDOFolder> GetDefaultFolder(DefaultFolder kind) override {
    return Make<TeeFolder>([&](RDOSession& session) { return session.GetDefaultFolder(kind); });
  }
  Ref<RDOFolder> GetFolderFromPath(text::TextView path) override {
    return Make<TeeFolder>([&](RDOSession& session) { return session.GetFolderFromPath(path); });
  }
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
