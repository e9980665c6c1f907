#include "workflow/chosen_source.h"

#include <QWidget>

#include "workflow/main_frame.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {

void ChooseSource(CMainFrame& frame, int row, const QString& file, QWidget& next) {
  if (row < 0) return next.setEnabled(false);
  frame.State().sourcePath = FromQt(file);
  frame.State().sourceFileName = FromQt(file.section(u'/', -1));
  if (!frame.State().sourceFileName.empty()) next.setEnabled(true);
}

}  // namespace velmora::workflow
