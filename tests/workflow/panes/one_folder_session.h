// Sessions that have one folder, whatever path is asked for, and items of which most does not matter.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "store/operations.h"

namespace velmora::workflow {

/// An item that holds nothing and answers to everything.
class StubItem : public output::RDOMail {
 public:
  void Save() override {}
  void Put(output::Field, const output::FieldValue&) override {}
  bool Answers(output::ItemInterface) const override { return true; }
  output::Ref<output::RDOAttachments> Attachments() override { return nullptr; }
  void Delete() override {}
  output::Ref<RDOMail> Reply() override { return nullptr; }
  output::Ref<RDOMail> Forward() override { return nullptr; }
  void AddPicture(const output::ContentSource&) override {}
  text::Text MessageClass() const override { return u"IPM.Note"; }
  std::int32_t Size() const override { return 0; }
  std::int32_t AttachmentCount() const override { return 0; }
};

/// A session that is its own only folder.
class FolderSession : public output::RDOSession,
                      public output::RDOFolder,
                      public std::enable_shared_from_this<FolderSession> {
 public:
  void Logon(text::TextView) override {}
  output::Ref<output::RDOStores> Stores() override { return nullptr; }
  output::Ref<output::RDOFolder> GetDefaultFolder(output::DefaultFolder) override { return nullptr; }
  output::Ref<output::RDOFolder> GetFolderFromPath(text::TextView) override { return shared_from_this(); }
  output::Ref<output::RDOFolders> Folders() override { return nullptr; }
  output::Ref<output::RDOFolder2> QueryFolder2() override { return nullptr; }
  text::Text Name() const override { return {}; }
  text::Text ContainerClass() const override { return {}; }
};

/// A session that is its own only folder, and the items of it.
class ItemsSession : public FolderSession, public output::RDOItems {
 public:
  output::Ref<output::RDOItems> Items() override { return std::static_pointer_cast<ItemsSession>(shared_from_this()); }
  output::Ref<output::RDOMail> Add(text::TextView) override { return nullptr; }
};

/// The items of a folder. The hook is called ahead of each step to the next one, by whoever takes it.
class HookedItems : public output::RDOItems {
 public:
  HookedItems(output::Ref<output::RDOItems> items, std::function<void()> onNext)
      : items_(std::move(items)), onNext_(std::move(onNext)) {}
  std::int32_t Count() const override { return items_->Count(); }
  output::Ref<output::RDOMail> Add(text::TextView) override { return nullptr; }
  output::Ref<output::RDOMail> GetFirst() override { return items_->GetFirst(); }
  output::Ref<output::RDOMail> GetNext() override {
    onNext_();
    return items_->GetNext();
  }

 private:
  output::Ref<output::RDOItems> items_;
  std::function<void()> onNext_;
};

/// Tells when its folder is read.
class OneFolderSession : public FolderSession {
 public:
  struct Hooks {
    std::function<void()> onOpen = [] {};  ///< of the folder
    std::function<void()> onNext = [] {};
  };

  OneFolderSession(output::Ref<output::RDOFolder> folder, Hooks hooks)
      : folder_(std::move(folder)), hooks_(std::move(hooks)) {}
  output::Ref<output::RDOFolder> GetFolderFromPath(text::TextView path) override {
    hooks_.onOpen();
    return FolderSession::GetFolderFromPath(path);
  }
  output::Ref<output::RDOItems> Items() override {
    return std::make_shared<HookedItems>(folder_->Items(), hooks_.onNext);
  }

 private:
  output::Ref<output::RDOFolder> folder_;
  Hooks hooks_;
};

}  // namespace velmora::workflow
