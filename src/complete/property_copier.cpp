#include "complete/property_copier.h"

#include <algorithm>

#include "complete/limits.h"
#include "complete/value_form.h"
#include "store/format/property_tags.h"
#include "store/ltp/property_value.h"
#include "store/messaging/failures.h"
#include "store/ndb/data_tree_reader.h"
#include "store/ndb/data_tree_writer.h"

namespace velmora::complete {
namespace {

using messaging::PropertyBag;

/// Longer values go from store to store piece by piece. No row of a table shows one of that length. Of bodies and the
/// contents of attachments, all that a heap does not hold: most of a store is theirs.
constexpr std::uint64_t MostInMemory(PropTag tag) {
  const bool isLong =
      tag == tag::kAttachDataBinary || tag == tag::kBody || tag == tag::kHtml || tag == tag::kRtfCompressed;
  return isLong ? ltp::PropertyContextWriter::kHeapValueLimit : std::uint64_t{256} << 10;
}
constexpr std::size_t kPiece = std::size_t{64} << 10;

}  // namespace

bool IsStoredAlike(const LiveStore& source, const ndb::NdbWriter& target) {
  return source.Format() == target.Format() && source.Found().Found().encoding == target.Encoding() &&
         target.Encoding() != CryptMethod::kCyclic;  // whose key is the id of the block
}

void AddHurt(const LiveStore& source, MissingPart part, Missing& missing) {
  const std::vector<Bid> hurt = source.TakeHurt();
  if (hurt.empty()) return;
  const std::optional<engine::FoundBlock> block = source.Found().Found().Find(hurt.front());
  part.cause = {FailureKind::kCorrupt, {ObjectKind::kBlock, hurt.front()}, {}, "the checksum of the block is wrong"};
  if (block) part.cause.offset = block->offset;
  missing.push_back(std::move(part));
}

void AddFault(const ndb::Faults& faults, std::size_t before, MissingPart part, Missing& missing) {
  if (faults.Count() == before) return;
  if (faults.List().size() > before) part.cause = faults.List()[before];
  missing.push_back(std::move(part));
}

Failure CauseOfLoss() {
  try {
    throw;
  } catch (const FailureError& failure) {
    return failure.Cause();
  } catch (const output::OutputFailure& failure) {
    if (output::IsStoreFailure(failure)) throw;
    return failure.Cause() ? *failure.Cause() : Failure{FailureKind::kNotSupported, {}, std::nullopt, failure.what()};
  }
}

void PropertyCopier::TakeBytes(std::uint64_t count) {
  if (tools_.allowance.TakeBytes(count)) return;
  Raise(FailureKind::kNotSupported, ObjectKind::kDataTree, count, "the store claims more than it can hold");
}

PropTag PropertyCopier::TargetTag(PropTag tag) {
  tag = TargetForm(tag);
  if (IdOf(tag) < name_map::kFirstNamedId) return tag;
  const messaging::AnyPropertyName* name = tools_.names.Of(IdOf(tag));
  if (name == nullptr) RaiseCorrupt({ObjectKind::kProperty, tag}, IdOf(tag), "the store has no name for it");
  return MakeTag(tools_.target.NamedId(*name), TypeOf(tag));
}

void PropertyCopier::CheckIsFirst(PropTag tag, PropTag targetTag, const PropertyBag& out) {
  if (out.TagOf(targetTag)) RaiseCorrupt({ObjectKind::kProperty, tag}, IdOf(tag), "another property has its name");
}

void PropertyCopier::Put(PropTag tag, PropTag targetTag, std::vector<std::byte>& value, const text::CodePage& page,
                         PropertyBag& out) {
  if (!BringIntoForm(tag, value, page, tools_.references, tools_.account.undefinedBytes)) return;
  if (value.size() > MostInMemory(targetTag)) {
    const auto write = [&] { return tools_.target.Ndb().WriteData(value); };
    tools_.target.PutTree(out, targetTag, messaging::AsOperation(write));
  } else {
    out.PutBytes(targetTag, value);
  }
}

std::size_t PropertyCopier::CopyStored(const ndb::DataTreeReader& from, ndb::DataTreeWriter& to) {
  if (!IsStoredAlike(tools_.source, tools_.target.Ndb())) return 0;
  for (std::size_t i = 0; i < from.BlockCount(); ++i) {
    const auto data = tools_.source.FindStored(from.BidOf(i), block_);
    const bool isFull = data && data->bytes.size() == kMaxBlockData;
    const bool isLast = data && to.Size() + data->bytes.size() == from.Size();
    if (!isFull && !isLast) return i;
    messaging::AsOperation([&] { to.AppendStored(*data); });
    if (!isFull) return i + 1;
  }
  return from.BlockCount();
}

ndb::DataTree PropertyCopier::CopyTree(ndb::DataTreeReader from) {
  TakeBytes(from.Size());
  ndb::DataTreeWriter to(tools_.target.Ndb());
  const bool isWhole = CopyStored(from, to) == from.BlockCount() && to.Size() == from.Size();
  if (!isWhole) {
    piece_.resize(kPiece);
    while (const std::size_t count = from.ReadAt(to.Size(), piece_)) {
      messaging::AsOperation([&] { to.Append(std::span(piece_).first(count)); });
    }
  }
  tools_.account.bytes += to.Size();
  return messaging::AsOperation([&] { return to.Finish(); });
}

void PropertyCopier::CopyOne(ltp::PropertyContext& from, PropTag tag, PropTag targetTag, const text::CodePage& page,
                             PropertyBag& out) {
  auto tree = from.OpenTree(tag);
  const std::uint64_t size = tree ? tree->Size() : from.SizeOf(tag).value_or(0);
  if (size > MostInMemory(targetTag) && IsCopiedAsItIs(tag, size)) {
    ltp::CheckSize(targetTag, size);
    if (!tree) RaiseCorrupt({ObjectKind::kProperty, tag}, size, "the value lies in no sub-node");
    const ndb::DataTree copied = CopyTree(std::move(*tree));
    if (IsCopiedAsItIs(tag, copied.size)) return tools_.target.PutTree(out, targetTag, copied);
    // There was less of it than its tree says, and what there is does not stand as it is.
    tools_.target.Ndb().Discard({copied.bid});
    tools_.account.bytes -= copied.size;
    tree = from.OpenTree(tag);
  }
  if (!tools_.allowance.TakeText(size)) {
    Raise(FailureKind::kNotSupported, {ObjectKind::kProperty, tag}, size, "the store claims more than it can hold");
  }
  Bytes ofTree;
  if (tree) {
    ofTree = tree->ReadAll(kMostConverted);
  } else if (!from.Read(tag, kMostConverted, heapValue_)) {
    heapValue_.clear();
  }
  Bytes& value = tree ? ofTree : heapValue_;
  if (TypeOf(tag) == PropType::kString && size % 2 == 0) value.resize(value.size() / 2 * 2);  // half a unit is lost
  tools_.account.bytes += value.size();
  Put(tag, targetTag, value, page, out);
}

PropertyBag PropertyCopier::Copy(ltp::PropertyContext& from, Owner owner, const text::CodePage& page,
                                 const ndb::Faults& faults, const PropertyBag& defaults, Missing& missing) {
  steps_.clear();
  for (const PropertyRecord& record : from.Records()) {
    const PropTag tag = record.Tag();
    if (IsLeftOut(IdOf(tag), owner) || tag == tag::kAttachDataObject) continue;
    try {
      steps_.push_back({TargetTag(tag), &record});
    } catch (const std::exception&) {
      missing.push_back({.kind = MissingPart::Kind::kProperty, .tag = tag, .cause = CauseOfLoss()});
    }
  }
  for (const ltp::PropertyView& property : defaults.Views()) {
    if (from.Find(IdOf(property.tag)) == nullptr) steps_.push_back({property.tag, nullptr});
  }
  // In the order of the new store's ids, so that a copy of the copy is the same to the byte.
  if (!std::ranges::is_sorted(steps_, {}, &Step::targetTag)) std::ranges::stable_sort(steps_, {}, &Step::targetTag);

  PropertyBag out;
  for (const Step& step : steps_) {
    if (step.record == nullptr) {
      out.PutBytes(step.targetTag, defaults.Value(step.targetTag));
      continue;
    }
    const PropTag tag = step.record->Tag();
    const std::size_t faultsBefore = faults.Count();
    try {
      CheckIsFirst(tag, step.targetTag, out);
      CopyOne(from, tag, step.targetTag, page, out);
    } catch (const std::exception&) {
      missing.push_back({.kind = MissingPart::Kind::kProperty, .tag = tag, .cause = CauseOfLoss()});
      static_cast<void>(tools_.source.TakeHurt());
      continue;
    }
    AddHurt(tools_.source, {.kind = MissingPart::Kind::kBytes, .tag = tag}, missing);
    AddFault(faults, faultsBefore, {.kind = MissingPart::Kind::kBytes, .tag = tag}, missing);
  }
  return out;
}

}  // namespace velmora::complete
