// Folders of a store, as the operations hand them out.
#pragma once

#include <memory>

#include "store/messaging/store.h"
#include "store/operations.h"

namespace velmora::messaging {

/// A reference to a folder, null for none. Each is an object of its own, which keeps the store open.
output::Ref<output::RDOFolder> RefOf(const std::shared_ptr<Store>& store, Folder* folder);

}  // namespace velmora::messaging
