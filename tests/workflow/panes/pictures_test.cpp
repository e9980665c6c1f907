// The panes as pictures, taken without a window. With VELMORA_PICTURES set to a folder they are kept there.
#include <QGuiApplication>
#include <QLabel>
#include <QProgressBar>
#include <QTimer>
#include <cstdlib>
#include <set>

#include "controls/up_dialog.h"
#include "forge/demo_store.h"
#include "forge/mailbox.h"
#include "workflow/panes/result_fixture.h"

namespace velmora::workflow {
namespace {

enum class Theme { kLight, kDark };

QPalette DarkPalette() {
  QPalette dark(QColor(53, 53, 53), QColor(35, 35, 35));
  dark.setColor(QPalette::Base, QColor(28, 28, 28));
  dark.setColor(QPalette::Highlight, QColor(42, 110, 187));
  dark.setColor(QPalette::Link, QColor(120, 170, 255));
  return dark;
}

class PicturesTest : public ResultFixture, public testing::WithParamInterface<Theme> {
 protected:
  PicturesTest() {
    if (GetParam() == Theme::kDark) QApplication::setPalette(DarkPalette());
    panes_.resize(1000, 680);
  }
  ~PicturesTest() override { QApplication::setPalette(light_); }

  void RunDemo() {
    const std::filesystem::path path = folder_.Path() / "demo.ost";
    forge::ForgeDemoStore(forge::DemoState::kSound).Save(path);
    Run(path);
  }
  void ShowBodyOf(text::TextView folder, const QString& subject) {
    Select(*Folder(folder));
    CListViewRight& list = panes_.ListPane();
    const auto found = list.model()->match(list.model()->index(0, 2), Qt::DisplayRole, subject, 1, Qt::MatchExactly);
    ASSERT_EQ(found.size(), 1);
    list.selectRow(found[0].row());
    panes_.OnMessage({.code = 32848, .text = PathOf(*Folder(folder))});
  }

  QImage Take(QWidget& widget, const QString& name) {
    const QPixmap picture = widget.grab();
    EXPECT_FALSE(widget.isVisible()) << "nobody saw it";
    if (const char* folder = std::getenv("VELMORA_PICTURES")) {
      const QString theme = GetParam() == Theme::kDark ? "-dark" : "";
      const QString scale = picture.devicePixelRatio() > 1 ? "@2x" : "";
      EXPECT_TRUE(picture.save(QString("%1/panes-%2%3%4.png").arg(QString::fromLocal8Bit(folder), name, theme, scale)));
    }
    return picture.toImage();
  }
  /// Number of colours in a part of a picture: a few for an empty pane, many for text and icons.
  static std::size_t Colours(const QImage& picture, const QRect& part) {
    const int scale = int(picture.devicePixelRatio());
    std::set<QRgb> colours;
    for (int y = part.top() * scale; y <= part.bottom() * scale; ++y) {
      for (int x = part.left() * scale; x <= part.right() * scale; ++x) colours.insert(picture.pixel(x, y));
    }
    return colours.size();
  }

  static constexpr QRect kTree{0, 0, 240, 680};
  static constexpr QRect kUpper{260, 0, 730, 350};
  static constexpr QRect kLower{260, 394, 730, 270};

 private:
  QPalette light_ = QApplication::palette();
};

INSTANTIATE_TEST_SUITE_P(Themes, PicturesTest, testing::Values(Theme::kLight, Theme::kDark),
                         [](const auto& param) { return param.param == Theme::kDark ? "Dark" : "Light"; });

TEST_P(PicturesTest, TheWholeViewWithAListAndABody) {
  RunDemo();
  ShowBodyOf(u"Inbox", QStringLiteral("Fahrplan für den Sommer"));
  const QImage picture = Take(panes_, "mails");
  EXPECT_GT(Colours(picture, kTree), 60u) << "the tree with its icons";
  EXPECT_GT(Colours(picture, kUpper), 60u) << "the list";
  EXPECT_GT(Colours(picture, kLower), 10u) << "the body";
}

TEST_P(PicturesTest, TheGridOfEachKind) {
  RunDemo();
  for (const char16_t* kind : {u"Contacts", u"Tasks", u"Calendar", u"Journal", u"Notes"}) {
    Select(*Folder(kind));
    const QImage picture = Take(panes_, QString::fromUtf16(kind).toLower());
    EXPECT_TRUE(panes_.ShowsGrid());
    EXPECT_GT(Colours(picture, kUpper), 20u) << text::ToUtf8(kind);
  }
}

TEST_P(PicturesTest, TheBodyOfAMail) {
  const std::string html =
      "<html><body><h2>Minutes of the harbour meeting</h2><p style='color:#1F497D'>Dear all,</p>"
      "<p>these are the <b>decisions</b> of <i>Tuesday</i>, the plan is <a "
      "href='https://fjord.example/plan'>here</a>.</p>"
      "<ul><li>The pier closes at <font color=red>ten</font>.</li><li>The nets are counted by noon.</li></ul>"
      "<table border=1 cellpadding=4 cellspacing=0><tr bgcolor='#DCE7FF'><th>Boat</th><th>Berth</th><th>Due</th></tr>"
      "<tr><td>Alma</td><td align=right>4</td><td>3 May</td></tr>"
      "<tr><td>Brise</td><td align=right>11</td><td>9 May</td></tr></table>"
      "<blockquote>The tide waits for nobody.</blockquote><img src='https://fjord.example/logo.png' alt='[Fjord "
      "Ferries]'>"
      "<script>document.write('never')</script></body></html>";
  forge::Mailbox box({.client = forge::Client::kOffline});
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  box.AddMessage(inbox, {.subject = u"Minutes", .html = forge::ToBytes(html), .htmlPlace = forge::Place::kBlock});
  for (int i = 0; i < 60; ++i) box.AddMessage(inbox, {.subject = u"Filling"});
  const std::filesystem::path path = folder_.Path() / "minutes.ost";
  box.Finish().Save(path);
  Run(path);
  ShowBodyOf(u"Inbox", "Minutes");
  const QImage picture = Take(panes_.BodyPane(), "body");
  EXPECT_GT(Colours(picture, {{}, panes_.BodyPane().size()}), 60u) << "text, links and a coloured table";
  EXPECT_FALSE(panes_.BodyPane().toPlainText().contains(QStringLiteral("never")));
}

TEST_P(PicturesTest, TheEmptyPaneAheadOfTheFirstRun) {
  const QImage picture = Take(panes_, "empty");
  EXPECT_GT(Colours(picture, {0, 0, 1000, 680}), 60u) << "a picture fills it";
}

TEST_P(PicturesTest, TheDialogOverAFill) {
  controls::CUPDialog dialog(nullptr, QStringLiteral("Updating Contacts"), [](const auto&) { return true; });
  dialog.findChild<QLabel*>("1026")->setText(QStringLiteral("Loading..."));
  dialog.findChild<QLabel*>("1061")->setText(QStringLiteral("42%"));
  dialog.findChild<QProgressBar*>("1018")->setValue(42);
  dialog.resize(dialog.sizeHint());
  const QImage picture = Take(dialog, "updating");
  EXPECT_GT(Colours(picture, {{}, dialog.size()}), 20u);
}

}  // namespace
}  // namespace velmora::workflow
