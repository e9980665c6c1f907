// Which property each field of the operations is, and how its value stands there.
#pragma once

#include "store/ltp/property_context.h"
#include "store/messaging/items/item_fields.h"
#include "store/messaging/objects/property_bag.h"
#include "store/messaging/tables/named_properties.h"
#include "store/operations.h"
#include "text/code_page.h"

namespace velmora::messaging {

/// Puts the property of a written field. Flags that several fields share (read, sent) are left out.
void PutField(const ItemFields::Entry& field, const text::CodePage& codePage, PropertyBag& bag);

/// Reads a field of a saved item; `written` tells whether the property is there.
output::FieldRead ReadField(output::Field field, ltp::PropertyContext& item, const NamedPropertyMap& names);

}  // namespace velmora::messaging
