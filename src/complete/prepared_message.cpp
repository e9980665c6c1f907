#include "complete/prepared_message.h"

#include "complete/message_copier.h"
#include "complete/tree_copier.h"
#include "store/messaging/failures.h"
#include "store/ndb/data_tree_writer.h"

namespace velmora::complete {
namespace {

/// What the messages of a batch may hold in memory, in bytes of the source: twice of what is read ahead for them.
constexpr std::uint64_t kMostHeld = 2 * engine::BlocksAhead::kMostBytes;

/// Bytes that most batches do not need twice.
constexpr std::size_t kFirstMemory = std::size_t{1} << 20;

/// Lists what the new store is to get.
class PreparedTarget : public CopyTarget {
 public:
  PreparedTarget(const Preparation& preparation, const LiveStore& source, engine::ContentAllowance& allowance,
                 PreparedMessage& out)
      : preparation_(preparation), source_(source), allowance_(allowance), out_(out) {}

  std::optional<std::uint16_t> NamedId(std::uint16_t id) override {
    const auto given = preparation_.names.Of(id);
    if (!given) throw NotAhead();
    return given;
  }

  text::FileTime Now() const override { return preparation_.target.Now(); }

  void PutLong(messaging::PropertyBag& out, PropTag tag, std::span<const std::byte> value) override {
    Add(out, tag).bytes.assign(value.begin(), value.end());
  }

  std::uint64_t PutTree(messaging::PropertyBag& out, PropTag tag, ndb::DataTreeReader from) override {
    const std::uint64_t size = from.Size();
    PreparedMessage::LongValue& value = Add(out, tag);
    if (preparation_.areStoredAlike) {
      std::uint64_t taken = 0;
      value.blocks.reserve(from.BlockCount());
      TakeStored(source_, from, buffer_, [&](const StoredData& data) {
        value.blocks.push_back(data);
        taken += data.bytes.size();
      });
      if (value.blocks.size() != from.BlockCount() || taken != size) throw NotAhead();
    } else {
      if (!allowance_.TakeHeld(size)) throw NotAhead();
      value.bytes = from.ReadAll(size);
    }
    return size;
  }

  messaging::StoreWriter& Store() override { throw NotAhead(); }

 private:
  PreparedMessage::LongValue& Add(messaging::PropertyBag& out, PropTag tag) {
    auto value = std::make_shared<messaging::StoredValue>();
    out.PutStored(tag, value);
    return out_.longValues.emplace_back(std::move(value));
  }

  const Preparation& preparation_;
  const LiveStore& source_;
  engine::ContentAllowance& allowance_;
  PreparedMessage& out_;
  std::vector<std::byte> buffer_;
};

std::optional<PreparedMessage> PrepareOne(const Preparation& preparation, const engine::BlocksAhead& ahead,
                                          const ndb::NodeTrees& trees, std::uint64_t& mayHold,
                                          std::pmr::memory_resource& memory) {
  PreparedMessage prepared;
  const LiveStore source(preparation.source, ahead);
  engine::ContentAllowance allowance = preparation.allowance.OfOneNode(mayHold);
  PreparedTarget target(preparation, source, allowance, prepared);
  CopyTools tools{source, preparation.pages, preparation.references, target, allowance, prepared.sums, &memory};
  try {
    CopiedMessage copied = MessageCopier(tools).Copy(trees);
    if (!copied.missing.empty()) return std::nullopt;
    prepared.message = std::move(copied.message);
  } catch (const NotAhead&) {
    return std::nullopt;
  } catch (const FailureError&) {
    return std::nullopt;
  }
  prepared.taken = allowance.TakenOfOneNode();
  prepared.bytesRead = source.BytesRead();
  mayHold -= prepared.taken.held;
  return prepared;
}

}  // namespace

void PreparedMessage::WriteLongValues(ndb::NdbWriter& target) {
  messaging::AsOperation([&] {
    for (const LongValue& longValue : longValues) {
      ndb::DataTreeWriter tree(target);
      for (const StoredData& block : longValue.blocks) tree.AppendStored(block);
      tree.Append(longValue.bytes);
      const ndb::DataTree written = tree.Finish();
      longValue.value->Fill(target, {{written.bid, {}}, written.size});
    }
  });
}

PreparedMessages::PreparedMessages(const Preparation& preparation, const engine::BlocksAhead& ahead,
                                   std::span<const ndb::NodeTrees> messages)
    : memory_(kFirstMemory) {
  messages_.reserve(messages.size());
  std::uint64_t mayHold = kMostHeld;
  for (const ndb::NodeTrees& trees : messages) {
    messages_.push_back(PrepareOne(preparation, ahead, trees, mayHold, memory_));
  }
}

}  // namespace velmora::complete
