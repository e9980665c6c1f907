// Commands, menus, toolbar and keys of the frame, and the menu of the pages.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace velmora::resources {

enum CommandId : std::uint16_t {
  kExitCommand = 32772,
  kUpdatesCommand = 32776,
  kHowToRepairCommand = 32777,
  kHowToImportCommand = 32778,
  kRepairCommand = 32780,
  kHelpCommand = 32781,
  kConvertCommand = 32782,
  kCountFolderCommand = 32817,
  kPageHelpCommand = 32829,
  kPageAboutCommand = 32831,
  kCustomizeCommand = 35001,
  kUndoCommand = 57643,
  kCutCommand = 57635,
  kCopyCommand = 57634,
  kPasteCommand = 57637,
  kAboutCommand = 57664,
  kNextPaneCommand = 57680,
  kPreviousPaneCommand = 57681,
  kToolbarCommand = 59392,
};

struct MenuEntry {
  std::u16string_view text = {};
  std::uint16_t id = 0;       ///< 0 for a submenu
  std::uint16_t picture = 0;  ///< number of a bitmap; 0: none
  std::span<const MenuEntry> submenu = {};
};

/// Menu 128: the menu bar of the frame, one entry with a submenu for each menu.
std::span<const MenuEntry> FrameMenu();

/// The first popup of menu 32825, which the pages' menu button opens.
std::span<const MenuEntry> PageMenu();

/// Toolbar 128, 0 for a separator.
std::span<const std::uint16_t> FrameToolbar();

/// The commands that have an icon of 16 by 16, in the order of the strip 204.
std::span<const std::uint16_t> IconStrip();

struct Accelerator {
  std::string_view keys;  ///< as "Alt+F4"
  std::uint16_t id;
};

/// Accelerator table 128.
std::span<const Accelerator> FrameAccelerators();

}  // namespace velmora::resources
