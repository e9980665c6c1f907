#include "cli/complete_result_text.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/plain_words.h"
#include "cli/result_text.h"
#include "conversion/notices.h"

namespace velmora::cli {
namespace {

using complete::Loss;
using complete::MissingPart;

constexpr std::size_t kPartsNamed = 3;  // of one loss

struct TextProperty {
  std::uint16_t id;
  const char* name;
};

/// The properties that a person misses when they are gone; of others the tag has to do.
constexpr TextProperty kTextProperties[] = {
    {0x0037, "the subject"}, {0x1000, "the plain text"}, {0x1009, "the RTF text"}, {0x1013, "the HTML text"}};

std::string PropertyWords(PropTag tag) {
  const auto found = std::ranges::find(kTextProperties, IdOf(tag), &TextProperty::id);
  return found != std::end(kTextProperties) ? found->name : fmt::format("property 0x{:08X}", tag);
}

}  // namespace

std::string PartWords(const MissingPart& part) {
  switch (part.kind) {
    case MissingPart::Kind::kObject:
      return "all of it";
    case MissingPart::Kind::kProperty:
      return part.tag == 0 ? "some of its properties" : PropertyWords(part.tag);
    case MissingPart::Kind::kRecipients:
      return "recipients";
    case MissingPart::Kind::kAttachment:
      return fmt::format("attachment \"{}\" ({})", OneLine(part.name), SizeText(part.size));
    case MissingPart::Kind::kBytes:
      return (part.size == 0 ? "a part" : SizeText(part.size)) +
             (part.tag == 0 ? "" : " of " + PropertyWords(part.tag));
  }
  return {};
}

std::string DifferenceWords(const complete::Difference& difference) {
  return fmt::format(
      "{} of the source, {} of the new store: {}", platform::TextOf({platform::ObjectKind::kNode, difference.source}),
      platform::TextOf({platform::ObjectKind::kNode, difference.target}), OneLine(text::FromUtf8(difference.what)));
}

namespace {

std::string MissingWords(const Loss& loss) {
  std::string words;
  for (std::size_t i = 0; i < std::min(loss.missing.size(), kPartsNamed); ++i) {
    const MissingPart& part = loss.missing[i];
    words += (i == 0 ? "" : "; ") + PartWords(part);
    if (!part.cause.message.empty()) {
      words += fmt::format(" ({})", OneLine(text::FromUtf8(TextOf(part.cause))));
    }
  }
  if (loss.missing.size() > kPartsNamed) words += fmt::format("; {} more", loss.missing.size() - kPartsNamed);
  return words;
}

/// A folder has no message class; it is known by its path. Of a message that cannot be read at all nothing may be known
/// but its node.
std::string NameOfLoss(const Loss& loss) {
  std::string name =
      loss.folder.empty() ? platform::TextOf({platform::ObjectKind::kNode, loss.source}) : OneLine(loss.folder);
  if (loss.messageClass.empty() && loss.subject.empty() && loss.sender.empty() && !loss.date) return name;
  name += loss.subject.empty() ? ", no subject" : fmt::format(", \"{}\"", OneLine(loss.subject));
  if (!loss.sender.empty()) name += " from " + OneLine(loss.sender);
  if (loss.date) name += ", " + DateText(*loss.date);
  return name;
}

}  // namespace

std::string CountsText(const complete::Account& account) {
  const complete::ItemCounts totals = account.Totals();
  std::string text = fmt::format("{:>10}  items whole\n{:>10}  items in part\n{:>10}  items lost\n{:>10}  folders\n",
                                 totals.whole, totals.partial, totals.lost, account.folders);
  if (account.undefinedBytes != 0) {
    text += fmt::format("\n{} of 8-bit text stand for no letter of its code page; --codepage may name the right one.\n",
                        SizeText(account.undefinedBytes));
  }
  return text;
}

std::string LossesText(const complete::Account& account, std::string_view reportPath) {
  if (account.IsWhole()) return {};
  const std::size_t named = std::min(account.losses.size(), kLossesNamed);
  std::string text = "\nLost or not whole:\n";
  for (std::size_t i = 0; i < named; ++i) {
    const Loss& loss = account.losses[i];
    text += fmt::format("  {}: {}\n", NameOfLoss(loss), MissingWords(loss));
  }
  const std::uint64_t beyond = account.losses.size() - named + account.lossesNotListed;
  if (beyond != 0) text += fmt::format("  and {} more\n", beyond);
  return text + WayToTheLosses(reportPath) + "\n";
}

std::vector<std::string> DifferenceLines(const complete::Account& account) {
  std::vector<std::string> lines;
  for (const complete::Difference& difference : account.differences) {
    lines.push_back("--verify: " + DifferenceWords(difference));
  }
  if (account.differencesNotListed != 0) {
    lines.push_back(fmt::format("--verify: {} more differences", account.differencesNotListed));
  }
  return lines;
}

}  // namespace velmora::cli
