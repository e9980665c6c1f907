#include "platform/file.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <string>
#include <utility>

#include "platform/path_text.h"
#include "platform/windows/handle.h"
#include "platform/windows/long_path.h"
#include "platform/windows/system_failure.h"
#include "platform/windows/win32.h"
#include "platform/zero_fill.h"

static_assert(std::endian::native == std::endian::little, "numbers of a store are read as the host holds them");

namespace velmora::platform {
namespace {

constexpr DWORD kAllShares = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::size_t kMostAtOnce = 1 << 30;  // a call counts in 32 bits

/// Where a call reads or writes: with it the handle's own place, which threads would share, does not matter.
OVERLAPPED PlaceOf(std::uint64_t offset) {
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(offset);
  place.OffsetHigh = static_cast<DWORD>(offset >> 32);
  return place;
}

class SystemFile : public ByteStore {
 public:
  SystemFile(Handle handle, std::string name, std::uint64_t size)
      : handle_(std::move(handle)), name_(std::move(name)), size_(size) {}

  std::uint64_t Size() const override { return size_; }

  Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    std::size_t done = 0;
    while (done < out.size()) {
      OVERLAPPED place = PlaceOf(offset + done);
      DWORD n = 0;
      if (!::ReadFile(handle_.Get(), out.data() + done, static_cast<DWORD>(std::min(out.size() - done, kMostAtOnce)),
                      &n, &place)) {
        const DWORD error = ::GetLastError();
        if (error == ERROR_HANDLE_EOF) break;
        return Fail(error, name_, offset + done);
      }
      if (n == 0) break;
      done += n;
    }
    return done;
  }

  Result<void> WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
    std::size_t done = 0;
    while (done < bytes.size()) {
      OVERLAPPED place = PlaceOf(offset + done);
      DWORD n = 0;
      if (!::WriteFile(handle_.Get(), bytes.data() + done,
                       static_cast<DWORD>(std::min(bytes.size() - done, kMostAtOnce)), &n, &place)) {
        return Fail(::GetLastError(), name_, offset + done);
      }
      if (n == 0) return Fail(ERROR_DISK_FULL, name_, offset + done);  // well, but nothing written: there is no room
      done += n;
    }
    if (offset + bytes.size() > size_) size_ = offset + bytes.size();
    return {};
  }

  Result<void> Resize(std::uint64_t size) override {
    if (auto ended = EndAt(size); !ended) return ended;
    size_ = size;
    return {};
  }

  Result<void> Reserve(std::uint64_t size) override {
    if (size <= size_) return {};
    const std::uint64_t before = size_;
    auto reserved = EndAt(size);
    if (reserved && !HasRoomFor(size)) {
      static_cast<void>(EndAt(before));
      reserved = FillWithZerosTo(*this, size);
    }
    if (!reserved) {
      static_cast<void>(Resize(before));  // what there was room for stays nobody's
      return reserved;
    }
    size_ = size;
    return {};
  }

  Result<void> Flush() override {
    if (!::FlushFileBuffers(handle_.Get())) return Fail(::GetLastError(), name_);
    return {};
  }

 private:
  Result<void> EndAt(std::uint64_t size) {
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
    if (!::SetFileInformationByHandle(handle_.Get(), FileEndOfFileInfo, &end, sizeof end)) {
      return Fail(::GetLastError(), name_, size);
    }
    return {};
  }

  /// A disk of the system's own kind gives a longer file its room at once; others, and shares, let a hole be.
  bool HasRoomFor(std::uint64_t size) const {
    FILE_STANDARD_INFO info{};
    return ::GetFileInformationByHandleEx(handle_.Get(), FileStandardInfo, &info, sizeof info) &&
           static_cast<std::uint64_t>(info.AllocationSize.QuadPart) >= size;
  }

  Handle handle_;
  std::string name_;
  std::atomic<std::uint64_t> size_;  ///< asked while another thread writes
};

Result<std::unique_ptr<ByteStore>> Open(const std::filesystem::path& path, DWORD access, DWORD disposition) {
  Handle handle(
      ::CreateFileW(LongPath(path).c_str(), access, kAllShares, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!handle.IsOpen()) return Fail(::GetLastError(), path);
  if (::GetFileType(handle.Get()) != FILE_TYPE_DISK) {
    return tl::unexpected(Failure{FailureKind::kDenied, BytesOfPath(path), {}, "no regular file"});
  }
  LARGE_INTEGER size{};
  if (!::GetFileSizeEx(handle.Get(), &size)) return Fail(::GetLastError(), path);
  return std::make_unique<SystemFile>(std::move(handle), BytesOfPath(path), static_cast<std::uint64_t>(size.QuadPart));
}

}  // namespace

Result<std::unique_ptr<ByteSource>> OpenForReading(const std::filesystem::path& path) {
  return Open(path, GENERIC_READ, OPEN_EXISTING).map([](auto file) {
    return std::unique_ptr<ByteSource>(std::move(file));
  });
}

Result<std::unique_ptr<ByteStore>> OpenForWriting(const std::filesystem::path& path) {
  return Open(path, GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING);
}

Result<std::unique_ptr<ByteStore>> CreateFile(const std::filesystem::path& path, Existing existing) {
  return Open(path, GENERIC_READ | GENERIC_WRITE, existing == Existing::kRefuse ? CREATE_NEW : CREATE_ALWAYS);
}

Result<std::unique_ptr<ByteStore>> CreateUnnamedFile() {
  static std::atomic<unsigned> made = 0;
  wchar_t folder[MAX_PATH + 1];
  const DWORD length = ::GetTempPathW(static_cast<DWORD>(std::size(folder)), folder);
  if (length == 0 || length >= std::size(folder)) return Fail(::GetLastError(), std::string("temporary folder"));
  while (true) {
    // It has a name, which another file of a process with this number may have kept; no other program can take it over.
    const std::filesystem::path path =
        std::filesystem::path(folder) /
        (L"velmora-" + std::to_wstring(::GetCurrentProcessId()) + L"-" + std::to_wstring(made++) + L".tmp");
    Handle handle(::CreateFileW(LongPath(path).c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, FILE_SHARE_DELETE,
                                nullptr, CREATE_NEW, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    if (handle.IsOpen()) {
      return std::unique_ptr<ByteStore>(std::make_unique<SystemFile>(std::move(handle), BytesOfPath(path), 0));
    }
    if (const DWORD error = ::GetLastError(); KindOf(error) != FailureKind::kExists) return Fail(error, path);
  }
}

Result<void> CreateFolder(const std::filesystem::path& path) {
  if (!::CreateDirectoryW(LongPath(path).c_str(), nullptr)) return Fail(::GetLastError(), path);
  return {};
}

Result<void> DeleteFile(const std::filesystem::path& path) {
  if (!::DeleteFileW(LongPath(path).c_str())) return Fail(::GetLastError(), path);
  return {};
}

}  // namespace velmora::platform
