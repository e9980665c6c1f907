// A session and the stores mounted in it.
#pragma once

#include <memory>
#include <vector>

#include "store/messaging/store_writer.h"
#include "store/operations.h"

namespace velmora::messaging {

/// What the sessions of one library share.
struct LibraryState {
  StoreOptions options;
  text::Text currentProfile;
  std::vector<std::weak_ptr<StoreWriter>> writers;  ///< of all stores that were created
};

class Session : public output::RDOSession {
 public:
  explicit Session(std::shared_ptr<LibraryState> library);

  void Logon(text::TextView profileName) override;
  output::Ref<output::RDOStores> Stores() override;
  output::Ref<output::RDOFolder> GetDefaultFolder(output::DefaultFolder kind) override;
  output::Ref<output::RDOFolder> GetFolderFromPath(text::TextView path) override;

 private:
  using Mounted = std::vector<std::shared_ptr<Store>>;

  std::shared_ptr<LibraryState> library_;
  std::shared_ptr<Mounted> stores_;
};

}  // namespace velmora::messaging
