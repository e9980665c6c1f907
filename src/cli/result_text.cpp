#include "cli/result_text.h"

#include <fmt/format.h>

#include <map>

namespace velmora::cli {

std::string LossText(const recovery::RecoveryReport& report, std::string_view reportPath) {
  if (report.lost.empty() && report.lostNotListed == 0) return {};
  std::map<recovery::LossKind, std::uint64_t> counts;
  for (const recovery::LostObject& object : report.lost) ++counts[object.kind];

  std::string named;
  for (const LossName& name : kLossNames) {
    const std::uint64_t count = counts[name.kind];
    if (count == 0) continue;
    named += fmt::format("{}{} {}", named.empty() ? "" : ", ", count, count == 1 ? name.one : name.many);
  }
  if (report.lostNotListed != 0) named += fmt::format("{}{} more", named.empty() ? "" : ", and ", report.lostNotListed);

  return fmt::format("\nLost or not whole: {}.\n{}\n", named, WayToTheLosses(reportPath));
}

std::string WayToTheLosses(std::string_view reportPath) {
  if (reportPath.empty()) return "With --report FILE a report lists what is lost.";
  if (reportPath == "-") return "The report on standard output lists what is lost.";
  return fmt::format("The report lists what is lost: {}", reportPath);
}

std::string DoneText(text::TextView destination) {
  return "OST file conversion completed.\n" +
         (destination.empty() ? "Dry run: no store was written." : "Recovered at: " + text::ToUtf8(destination)) +
         "\n\n";
}

std::string ContentsText(text::TextView storeName, const conversion::StoreContents& contents) {
  std::string text;
  const std::size_t root = 2 + storeName.size() + 1;  // two backslashes, the store's name, a backslash
  for (std::size_t i = 0; i < contents.folders.size(); ++i) {
    text += fmt::format("{:>10}  {}\n", contents.counts[i].value_or(0),
                        text::ToUtf8(text::TextView(contents.folders[i].path).substr(root)));
  }
  text += fmt::format("{:>10}  items in {} folders\n", contents.totals.total, contents.folders.size());
  return text;
}

std::string ResultText(text::TextView destination, text::TextView storeName,
                       const conversion::StoreContents& contents) {
  return DoneText(destination) + ContentsText(storeName, contents);
}

}  // namespace velmora::cli
