// What the grid shows of a task.
#pragma once

#include "workflow/panes/grid_row.h"

namespace velmora::workflow {

inline constexpr GridRow kTaskRows[] = {
    {u"Categories", output::Field::Categories, RowForm::Text},
    {u"To", output::Field::To, RowForm::Text},
    {u"Content", output::Field::Body, RowForm::Text},
    {u"On Behalf Name", output::Field::SentOnBehalfOfName, RowForm::Text},
    {u"Email Protocol Type", output::Field::SentOnBehalfOfEmailType, RowForm::Text},
    {u"Sent from EmailAddress", output::Field::SentOnBehalfOfEmailAddress, RowForm::Text},
    {u"Sender Email Address", output::Field::SenderEmailAddress, RowForm::Text},
    {u"Conversation Topic", output::Field::ConversationTopic, RowForm::Text},
    {u"Start Date", output::Field::StartDate, RowForm::Date},
    {u"Due Date", output::Field::DueDate, RowForm::Date},
    {u"Received Time", output::Field::ReceivedTime, RowForm::Time},
    {u"Date Completed", output::Field::DateCompleted, RowForm::Date},
    {u"Sender Name", output::Field::SenderName, RowForm::Text},
    {u"Sender Email Type", output::Field::SenderEmailType, RowForm::Text},
    {u"Flag Request", output::Field::FlagRequest, RowForm::Text},
    {u"Billing Information", output::Field::BillingInformation, RowForm::Text},
    {u"Mileage", output::Field::Mileage, RowForm::Text},
    {u"Companies", output::Field::Companies, RowForm::Text},
    {u"Owner", output::Field::Owner, RowForm::Text},
    {u"Schedule Plus Priority", output::Field::SchedulePlusPriority, RowForm::Text},
    {u"Flag Status", output::Field::FlagStatus, RowForm::Number},
    {u"Task Status", output::Field::Status, RowForm::TaskStatus},
    {u"Sensitivity", output::Field::Sensitivity, RowForm::Sensitivity},
    {u"Importance", output::Field::Importance, RowForm::Importance},
    {u"Complete", output::Field::Complete, RowForm::Flag},
    {u"Reminder Set", output::Field::ReminderSet, RowForm::Flag},
    {u"ReminderOverrideDefault Set", output::Field::ReminderOverrideDefault, RowForm::Flag},
    {u"OriginatorDeliveryReportRequested Set", output::Field::OriginatorDeliveryReportRequested, RowForm::Flag},
    {u"ReadReceiptRequested Set", output::Field::ReadReceiptRequested, RowForm::Flag},
    {u"AlternateRecipientAllowed Set", output::Field::AlternateRecipientAllowed, RowForm::Flag},
    {u"DeleteAfterSubmit Set", output::Field::DeleteAfterSubmit, RowForm::Flag},
    {u"AutoForwarded Set", output::Field::AutoForwarded, RowForm::Flag},
};
static_assert(AreWellFormed(kTaskRows));

}  // namespace velmora::workflow
