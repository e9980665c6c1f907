// Heaps and property contexts, sound ones and others.
#include "forge/context.h"

#include <gtest/gtest.h>

#include "forge/names.h"

namespace velmora::forge {
namespace {

// The range of an allocation by the page map of a block.
std::pair<std::size_t, std::size_t> RangeOf(const Bytes& block, Hid hid) {
  const std::size_t at = Get(block, 0, 2) + 2 + (hid >> 4);
  return {Get(block, at, 2), Get(block, at + 2, 2)};
}

// The value word of the record of that id, by way of the tree header.
std::uint32_t ValueOf(const Bytes& block, std::uint16_t id) {
  const auto [root, rootEnd] = RangeOf(block, static_cast<Hid>(Get(block, 4, 4)));
  EXPECT_EQ(rootEnd - root, 8U);
  const auto [start, end] = RangeOf(block, static_cast<Hid>(Get(block, root + 4, 4)));
  for (std::size_t at = start; at < end; at += 8) {
    if (Get(block, at, 2) == id) return static_cast<std::uint32_t>(Get(block, at + 4, 4));
  }
  ADD_FAILURE() << "no record " << id;
  return 0;
}

TEST(ForgedContext, StandsInOneHeapBlockWithRecordsAscending) {
  Store store({.encoding = Encoding::kNone});
  const Context context = FormContext(store, {Int32(0x3602, 5), Text(0x001A, u"IPM.Note"), Bool(0x0023, true)});
  ASSERT_EQ(context.blocks.size(), 1U);
  const Bytes& block = context.blocks.front();
  EXPECT_EQ(Get(block, 2, 2), 0xBCECU);
  const auto [root, rootEnd] = RangeOf(block, static_cast<Hid>(Get(block, 4, 4)));
  EXPECT_EQ(Get(block, root, 2), 0x02B5U);
  const auto [start, end] = RangeOf(block, static_cast<Hid>(Get(block, root + 4, 4)));
  EXPECT_EQ(end - start, 24U);
  EXPECT_EQ(Get(block, start, 2), 0x001AU);
  EXPECT_EQ(Get(block, start + 8, 2), 0x0023U);
  EXPECT_EQ(Get(block, start + 16, 2), 0x3602U);
  EXPECT_EQ(ValueOf(block, 0x3602), 5U);
  const auto [text, textEnd] = RangeOf(block, ValueOf(block, 0x001A));
  EXPECT_EQ(Bytes(block.begin() + text, block.begin() + textEnd), ToUtf16(u"IPM.Note"));
}

TEST(ForgedContext, NarrowsTextsInAnAnsiStoreAlone) {
  const PropertyList list = {Text(0x0037, u"Größe €"), Text16(0x0070, u"ab")};
  Store ansi({.format = Format::kAnsi});
  const Bytes block = FormContext(ansi, list).blocks.front();
  const auto [start, end] = RangeOf(block, ValueOf(block, 0x0037));
  EXPECT_EQ(Bytes(block.begin() + start, block.begin() + end), ToBytes("Gr\xF6\xDF"
                                                                       "e \x80"));
  const auto [wide, wideEnd] = RangeOf(block, ValueOf(block, 0x0070));
  EXPECT_EQ(wideEnd - wide, 4U);
  EXPECT_EQ(StoredType(list[0], false), kString8);
  EXPECT_EQ(StoredType(list[1], false), kString);
}

TEST(ForgedContext, MovesValuesToSubnodesByLengthOrWish) {
  Store store;
  const Context context = FormContext(store, {Binary(0x1000, Noise(1024, 1)), Binary(0x1009, Noise(1025, 1)),
                                              Binary(0x1013, Noise(3, 1), Place::kBlock),
                                              Binary(0x3701, Noise(3, 1), Place::kChain), Binary(0x3702, {})});
  const Bytes& block = context.blocks.front();
  EXPECT_EQ(ValueOf(block, 0x1000) & 0x1FU, 0U);
  EXPECT_EQ(ValueOf(block, 0x1009), 0x803FU);
  EXPECT_EQ(ValueOf(block, 0x1013), 0x805FU);
  EXPECT_EQ(ValueOf(block, 0x3702), 0U) << "an empty value has no allocation";
  ASSERT_EQ(context.subnodes.size(), 3U);
  EXPECT_EQ(context.subnodes[1].bidData & 2U, 0U);
  EXPECT_EQ(context.subnodes[2].bidData & 2U, 2U) << "a chain of one piece";
  EXPECT_EQ(context.DataSize(), block.size() + 1031);
}

TEST(ForgedContext, TakesMoreBlocksWhenOneIsFull) {
  Store store;
  PropertyList list;
  for (std::uint16_t i = 0; i < 9; ++i)
    list.push_back(Binary(static_cast<std::uint16_t>(0x3A00 + i), Noise(3000, i), Place::kHeap));
  const Context context = FormContext(store, list);
  ASSERT_EQ(context.blocks.size(), 5U);
  EXPECT_EQ(context.blocks[0].size(), 8176U) << "all but the last are full";
  EXPECT_EQ(ValueOf(context.blocks[0], 0x3A08), (4U << 16) + 0x20);
}

TEST(ForgedContext, ClaimsWhatItIsTold) {
  Store store;
  const Context context = FormContext(store, {Int32(0x3602, 1)},
                                      {.heapSignature = 0xAB,
                                       .clientSignature = 0x7C,
                                       .treeType = 0xB6,
                                       .levels = 3,
                                       .rootLength = 12,
                                       .recordRoot = 0x12340020,
                                       .fillers = {Bytes(40), Bytes(1)}});
  const Bytes& block = context.blocks.front();
  EXPECT_EQ(Get(block, 2, 2), 0x7CABU);
  const auto [root, rootEnd] = RangeOf(block, 0x20);
  EXPECT_EQ(rootEnd - root, 12U);
  EXPECT_EQ(Get(block, root, 1), 0xB6U);
  EXPECT_EQ(Get(block, root + 3, 1), 3U);
  EXPECT_EQ(Get(block, root + 4, 4), 0x12340020U);
  EXPECT_EQ(Get(block, Get(block, 0, 2), 2), 4U) << "tree header, two fillers, records";
}

TEST(ForgedContext, GrowsASecondLevelOverManyRecords) {
  Store store;
  PropertyList list;
  for (std::uint16_t i = 0; i < 10; ++i) list.push_back(Int32(static_cast<std::uint16_t>(0x6000 + i), i));
  const Bytes block = FormContext(store, list, {.recordsPerLeaf = 4}).blocks.front();
  const auto [root, rootEnd] = RangeOf(block, 0x20);
  EXPECT_EQ(Get(block, root + 3, 1), 1U);
  const auto [upper, upperEnd] = RangeOf(block, static_cast<Hid>(Get(block, root + 4, 4)));
  ASSERT_EQ(upperEnd - upper, 18U) << "three leaves";
  const auto [leaf, leafEnd] = RangeOf(block, static_cast<Hid>(Get(block, upper + 6 + 2, 4)));
  EXPECT_EQ(Get(block, leaf, 2), 0x6004U);
  EXPECT_EQ(leafEnd - leaf, 32U);
}

TEST(ForgedContext, LetsARecordBeOverwritten) {
  Store store;
  Context context = FormContext(store, {Int32(0x0E08, 0), Int32(0x3602, 1)});
  SetRecordValue(context, 0x0E08, 77);
  EXPECT_EQ(ValueOf(context.blocks.front(), 0x0E08), 77U);
  EXPECT_THROW(SetRecordValue(context, 0x0E09, 1), std::out_of_range);
}

TEST(ForgedNames, KeepOneIdForOneName) {
  NameMap names;
  EXPECT_EQ(names.IdOf({.set = PropertySet::kCommon, .number = 0x8503}), 0x8000);
  EXPECT_EQ(names.IdOf({.set = PropertySet::kPublic, .text = u"Keywords"}), 0x8001);
  EXPECT_EQ(names.IdOf({.set = PropertySet::kAddress, .number = 0x8503}), 0x8002);
  EXPECT_EQ(names.IdOf({.set = PropertySet::kCommon, .number = 0x8503}), 0x8000);
  names.PadTo(60);
  EXPECT_EQ(names.Count(), 60U);
}

TEST(ForgedNames, StandInTheirHashBuckets) {
  NameMap names;
  names.IdOf({.set = PropertySet::kCommon, .number = 0x8080});
  names.IdOf({.set = PropertySet::kPublic, .text = u"Keywords"});
  const PropertyList list = names.Properties();
  ASSERT_NE(Find(list, 0x1015), nullptr);
  EXPECT_EQ(Get(Find(list, 0x1015)->data, 0, 4), 0x8080U);
  ASSERT_NE(Find(list, 0x1065), nullptr);
  EXPECT_EQ(Get(Find(list, 0x1065)->data, 0, 4), 0x2EDA4D3BU);
  EXPECT_EQ(Find(names.Properties(true), 0x1065)->data.size(), 16U);
}

}  // namespace
}  // namespace velmora::forge
