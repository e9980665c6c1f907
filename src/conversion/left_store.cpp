#include "conversion/left_store.h"

namespace velmora::conversion {
namespace {

void AddItems(output::RDOSession& session, text::TextView path, LeftStore& left) {
  const auto folder = session.GetFolderFromPath(path);
  if (!folder) return;
  const auto items = folder->Items();
  for (auto item = items->GetFirst(); item; item = items->GetNext()) {
    ++left.items[item->MessageClass()];
    const output::AttachmentTotals attachments = item->SavedAttachments();
    left.attachments.files += attachments.files;
    left.attachments.messages += attachments.messages;
  }
}

}  // namespace

LeftStore ReadLeftStore(output::OutputLibrary& library, text::TextView path, text::TextView storeName,
                        text::TextView logPath) {
  LeftStore left;
  try {
    const auto session = library.CreateRDOSession();
    session->Stores()->OpenPSTStore(path);
    left.contents = CountStore(*session, storeName, logPath);
    for (const SummaryFolder& folder : left.contents.folders) AddItems(*session, folder.path, left);
  } catch (const output::OutputFailure&) {
    // What was counted so far is there.
  }
  return left;
}

}  // namespace velmora::conversion
