#include "controls/plain_tip.h"

#include <gtest/gtest.h>

#include "controls/hostile_texts.h"
#include "controls/shown_tip.h"

namespace velmora::controls {
namespace {

QString Shown(const QString& text) {
  const QLabel tip(PlainTip(text));  // a tip is a label too
  return ReadOn(tip);
}

TEST(PlainTipTest, ShowsEveryCharacterOfATextAndOpensNothing) {
  WatchedPipe pipe;
  for (const QString& text : HostileTexts(pipe.Path())) {
    EXPECT_EQ(Shown(text).toStdString(), text.toStdString());
    EXPECT_TRUE(Qt::mightBeRichText(PlainTip(text))) << "else its entities would be shown";
    QLabel(PlainTip(text)).grab();
  }
  EXPECT_FALSE(pipe.WasOpened());
}

TEST(PlainTipTest, AnEmptyTextHasNone) { EXPECT_TRUE(PlainTip("").isEmpty()); }

TEST(PlainTipTest, ShowsTheFirst4000Characters) {
  const QString text = QStringLiteral("four ").repeated(900);
  EXPECT_EQ(Shown(text), text.left(4000));
}

TEST(PlainTipTest, ALongWordBreaks) {
  const QString word(300, u'x');
  EXPECT_EQ(Shown(word).remove(QChar(0x200B)), word);
  QLabel tip(PlainTip(word));
  tip.setWordWrap(true);
  EXPECT_LT(tip.minimumSizeHint().width(), 100 * tip.fontMetrics().horizontalAdvance(u'x'));
}

TEST(PlainTipTest, APairOfUnitsIsNotTornApart) {
  const QString word = QString(79, u'x') + QString::fromUcs4(U"\U0001F600") + QString(9, u'y');
  EXPECT_EQ(Shown(word).remove(QChar(0x200B)), word);
  EXPECT_TRUE(Shown(word).contains(QString::fromUcs4(U"\U0001F600")));
}

TEST(PlainTipTest, LineEndsOfAnyKindEndALine) { EXPECT_EQ(Shown("a\r\nb\rc\nd"), "a\nb\nc\nd"); }

TEST(PlainTipTest, WhatADocumentKeepsForItselfIsBlank) {
  QString marks = "a";
  for (const uint mark : {0xFDD0u, 0xFDD1u, 0xFDEFu, 0xFFFCu, 0x2028u, 0x2029u, 0u, 1u}) marks += QChar(mark);
  EXPECT_EQ(Shown(marks + "b"), "a" + QString(8, u' ') + "b");
}

}  // namespace
}  // namespace velmora::controls
