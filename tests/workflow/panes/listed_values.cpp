#include "workflow/panes/listed_values.h"

#include <QRegularExpression>
#include <QStringList>
#include <array>

namespace velmora::workflow {
namespace {

using output::ItemInterface;

constexpr ListedKind kContacts{32836, ItemInterface::RDOContactItem, "FullName", kListedContactRows};
constexpr ListedKind kTasks{32838, ItemInterface::RDOTaskItem, "Subject", kListedTaskRows};
constexpr ListedKind kCalendar{32839, ItemInterface::RDOAppointmentItem, "Subject", kListedCalendarRows};
constexpr ListedKind kNotes{32840, ItemInterface::RDONoteItem, "Subject", kListedNoteRows};
constexpr ListedKind kJournal{32841, ItemInterface::RDOJournalItem, "Subject", kListedJournalRows};

struct ClassRow {
  const char* containerClass;
  const ListedKind& kind;
};

const ClassRow kClasses[] = {
    {"IPM.Contact", kContacts}, {"IPF.Contact", kContacts},     {"IPM.Task", kTasks},
    {"IPF.Task", kTasks},       {"IPM.Appointment", kCalendar}, {"IPF.Appointment", kCalendar},
    {"IPM.StickyNote", kNotes}, {"IPF.StickyNote", kNotes},     {"IPM.Journal", kJournal},
    {"IPF.Journal", kJournal},  {"IPM.Activity", kJournal},     {"IPF.Activity", kJournal},
};

QString Word(int number, const QStringList& words) { return words.value(number, ""); }

/// "2011-05-04T01:02:03" in its parts.
std::array<int, 6> PartsOfIso(const QString& date) {
  std::array<int, 6> parts{};
  const int places[] = {0, 5, 8, 11, 14, 17};
  const int lengths[] = {4, 2, 2, 2, 2, 2};
  for (std::size_t i = 0; i < parts.size(); ++i) parts[i] = date.mid(places[i], lengths[i]).toInt();
  return parts;
}

/// What a row says by the form of its field; nothing where there is no row.
std::optional<QString> ExpectedValue(const WrittenItem& item, const ListedRow& row) {
  const auto found = item.fields.find(QString::fromLatin1(row.operation.data(), qsizetype(row.operation.size())));
  if (found == item.fields.end()) return std::nullopt;
  const QJsonValue& value = found->second;
  if (row.form == "text")
    return value.toString().isEmpty() ? std::nullopt : std::optional(value.toString().left(32767));
  if (row.form == "flag") return value.toBool() ? std::optional<QString>("Yes") : std::nullopt;
  if (row.form == "date" || row.form == "time") {
    if (value.toString() == "4501-01-01T00:00:00") return std::nullopt;
    const auto parts = PartsOfIso(value.toString());
    if (row.form == "date") return QString("%1/%2/%3").arg(parts[1]).arg(parts[2]).arg(parts[0]);
    return QString("%1:%2:%3:0").arg(parts[3]).arg(parts[4]).arg(parts[5]);
  }
  const int number = value.toInt();
  if (number == 0) return std::nullopt;
  if (row.form == "sensitivity word") return Word(number, {"Normal", "Personal", "Private", "Confidential"});
  if (row.form == "importance word") return Word(number, {"Low", "Normal", "High"});
  if (row.form == "status word") {
    return Word(number, {"Task Not Started", "Task In Progress", "Task Complete", "Task Waiting", "Task Deferred"});
  }
  if (row.form == "note colour words") {
    return Word(item.Number("Importance"), {"Blue", "Green", "Pink", "Yellow", "White"});
  }
  return QString::number(number);
}

/// What a row of one line holds of a text.
QString OnOneLine(QString text) {
  const bool cut = text.size() > 300;
  text.truncate(300);
  text.replace(QRegularExpression("[\\x{01}-\\x{1f}\\x{2028}\\x{2029}]"), " ");
  return cut ? text + QChar(0x2026) : text;
}

}  // namespace

const ListedKind* ListedKindOfClass(const QString& containerClass) {
  for (const ClassRow& row : kClasses) {
    if (containerClass == row.containerClass) return &row.kind;
  }
  return nullptr;
}

ShownRows ExpectedRows(const WrittenItem& item, const ListedKind& kind) {
  ShownRows rows;
  for (const ListedRow& row : kind.rows) {
    if (const auto value = ExpectedValue(item, row)) {
      rows.emplace_back(QString::fromLatin1(row.label.data(), qsizetype(row.label.size())), *value);
    }
  }
  return rows;
}

QString ExpectedCaption(const WrittenItem& item, const ListedKind& kind) {
  const QString caption = item.Text(kind.caption);
  return caption.isEmpty() ? "UnKnown" : caption;
}

QStringList ExpectedTexts(const WrittenItem& item, bool isFirst) {
  QStringList texts;
  for (const char* field : {"SenderName", "To", "Subject"}) texts << OnOneLine(item.Text(field));
  const QString iso = item.Text("ReceivedTime");
  const auto parts = PartsOfIso(iso);
  texts << (iso.isEmpty() || iso == "4500-01-01T00:00:00"
                ? QString()
                : QString(isFirst ? "%1/%2/%3" : "%1 /%2 /%3").arg(parts[1]).arg(parts[2]).arg(parts[0]));
  return texts;
}

QStringList ExpectedWords(const WrittenItem& item) {
  QString body = item.Text("HTMLBody");
  if (body.isEmpty()) body = item.Text("Body");
  static const QRegularExpression unseen(
      "<!--.*?-->|<(style|script|title)\\b.*?</\\1\\s*>|<[^>]*>?|&#?\\w+;?",
      QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
  body.replace(unseen, " ");
  static const QRegularExpression word("(?<![\\w.:/@-])[A-Za-z]{3,40}(?![\\w.:/@-])");
  QStringList words;
  for (auto found = word.globalMatch(body); found.hasNext();) words << found.next().captured();
  words.removeDuplicates();
  return words;
}

}  // namespace velmora::workflow
