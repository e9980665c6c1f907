// What the fates of nodes are called.
#pragma once

#include <iterator>

#include "complete/account.h"

namespace velmora::cli {

struct FateRow {
  complete::NodeFate fate;
  const char* name;
  const char* meaning;
};

inline constexpr FateRow kFates[] = {
    {complete::NodeFate::kWritten, "written", "in the new store, whole"},
    {complete::NodeFate::kPartial, "partial", "in the new store, without something that could not be read"},
    {complete::NodeFate::kOlderVersion, "older version", "an old page names it as it was before"},
    {complete::NodeFate::kDeleted, "deleted", "no longer in use"},
    {complete::NodeFate::kDeletedWritten, "deleted, written", "no longer in use, and brought across all the same"},
    {complete::NodeFate::kHidden, "hidden", "a hidden item, which was not asked for"},
    {complete::NodeFate::kSearchFolder, "search folder", "holds nothing of its own"},
    {complete::NodeFate::kInternal, "internal", "of the store itself: made anew, or not needed"},
    {complete::NodeFate::kUnreadable, "unreadable", "in use, and nothing of it could be read"},
};
static_assert(std::size(kFates) == complete::kNodeFates);

}  // namespace velmora::cli
