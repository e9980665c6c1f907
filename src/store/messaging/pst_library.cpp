#include "store/messaging/pst_library.h"

#include <charconv>
#include <cstdlib>
#include <string_view>

#include "store/messaging/profile_list.h"
#include "store/messaging/session.h"

namespace velmora::messaging {
namespace {

class Utils : public output::MAPIUtils {
 public:
  explicit Utils(std::shared_ptr<LibraryState> library) : library_(std::move(library)) {}
  text::Text CurrentProfileName() override { return library_->currentProfile; }

 private:
  std::shared_ptr<LibraryState> library_;
};

}  // namespace

std::optional<std::int64_t> PstLibraryOptions::EpochOfEnvironment() {
  const char* value = std::getenv("SOURCE_DATE_EPOCH");
  if (value == nullptr) return std::nullopt;
  const std::string_view digits = value;
  std::int64_t seconds = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), seconds);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return seconds;
}

PstLibrary::PstLibrary(PstLibraryOptions options)
    : configFolder_(std::move(options.configFolder)), state_(std::make_shared<LibraryState>()) {
  state_->options = {options.sourceDateEpoch, options.codePage};
}

output::Ref<output::ProfileList> PstLibrary::CreateProfileList() {
  return std::make_shared<ProfileFile>(configFolder_);
}
output::Ref<output::RDOSession> PstLibrary::CreateRDOSession() { return std::make_shared<Session>(state_); }
output::Ref<output::MAPIUtils> PstLibrary::CreateMAPIUtils() { return std::make_shared<Utils>(state_); }

std::vector<output::FullTable> PstLibrary::FullTables() const {
  std::vector<output::FullTable> all;
  for (const std::weak_ptr<StoreWriter>& writer : state_->writers) {
    if (const std::shared_ptr<StoreWriter> store = writer.lock()) {
      const auto full = store->FullTables();
      all.insert(all.end(), full.begin(), full.end());
    }
  }
  return all;
}

platform::Result<void> PstLibrary::Seal() {
  platform::Result<void> result;
  for (const std::weak_ptr<StoreWriter>& writer : state_->writers) {
    const std::shared_ptr<StoreWriter> store = writer.lock();
    if (store == nullptr) continue;
    try {
      store->Seal();
    } catch (const output::OutputFailure& failure) {
      if (result) result = tl::unexpected(output::CauseOf(failure));
    }
  }
  return result;
}

}  // namespace velmora::messaging
