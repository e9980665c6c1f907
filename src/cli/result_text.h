// What a finished conversion says: where the new store is and what it holds.
#pragma once

#include <string>
#include <string_view>

#include "conversion/run_report.h"
#include "conversion/summary.h"

namespace velmora::cli {

/// What a kind of loss is called: in the report, and where losses are counted.
struct LossName {
  recovery::LossKind kind;
  std::string_view name;
  std::string_view one;
  std::string_view many;
};

/// In the order in which they are counted out: what is whole comes before its parts.
inline constexpr LossName kLossNames[] = {
    {recovery::LossKind::kMessage, "message", "message", "messages"},
    {recovery::LossKind::kEmbedded, "embedded message", "embedded message", "embedded messages"},
    {recovery::LossKind::kFolder, "folder", "folder", "folders"},
    {recovery::LossKind::kAttachment, "attachment", "attachment", "attachments"},
    {recovery::LossKind::kBody, "body", "body", "bodies"},
    {recovery::LossKind::kText, "text", "field", "fields"},
    {recovery::LossKind::kRecipients, "recipients", "sender or list of recipients", "senders or lists of recipients"},
    {recovery::LossKind::kMembers, "members", "list of members", "lists of members"},
    {recovery::LossKind::kRow, "row", "row of a folder", "rows of folders"},
    {recovery::LossKind::kSourceRange, "source range", "unreadable range of the source",
     "unreadable ranges of the source"},
    {recovery::LossKind::kRun, "run", "step of the run", "steps of the run"},
};

/// A line a folder, and one for all.
std::string ContentsText(text::TextView storeName, const conversion::StoreContents& contents);

/// The losses by kind and number, in one sentence, and how to see them one by one; empty when nothing is lost.
/// `reportPath` is the value of the option: empty when there is no report.
std::string LossText(const recovery::RecoveryReport& report, std::string_view reportPath);

/// How to see one by one what is lost.
std::string WayToTheLosses(std::string_view reportPath);

/// That a conversion is complete, and where the new store is. `destination` empty: nothing was written.
std::string DoneText(text::TextView destination);

/// `destination` empty: nothing was written.
std::string ResultText(text::TextView destination, text::TextView storeName, const conversion::StoreContents& contents);

}  // namespace velmora::cli
