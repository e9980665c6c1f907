// One item of one kind under conversion, with all that a converter may use of a run.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "forged_heap.h"
#include "output/items/item_converters.h"
#include "output/items/value_readers.h"
#include "recording_mail.h"

namespace velmora::items::testing {

/// The sub-nodes of the message: one text, whatever is asked for; the question is kept.
class OneSubNode : public recovery::SubNodeValues {
 public:
  text::Text answer;
  std::vector<std::pair<PropType, std::uint32_t>> asked;

  text::Text ReadSubnodeString(PropType type, std::uint32_t value) override {
    asked.emplace_back(type, value);
    return answer;
  }
};

class ItemFixture : public ::testing::Test {
 protected:
  ItemFixture() {
    run.observer = &listPane;
    scope.storeKind = engine::StoreKind::kPst;
    scope.wideFormat = true;
    scope.codePage = &text::CodePage::Lossless();
    scope.namedProps = &namedProps;
    scope.run = &run;
    scope.subNodes = &subNodes;
    scope.mail = &mail;
  }

  /// One record to the converter of that kind. The block has room for every inline value below 0x8000.
  void Apply(recovery::ItemKind kind, std::uint16_t id, PropType type, std::uint32_t value) {
    ApplyIn(heap.Block(heap.NextOffset() + 0x1000), kind, id, type, value);
  }
  void ApplyIn(const recovery::MessageBlock& block, recovery::ItemKind kind, std::uint16_t id, PropType type,
               std::uint32_t value) {
    converters[static_cast<std::size_t>(kind)]->ApplyProperty(scope, block, {id, type, value}, item);
  }
  void ApplyText(recovery::ItemKind kind, std::uint16_t id, text::TextView text) {
    Apply(kind, id, PropType::kString, heap.Add(Utf16(text)));
  }
  void ApplyTime(recovery::ItemKind kind, std::uint16_t id, std::uint64_t fileTime) {
    Apply(kind, id, PropType::kTime, heap.Add(Number(fileTime, 8)));
  }

  /// What was logged since the last call.
  Log Taken() { return std::exchange(log, {}); }

  Log log;
  std::shared_ptr<RecordingMail> object = std::make_shared<RecordingMail>(log);
  output::Ref<output::RDOMail> item = object;
  RowObserver listPane{log};
  engine::RunContext run;
  recovery::NamedPropMap namedProps;
  recovery::MailState mail;
  OneSubNode subNodes;
  recovery::ConversionScope scope;
  recovery::ItemConverters converters = MakeItemConverters();
  ForgedHeap heap;
};

/// 1 January 2020, 0:00, as a file time; its OLE date is 43831.
inline constexpr std::uint64_t kNewYear2020 = 132223104000000000;

}  // namespace velmora::items::testing
