#include "workflow/panes/list_view_right.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include "controls/x_cmd_btn.h"
#include "resources/string_table.h"
#include "workflow/panes/folder_listing.h"
#include "workflow/panes/waiting_panels.h"
#include "workflow/panes/whole_value.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

constexpr int kBackground = 203;
constexpr std::array kPlaceholderArt = {223, 224};
constexpr std::uint16_t kTitles[] = {resources::kColumnFrom, resources::kColumnTo, resources::kColumnSubject,
                                     resources::kColumnDate};
constexpr int kWidths[] = {212, 212, 212, 127};
constexpr int kDateMargin = 8;
constexpr int kRowHeight = 20;
constexpr int kMakeVisibleInterval = 50;  // milliseconds

constexpr std::uint32_t kUpKey = 38;
constexpr std::uint32_t kDownKey = 40;

}  // namespace

CListViewRight::CListViewRight(QWidget* parent, std::shared_ptr<FinishedStore> store, SendToPane send)
    : QTableView(parent),
      store_(std::move(store)),
      send_(std::move(send)),
      rows_(new ItemRows(this)),
      loading_(new CDlgLoading(this)) {
  setObjectName(QStringLiteral("CListViewRight"));
  setAccessibleName(QStringLiteral("Items"));
  setModel(rows_);
  setSelectionBehavior(SelectRows);
  setSelectionMode(SingleSelection);
  setEditTriggers(NoEditTriggers);
  setWordWrap(false);
  setTabKeyNavigation(false);
  setIconSize({16, 16});
  setHorizontalScrollMode(ScrollPerPixel);
  horizontalHeader()->setSectionsClickable(false);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setDefaultSectionSize(kRowHeight);
  // The stripes are fixed colours, so the text on them is too.
  QPalette colours = palette();
  colours.setColor(QPalette::Base, StripeOf(0));
  colours.setColor(QPalette::AlternateBase, StripeOf(1));
  colours.setColor(QPalette::Text, Qt::black);
  setPalette(colours);
  setAlternatingRowColors(true);

  background_.Load(kBackground, "BITMAP");
  for (std::size_t i = 0; i < placeholders_.size(); ++i) {
    auto* placeholder = placeholders_[i] = new controls::CXCmdBtn(this);
    placeholder->setObjectName(QStringLiteral("1001"));
    placeholder->setFocusPolicy(Qt::NoFocus);
    placeholder->SetImages(kPlaceholderArt[i], kPlaceholderArt[i], kPlaceholderArt[i]);
    placeholder->SetImageOnly(true);
  }
  makeVisible_.setSingleShot(true);
  makeVisible_.setInterval(kMakeVisibleInterval);
  connect(&makeVisible_, &QTimer::timeout, this, [this] { scrollTo(rows_->index(currentRow_, 0)); });
}

CListViewRight::~CListViewRight() { StopListing(); }

QColor CListViewRight::StripeOf(int row) { return row % 2 == 0 ? QColor(255, 255, 255) : QColor(232, 232, 244); }

void CListViewRight::BuildColumns() {
  QStringList titles;
  QString title;  // a number without a text leaves the title before it in place
  for (const std::uint16_t id : kTitles) {
    if (const auto text = resources::LoadString(id); !text.empty()) title = ToQt(text);
    titles << title;
  }
  rows_->SetTitles(titles);
  for (int column = 0; column < ItemRows::kColumns; ++column) setColumnWidth(column, kWidths[column]);
  horizontalHeader()->setStretchLastSection(true);
  FitLastColumn();
  for (auto*& placeholder : placeholders_) delete std::exchange(placeholder, nullptr);
}

void CListViewRight::OnMessage(const RunMessage& message) {
  switch (message.code) {
    case MSG_LIST_FIELD:
      SetField(message.number, message.text);
      break;
    case MSG_LIST_ATTACHMENT:
      rows_->MarkAttachments(currentRow_);
      break;
    case MSG_CLEAR_LIST:
      rows_->Clear();
      currentRow_ = -1;
      break;
    case kListFolderMessage:
      ListFolder(message.text);
      break;
    default:
      break;
  }
}

void CListViewRight::SetField(std::uint32_t field, text::TextView text) {
  if (field < 1 || field > ItemRows::kColumns) return;
  const auto column = static_cast<ItemRows::Column>(field - 1);
  if (column == ItemRows::kFrom) {
    rows_->Append({ItemRows::Row()});
    currentRow_ = rows_->rowCount() - 1;
  }
  rows_->SetText(currentRow_, column, ToQt(text));
  if (!makeVisible_.isActive()) makeVisible_.start();
}

void CListViewRight::ListFolder(text::TextView path) {
  StopListing();
  folderPath_ = path;
  loading_->show();
  send_({.code = MSG_CLEAR_BODY});
  // What the thread says is dealt with in this one, unless another listing has begun meanwhile.
  const auto later = [this, number = ++listingNumber_](auto call) {
    const auto unlessReplaced = [this, number, call] {
      if (ListBusy() && number == listingNumber_) call();
    };
    QMetaObject::invokeMethod(this, unlessReplaced, Qt::QueuedConnection);
  };
  const auto onRows = [this, later](std::vector<ItemRows::Row> rows) {
    later([this, portion = std::make_shared<std::vector<ItemRows::Row>>(std::move(rows))] {
      rows_->Append(std::move(*portion));
    });
  };
  const auto onEnd = [this, later] { later([this] { OnListed(); }); };
  listing_ = std::make_unique<FolderListing>(store_, path, FolderListing::Receiver{onRows, onEnd});
}

void CListViewRight::OnListed() {
  listing_.reset();
  send_({.code = kRenewSelectionMessage});
  loading_->hide();
}

void CListViewRight::StopListing() {
  listing_.reset();
  loading_->hide();
}

void CListViewRight::ShowBody(std::uint32_t key) {
  send_({.code = kShowBodyMessage, .number = key, .text = folderPath_});
}

void CListViewRight::mouseReleaseEvent(QMouseEvent* event) {
  QTableView::mouseReleaseEvent(event);
  if (event->button() != Qt::LeftButton || !indexAt(event->pos()).isValid()) return;
  ShowBody(0);
  setFocus();
}

void CListViewRight::keyPressEvent(QKeyEvent* event) {
  if (CopyWholeValue(*event, currentIndex())) return;
  // The body pane takes the step by itself, from the row that is still selected.
  if (event->key() == Qt::Key_Up) ShowBody(kUpKey);
  if (event->key() == Qt::Key_Down) ShowBody(kDownKey);
  QTableView::keyPressEvent(event);
}

QModelIndex CListViewRight::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
  if (action == MoveHome) return rows_->index(0, 0);
  if (action == MoveEnd) return rows_->index(RowCount() - 1, 0);
  return QTableView::moveCursor(action, modifiers);
}

void CListViewRight::paintEvent(QPaintEvent* event) {
  QTableView::paintEvent(event);
  if (HasColumns() || RowCount() > 0) return;
  QPainter painter(viewport());
  background_.Draw(painter, viewport()->rect());
}

void CListViewRight::resizeEvent(QResizeEvent* event) {
  QTableView::resizeEvent(event);
  if (HasColumns()) FitLastColumn();
  PlacePanels();
}

/// Where the pane is a little too narrow, the blank behind the dates is given up: nobody scrolls for that.
void CListViewRight::FitLastColumn() {
  const int room = viewport()->width() - columnWidth(0) - columnWidth(1) - columnWidth(2);
  const int date = fontMetrics().horizontalAdvance(QStringLiteral("12 /31 /2000")) + kDateMargin;
  const int full = kWidths[ItemRows::kDate];
  setColumnWidth(ItemRows::kDate, room < date ? full : std::min(room, full));
}

void CListViewRight::PlacePanels() {
  loading_->move(rect().center() - loading_->rect().center());
  if (HasColumns()) return;
  placeholders_[0]->setGeometry(0, 0, 450, 700);
  placeholders_[1]->setGeometry(width() - 450, height() - 400, 470, 400);
}

}  // namespace velmora::workflow
