// What a complete conversion says at its end: how much came across, and what did not.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "complete/account.h"

namespace velmora::cli {

/// Items whole, in part and lost, and folders, a line each.
std::string CountsText(const complete::Account& account);

/// Losses that are named one by one; of those beyond there is the number.
inline constexpr std::size_t kLossesNamed = 10;

/// The first losses as a person knows them, a line each, and how to see them all; empty when nothing is lost.
/// `reportPath` is the value of the option.
std::string LossesText(const complete::Account& account, std::string_view reportPath);

/// What is missing: "the subject", "attachment "a.txt" (1.2 KB)".
std::string PartWords(const complete::MissingPart& part);

/// What differs, of which objects.
std::string DifferenceWords(const complete::Difference& difference);

/// The differences that a comparison found, a line each.
std::vector<std::string> DifferenceLines(const complete::Account& account);

}  // namespace velmora::cli
