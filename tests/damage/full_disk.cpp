// Stands between a program and the system, and fills the disk at a given write: from the write of number
// VELMORA_FULL_AT on no file grows any more, and with VELMORA_FULL_FOR_ALL no file is written to at all. Says at the
// end how many writes there were, in the file VELMORA_WRITES.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace {

std::atomic<long> writes{0};
std::atomic<long> refused{0};

bool IsFull() {
  static const char* const at = std::getenv("VELMORA_FULL_AT");
  return ++writes >= (at == nullptr ? 0x7FFFFFFF : std::atol(at));
}

int Refuse() {
  ++refused;
  errno = ENOSPC;
  return -1;
}

off_t SizeOf(int file) {
  struct stat told {};
  return ::fstat(file, &told) == 0 ? told.st_size : 0;
}

struct Teller {
  ~Teller() {
    const char* const path = std::getenv("VELMORA_WRITES");
    std::FILE* const file = path == nullptr ? nullptr : std::fopen(path, "w");
    if (file == nullptr) return;
    std::fprintf(file, "%ld %ld\n", writes.load(), refused.load());
    std::fclose(file);
  }
} teller;

}  // namespace

extern "C" {

ssize_t pwrite(int file, const void* bytes, size_t count, off_t offset) {
  static const auto real = reinterpret_cast<decltype(&pwrite)>(::dlsym(RTLD_NEXT, "pwrite"));
  const bool grows = offset + static_cast<off_t>(count) > SizeOf(file);
  if (IsFull() && (grows || std::getenv("VELMORA_FULL_FOR_ALL") != nullptr)) return Refuse();
  return real(file, bytes, count, offset);
}

int fallocate(int file, int mode, off_t offset, off_t count) {
  static const auto real = reinterpret_cast<decltype(&fallocate)>(::dlsym(RTLD_NEXT, "fallocate"));
  return IsFull() ? Refuse() : real(file, mode, offset, count);
}

}  // extern "C"
