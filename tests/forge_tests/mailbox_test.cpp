// The high level: what the description of a folder or message becomes.
#include "forge/mailbox.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "forge/encoding.h"
#include "forge/rtf.h"

namespace velmora::forge {
namespace {

constexpr StoreOptions kPlain = {.encoding = Encoding::kNone};

// Reads nodes and sub-nodes of an unencoded Unicode image.
class Reader {
 public:
  explicit Reader(const Image& image) : image_(image) {}

  Bytes Data(Bid bid) const {
    const PlacedBlock& block = image_.Block(bid);
    const auto at = image_.bytes.begin() + static_cast<std::ptrdiff_t>(block.offset);
    return {at, at + block.size};
  }

  std::vector<Subnode> Subnodes(Bid bid) const {
    const Bytes list = Data(bid);
    std::vector<Subnode> subnodes;
    for (std::size_t i = 0; i < Get(list, 2, 2); ++i) {
      subnodes.push_back({.nid = static_cast<Nid>(Get(list, 8 + 24 * i, 4)),
                          .bidData = Get(list, 16 + 24 * i, 8),
                          .bidSub = Get(list, 24 + 24 * i, 8)});
    }
    return subnodes;
  }

  // Ids of the records of a context.
  std::vector<std::uint64_t> Records(Bid bid) const {
    const Bytes block = Data(bid);
    const std::size_t map = Get(block, 0, 2) + 2;
    const std::size_t root = Get(block, map + (Get(block, 4, 4) >> 4), 2);
    const std::size_t range = map + (Get(block, root + 4, 4) >> 4);
    std::vector<std::uint64_t> ids;
    for (std::size_t at = Get(block, range, 2); at < Get(block, range + 2, 2); at += 8)
      ids.push_back(Get(block, at, 2));
    return ids;
  }

 private:
  const Image& image_;
};

std::vector<Nid> NidsOf(const std::vector<Subnode>& subnodes) {
  std::vector<Nid> nids;
  for (const Subnode& subnode : subnodes) nids.push_back(subnode.nid);
  return nids;
}

TEST(Mailbox, HasTheFoldersOfEveryStoreUnlessToldOtherwise) {
  const Image image = Mailbox(kPlain).Finish();
  for (const Nid nid : {kStoreNode, kNameMapNode, kRootFolder, kTopFolder, kSearchRoot, kDeletedItems}) {
    EXPECT_NO_THROW(image.Node(nid));
  }
  EXPECT_EQ(image.Node(kRootFolder).nidParent, kRootFolder);
  EXPECT_EQ(image.Node(kDeletedItems).nidParent, kTopFolder);
  EXPECT_TRUE(Mailbox(kPlain, {.base = false, .nameMap = false}).Finish().nodes.empty());
}

TEST(Mailbox, GivesAFolderItsTablesOnlyWhenAsked) {
  const auto nodesOf = [](bool tables) {
    Mailbox box(kPlain, {.tables = tables});
    box.AddFolder({.name = u"Inbox", .nid = 0x9002});
    return box.Finish();
  };
  EXPECT_THROW(nodesOf(false).Node(0x900D), std::out_of_range);
  for (const Nid table : {0x900DU, 0x900EU, 0x900FU}) EXPECT_NO_THROW(nodesOf(true).Node(table));
}

TEST(Mailbox, WritesOfABareMessageWhatIsGivenAndNoMore) {
  Mailbox box(kPlain);
  const auto added = box.AddMessage(0x9999, {.subject = u"S", .properties = {Int32(0x1090, 1)}, .bare = true}, 0x777);
  const Image image = box.Finish();
  EXPECT_EQ(added.nid, 0x777U);
  EXPECT_EQ(added.bidSub, 0U);
  EXPECT_EQ(image.Node(0x777).nidParent, 0x9999U) << "a folder that is not there";
  EXPECT_EQ(Reader(image).Records(added.bidData), (std::vector<std::uint64_t>{0x001A, 0x0037, 0x1090}));
}

TEST(Mailbox, LetsAGivenPropertyReplaceTheOneOfAField) {
  Mailbox box(kPlain);
  const auto added =
      box.AddMessage(kTopFolder, {.subject = u"S", .properties = {Reference(0x0037, kString, 0x123460)}, .bare = true});
  const Image image = box.Finish();
  const Reader reader(image);
  EXPECT_EQ(reader.Records(added.bidData), (std::vector<std::uint64_t>{0x001A, 0x0037}));
  const Bytes block = reader.Data(added.bidData);
  Bytes reference;
  Append(reference, 0x123460, 4);
  EXPECT_NE(std::search(block.begin(), block.end(), reference.begin(), reference.end()), block.end());
}

TEST(Mailbox, ListsTheSubnodesOfAMessageAscending) {
  Mailbox box(kPlain);
  const auto added = box.AddMessage(kTopFolder, {.plain = u"out of line",
                                                 .plainPlace = Place::kBlock,
                                                 .recipients = {{u"A", u"a@b"}},
                                                 .attachments = {{.name = u"1"}, {.name = u"2"}}});
  const Image image = box.Finish();
  EXPECT_EQ(NidsOf(Reader(image).Subnodes(added.bidSub)), (std::vector<Nid>{0x671, 0x692, 0x8025, 0x803F, 0x8045}));
}

TEST(Mailbox, PutsAttachmentDataWhereItIsWanted) {
  Mailbox box(kPlain);
  const Bytes data = Noise(300, 1);
  const auto added =
      box.AddMessage(kTopFolder, {.attachments = {{.name = u"1", .data = data, .place = Place::kHeap},
                                                  {.name = u"2", .data = data, .place = Place::kBlock},
                                                  {.name = u"3", .data = data, .place = Place::kChain}}});
  const Image image = box.Finish();
  const Reader reader(image);
  const auto subnodes = reader.Subnodes(added.bidSub);
  EXPECT_EQ(subnodes[1].bidSub, 0U);
  EXPECT_EQ(reader.Data(reader.Subnodes(subnodes[2].bidSub).at(0).bidData), data);
  EXPECT_EQ(Get(reader.Data(reader.Subnodes(subnodes[3].bidSub).at(0).bidData), 0, 2), 0x0101U);
}

TEST(Mailbox, PutsAnEmbeddedMessageFirstAmongTheSubnodesOfItsAttachment) {
  Mailbox box(kPlain);
  auto inner = std::make_shared<Message>(Message{.subject = u"Inner", .attachments = {{.name = u"deep.txt"}}});
  const auto added = box.AddMessage(kTopFolder, {.attachments = {{.displayName = u"Inner", .embedded = inner}}});
  const Image image = box.Finish();
  const Reader reader(image);
  const auto holder = reader.Subnodes(reader.Subnodes(added.bidSub).at(1).bidSub).at(0);
  EXPECT_EQ(holder.nid, kFirstEmbedded);
  EXPECT_EQ(NidsOf(reader.Subnodes(holder.bidSub)), (std::vector<Nid>{0x671, 0x8025}));
}

TEST(Mailbox, PutsTheStorageOfAnObjectAndItsPartsBelowTheAttachment) {
  Mailbox box(kPlain);
  const Bytes storage = Noise(9000, 1);
  const Bytes part = Noise(50, 2);
  const auto added = box.AddMessage(kTopFolder, {.attachments = {{.object = OleObject{storage, {part}}}}});
  const Image image = box.Finish();
  const Reader reader(image);
  const auto object = reader.Subnodes(reader.Subnodes(added.bidSub).at(1).bidSub).at(0);
  EXPECT_EQ(object.nid, kObjectNode);
  EXPECT_EQ(Get(reader.Data(object.bidData), 4, 4), storage.size()) << "the chain over its blocks";
  EXPECT_EQ(reader.Data(reader.Subnodes(object.bidSub).at(0).bidData), part);
}

TEST(Mailbox, GivesTheRecipientTableAColumnForEachPropertyThatARecipientHas) {
  Mailbox box(kPlain);
  const auto added = box.AddMessage(
      kTopFolder,
      {.recipients = {{.name = u"A", .properties = {Text(0x39FE, u"a@b"), Int32(0x3900, 6)}}, {.name = u"B"}}});
  const Image image = box.Finish();
  const Reader reader(image);
  const Bytes table = reader.Data(reader.Subnodes(added.bidSub).at(0).bidData);
  // The description of the table is its second allocation.
  EXPECT_EQ(Get(table, 20, 1), 0x7CU);
  EXPECT_EQ(Get(table, 21, 1), 2U + RecipientColumns().size() + 1);
}

TEST(Mailbox, GivesASearchFolderItsQueueItsCriteriaAndItsTable) {
  Mailbox box(kPlain, {.tables = true});
  box.AddFolder({.name = u"Unread", .parent = kSearchRoot, .nid = 0x80023});
  const Image image = box.Finish();
  for (const Nid nid : {0x80026U, 0x80027U, 0x80030U, 0x2226U, 0x2227U, 0x2230U}) EXPECT_NO_THROW(image.Node(nid));
  for (const Nid nid : {0x8002DU, 0x8002EU, 0x8002FU}) EXPECT_THROW(image.Node(nid), std::out_of_range);
  const Bytes active = Reader(image).Data(image.Node(0x201).bidData);
  EXPECT_EQ(Get(active, 0, 4), kSearchFolder);
  EXPECT_EQ(Get(active, 4, 4), 0x80023U);
}

TEST(Mailbox, HasTheFixedFoldersOfAnOfflineStoreWhereItIsToldTo) {
  const Image image = Mailbox(kPlain, {.offline = true}).Finish();
  EXPECT_EQ(image.Node(kOfflineInbox).nidParent, kOfflineTop);
  EXPECT_EQ(image.Node(kOfflineTop).nidParent, kOfflineRoot);
  EXPECT_THROW(image.Node(kTopFolder), std::out_of_range);
  EXPECT_EQ(Reader(image).Records(image.Node(kStoreNode).bidData), (std::vector<std::uint64_t>{0x0FF9, 0x3001, 0x67FF}))
      << "it points to no folder";
}

TEST(Mailbox, LeadsToAValueInAStoreThroughAChainOfTwoLevels) {
  Mailbox box(kPlain);
  const Bytes data = Noise(3 * 8176 + 5, 1);
  const auto added = box.AddMessage(kTopFolder, {.properties = {Binary(0x7001, data, Place::kTree)}, .bare = true});
  const Image image = box.Finish();
  const Reader reader(image);
  const Bytes upper = reader.Data(reader.Subnodes(added.bidSub).at(0).bidData);
  EXPECT_EQ(Get(upper, 0, 2), 0x0201U);
  EXPECT_EQ(Get(upper, 2, 2), 2U) << "lists, of two blocks each";
  EXPECT_EQ(Get(upper, 4, 4), data.size());
  EXPECT_EQ(Get(reader.Data(Get(upper, 8, 8)), 0, 4), 0x00020101U);
}

TEST(Mailbox, TakesTheSizeOfAMessageFromItsDataUnlessOneIsGiven) {
  Mailbox box(kPlain);
  NameMap names;
  const Message message = {.plain = std::u16string(5000, u'x')};
  EXPECT_GT(WriteMessage(box.store(), names, message).size, 10000U);
  Message lying = message;
  lying.size = 5U << 20;
  const auto written = WriteMessage(box.store(), names, lying);
  EXPECT_EQ(Get(Find(written.properties, 0x0E08)->data, 0, 4), 5U << 20);
}

TEST(Mailbox, MarksThePrefixOfASubject) {
  NameMap names;
  const Message message = {.subject = u"Re: Hi", .subjectPrefix = 4};
  const PropertyList list = MessageProperties(names, message);
  EXPECT_EQ(Find(list, 0x0037)->data, ToUtf16(u"\x01\x05Re: Hi"));
  EXPECT_EQ(Find(list, 0x0070)->data, ToUtf16(u"Hi"));
}

TEST(RichText, StandsInEitherFormOfItsContainer) {
  const Bytes stored = FormRtf("{\\rtf1}", RtfForm::kStored);
  EXPECT_EQ(Get(stored, 0, 4), 19U);
  EXPECT_EQ(Get(stored, 4, 4), 7U);
  EXPECT_EQ(stored.size(), 23U);
  const Bytes compressed = FormRtf("{\\rtf1}");
  EXPECT_EQ(Get(compressed, 8, 4), 0x75465A4CU);
  EXPECT_EQ(Get(compressed, 16, 1), 0x80U) << "seven literals, then the reference that ends the text";
  EXPECT_EQ(compressed.size(), 16U + 1 + 7 + 2);
}

}  // namespace
}  // namespace velmora::forge
