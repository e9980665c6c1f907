// A source made block by block, and an output that writes down what recovery does with it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "engine/scanned_store.h"
#include "output/trace/trace_library.h"
#include "platform/memory_file.h"
#include "recovery/heap_block.h"
#include "recovery/steps.h"

namespace velmora::recovery {

/// The trace, line by line; a line that begins with `failing` raises in place of the operation.
class TraceLines : public output::TraceSink {
 public:
  void WriteLine(std::string_view line) override {
    if (!failing.empty() && line.starts_with(failing)) throw output::OutputFailure(code);
    lines.emplace_back(line);
  }
  std::vector<std::string> lines;
  std::string failing;
  output::ResultCode code = output::ResultCode::E_FAIL;
};

/// Writes down the records that it is given and may fail on one.
class RecordingConverter : public ItemConverter {
 public:
  RecordingConverter(ItemKind kind, std::vector<std::pair<ItemKind, std::uint16_t>>& seen,
                     std::function<void(ConversionScope&, const PropertyRecord&)>& hook)
      : kind_(kind), seen_(seen), hook_(hook) {}
  void ApplyProperty(ConversionScope& scope, const MessageBlock&, const PropertyRecord& record,
                     const output::Ref<output::RDOMail>&) override {
    seen_.emplace_back(kind_, record.wPropId);
    if (hook_) hook_(scope, record);
  }
  std::optional<output::Field> FieldOf(const ConversionScope&, const PropertyRecord& record) const override {
    switch (record.wPropId) {
      case 0x0042:
        return output::Field::SenderName;
      case 0x0E04:
        return output::Field::To;
      case 0x0E06:
        return output::Field::ReceivedTime;
      default:
        return std::nullopt;
    }
  }

 private:
  ItemKind kind_;
  std::vector<std::pair<ItemKind, std::uint16_t>>& seen_;
  std::function<void(ConversionScope&, const PropertyRecord&)>& hook_;
};

class RecoveryTest : public testing::Test, public engine::RunObserver, public engine::RunLog {
 protected:
  static constexpr std::uint32_t kTop = 0x8022;    ///< "Top of Personal Folders"
  static constexpr std::uint32_t kInbox = 0x8042;  ///< below it

  RecoveryTest() : library_(trace_) {
    UseFormat(FORMAT_UNICODE, engine::StoreKind::kPst);
    run_.observer = this;
    for (std::size_t kind = 0; kind < kItemKinds; ++kind) {
      converters_[kind] = std::make_unique<RecordingConverter>(static_cast<ItemKind>(kind), records_, hook_);
    }
    state_.session = library_.CreateRDOSession();
    state_.targetStore = state_.session->Stores()->AddPSTStore(u"/out.pst", u"out");
    state_.convertedName = u"out";
    state_.converters = &converters_;
    AddDefaultFolder(u"Contacts", output::DefaultFolder::kContacts);
    AddDefaultFolder(u"Journal", output::DefaultFolder::kJournal);
    AddDefaultFolder(u"Tasks", output::DefaultFolder::kTasks);
    AddDefaultFolder(u"Notes", output::DefaultFolder::kNotes);
    AddDefaultFolder(u"Calendar", output::DefaultFolder::kCalendar);
    trace_.lines.clear();
  }

  void OnEvent(const engine::Event& event) override {
    EXPECT_FALSE(std::holds_alternative<engine::Notice>(event)) << "recovery has nothing that ends a run";
    events_.push_back(event);
    if (onEvent_) onEvent_(event);
  }
  void Write(text::TextView text) override { log_ += text; }

  void UseFormat(FormatId format, engine::StoreKind kind) {
    engine_.layout = LayoutOf(format);
    engine_.storeKind = kind;
  }

  /// Puts a block into the source and into the index, as it stands.
  std::uint32_t AddBlock(std::uint32_t bid, const Bytes& stored) {
    source_.resize((source_.size() + 63) / 64 * 64);
    index_.push_back({bid, static_cast<std::uint32_t>(stored.size()), source_.size()});
    Append(source_, stored);
    return bid;
  }

  /// Where AddBlock put a block, in digits.
  std::string OffsetOf(std::uint32_t bid) const {
    return std::to_string(std::ranges::find(index_, bid, &engine::BlockRecord::bid)->offset);
  }

  static Bytes Packed(const Bytes& bytes) {
    uLongf size = compressBound(bytes.size());
    Bytes packed(size);
    compress(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()),
             bytes.size());
    packed.resize(size);
    return packed;
  }

  void AddNode(std::uint32_t nid, std::uint32_t bidData, std::uint32_t bidSub, std::uint32_t nidParent) {
    engine_.nodes.Insert({nid, bidData, bidSub, nidParent});
    ++engine_.nodeCount;
  }

  std::uint32_t Width() const { return engine_.layout.wideFormat ? 8 : 4; }
  void AppendId(Bytes& bytes, std::uint32_t id) const {
    if (Width() == 8) return AppendNumber<std::uint64_t>(bytes, id);
    AppendNumber(bytes, id);
  }

  using SubNode = std::tuple<std::uint32_t, std::uint32_t, std::uint32_t>;  ///< nid, bidData, bidSub
  Bytes SubNodeBlock(const std::vector<SubNode>& entries) const {
    Bytes block;
    AppendNumber<std::uint16_t>(block, 0x0002);
    AppendNumber(block, static_cast<std::uint16_t>(entries.size()));
    block.resize(Width());
    for (const auto& [nid, bidData, bidSub] : entries) {
      AppendId(block, nid);
      AppendId(block, bidData);
      AppendId(block, bidSub);
    }
    return block;
  }

  /// A list of blocks with the sum of their sizes, or with `total`. Lists have ids of their own: NewListBid.
  Bytes ChainBlock(const std::vector<std::uint32_t>& pieces, std::optional<std::uint32_t> total = {},
                   std::uint16_t signature = 0x0101) const {
    std::uint32_t sum = 0;
    for (const std::uint32_t bid : pieces) {
      const auto piece = std::ranges::find(index_, bid, &engine::BlockRecord::bid);
      if (piece != index_.end()) sum += piece->size;
    }
    Bytes block;
    AppendNumber<std::uint16_t>(block, signature);
    AppendNumber(block, static_cast<std::uint16_t>(pieces.size()));
    AppendNumber<std::uint32_t>(block, total.value_or(sum));
    for (const std::uint32_t bid : pieces) AppendId(block, bid);
    return block;
  }

  RecordSpec TextRecord(std::uint16_t id, std::u16string_view text) const {
    if (engine_.layout.wideFormat) return Wide(id, text);
    return Narrow(id, text::ToUtf8(text));
  }

  std::uint32_t NewBid() { return nextBid_ += 4; }
  std::uint32_t NewListBid() { return NewBid() | 2; }

  /// A folder with its node. An empty class leaves the property out.
  void AddFolder(std::uint32_t nid, std::uint32_t nidParent, std::u16string_view name,
                 std::u16string_view containerClass = {}) {
    std::vector<RecordSpec> records = {TextRecord(0x3001, name)};
    if (!containerClass.empty()) records.push_back(TextRecord(0x3613, containerClass));
    AddNode(nid, AddBlock(NewBid(), HeapBlock(records)), 0, nidParent);
  }

  /// The first node is one that nothing comes of, since the first of the list is never taken out of it.
  void AddTopAndInbox() {
    AddNode(0x21, 0, 0, 0x22);
    AddFolder(kTop, 0x122, u"Top of Personal Folders");
    AddFolder(kInbox, kTop, u"Inbox", u"IPF.Note");
  }

  /// A message with its node; returns its block's id.
  std::uint32_t AddMessage(std::vector<RecordSpec> records, std::uint32_t bidSub = 0, std::uint32_t folder = kInbox,
                           std::uint32_t nid = 0) {
    const std::uint32_t bid = AddBlock(NewBid(), HeapBlock(records));
    AddNode(nid == 0 ? nextMessage_ += 0x20 : nid, bid, bidSub, folder);
    return bid;
  }

  void Settle() {
    engine_.source.Open(std::make_unique<platform::MemoryFile>(source_));
    std::vector<engine::PlacedBlock> blocks;
    for (const engine::BlockRecord& record : index_) blocks.emplace_back(record.bid, record.size, record.offset);
    engine_.index = {};
    engine_.index.Add(blocks);
    engine_.index.Settle(engine_.source, engine_.layout, run_);
    engine_.blockRecordCount = static_cast<std::uint32_t>(index_.size());
  }

  void Recover() {
    Settle();
    RecoverFolders(state_, engine_, run_);
    RecoverOrphans(state_, engine_, run_);
  }

  /// The trace's lines of one operation, or all; folders of AddFolder left out unless asked for.
  std::vector<std::string> Trace(std::string_view operation = {}) const {
    std::vector<std::string> chosen;
    for (const std::string& line : trace_.lines) {
      const bool isFolder = line.starts_with(R"({"op":"AddFolder")");
      const bool wanted =
          operation.empty() ? !isFolder : line.starts_with(std::string(R"({"op":")").append(operation) + "\"");
      if (wanted) chosen.push_back(line);
    }
    return chosen;
  }

  template <class T>
  std::vector<std::uint32_t> Numbers() const {
    std::vector<std::uint32_t> numbers;
    for (const engine::Event& event : events_) {
      if (const auto* said = std::get_if<T>(&event)) numbers.push_back(NumberOf(*said));
    }
    return numbers;
  }
  static std::uint32_t NumberOf(const engine::StageBegun& begun) { return begun.stage; }
  static std::uint32_t NumberOf(const engine::Progress& progress) { return progress.percentage; }
  static std::uint32_t NumberOf(const engine::FolderReached& reached) { return reached.nid; }
  static std::uint32_t NumberOf(const engine::AttachmentsListed&) { return 0; }

  engine::ScannedStore engine_;
  engine::RunContext run_;
  std::vector<engine::Event> events_;
  std::function<void(const engine::Event&)> onEvent_;
  text::Text log_;
  TraceLines trace_;
  output::TraceLibrary library_;
  std::vector<std::pair<ItemKind, std::uint16_t>> records_;
  std::function<void(ConversionScope&, const PropertyRecord&)> hook_;
  ItemConverters converters_;
  RecoveryState state_;

 private:
  void AddDefaultFolder(text::TextView name, output::DefaultFolder kind) {
    const auto folder = state_.targetStore->IPMRootFolder()->Folders()->Add(name, {});
    folder->QueryFolder2()->SetAsDefaultFolder(kind);
  }

  Bytes source_ = Bytes(64);
  std::vector<engine::BlockRecord> index_;
  std::uint32_t nextBid_ = 0x1000;
  std::uint32_t nextMessage_ = 0x200004;
};

}  // namespace velmora::recovery
