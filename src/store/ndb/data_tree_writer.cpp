#include "store/ndb/data_tree_writer.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "store/format/failures.h"

namespace velmora::ndb {

DataTreeWriter::DataTreeWriter(NdbWriter& ndb) : ndb_(ndb) {}

DataTreeWriter::~DataTreeWriter() { Clear(); }

void DataTreeWriter::Append(std::span<const std::byte> bytes) {
  if (bytes.size() > NdbWriter::kMaxTreeSize - size_) RaiseTooLarge();
  // The last block stays in memory until one more byte comes, so that Finish always has one to write.
  while (!bytes.empty()) {
    if (used_ == kMaxBlockData) {
      used_ = 0;
      WriteBlock(*buffer_);
    }
    std::size_t taken = std::min(bytes.size(), kMaxBlockData - used_);
    if (used_ == 0 && bytes.size() > kMaxBlockData) {
      WriteBlock(bytes.first(taken));
    } else {
      if (!buffer_) buffer_ = ndb_.TakeBuffer();
      std::memcpy(buffer_->data() + used_, bytes.data(), taken);
      used_ += taken;
    }
    size_ += taken;
    bytes = bytes.subspan(taken);
  }
}

void DataTreeWriter::AppendStored(const StoredData& data) {
  assert(size_ % kMaxBlockData == 0);
  if (data.bytes.size() > NdbWriter::kMaxTreeSize - size_) RaiseTooLarge();
  if (used_ != 0) WriteBlock(*buffer_);
  used_ = 0;
  dataBids_.push_back(ndb_.WriteStoredBlock(data));
  size_ += data.bytes.size();
}

void DataTreeWriter::RaiseTooLarge() const {
  Raise(FailureKind::kNotSupported, ObjectKind::kDataTree, size_, "a value cannot be larger than 4 GiB");
}

std::span<const std::byte> DataTreeWriter::Buffered() const {
  if (!dataBids_.empty() || !buffer_) return {};
  return std::span(*buffer_).first(used_);
}

DataTree DataTreeWriter::Finish() {
  if (used_ > 0) WriteBlock(std::span(*buffer_).first(used_));
  const DataTree tree = ndb_.WriteTreeOver(dataBids_, size_);
  dataBids_.clear();
  Clear();
  return tree;
}

void DataTreeWriter::Clear() {
  for (const Bid bid : dataBids_) ndb_.Discard({bid});
  dataBids_.clear();
  buffer_ = {};
  used_ = 0;
  size_ = 0;
}

void DataTreeWriter::WriteBlock(std::span<const std::byte> bytes) { dataBids_.push_back(ndb_.WriteDataBlock(bytes)); }

}  // namespace velmora::ndb
