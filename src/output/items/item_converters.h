// The converters of all seven kinds of item.
#pragma once

#include "output/items/kind_tables.h"
#include "recovery/item_converter.h"

namespace velmora::items {

/// Writes the envelope of a mail: sender, recipients as display lists, times, flags, replied and forwarded
/// state; and sends the mail's row (from, to, subject, date) to the list pane. Subject and body are the
/// message walk's work. A failure is raised: it ends the walk over the mail's records.
class MailConverter : public recovery::ItemConverter {
 public:
  void ApplyProperty(recovery::ConversionScope& scope, const recovery::MessageBlock& block,
                     const PropertyRecord& record, const output::Ref<output::RDOMail>& item) override;
  std::optional<output::Field> FieldOf(const recovery::ConversionScope& scope,
                                       const PropertyRecord& record) const override;
};

/// Converts one of the six kinds that are no mail by its tables. A field is written only as its record passes
/// by, so the writes come in the order of the records. A failure with a text or a date costs that one field; one
/// with a flag or a number is raised, and the message walk gives up that one field.
class KindConverter : public recovery::ItemConverter {
 public:
  /// `tables` outlives the converter.
  explicit KindConverter(const KindTables& tables) : tables_(tables) {}

  void ApplyProperty(recovery::ConversionScope& scope, const recovery::MessageBlock& block,
                     const PropertyRecord& record, const output::Ref<output::RDOMail>& item) override;
  std::optional<output::Field> FieldOf(const recovery::ConversionScope& scope,
                                       const PropertyRecord& record) const override;

 private:
  void ApplyText(const recovery::ConversionScope& scope, const recovery::MessageBlock& block,
                 const PropertyRecord& record, const output::Ref<output::RDOMail>& item) const;

  const KindTables& tables_;
};

/// One converter a kind, indexed by ItemKind; none is null.
recovery::ItemConverters MakeItemConverters();

}  // namespace velmora::items
