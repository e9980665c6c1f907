// The body of a mail. A message may hold three, and one comes across (docs/fidelity.md#one-body):
//
//  1. The value of the last body property decides. A message without one has no body.
//  2. A value in the message's own block: its bytes become the plain body where the message has one, or else its RTF
//     body, whichever body they are. A place outside the block costs the message its attachments too.
//  3. A value in a sub-node: each slot gets the block of the sub-node that its own value names. HTML is tried first,
//     then plain text, RTF never; above 4 MiB plain text alone, but in the 4K format.
//  4. A slot without a block is passed over. One whose block is empty ends the search.
//  5. What a slot gives is written, even the empty text; the first text that is not empty ends the search.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "recovery/item_converter.h"
#include "recovery/recovery_state.h"
#include "recovery/sub_node_list.h"
#include "store/format/property_tags.h"

namespace velmora::recovery {

enum BodyKind : std::size_t { kHtmlBody, kPlainBody, kRtfBody };
inline constexpr std::size_t kBodyKinds = 3;

constexpr std::optional<BodyKind> BodyKindOf(std::uint16_t id) {
  switch (id) {
    case IdOf(tag::kHtml):
      return kHtmlBody;
    case IdOf(tag::kBody):
      return kPlainBody;
    case IdOf(tag::kRtfCompressed):
      return kRtfBody;
    default:
      return std::nullopt;
  }
}

/// A body property of a message. The tag is its id, or 0 where the message has none.
struct BodySlot {
  std::uint16_t tag = 0;
  std::uint32_t value = 0;
  std::uint32_t bid = 0;  ///< data block of the value when it lives in a sub-node
};

/// What the records of a message say of its bodies.
struct BodyProperties {
  std::array<BodySlot, kBodyKinds> slots;
  std::uint32_t lastValue = 0;  ///< of the last one; 0: there is none
  std::uint32_t messageSize = 0;
};

/// What is written into the mail, in this order, and what the report says of it.
struct Body {
  struct Write {
    output::Field field = output::Field::Body;
    text::Text text;
    std::string bytes = {};  ///< of HTML, in place of the text that carries them

    bool Empty() const { return text.empty() && bytes.empty(); }
  };
  std::vector<Write> writes;
  bool inBounds = true;
  std::optional<BodyKind> taken;
  text::Text missing;  ///< what is not as it was in the one taken
};

/// The body of the message in that block.
Body ReadBody(const ValueSource& source, const MessageBlock& block, BodyProperties properties,
              const SubNodeList& subNodes);

/// Rules 3 to 5, the blocks of the slots being known.
Body ReadOutOfLineBody(const ValueSource& source, const BodyProperties& properties);

}  // namespace velmora::recovery
