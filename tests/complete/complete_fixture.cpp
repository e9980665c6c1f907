#include "complete/complete_fixture.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "aids/shared_file.h"
#include "complete/live_store.h"
#include "engine/steps.h"
#include "store/support/pst_check.h"

namespace velmora::complete {
namespace {

// What a store computes for itself: of a message and its attachments its sizes, of a row its number and version.
constexpr std::array<std::uint16_t, 4> kComputed = {0x0E08, 0x0E20, 0x67F2, 0x67F3};
constexpr std::uint16_t kObjectValue = 0x3701;

std::u16string Letters(const Value& value) { return TextOf({{{.id = 1}, value}}, 1); }

/// The same value: 8-bit texts of a source become UTF-16.
void ExpectSameValue(const Value& source, const Value& target, const std::string& where) {
  if (source.type == PropType::kString8) {
    EXPECT_EQ(target.type, PropType::kString) << where;
    if (target.type == PropType::kString) {
      EXPECT_EQ(Letters(source), Letters(target)) << where;
    }
  } else if (source.type == PropType::kMultipleString8) {
    EXPECT_EQ(target.type, PropType::kMultipleString) << where;
  } else {
    EXPECT_EQ(source, target) << where;
  }
}

void ExpectSameProperties(const Properties& source, const Properties& target, const std::string& where) {
  const auto isCompared = [](const PropertyKey& key, const Value& value) {
    return std::ranges::find(kComputed, key.id) == kComputed.end() &&
           !(key.id == kObjectValue && value.type == PropType::kObject);
  };
  for (const auto& [key, value] : source) {
    if (!isCompared(key, value)) continue;
    const auto found = target.find(key);
    if (found == target.end()) {
      ADD_FAILURE() << where << " lost " << testing::PrintToString(key) << ": " << testing::PrintToString(value);
    } else {
      ExpectSameValue(value, found->second, where + ": " + testing::PrintToString(key));
    }
  }
  for (const auto& [key, value] : target) {
    if (isCompared(key, value) && !source.contains(key)) {
      ADD_FAILURE() << where << " has on top " << testing::PrintToString(key) << ": " << testing::PrintToString(value);
    }
  }
}

}  // namespace

void ExpectHas(const Properties& properties, const forge::PropertyList& expected) {
  for (const forge::Property& property : expected) {
    const PropertyKey key = KeyOf(property);
    const auto found = properties.find(key);
    if (found == properties.end()) {
      ADD_FAILURE() << "no property " << testing::PrintToString(key);
    } else {
      EXPECT_EQ(found->second, ValueOf(property)) << testing::PrintToString(key);
    }
  }
}

void ExpectSame(const Item& source, const Item& target, const std::string& where) {
  ExpectSameProperties(source.properties, target.properties, where);
  EXPECT_EQ(source.recipients.size(), target.recipients.size()) << where;
  for (std::size_t i = 0; i < std::min(source.recipients.size(), target.recipients.size()); ++i) {
    ExpectSameProperties(source.recipients[i], target.recipients[i], where + ", recipient " + std::to_string(i));
  }
  EXPECT_EQ(source.attachments.size(), target.attachments.size()) << where;
  for (std::size_t i = 0; i < std::min(source.attachments.size(), target.attachments.size()); ++i) {
    const Attached& from = source.attachments[i];
    const Attached& to = target.attachments[i];
    const std::string name = where + ", attachment " + std::to_string(i);
    ExpectSameProperties(from.properties, to.properties, name);
    EXPECT_EQ(from.object, to.object) << name;
    EXPECT_EQ(from.embedded != nullptr, to.embedded != nullptr) << name;
    if (from.embedded && to.embedded) ExpectSame(*from.embedded, *to.embedded, name);
  }
}

forge::Mailbox CompleteTest::NewBox(forge::MailboxOptions options, forge::Client client) {
  return forge::Mailbox({.format = GetParam(), .client = client, .compressed = GetParam() == forge::Format::kUnicode4k},
                        std::move(options));
}

forge::Message CompleteTest::Mail(std::u16string subject, forge::PropertyList properties) {
  return {.subject = std::move(subject),
          .plain = u"A body",
          .senderName = u"Ana",
          .senderAddress = u"ana@example.org",
          .submitted = forge::TimeOf(2024, 2, 29, 12, 30, 1) + 1234567,
          .delivered = forge::TimeOf(2024, 2, 29, 12, 31, 2) + 7654321,
          .properties = std::move(properties)};
}

std::unique_ptr<const engine::ProvenStore> CompleteTest::Scan(Bytes source, bool deleted) {
  return engine::ProvenStore::Prove(std::make_unique<platform::MemoryFile>(std::move(source)), deleted, run_);
}

void CompleteTest::Copy(Bytes source, const CopyOptions& options) {
  CopyWrecked(source, options);
  source_ = std::make_unique<StoreObjects>(std::move(source));
}

void CompleteTest::CopyWrecked(const Bytes& source, const CopyOptions& options) {
  const auto scanned = Scan(source, options.deleted);
  if (!scanned->IsStore()) throw std::runtime_error("nothing in the source proves to be of a store");
  account_ = {};
  const auto file = std::make_shared<platform::MemoryFile>();
  const auto target = messaging::StoreWriter::Create(std::make_unique<test::SharedFile>(file), u"Copy",
                                                     {.sourceDateEpoch = kEpoch, .workers = run_.workers});
  CopyStore(*scanned, *target, options, run_, account_);
  target->Seal();
  target_ = std::make_unique<StoreObjects>(file->Bytes());
}

Item CompleteTest::CopyOf(const forge::Message& message, const CopyOptions& options) {
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  const forge::Nid nid = box.AddMessage(inbox, message).nid;
  Copy(box, options);
  sourceItem_ = source_->ItemOf(NodeOf(nid));
  return TargetItem(nid);
}

void CompleteTest::ExpectAllWhole() const {
  EXPECT_TRUE(account_.IsWhole());
  EXPECT_EQ(source_->Messages(), target_->Messages());
  for (const velmora::Nid nid : source_->Messages()) {
    if (target_->Has(nid))
      ExpectSame(source_->ItemOf(nid), target_->ItemOf(nid), "message " + std::to_string(velmora::Value(nid)));
  }
}

void CompleteTest::ExpectSound(const std::string& ignored) const {
  if (!test::HasPstCheck()) return;
  EXPECT_EQ(test::PstCheck(target_->File(), test::Check::kMail, ignored), "");
}

const Loss* CompleteTest::LossOf(forge::Nid nid) const {
  const auto found = std::ranges::find(account_.losses, NodeOf(nid), &Loss::source);
  return found != account_.losses.end() ? &*found : nullptr;
}

}  // namespace velmora::complete
