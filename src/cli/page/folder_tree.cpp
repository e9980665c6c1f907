#include "cli/page/folder_tree.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/page/html.h"

namespace velmora::cli::page {
namespace {

using complete::FolderAccount;

constexpr std::size_t kDeepest = 12;  ///< indents in page.css; what lies deeper is not moved further

/// Where the rows stand in the tree. Names may hold slashes themselves, so a path tells its parent by the paths above
/// it.
class TreeWalk {
 public:
  /// How many folders the next one is in, and where its own name begins.
  struct Place {
    std::size_t depth = 0;
    std::size_t name = 0;
  };
  Place Enter(text::TextView path) {
    while (!above_.empty() && !IsIn(path, above_.back())) above_.pop_back();
    const std::size_t name = (above_.empty() ? 0 : above_.back().size()) + 1;
    const Place place{above_.size(), std::min(name, path.size())};
    if (path.size() > 1) above_.push_back(path);  // "/" is the top, which is not told as a parent
    return place;
  }

 private:
  static bool IsIn(text::TextView path, text::TextView parent) {
    return path.size() > parent.size() + 1 && path.starts_with(parent) && path[parent.size()] == u'/';
  }
  std::vector<text::TextView> above_;
};

std::string FolderRow(const FolderAccount& folder, TreeWalk::Place place) {
  const text::TextView path = folder.path;
  const bool isTop = place.name >= path.size();
  const std::string name = isTop ? "Top of the store" : StoreText(path.substr(place.name));
  // Sight has the indent; who hears the page gets the way to the folder.
  const std::string way =
      place.depth == 0 ? "" : "<span class=\"sr\">" + StoreText(path.substr(0, place.name)) + " </span>";
  return fmt::format("<tr class=\"{}\"><th scope=\"row\" class=\"d{}\">{}{}</th>{}{}{}{}</tr>\n",
                     folder.lost + folder.partial != 0 ? "lossy" : "sound", std::min(place.depth, kDeepest), way, name,
                     NumberCell(folder.whole, "whole"), NumberCell(folder.partial, "part"),
                     NumberCell(folder.lost, "lost"), NumberCell(folder.deleted, "deleted"));
}

}  // namespace

void WriteFolderTree(const std::vector<FolderAccount>& folders, const ReportSink& sink) {
  if (folders.empty()) return;
  sink(
      "<section id=\"folders\" class=\"list\" data-one=\"folder\" data-many=\"folders\"><h2>Folder by folder</h2>\n"
      "<p>How many of the items of each folder are in the new store. “Deleted” are those that had been deleted and "
      "came "
      "back.</p>\n"
      "<div class=\"tools\" hidden=\"\">"
      "<label class=\"wide\">Search folders <input type=\"search\" autocomplete=\"off\"/></label>"
      "<label>Show <select><option value=\"\">all folders</option>"
      "<option value=\"lossy\">those with losses</option></select></label></div>\n"
      "<p class=\"found\" role=\"status\"></p>\n"
      "<table class=\"tree\"><thead><tr><th scope=\"col\">Folder</th><th scope=\"col\" class=\"number\">Whole</th>"
      "<th scope=\"col\" class=\"number\">In part</th><th scope=\"col\" class=\"number\">Lost</th>"
      "<th scope=\"col\" class=\"number\">Deleted</th></tr></thead>\n<tbody>\n");
  TreeWalk walk;
  for (const FolderAccount& folder : folders) sink(FolderRow(folder, walk.Enter(folder.path)));
  sink("</tbody></table>\n<p class=\"more\" hidden=\"\"><button type=\"button\">Show more</button></p>\n</section>\n");
}

}  // namespace velmora::cli::page
