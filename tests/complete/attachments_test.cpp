// Attachments of every method.
#include "complete/complete_fixture.h"

namespace velmora::complete {
namespace {

using forge::Attachment;
using forge::OleObject;

class AttachmentsTest : public CompleteTest {
 protected:
  /// A mail with these attachments, copied.
  Item CopyWith(std::vector<Attachment> attachments) {
    forge::Message message = Mail(u"Files");
    message.attachments = std::move(attachments);
    return CopyOf(message);
  }
};
INSTANTIATE_TEST_SUITE_P(Formats, AttachmentsTest, AllFormats(), NameOf);

Bytes DataOf(const Attached& attached) { return Find(attached.properties, 0x3701)->bytes; }

TEST_P(AttachmentsTest, AFileComesAcrossWithAllThatIsSaidOfIt) {
  const forge::PropertyList said = {forge::Text(0x3703, u".png"),
                                    Binary(0x3702, {}),
                                    Binary(0x3709, Noise(900, 1)),
                                    forge::Text(0x3713, u"http://example.org/a.png"),
                                    Int32(0x3714, 4),
                                    Int32(0x370B, 17),
                                    Time(0x3007, forge::TimeOf(2024, 1, 1) + 3),
                                    Time(0x7FFB, forge::TimeOf(2024, 1, 2)),
                                    Time(0x7FFC, forge::TimeOf(2024, 1, 3)),
                                    Int32(0x7FFA, 0),
                                    Int32(0x7FFD, 2),
                                    Bool(0x7FFE, true),
                                    Bool(0x7FFF, true)};
  const Item item = CopyWith({{.name = u"a long name.png",
                               .shortName = u"ALONGN~1.PNG",
                               .displayName = u"Shown",
                               .mimeType = u"image/png",
                               .contentId = u"1@example.org",
                               .data = Noise(5000, 2),
                               .properties = said}});
  ASSERT_EQ(item.attachments.size(), 1U);
  const Properties& attached = item.attachments[0].properties;
  EXPECT_EQ(DataOf(item.attachments[0]), Noise(5000, 2));
  EXPECT_EQ(TextOf(attached, 0x3707), u"a long name.png");
  EXPECT_EQ(TextOf(attached, 0x3704), u"ALONGN~1.PNG");
  EXPECT_EQ(TextOf(attached, 0x3001), u"Shown");
  EXPECT_EQ(TextOf(attached, 0x370E), u"image/png");
  EXPECT_EQ(TextOf(attached, 0x3712), u"1@example.org");
  EXPECT_EQ(NumberOf(attached, 0x3705), 1U);
  ExpectHas(attached, said);
  EXPECT_EQ(NumberOf(item.properties, 0x0E07) & 0x10, 0x10U);
  EXPECT_EQ(account_.attachments, 1U);
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(AttachmentsTest, LinksComeAcrossByTheirProperties) {
  const auto link = [](std::uint32_t method, forge::PropertyList more) {
    more.push_back(Int32(0x3705, method));
    return Attachment{.name = u"link", .properties = std::move(more)};
  };
  const Item item = CopyWith(
      {link(0, {}),
       link(2, {forge::Text(0x3708, u"\\\\SERVER\\SHARE\\A.TXT"), forge::Text(0x370D, u"\\\\server\\share\\a.txt")}),
       link(3, {forge::Text(0x370D, u"\\\\server\\share\\b.txt")}), link(4, {forge::Text(0x370D, u"c:\\c.txt")}),
       link(7, {forge::Text(0x370D, u"https://example.org/d"),
                forge::Named(forge::PropertySet::kOwn, u"AttachmentProviderType", forge::Text(0, u"Web")),
                forge::Named(forge::PropertySet::kOwn, u"AttachmentPermissionType", Int32(0, 2))})});
  std::vector<std::uint64_t> methods;
  for (const Attached& attached : item.attachments) methods.push_back(NumberOf(attached.properties, 0x3705));
  EXPECT_THAT(methods, testing::ElementsAre(0, 2, 3, 4, 7));
  EXPECT_EQ(TextOf(item.attachments.at(4).properties, 0x370D), u"https://example.org/d");
  EXPECT_EQ(Find(item.attachments.at(4).properties, 0x3701), nullptr) << "no content where the source has none";
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(AttachmentsTest, AnObjectComesAcrossWithItsSubnodeTree) {
  const std::size_t block = forge::TraitsOf(GetParam()).maxBlockData;
  const OleObject small = {.storage = Noise(3000, 1)};
  const OleObject withParts = {.storage = Noise(3 * block + 1, 2),
                               .parts = {Noise(10, 3), Noise(2 * block, 4), Noise(700, 5)}};
  const OleObject tree = {.storage = Noise(5 * block, 6), .place = Place::kTree};
  const Item item = CopyWith({{.name = u"small", .object = small},
                              {.name = u"parts",
                               .object = withParts,
                               .properties = {Binary(0x370A, Noise(11, 1)), Binary(0x3709, Noise(4000, 2))}},
                              {.name = u"tree", .object = tree}});
  ASSERT_EQ(item.attachments.size(), 3U);
  for (const Attached& attached : item.attachments) EXPECT_EQ(NumberOf(attached.properties, 0x3705), 6U);
  ASSERT_TRUE(item.attachments[0].object && item.attachments[1].object && item.attachments[2].object);
  EXPECT_EQ(item.attachments[0].object->data, small.storage);
  EXPECT_EQ(item.attachments[1].object->data, withParts.storage);
  ASSERT_EQ(item.attachments[1].object->parts.size(), 3U);
  EXPECT_EQ(item.attachments[1].object->parts.at(0x805F).data, withParts.parts[1]);
  EXPECT_EQ(item.attachments[2].object->data, tree.storage);
  EXPECT_EQ(forge::Get(Find(item.attachments[1].properties, 0x3701)->bytes, 4, 4),
            forge::Get(Find(sourceItem_.attachments[1].properties, 0x3701)->bytes, 4, 4));
  ExpectAllWhole();
  ExpectSound();
}

TEST_P(AttachmentsTest, AnObjectWithPartsInManyBlocksComesAcross) {
  OleObject object = {.storage = Noise(100, 1)};
  for (std::uint32_t i = 0; i < 800; ++i) object.parts.push_back(Noise(20 + i % 50, i));
  const Item item = CopyWith({{.name = u"parts", .object = object}});
  ASSERT_EQ(item.attachments.size(), 1U);
  EXPECT_EQ(item.attachments[0].object, sourceItem_.attachments[0].object);
  EXPECT_EQ(item.attachments[0].object->parts.size(), 800U);
}

TEST_P(AttachmentsTest, AFileOfNoBytesIsThereAndEmpty) {
  const Item item = CopyWith({{.name = u"empty.txt", .properties = {Binary(0x3701, {})}}});
  ASSERT_EQ(item.attachments.size(), 1U);
  EXPECT_EQ(DataOf(item.attachments[0]), Bytes());
  EXPECT_EQ(NumberOf(item.attachments[0].properties, 0x3705), 1U);
  ExpectAllWhole();
}

TEST_P(AttachmentsTest, AFileOfTwentyMegabytesComesAcross) {
  const Item item = CopyWith({{.name = u"large.bin", .data = Noise(20 << 20, 1)}});
  ASSERT_EQ(item.attachments.size(), 1U);
  EXPECT_EQ(DataOf(item.attachments[0]), Noise(20 << 20, 1));
  EXPECT_EQ(NumberOf(item.attachments[0].properties, 0x0E20) >> 20, 20U);
  EXPECT_TRUE(account_.IsWhole());
}

TEST_P(AttachmentsTest, AFileBelowTwoLevelsOfListsComesAcross) {
  const std::size_t block = forge::TraitsOf(GetParam()).maxBlockData;
  const Item item = CopyWith({{.name = u"tree.bin", .data = Noise(9 * block + 7, 1), .place = Place::kTree}});
  ASSERT_EQ(item.attachments.size(), 1U);
  EXPECT_EQ(DataOf(item.attachments[0]), Noise(9 * block + 7, 1));
  ExpectAllWhole();
}

TEST_P(AttachmentsTest, FiveThousandOnOneMailComeAcross) {
  std::vector<Attachment> files;
  for (std::uint32_t i = 0; i < 5000; ++i) files.push_back({.name = u"f.bin", .data = Noise(10 + i % 7, i)});
  files[4000].data = Noise(9000, 4000);
  const Item item = CopyWith(files);
  ASSERT_EQ(item.attachments.size(), 5000U);
  for (std::uint32_t i = 0; i < 5000; ++i) ASSERT_EQ(DataOf(item.attachments[i]), files[i].data) << i;
  EXPECT_EQ(account_.attachments, 5000U);
  EXPECT_TRUE(account_.IsWhole());
}

TEST_P(AttachmentsTest, OneThatIsNoMailsComesAcross) {
  forge::Message contact = Mail(u"Ana");
  contact.messageClass = u"IPM.Contact";
  contact.attachments = {{.name = u"ContactPicture.jpg", .data = Noise(3000, 1), .properties = {Bool(0x7FFF, true)}}};
  contact.properties.push_back(forge::Named(forge::PropertySet::kAddress, 0x8015, Bool(0, true)));
  const Item item = CopyOf(contact);
  ASSERT_EQ(item.attachments.size(), 1U);
  EXPECT_EQ(DataOf(item.attachments[0]), Noise(3000, 1));
  ExpectHas(item.attachments[0].properties, {Bool(0x7FFF, true)});
  ExpectAllWhole();
}

}  // namespace
}  // namespace velmora::complete
