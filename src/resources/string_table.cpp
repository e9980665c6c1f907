#include "resources/string_table.h"

#include <algorithm>
#include <iterator>

namespace velmora::resources {
namespace {

struct NumberedText {
  std::uint32_t id;
  std::u16string_view text;
};

// In ascending order of the numbers.
constexpr NumberedText kTable[] = {
    {128, u"Velmora Convert OST to PST"},
    {133, u"Fin&d"},
    {139, u"S&top"},
    {140, u"From"},
    {141, u"To"},
    {142, u"Subject"},
    {152, u"Velmora Convert OST to PST"},
    {153, u"Opening OST file..."},
    {154, u"Creating new profile..."},
    {156, u"Error"},
    {157, u"Validating OST file..."},
    {160, u"Validating Folder Structure..."},
    {161, u"Collecting Folder Names..."},
    {162, u"Converting Folder Items..."},
    {163, u"Converting Mail Items..."},
    {164, u"Closing file..."},
    {166, u"Recovery process aborted.\nRecovered at:"},
    {170, u"Do you want to stop the process?"},
    {171, u"Confirmation"},
    {172, u"Do you want to exit the application?"},
    {173,
     u"Not enough free disk space available to save converted .pst file.\n"
     u"Please start the process again by selecting another destination path."},
    {174, u"Information"},
    {176, u"Confirm"},
    {177, u"Ignore"},
    {180, u"This is removable drive.Please select any non removable drive."},
    {181,
     u"Velmora Convert OST to PST can not continue because Microsoft office outlook is running.\n"
     u"Please close the Microsoft office outlook."},
    {182,
     u"Software has detected Outlook 2000 installed on your system in IMO (Internet Mail only) mode. "
     u"Please read below mentioned instructions carefully to effectively recover pst file."},
    {183,
     u"In order to recover the pst file the correct mode should be C/W\r\n"
     u"(Corporate or Workgroup Mode)."},
    {184, u"I Accept"},
    {185, u"I do not accept"},
    {187,
     u"Software can automatically change the mode of currently\r\n"
     u"installed outlook 2000 to C/W mode, you need to provide \r\n"
     u"Office 2000 CD or the path from where you previously installed \r\n"
     u"Office 2000."},
    {188,
     u"To proceed press \"Confirm\", else press \"Ignore\" to cancel this \r\n"
     u"operation.\r\n\r\n"
     u"You also can perform this operation manually following the \r\n"
     u"procedure as mentioned below:\r\n\r\n"
     u"Manual Process"},
    {189,
     u"1. Select \"Ignore\" to close this program.\r\n"
     u"2. Start Outlook 2000.\r\n"
     u"3. From the Tools menu choose Options and open the Mail Delivery tab.\r\n"
     u"4. Select Reconfigure Mail Support.\r\n"
     u"5. Choose the Corporate or Workgroup mail support option and select Next.\r\n"
     u"6. Confirm the warning and let Outlook close.\r\n"
     u"7. Start Outlook again, so that the Windows Installer completes the change with the Office 2000 CD "
     u"or the path from which Office 2000 was installed."},
    {192, u"Failed to launch Velmora Convert OST to PST."},
    {194, u"Currently selected outlook mode (IMO) is not supported.Please change it to C/W mode."},
    {195, u"Warning"},
    {200,
     u"Microsoft Office Outlook currently not installed or is not working,\n"
     u"please reinstall Microsoft Office Outlook and relaunch the application."},
    {202, u"Searching .pst files"},
    {209,
     u"Unable to create folder to save recovered .pst file.\n"
     u"Please select another location to save recovered .pst file."},
    {210, u"File name"},
    {32772, u"Exit application"},
    {32776, u"Product updates\nUpdates"},
    {32777, u"Displays the recovery procedure"},
    {32778, u"Displays procedure for importing a recovered .pst file "},
    {32780, u"Repair PST File\n&Repair PST File"},
    {32781, u"Launch help manual\nContents"},
    {32782, u"Select scan option and destination path\n&Recover && save"},
    {57664, u"Displays the About Us screen"},
};

static_assert(std::is_sorted(std::begin(kTable), std::end(kTable),
                             [](const NumberedText& a, const NumberedText& b) { return a.id < b.id; }));

}  // namespace

std::u16string_view LoadString(std::uint32_t id) {
  const auto* found =
      std::lower_bound(std::begin(kTable), std::end(kTable), id,
                       [](const NumberedText& entry, std::uint32_t wanted) { return entry.id < wanted; });
  return found != std::end(kTable) && found->id == id ? found->text : std::u16string_view{};
}

}  // namespace velmora::resources
