// The new store below its operations: which property of which set holds what.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "output/kinds/row.h"
#include "store/ltp/property_context.h"
#include "store/ndb/store_reader.h"

namespace velmora::kinds {

/// The map of names is read here from its streams alone: no table of the code under test takes part.
class NewStore {
 public:
  /// Throws std::runtime_error when the file cannot be read as a store.
  explicit NewStore(const std::filesystem::path& path);

  /// The messages by ascending id.
  std::vector<ltp::PropertyContext> Messages() const;

  /// The bytes of a property of that type; nothing where it is not there.
  std::optional<std::string> Value(ltp::PropertyContext& message, const Where& where, std::uint16_t type) const;

  /// The properties of a node.
  ltp::PropertyContext Node(Nid nid) const;

 private:
  void ReadNames();

  std::unique_ptr<platform::ByteSource> file_;
  std::unique_ptr<ndb::StoreReader> reader_;
  std::map<std::pair<Set, std::uint32_t>, std::uint16_t> ids_;
};

}  // namespace velmora::kinds
