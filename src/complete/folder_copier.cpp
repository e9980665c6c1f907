#include "complete/folder_copier.h"

#include <algorithm>
#include <functional>
#include <unordered_map>
#include <vector>

#include "complete/copy_source.h"
#include "store/format/property_tags.h"
#include "store/ltp/multi_value.h"

namespace velmora::complete {
namespace {

using messaging::Folder;
using messaging::PropertyBag;

constexpr text::TextView kLostAndFoundName = u"Lost & Found";
constexpr text::TextView kRecoveredName = u"Recovered Deleted Items";
constexpr text::TextView kNameOfNone = u"Folder without a name";

constexpr std::size_t kLongestPath = 8192;

/// The four nodes of a folder share an index.
constexpr NidType kTypesOfFolder[] = {NidType::kNormalFolder, NidType::kHierarchyTable, NidType::kContentsTable,
                                      NidType::kAssocContentsTable};

}  // namespace

text::Text PathOf(const Folder& folder) {
  text::Text path;
  const auto isTop = [](const Folder* at) { return at->parent == nullptr || at->parent->parent == nullptr; };
  for (const Folder* at = &folder; !isTop(at) && path.size() < kLongestPath; at = at->parent) {
    path.insert(0, u"/" + at->name);
  }
  return path.empty() ? u"/" : path;
}

void FolderCopier::CopyAll() {
  SourceFolder* const top = plan_.Top();
  if (top == nullptr) return;
  top->target = &tools_.target.Top();
  ++tools_.account.folders;
  const std::vector<SourceFolder*> folders = ParentsFirst();
  GiveIds(folders);
  for (SourceFolder* folder : folders) {
    if (plan_.ParentOf(*folder)->target != nullptr) Copy(*folder);
  }
  for (const auto& [kind, nid] : plan_.Defaults().All()) {
    const SourceFolder* folder = plan_.Find(nid);
    if (folder != nullptr && folder->target != nullptr && folder != top) {
      tools_.target.SetDefaultFolder(kind, *folder->target);
    }
  }
}

/// What is copied, but for the top.
std::vector<SourceFolder*> FolderCopier::ParentsFirst() {
  std::unordered_map<const SourceFolder*, std::vector<SourceFolder*>> below;
  for (auto& [nid, folder] : plan_.Folders()) {
    if (folder.isCopied && &folder != plan_.Top()) below[plan_.ParentOf(folder)].push_back(&folder);
  }
  // Siblings by ascending id in the new store, where new ids follow all others, so that a copy of the copy is the same.
  const auto placeOf = [this](const SourceFolder* folder) {
    if (folder == plan_.DeletedItems()) return std::pair(false, OwnDeletedItems().nid);
    return std::pair(!IsFree(folder->nid), folder->nid);
  };
  std::vector<SourceFolder*> folders;
  std::vector<SourceFolder*> next;
  const auto addBelow = [&](const SourceFolder& folder) {
    std::vector<SourceFolder*>& children = below[&folder];
    std::ranges::sort(children, std::greater(), placeOf);
    next.insert(next.end(), children.begin(), children.end());
  };
  for (addBelow(*plan_.Top()); !next.empty();) {
    folders.push_back(next.back());
    next.pop_back();
    addBelow(*folders.back());
  }
  return folders;
}

/// Ahead of all contents, as a property of any folder may refer to any other.
void FolderCopier::GiveIds(const std::vector<SourceFolder*>& folders) {
  auto& newIds = tools_.account.newIds;
  newIds.emplace(plan_.Top()->nid, plan_.Top()->target->nid);
  std::vector<Nid> anew;
  for (const SourceFolder* folder : folders) {
    if (folder == plan_.DeletedItems()) {
      newIds.emplace(folder->nid, OwnDeletedItems().nid);
    } else if (IsFree(folder->nid)) {
      tools_.target.Ndb().NoteNid(folder->nid);
    } else {
      anew.push_back(folder->nid);
    }
  }
  for (const Nid nid : anew) newIds.emplace(nid, tools_.target.Ndb().NewNid(NidType::kNormalFolder));
}

Folder& FolderCopier::AddOwn(text::TextView name) {
  PropertyBag properties;
  properties.PutName(tag::kDisplayName, name);
  properties.PutName(tag::kContainerClass, kMailContainerClass);
  GiveFreeName(tools_.target.Top(), nullptr, properties);
  return tools_.target.AddFolder(tools_.target.Top(), std::move(properties));
}

Folder& FolderCopier::LostAndFound() {
  if (lostAndFound_ == nullptr) lostAndFound_ = &AddOwn(kLostAndFoundName);
  return *lostAndFound_;
}

Folder& FolderCopier::RecoveredFrom(const SourceFolder* folder) {
  if (recovered_ == nullptr) recovered_ = &AddOwn(kRecoveredName);
  std::vector<const SourceFolder*> path;
  for (const SourceFolder* at = folder; at != nullptr && at != plan_.Top(); at = plan_.ParentOf(*at)) {
    if (!at->isCopied) break;
    path.push_back(at);
  }
  Folder* target = recovered_;
  for (; !path.empty(); path.pop_back()) {
    const text::Text& name = path.back()->target != nullptr ? path.back()->target->name : path.back()->name;
    Folder* const below = ChildOf(*target, name);
    if (below != nullptr) {
      target = below;
      continue;
    }
    PropertyBag properties;
    properties.PutBytes(tag::kDisplayName, ltp::EncodeText(name.empty() ? text::Text(kNameOfNone) : name));
    target = &tools_.target.AddFolder(*target, std::move(properties));
  }
  return *target;
}

PropertyBag FolderCopier::PropertiesOf(const SourceFolder& folder, Missing& missing) {
  ndb::Faults faults(folder.nid);
  PropertyBag properties;
  if (folder.trees == ndb::NodeTrees()) {
    properties.PutName(tag::kDisplayName, folder.name);
    if (!folder.classOfRow.empty()) properties.PutName(tag::kContainerClass, folder.classOfRow);
    missing.push_back({.kind = MissingPart::Kind::kProperty,
                       .cause = {FailureKind::kNotFound,
                                 {ObjectKind::kNode, folder.nid},
                                 {},
                                 "only its row in the table of its parent is left"}});
    return properties;
  }
  try {
    auto context = ltp::PropertyContext::Open(tools_.source, folder.trees, &faults);
    for (const Failure& fault : faults.List()) {
      missing.push_back({.kind = MissingPart::Kind::kProperty, .cause = fault});
    }
    properties = properties_.Copy(context, kFolder, tools_.pages.OfStore(), faults, {}, missing);
  } catch (const std::exception&) {
    missing.push_back({.kind = MissingPart::Kind::kObject, .cause = CauseOfLoss()});
  }
  const text::Text name = ltp::DecodeText(properties.Value(tag::kDisplayName));
  if (name.empty()) properties.PutName(tag::kDisplayName, kNameOfNone);
  if (!tools_.allowance.TakeKept(name.size())) {
    properties.PutName(tag::kDisplayName, name);
    missing.push_back({.kind = MissingPart::Kind::kProperty,
                       .tag = tag::kDisplayName,
                       .cause = {FailureKind::kNotSupported,
                                 {ObjectKind::kProperty, tag::kDisplayName},
                                 name.size(),
                                 "the store claims more than it can hold"}});
  }
  return properties;
}

/// Of siblings of one name the second gets " (2)".
void FolderCopier::GiveFreeName(const Folder& parent, const Folder* self, PropertyBag& properties) {
  const text::Text name = ltp::DecodeText(properties.Value(tag::kDisplayName));
  const auto isTaken = [&](text::TextView candidate) {
    const Folder* child = ChildOf(parent, candidate);
    return child != nullptr && child != self;
  };
  if (!isTaken(name)) return;
  std::uint32_t& number = numbers_.try_emplace({&parent, text::CaseFolded(name)}, 1).first->second;
  text::Text candidate;
  do {
    candidate = name + u" (" + text::Decimal(++number) + u")";
  } while (isTaken(candidate));
  properties.PutBytes(tag::kDisplayName, ltp::EncodeText(candidate));
}

Folder& FolderCopier::OwnDeletedItems() const {
  return *tools_.target.OfNid(tools_.target.Defaults().Of(DefaultFolder::kDeletedItems));
}

bool FolderCopier::IsFree(Nid nid) const {
  if (!KeepsId(nid)) return false;
  for (const NidType type : kTypesOfFolder) {
    if (tools_.target.Source().FindNode(Sibling(nid, type))) return false;
  }
  return tools_.target.OfNid(nid) == nullptr;
}

void FolderCopier::Copy(SourceFolder& folder) {
  Missing missing;
  static_cast<void>(tools_.source.TakeHurt());
  PropertyBag properties = PropertiesOf(folder, missing);
  Folder& parent = *plan_.ParentOf(folder)->target;
  tools_.allowance.BeginNode();
  try {
    if (&folder == plan_.DeletedItems()) {
      folder.target = &OwnDeletedItems();
      GiveFreeName(parent, folder.target, properties);
      tools_.target.SetProperties(*folder.target, std::move(properties));
    } else {
      GiveFreeName(parent, nullptr, properties);
      folder.target = &tools_.target.AddFolder(parent, std::move(properties), tools_.account.NewIdOf(folder.nid));
    }
    ++tools_.account.folders;
  } catch (const std::exception&) {
    missing.push_back({.kind = MissingPart::Kind::kObject, .cause = CauseOfLoss()});
  }
  AddHurt(tools_.source, {.kind = MissingPart::Kind::kBytes}, missing);
  if (missing.empty()) return;
  Loss loss{.source = folder.nid,
            .folder = PathOf(folder.target != nullptr ? *folder.target : parent),
            .subject = folder.name};
  if (folder.target != nullptr) loss.target = folder.target->nid;
  loss.missing = std::move(missing);
  tools_.account.AddLoss(std::move(loss));
}

}  // namespace velmora::complete
