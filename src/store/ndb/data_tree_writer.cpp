#include "store/ndb/data_tree_writer.h"

#include <algorithm>
#include <cstring>

#include "store/format/failures.h"

namespace velmora::ndb {

DataTreeWriter::DataTreeWriter(NdbWriter& ndb) : ndb_(ndb) {}

DataTreeWriter::~DataTreeWriter() { Clear(); }

Result<void> DataTreeWriter::Append(std::span<const std::byte> bytes) {
  if (bytes.size() > NdbWriter::kMaxTreeSize - size_) {
    return Fail(FailureKind::kNotSupported, "data tree", size_, "a value cannot be larger than 4 GiB");
  }
  // The last block stays in memory until one more byte comes, so that Finish always has one to write.
  while (!bytes.empty()) {
    if (used_ == kMaxBlockData) {
      used_ = 0;
      if (auto written = WriteBlock(*buffer_); !written) return written;
    }
    std::size_t taken = std::min(bytes.size(), kMaxBlockData - used_);
    if (used_ == 0 && bytes.size() > kMaxBlockData) {
      if (auto written = WriteBlock(bytes.first(taken)); !written) return written;
    } else {
      if (!buffer_) buffer_ = ndb_.TakeBuffer();
      std::memcpy(buffer_->data() + used_, bytes.data(), taken);
      used_ += taken;
    }
    size_ += taken;
    bytes = bytes.subspan(taken);
  }
  return {};
}

std::span<const std::byte> DataTreeWriter::Buffered() const {
  if (!dataBids_.empty() || !buffer_) return {};
  return std::span(*buffer_).first(used_);
}

Result<DataTree> DataTreeWriter::Finish() {
  if (used_ > 0) {
    if (auto written = WriteBlock(std::span(*buffer_).first(used_)); !written) return tl::unexpected(written.error());
  }
  Result<DataTree> tree = ndb_.WriteTreeOver(dataBids_, size_);
  if (tree) dataBids_.clear();
  Clear();
  return tree;
}

void DataTreeWriter::Clear() {
  for (const Bid bid : dataBids_) static_cast<void>(ndb_.Discard({bid}));
  dataBids_.clear();
  buffer_ = {};
  used_ = 0;
  size_ = 0;
}

Result<void> DataTreeWriter::WriteBlock(std::span<const std::byte> bytes) {
  const Result<Bid> bid = ndb_.WriteDataBlock(bytes);
  if (!bid) return tl::unexpected(bid.error());
  dataBids_.push_back(*bid);
  return {};
}

}  // namespace velmora::ndb
