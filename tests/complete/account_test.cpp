// The account: what became of everything, and what was lost and why.
#include <numeric>

#include "complete/complete_fixture.h"

namespace velmora::complete {
namespace {

using forge::Message;

class AccountTest : public CompleteTest {
 protected:
  /// One mail with everything that can be lost, in a folder below a folder.
  forge::Image Forge() {
    forge::Mailbox box = NewBox();
    const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
    const forge::Nid inner = box.AddFolder({.name = u"Inner", .parent = inbox});
    Message message = Mail(u"Damaged", {Binary(0x6901, Noise(5000, 1)), Binary(0x6902, Noise(3 * Block(), 2))});
    message.recipients = {{u"To", u"to@example.org"}, {u"Other", u"other@example.org"}};
    message.attachments = {{.name = u"first.bin", .data = Noise(3 * Block() + 9, 3)},
                           {.name = u"second.bin", .data = Noise(2000, 4)}};
    nid_ = box.AddMessage(inner, message).nid;
    box.AddMessage(inner, Mail(u"Sound"));
    return box.Finish();
  }
  std::size_t Block() const { return forge::TraitsOf(GetParam()).maxBlockData; }

  /// The sub-node of the mail as the image has it before anything is done to it.
  ndb::SubnodeEntry Subnode(const forge::Image& image, forge::Nid nid) const {
    const StoreObjects store(image.bytes);
    return ndb::FindSubnode(store.Reader(), store.Reader().FindNode(NodeOf(nid_))->trees.bidSub, NodeOf(nid)).value();
  }
  /// Overwrites a block with zeros, to the end of its trailer.
  static void Wipe(forge::Image& image, const forge::PlacedBlock& block) {
    std::fill_n(image.bytes.begin() + static_cast<std::ptrdiff_t>(block.offset), block.placeSize, std::byte{0});
  }
  /// The same to the data block `index` of a tree of blocks.
  void BreakTree(forge::Image& image, Bid root, std::size_t index = 0) const {
    const StoreObjects store(image.bytes);
    const auto tree = ndb::DataTreeReader::Open(store.Reader(), root);
    Wipe(image, image.Block(velmora::Value(tree.BidOf(index))));
  }
  /// Lets a list of blocks tell another size in all, with a right checksum.
  static void TellSize(forge::Image& image, const forge::PlacedBlock& list, std::uint64_t size) {
    forge::Put(image.bytes, list.offset + 4, size, 4);
    const auto stored = std::span(image.bytes).subspan(list.offset, list.size);
    const std::size_t trailer = forge::TraitsOf(GetParam()).blockTrailerSize;
    const std::size_t sum = GetParam() == forge::Format::kAnsi ? 8 : 4;
    forge::Put(image.bytes, list.offset + list.placeSize - trailer + sum, forge::Checksum(stored), 4);
  }
  /// Copies a store that this test's readers may refuse.
  void CopyDamaged(const forge::Image& sound, const forge::Image& damaged) {
    Copy(damaged.bytes);
    source_ = std::make_unique<StoreObjects>(sound.bytes);
  }

  forge::Nid nid_ = 0;
};
INSTANTIATE_TEST_SUITE_P(Formats, AccountTest, AllFormats(), NameOf);

TEST_P(AccountTest, EveryNodeHasOneFate) {
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  box.AddMessage(inbox, Mail(u"One"));
  Message hidden = Mail(u"Hidden");
  hidden.flags = 0x41;
  box.AddMessage(inbox, hidden, 0x100028);
  const forge::Image image = box.Finish();
  Copy(image.bytes);
  EXPECT_EQ(account_.NodesFound(), image.nodes.size());
  EXPECT_EQ(std::accumulate(account_.nodes.begin(), account_.nodes.end(), std::uint64_t{0}), image.nodes.size());
  EXPECT_EQ(Count(NodeFate::kHidden), 1U);
  EXPECT_EQ(Count(NodeFate::kSearchFolder), 4U);
  EXPECT_GE(Count(NodeFate::kWritten), 3U) << "a message and two folders at least";
  EXPECT_EQ(Count(NodeFate::kPartial) + Count(NodeFate::kUnreadable) + Count(NodeFate::kDeleted) +
                Count(NodeFate::kOlderVersion),
            0U);
}

TEST_P(AccountTest, ItemsAreCountedByClass) {
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  for (const char16_t* name : {u"IPM.Note", u"IPM.Note", u"IPM.Contact"}) {
    Message message = Mail(u"Counted");
    message.messageClass = name;
    box.AddMessage(inbox, message);
  }
  Copy(box);
  EXPECT_EQ(account_.items.size(), 2U);
  EXPECT_EQ(account_.items[u"IPM.Note"].live, 2U);
  EXPECT_EQ(account_.items[u"IPM.Note"].whole, 2U);
  EXPECT_EQ(account_.items[u"IPM.Contact"].whole, 1U);
  EXPECT_EQ(account_.Totals().live, 3U);
  EXPECT_EQ(account_.Totals().partial + account_.Totals().lost, 0U);
  EXPECT_GE(account_.folders, 2U);
}

TEST_P(AccountTest, TheEvidenceOfASoundStoreIsItsTrees) {
  const forge::Image image = Forge();
  Copy(image.bytes);
  EXPECT_TRUE(account_.evidence.headerUsed);
  EXPECT_TRUE(account_.evidence.nodesAreExact);
  EXPECT_TRUE(account_.evidence.blocksAreExact);
  EXPECT_EQ(account_.evidence.liveNodes, image.nodes.size());
  EXPECT_EQ(account_.evidence.liveBlocks, image.blocks.size());
  EXPECT_EQ(account_.evidence.hurtBlocks, 0U);
}

TEST_P(AccountTest, ALostBlockCostsTheValueInItAndNotTheMessage) {
  const forge::Image sound = Forge();
  forge::Image damaged = sound;
  const auto value = Subnode(sound, 0x803F).trees.bidData;
  BreakTree(damaged, value);
  CopyDamaged(sound, damaged);
  const Item item = TargetItem(nid_);
  EXPECT_EQ(TextOf(item.properties, 0x0037), u"Damaged");
  EXPECT_EQ(item.recipients.size(), 2U);
  EXPECT_EQ(item.attachments.size(), 2U);
  ExpectHas(item.properties, {Binary(0x6902, Noise(3 * Block(), 2))});
  EXPECT_FALSE(account_.IsWhole());
  ASSERT_EQ(account_.losses.size(), 1U);
  const Loss& loss = account_.losses[0];
  EXPECT_EQ(loss.source, NodeOf(nid_));
  EXPECT_EQ(loss.target, NodeOf(nid_));
  EXPECT_EQ(loss.folder, u"/Inbox/Inner");
  EXPECT_EQ(loss.messageClass, u"IPM.Note");
  EXPECT_EQ(loss.subject, u"Damaged");
  EXPECT_EQ(loss.sender, u"Ana");
  EXPECT_EQ(loss.date, forge::TimeOf(2024, 2, 29, 12, 31, 2) + 7654321);
  ASSERT_EQ(loss.missing.size(), 1U);
  EXPECT_EQ(loss.missing[0].tag, 0x69010102U);
  EXPECT_EQ(loss.missing[0].cause.object, platform::FailedObject(ObjectKind::kBlock, value));
  EXPECT_EQ(Count(NodeFate::kPartial), 1U);
  EXPECT_EQ(account_.items[u"IPM.Note"].partial, 1U);
  EXPECT_EQ(account_.items[u"IPM.Note"].whole, 1U);
  ExpectSound();
}

TEST_P(AccountTest, ALostBlockOfALongValueReadsAsZerosAndTheRestStays) {
  const forge::Image sound = Forge();
  forge::Image damaged = sound;
  BreakTree(damaged, Subnode(sound, 0x805F).trees.bidData, 1);
  CopyDamaged(sound, damaged);
  Bytes expected = Noise(3 * Block(), 2);
  std::fill_n(expected.begin() + static_cast<std::ptrdiff_t>(Block()), Block(), std::byte{0});
  ExpectHas(TargetItem(nid_).properties, {Binary(0x6902, expected)});
  ASSERT_EQ(account_.losses.size(), 1U);
  ASSERT_EQ(account_.losses[0].missing.size(), 1U);
  const MissingPart& part = account_.losses[0].missing[0];
  EXPECT_EQ(part.kind, MissingPart::Kind::kBytes);
  EXPECT_EQ(part.tag, 0x69020102U);
  EXPECT_EQ(part.cause.object.kind, ObjectKind::kBlock);
}

TEST_P(AccountTest, ATreeThatTellsOfMoreThanItsBlocksHoldIsNotWhole) {
  const Bytes content = Noise(100'000, 1);
  const std::vector<forge::Attachment> cases = {{.name = u"data", .data = content, .place = forge::Place::kChain},
                                                {.name = u"object", .object = forge::OleObject{content}}};
  for (const forge::Attachment& attachment : cases) {
    forge::Mailbox box = NewBox();
    Message message = Mail(u"Damaged");
    message.attachments = {attachment};
    nid_ = box.AddMessage(box.AddFolder({.name = u"Inbox"}), message).nid;
    const forge::Image sound = box.Finish();
    forge::Image damaged = sound;
    const auto list = std::ranges::find_if(damaged.blocks, [&](const forge::PlacedBlock& block) {
      return (block.bid & 2) != 0 && forge::Get(damaged.bytes, block.offset + 4, 4) == content.size();
    });
    ASSERT_NE(list, damaged.blocks.end());
    TellSize(damaged, *list, content.size() + 1000);
    CopyDamaged(sound, damaged);
    ASSERT_EQ(account_.losses.size(), 1U);
    ASSERT_EQ(account_.losses[0].missing.size(), 1U);
    const MissingPart& part = account_.losses[0].missing[0];
    EXPECT_EQ(part.kind, attachment.object ? MissingPart::Kind::kAttachment : MissingPart::Kind::kBytes);
    EXPECT_EQ(part.name, attachment.name);
    EXPECT_EQ(part.cause.message, "the blocks hold more or less than the tree says");
    EXPECT_EQ(TargetItem(nid_).attachments.size(), 1U);
  }
}

TEST_P(AccountTest, ATextOfWhichAnOddNumberOfBytesIsLeftCostsNothingElseOfItsMessage) {
  forge::Property text = Text16(0x1000, std::u16string(20'000, u'x'));
  text.data.pop_back();
  text.place = Place::kChain;
  forge::Mailbox box = NewBox();
  Message message = Mail(u"Damaged", {text});
  message.plain.reset();
  nid_ = box.AddMessage(box.AddFolder({.name = u"Inbox"}), message).nid;
  const forge::Image sound = box.Finish();
  forge::Image damaged = sound;
  const auto list = std::ranges::find_if(damaged.blocks, [&](const forge::PlacedBlock& block) {
    return (block.bid & 2) != 0 && forge::Get(damaged.bytes, block.offset + 4, 4) == text.data.size();
  });
  ASSERT_NE(list, damaged.blocks.end());
  TellSize(damaged, *list, text.data.size() + 1);
  CopyDamaged(sound, damaged);
  ASSERT_EQ(account_.losses.size(), 1U);
  EXPECT_TRUE(account_.losses[0].target.has_value());
  ASSERT_FALSE(account_.losses[0].missing.empty());
  EXPECT_EQ(account_.losses[0].missing[0].tag, tag::kBody);
  EXPECT_EQ(TextOf(TargetItem(nid_).properties, 0x0037), u"Damaged");
  ExpectSound();
}

TEST_P(AccountTest, ABlockWithAWrongByteComesAcrossAndIsNamed) {
  const forge::Image sound = Forge();
  forge::Image damaged = sound;
  const auto value = Subnode(sound, 0x803F).trees.bidData;
  forge::BreakData(damaged, damaged.Block(velmora::Value(value)), 5);
  CopyDamaged(sound, damaged);
  const Bytes whole = Find(source_->ItemOf(NodeOf(nid_)).properties, 0x6901)->bytes;
  const Bytes copied = Find(TargetItem(nid_).properties, 0x6901)->bytes;
  ASSERT_EQ(copied.size(), whole.size());
  if (GetParam() != forge::Format::kUnicode4k) {  // a packed one goes on wrong from there
    EXPECT_TRUE(std::equal(copied.begin() + 6, copied.end(), whole.begin() + 6));
  }
  EXPECT_NE(copied, whole);
  ASSERT_EQ(account_.losses.size(), 1U);
  ASSERT_EQ(account_.losses[0].missing.size(), 1U);
  EXPECT_EQ(account_.losses[0].missing[0].kind, MissingPart::Kind::kBytes);
  EXPECT_EQ(account_.losses[0].missing[0].tag, 0x69010102U);
  EXPECT_EQ(account_.losses[0].missing[0].cause.offset, damaged.Block(velmora::Value(value)).offset);
}

TEST_P(AccountTest, ALostRecipientTableLeavesTheDisplayLists) {
  const forge::Image sound = Forge();
  forge::Image damaged = sound;
  BreakTree(damaged, Subnode(sound, 0x692).trees.bidData);
  CopyDamaged(sound, damaged);
  const Item item = TargetItem(nid_);
  EXPECT_EQ(TextOf(item.properties, 0x0E04), u"To; Other");
  EXPECT_TRUE(item.recipients.empty());
  ASSERT_EQ(account_.losses.size(), 1U);
  ASSERT_EQ(account_.losses[0].missing.size(), 1U);
  EXPECT_EQ(account_.losses[0].missing[0].kind, MissingPart::Kind::kRecipients);
  EXPECT_NE(account_.losses[0].missing[0].cause.message, "");
  ExpectSound("M30");  // the lists name people of whom there is no row
}

TEST_P(AccountTest, ALostAttachmentLeavesItsRow) {
  const forge::Image sound = Forge();
  forge::Image damaged = sound;
  BreakTree(damaged, Subnode(sound, 0x8025).trees.bidData);
  CopyDamaged(sound, damaged);
  const Item item = TargetItem(nid_);
  ASSERT_EQ(item.attachments.size(), 2U);
  EXPECT_EQ(TextOf(item.attachments[0].properties, 0x3704), u"first.bin");
  EXPECT_EQ(Find(item.attachments[1].properties, 0x3701)->bytes, Noise(2000, 4));
  ASSERT_EQ(account_.losses.size(), 1U);
  ASSERT_EQ(account_.losses[0].missing.size(), 1U);
  const MissingPart& part = account_.losses[0].missing[0];
  EXPECT_EQ(part.kind, MissingPart::Kind::kAttachment);
  EXPECT_EQ(part.name, u"first.bin");
  EXPECT_GT(part.size, 3 * Block());
  ExpectSound();
}

TEST_P(AccountTest, ALostBlockOfAFileKeepsTheRestOfIt) {
  const forge::Image sound = Forge();
  forge::Image damaged = sound;
  const StoreObjects store(sound.bytes);
  const auto attachment = Subnode(sound, 0x8025);
  const auto data = ndb::FindSubnode(store.Reader(), attachment.trees.bidSub, NodeOf(0x803F)).value();
  BreakTree(damaged, data.trees.bidData, 2);
  CopyDamaged(sound, damaged);
  Bytes expected = Noise(3 * Block() + 9, 3);
  std::fill_n(expected.begin() + static_cast<std::ptrdiff_t>(2 * Block()), Block(), std::byte{0});
  const Item item = TargetItem(nid_);
  ASSERT_EQ(item.attachments.size(), 2U);
  EXPECT_EQ(Find(item.attachments[0].properties, 0x3701)->bytes, expected);
  ASSERT_EQ(account_.losses.size(), 1U);
  ASSERT_EQ(account_.losses[0].missing.size(), 1U);
  EXPECT_EQ(account_.losses[0].missing[0].name, u"first.bin");
  EXPECT_EQ(account_.losses[0].missing[0].cause.object.kind, ObjectKind::kBlock);
}

TEST_P(AccountTest, AMessageWhoseOwnBlockIsLostIsNamedByItsRow) {
  const forge::Image sound = Forge();
  forge::Image damaged = sound;
  Wipe(damaged, damaged.Block(sound.Node(nid_).bidData));
  CopyDamaged(sound, damaged);
  EXPECT_EQ(account_.items[u"IPM.Note"].lost, 1U);
  EXPECT_EQ(account_.items[u"IPM.Note"].whole, 1U);
  ASSERT_EQ(account_.losses.size(), 1U);
  const Loss& loss = account_.losses[0];
  EXPECT_EQ(loss.source, NodeOf(nid_));
  EXPECT_EQ(loss.folder, u"/Inbox/Inner");
  EXPECT_EQ(loss.subject, u"Damaged");
  EXPECT_EQ(loss.sender, u"Ana");
  EXPECT_EQ(loss.date, forge::TimeOf(2024, 2, 29, 12, 31, 2) + 7654321);
  ASSERT_EQ(loss.missing.size(), 1U);
  EXPECT_EQ(loss.missing[0].kind, MissingPart::Kind::kObject);
  EXPECT_EQ(loss.missing[0].cause.object, platform::FailedObject(ObjectKind::kHeap));
  EXPECT_EQ(Count(NodeFate::kUnreadable), 1U);
  ExpectSound();
}

TEST_P(AccountTest, AFolderWhoseBlockIsLostKeepsItsMessages) {
  const forge::Image sound = Forge();
  forge::Image damaged = sound;
  const StoreObjects store(sound.bytes);
  const velmora::Nid folder = store.Reader().FindNode(NodeOf(nid_))->nidParent;
  Wipe(damaged, damaged.Block(sound.Node(velmora::Value(folder)).bidData));
  CopyDamaged(sound, damaged);
  EXPECT_TRUE(target_->Has(NodeOf(nid_)));
  EXPECT_EQ(target_->Messages().size(), 2U);
  EXPECT_FALSE(account_.IsWhole()) << "the folder's name is lost";
  ExpectSound();
}

TEST_P(AccountTest, LossesBeyondABoundAreCounted) {
  Account account;
  account.mostLosses = 2;
  for (std::uint32_t i = 1; i <= 5; ++i) account.AddLoss({.source = NodeOf(i)});
  EXPECT_EQ(account.losses.size(), 2U);
  EXPECT_EQ(account.losses[1].source, NodeOf(2));
  EXPECT_EQ(account.lossesNotListed, 3U);
  EXPECT_FALSE(account.IsWhole());
  Copy(Forge().bytes);
  EXPECT_GT(account_.mostLosses, 0U);
  EXPECT_LT(account_.mostLosses, 10'000'000U);
}

}  // namespace
}  // namespace velmora::complete
