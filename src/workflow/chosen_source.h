// A row of a list of files becomes the source.
#pragma once

#include <QString>

class QWidget;

namespace velmora::workflow {

class CMainFrame;

/// Row -1 disables "Next" and leaves the source as it was.
void ChooseSource(CMainFrame& frame, int row, const QString& file, QWidget& next);

}  // namespace velmora::workflow
