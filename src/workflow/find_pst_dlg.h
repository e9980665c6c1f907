// The page on which a drive is searched for the source.
#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "workflow/drive_search.h"
#include "workflow/page.h"

namespace velmora::workflow {

class CFindPstDlg : public Page {
  Q_OBJECT

 public:
  explicit CFindPstDlg(WizardFrame& frame);
  ~CFindPstDlg() override;

  void OnCloseBox() override;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void FillDrives();
  void OnFind();
  void OnBack();
  void OnSearchOver();
  void ShowFindButton(bool searching);
  void ShowFolder(const QString& folder);

  /// Those that the page lists: a search from above goes into them as well.
  std::vector<std::filesystem::path> SearchedDrives() const;
  bool IsRemovable(const std::filesystem::path& drive) const;

  // Set together. Searching also means: a search was refused because the drive is removable.
  bool searching_ = false;
  bool idle_ = true;
  bool drivesListed_ = false;
  std::shared_ptr<DriveSearch> search_;  ///< the last one
};

}  // namespace velmora::workflow
