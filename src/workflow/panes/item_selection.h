// What the body pane asks of the list.
#pragma once

namespace velmora::workflow {

class ItemSelection {
 public:
  virtual ~ItemSelection() = default;
  virtual int RowCount() const = 0;
  virtual int SelectedRow() const = 0;  ///< -1: none
};

}  // namespace velmora::workflow
