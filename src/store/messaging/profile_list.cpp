#include "store/messaging/profile_list.h"

#include <algorithm>
#include <string>

#include "platform/file.h"
#include "platform/file_system.h"
#include "store/messaging/failures.h"

namespace velmora::messaging {
namespace {

constexpr const char* kFileName = "profiles";
constexpr const char* kNewFileName = "profiles.new";
constexpr std::uint64_t kSizeLimit = 1 << 20;  // the file is ours: a larger one is not

}  // namespace

// One name a line, in UTF-8.
std::vector<text::Text> ProfileFile::Read() const {
  std::vector<text::Text> names;
  const auto file = platform::OpenForReading(folder_ / kFileName);
  if (!file) return names;
  std::string bytes(std::min((*file)->Size(), kSizeLimit), '\0');
  bytes.resize(AsReading([&] { return ValueOrRaise((*file)->ReadAt(0, std::as_writable_bytes(std::span(bytes)))); }));
  for (std::size_t start = 0; start < bytes.size();) {
    const std::size_t end = std::min(bytes.find('\n', start), bytes.size());
    if (end > start) names.push_back(text::FromUtf8(std::string_view(bytes).substr(start, end - start)));
    start = end + 1;
  }
  return names;
}

void ProfileFile::Write(const std::vector<text::Text>& names) const {
  std::string bytes;
  for (const text::Text& name : names) bytes += text::ToUtf8(name) + "\n";
  static_cast<void>(platform::CreateFolders(folder_));  // what is wrong with it shows in the file
  const std::filesystem::path fresh = folder_ / kNewFileName;
  AsOperation([&] {
    const auto file = ValueOrRaise(platform::CreateFile(fresh, platform::Existing::kReplace));
    ValueOrRaise(file->WriteAt(0, std::as_bytes(std::span(bytes))));
    ValueOrRaise(file->Flush());
  });
  if (const auto replaced = platform::Replace(fresh, folder_ / kFileName); !replaced) {
    throw output::OutputFailure(output::ResultCode::STG_E_WRITEFAULT,
                                "The list of profiles cannot be replaced: " + replaced.error().message);
  }
}

bool ProfileFile::Item(text::TextView name) {
  return std::ranges::any_of(Read(), [&](const text::Text& other) { return text::EqualIgnoringCase(other, name); });
}

text::Text ProfileFile::Add(text::TextView name) {
  if (name.empty() || std::ranges::any_of(name, [](char16_t unit) { return unit < u' '; })) {
    throw output::OutputFailure(output::ResultCode::E_INVALIDARG, "A profile needs a name of one line.");
  }
  std::vector<text::Text> names = Read();
  const auto found =
      std::ranges::find_if(names, [&](const text::Text& other) { return text::EqualIgnoringCase(other, name); });
  if (found != names.end()) return *found;
  names.emplace_back(name);
  Write(names);
  return text::Text(name);
}

}  // namespace velmora::messaging
