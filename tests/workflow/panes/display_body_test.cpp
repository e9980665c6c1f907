#include "workflow/panes/display_body.h"

#include <QFile>
#include <QScrollBar>
#include <QTest>

#include "platform/user_folders.h"
#include "workflow/panes/store_fixture.h"

namespace velmora::workflow {
namespace {

using output::Field;

struct FixedSelection : ItemSelection {
  int RowCount() const override { return rows; }
  int SelectedRow() const override { return selected; }
  int rows = 0;
  int selected = -1;
};

class DisplayBodyTest : public StoreFixture {
 protected:
  void AddMail(const FieldValues& fields) {
    AddItem(inbox_, u"IPM.Note", fields);
    ++selection_.rows;
  }
  void Show(int row, std::uint32_t key = 0, text::TextView folder = u"Inbox") {
    selection_.selected = row;
    body_.OnMessage({.code = 32848, .number = key, .text = PathOf(folder)});
  }
  QString Shown() const { return body_.toPlainText(); }

  output::Ref<output::RDOFolder> inbox_ = AddFolder(u"Inbox", u"IPF.Note");
  FixedSelection selection_;
  CDisplayBody body_{nullptr, finished_, selection_};
};

TEST_F(DisplayBodyTest, ShowsTheHtmlBody) {
  AddMail({{Field::HTMLBody, u"<p>Hello <b>world</b></p>"}, {Field::Body, u"plain"}});
  Show(0);
  EXPECT_EQ(Shown(), "Hello world");
}

TEST_F(DisplayBodyTest, ShowsThePlainBodyWhereThereIsNoHtml) {
  AddMail({{Field::Body, u"plain"}});
  Show(0);
  EXPECT_EQ(Shown(), "plain");
}

TEST_F(DisplayBodyTest, ThePlainBodyGoesToTheDocumentAsItStands) {
  AddMail({{Field::Body, u"one\r\ntwo <b>three</b> &amp; <four@five>"}});
  Show(0);
  EXPECT_EQ(Shown(), "one two three & ") << "as if it were HTML";
}

/// An item of any size.
class SizedItem : public output::RDOMail {
 public:
  explicit SizedItem(std::int32_t size) : size_(size) {}
  void Save() override {}
  void Put(Field, const output::FieldValue&) override {}
  output::FieldRead Get(Field field) const override {
    return {text::Text(field == Field::HTMLBody ? u"html" : u"plain"), true};
  }
  bool Answers(output::ItemInterface) const override { return true; }
  output::Ref<output::RDOAttachments> Attachments() override { return nullptr; }
  void Delete() override {}
  output::Ref<RDOMail> Reply() override { return nullptr; }
  output::Ref<RDOMail> Forward() override { return nullptr; }
  void AddPicture(const output::ContentSource&) override {}
  text::Text MessageClass() const override { return u"IPM.Note"; }
  std::int32_t Size() const override { return size_; }
  std::int32_t AttachmentCount() const override { return 0; }

 private:
  std::int32_t size_;
};

class SizedSession : public output::RDOSession,
                     public output::RDOFolder,
                     public output::RDOItems,
                     public std::enable_shared_from_this<SizedSession> {
 public:
  explicit SizedSession(std::int32_t size) : size_(size) {}
  void Logon(text::TextView) override {}
  output::Ref<output::RDOStores> Stores() override { return nullptr; }
  output::Ref<output::RDOFolder> GetDefaultFolder(output::DefaultFolder) override { return nullptr; }
  output::Ref<output::RDOFolder> GetFolderFromPath(text::TextView) override {
    ++opened;
    return shared_from_this();
  }
  output::Ref<output::RDOItems> Items() override { return shared_from_this(); }
  output::Ref<output::RDOFolders> Folders() override { return nullptr; }
  output::Ref<output::RDOFolder2> QueryFolder2() override { return nullptr; }
  text::Text Name() const override { return {}; }
  text::Text ContainerClass() const override { return {}; }
  std::int32_t Count() const override { return 3; }
  output::Ref<output::RDOMail> Add(text::TextView) override { return nullptr; }
  output::Ref<output::RDOMail> GetFirst() override {
    ++started;
    return std::make_shared<SizedItem>(size_);
  }
  output::Ref<output::RDOMail> GetNext() override { return std::make_shared<SizedItem>(size_); }

  int opened = 0, started = 0;

 private:
  std::int32_t size_;
};

/// What the pane shows of a message of that size that has both bodies.
QString ShownOfSize(std::int32_t size) {
  output::Ref<output::RDOSession> session;
  auto store =
      std::make_shared<FinishedStore>(session, [size](text::TextView) { return std::make_shared<SizedSession>(size); });
  FixedSelection selection;
  selection.rows = 1;
  CDisplayBody body(nullptr, store, selection);
  body.OnMessage({.code = 32848, .text = u"any"});
  return body.toPlainText();
}

TEST_F(DisplayBodyTest, AMessageOfJustOverThreeMiBShowsItsPlainText) {
  EXPECT_EQ(ShownOfSize(3 * 1024 * 1024), "html");
  EXPECT_EQ(ShownOfSize(3 * 1024 * 1024 + 1), "plain");
}

TEST_F(DisplayBodyTest, TheKeysTakeOneStepFromTheSelectedRow) {
  for (const char16_t* body : {u"first", u"second", u"third"}) AddMail({{Field::Body, body}});
  Show(1);
  EXPECT_EQ(Shown(), "second");
  Show(1, 38);
  EXPECT_EQ(Shown(), "first");
  Show(1, 40);
  EXPECT_EQ(Shown(), "third");
}

TEST_F(DisplayBodyTest, DownOnTheLastRowShowsTheLastRowAgain) {
  for (const char16_t* body : {u"first", u"last"}) AddMail({{Field::Body, body}});
  Show(1, 40);
  EXPECT_EQ(Shown(), "last");
}

TEST_F(DisplayBodyTest, UpOnTheFirstRowShowsTheFirstRowAgain) {
  for (const char16_t* body : {u"first", u"last"}) AddMail({{Field::Body, body}});
  Show(0, 38);
  EXPECT_EQ(Shown(), "first");
}

TEST_F(DisplayBodyTest, WithoutRowsNothingIsShown) {
  AddMail({{Field::Body, u"first"}});
  Show(0);
  selection_.rows = 0;
  Show(0);
  EXPECT_EQ(Shown(), "first") << "what was there stays";
}

TEST_F(DisplayBodyTest, BlankEmptiesThePane) {
  AddMail({{Field::Body, u"first"}});
  Show(0);
  body_.OnMessage({.code = 32849});
  EXPECT_EQ(Shown(), "");
}

TEST_F(DisplayBodyTest, AnItemThatCannotBeReadShowsNoOtherOnesBody) {
  AddMail({{Field::Body, u"first"}});
  Show(0);
  Show(0, 0, u"Nowhere");
  EXPECT_EQ(Shown(), "");
  Show(0);
  EXPECT_EQ(Shown(), "first");
}

TEST_F(DisplayBodyTest, TheNextItemOfAFolderNeedsNoSecondOpening) {
  auto session = std::make_shared<SizedSession>(1);
  output::Ref<output::RDOSession> held;
  auto store = std::make_shared<FinishedStore>(held, [&](text::TextView) { return session; });
  selection_.rows = 3;
  CDisplayBody body(nullptr, store, selection_);
  for (const int row : {0, 1, 2}) {
    selection_.selected = row;
    body.OnMessage({.code = 32848, .text = u"any"});
  }
  EXPECT_EQ(session->opened, 1);
  EXPECT_EQ(session->started, 1) << "and no second walk from the first item";
  body.OnMessage({.code = 32848, .text = u"other"});
  EXPECT_EQ(session->opened, 2);
  body.ReleaseFolder();
  body.OnMessage({.code = 32848, .text = u"other"});
  EXPECT_EQ(session->opened, 3);
}

/// What is longer is cut.
constexpr qsizetype kLongest = 3 * 1024 * 1024 - 5;

class HostileBodyTest : public DisplayBodyTest {
 protected:
  HostileBodyTest() {
    body_.resize(600, 400);
    body_.show();
  }
  /// Milliseconds until the body is on the screen. What it begins with must be there.
  qint64 TimeToShow(const QString& html) {
    items_.clear();
    body_.ReleaseFolder();
    selection_.rows = 0;
    AddMail({{Field::Body, ("shown" + html).toStdU16String()}});  // both bodies take the same road
    QElapsedTimer timer;
    timer.start();
    Show(0);
    body_.grab();
    const qint64 time = timer.elapsed();
    EXPECT_TRUE(Shown().startsWith("shown"));
    return time;
  }
  /// Does the picture of the pane hold a pixel of that colour?
  bool Holds(QColor colour) {
    const QImage shown = body_.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < shown.height(); ++y) {
      for (int x = 0; x < shown.width(); ++x) {
        if (shown.pixelColor(x, y) == colour) return true;
      }
    }
    return false;
  }
};

constexpr const char* kTags[] = {
    "<div>",
    "<b>x",
    "<p>x",
    "<br>",
    "<hr>",
    "<pre>x",
    "x<sup>",
    "<font size=7>x",
    "<span style='color:red'>x",
    "<table><tr><td>x",
    "<table><tr><td>x</table>",
    "<table><tr><td colspan=20 rowspan=20>",
    "<td>",
    "<tr>",
    "<li>x",
    "<ul><li>x",
    "<img alt=x>",
    "<a href=x>x",
    "<",
    "</b>",
    "<!--",
    "&amp;",
    "&#65;",
    "<b x=\"",
    "<ul><li>x</ul>",
    "<ul>x",
    "<ol><li>x</ol>",
    "<h1>x",
    "<h1>x</h1>",
    "<blockquote>x</blockquote>",
    "<dl><dt>x<dd>y",
    "<center>x",
    "<code>x",
    "<dd>x",
    "<a name=x>",
    "<sub><sup>x",
    "<table>x",
    "<table><tr>x",
    "<tr><td>x",
    "<th>x</th>x",
    "&nbsp;",
    "\xF0\x9F\x98\x80",
};

constexpr int kBearable = 8000;  // milliseconds; a build without optimisation under load is slow

TEST_F(HostileBodyTest, NoFileIsReadByAnyOfItsNames) {
  const auto folder = platform::TemporaryFolder::Create();
  ASSERT_TRUE(folder);
  const QString file = QString::fromStdString((folder->Path() / "picture.png").string());
  QImage magenta(50, 50, QImage::Format_RGB32);
  magenta.fill(Qt::magenta);
  ASSERT_TRUE(magenta.save(file));
  const auto picture = [](const QString& name) {
    return QStringLiteral("<img src=\"%1\" width=50 height=50>").arg(name);
  };
  const QString names[] = {file, "file://" + file, "//" + file, "qrc:/BITMAP/203.svg", ":/BITMAP/203.svg"};
  for (const QString& name : names) {
    AddMail({{Field::HTMLBody, ("before " + picture(name) + " after").toStdU16String()}});
    Show(selection_.rows - 1);
    EXPECT_EQ(Shown(), "before after") << name.toStdString();
    EXPECT_FALSE(Holds(Qt::magenta)) << name.toStdString();
  }
  // Behind the filter stands a document that has no way to a file either.
  for (const QString& name : names) {
    body_.setHtml(picture(name) + "<table background=\"" + name +
                  "\"><tr><td>a</td></tr></table><link rel=stylesheet href=\"" + name + "\">");
    EXPECT_FALSE(Holds(Qt::magenta)) << name.toStdString();
  }
  EXPECT_GT(body_.Refused(), 0);
  EXPECT_EQ(body_.document()->resource(QTextDocument::HtmlResource, QUrl::fromLocalFile(file)).toByteArray(),
            QByteArray());
}

TEST_F(HostileBodyTest, NothingIsAskedForAtAll) {
  AddMail(
      {{Field::HTMLBody,
        u"<html><head><link rel=stylesheet href='http://a.example/s.css'><style>@import 'http://b.example';"
        u"body{background:url(http://c.example)}</style><script src='http://d.example'>document.write('run')</script>"
        u"</head><body background='http://e.example' onload='run()'>text<img src='http://f.example/x.png'>"
        u"<iframe src='http://g.example'>frame</iframe><object data='http://h.example'></object>"
        u"<embed src='http://i.example'><video src='http://j.example'></video>"
        u"<div style=\"background-image:url('http://k.example')\">div</div>"
        u"<ul style='list-style-image:url(http://l.example)'><li>item</ul>"
        u"<table background='file:///etc/passwd'><tr><td background='//m.example/share'>cell</table>"
        u"<meta http-equiv=refresh content='0;url=http://n.example'></body></html>"}});
  Show(0);
  body_.grab();
  QTest::qWait(50);
  EXPECT_EQ(body_.Refused(), 0) << "the filter leaves nothing to refuse";
  EXPECT_EQ(Shown().simplified(), "text div item cell");
}

TEST_F(HostileBodyTest, ALinkOpensNothing) {
  AddMail({{Field::HTMLBody, u"<p><a href='file:///etc/passwd'>a link of some length to click on</a></p>"}});
  Show(0);
  EXPECT_FALSE(body_.openLinks());
  EXPECT_FALSE(body_.openExternalLinks());
  const QString before = Shown();
  QTest::mouseClick(body_.viewport(), Qt::LeftButton, {}, QPoint(40, 20));
  EXPECT_EQ(Shown(), before);
  body_.setSource(QUrl("file:///etc/passwd"));
  EXPECT_EQ(Shown(), before);
}

TEST_F(HostileBodyTest, FiftyMegabytesOfNestedTagsHangNothing) {
  for (const char* tag : {"<div>", "<table><tr><td>"}) {
    const QString html = QString(tag).repeated(50 * 1024 * 1024 / qsizetype(strlen(tag)) + 1);
    EXPECT_LT(TimeToShow(html), kBearable) << tag;
  }
}

TEST_F(HostileBodyTest, VeryManyOfAnyTagHangNothing) {
  for (const char* tag : kTags) {
    const QString html =
        (QString(tag).startsWith("<li") ? "<ul>" : "") + QString(tag).repeated(200000 / qsizetype(strlen(tag)));
    EXPECT_LT(TimeToShow(html), kBearable) << tag;
  }
}

TEST_F(HostileBodyTest, WideTablesOfManyRowsHangNothing) {
  const QString wide = "<table><tr>" + QString("<td>").repeated(100000) + QString("<tr><td>").repeated(100000);
  EXPECT_LT(TimeToShow(wide), kBearable);
}

TEST_F(HostileBodyTest, TextsWithoutAnEndHangNothing) {
  EXPECT_LT(TimeToShow(QString(kLongest, u'x')), kBearable);
  EXPECT_LT(TimeToShow(QString("word ").repeated(kLongest / 5)), kBearable);
  EXPECT_LT(TimeToShow("<pre>" + QString(kLongest, u'x')), kBearable);
}

}  // namespace
}  // namespace velmora::workflow
