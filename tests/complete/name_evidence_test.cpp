// Which named properties come across where the map of names is hurt or lost in part.
#include <algorithm>

#include "complete/complete_fixture.h"
#include "forge/encoding.h"
#include "platform/memory_file.h"
#include "store/ndb/store_reader.h"
#include "store/ndb/subnode_tree_reader.h"

namespace velmora::complete {
namespace {

using forge::Named;
using forge::PropertySet;

class NameEvidenceTest : public CompleteTest {
 protected:
  static constexpr std::uint32_t kEntryStream = 0x803F;  ///< the sub-node of the first large value
  static constexpr std::uint32_t kTextStream = 0x805F;

  /// So many names that entries and texts lie in sub-nodes, the sets in the heap.
  static forge::Mailbox LargeBox() {
    forge::Mailbox box = NewBox({.tables = true, .namesAtLeast = 500});
    for (int i = 0; i < 200; ++i) {
      box.names().IdOf({.set = PropertySet::kOwn, .text = u"x-header-" + std::u16string(1, char16_t(0x4E00 + i))});
    }
    return box;
  }

  static forge::PropertyList Values() {
    return {Named(PropertySet::kCommon, 0x8506, Int32(0, 1)), Named(PropertySet::kOwn, 7, Int32(0, 2)),
            Named(PropertySet::kOwn, u"x-text", Int32(0, 3))};
  }

  static ndb::NodeEntry NameNode(const forge::Image& image) {
    platform::MemoryFile file(image.bytes);
    return ndb::StoreReader::Open(file)->FindNode(velmora::Nid{forge::kNameMapNode}).value();
  }

  /// The block of a large value.
  static forge::PlacedBlock BlockOf(const forge::Image& image, std::uint32_t value) {
    platform::MemoryFile file(image.bytes);
    const auto reader = ndb::StoreReader::Open(file);
    const ndb::SubnodeEntry entry =
        ndb::FindSubnode(*reader, NameNode(image).trees.bidSub, velmora::Nid{value}).value();
    EXPECT_FALSE(IsInternal(entry.trees.bidData)) << "the test takes it for one block";
    return image.Block(velmora::Value(entry.trees.bidData));
  }

  static forge::PlacedBlock HeapOf(const forge::Image& image) {
    return image.Block(velmora::Value(NameNode(image).trees.bidData));
  }

  /// Where these bytes stand in the heap of the map; the test fails if they do not.
  static std::uint64_t PlaceInHeap(const forge::Image& image, const forge::Bytes& bytes) {
    const forge::PlacedBlock heap = HeapOf(image);
    forge::Bytes plain(image.bytes.begin() + static_cast<std::ptrdiff_t>(heap.offset),
                       image.bytes.begin() + static_cast<std::ptrdiff_t>(heap.offset + heap.size));
    forge::Decode(forge::Encoding::kPermute, static_cast<std::uint32_t>(heap.bid), plain);
    const auto found = std::ranges::search(plain, bytes);
    EXPECT_FALSE(found.empty());
    return heap.offset + static_cast<std::uint64_t>(found.begin() - plain.begin());
  }

  static void Lose(forge::Image& image, const forge::PlacedBlock& block) {
    forge::Fill(image, block.offset, block.placeSize);
  }

  /// A version of the map as it is now, which no node names.
  static void LeaveMap(forge::Mailbox& box, forge::NameMap& names) {
    const forge::Context context = forge::FormContext(box.store(), names.Properties());
    box.store().AddDataBlocks(context.blocks);
    box.store().AddSubnodes(context.subnodes);
  }

  Item CopyOfWrecked(const forge::Image& image, forge::Nid nid) {
    CopyWrecked(image.bytes);
    return TargetItem(nid);
  }

  void ExpectLost(std::size_t properties) {
    ASSERT_EQ(account_.losses.size(), 1U);
    EXPECT_EQ(account_.losses[0].missing.size(), properties);
    for (const auto& missing : account_.losses[0].missing) EXPECT_EQ(missing.kind, MissingPart::Kind::kProperty);
  }
};
INSTANTIATE_TEST_SUITE_P(Formats, NameEvidenceTest, AllFormats(), NameOf);

TEST_P(NameEvidenceTest, AnOlderMapTellsTheNamesThatItHad) {
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  const forge::PropertyList old = Values();
  for (const forge::Property& property : old) box.names().IdOf(*property.name);
  LeaveMap(box, box.names());
  forge::PropertyList values = old;
  values.push_back(Named(PropertySet::kOwn, u"x-new", Int32(0, 4)));
  const forge::Nid nid = box.AddMessage(inbox, Mail(u"Names", values)).nid;
  forge::Image image = box.Finish();
  Lose(image, HeapOf(image));
  const Item item = CopyOfWrecked(image, nid);
  ExpectHas(item.properties, old);
  ExpectLost(1);
}

TEST_P(NameEvidenceTest, WithoutTheStreamOfEntriesTheBucketsTell) {
  forge::Mailbox box = LargeBox();
  const forge::Nid nid = box.AddMessage(box.AddFolder({.name = u"Inbox"}), Mail(u"Names", Values())).nid;
  forge::Image image = box.Finish();
  Lose(image, BlockOf(image, kEntryStream));
  ExpectHas(CopyOfWrecked(image, nid).properties, Values());
  EXPECT_TRUE(account_.losses.empty());
}

TEST_P(NameEvidenceTest, AHurtEntryIsToldByItsBucketAndNotByWhatIsLeftOfIt) {
  forge::Mailbox box = LargeBox();
  const forge::Nid nid = box.AddMessage(box.AddFolder({.name = u"Inbox"}), Mail(u"Names", Values())).nid;
  forge::Image image = box.Finish();
  const forge::PlacedBlock entries = BlockOf(image, kEntryStream);
  for (const std::uint64_t at : {0U, 9U, 300U}) forge::Fill(image, entries.offset + at, 3, std::byte{0x5A});
  ExpectHas(CopyOfWrecked(image, nid).properties, Values());
  EXPECT_TRUE(account_.losses.empty());
}

TEST_P(NameEvidenceTest, WithoutTheTextsTheNumbersAreTold) {
  forge::Mailbox box = LargeBox();
  const forge::Nid nid = box.AddMessage(box.AddFolder({.name = u"Inbox"}), Mail(u"Names", Values())).nid;
  forge::Image image = box.Finish();
  Lose(image, BlockOf(image, kTextStream));
  const Item item = CopyOfWrecked(image, nid);
  ExpectHas(item.properties, {Values()[0], Values()[1]});
  ExpectLost(1);
}

/// Of deflated blocks nothing is left behind the first wrong byte.
class HurtSetsTest : public NameEvidenceTest {};
INSTANTIATE_TEST_SUITE_P(Formats, HurtSetsTest, testing::Values(forge::Format::kAnsi, forge::Format::kUnicode), NameOf);

TEST_P(HurtSetsTest, ThoseThatArePublishedAreTold) {
  forge::Mailbox box = LargeBox();
  const forge::Nid nid = box.AddMessage(box.AddFolder({.name = u"Inbox"}), Mail(u"Names", Values())).nid;
  forge::Image image = box.Finish();
  const forge::Bytes own = forge::SetGuid(PropertySet::kOwn);
  forge::Fill(image, PlaceInHeap(image, own) + 2, 3, std::byte{0x5A});
  const Item item = CopyOfWrecked(image, nid);
  ExpectHas(item.properties, {Values()[0]});
  ExpectLost(2);
}

TEST_P(HurtSetsTest, AnEntryOfAWholeStreamCountsWhereItsBucketIsHurt) {
  forge::Mailbox box = LargeBox();
  const forge::Nid nid = box.AddMessage(box.AddFolder({.name = u"Inbox"}), Mail(u"Names", {Values()[0]})).nid;
  forge::Image image = box.Finish();
  forge::Bytes bucket;
  forge::Append(bucket, 0x8506, 4);
  const std::uint64_t at = PlaceInHeap(image, bucket);
  forge::Fill(image, at, 3, std::byte{0x5A});
  ExpectHas(CopyOfWrecked(image, nid).properties, {Values()[0]});
  EXPECT_TRUE(account_.losses.empty());
}

TEST_P(NameEvidenceTest, AMapOfAnotherNumberingTellsNothing) {
  forge::Mailbox box = LargeBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  forge::NameMap other;
  for (std::uint32_t i = 0; i < 2000; ++i) other.IdOf({.set = PropertySet::kTask, .number = 0x8101 + i});
  LeaveMap(box, other);
  const forge::Nid nid = box.AddMessage(inbox, Mail(u"Names", {Values()[0], Int32(0x8600, 5)})).nid;
  forge::Image image = box.Finish();
  Lose(image, BlockOf(image, kEntryStream));
  const Item item = CopyOfWrecked(image, nid);
  ExpectHas(item.properties, {Values()[0]});
  ExpectLost(1);
}

TEST_P(NameEvidenceTest, AListThatHoldsSomethingElseUnderTheIdsOfTheStreamsTellsNothing) {
  forge::Mailbox box = LargeBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  const forge::Nid nid = box.AddMessage(inbox, Mail(u"Names", {Values()[0], Int32(0x8600, 5)})).nid;
  forge::Bytes wrong;
  for (std::uint32_t i = 0; i < 800; ++i) {
    forge::Append(wrong, 0x8101 + i, 4);
    forge::Append(wrong, 6, 2);
    forge::Append(wrong, i + 0x300, 2);
  }
  const forge::Bid data = box.store().AddBlock(wrong);
  box.store().AddSubnodes({{kEntryStream, data, 0}, {kTextStream, data, 0}});
  forge::Image image = box.Finish();
  Lose(image, BlockOf(image, kEntryStream));
  const Item item = CopyOfWrecked(image, nid);
  ExpectHas(item.properties, {Values()[0]});
  ExpectLost(1);
}

}  // namespace
}  // namespace velmora::complete
