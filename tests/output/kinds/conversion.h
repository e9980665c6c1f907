// One whole conversion for a test: a forged source in, a new store out, by the code that the program runs.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "conversion/run_report.h"
#include "forge/image.h"
#include "forge_tests/peers.h"
#include "store/operations.h"

namespace velmora::kinds {

class Conversion {
 public:
  /// Converts the store under that file name. Throws std::runtime_error when the run says anything but that
  /// it is done.
  Conversion(const forge::Image& source, const std::string& name);

  const std::filesystem::path& Store() const { return store_; }
  const conversion::RunReport& Report() const { return report_; }

  /// The top folder of the new store, opened for reading.
  output::Ref<output::RDOFolder> Top();
  /// A folder at a path such as "Contacts\\Lost & Found" below it; throws if it is not there.
  output::Ref<output::RDOFolder> Folder(text::TextView path);
  /// The default folder of a kind; null when it has none.
  output::Ref<output::RDOFolder> DefaultFolder(output::DefaultFolder kind);

  /// What the readers by others make of the new store, in folders of this one; each runs once.
  const std::filesystem::path& Pffexport();
  const std::filesystem::path& Readpst();

 private:
  output::Ref<output::RDOSession> Session();

  forge::ScratchFolder folder_;
  std::filesystem::path store_;
  conversion::RunReport report_;
  std::unique_ptr<output::OutputLibrary> library_;
  output::Ref<output::RDOSession> session_;
  output::Ref<output::RDOStore> opened_;
  std::filesystem::path pffexport_;
  std::filesystem::path readpst_;
};

/// The items of a folder in their order.
std::vector<output::Ref<output::RDOMail>> ItemsOf(const output::Ref<output::RDOFolder>& folder);

}  // namespace velmora::kinds
