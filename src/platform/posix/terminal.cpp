#include "platform/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace velmora::platform {
namespace {

int DescriptorOf(StandardStream stream) { return stream == StandardStream::kOutput ? STDOUT_FILENO : STDERR_FILENO; }

}  // namespace

bool IsTerminal(StandardStream stream) { return ::isatty(DescriptorOf(stream)) == 1; }

int TerminalColumns(StandardStream stream) {
  winsize size{};
  if (::ioctl(DescriptorOf(stream), TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
  return size.ws_col;
}

Result<void> WriteTo(StandardStream stream, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(DescriptorOf(stream), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) {
      return tl::unexpected(
          Failure{FailureKind::kInputOutput, "standard stream", {}, std::generic_category().message(errno)});
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return {};
}

}  // namespace velmora::platform
