// A source with one item of each kind that the grid shows, each with every record that the kind takes over.
#pragma once

#include <string>
#include <vector>

#include "forge/image.h"
#include "text/text.h"

namespace velmora::workflow {

struct ForgedKind {
  text::Text folder;                ///< holds the item
  std::vector<std::string> labels;  ///< of the rows that the item has in the grid
};

const std::vector<ForgedKind>& ForgedKinds();

forge::Image ForgeEveryKind();

}  // namespace velmora::workflow
