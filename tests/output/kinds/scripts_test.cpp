// Texts of many scripts in every text field of every kind, through whole conversions.
#include <gtest/gtest.h>

#include <algorithm>

#include "output/kinds/conversion.h"
#include "output/kinds/source.h"

namespace velmora::kinds {
namespace {

using output::Field;
using output::FieldType;

struct Script {
  const char* name;
  text::TextView sample;
};

constexpr Script kScripts[] = {
    {"Cyrillic", u"\u041f\u0440\u0438\u0432\u0435\u0442"},
    {"Arabic", u"\u0645\u0631\u062d\u0628\u0627 \u0628\u0643\u0645"},
    {"Chinese", u"\u4f60\u597d\uff0c\u4e16\u754c"},
    {"Emoji", u"\U0001F600 \U0001F468\u200d\U0001F469\u200d\U0001F467"},
};

/// What an allocation of a heap holds; a list of one text spends 8 bytes on its count and its offset.
constexpr std::size_t kLongestText = 3580 / sizeof(char16_t);
constexpr std::size_t kLongestInList = (3580 - 8) / sizeof(char16_t);

/// All of the scripts, over and over.
text::Text LongText(std::size_t units) {
  text::Text text;
  while (text.size() < units) {
    for (const Script& script : kScripts) text += text::Text(script.sample) + u' ';
  }
  text.resize(units);
  text.back() = u'x';  // no blank at the end, which a list would lose, and no half of a pair
  if (text[units - 2] >= 0xD800 && text[units - 2] < 0xDC00) text[units - 2] = u'x';
  return text;
}

bool IsText(const Row& row) { return output::InfoOf(row.field).type == FieldType::Text; }

/// Fields that stand in one line of at most 255 units.
bool IsLimited(Field field) {
  return field == Field::Subject || field == Field::ConversationTopic || field == Field::FullName;
}

class Scripts : public testing::TestWithParam<Kind> {
 protected:
  void ExpectText(const output::Ref<output::RDOMail>& item, const Row& row, text::Text text) {
    if (IsLimited(row.field) && text.size() > 255) text.resize(text[254] >= 0xD800 && text[254] < 0xDC00 ? 254 : 255);
    const output::FieldRead read = item->Get(row.field);
    EXPECT_TRUE(read.AsText() == text) << output::InfoOf(row.field).name << " reads "
                                       << text::ToUtf8(read.AsText().substr(0, 40)) << " of " << read.AsText().size();
  }
};

TEST_P(Scripts, StandInEveryFieldAtOnce) {
  const Kind& kind = GetParam();
  std::vector<forge::Message> messages;
  for (const Script& script : kScripts) {
    forge::PropertyList properties;
    for (const Row& row : kind.rows) {
      if (IsText(row)) forge::Set(properties, PropertyOf(row, script.sample));
    }
    messages.push_back(MessageOf(kind, std::move(properties)));
  }
  Conversion conversion(SourceOf(UnicodePst(), messages), UnicodePst().fileName);
  const auto items = ItemsOf(conversion.Folder(u"Sent"));
  ASSERT_EQ(items.size(), std::size(kScripts));
  for (std::size_t i = 0; i < items.size(); ++i) {
    SCOPED_TRACE(kScripts[i].name);
    for (const Row& row : kind.rows) {
      if (IsText(row)) ExpectText(items[i], row, text::Text(kScripts[i].sample));
    }
  }
}

TEST_P(Scripts, FillAnAllocationInEachField) {
  const Kind& kind = GetParam();
  std::vector<const Row*> rows;
  std::vector<text::Text> texts;
  std::vector<forge::Message> messages;
  for (const Row& row : kind.rows) {
    if (!IsText(row)) continue;
    rows.push_back(&row);
    texts.push_back(LongText(IsList(row.field) ? kLongestInList : kLongestText));
    forge::PropertyList properties = {PropertyOf(row, texts.back())};
    // In a mail without recipients the first property behind theirs is not converted.
    if (kind.messageClass == u"IPM.Note" && row.field != Field::To) {
      properties.insert(properties.begin(), forge::Text(0x0E04, u"Bob"));
    }
    messages.push_back(MessageOf(kind, std::move(properties)));
  }
  Conversion conversion(SourceOf(UnicodePst(), messages), UnicodePst().fileName);
  const auto items = ItemsOf(conversion.Folder(u"Sent"));
  ASSERT_EQ(items.size(), rows.size());
  for (std::size_t i = 0; i < items.size(); ++i) ExpectText(items[i], *rows[i], texts[i]);
}

INSTANTIATE_TEST_SUITE_P(Kinds, Scripts, testing::ValuesIn(Kinds().begin(), Kinds().end()),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace velmora::kinds
