// Texts of a message that live outside its own block.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "recovery/item_converter.h"
#include "recovery/recovery_state.h"
#include "recovery/sub_node_list.h"
#include "store/format/byte_view.h"

namespace velmora::recovery {

/// Answers for one message. `subNodes` and the block outlive it.
class SubNodeText : public SubNodeValues {
 public:
  SubNodeText(const ValueSource& source, const SubNodeList& subNodes, ByteView messageBlock)
      : source_(source), subNodes_(subNodes), messageBlock_(messageBlock) {}

  /// "%%" in a UTF-16 text becomes "%"; any other "%" stays. The text is inflated only where the message's own block
  /// shows no heap signature, so a packed one comes out as its packed bytes (docs/fidelity.md#percent).
  text::Text ReadSubnodeString(PropType type, std::uint32_t value) override;

 private:
  ValueSource source_;
  const SubNodeList& subNodes_;
  ByteView messageBlock_;
  std::unordered_map<std::uint32_t, std::uint32_t> blockOfNid_;  ///< made at the first question; the first of an id
};

}  // namespace velmora::recovery
