// Property contexts, written and read back.
#include "store/ltp/property_context.h"

#include <gtest/gtest.h>

#include "store/ltp/multi_value.h"
#include "store/ltp/property_context_writer.h"
#include "store/ndb/data_tree_reader.h"
#include "store/ndb/ndb_writer.h"
#include "store/ndb/store_reader.h"
#include "store/support/failures.h"
#include "store/support/pst_check.h"
#include "store/support/test_files.h"

namespace velmora::ltp {
namespace {

constexpr Nid kNode{0x1001};  // an internal node that no rule knows

class PropertyContexts : public testing::Test {
 protected:
  PropertyContext Reopened() {
    const ndb::WrittenNode node = writer_.Finish();
    ndb_->SetNode(kNode, node.trees);
    EXPECT_EQ(node.dataSize, ndb::DataSizeOf(*ndb_, node.trees));
    return PropertyContext::Open(*ndb_, node.trees);
  }

  std::string Check() {
    ndb_->Seal();
    return test::PstCheck(file_.Bytes(), test::Check::kProperties);
  }

  platform::MemoryFile file_;
  std::unique_ptr<ndb::NdbWriter> ndb_ = ndb::NdbWriter::Create(file_);
  PropertyContextWriter writer_{*ndb_};
};

TEST_F(PropertyContexts, WithoutPropertiesAreReadable) {
  EXPECT_TRUE(Reopened().Records().empty());
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(Check(), "");
}

TEST_F(PropertyContexts, KeepValuesOfEveryType) {
  const std::vector<std::byte> bytes = test::Noise(60);
  writer_.AddText(0x3001001F, u"Posteingang \u2603");
  writer_.AddBoolean(0x360A000B, true);
  writer_.AddBoolean(0x360B000B, false);
  writer_.AddInteger16(0x36000002, -2);
  writer_.AddInteger32(0x36020003, -70000);
  writer_.AddInteger64(0x30070040, 0x01D000000000ABCD);
  writer_.AddInteger64(0x0E330014, -5);
  writer_.AddFloating64(0x40000005, 1.5);
  writer_.AddFloating64(0x40010007, 43831.5);
  writer_.Add(0x40020004, std::span(bytes).first(4));
  writer_.Add(0x40030006, std::span(bytes).first(8));
  writer_.Add(0x4004000A, std::span(bytes).first(4));
  writer_.Add(0x40050048, std::span(bytes).first(16));
  writer_.Add(0x4006001E, std::span(bytes).first(3));
  writer_.Add(0x40070102, bytes);
  writer_.Add(0x400800FB, bytes);
  writer_.Add(0x400900FD, bytes);
  writer_.Add(0x400A00FE, bytes);
  writer_.Add(0x400B1003, std::span(bytes).first(12));
  writer_.Add(0x400C1040, std::span(bytes).first(24));
  writer_.Add(0x400D101F, EncodeMultiple(std::vector<text::Text>{u"x", u"yz"}));
  writer_.Add(0x400E1102, EncodeMultiple(std::vector<std::span<const std::byte>>{bytes, bytes}));
  PropertyContext pc = Reopened();
  EXPECT_EQ(pc.Records().size(), 22u);
  EXPECT_EQ(pc.Text(0x3001001F), u"Posteingang \u2603");
  EXPECT_EQ(pc.Boolean(0x360A000B), true);
  EXPECT_EQ(pc.Boolean(0x360B000B), false);
  EXPECT_EQ(pc.Integer16(0x36000002), -2);
  EXPECT_EQ(pc.Find(0x3600)->dwValueHnid, 0xFFFEu) << "the upper half is 0";
  EXPECT_EQ(pc.Integer32(0x36020003), -70000);
  EXPECT_EQ(pc.Integer64(0x30070040), 0x01D000000000ABCD);
  EXPECT_EQ(pc.Integer64(0x0E330014), -5);
  EXPECT_EQ(pc.Floating64(0x40000005), 1.5);
  EXPECT_EQ(pc.Floating64(0x40010007), 43831.5);
  EXPECT_TRUE(std::ranges::equal(*pc.Binary(0x40050048), std::span(bytes).first(16)));
  EXPECT_EQ(pc.Binary(0x40070102), bytes);
  const std::vector<std::byte> texts = pc.Binary(0x400D101F).value();
  EXPECT_EQ(DecodeText(DecodeMultiple(texts).value()[1]), u"yz");
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(Check(), "");
}

TEST_F(PropertyContexts, TellAbsentFromEmptyAndFromAnotherType) {
  writer_.AddText(0x3001001F, u"");
  writer_.Add(0x30020102, {});
  PropertyContext pc = Reopened();
  EXPECT_EQ(pc.Text(0x3001001F), u"");
  EXPECT_EQ(pc.Find(0x3001)->dwValueHnid, 0u) << "an empty value has no heap item";
  EXPECT_EQ(pc.Read(0x30020102), std::vector<std::byte>{});
  EXPECT_EQ(pc.SizeOf(0x3001001F), 0u);
  EXPECT_FALSE(pc.Read(0x3001001E));
  EXPECT_FALSE(pc.Read(0x3003001F));
  EXPECT_EQ(pc.Find(0x3003), nullptr);
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(Check(), "");
}

TEST_F(PropertyContexts, MoveValuesOfMoreThan1024BytesToSubnodes) {
  writer_.Add(0x40000102, test::Noise(1024));
  writer_.Add(0x40010102, test::Noise(1025));
  writer_.Add(0x40020102, test::Noise(100000));
  writer_.AddText(0x4003001F, text::Text(4000, u'x'));
  PropertyContext pc = Reopened();
  EXPECT_TRUE(IsHid(pc.Find(0x4000)->dwValueHnid));
  EXPECT_EQ(pc.Find(0x4001)->dwValueHnid, 0x803Fu);
  EXPECT_EQ(pc.Find(0x4002)->dwValueHnid, 0x805Fu);
  EXPECT_EQ(pc.Binary(0x40000102), test::Noise(1024));
  EXPECT_EQ(pc.Binary(0x40010102), test::Noise(1025));
  EXPECT_EQ(pc.Binary(0x40020102), test::Noise(100000));
  EXPECT_EQ(pc.Text(0x4003001F)->size(), 4000u);
  EXPECT_EQ(pc.SizeOf(0x40000102), 1024u);
  EXPECT_EQ(pc.SizeOf(0x40020102), 100000u);
  EXPECT_FALSE(pc.TreeOf(0x40000102));
  EXPECT_EQ(pc.TreeOf(0x40020102)->size, 100000u);
  EXPECT_EQ(pc.Subnodes().size(), 3u);
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(Check(), "");
}

TEST_F(PropertyContexts, TakeStreamedValuesAsAnyOther) {
  for (const auto& [tag, size] :
       {std::pair<PropTag, std::size_t>{0x40000102, 0}, {0x40010102, 1024}, {0x40020102, 1025}, {0x40030102, 50000}}) {
    ndb::DataTreeWriter stream(*ndb_);
    const std::vector<std::byte> bytes = test::Noise(size);
    for (std::size_t at = 0; at < size; at += 700) {
      stream.Append(std::span(bytes).subspan(at, std::min<std::size_t>(700, size - at)));
    }
    writer_.AddStream(tag, stream);
    EXPECT_EQ(stream.Size(), 0u);
  }
  EXPECT_EQ(writer_.ValueBytes(), 0u + 1024 + 1025 + 50000);
  PropertyContext pc = Reopened();
  EXPECT_EQ(pc.Find(0x4000)->dwValueHnid, 0u);
  EXPECT_TRUE(IsHid(pc.Find(0x4001)->dwValueHnid));
  EXPECT_FALSE(IsHid(pc.Find(0x4002)->dwValueHnid));
  EXPECT_EQ(pc.Binary(0x40030102), test::Noise(50000));
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(Check(), "");
}

TEST_F(PropertyContexts, ShareATreeWithAnotherNode) {
  writer_.Add(0x37010102, test::Noise(50000));
  PropertyContext first = Reopened();
  const ndb::DataTree tree = first.TreeOf(0x37010102).value();
  const std::size_t blocks = ndb_->BlockCount();
  writer_.AddTree(0x37010102, tree);
  const ndb::WrittenNode second = writer_.Finish();
  EXPECT_EQ(ndb_->BlockCount(), blocks + 2) << "a heap and a list of sub-nodes";
  EXPECT_GT(second.dataSize, 50000u);
  ndb_->SetNode(Nid{Value(kNode) + 0x20}, second.trees);
  ndb_->RemoveNode(kNode);
  EXPECT_EQ(PropertyContext::Open(*ndb_, second.trees).Binary(0x37010102), test::Noise(50000));
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(Check(), "");
}

TEST_F(PropertyContexts, CarryTheirOwnDataSize) {
  for (const std::size_t size : {0u, 500u, 1024u, 20000u}) {
    for (int others = 0; others < 1500; others += 300) {
      writer_.AddDataSize(0x0E080003);
      writer_.Add(0x40000102, test::Noise(size));
      for (int i = 0; i < others; ++i)
        writer_.AddInteger64(MakeTag(static_cast<std::uint16_t>(0x5000 + i), PropType::kTime), i);
      const ndb::WrittenNode node = writer_.Finish();
      EXPECT_EQ(PropertyContext::Open(*ndb_, node.trees).Integer32(0x0E080003), node.dataSize);
      EXPECT_EQ(ndb::DataSizeOf(*ndb_, node.trees), node.dataSize);
    }
  }
}

TEST_F(PropertyContexts, ReferToObjectsInSubnodes) {
  writer_.AddText(0x0037001F, u"inner");
  writer_.AddDataSize(0x0E080003);
  const ndb::WrittenNode inner = writer_.Finish();
  const Nid nid = MakeNid(NidType::kNormalMessage, 0x10001);
  writer_.AddInteger32(0x37050003, 5);
  writer_.AddObject(0x3701000D, nid, static_cast<std::uint32_t>(inner.dataSize));
  writer_.AddSubnode(nid, inner);
  EXPECT_EQ(writer_.ValueBytes(), 4 + inner.dataSize);
  PropertyContext pc = Reopened();
  const auto object = pc.ReadObject(0x3701000D);
  ASSERT_TRUE(object);
  EXPECT_EQ(object->nid, nid);
  EXPECT_EQ(object->size, inner.dataSize);
  const auto subnode = pc.FindSubnode(nid);
  ASSERT_TRUE(subnode);
  EXPECT_EQ(PropertyContext::Open(*ndb_, subnode->trees).Text(0x0037001F), u"inner");
  EXPECT_FALSE(pc.ReadObject(0x37050003));
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(Check(), "");
}

TEST_F(PropertyContexts, GrowAnIndexLevelAbove447Properties) {
  for (const int count : {447, 448, 3000}) {
    for (int i = count; i-- > 0;)
      writer_.AddInteger32(MakeTag(static_cast<std::uint16_t>(0x1000 + i), PropType::kInteger32), i);
    writer_.AddText(0x7000001F, u"last");
    const ndb::WrittenNode node = writer_.Finish();
    ndb_->SetNode(Nid{Value(kNode) + 0x20 * static_cast<std::uint32_t>(count)}, node.trees);
    PropertyContext pc = PropertyContext::Open(*ndb_, node.trees);
    ASSERT_EQ(pc.Records().size(), static_cast<std::size_t>(count) + 1);
    for (int i = 0; i < count; ++i)
      ASSERT_EQ(pc.Integer32(MakeTag(static_cast<std::uint16_t>(0x1000 + i), PropType::kInteger32)), i);
    EXPECT_EQ(pc.Text(0x7000001F), u"last");
  }
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(Check(), "");
}

TEST_F(PropertyContexts, SpreadOverManyHeapBlocks) {
  for (int i = 0; i < 200; ++i) {
    writer_.Add(MakeTag(static_cast<std::uint16_t>(0x1000 + i), PropType::kBinary),
                test::Noise(900, static_cast<std::uint32_t>(i)));
  }
  PropertyContext pc = Reopened();
  for (int i = 0; i < 200; ++i) {
    ASSERT_EQ(pc.Binary(MakeTag(static_cast<std::uint16_t>(0x1000 + i), PropType::kBinary)),
              test::Noise(900, static_cast<std::uint32_t>(i)));
  }
  VELMORA_NEEDS_PST_CHECK();
  EXPECT_EQ(Check(), "");
}

TEST_F(PropertyContexts, ReadTheSameFromTheFinishedStore) {
  writer_.AddText(0x3001001F, u"name");
  writer_.Add(0x40020102, test::Noise(100000));
  Reopened();
  ndb_->Seal();
  const auto store = ndb::StoreReader::Open(file_);
  PropertyContext pc = PropertyContext::Open(*store, store->FindNode(kNode)->trees);
  EXPECT_EQ(pc.Text(0x3001001F), u"name");
  EXPECT_EQ(pc.Binary(0x40020102), test::Noise(100000));
}

TEST_F(PropertyContexts, RefuseWhatTheFormatHasNoPlaceFor) {
  const auto refused = [this](auto add) {
    const auto finished = [&] {
      add();
      static_cast<void>(writer_.Finish());
    };
    return test::FailureOf(finished) == FailureKind::kCorrupt;
  };
  const std::vector<std::byte> bytes = test::Noise(20);
  EXPECT_TRUE(refused([&] { writer_.AddInteger32(0x36020003, 1), writer_.AddInteger32(0x36020003, 2); })) << "twice";
  EXPECT_TRUE(refused([&] { writer_.AddInteger32(0x36020003, 1), writer_.AddText(0x3602001F, u""); })) << "one id";
  EXPECT_TRUE(refused([&] { writer_.Add(0x3602001F, std::span(bytes).first(3)); })) << "odd text";
  EXPECT_TRUE(refused([&] { writer_.Add(0x36020003, std::span(bytes).first(3)); })) << "size of a number";
  EXPECT_TRUE(refused([&] { writer_.Add(0x36021003, std::span(bytes).first(6)); })) << "size of numbers";
  EXPECT_TRUE(refused([&] { writer_.Add(0x3602101F, bytes); })) << "offsets of texts";
  EXPECT_TRUE(refused([&] { writer_.Add(0x36020001, {}); })) << "unknown type";
  EXPECT_TRUE(refused([&] { writer_.Add(0x3602000D, std::span(bytes).first(8)); })) << "an object is no value";
  EXPECT_TRUE(refused([&] { writer_.AddObject(0x36020102, Nid{0x803F}, 1); })) << "a value is no object";
  EXPECT_TRUE(refused([&] { writer_.AddTree(0x36020003, {Bid{4}, 4}); })) << "a number has no tree";
  EXPECT_TRUE(refused([&] { writer_.AddTree(0x3602001F, {Bid{4}, 2001}); })) << "odd text in a tree";
  EXPECT_TRUE(refused([&] {
    writer_.AddSubnode(Nid{0x8025}, {{Bid{4}}, 1}), writer_.AddSubnode(Nid{0x8025}, {{Bid{4}}, 1});
  }));
  writer_.AddInteger32(0x36020003, 1);
  EXPECT_EQ(Reopened().Records().size(), 1u) << "the writer is ready for the next node after a failure";
}

TEST_F(PropertyContexts, ThatAreDamagedAreReadWithinBounds) {
  writer_.AddText(0x3001001F, u"name");
  writer_.Add(0x40020102, test::Noise(3000));
  for (int i = 0; i < 500; ++i)
    writer_.AddInteger32(MakeTag(static_cast<std::uint16_t>(0x5000 + i), PropType::kInteger32), i);
  const ndb::WrittenNode node = writer_.Finish();
  std::vector<std::byte> heap;
  ndb_->ReadBlock(node.trees.bidData, heap);
  test::Random random(9);
  for (int round = 0; round < 3000; ++round) {
    std::vector<std::byte> changed = heap;
    for (std::uint32_t i = 0; i < 1 + random() % 8; ++i) {
      // Mostly where heap and tree are described.
      const std::size_t at = random() % 2 == 0 ? random() % 32 : changed.size() - 1 - random() % 64;
      changed[random() % 4 == 0 ? random() % changed.size() : at] = static_cast<std::byte>(random());
    }
    const ndb::DataTree tree = ndb_->WriteData(changed);
    if (auto pc = IfReadable([&] { return PropertyContext::Open(*ndb_, {tree.bid, node.trees.bidSub}); })) {
      for (const PropertyRecord& record : pc->Records()) {
        static_cast<void>(IfReadable([&] { return pc->Read(record.Tag()); }));
        static_cast<void>(IfReadable([&] { return pc->SizeOf(record.Tag()); }));
        static_cast<void>(IfReadable([&] { return pc->TreeOf(record.Tag()); }));
      }
    }
    ndb_->Discard({tree.bid});
  }
}

}  // namespace
}  // namespace velmora::ltp
