// The picture of the program in title bars and lists of windows.
#pragma once

#include <QIcon>

namespace velmora::workflow {

QIcon ProgramIcon();

}  // namespace velmora::workflow
