#include "controls/file_rows.h"

#include <gtest/gtest.h>

#include "controls/hostile_texts.h"
#include "controls/shown_tip.h"
#include "controls/tx_list_ctrl.h"

namespace velmora::controls {
namespace {

TEST(FileRowsTest, TheTipOfAFileIsItsPathWhateverItSays) {
  WatchedPipe pipe;
  const QStringList names = HostileTexts(pipe.Path());
  CTXListCtrl list(nullptr);
  list.resize(600, 400);
  list.Rows().Append(names);
  list.show();
  for (int row = 0; row < names.size(); ++row) {
    const QModelIndex cell = list.Rows().index(row);
    const QLabel* tip = ShownTip(list, cell);
    ASSERT_NE(tip, nullptr) << row;
    EXPECT_EQ(ReadOn(*tip).toStdString(), names[row].toStdString());
    EXPECT_EQ(cell.data(Qt::AccessibleTextRole).toString(), names[row]);
    EXPECT_EQ(cell.data().toString(), names[row]);
  }
  EXPECT_FALSE(pipe.WasOpened());
}

}  // namespace
}  // namespace velmora::controls
