#include "resources/menus.h"

namespace velmora::resources {
namespace {

constexpr MenuEntry kFileMenu[] = {{u"&Repair PST File", kRepairCommand}, {u"Exit", kExitCommand}};
constexpr MenuEntry kToolbarsMenu[] = {{u"&Toolbar", kToolbarCommand}};
constexpr MenuEntry kViewMenu[] = {{u"&Toolbars", 0, 0, kToolbarsMenu}};
constexpr MenuEntry kHelpMenu[] = {
    {u"Content", kHelpCommand},
    {u"Updates", kUpdatesCommand},
    {u"How to repair outlook data file (.pst) ?", kHowToRepairCommand},
    {u"How to import recovered outlook data file (.pst) ?", kHowToImportCommand},
    {u"About Us", kAboutCommand},
};
constexpr MenuEntry kFrameMenu[] = {
    {u"&File", 0, 0, kFileMenu}, {u"&View", 0, 0, kViewMenu}, {u"&Help", 0, 0, kHelpMenu}};

constexpr MenuEntry kPageMenu[] = {{u"&Help", kPageHelpCommand, 32832}, {u"&About", kPageAboutCommand, 32833}};

constexpr std::uint16_t kToolbar[] = {kRepairCommand, kUpdatesCommand, 0, kHelpCommand};

constexpr std::uint16_t kIconStrip[] = {kRepairCommand, kConvertCommand,     kCountFolderCommand,
                                        kHelpCommand,   kUpdatesCommand,     kAboutCommand,
                                        kExitCommand,   kHowToRepairCommand, kHowToImportCommand};

constexpr Accelerator kAccelerators[] = {
    {"Alt+F4", kExitCommand},   {"Alt+R", kRepairCommand},          {"F1", kHelpCommand},
    {"Alt+B", kAboutCommand},   {"Ctrl+C", kCopyCommand},           {"Ctrl+Ins", kCopyCommand},
    {"Ctrl+V", kPasteCommand},  {"Shift+Ins", kPasteCommand},       {"Ctrl+X", kCutCommand},
    {"Shift+Del", kCutCommand}, {"Ctrl+Z", kUndoCommand},           {"Alt+Backspace", kUndoCommand},
    {"F6", kNextPaneCommand},   {"Shift+F6", kPreviousPaneCommand},
};

}  // namespace

std::span<const MenuEntry> FrameMenu() { return kFrameMenu; }
std::span<const MenuEntry> PageMenu() { return kPageMenu; }
std::span<const std::uint16_t> FrameToolbar() { return kToolbar; }
std::span<const std::uint16_t> IconStrip() { return kIconStrip; }
std::span<const Accelerator> FrameAccelerators() { return kAccelerators; }

}  // namespace velmora::resources
