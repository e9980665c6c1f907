// The blocks that a node entry would name, told apart by what is in them, packed or not.
#include "engine/evidence/top_blocks.h"

#include "engine/evidence/evidence_fixture.h"

namespace velmora::engine {
namespace {

using forge::Format;

class TopBlocksTest : public EvidenceTest, public testing::WithParamInterface<Format> {
 protected:
  /// A context of so many texts, which shrinks where the format packs.
  forge::Bid Context(int texts) {
    forge::PropertyList properties;
    for (int i = 0; i < texts; ++i) {
      const auto id = static_cast<std::uint16_t>(0x6800 + i);
      properties.push_back(forge::Text(id, std::u16string(1000, u'x'), forge::Place::kHeap));
    }
    return store_.AddDataBlocks(forge::FormContext(store_, properties).blocks);
  }

  forge::Store store_{forge::StoreOptions{.format = GetParam(), .compressed = GetParam() == Format::kUnicode4k}};
};

INSTANTIATE_TEST_SUITE_P(Formats, TopBlocksTest, testing::Values(Format::kAnsi, Format::kUnicode, Format::kUnicode4k));

TEST_P(TopBlocksTest, AreContextsOfOneBlockAndOfManyAndListsOfSubnodes) {
  const forge::Bid one = Context(1);
  const forge::Bid many = Context(100);
  store_.AddBlock(forge::Bytes(3000, std::byte{'x'}));  // data that nothing names
  const forge::Bid below = Context(2);
  const forge::Bid list = store_.AddSubnodes({{.nid = 0x671, .bidData = below}});
  Judge(store_.Finish());
  const EvidenceBlocks blocks(*source_, evidence_, judgement_);
  const TopBlocks tops = FindTopBlocks(EvidenceView(blocks, evidence_, judgement_), run_);
  std::vector<velmora::Bid> contexts{velmora::Bid{one}, velmora::Bid{many}};
  EXPECT_EQ(tops.contexts, contexts);
  EXPECT_EQ(tops.lists, std::vector{velmora::Bid{list}});
  EXPECT_TRUE(tops.tables.empty());
}

TEST_P(TopBlocksTest, AreNotSoughtAnyMoreOnceTheRunIsToStop) {
  Context(1);
  Judge(store_.Finish());
  const EvidenceBlocks blocks(*source_, evidence_, judgement_);
  run_.control.RequestStop();
  EXPECT_THROW(FindTopBlocks(EvidenceView(blocks, evidence_, judgement_), run_), RunStopped);
}

}  // namespace
}  // namespace velmora::engine
