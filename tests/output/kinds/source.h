// Sources in which an item holds every field of its kind.
#pragma once

#include <functional>

#include "forge/mailbox.h"
#include "output/kinds/row.h"

namespace velmora::kinds {

/// The text of a row's value.
text::Text TextOf(const Row& row);
/// The value as its operation reads it.
output::FieldValue ValueOf(const Row& row);
/// One that is kept as a list of texts.
bool IsList(output::Field field);

/// The property of a row as a source holds it, or with another text in its place.
forge::Property PropertyOf(const Row& row);
forge::Property PropertyOf(const Row& row, text::TextView text);

/// A message of the kind with these properties and no other. The class stands first, whatever its id: only then
/// do the records with lower ids reach the item.
forge::Message MessageOf(const Kind& kind, forge::PropertyList properties);
/// That of all rows.
forge::Message MessageOf(const Kind& kind);

struct SourceForm {
  const char* name;
  forge::StoreOptions options;
  const char* fileName;
};

/// A source whose only folder of messages is called "Sent", with these in it. Its names of properties have ids
/// of their own, none of which is the number of the name.
forge::Image SourceOf(const SourceForm& form, const std::vector<forge::Message>& messages);

std::span<const SourceForm> SourceForms();
inline const SourceForm& UnicodePst() { return SourceForms()[0]; }

}  // namespace velmora::kinds
