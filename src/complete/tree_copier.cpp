#include "complete/tree_copier.h"

#include "store/messaging/failures.h"
#include "store/ndb/data_tree_writer.h"

namespace velmora::complete {
namespace {

constexpr std::size_t kPiece = std::size_t{64} << 10;

}  // namespace

bool IsStoredAlike(const LiveStore& source, const ndb::NdbWriter& target) {
  return source.Format() == target.Format() && source.Found().Found().encoding == target.Encoding() &&
         target.Encoding() != CryptMethod::kCyclic;  // whose key is the id of the block
}

ndb::DataTree TreeCopier::Copy(ndb::DataTreeReader from, ndb::NdbWriter& target) {
  ndb::DataTreeWriter to(target);
  std::size_t stored = 0;
  if (IsStoredAlike(source_, target)) {
    stored = TakeStored(source_, from, block_, [&](const StoredData& data) {
      messaging::AsOperation([&] { to.AppendStored(data); });
    });
  }
  const bool isWhole = stored == from.BlockCount() && to.Size() == from.Size();
  if (!isWhole) {
    piece_.resize(kPiece);
    while (const std::size_t count = from.ReadAt(to.Size(), piece_)) {
      messaging::AsOperation([&] { to.Append(std::span(piece_).first(count)); });
    }
  }
  return messaging::AsOperation([&] { return to.Finish(); });
}

}  // namespace velmora::complete
