#include "workflow/panes/html_tokens.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::workflow {
namespace {

using testing::ElementsAre;

/// "text", "<name attributes>" and "</name>".
std::vector<std::string> TokensOf(const QString& html) {
  std::vector<std::string> found;
  HtmlTokens tokens(html);
  for (HtmlToken token; tokens.Next(token);) {
    switch (token.kind) {
      case HtmlToken::kText:
        found.push_back(token.text.toString().toStdString());
        break;
      case HtmlToken::kStartTag:
        found.push_back("<" + token.name.toStdString() + token.attributes.toString().toStdString() + ">");
        break;
      case HtmlToken::kEndTag:
        found.push_back("</" + token.name.toStdString() + ">");
        break;
    }
  }
  return found;
}

TEST(HtmlTokensTest, CutsTextsAndTags) {
  EXPECT_THAT(TokensOf("a<B>c</B >d<br/>"), ElementsAre("a", "<b>", "c", "</b>", "d", "<br/>"));
}

TEST(HtmlTokensTest, PassesOverCommentsDeclarationsAndInstructions) {
  EXPECT_THAT(TokensOf("<!DOCTYPE html><!-- <b> > --><?xml?>a<![if !x]>b<!--"), ElementsAre("a", "b"));
}

TEST(HtmlTokensTest, ASignThatBeginsNoTagIsText) {
  EXPECT_THAT(TokensOf("1 < 2"), ElementsAre("1 ", "<", " 2"));
  EXPECT_THAT(TokensOf("<"), ElementsAre("<"));
  EXPECT_THAT(TokensOf("</"), ElementsAre("<", "/"));
}

TEST(HtmlTokensTest, QuotedValuesMayHoldTheEndSign) {
  EXPECT_THAT(TokensOf("<a title='>' href=\"b>c\">d"), ElementsAre("<a title='>' href=\"b>c\">", "d"));
  EXPECT_THAT(TokensOf("<p o'clock>d"), ElementsAre("<p o'clock>", "d")) << "no value, no quote";
}

TEST(HtmlTokensTest, WhatIsCutOffEndsWithTheText) {
  EXPECT_THAT(TokensOf("a<b"), ElementsAre("a", "<b>"));
  EXPECT_THAT(TokensOf("a<b c=\"d>e"), ElementsAre("a", "<b c=\"d>e>"));
}

TEST(HtmlTokensTest, SkipsTheContentOfAnElement) {
  const QString html = "<script>if (a</b) </scripture></SCRIPT x>after";
  HtmlTokens tokens(html);
  HtmlToken token;
  ASSERT_TRUE(tokens.Next(token));
  tokens.SkipContentOf(u"script");
  ASSERT_TRUE(tokens.Next(token));
  EXPECT_EQ(token.text, u"after");
}

TEST(HtmlTokensTest, AttributesWithAndWithoutQuotesAndValues) {
  const auto attributes = AttributesOf(u" HREF = \"a b\" width=10% nowrap color='r' x=");
  ASSERT_EQ(attributes.size(), 5u);
  EXPECT_EQ(attributes[0], std::pair(QString("href"), QStringView(u"a b")));
  EXPECT_EQ(attributes[1], std::pair(QString("width"), QStringView(u"10%")));
  EXPECT_EQ(attributes[2], std::pair(QString("nowrap"), QStringView()));
  EXPECT_EQ(attributes[3], std::pair(QString("color"), QStringView(u"r")));
  EXPECT_EQ(attributes[4], std::pair(QString("x"), QStringView()));
}

TEST(HtmlTokensTest, OfVeryManyAttributesTheFirstCount) {
  const QString many = QString(" a=1").repeated(100000);
  EXPECT_LE(AttributesOf(many).size(), 32u);
}

}  // namespace
}  // namespace velmora::workflow
