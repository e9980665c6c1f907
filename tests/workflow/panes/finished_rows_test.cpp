// Every row of every kind, read back from a store on disk: fields that no source can bring across included.
#include "platform/path_text.h"
#include "platform/user_folders.h"
#include "store/messaging/pst_library.h"
#include "workflow/panes/grid_rows.h"
#include "workflow/panes/grid_view.h"
#include "workflow/panes/listed_samples.h"

namespace velmora::workflow {
namespace {

class FinishedRowsTest : public testing::TestWithParam<KindCase> {
 protected:
  messaging::PstLibrary Library() const {
    messaging::PstLibraryOptions options;
    options.configFolder = folder_.Path();
    return messaging::PstLibrary(std::move(options));
  }
  text::Text Store() const { return platform::TextOfPath(folder_.Path() / "rows.pst"); }

  void Write(const KindCase& kind, const FieldValues& fields) const {
    const auto session = Library().CreateRDOSession();
    const auto store = session->Stores()->AddPSTStore(Store(), u"Rows");
    const auto folder = store->IPMRootFolder()->Folders()->Add(u"Folder", text::Text(kind.folderClass));
    const auto item = folder->Items()->Add(kind.messageClass);
    for (const auto& [field, value] : fields) item->Put(field, value);
    item->Save();
  }

  platform::TemporaryFolder folder_ = platform::TemporaryFolder::Create().value();
  output::Ref<output::RDOSession> session_;
  std::shared_ptr<FinishedStore> finished_ = std::make_shared<FinishedStore>(session_, [this](text::TextView path) {
    auto session = Library().CreateRDOSession();
    session->Stores()->OpenPSTStore(path);
    return session;
  });
  CGridView grid_{nullptr, finished_};
};

TEST_P(FinishedRowsTest, AnItemWithEveryFieldHasEveryRowInItsOrder) {
  const KindCase& kind = GetParam();
  Write(kind, SamplesOf(kind));
  finished_->Use(Store());
  grid_.OnMessage({.code = kind.message, .text = u"\\\\Rows\\Folder"});
  const GridRows& rows = grid_.Rows();
  ASSERT_EQ(rows.rowCount(), 1);
  const QModelIndex item = rows.index(0, 0);
  ASSERT_EQ(rows.rowCount(item), int(kind.listed.size()));
  for (int row = 0; row < rows.rowCount(item); ++row) {
    const ListedRow& listed = kind.listed[std::size_t(row)];
    EXPECT_EQ(rows.index(row, 0, item).data().toString().toStdString(), listed.label);
    EXPECT_EQ(rows.index(row, 1, item).data().toString().toStdString(), SampleOf(listed).shown) << listed.label;
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, FinishedRowsTest, testing::ValuesIn(kKindCases), [](const auto& param) {
  return text::ToUtf8(text::TextView(param.param.messageClass).substr(4));
});

}  // namespace
}  // namespace velmora::workflow
