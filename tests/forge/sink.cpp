#include "forge/sink.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace velmora::forge {
namespace {

constexpr std::size_t kBytesAtOnce = std::size_t{1} << 20;

}  // namespace

void MemorySink::WriteAt(std::uint64_t offset, Bytes bytes, Form form) {
  if (form) form(bytes);
  GrowTo(offset + bytes.size());
  std::copy(bytes.begin(), bytes.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(offset));
}

void MemorySink::GrowTo(std::uint64_t size) {
  if (bytes_.size() < size) bytes_.resize(size);
}

FileSink::FileSink(const std::filesystem::path& path) : file_(path, std::ios::binary | std::ios::trunc) {
  if (!file_) throw std::runtime_error("forge: cannot make " + path.string());
}

void FileSink::WriteAt(std::uint64_t offset, Bytes bytes, Form form) {
  size_ = std::max<std::uint64_t>(size_, offset + bytes.size());
  waitingBytes_ += bytes.size();
  waiting_.push_back({offset, std::move(bytes), std::move(form)});
  if (waitingBytes_ >= kBytesAtOnce) HandOver();
}

void FileSink::HandOver() {
  if (underWay_.valid()) underWay_.get();
  waitingBytes_ = 0;
  underWay_ = std::async(std::launch::async, &FileSink::WriteAll, this, std::exchange(waiting_, {}));
}

void FileSink::WriteAll(Pieces pieces) {
  for (Piece& piece : pieces) {
    if (piece.form) piece.form(piece.bytes);
    // A seek empties the stream's buffer, so it is left out where the writes follow one another.
    if (piece.offset != position_) file_.seekp(static_cast<std::streamoff>(piece.offset));
    file_.write(reinterpret_cast<const char*>(piece.bytes.data()), static_cast<std::streamsize>(piece.bytes.size()));
    position_ = piece.offset + piece.bytes.size();
  }
  if (!file_) throw std::runtime_error("forge: a write failed");
}

void FileSink::GrowTo(std::uint64_t size) {
  if (size_ < size) WriteAt(size - 1, Bytes(1));
}

Bytes FileSink::Finish() {
  HandOver();
  underWay_.get();
  file_.close();
  if (!file_) throw std::runtime_error("forge: a write failed");
  return {};
}

}  // namespace velmora::forge
