// Folders of the trace. They are kept for the whole run, each with the number of its saved items.
#pragma once

#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

#include "output/trace/trace_item.h"
#include "store/operations.h"

namespace velmora::output {

class TraceStore;

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

}  // namespace velmora::output
