// What the tests of the complete conversion share: a store that is forged, copied in memory, and read back.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "complete/account.h"
#include "complete/copy_store.h"
#include "complete/objects.h"
#include "engine/run.h"
#include "forge/forge.h"
#include "platform/user_folders.h"

namespace velmora::complete {

using forge::Binaries;
using forge::Binary;
using forge::Bool;
using forge::Double;
using forge::Guid;
using forge::Int16;
using forge::Int32;
using forge::Int64;
using forge::Noise;
using forge::Place;
using forge::Raw;
using forge::Text16;
using forge::Text8;
using forge::Texts;
using forge::Time;
using forge::ToBytes;

/// Ids of the forge are numbers.
inline velmora::Nid NodeOf(forge::Nid nid) { return velmora::Nid{nid}; }

/// Everything that a run says goes to `onEvent`, if it is set.
class Listener : public engine::RunObserver {
 public:
  void OnEvent(const engine::Event& event) override {
    if (onEvent) onEvent(event);
  }
  std::function<void(const engine::Event&)> onEvent;
};

/// The parameter is the format of the source.
class CompleteTest : public testing::TestWithParam<forge::Format> {
 protected:
  /// 2023-11-14 22:13:20 UTC: the only time of the new stores, so that equal copies have equal bytes.
  static constexpr std::int64_t kEpoch = 1700000000;

  CompleteTest() { run_.observer = &listener_; }

  /// Of the format under test, with all tables unless told otherwise.
  static forge::Mailbox NewBox(forge::MailboxOptions options = {.tables = true},
                               forge::Client client = forge::Client::kPersonal);

  /// A mail with all that every message has.
  static forge::Message Mail(std::u16string subject, forge::PropertyList properties = {});

  /// Finishes and copies a store, and reads both. What a copy raises is passed on; source_ and target_ are as they were
  /// then.
  void Copy(forge::Mailbox& box, const CopyOptions& options = {}) { Copy(box.Finish().bytes, options); }
  void Copy(Bytes source, const CopyOptions& options = {});

  /// The same of a store that no other reader opens; source_ stays as it was.
  void CopyWrecked(const Bytes& source, const CopyOptions& options = {});

  std::unique_ptr<const engine::ProvenStore> Scan(Bytes source, bool deleted = false);

  /// Copies a store of this one message, which stands in the inbox, and gives what became of it; what the source has
  /// of it is in sourceItem_.
  Item CopyOf(const forge::Message& message, const CopyOptions& options = {});

  Item TargetItem(forge::Nid nid) const { return target_->ItemOf(NodeOf(nid)); }

  /// Everything of every message of the source is in the new store, and nothing besides; nothing is lost.
  void ExpectAllWhole() const;

  /// The checker finds nothing in the new store, not even a warning, but for these codes.
  void ExpectSound(const std::string& ignored = {}) const;

  const Loss* LossOf(forge::Nid nid) const;
  std::uint64_t Count(NodeFate fate) const { return account_.nodes[static_cast<std::size_t>(fate)]; }

  platform::TemporaryFolder folder_ = ValueOrRaise(platform::TemporaryFolder::Create());
  Listener listener_;
  engine::RunContext run_;
  Account account_;
  std::unique_ptr<StoreObjects> source_;
  std::unique_ptr<StoreObjects> target_;
  Item sourceItem_;
};

/// Each of these properties is there with this very value; texts as UTF-16.
void ExpectHas(const Properties& properties, const forge::PropertyList& expected);

/// All that an item has, to any depth, but for what every store computes for itself.
void ExpectSame(const Item& source, const Item& target, const std::string& where);

inline std::string NameOf(const testing::TestParamInfo<forge::Format>& info) {
  return std::vector<std::string>{"Ansi", "Unicode", "Unicode4k"}.at(static_cast<std::size_t>(info.param));
}

inline auto AllFormats() {
  return testing::Values(forge::Format::kAnsi, forge::Format::kUnicode, forge::Format::kUnicode4k);
}

}  // namespace velmora::complete
