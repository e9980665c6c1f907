#include "workflow/panes/display_body.h"

#include <QTextCursor>

#include "workflow/panes/body_fixture.h"
#include "workflow/panes/one_folder_session.h"

namespace velmora::workflow {
namespace {

using output::Field;

using DisplayBodyTest = BodyFixture;

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

TEST_F(DisplayBodyTest, TextAndLinksCanBeReadUnderADarkThemeToo) {
  const QPalette before = QApplication::palette();
  QPalette dark(QColor(40, 40, 40), QColor(30, 30, 30));
  dark.setColor(QPalette::Link, QColor(150, 190, 255));
  QApplication::setPalette(dark);
  CDisplayBody body(nullptr, finished_, selection_);
  AddMail({{Field::HTMLBody, u"text <a href='http://a.example'>link</a> <a name=x>place</a>"}});
  selection_.selected = 0;
  body.OnMessage({.code = 32848, .text = PathOf(u"Inbox")});
  QApplication::setPalette(before);
  const auto colourOf = [&](const char* word) {
    const QColor own = body.document()->find(word).charFormat().foreground().color();
    return body.document()->find(word).charFormat().hasProperty(QTextFormat::ForegroundBrush)
               ? own
               : body.palette().color(QPalette::Text);
  };
  EXPECT_GT(body.palette().color(QPalette::Base).lightness(), 200);
  for (const char* word : {"text", "link", "place"}) EXPECT_LT(colourOf(word).lightness(), 120) << word;
  EXPECT_NE(colourOf("link"), colourOf("text"));
  EXPECT_EQ(colourOf("place"), colourOf("text"));
}

/// An item of any size, which has both bodies.
class SizedItem : public StubItem {
 public:
  explicit SizedItem(std::int32_t size) : size_(size) {}
  output::FieldRead Get(Field field) const override {
    return {text::Text(field == Field::HTMLBody ? u"html" : u"plain"), true};
  }
  std::int32_t Size() const override { return size_; }

 private:
  std::int32_t size_;
};

class SizedSession : public ItemsSession {
 public:
  explicit SizedSession(std::int32_t size) : size_(size) {}
  output::Ref<output::RDOFolder> GetFolderFromPath(text::TextView path) override {
    ++opened;
    if (meanwhile) meanwhile();
    return ItemsSession::GetFolderFromPath(path);
  }
  std::int32_t Count() const override { return 3; }
  output::Ref<output::RDOMail> GetFirst() override {
    ++started;
    return GetNext();
  }
  output::Ref<output::RDOMail> GetNext() override { return std::make_shared<SizedItem>(size_); }

  int opened = 0, started = 0;
  std::function<void()> meanwhile;

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
  EXPECT_EQ(ShownOfSize(4 * 1024 * 1024 - 1), "plain") << "no part of a MiB is dropped";
}

TEST_F(DisplayBodyTest, ASizeBeyondTwoGiBIsNoSmallOne) {
  EXPECT_EQ(ShownOfSize(std::numeric_limits<std::int32_t>::min()), "plain");
  EXPECT_EQ(ShownOfSize(-1), "plain");
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

TEST_F(DisplayBodyTest, ASecondCallDuringTheFirstDoesNothing) {
  auto session = std::make_shared<SizedSession>(1);
  output::Ref<output::RDOSession> held;
  auto store = std::make_shared<FinishedStore>(held, [&](text::TextView) { return session; });
  selection_.rows = 3;
  CDisplayBody body(nullptr, store, selection_);
  session->meanwhile = [&] { body.OnMessage({.code = 32848, .text = u"other"}); };
  body.OnMessage({.code = 32848, .text = u"any"});
  EXPECT_EQ(session->opened, 1);
  EXPECT_EQ(body.toPlainText(), "html");
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

}  // namespace
}  // namespace velmora::workflow
