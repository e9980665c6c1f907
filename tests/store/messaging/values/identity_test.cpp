// Entry ids, search keys, conversation ids, random identifiers.
#include "store/messaging/values/identity.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::messaging {
namespace {

template <class Range>
std::string Hex(const Range& bytes) {
  std::string out;
  for (const std::byte byte : bytes) {
    char pair[3];
    std::snprintf(pair, sizeof pair, "%02x", std::to_integer<unsigned>(byte));
    out += pair;
  }
  return out;
}

Uid Key() {
  Uid key;
  for (std::size_t i = 0; i < key.size(); ++i) key[i] = static_cast<std::byte>(0xA0 + i);
  return key;
}

TEST(EntryId, OfANodeNamesStoreAndNode) {
  const Bytes entryId = NodeEntryId(Key(), Nid{0x8022});
  EXPECT_EQ(Hex(entryId), "00000000a0a1a2a3a4a5a6a7a8a9aaabacadaeaf22800000");
  EXPECT_EQ(NodeOfEntryId(entryId, Key()), Nid{0x8022});
}

TEST(EntryId, OfAnotherStoreOrLengthNamesNoNode) {
  const Bytes entryId = NodeEntryId(Key(), Nid{0x8022});
  EXPECT_FALSE(NodeOfEntryId(entryId, Uid{}));
  EXPECT_FALSE(NodeOfEntryId(std::span(entryId).first(23), Key()));
  EXPECT_FALSE(NodeOfEntryId({}, Key()));
}

TEST(EntryId, OfAPersonHoldsNameTypeAndAddress) {
  EXPECT_EQ(Hex(OneOffEntryId(u"A", u"SMTP", u"a@b")),
            "00000000812b1fa4bea310199d6e00dd010f540200000180"
            "41000000"
            "53004d0054005000"
            "0000"
            "6100400062000000");
}

TEST(EntryId, SearchKeyIsInCapitalsWithItsNul) {
  EXPECT_EQ(Hex(AddressSearchKey(u"smtp", u"a.b@c")), Hex(std::as_bytes(std::span("SMTP:A.B@C"))));
}

TEST(ConversationId, IsTheHashOfTheTopicInCapitals) {
  const auto id = ConversationIdOf(u"Quarterly \u043f\u043b\u0430\u043d");
  ASSERT_TRUE(id);
  EXPECT_EQ(Hex(*id), "6c15e54796293063bb87e1d18c650783");
  EXPECT_EQ(id, ConversationIdOf(u"QUARTERLY \u041f\u041b\u0410\u041d"));
  EXPECT_FALSE(ConversationIdOf(u""));
}

TEST(UidSource, GivesTheSameNumbersForTheSameSeedAndName) {
  UidSource a(1700000000, "store");
  UidSource b(1700000000, "store");
  UidSource otherName(1700000000, "other");
  UidSource otherSeed(1700000001, "store");
  const Uid first = a.Next();
  EXPECT_EQ(first, b.Next());
  EXPECT_NE(first, a.Next());
  EXPECT_NE(first, otherName.Next());
  EXPECT_NE(first, otherSeed.Next());
}

TEST(UidSource, WithoutASeedGivesNumbersOfItsOwn) {
  EXPECT_NE(UidSource(std::nullopt, "store").Next(), UidSource(std::nullopt, "store").Next());
}

}  // namespace
}  // namespace velmora::messaging
