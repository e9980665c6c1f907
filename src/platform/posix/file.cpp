#include "platform/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <bit>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <system_error>
#include <utility>

#include "platform/posix/system_failure.h"
#include "platform/zero_fill.h"

static_assert(std::endian::native == std::endian::little, "numbers of a store are read as the host holds them");
static_assert(sizeof(off_t) == 8, "stores above 2 GB");

namespace velmora::platform {
namespace {

/// A file descriptor that is closed with its holder.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&&) = delete;
  int Get() const { return fd_; }

 private:
  int fd_;
};

class SystemFile : public ByteStore {
 public:
  SystemFile(Descriptor descriptor, std::string name, std::uint64_t size)
      : descriptor_(std::move(descriptor)), name_(std::move(name)), size_(size) {}

  std::uint64_t Size() const override { return size_; }

  Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    std::size_t done = 0;
    while (done < out.size()) {
      const ssize_t n =
          ::pread(descriptor_.Get(), out.data() + done, out.size() - done, static_cast<off_t>(offset + done));
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) return Fail(errno, name_, offset + done);
      if (n == 0) break;
      done += static_cast<std::size_t>(n);
    }
    return done;
  }

  bool Prefetch(std::uint64_t offset, std::uint64_t length) const override {
    return ::posix_fadvise(descriptor_.Get(), static_cast<off_t>(offset), static_cast<off_t>(length),
                           POSIX_FADV_WILLNEED) == 0;
  }

  Result<void> WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
    std::size_t done = 0;
    while (done < bytes.size()) {
      const ssize_t n =
          ::pwrite(descriptor_.Get(), bytes.data() + done, bytes.size() - done, static_cast<off_t>(offset + done));
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) return Fail(errno, name_, offset + done);
      done += static_cast<std::size_t>(n);
    }
    if (offset + bytes.size() > size_) size_ = offset + bytes.size();
    return {};
  }

  Result<void> Resize(std::uint64_t size) override {
    if (::ftruncate(descriptor_.Get(), static_cast<off_t>(size)) != 0) return Fail(errno, name_, size);
    size_ = size;
    return {};
  }

  Result<void> Reserve(std::uint64_t size) override {
    if (size <= size_) return {};
    const std::uint64_t before = size_;
    auto reserved = AllocateTo(size);
    if (!reserved) static_cast<void>(Resize(before));  // what there was room for stays nobody's
    return reserved;
  }

  Result<void> Flush() override {
    if (::fdatasync(descriptor_.Get()) != 0) return Fail(errno, name_);
    return {};
  }

 private:
  Result<void> AllocateTo(std::uint64_t size) {
    while (::fallocate(descriptor_.Get(), 0, static_cast<off_t>(size_), static_cast<off_t>(size - size_)) != 0) {
      if (errno == EOPNOTSUPP || errno == ENOSYS) return FillWithZerosTo(*this, size);
      if (errno != EINTR) return Fail(errno, name_, size);
    }
    size_ = size;
    return {};
  }

  Descriptor descriptor_;
  std::string name_;
  std::atomic<std::uint64_t> size_;  ///< asked while another thread writes
};

Result<std::unique_ptr<ByteStore>> Open(const std::filesystem::path& path, int flags) {
  // O_NONBLOCK: a named pipe must not hold the program; regular files take no notice of it.
  Descriptor descriptor(::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, 0644));
  if (descriptor.Get() < 0) return Fail(errno, path);
  struct stat status {};
  if (::fstat(descriptor.Get(), &status) != 0) return Fail(errno, path);
  if (S_ISDIR(status.st_mode)) return Fail(EISDIR, path);
  if (!S_ISREG(status.st_mode))
    return tl::unexpected(Failure{FailureKind::kDenied, path.native(), {}, "no regular file"});
  return std::make_unique<SystemFile>(std::move(descriptor), path.native(), static_cast<std::uint64_t>(status.st_size));
}

}  // namespace

Result<std::unique_ptr<ByteSource>> OpenForReading(const std::filesystem::path& path) {
  return Open(path, O_RDONLY).map([](auto file) { return std::unique_ptr<ByteSource>(std::move(file)); });
}

Result<std::unique_ptr<ByteStore>> OpenForWriting(const std::filesystem::path& path) { return Open(path, O_RDWR); }

Result<std::unique_ptr<ByteStore>> CreateFile(const std::filesystem::path& path, Existing existing) {
  return Open(path, O_RDWR | O_CREAT | (existing == Existing::kRefuse ? O_EXCL : O_TRUNC));
}

Result<std::unique_ptr<ByteStore>> CreateUnnamedFile() {
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
  if (error) return Fail(error.value(), std::string("temporary folder"));
  // Not every file system has O_TMPFILE; a name that is unlinked at once does the same.
  std::string name = (folder / "velmora-XXXXXX").native();
  Descriptor descriptor(::mkostemp(name.data(), O_CLOEXEC));
  if (descriptor.Get() < 0) return Fail(errno, name);
  ::unlink(name.c_str());
  return std::unique_ptr<ByteStore>(std::make_unique<SystemFile>(std::move(descriptor), name, 0));
}

Result<void> CreateFolder(const std::filesystem::path& path) {
  if (::mkdir(path.c_str(), 0755) != 0) return Fail(errno, path);
  return {};
}

Result<void> DeleteFile(const std::filesystem::path& path) {
  if (::unlink(path.c_str()) != 0) return Fail(errno, path);
  return {};
}

}  // namespace velmora::platform
