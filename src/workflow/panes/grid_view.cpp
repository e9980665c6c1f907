#include "workflow/panes/grid_view.h"

#include <QHeaderView>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTreeView>
#include <QVBoxLayout>

#include "controls/up_dialog.h"
#include "workflow/panes/grid_rows.h"
#include "workflow/panes/whole_value.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

using controls::CUPDialog;

/// Rows that are high enough to be read.
class GridRowDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    return QStyledItemDelegate::sizeHint(option, index).grownBy({0, 3, 0, 3});
  }
};

/// The control of the grid: categories as bands over its whole width, lines between the fields.
class PropertyGrid : public QTreeView {
 public:
  explicit PropertyGrid(QWidget* parent) : QTreeView(parent) {
    setObjectName(QStringLiteral("1111"));
    setAccessibleName(QStringLiteral("Items of the folder"));
    setItemDelegate(new GridRowDelegate(this));
    setUniformRowHeights(true);
    setHeaderHidden(true);
    setEditTriggers(NoEditTriggers);
    setIndentation(18);
    setFrameShape(NoFrame);
  }

 protected:
  /// The keys that copy take the value of a field, wherever in its row the cursor is.
  void keyPressEvent(QKeyEvent* event) override {
    const QModelIndex current = currentIndex();
    if (!CopyWholeValue(*event, current.siblingAtColumn(current.parent().isValid() ? 1 : 0)))
      QTreeView::keyPressEvent(event);
  }

  void drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    if (index.parent().isValid()) {
      QTreeView::drawRow(painter, option, index);
      painter->setPen(palette().color(QPalette::Midlight));
      painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
      const int middle = columnViewportPosition(1) - 1;
      painter->drawLine(middle, option.rect.top(), middle, option.rect.bottom());
      return;
    }
    const bool selected = selectionModel()->isSelected(index);
    painter->fillRect(option.rect, palette().color(selected ? QPalette::Highlight : QPalette::Button));
    drawBranches(painter, QRect(option.rect.left(), option.rect.top(), indentation(), option.rect.height()), index);
    QFont bold = option.font;
    bold.setBold(true);
    painter->setFont(bold);
    painter->setPen(palette().color(selected ? QPalette::HighlightedText : QPalette::ButtonText));
    const QRect place = option.rect.adjusted(indentation() + 3, 0, -3, 0);
    const QString caption = QFontMetrics(bold).elidedText(index.data().toString(), Qt::ElideRight, place.width());
    painter->drawText(place, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, caption);
    painter->setFont(option.font);
  }
};

/// Makes the first column so wide that no label of the kind is cut: nobody can widen it by hand.
void FitLabels(QTreeView& grid, const FillKind& kind) {
  const int margin = grid.style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, &grid) + 1;
  int widest = 0;
  for (const GridRow& row : kind.rows) widest = std::max(widest, grid.fontMetrics().horizontalAdvance(ToQt(row.label)));
  const int line = 1;  // between the columns
  grid.header()->resizeSection(0, 2 * grid.indentation() + 2 * margin + widest + line);
}

/// Brings a fill to the grid and to the dialog over it.
class DialogTarget : public FillTarget {
 public:
  DialogTarget(const CUPDialog::Link& dialog, std::function<void(std::vector<Category>)> add)
      : dialog_(dialog), add_(std::move(add)) {}

  bool IsCancelled() const override { return dialog_.IsCancelled(); }
  void ShowPercent(int percent) override {
    dialog_.Send(CUPDialog::kTextMessage, 0, QStringLiteral("Loading..."));
    dialog_.Send(CUPDialog::kPositionMessage, percent);
    dialog_.Send(CUPDialog::kPercentMessage, 0, QString::asprintf("%u%%", unsigned(percent)));
  }
  void Add(std::vector<Category> categories) override {
    auto portion = std::make_shared<std::vector<Category>>(std::move(categories));
    dialog_.Call([this, portion] { add_(std::move(*portion)); });
  }

 private:
  const CUPDialog::Link& dialog_;
  std::function<void(std::vector<Category>)> add_;
};

}  // namespace

CGridView::CGridView(QWidget* parent, std::shared_ptr<FinishedStore> store)
    : QWidget(parent), store_(std::move(store)), rows_(new GridRows(this)), grid_(new PropertyGrid(this)) {
  setObjectName(QStringLiteral("CGridView"));
  resize(100, 100);
  grid_->setModel(rows_);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(grid_);
}

void CGridView::OnMessage(const RunMessage& message) {
  if (message.code == kClearGridMessage) rows_->Clear();
  const FillKind* kind = FillKindOf(message.code);
  if (kind == nullptr) return;
  folderPath_ = message.text;
  FitLabels(*grid_, *kind);
  const auto fill = [store = store_, path = folderPath_, kind, this](const CUPDialog::Link& dialog) {
    DialogTarget target(dialog, [this](std::vector<Category> categories) { Add(std::move(categories)); });
    FillFolder(*store, path, *kind, target);
    return true;
  };
  CUPDialog(this, ToQt(kind->dialogText), fill).Run();
}

void CGridView::Add(std::vector<Category> categories) {
  const int first = rows_->rowCount();
  rows_->Add(std::move(categories));
  for (int row = first; row < rows_->rowCount(); ++row) grid_->expand(rows_->index(row, 0));
}

}  // namespace velmora::workflow
