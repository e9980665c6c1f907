// The store on disk behind the operations of the output library.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "platform/failure.h"
#include "platform/workers.h"
#include "store/operations.h"
#include "text/code_page.h"

namespace velmora::messaging {

struct LibraryState;

struct PstLibraryOptions {
  std::filesystem::path configFolder;  ///< of the list of profiles
  std::optional<std::int64_t> sourceDateEpoch = EpochOfEnvironment();
  text::CodePage codePage = text::CodePage::Lossless();  ///< of HTML bodies that do not tell their own
  platform::Workers* workers = &platform::Workers::WithoutThreads();  ///< encode and write; must outlive the stores

  /// SOURCE_DATE_EPOCH, where it is set to a number: seconds since 1970. Stores made with it hold no other
  /// time of their own and the same random numbers each time, so the same operations give the same bytes.
  static std::optional<std::int64_t> EpochOfEnvironment();
};

/// Stores are sealed when the last reference to a session and its objects goes. A failure at that moment
/// would be lost: call Seal before.
class PstLibrary : public output::OutputLibrary {
 public:
  explicit PstLibrary(PstLibraryOptions options);

  output::Ref<output::ProfileList> CreateProfileList() override;
  output::Ref<output::RDOSession> CreateRDOSession() override;
  output::Ref<output::MAPIUtils> CreateMAPIUtils() override;

  /// Seals all stores that were created and still are referred to: they are complete on disk then, can
  /// still be read, and refuse every change. The first failure, of whichever store.
  [[nodiscard]] platform::Result<void> Seal();

  /// The tables of these stores that have no room for all of their values.
  std::vector<output::FullTable> FullTables() const;

 private:
  std::filesystem::path configFolder_;
  std::shared_ptr<LibraryState> state_;
};

}  // namespace velmora::messaging
