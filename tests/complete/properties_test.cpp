// Values of every type and size.
#include "complete/complete_fixture.h"

namespace velmora::complete {
namespace {

class PropertiesTest : public CompleteTest {};
INSTANTIATE_TEST_SUITE_P(Formats, PropertiesTest, AllFormats(), NameOf);

TEST_P(PropertiesTest, AValueOfAnyTypeComesAcrossAsItIs) {
  const forge::PropertyList values = {
      Int16(0x6901, 0xFFFE),
      Int32(0x6902, 0x80000001),
      Raw(0x6903, 0x0004, Noise(4, 1)),
      Double(0x6904, -0.1),
      Raw(0x6905, 0x0006, Noise(8, 2)),
      Raw(0x6906, 0x0007, Noise(8, 3)),
      Raw(0x6907, 0x000A, Noise(4, 4)),
      Bool(0x6908, true),
      Bool(0x6909, false),
      Int64(0x690A, 0x8000000000000001),
      Text16(0x690B, u"Text \U0001F4E7 \u05D0"),
      Time(0x690C, forge::TimeOf(1999, 12, 31, 23, 59, 59) + 9'999'999),
      Guid(0x690D, Noise(16, 5)),
      Binary(0x690E, Noise(77, 6)),
      Raw(0x690F, 0x00FB, Noise(21, 7)),
      Raw(0x6910, 0x00FD, Noise(30, 8)),
      Raw(0x6911, 0x00FE, Noise(40, 9)),
      Raw(0x6912, 0x1002, Noise(6, 10)),
      Raw(0x6913, 0x1003, Noise(12, 11)),
      Raw(0x6914, 0x1004, Noise(12, 12)),
      Raw(0x6915, 0x1005, Noise(24, 13)),
      Raw(0x6916, 0x1006, Noise(24, 14)),
      Raw(0x6917, 0x1007, Noise(24, 15)),
      Raw(0x6918, 0x1014, Noise(24, 16)),
      Raw(0x6919, 0x1040, Noise(24, 17)),
      Raw(0x691A, 0x1048, Noise(48, 18)),
      Texts(0x691B, {u"one", u"", u"three"}),
      Binaries(0x691C, {Noise(3, 19), {}, Noise(5, 20)}),
  };
  const Item item = CopyOf(Mail(u"All types", values));
  ExpectHas(item.properties, values);
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(PropertiesTest, AnEmptyValueIsThereAndEmpty) {
  const forge::PropertyList values = {Text16(0x6901, u""),     Binary(0x6902, {}),      Raw(0x6903, 0x101F, {}),
                                      Raw(0x6904, 0x1003, {}), Raw(0x6905, 0x1102, {}), Text16(0x1000, u"")};
  const Item item = CopyOf(Mail(u"Empty", values));
  ExpectHas(item.properties, values);
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(PropertiesTest, AValueOfAnySizeComesAcrossWhereverItStands) {
  const std::size_t block = forge::TraitsOf(GetParam()).maxBlockData;
  forge::PropertyList values;
  std::uint16_t id = 0x6901;
  for (const std::size_t size :
       {std::size_t{1}, std::size_t{1023}, std::size_t{1024}, std::size_t{1025}, std::size_t{3580}, std::size_t{8175},
        std::size_t{8176}, std::size_t{8177}, std::size_t{8181}, block - 1, block, block + 1, 3 * block + 5}) {
    values.push_back(Binary(id, Noise(size, id)));
    ++id;
  }
  values.push_back(Binary(id++, Noise(3000, 1), Place::kHeap));
  values.push_back(Binary(id++, Noise(5, 2), Place::kBlock));
  values.push_back(Binary(id++, Noise(5, 3), Place::kChain));
  values.push_back(Binary(id++, Noise(5 * block + 1, 4), Place::kTree));
  values.push_back(Text16(id++, std::u16string(100'000, u'\u00E9')));
  values.push_back(Texts(id++, std::vector<std::u16string>(5000, u"several")));
  const Item item = CopyOf(Mail(u"Sizes", values));
  ExpectHas(item.properties, values);
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(PropertiesTest, AValueOfTwentyMegabytesComesAcross) {
  const forge::PropertyList values = {Binary(0x6901, Noise(20 << 20, 1)),
                                      Binary(0x6902, Noise(2 << 20, 2), Place::kTree)};
  const Item item = CopyOf(Mail(u"Large", values));
  ExpectHas(item.properties, values);
  EXPECT_TRUE(account_.IsWhole());
  EXPECT_GE(account_.bytes, 22U << 20);
}

TEST_P(PropertiesTest, AHeapOfTwoHundredBlocksComesAcross) {
  // As large as values in a heap may be, so that a block holds few of them.
  const bool isWide = GetParam() == forge::Format::kUnicode4k;
  const std::size_t size = isWide ? 3500 : 1020;
  const std::size_t count = isWide ? 3650 : 1450;
  forge::PropertyList values;
  for (std::size_t i = 0; i < count; ++i) {
    values.push_back(
        Binary(static_cast<std::uint16_t>(0x1100 + i), Noise(size, static_cast<std::uint32_t>(i)), Place::kHeap));
  }
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  const auto added = box.AddMessage(inbox, Mail(u"Many", values));
  Copy(box);
  const auto heap = ndb::DataTreeReader::Open(source_->Reader(), Bid{added.bidData});
  EXPECT_GE(heap.BlockCount(), 200U);
  ExpectHas(TargetItem(added.nid).properties, values);
  ExpectAllWhole();
}

TEST_P(PropertiesTest, WhatBelongsToTheOldStoreStaysThere) {
  const forge::PropertyList values = {Binary(0x0FFF, forge::EntryId(0x200024)),
                                      Binary(0x0FF9, forge::EntryId(0x200024)),
                                      Int32(0x0FFE, 5),
                                      Binary(0x0FFA, forge::RecordKey()),
                                      Binary(0x0FFB, forge::RecordKey()),
                                      Binary(0x0FF8, Noise(16, 1)),
                                      Binary(0x0E09, forge::EntryId(0x8082)),
                                      Bool(0x0E1B, true),
                                      Text16(0x0E1D, u"Old"),
                                      Text16(0x003D, u"Re: "),
                                      Int32(0x6605, 7),
                                      Binary(0x6618, Noise(5, 2)),
                                      Int32(0x67FF, 1),
                                      Int32(0x7C05, 1)};
  const Item item = CopyOf(Mail(u"Old keys", values));
  for (const forge::Property& value : values)
    EXPECT_EQ(Find(item.properties, value.id), nullptr) << std::hex << value.id;
  EXPECT_TRUE(account_.IsWhole()) << "it is no loss";
}

TEST_P(PropertiesTest, WhatLooksLikeTheOldStoreButIsThePersonsComesAcross) {
  const forge::PropertyList values = {Text16(0x6619, u"The beginning of the body"),
                                      Binary(0x65E0, Noise(22, 1)),
                                      Binary(0x65E1, Noise(22, 2)),
                                      Binary(0x65E2, Noise(20, 3)),
                                      Binary(0x65E3, Noise(21, 4)),
                                      Text16(0x5D01, u"ana@example.org")};
  const Item item = CopyOf(Mail(u"Own", values));
  ExpectHas(item.properties, values);
}

TEST_P(PropertiesTest, SizesAreThoseOfTheNewObjects) {
  forge::Message message = Mail(u"Size");
  message.size = 12345678;
  const Item item = CopyOf(message);
  EXPECT_LT(NumberOf(item.properties, 0x0E08), 12345678U);
  EXPECT_GT(NumberOf(item.properties, 0x0E08), 100U);
}

TEST_P(PropertiesTest, AValueThatItsTypeCannotHaveIsNamedAndTheRestComes) {
  const forge::PropertyList values = {Raw(0x6901, 0x0014, Noise(4, 1)), Raw(0x6902, 0x0048, Noise(15, 1)),
                                      Raw(0x6903, 0x1102, Noise(7, 1)), Int32(0x6904, 4)};
  forge::Mailbox box = NewBox();
  const forge::Nid nid = box.AddMessage(box.AddFolder({.name = u"Inbox"}), Mail(u"Odd", values)).nid;
  Copy(box);
  const Item item = TargetItem(nid);
  ExpectHas(item.properties, {values.back()});
  ASSERT_EQ(account_.losses.size(), 1U);
  std::vector<PropTag> tags;
  for (const MissingPart& part : account_.losses[0].missing) {
    EXPECT_EQ(part.kind, MissingPart::Kind::kProperty);
    EXPECT_NE(part.cause.message, "");
    tags.push_back(part.tag);
  }
  EXPECT_THAT(tags, testing::ElementsAre(0x69010014, 0x69020048, 0x69031102));
  EXPECT_EQ(account_.Totals().partial, 1U);
}

TEST_P(PropertiesTest, AValueOfAnUnknownTypeComesAcrossOrIsNamed) {
  const Item item = CopyOf(Mail(u"Unknown", {Raw(0x6901, 0x0123, Noise(9, 1)), Int32(0x6902, 2)}));
  ExpectHas(item.properties, {Int32(0x6902, 2)});
  if (const Value* value = Find(item.properties, 0x6901)) {
    EXPECT_EQ(value->bytes, Noise(9, 1));
  } else {
    ASSERT_EQ(account_.losses.size(), 1U);
    ASSERT_EQ(account_.losses[0].missing.size(), 1U);
    EXPECT_EQ(account_.losses[0].missing[0].tag, 0x69010123U);
  }
}

}  // namespace
}  // namespace velmora::complete
