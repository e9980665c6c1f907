// Texts of a message that live outside its own block.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "engine/scanned_store.h"
#include "recovery/content_allowance.h"
#include "recovery/item_converter.h"
#include "recovery/sub_node_list.h"
#include "store/format/byte_view.h"

namespace velmora::recovery {

/// Answers for one message. All arguments outlive it.
class SubNodeText : public SubNodeValues {
 public:
  SubNodeText(const engine::ScannedStore& store, const SubNodeList& subNodes, ByteView messageBlock,
              const text::CodePage& codePage, ContentAllowance& allowance)
      : store_(store), subNodes_(subNodes), messageBlock_(messageBlock), codePage_(codePage), allowance_(allowance) {}

  /// "%%" in a UTF-16 text becomes "%"; any other "%" stays. The text is inflated only where the message's own
  /// block shows no heap signature, so a packed one comes out as its packed bytes.
  text::Text ReadSubnodeString(std::uint16_t type, std::uint32_t value) override;

 private:
  const engine::ScannedStore& store_;
  const SubNodeList& subNodes_;
  ByteView messageBlock_;
  const text::CodePage& codePage_;
  ContentAllowance& allowance_;
  std::unordered_map<std::uint32_t, std::uint32_t> blockOfNid_;  ///< made at the first question; the first of an id
};

}  // namespace velmora::recovery
