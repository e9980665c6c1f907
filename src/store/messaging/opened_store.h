// A finished store, opened for reading.
#pragma once

#include <memory>
#include <unordered_set>

#include "platform/file.h"
#include "store/messaging/store.h"
#include "store/ndb/store_reader.h"

namespace velmora::messaging {

class OpenedStore : public Store {
 public:
  /// Raises STG_E_READFAULT when the bytes are no store, or its folders cannot be reached. Folders whose
  /// objects or tables are damaged are left out.
  static std::shared_ptr<OpenedStore> Open(std::unique_ptr<platform::ByteSource> file);

  const ndb::BlockSource& Source() const override { return *reader_; }
  StoreWriter& Writer() override;
  const ItemRows& ItemsOf(Folder& folder) override;

 private:
  OpenedStore(std::unique_ptr<platform::ByteSource> file, std::unique_ptr<ndb::StoreReader> reader)
      : file_(std::move(file)), reader_(std::move(reader)) {}

  void ReadMessageStore();
  void ReadFolders();
  void ReadChildren(Folder& folder);

  std::unique_ptr<platform::ByteSource> file_;
  std::unique_ptr<ndb::StoreReader> reader_;
  std::unordered_set<Nid> listed_;  ///< folders whose items were read
  Uid recordKey_{};
};

}  // namespace velmora::messaging
