#include "workflow/program_icon.h"

#include "controls/art.h"

namespace velmora::workflow {

QIcon ProgramIcon() {
  controls::CGdiPlusBitmapResource icon;
  icon.Load(128, "ICON");
  return icon.ToPixmap({64, 64}, 2);
}

}  // namespace velmora::workflow
