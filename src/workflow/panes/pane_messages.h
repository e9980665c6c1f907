// What the panes tell each other, and what the frame tells them. Those of a run are in run_message.h.
#pragma once

#include <functional>

#include "workflow/panes/run_message.h"

namespace velmora::workflow {

enum PaneMessage : std::uint32_t {
  kSwapPaneMessage = 32786,        ///< number: 0 the grid, 1 the list
  kRenewSelectionMessage = 32818,  ///< selects the current folder anew, without listing it
  kWriteSummaryMessage = 32819,    ///< during a run, while its session is open
  kListFolderMessage = 32834,      ///< text: path of the folder
  kFillContactsMessage = 32836,    ///< this and the other fills: text is the path of the folder
  kClearGridMessage = 32837,
  kFillTasksMessage = 32838,
  kFillCalendarMessage = 32839,
  kFillNotesMessage = 32840,
  kFillJournalMessage = 32841,
  kShowBodyMessage = 32848,  ///< number: 38 for a row up, 40 for a row down, 0 for the row itself; text: folder path
};

/// Brings a message to the pane that it is meant for. Called in the thread of the windows.
using SendToPane = std::function<void(const RunMessage&)>;

}  // namespace velmora::workflow
