// Message boxes, and the picture that they and all windows bear.
#pragma once

#include <QIcon>

#include "text/text.h"

class QWidget;

namespace velmora::workflow {

/// The picture of the program in title bars and lists of windows.
QIcon ProgramIcon();

enum class BoxIcon { None, Information, Warning, Error };

/// A modal box with an OK button. `owner` may be null.
void ShowBox(QWidget* owner, text::TextView message, text::TextView title, BoxIcon icon);

/// A modal box with Yes and No and an information icon. Closing it is a No.
bool AskYesNo(QWidget* owner, text::TextView question, text::TextView title);

}  // namespace velmora::workflow
