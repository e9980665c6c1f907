// What the grid shows of a journal entry.
#pragma once

#include "workflow/panes/grid_row.h"

namespace velmora::workflow {

inline constexpr GridRow kJournalRows[] = {
    {u"Doc Posted", output::Field::DocPosted, RowForm::Flag},
    {u"Doc Printed", output::Field::DocPrinted, RowForm::Flag},
    {u"Doc Saved", output::Field::DocSaved, RowForm::Flag},
    {u"Doc Routed", output::Field::DocRouted, RowForm::Flag},
    {u"Reminder Set", output::Field::ReminderSet, RowForm::Flag},
    {u"Read Receipt Requested", output::Field::ReadReceiptRequested, RowForm::Flag},
    {u"Recipient Reassignment Prohibited", output::Field::RecipientReassignmentProhibited, RowForm::Flag},
    {u"Flag Status", output::Field::FlagStatus, RowForm::Number},
    {u"Sensitivity", output::Field::Sensitivity, RowForm::Sensitivity},
    {u"Categories", output::Field::Categories, RowForm::Text},
    {u"Flag Request", output::Field::FlagRequest, RowForm::Text},
    {u"Content", output::Field::Body, RowForm::Text},
    {u"To", output::Field::To, RowForm::Text},
    {u"CC", output::Field::CC, RowForm::Text},
    {u"BCC", output::Field::BCC, RowForm::Text},
    {u"On Behalf Name", output::Field::SentOnBehalfOfName, RowForm::Text},
    {u"Email Protocol Type", output::Field::SentOnBehalfOfEmailType, RowForm::Text},
    {u"Sender Name", output::Field::SenderName, RowForm::Text},
    {u"Sender Email Type", output::Field::SenderEmailType, RowForm::Text},
    {u"Conversation Topic", output::Field::ConversationTopic, RowForm::Text},
    {u"Sent from EmailAddress", output::Field::SentOnBehalfOfEmailAddress, RowForm::Text},
    {u"Sender Email Address", output::Field::SenderEmailAddress, RowForm::Text},
    {u"Start Date", output::Field::JournalStart, RowForm::Date},
    {u"Received Time", output::Field::ReceivedTime, RowForm::Time},
};
static_assert(AreWellFormed(kJournalRows));

}  // namespace velmora::workflow
