#include "workflow/panes/row_value.h"

#include "workflow/panes/store_fixture.h"

namespace velmora::workflow {
namespace {

using output::Field;
using output::FieldValue;
using output::OleDate;

constexpr OleDate kNoDate{949998.0};         // 1 January 4501
constexpr OleDate kAfternoon{40667.604247};  // 4 May 2011, 14:30:07

class RowValueTest : public StoreFixture {
 protected:
  /// The value of one row of an item that has these fields.
  std::optional<QString> Value(RowForm form, Field field, const FieldValues& fields,
                               text::TextView messageClass = u"IPM.Task") {
    const auto item = AddItem(folder_, messageClass, fields);
    return ValueOf(*item, {u"Label", field, form});
  }

  output::Ref<output::RDOFolder> folder_ = AddFolder(u"Tasks", u"IPF.Task");
};

TEST_F(RowValueTest, TextMakesARowUnlessItIsEmpty) {
  EXPECT_EQ(Value(RowForm::Text, Field::Owner, {{Field::Owner, u"Ann \u4f60"}}), QStringLiteral("Ann \u4f60"));
  EXPECT_EQ(Value(RowForm::Text, Field::Owner, {{Field::Owner, u""}}), std::nullopt);
  EXPECT_EQ(Value(RowForm::Text, Field::Owner, {}), std::nullopt);
}

TEST_F(RowValueTest, AFlagThatIsSetSaysYes) {
  EXPECT_EQ(Value(RowForm::Flag, Field::Complete, {{Field::Complete, true}}), QStringLiteral("Yes"));
  EXPECT_EQ(Value(RowForm::Flag, Field::Complete, {{Field::Complete, false}}), std::nullopt);
}

TEST_F(RowValueTest, ANumberMakesARowUnlessItIsZero) {
  EXPECT_EQ(Value(RowForm::Number, Field::FlagStatus, {{Field::FlagStatus, -5}}), QStringLiteral("-5"));
  EXPECT_EQ(Value(RowForm::Number, Field::FlagStatus, {{Field::FlagStatus, 0}}), std::nullopt);
}

TEST_F(RowValueTest, ADateIsMonthDayAndYearWithoutLeadingZeros) {
  EXPECT_EQ(Value(RowForm::Date, Field::StartDate, {{Field::StartDate, kAfternoon}}), QStringLiteral("5/4/2011"));
  EXPECT_EQ(Value(RowForm::Date, Field::StartDate, {{Field::StartDate, OleDate{-1.25}}}), QStringLiteral("12/29/1899"));
}

TEST_F(RowValueTest, ATimeIsHourMinuteSecondAndMillisecond) {
  EXPECT_EQ(Value(RowForm::Time, Field::ReceivedTime, {{Field::ReceivedTime, kAfternoon}}),
            QStringLiteral("14:30:7:0"));
  EXPECT_EQ(Value(RowForm::Time, Field::ReceivedTime, {{Field::ReceivedTime, OleDate{-1.25}}}),
            QStringLiteral("6:0:0:0"));
}

TEST_F(RowValueTest, TheDateThatStandsForNoneMakesNoRow) {
  EXPECT_EQ(Value(RowForm::Date, Field::StartDate, {{Field::StartDate, kNoDate}}), std::nullopt);
  EXPECT_EQ(Value(RowForm::Time, Field::ReceivedTime, {{Field::ReceivedTime, kNoDate}}), std::nullopt);
}

TEST_F(RowValueTest, ADateOfThatDayIsNoneAndATimeOfItIsOne) {
  const OleDate noon{949998.5};
  EXPECT_EQ(Value(RowForm::Date, Field::StartDate, {{Field::StartDate, noon}}), std::nullopt);
  EXPECT_EQ(Value(RowForm::Time, Field::ReceivedTime, {{Field::ReceivedTime, noon}}), QStringLiteral("12:0:0:0"));
}

TEST_F(RowValueTest, ADateThatIsNotThereMakesNoRow) {
  EXPECT_EQ(Value(RowForm::Date, Field::StartDate, {}), std::nullopt);
  EXPECT_EQ(Value(RowForm::Date, Field::StartDate, {{Field::StartDate, OleDate{0.0}}}), QStringLiteral("12/30/1899"))
      << "one that is there and 0 does";
}

TEST_F(RowValueTest, SensitivityCannotShowNormal) {
  const auto value = [this](std::int32_t number) {
    return Value(RowForm::Sensitivity, Field::Sensitivity, {{Field::Sensitivity, number}});
  };
  EXPECT_EQ(value(0), std::nullopt);
  EXPECT_EQ(value(1), QStringLiteral("Personal"));
  EXPECT_EQ(value(2), QStringLiteral("Private"));
  EXPECT_EQ(value(3), QStringLiteral("Confidential"));
}

TEST_F(RowValueTest, ImportanceCannotShowLow) {
  const auto value = [this](std::int32_t number) {
    return Value(RowForm::Importance, Field::Importance, {{Field::Importance, number}});
  };
  EXPECT_EQ(value(0), std::nullopt);
  EXPECT_EQ(value(1), QStringLiteral("Normal"));
  EXPECT_EQ(value(2), QStringLiteral("High"));
}

TEST_F(RowValueTest, ATaskThatIsNotStartedHasNoStatus) {
  const auto value = [this](std::int32_t number) {
    return Value(RowForm::TaskStatus, Field::Status, {{Field::Status, number}});
  };
  EXPECT_EQ(value(0), std::nullopt);
  EXPECT_EQ(value(1), QStringLiteral("Task In Progress"));
  EXPECT_EQ(value(2), QStringLiteral("Task Complete"));
  EXPECT_EQ(value(3), QStringLiteral("Task Waiting"));
  EXPECT_EQ(value(4), QStringLiteral("Task Deferred"));
}

TEST_F(RowValueTest, AValueBeyondTheWordsLeavesTheRowEmpty) {
  EXPECT_EQ(Value(RowForm::Sensitivity, Field::Sensitivity, {{Field::Sensitivity, 4}}), QStringLiteral(""));
  EXPECT_EQ(Value(RowForm::Importance, Field::Importance, {{Field::Importance, -1}}), QStringLiteral(""));
  EXPECT_EQ(Value(RowForm::TaskStatus, Field::Status, {{Field::Status, 5}}), QStringLiteral(""));
}

TEST_F(RowValueTest, TheColourRowTestsTheColourAndTellsTheImportance) {
  const auto value = [this](std::int32_t colour, std::int32_t importance) {
    return Value(RowForm::NoteColour, Field::Color, {{Field::Color, colour}, {Field::Importance, importance}},
                 u"IPM.StickyNote");
  };
  EXPECT_EQ(value(0, 3), std::nullopt) << "no colour, no row";
  EXPECT_EQ(value(3, 0), QStringLiteral("Blue"));
  EXPECT_EQ(value(3, 1), QStringLiteral("Green"));
  EXPECT_EQ(value(3, 2), QStringLiteral("Pink"));
  EXPECT_EQ(value(1, 3), QStringLiteral("Yellow"));
  EXPECT_EQ(value(1, 4), QStringLiteral("White"));
  EXPECT_EQ(value(1, 5), QStringLiteral(""));
}

TEST_F(RowValueTest, ANoteOfColourZeroHasNoColourWhateverItsImportance) {
  for (const std::int32_t importance : {0, 1, 2, 3, 4}) {
    EXPECT_EQ(Value(RowForm::NoteColour, Field::Color, {{Field::Color, 0}, {Field::Importance, importance}},
                    u"IPM.StickyNote"),
              std::nullopt);
  }
}

TEST_F(RowValueTest, AFieldOfAnotherKindRaises) {
  EXPECT_THROW(Value(RowForm::Text, Field::FullName, {}), output::OutputFailure);
}

}  // namespace
}  // namespace velmora::workflow
