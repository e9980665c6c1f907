// Every field of every kind, written, saved, and read from the finished store.
#include <cmath>

#include "store/messaging/store_fixture.h"

namespace velmora::messaging {
namespace {

using output::Field;
using output::FieldInfo;
using output::FieldType;
using output::FieldValue;
using output::ItemInterface;
using output::RDOMail;
using output::Ref;
using text::OleDate;
using text::Text;

struct Kind {
  ItemInterface interface;
  text::TextView messageClass;
};

constexpr Kind kKinds[] = {
    {ItemInterface::RDOMail, u"IPM.Note"},
    {ItemInterface::RDOContactItem, u"IPM.Contact"},
    {ItemInterface::RDOTaskItem, u"IPM.Task"},
    {ItemInterface::RDOAppointmentItem, u"IPM.Appointment"},
    {ItemInterface::RDOJournalItem, u"IPM.Activity"},
    {ItemInterface::RDONoteItem, u"IPM.StickyNote"},
};

constexpr text::TextView kScripts[] = {
    u"plain words",
    u"\u041f\u0440\u0438\u0432\u0435\u0442 \u043c\u0438\u0440",
    u"\u0645\u0631\u062d\u0628\u0627 \u0628\u0627\u0644\u0639\u0627\u0644\u0645",
    u"\u4f60\u597d\uff0c\u4e16\u754c",
    u"\U0001F600\U0001F468\u200d\U0001F469\u200d\U0001F467 x",
};

/// Fields that are kept in another form than the words they were given.
bool IsRtf(Field field) { return field == Field::RTFBody; }

/// Fields that stand in one line of at most 255 units.
bool IsLimited(Field field) {
  return field == Field::Subject || field == Field::ConversationTopic || field == Field::FullName;
}

FieldValue ValueFor(const FieldInfo& info, text::TextView text, int number) {
  switch (info.type) {
    case FieldType::Text:
      // Each character of RTF is one of its bytes; others become escapes.
      return IsRtf(info.field) ? Text(u"{\\rtf1 caf\u00e9 ") + text::FromUtf8(std::to_string(number)) +
                                     Text(text.size(), u'\u00e9') + u"}"
                               : Text(text);
    case FieldType::Date:
      return OleDate{40000.0 + number + std::round(0.25 * 86400) / 86400};
    case FieldType::Flag:
      return number % 2 == 0;
    case FieldType::Number:
    case FieldType::Number16:
      break;
  }
  return std::int32_t{number};
}

/// Writes each field that the item answers to; what it wrote.
std::vector<std::pair<const FieldInfo*, FieldValue>> PutAll(const Ref<RDOMail>& item, text::TextView text, int seed) {
  std::vector<std::pair<const FieldInfo*, FieldValue>> written;
  int number = seed;
  for (const FieldInfo& info : output::kFields) {
    if (!item->Answers(info.interface)) continue;
    // Status, completed flag and percentage of a task agree; that has a test of its own.
    const FieldValue value = info.field == Field::Complete ? FieldValue(false)
                             : info.field == Field::Status ? FieldValue(std::int32_t{1})
                                                           : ValueFor(info, text, number);
    item->Put(info.field, value);
    written.emplace_back(&info, value);
    ++number;
  }
  return written;
}

void ExpectAll(const Ref<RDOMail>& item, const std::vector<std::pair<const FieldInfo*, FieldValue>>& written) {
  for (const auto& [info, value] : written) {
    const output::FieldRead read = item->Get(info->field);
    EXPECT_TRUE(read.written) << info->name;
    EXPECT_TRUE(read.value == value) << info->name << " reads "
                                     << (info->type == FieldType::Text ? text::ToUtf8(read.AsText().substr(0, 60))
                                                                       : "another value");
  }
}

class RoundTrip : public StoreTest {};

TEST_F(RoundTrip, OfEachFieldInEachScript) {
  std::vector<std::vector<std::pair<const FieldInfo*, FieldValue>>> written;
  for (const Kind& kind : kKinds) {
    for (const text::TextView text : kScripts) {
      const auto item = NewItem(kind.messageClass);
      ASSERT_TRUE(item->Answers(kind.interface));
      written.push_back(PutAll(item, text, static_cast<int>(written.size())));
      ExpectAll(item, written.back());
      item->Save();
      ExpectAll(item, written.back());
    }
  }
  Reopen();
  const auto items = inbox_->Items();
  ASSERT_EQ(items->Count(), static_cast<int>(written.size()));
  Ref<RDOMail> item = items->GetFirst();
  for (const auto& each : written) {
    ExpectAll(item, each);
    item = items->GetNext();
  }
  ExpectSound();
}

TEST_F(RoundTrip, OfTextsOf100000Characters) {
  Text text;
  while (text.size() < 100000) text += u"\u4f60\u597d \u041f\u0440\u0438\u0432\u0435\u0442 \U0001F600 x ";
  std::vector<std::vector<std::pair<const FieldInfo*, FieldValue>>> written;
  for (const Kind& kind : kKinds) {
    const auto item = NewItem(kind.messageClass);
    written.push_back(PutAll(item, text, 7));
    item->Save();
  }
  Reopen();
  const auto items = inbox_->Items();
  Ref<RDOMail> item = items->GetFirst();
  for (auto& each : written) {
    for (auto& [info, value] : each) {
      if (IsLimited(info->field)) std::get<Text>(value).resize(255);
      // Lists and names of people keep the parts, not the blanks around them.
      if (info->field == Field::Categories || info->field == Field::Companies || info->field == Field::Children) {
        std::get<Text>(value).pop_back();
      }
    }
    ExpectAll(item, each);
    item = items->GetNext();
  }
  ExpectSound();
}

TEST_F(RoundTrip, OfListsJoinsTheirPartsInOneWay) {
  const auto item = NewItem(u"IPM.Contact");
  Put(item, Field::Categories, Text(u"Red,Blue;;Green ; "));
  Put(item, Field::Companies, Text(u"Lee, Ltd;Ann & Co"));
  Put(item, Field::Children, Text(u"Ann;Bob"));
  item->Save();
  Reopen();
  EXPECT_EQ(TextOf(FirstItem(), Field::Categories), u"Red; Blue; Green");
  EXPECT_EQ(TextOf(FirstItem(), Field::Companies), u"Lee, Ltd; Ann & Co");
  EXPECT_EQ(TextOf(FirstItem(), Field::Children), u"Ann; Bob");
}

TEST_F(RoundTrip, ReplacesWhatNoTextHolds) {
  const auto item = NewItem();
  Put(item, Field::Body, Text{u'a', 0xD800, u'b', 0, u'c', 0});
  Put(item, Field::Subject, Text{u'a', 0xDC00});
  Put(item, Field::To, Text{u'x', 0xDBFF, u';', u'y'});
  item->Save();
  Reopen();
  EXPECT_EQ(TextOf(FirstItem(), Field::Body), (Text{u'a', 0xFFFD, u'b', 0xFFFD, u'c'}));
  EXPECT_EQ(TextOf(FirstItem(), Field::Subject), (Text{u'a', 0xFFFD}));
  EXPECT_EQ(TextOf(FirstItem(), Field::To), (Text{u'x', 0xFFFD, u';', u'y'}));
  ExpectSound();
}

TEST_F(RoundTrip, OfASubjectWithItsPrefixMarksIsTheSubjectWithoutThem) {
  const auto item = NewItem();
  Put(item, Field::Subject, Text{1, 5} + u"Re: Plan");
  EXPECT_EQ(TextOf(item, Field::Subject), (Text{1, 5} + u"Re: Plan"));
  item->Save();
  EXPECT_EQ(TextOf(item, Field::Subject), u"Re: Plan");
  EXPECT_EQ(TextOf(item, Field::ConversationTopic), u"Plan");
}

TEST_F(RoundTrip, OfHtmlGivesTheCharactersThatItsBytesAre) {
  const auto item = NewItem();
  const Text carried = text::CodePage::Lossless().Decode("<p>\xD0\x9F\xD1\x80\xD0\xB8</p>");
  Put(item, Field::HTMLBody, carried);
  EXPECT_EQ(TextOf(item, Field::HTMLBody), carried);
  item->Save();
  Reopen();
  EXPECT_EQ(TextOf(FirstItem(), Field::HTMLBody), u"<p>\u041f\u0440\u0438</p>");
  EXPECT_EQ(Raw().Message().Integer32(0x3FDE0003), 65001);
}

TEST_F(RoundTrip, OfBytesOfHtmlIsThatOfTheTextThatCarriesThem) {
  const std::string bytes = "<p>\xD0\x9F\xD1\x80\xD0\xB8\x81</p><meta charset=koi8-r>";
  const auto item = NewItem();
  Put(item, Field::HTMLBody, Text(u"an earlier page"));
  item->PutBytes(Field::HTMLBody, bytes);
  EXPECT_EQ(TextOf(item, Field::HTMLBody), text::CodePage::Lossless().Decode(bytes));
  item->Save();
  Reopen();
  const auto stored = Raw().Message().Binary(0x10130102);
  ASSERT_TRUE(stored);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(stored->data()), stored->size()), bytes);
  EXPECT_EQ(Raw().Message().Integer32(0x3FDE0003), 20866);
}

TEST_F(RoundTrip, OfATextWrittenOverBytesOfHtmlIsTheText) {
  const auto item = NewItem();
  item->PutBytes(Field::HTMLBody, "<p>bytes</p>");
  Put(item, Field::HTMLBody, Text(u"<p>text</p>"));
  item->Save();
  Reopen();
  EXPECT_EQ(TextOf(FirstItem(), Field::HTMLBody), u"<p>text</p>");
}

TEST_F(RoundTrip, OfNoBytesOfHtmlIsNoPage) {
  const auto item = NewItem();
  item->PutBytes(Field::HTMLBody, "");
  EXPECT_EQ(TextOf(item, Field::HTMLBody), u"");
  item->Save();
  Reopen();
  EXPECT_FALSE(Raw().Message().Binary(0x10130102));
}

TEST_F(RoundTrip, OfBytesInAnotherFieldIsTheTextThatCarriesThem) {
  const auto item = NewItem();
  item->PutBytes(Field::Body, "caf\xE9");
  item->Save();
  Reopen();
  EXPECT_EQ(TextOf(FirstItem(), Field::Body), u"caf\u00e9");
}

}  // namespace
}  // namespace velmora::messaging
