#include "engine/evidence/inflate_part.h"

#include <zlib.h>

#include "platform/spares.h"

namespace velmora::engine {

namespace {

class Inflater {
 public:
  Inflater() : isReady_(inflateInit(&stream_) == Z_OK) {}
  ~Inflater() { inflateEnd(&stream_); }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  /// The stream at its beginning; null where there is no memory for one.
  z_stream* Begin() { return isReady_ && inflateReset(&stream_) == Z_OK ? &stream_ : nullptr; }

 private:
  z_stream stream_{};
  bool isReady_;
};

}  // namespace

std::vector<std::byte> InflatePart(std::span<const std::byte> packed, std::size_t most) {
  static platform::Spares<Inflater> inflaters;  // to make one takes as long as to inflate a small block
  const auto inflater = inflaters.Take();
  z_stream* stream = inflater->Begin();
  if (stream == nullptr) return {};
  std::vector<std::byte> out(most);
  stream->next_in = reinterpret_cast<Bytef*>(const_cast<std::byte*>(packed.data()));
  stream->avail_in = static_cast<uInt>(packed.size());
  stream->next_out = reinterpret_cast<Bytef*>(out.data());
  stream->avail_out = static_cast<uInt>(out.size());
  inflate(stream, Z_SYNC_FLUSH);  // a stream that breaks has delivered what was ahead of it
  out.resize(most - stream->avail_out);
  return out;
}

}  // namespace velmora::engine
