// Which nodes are live, from the pages that are left of a store, and what becomes of the other entries.
#include <algorithm>

#include "engine/evidence/evidence_fixture.h"

namespace velmora::engine {
namespace {

using forge::Encoding;
using forge::Format;
using forge::PageType;

class JudgeEveryFormatTest : public EvidenceTest, public testing::WithParamInterface<std::tuple<Format, Encoding>> {
 protected:
  forge::Image Sample() const { return SampleImage(std::get<0>(GetParam()), std::get<1>(GetParam())); }
  void ExpectAllLive(const forge::Image& image) {
    EXPECT_EQ(Nodes({Standing::kLive}), LinesOf(image));
    EXPECT_EQ(judgement_.nodes.size(), image.nodes.size()) << "nothing besides";
    for (const forge::PlacedBlock& block : image.blocks) EXPECT_EQ(StatusOf(block.bid), BlockStatus::kLive);
  }
};

INSTANTIATE_TEST_SUITE_P(All, JudgeEveryFormatTest,
                         testing::Combine(testing::Values(Format::kAnsi, Format::kUnicode, Format::kUnicode4k),
                                          testing::Values(Encoding::kNone, Encoding::kPermute, Encoding::kCyclic)));

TEST_P(JudgeEveryFormatTest, TheNodesOfAWholeStoreAreExact) {
  const forge::Image image = Sample();
  Judge(image);
  EXPECT_TRUE(judgement_.nodesAreExact);
  EXPECT_TRUE(judgement_.blocksAreExact);
  ExpectAllLive(image);
}

TEST_P(JudgeEveryFormatTest, TheyAreExactWithoutAHeaderToo) {
  forge::Image image = Sample();
  forge::WipeHeader(image);
  Judge(image);
  EXPECT_TRUE(judgement_.nodesAreExact);
  EXPECT_TRUE(judgement_.blocksAreExact);
  ExpectAllLive(image);
}

TEST_P(JudgeEveryFormatTest, WithoutHeaderAndRootsAllNodesAreThere) {
  forge::Image image = Sample();
  forge::WipeHeader(image);
  WipePage(image, RootOf(image, PageType::kNodes));
  WipePage(image, RootOf(image, PageType::kBlocks));
  Judge(image);
  EXPECT_FALSE(judgement_.nodesAreExact);
  EXPECT_FALSE(judgement_.blocksAreExact);
  ExpectAllLive(image);
}

TEST_P(JudgeEveryFormatTest, WithoutAnyBlockTreeTheNodesAreExactStill) {
  forge::Image image = Sample();
  forge::WipeHeader(image);
  forge::WipePages(image, PageType::kBlocks);
  Judge(image);
  EXPECT_TRUE(judgement_.nodesAreExact);
  EXPECT_FALSE(judgement_.blocksAreExact);
  EXPECT_EQ(Nodes({Standing::kLive}), LinesOf(image));
}

TEST_P(JudgeEveryFormatTest, ALeafThatIsGoneTakesOnlyItsOwnNodesAlong) {
  forge::Image image = Sample();
  const forge::PlacedPage leaf = LeafWithNode(image, 0x200024);
  WipePage(image, leaf);
  Judge(image);
  EXPECT_FALSE(judgement_.nodesAreExact);
  const NodeLines live = Nodes({Standing::kLive, Standing::kDoubtful});
  const NodeLines all = LinesOf(image);
  EXPECT_TRUE(std::ranges::includes(all, live));
  EXPECT_EQ(live.size(), all.size() - 5) << "a leaf holds five";
}

/// Of a message: what tells its versions, and a value in a sub-node.
forge::PropertyList Keyed(std::u16string_view text) {
  return {forge::Binary(0x300B, forge::Noise(16, 9)), forge::Text(0x0037, text),
          forge::Text(0x1000, u"body", forge::Place::kBlock)};
}

class JudgeNodesTest : public EvidenceTest {
 protected:
  explicit JudgeNodesTest(const forge::StoreOptions& options = {.entriesPerPage = 4})
      : store_(options), format_(options.format) {}

  /// Blocks of ids 4, 8 ... and an old page of the node tree ahead of the current ones, which is built by `fill`.
  forge::Store store_;
  Format format_;

  forge::Bid Context(std::u16string_view text, const forge::PropertyList& more = {}) {
    forge::PropertyList properties = {forge::Text(0x001A, u"IPM.Note"), forge::Text(0x0037, text)};
    properties.insert(properties.end(), more.begin(), more.end());
    return store_.AddDataBlocks(forge::FormContext(store_, properties).blocks);
  }

  /// One that the block tree does not list.
  forge::Bid Freed(std::u16string_view text) {
    const auto context = forge::FormContext(store_, {forge::Text(0x0037, text)});
    return store_.AddBlock(context.blocks.front(), {.listed = false});
  }

  /// So many nodes of messages from `first` on, each with a block of its own.
  void AddNodes(forge::Nid first, int count) {
    for (int i = 0; i < count; ++i) {
      store_.AddNode(first + 0x20 * static_cast<forge::Nid>(i), Context(u"node"), 0, 0x8022);
    }
  }

  forge::PlacedPage OldPage(const std::vector<forge::NodeEntry>& nodes) {
    return store_.AddPage(forge::NodePage(format_, nodes));
  }
  forge::PlacedPage OldBlockPage(const std::vector<forge::Bid>& bids) {
    std::vector<forge::BlockEntry> entries;
    for (const forge::Bid bid : bids) entries.push_back({.bid = bid, .offset = 0x10000, .size = 100});
    return store_.AddPage(forge::BlockPage(format_, entries));
  }
  forge::PlacedPage OldRoot(PageType type, const std::vector<std::pair<std::uint64_t, forge::PlacedPage>>& children) {
    forge::Bytes entries;
    for (const auto& [key, page] : children) {
      forge::Append(entries, forge::FormEntry(format_, forge::BranchEntry{key, page.pageId, page.offset}));
    }
    return store_.AddPage({.type = type, .entries = entries, .level = 1});
  }

  /// The old pages are all that is left of the node tree.
  void ExpectNotExactWithoutHeaderAndPages() {
    forge::Image image = store_.Finish();
    forge::WipeHeader(image);
    for (const forge::PlacedPage& page : image.TreePages(PageType::kNodes)) WipePage(image, page);
    Judge(image);
    EXPECT_TRUE(judgement_.blocksAreExact);
    EXPECT_FALSE(judgement_.nodesAreExact);
  }

  bool Has(Standing standing, const forge::NodeEntry& node) const { return Nodes({standing}).contains(LineOf(node)); }

  /// Of a message whose subject became `after` only an older page is left. Returns the block that has it.
  forge::PlacedBlock ExpectNewerPropertiesAreTaken(std::u16string_view after) {
    const auto old = forge::FormContext(store_, Keyed(u"before"));
    const forge::Bid oldData = store_.AddDataBlocks(old.blocks);
    const forge::Bid oldList = store_.AddSubnodes(old.subnodes);
    OldPage({{.nid = 0x200024, .bidData = oldData, .bidSub = oldList, .nidParent = 0x8022}});
    const auto now = forge::FormContext(store_, Keyed(after));
    const forge::Bid list = store_.AddSubnodes(now.subnodes);
    const forge::Bid data = store_.AddDataBlocks(now.blocks);
    store_.AddNode(0x200024, data, list, 0x8022);
    AddNodes(0x200044, 12);
    forge::Image image = store_.Finish();
    forge::WipeHeader(image);
    for (const PageType type : {PageType::kBlocks, PageType::kNodes}) {
      for (const forge::PlacedPage& page : image.TreePages(type)) WipePage(image, page);
    }
    Judge(image);
    EXPECT_TRUE(Has(Standing::kLive, {0x200024, data, list, 0x8022}));
    EXPECT_TRUE(Has(Standing::kOlder, {0x200024, oldData, oldList, 0x8022}));
    return image.Block(data);
  }
};

TEST_F(JudgeNodesTest, AnOldTreeThatIsWholeIsNotTakenForTheNewestBesideNewerLeaves) {
  AddNodes(0x200024, 11);
  const forge::Bid newest = Context(u"newest");  // so that only the leaves speak against the old tree
  store_.AddNode(0x200184, newest, 0, 0x8022);
  const auto leaf = OldPage({{.nid = 0x200024, .bidData = newest, .nidParent = 0x8022}});
  const auto second = OldPage({{.nid = 0x900024, .bidData = newest, .nidParent = 0x8022}});
  OldRoot(PageType::kNodes, {{0x200024, leaf}, {0x900024, second}});
  forge::Image image = store_.Finish();
  forge::WipeHeader(image);
  WipePage(image, RootOf(image, PageType::kNodes));
  Judge(image);
  EXPECT_FALSE(judgement_.nodesAreExact);
  EXPECT_TRUE(std::ranges::includes(Nodes({Standing::kLive}), LinesOf(image)));
  EXPECT_TRUE(Has(Standing::kOlder, {.nid = 0x200024, .bidData = newest, .nidParent = 0x8022}));
}

TEST_F(JudgeNodesTest, AnOldTreeIsNotTheNewestIfTheHeaderNamesAnother) {
  const forge::Bid before = Context(u"before");
  const auto leaf = OldPage({{.nid = 0x200024, .bidData = before, .nidParent = 0x8022}});
  OldRoot(PageType::kNodes, {{0x200024, leaf}});
  AddNodes(0x200024, 12);
  forge::Image image = store_.Finish();
  for (const forge::PlacedPage& page : image.TreePages(PageType::kNodes)) WipePage(image, page);
  Judge(image);
  ASSERT_TRUE(told_);
  EXPECT_FALSE(judgement_.nodesAreExact);
}

TEST_F(JudgeNodesTest, AnOldTreeIsNotTheNewestIfItNamesAFreedBlock) {
  const forge::Bid freed = Freed(u"before");
  const forge::Bid kept = Context(u"newest");
  OldPage({{.nid = 0x200024, .bidData = freed, .nidParent = 0x8022}, {.nid = 0x200044, .bidData = kept}});
  store_.AddNode(0x200024, kept, 0, 0x8022);
  ExpectNotExactWithoutHeaderAndPages();
}

TEST_F(JudgeNodesTest, AnOldTreeIsNotTheNewestIfThereAreNewerContextsThanItNames) {
  const forge::Bid before = Context(u"before");
  OldPage({{.nid = 0x200024, .bidData = before, .nidParent = 0x8022}});
  store_.AddNode(0x100024, before, 0, 0x8022);  // so that its block is in use
  AddNodes(0x200024, 3);
  ExpectNotExactWithoutHeaderAndPages();
}

class JudgePackedNodesTest : public JudgeNodesTest {
 protected:
  JudgePackedNodesTest() : JudgeNodesTest({.format = Format::kUnicode4k, .compressed = true, .entriesPerPage = 4}) {}

  static bool IsPacked(const forge::PlacedBlock& block) { return block.size != block.inflatedSize; }

  /// The node tree that is left is old, and of later blocks there is one of that content.
  void JudgeBesideNewer(const forge::Bytes& content) {
    const forge::Bid before = Context(u"before");
    OldPage({{.nid = 0x200024, .bidData = before, .nidParent = 0x8022}});
    store_.AddNode(0x100024, before, 0, 0x8022);  // so that its block is in use
    const forge::Bid newer = store_.AddBlock(content);
    store_.AddNode(0x200024, newer, 0, 0x8022);
    forge::Image image = store_.Finish();
    ASSERT_TRUE(IsPacked(image.Block(newer)));
    forge::WipeHeader(image);
    for (const forge::PlacedPage& page : image.TreePages(PageType::kNodes)) WipePage(image, page);
    Judge(image);
  }
};

TEST_F(JudgePackedNodesTest, AnOldTreeIsNotTheNewestIfThereIsANewerContextThanItNames) {
  const std::u16string subject(500, u'x');
  JudgeBesideNewer(forge::FormContext(store_, {forge::Text(0x0037, subject)}).blocks.front());
  EXPECT_FALSE(judgement_.nodesAreExact);
}

TEST_F(JudgePackedNodesTest, DataThatIsNewerThanATreeSaysNothingAgainstIt) {
  JudgeBesideNewer(forge::Bytes(3000, std::byte{'x'}));
  EXPECT_TRUE(judgement_.nodesAreExact);
}

TEST_F(JudgeNodesTest, AHurtContextThatIsNewerThanATreeSaysNothingAgainstIt) {
  const forge::Bid before = Context(u"before");
  OldPage({{.nid = 0x200024, .bidData = before, .nidParent = 0x8022}});
  store_.AddNode(0x100024, before, 0, 0x8022);  // so that its block is in use
  const forge::Bid newer = Context(u"after");
  store_.AddNode(0x200024, newer, 0, 0x8022);
  forge::Image image = store_.Finish();
  forge::WipeHeader(image);
  for (const forge::PlacedPage& page : image.TreePages(PageType::kNodes)) WipePage(image, page);
  forge::BreakData(image, image.Block(newer), image.Block(newer).size / 2u);
  Judge(image);
  EXPECT_EQ(Block(newer).kind, BlockKind::kPropertyContext) << "as far as one can tell";
  EXPECT_TRUE(judgement_.nodesAreExact);
}

TEST_F(JudgeNodesTest, WhatIsNewerThanTheHeadersRootWasNeverCommitted) {
  AddNodes(0x200024, 12);
  const forge::Bid later = Context(u"later");
  store_.AddPage({.type = PageType::kNodes,
                  .entries = forge::FormEntry(Format::kUnicode, forge::NodeEntry{0x200024, later, 0, 0x8022}),
                  .pageId = 0x5000});
  const forge::Image image = store_.Finish();
  Judge(image);
  EXPECT_TRUE(judgement_.nodesAreExact);
  EXPECT_EQ(Nodes({Standing::kLive}), LinesOf(image));
}

TEST_F(JudgeNodesTest, WhereALeafIsGoneTheNewestOlderEntryWhoseBlocksAreInUseStandsIn) {
  const forge::Bid kept = Context(u"kept");
  const forge::NodeEntry entry{0x200024, kept, 0, 0x8022};
  OldPage({{.nid = 0x200024, .bidData = Context(u"older"), .nidParent = 0x8022}});
  OldPage({entry});
  store_.AddNode(0x200024, kept, 0, 0x8022);
  AddNodes(0x200044, 12);
  forge::Image image = store_.Finish();
  WipePage(image, LeafWithNode(image, 0x200024));
  Judge(image);
  EXPECT_TRUE(Has(Standing::kDoubtful, entry));
  EXPECT_EQ(Nodes({Standing::kOlder}).size(), 1u) << "the entry before it";
}

TEST_F(JudgeNodesTest, ALeafRulesOverTheKeysUpToTheNextOne) {
  const forge::Bid before = Context(u"before");
  store_.AddNode(0x100024, before, 0, 0x8022);  // so that its block is in use
  AddNodes(0x100044, 3);
  const forge::NodeEntry between{0x200094, before, 0, 0x8022};  // gone from the leaf of 0x200024 to 0x200084
  const forge::NodeEntry behind{0x3000A4, before, 0, 0x8022};   // behind the last node
  OldPage({between, behind});
  AddNodes(0x200024, 4);
  AddNodes(0x2000A4, 8);
  forge::Image image = store_.Finish();
  WipePage(image, LeafWithNode(image, 0x2000A4));
  Judge(image);
  ASSERT_FALSE(judgement_.nodesAreExact);
  EXPECT_TRUE(Has(Standing::kDeleted, between)) << "in the range that the root gives to the leaf ahead of it";
  EXPECT_TRUE(Has(Standing::kDeleted, behind)) << "the last leaf has no end";

  forge::Image rootless = image;
  WipePage(rootless, RootOf(image, PageType::kNodes));
  Judge(rootless);
  EXPECT_TRUE(Has(Standing::kLive, between)) << "no page tells any more that the leaf goes on so far";
}

TEST_F(JudgeNodesTest, TheLastLeafBelowAPageEndsWhereThatPageEnds) {
  const forge::Bid before = Context(u"before");
  // Leaves of four below pages of four: the second of these begins with the seventeenth node.
  const forge::NodeEntry between{0x200224 - 0x10, before, 0, 0x8022};
  OldPage({between});
  AddNodes(0x200024, 32);
  store_.AddNode(0x900024, before, 0, 0x8022);  // so that its block is in use
  forge::Image image = store_.Finish();
  ASSERT_EQ(RootOf(image, PageType::kNodes).level, 2);
  WipePage(image, LeafWithNode(image, 0x200024));
  Judge(image);
  ASSERT_FALSE(judgement_.nodesAreExact);
  EXPECT_TRUE(Has(Standing::kDeleted, between));
}

TEST_F(JudgeNodesTest, ANewerLeafTakesTheKeysOfAnOlderOne) {
  const forge::Bid before = Context(u"before");
  // A leaf that was split since: its upper half is the range of two newer ones.
  OldPage({{.nid = 0x200024, .bidData = before},
           {.nid = 0x2000A4, .bidData = before},
           {.nid = 0x200124, .bidData = before}});
  AddNodes(0x200024, 12);
  forge::Image image = store_.Finish();
  forge::WipeHeader(image);
  WipePage(image, RootOf(image, PageType::kNodes));
  Judge(image);
  EXPECT_EQ(Nodes({Standing::kLive}), LinesOf(image));
  EXPECT_EQ(Nodes({Standing::kOlder}).size(), 3u);
}

TEST_F(JudgeNodesTest, AFreedVersionStandsInForAFolderAndForNoMessage) {
  const forge::Bid freed = Freed(u"A folder");
  OldPage({{.nid = 0x8082, .bidData = freed, .nidParent = 0x8022},
           {.nid = 0x200024, .bidData = freed, .nidParent = 0x8082}});
  store_.AddNode(0x8082, Context(u"folder"), 0, 0x8022);
  AddNodes(0x200024, 12);
  forge::Image image = store_.Finish();
  const forge::PlacedPage leaf = LeafWithNode(image, 0x8082);
  ASSERT_EQ(LeafWithNode(image, 0x200024).offset, leaf.offset);
  WipePage(image, leaf);
  Judge(image);
  EXPECT_EQ(StatusOf(freed), BlockStatus::kFreed);
  EXPECT_TRUE(Has(Standing::kDoubtful, {.nid = 0x8082, .bidData = freed, .nidParent = 0x8022}));
  EXPECT_TRUE(Has(Standing::kDeleted, {.nid = 0x200024, .bidData = freed, .nidParent = 0x8082}));
}

TEST_F(JudgeNodesTest, AnIncompleteVersionStandsInForNoNode) {
  const forge::Bid list = store_.AddSubnodes({{.nid = 0x671, .bidData = 0x7FFC}});  // which is nowhere
  const forge::Bid whole = store_.AddSubnodes({{.nid = 0x671, .bidData = Context(u"attachments")}});
  OldPage({{.nid = 0x200024, .bidData = Context(u"one"), .bidSub = list, .nidParent = 0x8022},
           {.nid = 0x200044, .bidData = Context(u"two"), .bidSub = whole, .nidParent = 0x8022}});
  AddNodes(0x200024, 12);
  forge::Image image = store_.Finish();
  WipePage(image, LeafWithNode(image, 0x200024));
  forge::WipePages(image, PageType::kBlocks);
  Judge(image);
  const auto nidsOf = [&](Standing standing) {
    std::set<std::uint64_t> nids;
    for (const auto& line : Nodes({standing})) nids.insert(std::get<0>(line));
    return nids;
  };
  EXPECT_EQ(nidsOf(Standing::kDoubtful), (std::set<std::uint64_t>{0x200044}));
  EXPECT_TRUE(nidsOf(Standing::kDeleted).contains(0x200024));
}

TEST_F(JudgeNodesTest, AnEntryWhoseBlockIsFreedIsAnOlderVersionWhateverItsLeafSays) {
  const forge::Bid freed = Freed(u"x");
  const forge::NodeEntry entry{0x200024, freed, 0, 0x8022};
  OldPage({entry});
  AddNodes(0x200024, 12);
  forge::Image image = store_.Finish();
  for (const forge::PlacedPage& page : image.TreePages(PageType::kNodes)) WipePage(image, page);
  Judge(image);
  EXPECT_TRUE(judgement_.blocksAreExact);
  EXPECT_TRUE(Nodes({Standing::kLive, Standing::kDoubtful}).empty());
  EXPECT_TRUE(Has(Standing::kDeleted, entry));
}

TEST_F(JudgeNodesTest, EntriesThatAreNoLongerInTheTreeAreDeletedOrOlderEachOnce) {
  const forge::Bid before = Context(u"before");
  const forge::NodeEntry deleted{0x300024, before, 0, 0x8022};
  const forge::NodeEntry older{0x200024, before, 0, 0x8022};
  for (int i = 0; i < 3; ++i) OldPage({older, deleted});
  AddNodes(0x200024, 12);
  const forge::Image image = store_.Finish();
  Judge(image);
  EXPECT_TRUE(judgement_.nodesAreExact);
  EXPECT_EQ(Nodes({Standing::kLive}), LinesOf(image));
  EXPECT_TRUE(Has(Standing::kOlder, older));
  EXPECT_TRUE(Has(Standing::kDeleted, deleted));
  EXPECT_EQ(judgement_.nodes.size(), image.nodes.size() + 2);
  const auto leader =
      std::ranges::find(judgement_.nodes, velmora::Nid{0x200024}, [](const NodeClaim& c) { return c.node.nid; });
  EXPECT_EQ(leader->standing, Standing::kLive) << "the live one leads";
}

TEST_F(JudgeNodesTest, ABlockThatAnOldLeafStepsOverIsFreedAndOthersAreUnknownWithoutATree) {
  std::vector<forge::Bid> bids;
  for (std::uint32_t i = 0; i < 5; ++i) bids.push_back(store_.AddBlock(forge::Noise(100, i)));
  OldBlockPage({bids[0], bids[2]});
  forge::Image image = store_.Finish();
  for (const forge::PlacedPage& page : image.TreePages(PageType::kBlocks)) WipePage(image, page);
  Judge(image);
  EXPECT_FALSE(judgement_.blocksAreExact);
  EXPECT_EQ(StatusOf(bids[1]), BlockStatus::kFreed);
  for (const int i : {0, 2, 3, 4})
    EXPECT_EQ(StatusOf(bids[i]), BlockStatus::kUnknown) << "newer blocks show the page as old";
}

TEST_F(JudgeNodesTest, ABlockThatNothingRefersToAnyMoreIsNotLive) {
  const forge::Bid garbage = store_.AddBlock(forge::Noise(100, 1));  // its count is 1
  const forge::Bid used = Context(u"used");
  store_.AddNode(0x200024, used, 0, 0x8022);
  Judge(store_.Finish());
  EXPECT_EQ(StatusOf(garbage), BlockStatus::kFreed);
  EXPECT_EQ(StatusOf(used), BlockStatus::kLive);
}

TEST_F(JudgeNodesTest, OfAHurtLeafTheEntriesWhoseBlocksAreThereCount) {
  AddNodes(0x200024, 12);
  forge::Image image = store_.Finish();
  const forge::PlacedPage leaf = LeafWithNode(image, 0x200024);
  forge::Fill(image, leaf.offset + 8 + 1, 1, std::byte{0x77});  // the first entry leads to a block that is nowhere
  Judge(image);
  EXPECT_FALSE(judgement_.nodesAreExact);
  NodeLines expected = LinesOf(image);
  expected.erase(LineOf(image.Node(0x200024)));
  EXPECT_EQ(Nodes({Standing::kLive}), expected);
}

TEST_F(JudgeNodesTest, OfAHurtLeafAnEntryWithABlockOfAnotherMessageDoesNotCount) {
  for (forge::Nid nid = 0x200024; nid < 0x2001A4; nid += 0x20) {
    const forge::Bid sub = store_.AddSubnodes({{.nid = 0x8025, .bidData = Context(u"below")}});
    store_.AddNode(nid, Context(u"node"), sub, 0x8022);
  }
  const forge::Image whole = store_.Finish();
  const forge::PlacedPage leaf = LeafWithNode(whole, 0x200024);
  const forge::NodeEntry& other = whole.Node(0x200184);
  for (const auto& [place, bid] : {std::pair(8, other.bidData), std::pair(16, other.bidSub)}) {
    forge::Image image = whole;
    forge::Put(image.bytes, leaf.offset + place, bid, 8);
    Judge(image);
    NodeLines expected = LinesOf(whole);
    expected.erase(LineOf(whole.Node(0x200024)));
    EXPECT_EQ(Nodes({Standing::kLive}), expected) << place;
  }
  forge::Image image = whole;
  forge::Put(image.bytes, leaf.offset + 8, other.bidData, 8);
  forge::Put(image.bytes, leaf.offset + 16, other.bidSub, 8);
  Judge(image);
  EXPECT_EQ(Nodes({Standing::kLive}).size(), whole.nodes.size()) << "with both it is a copy";
}

TEST_F(JudgeNodesTest, WhatAHurtLeafHasLostAnOlderEntryStandsInFor) {
  const forge::Bid kept = Context(u"kept");
  OldPage({{.nid = 0x200024, .bidData = kept, .nidParent = 0x8022}});
  store_.AddNode(0x200024, kept, 0, 0x8022);
  AddNodes(0x200044, 11);
  forge::Image image = store_.Finish();
  forge::Fill(image, LeafWithNode(image, 0x200024).offset + 8 + 1, 1, std::byte{0x77});
  Judge(image);
  EXPECT_TRUE(Has(Standing::kDoubtful, image.Node(0x200024)));
}

TEST_F(JudgeNodesTest, OfAHurtLeafAnEntryWhoseIdIsOutOfOrderDoesNotCount) {
  AddNodes(0x200024, 12);
  forge::Image image = store_.Finish();
  const forge::PlacedPage leaf = LeafWithNode(image, 0x200024);
  forge::Fill(image, leaf.offset + 400, 1, std::byte{1});  // in no entry; a single bit would be put right
  forge::Image middle = image;
  forge::Fill(middle, leaf.offset + 64 + 2, 1, std::byte{0});  // 0x64 behind 0x200044
  Judge(middle);
  NodeLines without = LinesOf(image);
  without.erase(LineOf(image.Node(0x200064)));
  EXPECT_EQ(Nodes({Standing::kLive}), without);

  forge::Fill(image, leaf.offset + 32 + 2, 1, std::byte{0});  // 0x44 behind 0x200024
  Judge(image);
  NodeLines expected = LinesOf(image);
  expected.erase(LineOf(image.Node(0x200044)));
  expected.erase(LineOf(image.Node(0x200024)));
  EXPECT_EQ(Nodes({Standing::kLive}), expected) << "which of the first two is the wrong one nothing tells";
}

TEST_F(JudgeNodesTest, ACopyOfAMessageIsNoNewerVersionOfIt) {
  const auto old = forge::FormContext(store_, Keyed(u"before"));
  const forge::NodeEntry entry{0x200024, store_.AddDataBlocks(old.blocks), store_.AddSubnodes(old.subnodes), 0x8022};
  OldPage({entry});
  const auto copy = forge::FormContext(store_, Keyed(u"copy"), {.firstValueNid = 0x903F});
  store_.AddDataBlocks(copy.blocks);
  store_.AddSubnodes(copy.subnodes);
  forge::Image image = store_.Finish();
  forge::WipeHeader(image);
  for (const PageType type : {PageType::kBlocks, PageType::kNodes}) {
    for (const forge::PlacedPage& page : image.TreePages(type)) WipePage(image, page);
  }
  Judge(image);
  EXPECT_TRUE(Has(Standing::kLive, entry)) << "their values lie in other sub-nodes";
}

TEST_F(JudgeNodesTest, AMessageThatWasChangedAfterItsPageWasWrittenTakesItsNewerProperties) {
  ExpectNewerPropertiesAreTaken(u"after");
}

TEST_F(JudgePackedNodesTest, AMessageThatWasChangedAfterItsPageWasWrittenTakesItsNewerProperties) {
  const std::u16string after(500, u'x');
  EXPECT_TRUE(IsPacked(ExpectNewerPropertiesAreTaken(after)));
}

TEST_F(JudgeNodesTest, WithoutPagesThereAreNoNodesAndEveryBlockIsUnknown) {
  forge::Image image = SampleImage();
  forge::WipeTrees(image);
  Judge(image);
  EXPECT_TRUE(judgement_.nodes.empty());
  EXPECT_EQ(judgement_.statuses.size(), evidence_.blocks.size());
  EXPECT_EQ(std::ranges::count(judgement_.statuses, BlockStatus::kUnknown), std::ssize(evidence_.blocks));
}

class HostilePagesTest : public EvidenceTest {};

TEST_F(HostilePagesTest, PagesThatLeadToOneAnotherEndAndProveNoTree) {
  forge::Store store;
  const std::uint64_t place = (store.End() + 511) / 512 * 512;
  for (std::uint64_t i = 0; i < 40; ++i) {  // each names all, at every level, itself too
    forge::Bytes entries;
    for (std::uint64_t j = 0; j < 20; ++j) {
      forge::Append(entries, forge::FormEntry(Format::kUnicode, forge::BranchEntry{j + 1, 100 + (i + j) % 40,
                                                                                   place + (i + j) % 40 * 512}));
    }
    store.AddPage({.type = i % 2 == 0 ? PageType::kNodes : PageType::kBlocks,
                   .entries = entries,
                   .level = static_cast<std::uint8_t>(i % 8 + 1),
                   .pageId = 100 + i,
                   .offset = place + i * 512});
  }
  forge::Image image = store.Finish();
  forge::WipeHeader(image);
  Judge(image);
  EXPECT_EQ(evidence_.pages.size(), 42u);
  EXPECT_FALSE(judgement_.nodesAreExact);
  EXPECT_TRUE(judgement_.nodes.empty());
}

TEST_F(HostilePagesTest, AMillionRepeatedEntriesMakeOneClaim) {
  forge::Store store;
  const forge::Bid bid = store.AddBlock(forge::Noise(100, 1));
  store.AddNode(0x200024, bid, 0, 0x8022);
  const std::vector<forge::NodeEntry> entries(15, {.nid = 0x200024, .bidData = bid, .nidParent = 0x8022});
  for (int i = 0; i < 1000000 / 15; ++i) store.AddPage(forge::NodePage(Format::kUnicode, entries));
  forge::Image image = store.Finish();
  forge::WipeHeader(image);
  Judge(image);
  ASSERT_EQ(judgement_.nodes.size(), 1u);
  EXPECT_EQ(judgement_.nodes.front().standing, Standing::kLive);
}

}  // namespace
}  // namespace velmora::engine
