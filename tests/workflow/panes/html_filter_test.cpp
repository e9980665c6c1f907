#include "workflow/panes/html_filter.h"

#include <gtest/gtest.h>

#include <QTextDocument>

namespace velmora::workflow {
namespace {

std::string Shown(const QString& html) { return ShownHtml(html).toStdString(); }

TEST(HtmlFilterTest, KeepsTheElementsThatItKnows) {
  EXPECT_EQ(Shown("<p>a <b>b</b> <I>c</I></p><hr>"), "<p>a <b>b</b> <i>c</i></p><hr>");
}

TEST(HtmlFilterTest, LeavesTagsOutThatItDoesNotKnowAndKeepsTheirText) {
  EXPECT_EQ(Shown("<html><body onload=x><o:p>a</o:p><blink>b</blink></body></html>"), "ab");
}

TEST(HtmlFilterTest, ScriptsAndStyleSheetsAreGone) {
  EXPECT_EQ(Shown("a<script>alert('<b>')</script><style>@import url(x);</style><title>t</title>b"), "ab");
}

TEST(HtmlFilterTest, FramesAndObjectsAreGone) {
  EXPECT_EQ(Shown("a<iframe src=x>i</iframe><object data=y>o</object><embed src=z><frame src=q><link href=r>b"), "ab");
}

TEST(HtmlFilterTest, OfAPictureTheTextIsShown) {
  EXPECT_EQ(Shown("<img src=http://x/y.png alt='A <cat>' width=1>"), "A &lt;cat&gt;");
  EXPECT_EQ(Shown("<img src=http://x/y.png>"), "");
}

TEST(HtmlFilterTest, AttributesThatNamePlacesAreGone) {
  EXPECT_EQ(Shown("<table background=x.png bgcolor=red onclick=y><tr><td "
                  "style=\"background:url(z);color:blue\">a</td></tr></table>"),
            "<table bgcolor=\"red\"><tr><td style=\"color:blue;\">a</td></tr></table>");
  EXPECT_EQ(Shown("<p style='list-style-image:url(a)'>a</p>"), "<p>a</p>");
}

TEST(HtmlFilterTest, ColoursAndSizesStay) {
  EXPECT_EQ(Shown("<span style='font-size:12.5pt;color:#1F497D;font-weight:bold'>a</span>"),
            "<span style=\"font-size:12.5pt;color:#1F497D;font-weight:bold;\">a</span>");
  EXPECT_EQ(Shown("<span style='color:burlywood'>a</span>"), "<span style=\"color:burlywood;\">a</span>");
  EXPECT_EQ(Shown("<font color=red size=+2 face=Any>a</font>"), "<font color=\"red\" size=\"+2\">a</font>");
}

TEST(HtmlFilterTest, SizesBeyondReasonAreGone) {
  EXPECT_EQ(Shown("<span style='font-size:100000px'>a</span>"), "<span>a</span>");
  EXPECT_EQ(Shown("<font size=99>a</font>"), "<font>a</font>");
  EXPECT_EQ(Shown("<table border=1000000 width=999999><tr><td colspan=99999 rowspan=77>a</table>"),
            "<table><tr><td>a</td></tr></table>");
}

TEST(HtmlFilterTest, ParagraphsOfAWordProcessorStandClose) {
  EXPECT_EQ(Shown("<p class=MsoNormal>a</p>"), "<p style=\"margin:0px\">a</p>");
}

TEST(HtmlFilterTest, ClosesWhatIsLeftOpen) {
  EXPECT_EQ(Shown("<div><b>a"), "<div><b>a</b></div>");
  EXPECT_EQ(Shown("<p>a<p>b"), "<p>a</p><p>b</p>");
  EXPECT_EQ(Shown("<ul><li>a<li>b<ul><li>c</ul></ul>"), "<ul><li>a</li><li>b<ul><li>c</li></ul></li></ul>");
  EXPECT_EQ(Shown("<table><tr><td>a<td><b>b<tr><td>c</table>d"),
            "<table><tr><td>a</td><td><b>b</b></td></tr><tr><td>c</td></tr></table>d");
}

TEST(HtmlFilterTest, EndTagsWithoutABeginningAreNothing) {
  EXPECT_EQ(Shown("a</b></table></p>b"), "ab");
  EXPECT_EQ(Shown("<b><table><tr><td>a</b>c</td></tr></table>d</b>"), "<b><table><tr><td>ac</td></tr></table>d</b>");
}

TEST(HtmlFilterTest, PartsOfATableAreNothingOutsideOfOne) { EXPECT_EQ(Shown("<tr><td>a</td></tr>"), "a"); }

TEST(HtmlFilterTest, SignsThatMeanTagsAreWrittenOut) {
  EXPECT_EQ(Shown("1 < 2 > 0 & &amp; &nbsp; &x"), "1 &lt; 2 &gt; 0 &amp; &amp; &nbsp; &amp;x");
  EXPECT_EQ(Shown("&#60;b&#x3E;&#8364;"), "&lt;b&gt;\u20ac");
}

TEST(HtmlFilterTest, CharactersThatADocumentKeepsForItselfAreGone) {
  EXPECT_EQ(Shown(QString("a") + QChar(0) + QChar(0xFDD0) + QChar(0xFFFC) + QChar(0xD800) + "b"), "ab");
  EXPECT_EQ(Shown("a&#0;&#64976;&#xFFFC;&#xD800;&#9999999;b"), "ab");
  EXPECT_EQ(Shown("a\U0001F600b"), "a\U0001F600b");
}

TEST(HtmlFilterTest, LongWordsMayBreak) {
  const QString shown = ShownHtml(QString(1000, u'x'));
  EXPECT_EQ(shown.count(QChar(0x200B)), 3);
  EXPECT_EQ(QString(shown).remove(QChar(0x200B)), QString(1000, u'x'));
  EXPECT_EQ(ShownHtml(QString("word ").repeated(1000)).count(QChar(0x200B)), 0);
}

TEST(HtmlFilterTest, NestedTagsEndAtABound) {
  const QString shown =
      ShownHtml(QString("<div>").repeated(1000) + "x" + QString("</div>").repeated(1000) + "<b>y</b>");
  EXPECT_EQ(shown.count("<div>"), 64);
  EXPECT_EQ(shown.count("</div>"), 64);
  EXPECT_TRUE(shown.endsWith("<b>y</b>")) << "and what follows is as it was";
}

TEST(HtmlFilterTest, ElementsEndAtABoundAndTheTextStays) {
  const QString shown = ShownHtml(QString("<b>x</b>").repeated(100000));
  EXPECT_EQ(shown.count("<b>"), 25000);
  EXPECT_EQ(shown.count("x"), 100000);
}

TEST(HtmlFilterTest, TablesThatCostTooMuchBecomeText) {
  const QString row = "<tr><td>left</td><td>right</td></tr>";
  const QString nested = QString("<table><tr><td>").repeated(8) + QString("<table>" + row + "</table>").repeated(2000) +
                         QString("</td></tr></table>").repeated(8);
  const QString shown = ShownHtml(nested);
  EXPECT_FALSE(shown.contains("<table"));
  EXPECT_EQ(shown.count("left right"), 2000);
  EXPECT_TRUE(ShownHtml("<table>" + row + "</table>").contains("<table"));
}

TEST(HtmlFilterTest, AWideTableOfManyRowsBecomesText) {
  const QString shown =
      ShownHtml("<table><tr>" + QString("<td>a").repeated(3000) + QString("<tr><td>b").repeated(3000));
  EXPECT_FALSE(shown.contains("<table")) << "nine million places for cells";
}

TEST(HtmlFilterTest, AListOfManyItemsGoesOnAsLines) {
  const QString shown = ShownHtml("<ul>" + QString("<li>x").repeated(5000));
  EXPECT_EQ(shown.count("<li>"), 4000);
  EXPECT_EQ(shown.count("<br>"), 1000);
}

TEST(HtmlFilterTest, ATableOfVeryMuchTextBecomesText) {
  const QString word = "word ";
  EXPECT_TRUE(ShownHtml("<table><tr><td>" + word.repeated(200000)).contains("<table"));
  EXPECT_FALSE(ShownHtml("<table><tr><td>" + word.repeated(300000)).contains("<table"));
}

TEST(HtmlFilterTest, TextBeyondTheBoundIsCutOff) {
  constexpr qsizetype kBound = 3 * 1024 * 1024;
  EXPECT_FALSE(ShownHtml(QString("ab ").repeated(kBound / 3)).endsWith("<p>...</p>"));
  const QString shown = ShownHtml(QString("ab ").repeated(kBound));
  EXPECT_TRUE(shown.endsWith("<p>...</p>"));
  EXPECT_LT(shown.size(), kBound + 10000);
}

}  // namespace
}  // namespace velmora::workflow
