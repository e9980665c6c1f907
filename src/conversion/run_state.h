// The process-wide values of a conversion: what pages, worker and command line hand to each other. The
// frame owns one and gives it to COutLook and the pages, so two tests can run side by side.
#pragma once

#include <atomic>
#include <functional>

#include "engine/run.h"
#include "store/operations.h"
#include "text/code_page.h"
#include "text/text.h"

namespace velmora::conversion {

/// No lock guards the texts: they are written before a run, and by the worker during it.
struct RunState {
  /// `runEnded`, `runAborted`, `smartScan`, the observer, hold and stop.
  engine::RunContext run;

  text::Text sourcePath;      ///< full path of the source, in the form of platform::TextOfPath
  text::Text sourceFileName;  ///< its last component
  /// The folder that the user chose; the set-up replaces it by the full path of the new store.
  text::Text destinationPath;

  // Written by the set-up.
  text::Text profileName;
  text::Text logPath;
  text::Text convertedName;  ///< display name of the new store

  /// Of 8-bit names, subjects and plain text.
  text::CodePage codePage = text::CodePage::Lossless();

  std::atomic<bool> skipExitPrompt{false};  ///< the application closes without asking
  std::atomic<bool> treeFilling{false};     ///< the tree pane answers changes of its selection: a run is over

  /// The session by which the panes read the last result; a run releases it before it begins.
  output::Ref<output::RDOSession> previewSession;

  /// Closes the window titled "Velmora Convert OST to PST"; empty where there is none.
  std::function<void()> closeWindow;
};

/// The title of every window, and the name by which the program finds its own.
inline constexpr text::TextView kProductTitle = u"Velmora Convert OST to PST";

}  // namespace velmora::conversion
