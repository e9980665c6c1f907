#include "workflow/panes/fill.h"

#include "workflow/panes/listed_samples.h"
#include "workflow/panes/one_folder_session.h"
#include "workflow/panes/store_fixture.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

using output::Field;
using output::FieldValue;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

struct Recorder : FillTarget {
  bool IsCancelled() const override {
    return cancelAfter == 0 || (cancelAfter > 0 && int(percents.size()) >= cancelAfter);
  }
  void ShowPercent(int percent) override { percents.push_back(percent); }
  void Add(std::vector<Category> portion) override {
    for (Category& category : portion) categories.push_back(std::move(category));
  }
  std::vector<int> percents;
  std::vector<Category> categories;
  int cancelAfter = -1;
};

class FillTest : public StoreFixture {
 protected:
  Recorder Run(PaneMessage message, text::TextView folder = u"Folder") {
    Recorder recorder;
    FillFolder(*finished_, PathOf(folder), *FillKindOf(message), recorder);
    return recorder;
  }
};

class FillOfKindTest : public FillTest, public testing::WithParamInterface<KindCase> {};

TEST_P(FillOfKindTest, AnItemWithEveryFieldHasEveryRowInItsOrder) {
  const KindCase& kind = GetParam();
  const auto folder = AddFolder(u"Folder", kind.folderClass);
  AddItem(folder, kind.messageClass, SamplesOf(kind));

  const Recorder filled = Run(kind.message);
  ASSERT_THAT(filled.categories, SizeIs(1));
  const std::vector<FilledRow>& rows = filled.categories[0].rows;
  ASSERT_EQ(rows.size(), kind.listed.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(text::ToUtf8(rows[i].row->label), kind.listed[i].label);
    EXPECT_EQ(rows[i].value.toStdString(), SampleOf(kind.listed[i]).shown) << kind.listed[i].label;
  }
}

TEST_P(FillOfKindTest, EachFieldAloneMakesItsRowAlone) {
  const KindCase& kind = GetParam();
  const auto folder = AddFolder(u"Folder", kind.folderClass);
  for (const ListedRow& row : kind.listed) {
    AddItem(folder, kind.messageClass, {{FieldOf(row.operation, kind.messageClass), SampleOf(row).value}});
  }

  const Recorder filled = Run(kind.message);
  ASSERT_EQ(filled.categories.size(), kind.listed.size());
  for (std::size_t i = 0; i < kind.listed.size(); ++i) {
    const std::vector<FilledRow>& rows = filled.categories[i].rows;
    ASSERT_THAT(rows, SizeIs(1)) << kind.listed[i].label;
    EXPECT_EQ(text::ToUtf8(rows[0].row->label), kind.listed[i].label);
    EXPECT_EQ(rows[0].value.toStdString(), SampleOf(kind.listed[i]).shown);
  }
}

TEST_P(FillOfKindTest, AnItemOfAnotherKindEndsTheFill) {
  const KindCase& kind = GetParam();
  const auto folder = AddFolder(u"Folder", kind.folderClass);
  AddItem(folder, kind.messageClass);
  AddItem(folder, u"IPM.Note", {{Field::Subject, u"A mail"}});
  AddItem(folder, kind.messageClass);
  EXPECT_THAT(Run(kind.message).categories, SizeIs(1)) << "what came before stays";
}

INSTANTIATE_TEST_SUITE_P(Kinds, FillOfKindTest, testing::ValuesIn(kKindCases), [](const auto& param) {
  return text::ToUtf8(text::TextView(param.param.messageClass).substr(4));
});

TEST_F(FillTest, AnEmptyFolderAddsNoCategory) {
  AddFolder(u"Folder", u"IPF.Task");
  const Recorder filled = Run(kFillTasksMessage);
  EXPECT_THAT(filled.categories, IsEmpty());
  EXPECT_THAT(filled.percents, IsEmpty());
}

TEST_F(FillTest, AFolderThatIsNotThereAddsNothing) { EXPECT_THAT(Run(kFillTasksMessage).categories, IsEmpty()); }

TEST_F(FillTest, AnItemWithoutASubjectIsUnknown) {
  const auto folder = AddFolder(u"Folder", u"IPF.Task");
  AddItem(folder, u"IPM.Task");
  AddItem(folder, u"IPM.Task", {{Field::Subject, u"Call"}});
  const Recorder filled = Run(kFillTasksMessage);
  ASSERT_THAT(filled.categories, SizeIs(2));
  EXPECT_EQ(filled.categories[0].caption, "UnKnown");
  EXPECT_EQ(filled.categories[1].caption, "Call");
}

TEST_F(FillTest, AContactWithoutAFullNameIsUnknownWhateverItsSubject) {
  const auto folder = AddFolder(u"Folder", u"IPF.Contact");
  AddItem(folder, u"IPM.Contact", {{Field::Subject, u"Ann"}});
  AddItem(folder, u"IPM.Contact", {{Field::FullName, u"Ann Other"}});
  const Recorder filled = Run(kFillContactsMessage);
  ASSERT_THAT(filled.categories, SizeIs(2));
  EXPECT_EQ(filled.categories[0].caption, "UnKnown");
  EXPECT_EQ(filled.categories[1].caption, "Ann Other");
}

TEST_F(FillTest, DistributionListsStandAmongTheContacts) {
  AddItem(AddFolder(u"Folder", u"IPF.Contact"), u"IPM.DistList", {{Field::FullName, u"Team"}});
  EXPECT_THAT(Run(kFillContactsMessage).categories, SizeIs(1));
}

TEST_F(FillTest, ThePercentageIsTruncatedAndSentWhenItChanges) {
  const auto folder = AddFolder(u"Folder", u"IPF.Task");
  for (int i = 0; i < 3; ++i) AddItem(folder, u"IPM.Task");
  EXPECT_THAT(Run(kFillTasksMessage).percents, ElementsAre(0, 33, 66));
  for (int i = 0; i < 997; ++i) AddItem(folder, u"IPM.Task");
  EXPECT_THAT(Run(kFillTasksMessage).percents, SizeIs(100)) << "at most one for each";
}

TEST_F(FillTest, ACancelEndsTheFill) {
  const auto folder = AddFolder(u"Folder", u"IPF.Task");
  for (int i = 0; i < 10; ++i) AddItem(folder, u"IPM.Task");
  Recorder recorder;
  recorder.cancelAfter = 4;
  FillFolder(*finished_, PathOf(u"Folder"), *FillKindOf(kFillTasksMessage), recorder);
  EXPECT_THAT(recorder.categories, SizeIs(4));
}

/// An item whose reads fail from a certain field on.
class FailingItem : public StubItem {
 public:
  explicit FailingItem(Field failing) : failing_(failing) {}
  output::FieldRead Get(Field field) const override {
    if (field == failing_) throw output::OutputFailure(output::ResultCode::STG_E_READFAULT);
    return {text::Text(u"x"), true};
  }

 private:
  Field failing_;
};

/// A session of one folder of two such items.
class FailingFolder : public ItemsSession {
 public:
  explicit FailingFolder(Field failing) : failing_(failing) {}
  std::int32_t Count() const override { return 2; }
  output::Ref<output::RDOMail> GetFirst() override { return std::make_shared<FailingItem>(failing_); }
  output::Ref<output::RDOMail> GetNext() override { return GetFirst(); }

 private:
  Field failing_;
};

TEST_F(FillTest, AFailingReadKeepsTheRowsBeforeIt) {
  output::Ref<output::RDOSession> session;
  FinishedStore store(session, [](text::TextView) { return std::make_shared<FailingFolder>(Field::Body); });
  Recorder recorder;
  FillFolder(store, u"any", *FillKindOf(kFillTasksMessage), recorder);
  ASSERT_THAT(recorder.categories, SizeIs(1));
  ASSERT_THAT(recorder.categories[0].rows, SizeIs(2));
  EXPECT_EQ(recorder.categories[0].rows[1].row->label, u"To") << "the body is read behind it";
}

TEST_F(FillTest, AFailingCaptionAddsNoCategory) {
  output::Ref<output::RDOSession> session;
  FinishedStore store(session, [](text::TextView) { return std::make_shared<FailingFolder>(Field::Subject); });
  Recorder recorder;
  FillFolder(store, u"any", *FillKindOf(kFillTasksMessage), recorder);
  EXPECT_THAT(recorder.categories, IsEmpty());
}

TEST_F(FillTest, AStoreThatCannotBeOpenedAddsNothing) {
  output::Ref<output::RDOSession> session;
  FinishedStore store(session, [](text::TextView) -> output::Ref<output::RDOSession> {
    throw output::OutputFailure(output::ResultCode::STG_E_READFAULT);
  });
  Recorder recorder;
  FillFolder(store, u"any", *FillKindOf(kFillTasksMessage), recorder);
  EXPECT_THAT(recorder.categories, IsEmpty());
}

}  // namespace
}  // namespace velmora::workflow
