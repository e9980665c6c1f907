// A session that has one folder, whatever path is asked for, and tells when it is read.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "store/operations.h"

namespace velmora::workflow {

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

class OneFolderSession : public output::RDOSession,
                         public output::RDOFolder,
                         public std::enable_shared_from_this<OneFolderSession> {
 public:
  struct Hooks {
    std::function<void()> onOpen = [] {};  ///< of the folder
    std::function<void()> onNext = [] {};
  };

  OneFolderSession(output::Ref<output::RDOFolder> folder, Hooks hooks)
      : folder_(std::move(folder)), hooks_(std::move(hooks)) {}
  void Logon(text::TextView) override {}
  output::Ref<output::RDOStores> Stores() override { return nullptr; }
  output::Ref<output::RDOFolder> GetDefaultFolder(output::DefaultFolder) override { return nullptr; }
  output::Ref<output::RDOFolder> GetFolderFromPath(text::TextView) override {
    hooks_.onOpen();
    return shared_from_this();
  }
  output::Ref<output::RDOItems> Items() override {
    return std::make_shared<HookedItems>(folder_->Items(), hooks_.onNext);
  }
  output::Ref<output::RDOFolders> Folders() override { return nullptr; }
  output::Ref<output::RDOFolder2> QueryFolder2() override { return nullptr; }
  text::Text Name() const override { return {}; }
  text::Text ContainerClass() const override { return {}; }

 private:
  output::Ref<output::RDOFolder> folder_;
  Hooks hooks_;
};

}  // namespace velmora::workflow
