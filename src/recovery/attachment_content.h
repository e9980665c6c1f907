// The content of an attachment on its way from the source to the new item.
#pragma once

#include "platform/spool_file.h"
#include "store/format/byte_view.h"
#include "store/operations.h"

namespace velmora::recovery {

/// Small contents stay in memory, longer ones go to a temporary file without a name, so that memory does not grow
/// with the attachment and nothing is created under a name that the source chose.
class AttachmentContent : public output::ContentSource {
 public:
  /// Bytes that cannot be kept make the whole content unusable: see Failed.
  void Append(std::span<const std::byte> bytes) {
    if (!failed_) failed_ = !spool_.Append(bytes);
  }
  bool Failed() const { return failed_; }

  std::uint64_t Size() const override { return spool_.Size(); }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    const auto delivered = spool_.ReadAt(offset, out);
    if (!delivered) throw output::OutputFailure(output::ResultCode::STG_E_READFAULT, delivered.error().message);
    return *delivered;
  }

 private:
  platform::SpoolFile spool_;
  bool failed_ = false;
};

}  // namespace velmora::recovery
