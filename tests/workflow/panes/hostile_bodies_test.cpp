// Bodies that are made to fetch something, to run something, or to keep the program busy for ever.
#include <QFile>
#include <QTest>
#include <cstdio>
#include <ctime>

#include "platform/path_text.h"
#include "platform/user_folders.h"
#include "store/messaging/pst_library.h"
#include "workflow/panes/body_fixture.h"
#include "workflow/panes/open_files.h"

namespace velmora::workflow {
namespace {

using output::Field;

/// What is longer is cut.
constexpr qsizetype kLongest = 3 * 1024 * 1024 - 5;

constexpr qsizetype kFiftyMegabytes = 50 * 1024 * 1024;

constexpr int kBearable = 8000;  // milliseconds; a build without optimisation is slow

QString Repeated(const QString& text, qsizetype length) { return text.repeated(length / text.size() + 1); }

class HostileBodyTest : public BodyFixture {
 protected:
  HostileBodyTest() {
    body_.resize(600, 400);
    body_.show();
  }
  void ShowHtml(text::TextView html) {
    AddMail({{Field::HTMLBody, text::Text(html)}});
    Show(selection_.rows - 1);
  }
  /// Milliseconds of processor time, which other work on the machine does not lengthen, until the body is on the
  /// screen. What it begins with must be there.
  qint64 TimeToShow(const QString& html) {
    items_.clear();
    body_.ReleaseFolder();
    selection_.rows = 0;
    AddMail({{Field::Body, ("shown" + html).toStdU16String()}});  // both bodies take the same road
    const std::clock_t start = std::clock();
    Show(0);
    body_.grab();
    const qint64 time = (std::clock() - start) * qint64{1000} / CLOCKS_PER_SEC;
    EXPECT_TRUE(Shown().startsWith("shown"));
    return time;
  }
  void ExpectBearable(const QString& html, const char* what) {
    const qint64 time = TimeToShow(html);
    std::printf("%lld KiB, %s: %lld ms\n", static_cast<long long>(html.size() / 1024), what,
                static_cast<long long>(time));
    EXPECT_LT(time, kBearable) << what;
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

bool HasLoaded(const char* library) {
  QFile maps("/proc/self/maps");
  return maps.open(QFile::ReadOnly) && maps.readAll().contains(library);
}

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

TEST_F(HostileBodyTest, WhatGetsPastTheFilterIsRefusedWithoutANetwork) {
  ASSERT_TRUE(HasLoaded("libQt6Widgets")) << "libraries can be told";
  const auto sockets = [] { return OpenFiles().filter("socket:").size(); };
  const auto before = sockets();
  body_.setHtml(
      "<html><head><link rel=stylesheet href='http://a.example/s.css'></head><body background='http://b.example/b.png'>"
      "<img src='http://c.example/c.png'><img src='https://d.example/d.png'><img src='ftp://e.example/e.png'>"
      "<img src='file:///etc/hostname'><p style=\"background-image:url('http://f.example/f.png')\">text</p>"
      "<img src='data:image/png;base64,AAAA'><table background='//g.example/g.png'><tr><td>cell</table></body></html>");
  body_.grab();
  QTest::qWait(50);
  EXPECT_GE(body_.Refused(), 6);
  EXPECT_EQ(sockets(), before);
  EXPECT_FALSE(HasLoaded("libQt6Network")) << "there is nothing here that could fetch";
}

TEST_F(HostileBodyTest, ScriptsAndFramesAreNotEvenText) {
  ShowHtml(
      u"<frameset cols=*><frame src='http://a.example'></frameset><a href='javascript:run()'>link</a>"
      u"<script>run()</script><SCRIPT src=x></SCRIPT ><svg onload=run()><script>run()</script></svg>"
      u"<iframe srcdoc='<script>run()</script>'>run()</iframe> <noscript>still</noscript>"
      u"<img src=x onerror=run()><form action='http://b.example'><input value=run><button>press</button></form>");
  EXPECT_EQ(Shown().simplified(), "link still press");
  EXPECT_EQ(body_.Refused(), 0);
}

TEST_F(HostileBodyTest, EntitiesOfADocumentsOwnAreNotExpanded) {
  QString bomb = "<!DOCTYPE html [<!ENTITY a \"lol\">";
  for (char name = 'b'; name < 'k'; ++name) {
    bomb += QString("<!ENTITY %1 \"%2\">").arg(QChar(name), QString("&%1;").arg(QChar(name - 1)).repeated(10));
  }
  bomb += "]><html><body>before &j; after</body></html>";
  ExpectBearable(bomb, "entities of entities");
  EXPECT_LT(Shown().size(), 2000);
  EXPECT_TRUE(Shown().contains("after"));
  EXPECT_FALSE(Shown().contains("lollol"));
  ExpectBearable(Repeated("&amp;", kLongest), "entities");
  ExpectBearable(Repeated("&#x41;&#66;", kLongest), "numbers for characters");
  ExpectBearable(Repeated("&", kLongest), "entities without a name");
}

TEST_F(HostileBodyTest, BytesThatAreNoTextHangNothingAndHideNothing) {
  // As the bytes of a body come across where they are no UTF-8: one unit each.
  QString bytes;
  for (int i = 0; i < 100000; ++i) bytes += QChar(0x80 + i % 0x80);
  ExpectBearable(bytes + "after", "continuation bytes");
  EXPECT_TRUE(Shown().endsWith("after"));
  QString surrogates;
  for (int i = 0; i < 100000; ++i) surrogates += QChar(0xD800 + i % 0x800);
  ExpectBearable(surrogates + "after", "surrogates in any order");
  EXPECT_TRUE(Shown().endsWith("after"));
  ExpectBearable(QString(100000, QChar(0)) + "after", "zeros");
  EXPECT_TRUE(Shown().endsWith("after"));
}

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

TEST_F(HostileBodyTest, FiftyMegabytesOfNestedTagsHangNothing) {
  for (const char* tag : {"<div>", "<table><tr><td>", "<b><i>"}) ExpectBearable(Repeated(tag, kFiftyMegabytes), tag);
}

TEST_F(HostileBodyTest, AMessageOfFiftyMegabytesOfHtmlShowsItsPlainText) {
  const auto folder = platform::TemporaryFolder::Create();
  ASSERT_TRUE(folder);
  messaging::PstLibraryOptions options;
  options.configFolder = folder->Path();
  messaging::PstLibrary library(std::move(options));
  const text::Text path = platform::TextOfPath(folder->Path() / "large.pst");
  {
    const auto store = library.CreateRDOSession()->Stores()->AddPSTStore(path, u"Test Converted");
    const auto item =
        store->IPMRootFolder()->Folders()->Add(u"Inbox", text::Text(u"IPF.Note"))->Items()->Add(u"IPM.Note");
    item->Put(Field::HTMLBody, Repeated("<div>", kFiftyMegabytes).toStdU16String());
    item->Put(Field::Body, u"the plain text");
    item->Save();
  }
  const auto session = library.CreateRDOSession();
  session->Stores()->OpenPSTStore(path);
  output::Ref<output::RDOSession> held;
  const auto store = std::make_shared<FinishedStore>(held, [&](text::TextView) { return session; });
  selection_.rows = 1;
  CDisplayBody body(nullptr, store, selection_);
  QElapsedTimer timer;
  timer.start();
  body.OnMessage({.code = 32848, .text = PathOf(u"Inbox")});
  EXPECT_EQ(body.toPlainText(), "the plain text");
  EXPECT_LT(timer.elapsed(), 1000) << "the HTML is not even read";
}

TEST_F(HostileBodyTest, VeryManyOfAnyTagHangNothing) {
  qint64 longest = 0;
  for (const char* tag : kTags) {
    const qint64 time = TimeToShow((QString(tag).startsWith("<li") ? "<ul>" : "") + Repeated(tag, 200000));
    EXPECT_LT(time, kBearable) << tag;
    longest = std::max(longest, time);
  }
  std::printf("195 KiB of any one tag: at most %lld ms\n", static_cast<long long>(longest));
}

TEST_F(HostileBodyTest, WideTablesOfManyRowsHangNothing) {
  ExpectBearable("<table><tr>" + QString("<td>").repeated(100000) + QString("<tr><td>").repeated(100000), "wide table");
}

TEST_F(HostileBodyTest, TextsWithoutAnEndHangNothing) {
  ExpectBearable(QString(kLongest, u'x'), "a word without an end");
  ExpectBearable(Repeated("word ", kLongest), "a paragraph without an end");
  ExpectBearable("<pre>" + QString(kLongest, u'x'), "a line without an end");
}

}  // namespace
}  // namespace velmora::workflow
