#include "cli/result_text.h"

#include <fmt/format.h>

namespace velmora::cli {

StoreContents CountStore(output::RDOSession& session, text::TextView storeName, text::TextView logPath) {
  StoreContents contents;
  try {
    contents.folders = conversion::FoldersOf(session, storeName);
    contents.counts = conversion::WriteSummary(session, contents.folders, logPath, contents.totals);
  } catch (const output::OutputFailure&) {
    return {};
  }
  return contents;
}

std::string ResultText(text::TextView destination, text::TextView storeName, const StoreContents& contents) {
  std::string text = "OST file conversion completed.\n";
  text += destination.empty() ? std::string("Dry run: no store was written.")
                              : "Recovered at: " + text::ToUtf8(destination);
  text += "\n\n";
  const std::size_t root = 2 + storeName.size() + 1;  // two backslashes, the store's name, a backslash
  for (std::size_t i = 0; i < contents.folders.size(); ++i) {
    text += fmt::format("{:>10}  {}\n", contents.counts[i].value_or(0),
                        text::ToUtf8(text::TextView(contents.folders[i].path).substr(root)));
  }
  text += fmt::format("{:>10}  items in {} folders\n", contents.totals.total, contents.folders.size());
  return text;
}

}  // namespace velmora::cli
