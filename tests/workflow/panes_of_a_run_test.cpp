// What stands in the hidden frame during a run of the wizard, and behind it.
#include <QTreeWidget>

#include "conversion/worker.h"
#include "forge/demo_store.h"
#include "store/messaging/pst_library.h"
#include "workflow/custom_dlg.h"
#include "workflow/harness.h"
#include "workflow/panes/grid_rows.h"
#include "workflow/progress_dlg.h"

namespace velmora::workflow {
namespace {

using namespace resources;

class PanesOfARunTest : public WizardTest {
 protected:
  void SetUp() override {
    machine_.makeOutput = [this] {
      auto library = std::make_shared<messaging::PstLibrary>(Library());
      return conversion::RunOutput{library, [library] { return library->Seal(); }};
    };
    Start();
  }
  void TearDown() override { frame_->EndWorkers(); }

  messaging::PstLibrary Library() const {
    messaging::PstLibraryOptions options;
    options.configFolder = machine_.folder.Path() / "profiles";
    return messaging::PstLibrary(std::move(options));
  }

  /// A run from its start to the moment at which its page can be left.
  void Convert() {
    const auto source = machine_.folder.Path() / "mail.ost";
    forge::ForgeDemoStore(forge::DemoState::kSound).Save(source);
    const auto destination = machine_.folder.Path() / ("out" + std::to_string(++runs_));
    std::filesystem::create_directory(destination);
    LeavePage();
    State().sourcePath = FromQt(PathToQt(source));
    State().sourceFileName = u"mail.ost";
    State().destinationPath = FromQt(PathToQt(destination));
    frame_->StartConversion();
    ASSERT_TRUE(Comes([this] {
      return frame_->progressDialog != nullptr && frame_->progressDialog->Control<QWidget>(kFinishId)->isEnabled();
    }));
    // The worker says so a moment after the page has heard that all is done.
    ASSERT_TRUE(Comes([this] { return State().treeFilling.load(); }));
  }

  ResultPanes& Panes() { return frame_->Panes(); }
  const std::deque<TreeFolderRecord>& Folders() { return Panes().FolderPane().Folders().Records(); }
  void Select(const TreeFolderRecord& folder) {
    auto& tree = *Panes().FolderPane().findChild<QTreeWidget*>();
    tree.setCurrentItem(nullptr);
    tree.setCurrentItem(folder.item);
    ASSERT_TRUE(Comes([this] { return !Panes().ListBusy(); }));
  }

  /// The folder in the list against the operations of the output library; gives its number of items.
  int ExpectListed(output::RDOFolder& folder) {
    const auto items = folder.Items();
    const QAbstractItemModel& rows = *Panes().ListPane().model();
    EXPECT_EQ(rows.rowCount(), items->Count());
    auto item = items->GetFirst();
    for (int row = 0; row < rows.rowCount() && item; ++row, item = items->GetNext()) {
      EXPECT_EQ(rows.index(row, 0).data().toString(), ToQt(item->Get(output::Field::SenderName).AsText()));
      EXPECT_EQ(rows.index(row, 2).data().toString(), ToQt(item->Get(output::Field::Subject).AsText()));
      EXPECT_EQ(rows.index(row, 0).data(Qt::AccessibleDescriptionRole).toString().isEmpty(),
                item->AttachmentCount() == 0);
      Panes().ListPane().selectRow(row);
      Panes().OnMessage({.code = kShowBodyMessage, .text = PathOf(*shown_)});
      EXPECT_EQ(Panes().BodyPane().toPlainText().isEmpty(),
                item->Get(output::Field::HTMLBody).AsText().empty() && item->Get(output::Field::Body).AsText().empty());
      EXPECT_GT(item->Size(), 0);
    }
    return items->Count();
  }

  int runs_ = 0;
  const TreeFolderRecord* shown_ = nullptr;
};

TEST_F(PanesOfARunTest, AreWindowsOfTheFrameThatNobodySees) {
  Convert();
  for (const QWidget* pane : {static_cast<QWidget*>(&Panes().FolderPane()), static_cast<QWidget*>(&Panes().ListPane()),
                              static_cast<QWidget*>(&Panes().Grid()), static_cast<QWidget*>(&Panes().BodyPane())}) {
    EXPECT_EQ(pane->window(), frame_.get());
    EXPECT_FALSE(pane->isVisible());
  }
  EXPECT_FALSE(frame_->isVisible());
}

TEST_F(PanesOfARunTest, FillWhileTheRunGoesOn) {
  int rows = 0;
  std::size_t mostFolders = 0;
  QObject::connect(Panes().ListPane().model(), &QAbstractItemModel::rowsInserted, frame_.get(), [&] {
    ++rows;
    mostFolders = std::max(mostFolders, Folders().size());
    EXPECT_NE(frame_->progressDialog, nullptr);
    EXPECT_FALSE(State().run.runEnded);
  });
  Convert();
  EXPECT_GT(rows, 5);
  EXPECT_GT(mostFolders, 1u) << "a folder is there before the mails in it";
  EXPECT_EQ(Panes().ListPane().RowCount(), 0) << "the end of a run clears the list";
  EXPECT_GE(Folders().size(), std::size_t(forge::kDemoFolders));
}

TEST_F(PanesOfARunTest, OpenAnyFolderOfTheNewStoreOnceItIsFinished) {
  Convert();
  Press(kFinishId);
  ASSERT_TRUE(IsPage<CCustomDlg>());
  auto library = Library();
  const auto session = library.CreateRDOSession();
  session->Stores()->OpenPSTStore(State().destinationPath);
  int listed = 0, filled = 0;
  for (const TreeFolderRecord& record : Folders()) {
    shown_ = &record;
    const auto folder = session->GetFolderFromPath(PathOf(record));
    ASSERT_TRUE(folder) << text::ToUtf8(PathOf(record));
    if (record.parent != nullptr) {
      EXPECT_EQ(folder->ContainerClass(), record.containerClass);
    }
    Select(record);
    if (Panes().ShowsGrid()) {
      EXPECT_EQ(Panes().Grid().Rows().rowCount(), folder->Items()->Count());
      filled += folder->Items()->Count();
    } else {
      listed += ExpectListed(*folder);
    }
  }
  EXPECT_GT(listed, 5);
  EXPECT_GT(filled, 5);
  EXPECT_TRUE(IsPage<CCustomDlg>()) << "and nothing but the page was seen";
}

TEST_F(PanesOfARunTest, LetTheStoreGoWhenThePageIsLeft) {
  Convert();
  Select(Folders().front());
  EXPECT_TRUE(State().previewSession);
  Press(kFinishId);
  EXPECT_FALSE(State().previewSession);
  Select(Folders().back());
  EXPECT_TRUE(State().previewSession) << "it is opened again";
}

TEST_F(PanesOfARunTest, TheNextRunFillsThemAnew) {
  Convert();
  const std::size_t folders = Folders().size();
  shown_ = &Folders().back();
  Select(*shown_);
  Press(kFinishId);
  Convert();
  EXPECT_EQ(Folders().size(), folders);
  EXPECT_FALSE(State().previewSession) << "the first store is let go";
}

TEST_F(PanesOfARunTest, CountFoldersForTheSummaryWhenTheLogIsOnAndOnlyThen) {
  const auto counted = [this] {
    return std::ranges::count_if(Folders(), [](const auto& folder) { return folder.item->text(0).endsWith(')'); });
  };
  Convert();
  EXPECT_EQ(counted(), 0);
  Press(kFinishId);
  machine_.run = [](conversion::COutLook& outLook, conversion::RunState& state) {
    outLook.logEnabled = true;
    return conversion::RunConversion(outLook, state);
  };
  Convert();
  EXPECT_EQ(counted(), std::ptrdiff_t(Folders().size()) - 1) << "all but the root";
}

}  // namespace
}  // namespace velmora::workflow
