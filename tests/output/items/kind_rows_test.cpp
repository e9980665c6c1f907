// Every row of every kind's table, and nothing beside them.
#include <gmock/gmock.h>

#include <algorithm>
#include <span>

#include "expected_rows.h"
#include "item_fixture.h"

namespace velmora::items {
namespace {

using namespace testing;
using recovery::ItemKind;
using ::testing::ElementsAre;

struct Kind {
  const char* name;
  ItemKind kind;
  std::span<const ExpectedRow> rows;
};

const Kind kKinds[] = {
    {"Contact", ItemKind::kContact, kExpectedContact},
    {"Task", ItemKind::kTask, kExpectedTask},
    {"Appointment", ItemKind::kAppointment, kExpectedAppointment},
    {"Meeting", ItemKind::kMeeting, kExpectedMeeting},
    {"Journal", ItemKind::kJournal, kExpectedJournal},
    {"Note", ItemKind::kNote, kExpectedNote},
};

struct KindRow {
  Kind kind;
  ExpectedRow row;
};

std::vector<KindRow> AllRows() {
  std::vector<KindRow> all;
  for (const Kind& kind : kKinds) {
    for (const ExpectedRow& row : kind.rows) all.push_back({kind, row});
  }
  return all;
}

class EveryRow : public ItemFixture, public ::testing::WithParamInterface<KindRow> {};

TEST_P(EveryRow, WritesItsField) {
  scope.storeKind = engine::StoreKind::kOst;
  const auto& [kind, row] = GetParam();
  const std::string operation = row.operation;
  switch (row.sort) {
    case 'T':
    case 'O':
      ApplyText(kind.kind, row.id, u"some text");
      EXPECT_THAT(log, ElementsAre(operation + "='some text'"));
      break;
    case 'D':
      ApplyTime(kind.kind, row.id, kNewYear2020);
      EXPECT_THAT(log, ElementsAre(operation + "=date 43831"));
      break;
    case 'F':
      Apply(kind.kind, row.id, PropType::kBoolean, 1);
      Apply(kind.kind, row.id, PropType::kBoolean, 0);
      EXPECT_THAT(log, ElementsAre(operation + "=true", operation + "=false"));
      break;
    case 'N':
      Apply(kind.kind, row.id, PropType::kInteger32, 0x1234);
      EXPECT_THAT(log, ElementsAre(operation + "=4660"));
      break;
    case 'S':
      Apply(kind.kind, row.id, PropType::kInteger16, 2);
      EXPECT_THAT(log, ElementsAre(operation + "=2"));
      break;
    default:
      FAIL() << "no such sort: " << row.sort;
  }
}

TEST_P(EveryRow, IsHeldBackWhereReadsAnswerEmptyIfItIsAText) {
  scope.storeKind = engine::StoreKind::kOst;
  object->AnswerEveryReadWithWrittenAndEmpty();
  const auto& [kind, row] = GetParam();
  const bool isText = row.sort == 'T' || row.sort == 'O';
  if (isText) ApplyText(kind.kind, row.id, u"some text");
  if (row.sort == 'D') ApplyTime(kind.kind, row.id, kNewYear2020);
  if (row.sort == 'F') Apply(kind.kind, row.id, PropType::kBoolean, 1);
  if (row.sort == 'N') Apply(kind.kind, row.id, PropType::kInteger32, 1);
  if (row.sort == 'S') Apply(kind.kind, row.id, PropType::kInteger16, 1);
  EXPECT_EQ(log.size(), isText ? 0u : 1u);
}

INSTANTIATE_TEST_SUITE_P(Tables, EveryRow, ::testing::ValuesIn(AllRows()), [](const auto& test) {
  return std::string(test.param.kind.name) + "_" + std::to_string(test.param.row.id) + "_" + test.param.row.operation +
         "_" + test.param.row.sort;
});

class EveryId : public ItemFixture, public ::testing::WithParamInterface<Kind> {
 protected:
  /// Which operation a record of that type and id is expected to call; null where the record is dropped.
  const char* Expected(std::uint16_t id, PropType type) const {
    const bool isOst = scope.storeKind == engine::StoreKind::kOst;
    const std::string_view sorts = type == PropType::kBoolean     ? "F"
                                   : type == PropType::kInteger32 ? "N"
                                   : type == PropType::kInteger16 ? "S"
                                   : isOst                        ? "TDO"
                                                                  : "TD";
    const auto& rows = GetParam().rows;
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const ExpectedRow& candidate) {
      return candidate.id == id && sorts.find(candidate.sort) != sorts.npos;
    });
    return row == rows.end() ? nullptr : row->operation;
  }

  void ExpectRowsAndNothingElse() {
    const std::uint32_t text = heap.Add(Utf16(u"some text"));
    const std::uint32_t time = heap.Add(Number(kNewYear2020, 8));
    const recovery::MessageBlock block = heap.Block(0x100);
    for (const auto& [type, value] : {std::pair{PropType::kString, text},
                                      {PropType::kTime, time},
                                      {PropType::kBoolean, 1u},
                                      {PropType::kInteger32, 1u},
                                      {PropType::kInteger16, 1u}}) {
      for (std::uint32_t number = 0; number <= 0xFFFF; ++number) {
        const auto id = static_cast<std::uint16_t>(number);
        ApplyIn(block, GetParam().kind, id, type, value);
        const char* expected = Expected(id, type);
        if (expected == nullptr && log.empty()) continue;
        ASSERT_EQ(log.size(), expected == nullptr ? 0u : 1u) << "id " << id << " type " << static_cast<int>(type);
        ASSERT_EQ(log.front().substr(0, log.front().find('=')), expected)
            << "id " << id << " type " << static_cast<int>(type);
        log.clear();
        object->Reset();
      }
    }
  }
};

TEST_P(EveryId, OfAnOstWritesWhatItsRowSaysAndElseNothing) {
  scope.storeKind = engine::StoreKind::kOst;
  ExpectRowsAndNothingElse();
}

TEST_P(EveryId, OfAPstWritesWhatItsRowSaysAndElseNothing) {
  scope.storeKind = engine::StoreKind::kPst;
  ExpectRowsAndNothingElse();
}

INSTANTIATE_TEST_SUITE_P(Kinds, EveryId, ::testing::ValuesIn(kKinds),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace velmora::items
