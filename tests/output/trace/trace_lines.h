// A sink and a content for tests of the trace.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "output/trace/trace_library.h"

namespace velmora::output {

class TraceLines : public TraceSink {
 public:
  void WriteLine(std::string_view line) override { lines.emplace_back(line); }
  std::vector<std::string> lines;
};

class TextContent : public ContentSource {
 public:
  explicit TextContent(std::string bytes) : bytes_(std::move(bytes)) {}
  std::uint64_t Size() const override { return bytes_.size(); }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    if (offset >= bytes_.size()) return 0;
    const std::size_t length = std::min<std::uint64_t>(out.size(), bytes_.size() - offset);
    std::copy_n(reinterpret_cast<const std::byte*>(bytes_.data()) + offset, length, out.begin());
    return length;
  }

 private:
  std::string bytes_;
};

/// A logged-on session with one store of that display name; its top folder.
struct TracedStore {
  explicit TracedStore(OutputLibrary& library, text::TextView name = u"outlook Converted")
      : session(library.CreateRDOSession()), top(session->Stores()->AddPSTStore(u"/x.pst", name)->IPMRootFolder()) {}
  Ref<RDOSession> session;
  Ref<RDOFolder> top;
};

template <class Operation>
ResultCode CodeOf(Operation&& operation) {
  try {
    operation();
  } catch (const OutputFailure& failure) {
    return failure.Code();
  }
  return ResultCode::S_OK;
}

}  // namespace velmora::output
