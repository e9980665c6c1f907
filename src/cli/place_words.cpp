#include "cli/place_words.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/plain_words.h"

namespace velmora::cli {
namespace {

using engine::StorePlace;

/// Stores that are named one by one; of those beyond there is the number.
constexpr std::size_t kStoresNamed = 10;

}  // namespace

std::vector<std::string> PlaceLines(const conversion::CompleteReport& report) {
  std::vector<std::string> lines;
  if (const auto& place = report.place) {
    if (place->origin > 0) {
      lines.push_back(fmt::format(
          "the store begins at byte {} of the file; other places that are named count from there", place->origin));
    }
    if (const std::uint64_t missing = place->Missing(); missing != 0) {
      lines.push_back(
          fmt::format("the first {} bytes of the store are missing from the file; other places that are "
                      "named count from where they would begin",
                      missing));
    }
    if (place->doubtfulFrom) {
      lines.push_back(
          fmt::format("nothing tells whether what lies from byte {} of the file on is of this store or of "
                      "another; it was read as a part of this one",
                      *place->doubtfulFrom));
    }
  }
  const std::size_t named = std::min(report.others.size(), kStoresNamed);
  for (const StorePlace& other : std::span(report.others).first(named)) {
    lines.push_back(
        fmt::format("the file holds another store, from byte {} to byte {} ({}); nothing of it was "
                    "converted, --at {} converts it",
                    other.from, other.to, SizeText(other.to - other.from), other.from));
  }
  if (report.others.size() > named) {
    lines.push_back(fmt::format("the file holds {} more stores", report.others.size() - named));
  }
  if (report.grownBy != 0) {
    lines.push_back(fmt::format("the file grew by {} while it was read; the store was read as it was at first",
                                SizeText(report.grownBy)));
  }
  return lines;
}

}  // namespace velmora::cli
