#include "workflow/panes/result_fixture.h"

#include <QDateTime>
#include <QTest>
#include <QTreeWidget>

#include "output/trace/tee.h"
#include "platform/path_text.h"
#include "store/messaging/pst_library.h"
#include "workflow/panes/grid_rows.h"
#include "workflow/panes/whole_value.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

using output::Field;

/// Where nobody wrote these, a store gives an item a date and a topic, and a contact its addresses out of their
/// parts.
constexpr Field kStoresOwn[] = {Field::ReceivedTime, Field::ConversationTopic, Field::MailingAddress,
                                Field::HomeAddress,  Field::BusinessAddress,   Field::OtherAddress};

messaging::PstLibrary StoreLibrary(const std::filesystem::path& configFolder) {
  messaging::PstLibraryOptions options;
  options.configFolder = configFolder;
  return messaging::PstLibrary(std::move(options));
}

/// In the form of a trace; undefined where there is none.
QJsonValue AsWritten(const output::FieldRead& read) {
  if (!read.written) return QJsonValue::Undefined;
  const auto* date = std::get_if<output::OleDate>(&read.value);
  if (date == nullptr) return ToQt(read.AsText());
  const QDateTime zero(QDate(1899, 12, 30), QTime(0, 0), Qt::UTC);
  return zero.addSecs(qRound64(date->days * 86400)).toString("yyyy-MM-ddTHH:mm:ss");
}

}  // namespace

ResultFixture::ResultFixture()
    : outLook_(state_, [this] { return MakeOutput(); }),
      panes_(nullptr, state_, outLook_, [this] { return MakeOutput(); }) {
  state_.run.observer = this;
}

conversion::RunOutput ResultFixture::MakeOutput() {
  auto store = std::make_shared<messaging::PstLibrary>(StoreLibrary(folder_.Path()));
  auto trace = std::make_shared<output::TraceLibrary>(trace_);
  const auto seal = [store] { return store->Seal(); };
  return {std::make_shared<output::Tee>(std::vector<std::shared_ptr<output::OutputLibrary>>{store, trace}), seal};
}

conversion::RunEnd ResultFixture::Convert(const std::filesystem::path& source) {
  const std::filesystem::path destination = folder_.Path() / std::to_string(++runs_);
  std::filesystem::create_directory(destination);
  state_.sourcePath = platform::TextOfPath(source);
  state_.sourceFileName = platform::TextOfPath(source.filename());
  state_.destinationPath = platform::TextOfPath(destination);
  state_.run.runEnded = false;
  trace_.lines.clear();
  reader_.Release();
  panes_.BeginRun();
  const conversion::RunEnd end = conversion::RunConversion(outLook_, state_);
  written_ = WrittenItems(trace_.lines);
  return end;
}

void ResultFixture::OnEvent(const engine::Event& event) {
  if (const auto* notice = std::get_if<engine::Notice>(&event)) notices_.push_back(notice->kind);
  if (const auto* known = std::get_if<engine::FoldersKnown>(&event)) panes_.OnFoldersKnown(*known);
  if (const auto message = MessageOf(event)) panes_.OnMessage(*message);
}

output::Ref<output::RDOFolder> ResultFixture::OpenFolder(const QString& path) {
  if (!reader_) {
    reader_ = StoreLibrary(folder_.Path()).CreateRDOSession();
    reader_->Stores()->OpenPSTStore(state_.destinationPath);
  }
  return reader_->GetFolderFromPath(FromQt(path));
}

std::vector<WrittenItem> ResultFixture::Written(const QString& folderPath) {
  std::vector<WrittenItem> items = written_.In(folderPath);
  if (items.empty()) return items;
  const auto saved = OpenFolder(folderPath)->Items();
  EXPECT_EQ(saved->Count(), std::int32_t(items.size()));
  auto mail = saved->GetFirst();
  for (WrittenItem& item : items) {
    if (!mail) break;
    for (const Field field : kStoresOwn) {
      const output::FieldInfo& info = output::InfoOf(field);
      if (item.fields.contains(info.name) || !mail->Answers(info.interface)) continue;
      if (const QJsonValue value = AsWritten(mail->Get(field)); !value.isUndefined()) item.fields[info.name] = value;
    }
    mail = saved->GetNext();
  }
  return items;
}

QTreeWidget& ResultFixture::Tree() { return *panes_.FolderPane().findChild<QTreeWidget*>("1002"); }

const TreeFolderRecord* ResultFixture::Folder(text::TextView name) {
  for (const TreeFolderRecord& folder : panes_.FolderPane().Folders().Records()) {
    if (folder.name == name) return &folder;
  }
  ADD_FAILURE() << "no folder " << text::ToUtf8(name);
  return nullptr;
}

void ResultFixture::Select(const TreeFolderRecord& folder) {
  Tree().setCurrentItem(nullptr);
  Tree().setCurrentItem(folder.item);
  ASSERT_TRUE(QTest::qWaitFor([this] { return !panes_.ListBusy(); }, 60000));
}

int ResultFixture::ExpectShown(const TreeFolderRecord& folder) {
  Select(folder);
  const QString path = ToQt(PathOf(folder));
  SCOPED_TRACE(path.toStdString());
  const std::vector<WrittenItem> items = Written(path);
  const ListedKind* kind = ListedKindOfClass(ToQt(folder.containerClass));
  EXPECT_EQ(panes_.ShowsGrid(), kind != nullptr);
  return kind != nullptr ? ExpectFilled(items, *kind) : ExpectListed(folder, items);
}

int ResultFixture::ExpectAllFoldersShown() {
  int rows = 0;
  for (const TreeFolderRecord& folder : panes_.FolderPane().Folders().Records()) rows += ExpectShown(folder);
  return rows;
}

int ResultFixture::ExpectListed(const TreeFolderRecord& folder, const std::vector<WrittenItem>& items) {
  const QAbstractItemModel& rows = *panes_.ListPane().model();
  EXPECT_EQ(rows.rowCount(), int(items.size()));
  for (int row = 0; row < std::min(rows.rowCount(), int(items.size())); ++row) {
    SCOPED_TRACE(row);
    const WrittenItem& item = items[std::size_t(row)];
    QStringList texts;
    for (int column = 0; column < 4; ++column) texts << rows.index(row, column).data().toString();
    EXPECT_EQ(texts, ExpectedTexts(item, row == 0));
    const QString mark = rows.index(row, 0).data(Qt::AccessibleDescriptionRole).toString();
    EXPECT_EQ(mark, item.attachments > 0 ? "has attachments" : "");

    panes_.ListPane().selectRow(row);
    panes_.OnMessage({.code = 32848, .text = PathOf(folder)});
    const QString body = panes_.BodyPane().toPlainText();
    for (const QString& word : ExpectedWords(item)) EXPECT_TRUE(body.contains(word)) << word.toStdString();
  }
  return rows.rowCount();
}

int ResultFixture::ExpectFilled(const std::vector<WrittenItem>& items, const ListedKind& kind) {
  const GridRows& grid = panes_.Grid().Rows();
  int compared = 0;
  int category = 0;
  for (const WrittenItem& item : items) {
    if (output::TypedInterfaceOf(FromQt(item.messageClass)) != kind.interface) break;  // ends a fill
    const QModelIndex place = grid.index(category++, 0);
    const auto whole = [](const QModelIndex& index) { return index.data(kWholeValueRole).toString(); };
    EXPECT_EQ(whole(place), ExpectedCaption(item, kind));
    ShownRows shown;
    for (int row = 0; row < grid.rowCount(place); ++row) {
      shown.emplace_back(whole(grid.index(row, 0, place)), whole(grid.index(row, 1, place)));
    }
    EXPECT_EQ(shown, ExpectedRows(item, kind)) << whole(place).toStdString();
    compared += int(shown.size()) + 1;
  }
  EXPECT_EQ(grid.rowCount(), category);
  return compared;
}

}  // namespace velmora::workflow
