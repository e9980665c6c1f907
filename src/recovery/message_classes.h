// The message classes that recovery knows: where an item of a class goes, and what it becomes.
#pragma once

#include <optional>

#include "recovery/item_converter.h"
#include "store/operations.h"
#include "text/text.h"

namespace velmora::recovery {

/// Does a class take the longer way of placement, which keeps an item of a special kind in a folder of its type?
struct SpecialPlacement {
  std::optional<output::DefaultFolder> defaultFolder;  ///< nothing for a class without a default folder
};
/// Nothing for an ordinary class. Compared with the letter case.
std::optional<SpecialPlacement> SpecialPlacementOf(text::TextView messageClass);

/// What is made of a class.
enum class ClassVerdict {
  kItem,     ///< an item of `kind`
  kNoClass,  ///< empty or too short to be one
  kRefused,  ///< a class that is not converted
  kDamaged,  ///< taken for a damaged class text: a mail of that class
};
struct ItemClass {
  ClassVerdict verdict = ClassVerdict::kNoClass;
  ItemKind kind = ItemKind::kMail;
};
ItemClass Classify(text::TextView messageClass);

bool IsDistributionList(text::TextView messageClass);

using output::InterfaceOf;

}  // namespace velmora::recovery
