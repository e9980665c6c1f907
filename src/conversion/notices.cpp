#include "conversion/notices.h"

namespace velmora::conversion {
namespace {

struct Row {
  NoticeKind kind;
  bool isError;
  bool namesStore;  ///< followed by the path of the new store
  text::TextView text;
};

constexpr Row kRows[] = {
    {NoticeKind::kSourceNotOpened, true, false,
     u"Source file could not open.Make sure that another application is not using. "},
    {NoticeKind::kNotValid, true, false, u"Pst/Ost file is not valid."},
    {NoticeKind::kNoIndexFile, true, false, u"Some problem is encounterd to create temporary file."},
    {NoticeKind::kComponentMissing, true, false, u"Some component is missing.Please reinstall the application."},
    {NoticeKind::kRegistering, false, false,
     u"Application is registering dll files.Please relaunch the application to recover your .pst file. "},
    // The blank at its end tells it from the one of a library that is not there.
    {NoticeKind::kComponentFailed, true, false, u"Some component is missing.Please reinstall the application. "},
    {NoticeKind::kNoOutputFolder, true, false,
     u"Unable to create folder to save recovered .pst file.\n"
     u"Please select another location to save recovered .pst file."},
    {NoticeKind::kNotEnoughSpace, false, false,
     u"Not enough free disk space available to save converted .pst file.\n"
     u"Please start the process again by selecting another destination path."},
    {NoticeKind::kStoreNotMade, true, false,
     u"Unable to create converted .pst file.\nPlease select another location to save recovered .pst file."},
    {NoticeKind::kStoreNotWritten, true, true, u"Unable to write converted .pst file.\nRecovered at:"},
    {NoticeKind::kDiskFull, true, true,
     u"Not enough free disk space available to save converted .pst file.\nRecovered at:"},
    {NoticeKind::kAborted, false, true, u"Recovery process aborted.\nRecovered at:"},
};

}  // namespace

NoticeText TextOf(const Notice& notice) {
  const Row& row = *std::ranges::find(kRows, notice.kind, &Row::kind);
  return {row.isError, row.isError ? u"Error" : u"Information",
          text::Text(row.text) + (row.namesStore ? notice.path : text::Text())};
}

}  // namespace velmora::conversion
