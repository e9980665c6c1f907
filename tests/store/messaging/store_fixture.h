// A new store for a test, and the ways to look at what it holds.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "forge_tests/peers.h"
#include "platform/file.h"
#include "store/ltp/property_context.h"
#include "store/ltp/table_context.h"
#include "store/messaging/items/item_properties.h"
#include "store/messaging/pst_library.h"
#include "store/messaging/store_writer.h"
#include "store/ndb/store_reader.h"
#include "store/operations.h"

namespace velmora::messaging {

/// 2023-11-14 22:13:20 UTC.
inline constexpr std::int64_t kTestEpoch = 1700000000;

/// Content of an attachment in memory.
class TextContent : public output::ContentSource {
 public:
  explicit TextContent(std::string bytes) : bytes_(std::move(bytes)) {}
  std::uint64_t Size() const override { return bytes_.size(); }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::byte> out) const override;

 private:
  std::string bytes_;
};

/// Bytes that do not repeat, so that a wrong block shows.
std::string PatternOf(std::size_t size);

/// A finished store as its objects and properties, read below the operations.
class RawStore {
 public:
  explicit RawStore(const std::filesystem::path& path);

  const ndb::StoreReader& Reader() const { return *reader_; }
  ltp::PropertyContext Node(Nid nid) const;
  ltp::TableContext Table(Nid nid) const;

  /// The messages of the whole store by ascending id.
  std::vector<Nid> Messages() const;

  /// The only message of the store.
  ltp::PropertyContext Message() const;

  /// A table among the sub-nodes of a message.
  ltp::TableContext SubTable(ltp::PropertyContext& message, Nid nid) const;

  /// A PC among them.
  ltp::PropertyContext SubNode(ltp::PropertyContext& message, Nid nid) const;

 private:
  std::unique_ptr<platform::ByteSource> file_;
  std::unique_ptr<ndb::StoreReader> reader_;
};

class StoreTest : public ::testing::Test {
 protected:
  StoreTest();

  /// Puts the text as the field and expects no failure.
  static void Put(const output::Ref<output::RDOMail>& item, output::Field field, output::FieldValue value);
  static text::Text TextOf(const output::Ref<output::RDOMail>& item, output::Field field);

  output::Ref<output::RDOMail> NewItem(text::TextView messageClass = u"IPM.Note");

  /// Seals the store and lets go of it.
  void Close();

  /// Seals the store, opens it for reading and makes `top_` and `inbox_` the folders of that.
  void Reopen();

  /// The first item of the inbox, read back.
  output::Ref<output::RDOMail> FirstItem() { return inbox_->Items()->GetFirst(); }

  /// The finished store's raw contents; closes it first.
  RawStore Raw();

  /// Expects that the strict checker finds nothing in the finished store, not even a warning. It looks at
  /// the stores of all tests at the end of the program, in one run; a finding names the test.
  void ExpectSound();

  /// The number of items that pffexport, or readpst, lists of the finished store; nothing without it.
  std::optional<int> CountOfExportedItems();
  std::optional<int> CountOfReadItems();

  forge::ScratchFolder folder_;
  std::filesystem::path path_ = folder_.path() / "Test store.pst";
  std::unique_ptr<PstLibrary> library_;
  output::Ref<output::RDOSession> session_;
  output::Ref<output::RDOFolder> top_;
  output::Ref<output::RDOFolder> inbox_;
};

/// An item that was never saved, with a search key of its own.
ItemState NewItemState(StoreWriter& store, text::TextView messageClass = u"IPM.Note");

/// Writes an item as the operations do.
Nid SaveItem(StoreWriter& store, const ItemState& item, Folder& folder, std::optional<Nid> nid = {},
             std::span<const ItemAttachment> attachments = {});

/// The code of the failure that `operation` raises; S_OK when it raises none.
template <class Operation>
output::ResultCode CodeOf(Operation operation) {
  try {
    operation();
  } catch (const output::OutputFailure& failure) {
    return failure.Code();
  }
  return output::ResultCode::S_OK;
}

}  // namespace velmora::messaging
