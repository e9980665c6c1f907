// Small pictures that stand side by side in one.
#pragma once

#include <QIcon>
#include <QString>
#include <vector>

namespace velmora::workflow {

/// The square pictures in the bitmap of that number, in their order.
std::vector<QIcon> LoadImageList(int bitmap);

}  // namespace velmora::workflow
