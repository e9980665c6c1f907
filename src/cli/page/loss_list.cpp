#include "cli/page/loss_list.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/complete_result_text.h"
#include "cli/page/html.h"
#include "cli/plain_words.h"

namespace velmora::cli::page {
namespace {

using complete::Loss;

constexpr std::size_t kPartsListed = 20;  // of one loss

bool IsFolder(const Loss& loss) { return TypeOf(loss.source) == NidType::kNormalFolder; }

/// Whether anything of a message is known.
bool IsKnown(const Loss& loss) {
  return !loss.messageClass.empty() || !loss.subject.empty() || !loss.sender.empty() || loss.date;
}

/// A message by its subject, a folder by its path, and of what is not known at all the node.
std::string SubjectOf(const Loss& loss) {
  if (IsFolder(loss) && !loss.folder.empty()) return "The folder " + StoreText(loss.folder);
  if (IsKnown(loss)) return loss.subject.empty() ? "(no subject)" : StoreText(loss.subject);
  return "An unknown item (" + Escaped(platform::TextOf({platform::ObjectKind::kNode, loss.source})) + ")";
}

std::string DetailsOf(const Loss& loss) {
  if (IsFolder(loss)) return {};
  std::string details;
  if (!loss.sender.empty()) details += "<span>from " + StoreText(loss.sender) + "</span> ";
  if (loss.date) details += "<span>" + DateText(*loss.date) + "</span> ";
  if (!loss.folder.empty()) details += "<span>in " + StoreText(loss.folder) + "</span>";
  return details.empty() ? details : "<small>" + details + "</small>";
}

std::string PartItem(const complete::MissingPart& part) {
  std::string item = "<li>" + Escaped(PartWords(part));
  if (!part.cause.message.empty()) item += " <small>" + StoreText(text::FromUtf8(TextOf(part.cause))) + "</small>";
  return item + "</li>";
}

std::string LossRow(const Loss& loss) {
  const bool isLost = !loss.target;
  std::string row =
      fmt::format("<tr class=\"{}\"><th scope=\"row\">{}{}</th><td><b>{}</b><ul>", isLost ? "lost" : "part",
                  SubjectOf(loss), DetailsOf(loss), isLost ? "Lost" : "In part");
  const std::size_t listed = std::min(loss.missing.size(), kPartsListed);
  for (std::size_t i = 0; i < listed; ++i) row += PartItem(loss.missing[i]);
  if (listed < loss.missing.size()) row += fmt::format("<li>{} more</li>", Grouped(loss.missing.size() - listed));
  return row + "</ul></td></tr>\n";
}

}  // namespace

void WriteLossList(const complete::Account& account, const ReportSink& sink) {
  if (account.IsWhole()) return;
  sink(
      "<section id=\"losses\" class=\"list\" data-one=\"entry\" data-many=\"entries\">"
      "<h2>What is lost or not whole</h2>\n");
  if (account.lossesNotListed != 0) {
    sink(fmt::format("<p>The first {} are named here; {} more are not.</p>\n", Grouped(account.losses.size()),
                     Grouped(account.lossesNotListed)));
  }
  sink(
      "<div class=\"tools\" hidden=\"\">"
      "<label class=\"wide\">Search subject, sender, date, folder or what is missing "
      "<input type=\"search\" autocomplete=\"off\"/></label>"
      "<label>Show <select><option value=\"\">everything</option><option value=\"lost\">lost</option>"
      "<option value=\"part\">in part</option></select></label></div>\n"
      "<p class=\"found\" role=\"status\"></p>\n"
      "<table class=\"losses\"><thead><tr><th scope=\"col\">Message or folder</th>"
      "<th scope=\"col\">What is missing</th></tr></thead>\n<tbody>\n");
  for (const Loss& loss : account.losses) sink(LossRow(loss));
  sink("</tbody></table>\n<p class=\"more\" hidden=\"\"><button type=\"button\">Show more</button></p>\n</section>\n");
}

}  // namespace velmora::cli::page
