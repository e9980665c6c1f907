#include "cli/page/file_picture.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <span>

#include "cli/page/html.h"
#include "cli/plain_words.h"

namespace velmora::cli::page {
namespace {

using complete::FileMap;
using complete::FileUse;

struct UseRow {
  FileUse use;
  char look;  ///< the class of its squares in page.css
  const char* name;
  const char* meaning;
};

/// The worst comes first, as in the eye of who looks.
constexpr UseRow kUses[] = {
    {FileUse::kUnreadable, 'u', "Unreadable",
     "the disk or the system could not read it, or the front of the file is missing"},
    {FileUse::kFailed, 'x', "Damaged", "the checksum is wrong: something has changed what was written there"},
    {FileUse::kTree, 't', "Lists of the store", "by which everything is found"},
    {FileUse::kLive, 'l', "In use", "mail, folders and all that belongs to them"},
    {FileUse::kFreed, 'f', "Freed", "held something once: deleted, or written anew elsewhere"},
    {FileUse::kNeverUsed, 'n', "Never used", "nothing is known to have stood there"},
};

constexpr std::size_t kMostPlaces = 100;

const UseRow& RowOf(FileUse use) { return *std::ranges::find(kUses, use, &UseRow::use); }

bool IsBad(FileUse use) { return use == FileUse::kFailed || use == FileUse::kUnreadable; }

std::string ShareText(std::size_t part, std::size_t whole) {
  const double share = 100.0 * static_cast<double>(part) / static_cast<double>(whole);
  if (part != 0 && share < 0.1) return "under 0.1 %";
  return fmt::format("{:.{}f} %", share, share < 10 && part != 0 ? 1 : 0);
}

void WriteLegend(std::span<const FileUse> cells, const ReportSink& sink) {
  sink(
      "<table class=\"legend\"><caption class=\"sr\">What the squares stand for</caption>\n"
      "<thead><tr><th scope=\"col\">Squares</th><th scope=\"col\" class=\"number\">Number</th>"
      "<th scope=\"col\" class=\"number\">Share</th></tr></thead><tbody>\n");
  for (const UseRow& row : kUses) {
    const auto count = static_cast<std::size_t>(std::ranges::count(cells, row.use));
    sink(
        fmt::format("<tr><th scope=\"row\"><i class=\"{}\"></i><span>{} <small>{}</small></span></th>"
                    "<td class=\"number\">{}</td><td class=\"number\">{}</td></tr>\n",
                    row.look, row.name, row.meaning, Grouped(count), ShareText(count, cells.size())));
  }
  sink("</tbody></table>\n");
}

/// Each stretch of squares that are bad in the same way, by its place in the file.
void WriteBadPlaces(const FileMap& map, const ReportSink& sink) {
  std::size_t places = 0;
  for (std::size_t i = 0; i < map.cells.size();) {
    const std::size_t begin = i;
    while (i < map.cells.size() && map.cells[i] == map.cells[begin]) ++i;
    if (!IsBad(map.cells[begin]) || ++places > kMostPlaces) continue;
    if (places == 1) {
      sink(
          "<details><summary>Where the damage is</summary>\n<table><thead><tr><th scope=\"col\">From byte</th>"
          "<th scope=\"col\">up to byte</th><th scope=\"col\">What</th></tr></thead><tbody>\n");
    }
    sink(fmt::format("<tr><td>{}</td><td>{}</td><td>{}</td></tr>\n", Grouped(begin * map.cellBytes),
                     Grouped(i * map.cellBytes), RowOf(map.cells[begin]).name));
  }
  if (places != 0) sink("</tbody></table>\n");
  if (places > kMostPlaces) sink(fmt::format("<p>{} more.</p>\n", Grouped(places - kMostPlaces)));
  if (places != 0) sink("</details>\n");
}

}  // namespace

void WriteFilePicture(const FileMap& map, const ReportSink& sink) {
  if (map.cellBytes == 0 || map.cells.empty()) return;
  const std::size_t bad = static_cast<std::size_t>(std::ranges::count_if(map.cells, IsBad));
  sink("<section id=\"file\"><h2>The file at a glance</h2>\n");
  sink(
      fmt::format("<p><strong>{} of {} squares {} damaged or unreadable.</strong> They show the file from its "
                  "beginning to its end. "
                  "Each stands for {}; where it holds several things, the worst of them is shown.</p>\n",
                  Grouped(bad), Grouped(map.cells.size()), bad == 1 ? "is" : "are", SizeText(map.cellBytes)));
  // Few squares are drawn larger.
  const char* size = map.cells.size() <= 256 ? " few" : map.cells.size() <= 1024 ? " some" : "";
  sink(fmt::format(
      "<div class=\"map{}\" role=\"img\" aria-label=\"Picture of the file; the table below has its numbers\" "
      "data-bytes=\"{}\">\n",
      size, map.cellBytes));
  for (const FileUse use : map.cells) {
    const char square[] = {'<', 'i', ' ', 'c', 'l', 'a', 's', 's', '=', '"', RowOf(use).look,
                           '"', '>', '<', '/', 'i', '>'};
    sink({square, sizeof square});
  }
  sink("\n</div>\n");
  WriteLegend(map.cells, sink);
  WriteBadPlaces(map, sink);
  sink("</section>\n");
}

}  // namespace velmora::cli::page
