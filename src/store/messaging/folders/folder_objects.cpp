#include "store/messaging/folders/folder_objects.h"

#include "store/messaging/mail_item.h"
#include "store/messaging/store_writer.h"
#include "store/messaging/values/stored_text.h"

namespace velmora::messaging {
namespace {

using output::DefaultFolder;
using output::OutputFailure;
using output::Ref;
using output::ResultCode;

class ItemsObject : public output::RDOItems {
 public:
  ItemsObject(std::shared_ptr<Store> store, Folder& folder) : store_(std::move(store)), folder_(folder) {}

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
  std::shared_ptr<Store> store_;
  Folder& folder_;
  Nid last_{};
};

class FoldersObject : public output::RDOFolders {
 public:
  FoldersObject(std::shared_ptr<Store> store, Folder& folder) : store_(std::move(store)), folder_(folder) {}

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
      throw OutputFailure(ResultCode::E_INVALIDARG, "There is no folder of that number.");
    return RefOf(store_, folder_.children[static_cast<std::size_t>(index)]);
  }

 private:
  std::shared_ptr<Store> store_;
  Folder& folder_;
};

class Folder2Object : public output::RDOFolder2 {
 public:
  Folder2Object(std::shared_ptr<Store> store, Folder& folder) : store_(std::move(store)), folder_(folder) {}

  void SetAsDefaultFolder(DefaultFolder kind) override {
    StoreWriter& writer = store_->Writer();
    writer.SetContainerClass(folder_, ContainerClassOf(kind));
    writer.SetDefaultFolder(kind, folder_);
  }
  void PutDefaultFolderFlag(std::int32_t) override {}

 private:
  std::shared_ptr<Store> store_;
  Folder& folder_;
};

class FolderObject : public output::RDOFolder {
 public:
  FolderObject(std::shared_ptr<Store> store, Folder& folder) : store_(std::move(store)), folder_(folder) {}

  Ref<output::RDOItems> Items() override { return std::make_shared<ItemsObject>(store_, folder_); }
  Ref<output::RDOFolders> Folders() override { return std::make_shared<FoldersObject>(store_, folder_); }
  Ref<output::RDOFolder2> QueryFolder2() override { return std::make_shared<Folder2Object>(store_, folder_); }
  text::Text Name() const override { return folder_.name; }
  text::Text ContainerClass() const override { return folder_.containerClass; }

 private:
  std::shared_ptr<Store> store_;
  Folder& folder_;
};

}  // namespace

Ref<output::RDOFolder> RefOf(const std::shared_ptr<Store>& store, Folder* folder) {
  if (folder == nullptr) return nullptr;
  return std::make_shared<FolderObject>(store, *folder);
}

}  // namespace velmora::messaging
