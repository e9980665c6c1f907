// The store that shows what the program can do: every kind of item, names in many scripts, attachments of
// every form, and pages that are damaged.
#pragma once

#include <map>
#include <string>

#include "forge/image.h"

namespace velmora::forge {

enum class DemoState {
  kSound,    ///< every page in its place; other readers open it
  kDamaged,  ///< both tree roots and the header's pointers are gone, and a leaf survives as an older copy alone
};

/// An offline store of some 20 items.
Image ForgeDemoStore(DemoState state);

/// What the demo store holds in its folders: number of items by message class. Embedded messages and the
/// one message that no node names any more do not count.
const std::map<std::string, int>& DemoItems();

/// Folders below the top folder, Deleted Items included.
inline constexpr int kDemoFolders = 13;

}  // namespace velmora::forge
