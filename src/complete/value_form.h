// The form that a value of the source has in the new store.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "complete/references.h"
#include "store/format/prop_tag.h"
#include "text/code_page.h"

namespace velmora::complete {

/// The tag under which a property stands there: 8-bit text becomes UTF-16, HTML that is called text becomes the bytes
/// that it is.
PropTag TargetForm(PropTag tag);

/// Whether a value is copied as the bytes that it is, whatever they say; others are converted as a whole.
bool IsCopiedAsItIs(PropTag tag, std::uint64_t size);

/// Brings a value of the source's `tag` into the form of its TargetForm. Entry ids of the source become those of the
/// new store; false for a value that is one and would lead nowhere. Bytes of 8-bit texts that `page` does not define
/// are counted in `undefinedBytes`. Raises FailureError for a value that its type cannot have.
bool BringIntoForm(PropTag tag, std::vector<std::byte>& value, const text::CodePage& page, const References& references,
                   std::uint64_t& undefinedBytes);

}  // namespace velmora::complete
