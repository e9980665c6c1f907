// Entry ids that lead to another object of the same store.
#include "complete/references.h"

#include "complete/complete_fixture.h"

namespace velmora::complete {
namespace {

using forge::MemberEntryId;
using forge::MemberKind;
using forge::Named;
using forge::PropertySet;

class ReferencesTest : public CompleteTest {
 protected:
  forge::Message ListOf(std::vector<Bytes> members) {
    forge::Message list = Mail(
        u"List", {Named(PropertySet::kAddress, 0x8055, Binaries(0, members)),
                  Named(PropertySet::kAddress, 0x8054, Binaries(0, std::vector<Bytes>(members.size(), Noise(60, 1)))),
                  Named(PropertySet::kAddress, 0x8053, forge::Text(0, u"List"))});
    list.messageClass = u"IPM.DistList";
    return list;
  }
  forge::Message Contact(const char16_t* name) {
    forge::Message contact = Mail(name);
    contact.messageClass = u"IPM.Contact";
    return contact;
  }
  /// The entry id of an object as the new store has it, in the form in which members stand.
  Bytes InTarget(Bytes member, velmora::Nid nid) const {
    const Bytes key = Find(target_->PropertiesOf(velmora::Nid{0x21}), 0x0FF9)->bytes;
    std::copy(key.begin(), key.end(), member.end() - 20);
    forge::Put(member, member.size() - 4, velmora::Value(nid), 4);
    return member;
  }
  std::vector<Bytes> MembersOf(forge::Nid list) const {
    const Bytes bytes = Find(TargetItem(list).properties, PropertySet::kAddress, 0x8055)->bytes;
    std::vector<Bytes> members;
    const std::uint64_t count = forge::Get(bytes, 0, 4);
    for (std::uint64_t i = 0; i < count; ++i) {
      const auto begin = static_cast<std::ptrdiff_t>(forge::Get(bytes, 4 + 4 * i, 4));
      const auto end = static_cast<std::ptrdiff_t>(i + 1 < count ? forge::Get(bytes, 8 + 4 * i, 4) : bytes.size());
      members.emplace_back(bytes.begin() + begin, bytes.begin() + end);
    }
    return members;
  }
};
INSTANTIATE_TEST_SUITE_P(Formats, ReferencesTest, AllFormats(), NameOf);

TEST_P(ReferencesTest, MembersOfAListPointAtTheContactsOfTheNewStore) {
  forge::Mailbox box = NewBox();
  const forge::Nid contacts = box.AddFolder({.name = u"Contacts", .containerClass = u"IPF.Contact"});
  const forge::Nid ana = box.AddMessage(contacts, Contact(u"Ana")).nid;
  const forge::Nid inner = box.AddMessage(contacts, ListOf({MemberEntryId(ana)})).nid;
  const Bytes oneOff = Noise(90, 3);
  // The list stands ahead of the second contact: what it leads to may come later.
  const forge::Nid list = box.AddMessage(contacts, ListOf({MemberEntryId(ana), MemberEntryId(inner, MemberKind::kList),
                                                           oneOff, MemberEntryId(0x200164)}))
                              .nid;
  box.AddMessage(contacts, Contact(u"Bo"), 0x200164);
  Copy(box);
  EXPECT_NE(Find(target_->PropertiesOf(velmora::Nid{0x21}), 0x0FF9)->bytes, forge::RecordKey());
  EXPECT_THAT(MembersOf(list), testing::ElementsAre(InTarget(MemberEntryId(ana), NodeOf(ana)),
                                                    InTarget(MemberEntryId(inner, MemberKind::kList), NodeOf(inner)),
                                                    oneOff, InTarget(MemberEntryId(0x200164), NodeOf(0x200164))));
  EXPECT_THAT(MembersOf(inner), testing::ElementsAre(InTarget(MemberEntryId(ana), NodeOf(ana))));
  EXPECT_EQ(*Find(TargetItem(list).properties, PropertySet::kAddress, 0x8054),
            ValueOf(Binaries(0, std::vector<Bytes>(4, Noise(60, 1)))));
  EXPECT_TRUE(account_.IsWhole());
  ExpectSound();
}

TEST_P(ReferencesTest, AMemberThatGotANewIdIsFoundByIt) {
  forge::Mailbox box = NewBox();
  const forge::Nid contacts = box.AddFolder({.name = u"Contacts"});
  box.AddMessage(contacts, Contact(u"Low"), 0x2004);
  const forge::Nid list = box.AddMessage(contacts, ListOf({MemberEntryId(0x2004)})).nid;
  Copy(box);
  for (const velmora::Nid nid : target_->Messages()) {
    if (TextOf(target_->ItemOf(nid).properties, 0x0037) != u"Low") continue;
    EXPECT_THAT(MembersOf(list), testing::ElementsAre(InTarget(MemberEntryId(0x2004), nid)));
    return;
  }
  ADD_FAILURE() << "the contact is not there";
}

TEST_P(ReferencesTest, OneThatLeadsToNothingStaysAsItIs) {
  forge::Mailbox box = NewBox();
  const forge::Nid contacts = box.AddFolder({.name = u"Contacts"});
  forge::Message hidden = Contact(u"Hidden");
  hidden.flags = 0x41;
  box.AddMessage(contacts, hidden, 0x100028);
  Bytes ofAnotherStore = MemberEntryId(0x200024);
  ofAnotherStore[ofAnotherStore.size() - 10] ^= std::byte{1};
  const std::vector<Bytes> members = {MemberEntryId(0x212344), MemberEntryId(0x100028), ofAnotherStore, {}};
  const forge::Nid list = box.AddMessage(contacts, ListOf(members)).nid;
  Copy(box);
  EXPECT_EQ(MembersOf(list), members);
  EXPECT_TRUE(account_.IsWhole()) << "the message has all that it had";
}

TEST_P(ReferencesTest, OfAFolderLeadToFoldersThatAreMadeAfterIt) {
  constexpr forge::Nid kKept = 0x123E2;
  constexpr forge::Nid kTooHigh = 0xFFFFFFE2;  // gets another id
  constexpr forge::Nid kNowhere = 0x223E2;
  forge::Mailbox box = NewBox();
  const forge::PropertyList refers = {
      Binary(0x6903, forge::EntryId(kTooHigh)),
      Binaries(0x6904, {MemberEntryId(kTooHigh), MemberEntryId(kNowhere), MemberEntryId(kKept)})};
  const forge::Nid first = box.AddFolder({.name = u"First", .properties = refers});
  box.AddFolder({.name = u"Kept", .nid = kKept});
  box.AddFolder({.name = u"Too high", .nid = kTooHigh});
  Copy(box);
  const velmora::Nid anew = target_->Folders().at(u"/Top of Personal Folders/Too high");
  ASSERT_NE(anew, velmora::Nid{kTooHigh});
  ExpectHas(target_->PropertiesOf(NodeOf(first)),
            {Binary(0x6903, InTarget(forge::EntryId(kTooHigh), anew)),
             Binaries(0x6904, {InTarget(MemberEntryId(kTooHigh), anew), MemberEntryId(kNowhere),
                               InTarget(MemberEntryId(kKept), velmora::Nid{kKept})})});
  ExpectAllWhole();
  ExpectSound();
}

TEST(References, AnEntryIdThatIsCutOffStaysAsItIs) {
  messaging::Uid source{};
  messaging::Uid target{};
  source.fill(std::byte{5});
  target.fill(std::byte{6});
  const References references(source, target, [](velmora::Nid nid) { return std::optional(nid); });
  const auto id = messaging::NodeEntryId(source, velmora::Nid{0x200024});
  std::vector<std::byte> bytes(id.begin(), id.end());
  const std::vector<std::byte> before = bytes;
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    EXPECT_EQ(references.Rewrite(std::span(bytes).first(length)), 0U);
    ASSERT_EQ(bytes, before) << "of " << length << " bytes";
  }
  EXPECT_EQ(references.Rewrite(bytes), 0U);
  const auto rewritten = messaging::NodeEntryId(target, velmora::Nid{0x200024});
  EXPECT_TRUE(std::ranges::equal(bytes, rewritten));
}

}  // namespace
}  // namespace velmora::complete
