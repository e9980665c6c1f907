// The converter of mails.
#pragma once

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

}  // namespace velmora::items
