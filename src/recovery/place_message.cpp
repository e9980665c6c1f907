#include "recovery/folder_path.h"
#include "recovery/item_steps.h"
#include "recovery/message_classes.h"

namespace velmora::recovery {

using output::RDOFolder;
using output::Ref;

namespace {

/// The folder at a whole path has to be there.
Ref<RDOFolder> OpenFolder(RecoveryState& state, text::TextView path) {
  auto folder = state.session->GetFolderFromPath(TargetPath(state.convertedName, path));
  if (!folder) throw output::OutputFailure(output::ResultCode::MAPI_E_NOT_FOUND);
  return folder;
}

/// Keeps an item of a special kind in a folder of its own type.
Ref<RDOFolder> PlaceSpecial(RecoveryState& state, Ref<RDOFolder> parent, text::TextView leaf,
                            text::TextView messageClass, const SpecialPlacement& placement) {
  if (auto folder = parent->Folders()->Item(leaf)) return folder;
  if (placement.defaultFolder) {
    parent = state.session->GetDefaultFolder(*placement.defaultFolder);
    if (auto folder = parent->Folders()->Item(leaf)) return folder;
  }
  if (leaf.empty()) return parent;  // directly under the top folder: there is no name to add
  const auto folders = parent->Folders();
  folders->Add(leaf, text::Text(messageClass));
  const auto added = folders->Item(leaf);
  return added ? added : parent;
}

}  // namespace

bool PlaceMessage(ItemRun& items, text::TextView messageClass, std::uint32_t folderNid) {
  RecoveryState& state = items.state;
  const text::Text path = BuildFolderPath(state.folders, state.topFolderNid, folderNid);
  const SplitPath split = SplitAtLeaf(path);

  Ref<RDOFolder> parent;
  const auto placement = SpecialPlacementOf(messageClass);
  if (placement) parent = state.session->GetFolderFromPath(TargetPath(state.convertedName, split.parentPath));
  if (parent) {
    state.targetFolder = PlaceSpecial(state, parent, split.leaf, messageClass, *placement);
  } else {
    if (path == kLostFolderName) return false;
    state.targetFolder = OpenFolder(state, path);
  }
  state.currentFolderName = split.leaf;
  items.run.Say(engine::FolderReached{folderNid, {}});
  return true;
}

}  // namespace velmora::recovery
