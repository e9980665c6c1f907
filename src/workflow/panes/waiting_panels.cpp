#include "workflow/panes/waiting_panels.h"

#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

#include "resources/string_table.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

/// A bar that runs without an end.
QProgressBar* Animation(QWidget* parent, const char* name) {
  auto* bar = new QProgressBar(parent);
  bar->setObjectName(QLatin1String(name));
  bar->setRange(0, 0);
  bar->setTextVisible(false);
  return bar;
}

void SetUpPanel(QFrame& panel, QSize size) {
  panel.setFrameShape(QFrame::StyledPanel);
  panel.setAutoFillBackground(true);
  panel.resize(size);
  panel.hide();
}

}  // namespace

CDlgLoading::CDlgLoading(QWidget* parent) : QFrame(parent) {
  SetUpPanel(*this, {240, 48});
  auto* layout = new QVBoxLayout(this);
  auto* bar = Animation(this, "1059");
  bar->setAccessibleName(QStringLiteral("Loading"));
  layout->addWidget(bar);
}

CFindDlg::CFindDlg(QWidget* parent) : QFrame(parent) {
  SetUpPanel(*this, {300, 110});
  auto* layout = new QVBoxLayout(this);
  auto* heading = new QLabel(ToQt(resources::LoadString(resources::kSearchingStores)), this);
  heading->setObjectName(QStringLiteral("1014"));
  QFont bold = heading->font();
  bold.setBold(true);
  heading->setFont(bold);
  auto* place = new QLabel(this);
  place->setObjectName(QStringLiteral("1055"));
  layout->addWidget(heading);
  layout->addWidget(Animation(this, "1013"));
  layout->addWidget(place);
}

}  // namespace velmora::workflow
