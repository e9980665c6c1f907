#include "workflow/panes/display_body.h"

#include <QImage>
#include <QScopedValueRollback>
#include <algorithm>

#include "workflow/panes/html_filter.h"

namespace velmora::workflow {
namespace {

using output::Field;

constexpr std::uint32_t kUpKey = 38;
constexpr std::uint32_t kDownKey = 40;

/// A larger message is not read for HTML.
constexpr std::uint32_t kLargestHtmlMessage = 3 * 1024 * 1024;

/// A document opens files by itself when nobody else gives it what it asks for. This one has no such way.
class SealedDocument : public QTextDocument {
 public:
  explicit SealedDocument(CDisplayBody* pane) : QTextDocument(pane), pane_(pane) {}

 protected:
  QVariant loadResource(int type, const QUrl& name) override { return pane_->loadResource(type, name); }

 private:
  CDisplayBody* pane_;
};

}  // namespace

CDisplayBody::CDisplayBody(QWidget* parent, std::shared_ptr<FinishedStore> store, const ItemSelection& selection)
    : QTextBrowser(parent), store_(std::move(store)), selection_(selection) {
  setObjectName(QStringLiteral("CDisplayBody"));
  setAccessibleName(QStringLiteral("Body"));
  setDocument(new SealedDocument(this));
  setUndoRedoEnabled(false);
  setOpenLinks(false);
  // Bodies bring the colours of their text and mean them to stand on white.
  QPalette colours = palette();
  colours.setColor(QPalette::Base, Qt::white);
  colours.setColor(QPalette::Text, Qt::black);
  setPalette(colours);
  document()->setDefaultStyleSheet(QStringLiteral("a[href] { color: #0b57d0; }"));
}

void CDisplayBody::OnMessage(const RunMessage& message) {
  if (message.code == MSG_CLEAR_BODY) clear();
  if (message.code == kShowBodyMessage) Show(message.number, message.text);
}

void CDisplayBody::ReleaseFolder() {
  folderPath_.clear();
  items_.Release();
  item_.Release();
}

QVariant CDisplayBody::loadResource(int type, const QUrl&) {
  ++refused_;
  // Where there is no picture at all, the name would be tried as that of a file.
  if (type == QTextDocument::ImageResource) return QImage(1, 1, QImage::Format_ARGB32_Premultiplied);
  return QByteArray();
}

void CDisplayBody::doSetSource(const QUrl&, QTextDocument::ResourceType) { ++refused_; }

void CDisplayBody::Show(std::uint32_t key, text::TextView path) {
  if (showing_) return;
  const QScopedValueRollback guard(showing_, true);
  const int rows = selection_.RowCount();
  if (rows == 0) return;
  int row = selection_.SelectedRow();
  if (key == kUpKey) --row;
  if (key == kDownKey) ++row;
  row = std::clamp(row, 0, rows - 1);
  text::Text body;
  try {
    body = BodyOf(row, path);
  } catch (const std::exception&) {
    // An item that cannot be read has no body to show.
    ReleaseFolder();
  }
  setHtml(ShownHtml({body.data(), qsizetype(body.size())}));
}

text::Text CDisplayBody::BodyOf(int row, text::TextView path) {
  return store_->Read([&](output::RDOSession& session) -> text::Text {
    if (!items_ || path != folderPath_) {
      ReleaseFolder();
      items_ = session.GetFolderFromPath(path)->Items();
      folderPath_ = path;
    }
    StepTo(row);
    text::Text body;
    const auto size = static_cast<std::uint32_t>(item_->Size());  // beyond 2 GiB it is negative
    if (size <= kLargestHtmlMessage) body = item_->Get(Field::HTMLBody).AsText();
    return body.empty() ? item_->Get(Field::Body).AsText() : body;
  });
}

/// From the first item, or from the last one shown if that stands before it.
void CDisplayBody::StepTo(int row) {
  if (!item_ || row < place_) {
    item_ = items_->GetFirst();
    place_ = 0;
  }
  for (; place_ < row && item_; ++place_) item_ = items_->GetNext();
}

}  // namespace velmora::workflow
