#include "controls/tx_list_ctrl.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <iterator>

#include "controls/file_rows.h"

namespace velmora::controls {

namespace {

constexpr int kInset = 8;  // of a row's text, so that it stands below that of the header

}  // namespace

CTXListCtrl::CTXListCtrl(QWidget* parent) : QTreeView(parent), rows_(new FileRows(this)) {
  setModel(rows_);
  setRootIsDecorated(false);
  setItemsExpandable(false);
  setUniformRowHeights(true);
  setSelectionBehavior(SelectRows);
  setSelectionMode(SingleSelection);
  setEditTriggers(NoEditTriggers);
  setTextElideMode(Qt::ElideMiddle);
  rows_->SetRowHeight(fontMetrics().height() * 8 / 5);
  header()->setStretchLastSection(true);
  header()->setSectionsClickable(false);
  // The choice is the highlight, whatever moved it: either button, a drag, a key, letters that are typed. A reset
  // takes the highlight away without a word of the selection.
  connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, &CTXListCtrl::TellChoice);
  connect(rows_, &FileRows::modelReset, this, &CTXListCtrl::TellChoice);
}

void CTXListCtrl::SetTitle(const QString& title) { rows_->SetTitle(title); }

void CTXListCtrl::SetHint(const QString& hint) {
  hint_ = hint;
  viewport()->update();
}

QColor CTXListCtrl::StripeOf(int row) { return row % 2 == 1 ? QColor(255, 255, 255) : QColor(232, 232, 244); }

void CTXListCtrl::drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  // A row is its stripe and one text: nothing of the style's own, which puts a sheen on chosen rows.
  const bool chosen = selectionModel()->isSelected(index);
  const auto group = isEnabled() ? QPalette::Active : QPalette::Disabled;
  painter->fillRect(option.rect, chosen ? palette().color(group, QPalette::Highlight) : StripeOf(index.row()));
  painter->setPen(palette().color(group, chosen ? QPalette::HighlightedText : QPalette::Text));
  const QRect place = option.rect.adjusted(kInset, 0, -kInset, 0);
  painter->drawText(place, Qt::AlignVCenter | Qt::TextSingleLine,
                    fontMetrics().elidedText(rows_->TextAt(index.row()), textElideMode(), place.width()));
}

void CTXListCtrl::paintEvent(QPaintEvent* event) {
  QTreeView::paintEvent(event);
  if (rows_->Count() > 0) return;
  QPainter painter(viewport());
  const QRect area = viewport()->rect();
  painter.fillRect(area, palette().color(QPalette::Active, QPalette::Base));
  QFont large = font();
  large.setFamilies({QStringLiteral("Batang"), font().family()});
  large.setPixelSize(14);
  large.setWeight(QFont::Black);
  painter.setFont(large);
  painter.setPen(palette().color(QPalette::Disabled, QPalette::Text));
  painter.drawText(area.adjusted(0, area.height() / 3, 0, 0), Qt::AlignHCenter | Qt::TextWordWrap, hint_);
}

void CTXListCtrl::TellChoice() {
  const QModelIndexList chosen = selectionModel()->selectedRows();
  emit RowChosen(chosen.isEmpty() ? -1 : chosen.first().row());
}

void CTXListCtrl::mousePressEvent(QMouseEvent* event) {
  QTreeView::mousePressEvent(event);
  if (!indexAt(event->pos()).isValid()) clearSelection();
}

void CTXListCtrl::keyPressEvent(QKeyEvent* event) {
  QTreeView::keyPressEvent(event);
  constexpr Qt::Key kChoosing[] = {Qt::Key_Up,     Qt::Key_Down,     Qt::Key_Home, Qt::Key_End,
                                   Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Space};
  const bool chooses = std::find(std::begin(kChoosing), std::end(kChoosing), event->key()) != std::end(kChoosing);
  if (!chooses || !currentIndex().isValid()) return;
  // The first row has the focus from the start; a key on it chooses it without moving.
  selectionModel()->select(currentIndex(), QItemSelectionModel::ClearAndSelect);
}

}  // namespace velmora::controls
