// The frame that the converters of contacts, tasks, appointments, meetings, journal entries and notes share.
#pragma once

#include "output/items/kind_tables.h"
#include "recovery/item_converter.h"

namespace velmora::items {

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
  void ApplyFlag(const recovery::ConversionScope& scope, const PropertyRecord& record,
                 const output::Ref<output::RDOMail>& item) const;
  void ApplyText(const recovery::ConversionScope& scope, const recovery::MessageBlock& block,
                 const PropertyRecord& record, const output::Ref<output::RDOMail>& item) const;

  const KindTables& tables_;
};

}  // namespace velmora::items
