#include "cli/result_text.h"

#include <fmt/format.h>

namespace velmora::cli {

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
  std::string text = "OST file conversion completed.\n";
  text += destination.empty() ? std::string("Dry run: no store was written.")
                              : "Recovered at: " + text::ToUtf8(destination);
  return text + "\n\n" + ContentsText(storeName, contents);
}

}  // namespace velmora::cli
