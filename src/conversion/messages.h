// Texts of the boxes that a conversion shows: its own, and those of the scans.
#pragma once

#include "engine/messages.h"
#include "text/text.h"

namespace velmora::conversion {

inline constexpr text::TextView kComponentMissing = u"Some component is missing.Please reinstall the application.";

/// The same for a library that is there and fails; the blank at its end tells the two apart.
inline constexpr text::TextView kComponentFailed = u"Some component is missing.Please reinstall the application. ";

inline constexpr text::TextView kRegistering =
    u"Application is registering dll files.Please relaunch the application to recover your .pst file. ";

inline constexpr text::TextView kNoOutputFolder =
    u"Unable to create folder to save recovered .pst file.\n"
    u"Please select another location to save recovered .pst file.";

/// Followed by the path of the new store.
inline constexpr text::TextView kAborted = u"Recovery process aborted.\nRecovered at:";

/// The new store could not be made.
inline constexpr text::TextView kStoreNotMade =
    u"Unable to create converted .pst file.\nPlease select another location to save recovered .pst file.";

/// The new store could no longer be written; followed by its path.
inline constexpr text::TextView kStoreNotWritten = u"Unable to write converted .pst file.\nRecovered at:";
inline constexpr text::TextView kDiskFull =
    u"Not enough free disk space available to save converted .pst file.\nRecovered at:";

}  // namespace velmora::conversion
