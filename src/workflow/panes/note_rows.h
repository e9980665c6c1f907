// What the grid shows of a note.
#pragma once

#include "workflow/panes/grid_row.h"

namespace velmora::workflow {

inline constexpr GridRow kNoteRows[] = {
    {u"OriginatorDeliveryReportRequested Set", output::Field::OriginatorDeliveryReportRequested, RowForm::Flag},
    {u"ReminderSet Set", output::Field::ReminderSet, RowForm::Flag},
    {u"ReadReceiptRequested Set", output::Field::ReadReceiptRequested, RowForm::Flag},
    {u"RecipientReassignmentProhibited Set", output::Field::RecipientReassignmentProhibited, RowForm::Flag},
    {u"AlternateRecipientAllowed Set", output::Field::AlternateRecipientAllowed, RowForm::Flag},
    {u"DeleteAfterSubmit Set", output::Field::DeleteAfterSubmit, RowForm::Flag},
    {u"AutoForwarded Set", output::Field::AutoForwarded, RowForm::Flag},
    {u"ReminderOverrideDefault Set", output::Field::ReminderOverrideDefault, RowForm::Flag},
    {u"Categories", output::Field::Categories, RowForm::Text},
    {u"Content", output::Field::Body, RowForm::Text},
    {u"ConversationTopic", output::Field::ConversationTopic, RowForm::Text},
    {u"ReceivedTime", output::Field::ReceivedTime, RowForm::Time},
    {u"FlagStatus", output::Field::FlagStatus, RowForm::Number},
    {u"Color", output::Field::Color, RowForm::NoteColour},  // the text comes from another field
    {u"Sensitivity", output::Field::Sensitivity, RowForm::Sensitivity},
    {u"Width", output::Field::Width, RowForm::Number},
    {u"Height", output::Field::Height, RowForm::Number},
};
static_assert(AreWellFormed(kNoteRows));

}  // namespace velmora::workflow
