// What the grid shows of an appointment or a meeting.
#pragma once

#include "workflow/panes/grid_row.h"

namespace velmora::workflow {

inline constexpr GridRow kCalendarRows[] = {
    {u"Content", output::Field::Body, RowForm::Text},
    {u"Location", output::Field::Location, RowForm::Text},
    {u"ReminderOverrideDefault Set", output::Field::ReminderOverrideDefault, RowForm::Flag},
    {u"AlternateRecipientAllowed Set", output::Field::AlternateRecipientAllowed, RowForm::Flag},
    {u"OriginatorDeliveryReportRequested Set", output::Field::OriginatorDeliveryReportRequested, RowForm::Flag},
    {u"ReadReceiptRequested Set", output::Field::ReadReceiptRequested, RowForm::Flag},
    {u"DeleteAfterSubmit Set", output::Field::DeleteAfterSubmit, RowForm::Flag},
    {u"AutoForwarded Set", output::Field::AutoForwarded, RowForm::Flag},
    {u"ResponseRequested Set", output::Field::ResponseRequested, RowForm::Flag},
    {u"Reminder Set", output::Field::ReminderSet, RowForm::Flag},
    {u"AllDayEvent Set", output::Field::AllDayEvent, RowForm::Flag},
    {u"FlagStatus", output::Field::FlagStatus, RowForm::Number},
    {u"Sensitivity", output::Field::Sensitivity, RowForm::Sensitivity},
    {u"Importance", output::Field::Importance, RowForm::Importance},
    {u"On Behalf Name", output::Field::SentOnBehalfOfName, RowForm::Text},
    {u"Email Protocol Type", output::Field::SentOnBehalfOfEmailType, RowForm::Text},
    {u"Sender Name", output::Field::SenderName, RowForm::Text},
    {u"Sender Email Type", output::Field::SenderEmailType, RowForm::Text},
    {u"Conversation Topic", output::Field::ConversationTopic, RowForm::Text},
    {u"Sent from EmailAddress", output::Field::SentOnBehalfOfEmailAddress, RowForm::Text},
    {u"Sender Email Address", output::Field::SenderEmailAddress, RowForm::Text},
    {u"Start Date", output::Field::AppointmentStart, RowForm::Date},
    {u"End Date", output::Field::End, RowForm::Date},
    {u"Received Time", output::Field::ReceivedTime, RowForm::Time},
    {u"Categories", output::Field::Categories, RowForm::Text},
    {u"Flag Request", output::Field::FlagRequest, RowForm::Text},
    {u"To", output::Field::To, RowForm::Text},
    {u"CC", output::Field::CC, RowForm::Text},
    {u"BCC", output::Field::BCC, RowForm::Text},
};
static_assert(AreWellFormed(kCalendarRows));

}  // namespace velmora::workflow
