#include "recovery/message_item.h"

#include <algorithm>

#include "recovery/catching_frame.h"
#include "recovery/folder_path.h"
#include "recovery/lost_items.h"
#include "recovery/message_classes.h"

namespace velmora::recovery {

using output::Field;
using output::RDOFolder;
using output::RDOMail;
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

Ref<RDOMail> AddItem(RecoveryState& state, const Ref<RDOFolder>& folder, text::TextView messageClass) {
  auto item = folder->Items()->Add(messageClass);
  if (!item) return item;
  auto& created = state.report.items;
  const auto known = created.find(text::Text(messageClass));
  ++(known == created.end() ? created[ReportText(state, messageClass)] : known->second);
  return item;
}

void TakeMail(MessageItems& made, const Ref<RDOMail>& mail) {
  made.Item(ItemKind::kMail) = mail;
  mail->Put(Field::Sent, true);
  made.createdMail = mail;
  made.kindSet[static_cast<std::size_t>(ItemKind::kMail)] = true;
}

struct KindLabel {
  ItemKind kind;
  text::TextView label;
};
constexpr KindLabel kLabels[] = {
    {ItemKind::kContact, u"Contact Subject: "}, {ItemKind::kTask, u"Task Item: "},
    {ItemKind::kAppointment, u"Appointment: "}, {ItemKind::kMeeting, u"Meeting: "},
    {ItemKind::kJournal, u"Journals: "},        {ItemKind::kNote, u"Notes: "},
};

}  // namespace

std::optional<ItemKind> MessageItems::Kind() const {
  const auto place = std::ranges::find(kindSet, true) - kindSet.begin();
  return place == kItemKinds ? std::nullopt : std::optional(static_cast<ItemKind>(place));
}

std::optional<Placement> PlaceMessage(const RecoveryRun& run, text::TextView messageClass, std::uint32_t folderNid,
                                      OpenedFolder& last) {
  RecoveryState& state = run.state;
  const auto special = SpecialPlacementOf(messageClass);
  if (special || !last.placement || last.nid != folderNid) {
    const text::Text path = BuildFolderPath(state.folders, state.topFolderNid, folderNid);
    const SplitPath split = SplitAtLeaf(path);

    Ref<RDOFolder> parent;
    if (special) parent = state.session->GetFolderFromPath(TargetPath(state.convertedName, split.parentPath));
    if (!parent && path == kLostFolderName) return std::nullopt;
    if (parent) {
      const auto folder = PlaceSpecial(state, parent, split.leaf, messageClass, *special);
      run.context.Say(engine::FolderReached{folderNid, {}});
      return Placement{folder, text::Text(split.leaf)};
    }
    last = {folderNid, Placement{OpenFolder(state, path), text::Text(split.leaf)}};
  }
  run.context.Say(engine::FolderReached{folderNid, {}});
  return last.placement;
}

bool CreateItemForClass(RecoveryState& state, const Ref<RDOFolder>& folder, text::TextView messageClass,
                        MessageItems& made) {
  const ItemClass itemClass = Classify(messageClass);
  if (itemClass.verdict == ClassVerdict::kRefused) made.classRefused = true;
  if (itemClass.verdict == ClassVerdict::kNoClass || itemClass.verdict == ClassVerdict::kRefused) return false;

  const auto item = AddItem(state, folder, messageClass);
  if (itemClass.kind == ItemKind::kMail) {
    if (item) TakeMail(made, item);
    if (!item && itemClass.verdict == ClassVerdict::kDamaged) made.classRefused = true;
    return true;
  }
  // A refused interface is no failure: the item stays without a kind, and unsaved.
  made.Item(itemClass.kind) = Query(item, InterfaceOf(itemClass.kind));
  made.kindSet[static_cast<std::size_t>(itemClass.kind)] = static_cast<bool>(made.Item(itemClass.kind));
  return true;
}

void CreateFallbackMail(RecoveryState& state, const Ref<RDOFolder>& folder, MessageItems& made) {
  made.kindSet[static_cast<std::size_t>(ItemKind::kMail)] = true;
  const auto mail = AddItem(state, folder, kMailMessageClass);
  if (!mail) throw output::OutputFailure(output::ResultCode::E_POINTER);
  TakeMail(made, mail);
}

std::optional<bool> FinishItem(const RecoveryRun& run, const MessageItems& made) {
  const auto row = std::ranges::find_if(kLabels, [&](const KindLabel& label) { return made.IsKind(label.kind); });
  if (row == std::end(kLabels)) return std::nullopt;
  bool saved = false;
  WithinFrame([&] {
    const auto& item = made.Item(row->kind);
    if (row->kind == ItemKind::kContact && item->Get(Field::Subject).AsText().empty()) {
      item->Put(Field::Subject, item->Get(Field::FullName).value);
    }
    item->Save();
    saved = true;
    if (run.context.log == nullptr) return;
    run.context.Log(u"\r\n\r\n");
    run.context.Log(row->label);
    run.context.Log(item->Get(Field::Subject).AsText());
  });
  return saved;
}

}  // namespace velmora::recovery
