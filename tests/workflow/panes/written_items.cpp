#include "workflow/panes/written_items.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>
#include <algorithm>

namespace velmora::workflow {
namespace {

/// A source keeps the length of "Re: " and the like ahead of a subject; the subject that it means begins behind.
QString WithoutMark(const QString& subject) { return subject.startsWith(QChar(1)) ? subject.mid(2) : subject; }

}  // namespace

QString WrittenItem::Text(const char* field) const {
  const auto found = fields.find(field);
  return found == fields.end() ? QString() : found->second.toString();
}

int WrittenItem::Number(const char* field) const {
  const auto found = fields.find(field);
  return found == fields.end() ? 0 : found->second.toInt();
}

WrittenItems::WrittenItems(const std::vector<QByteArray>& trace) {
  struct Open {
    QString folder;
    WrittenItem item;
  };
  std::map<int, Open> open;
  std::vector<int> saved;
  for (const QByteArray& line : trace) {
    const QJsonObject operation = QJsonDocument::fromJson(line).object();
    const QString name = operation["op"].toString();
    const int id = operation["id"].toInt();
    if (name == "AddItem") {
      open[id] = {operation["folder"].toString().toLower(), {operation["class"].toString(), {}, 0}};
    }
    const auto at = open.find(id);
    if (at == open.end()) continue;
    WrittenItem& item = at->second.item;
    if (name == "Put") {
      const QString field = operation["field"].toString();
      const QJsonValue value = operation["value"];
      item.fields[field] = field == "Subject" ? WithoutMark(value.toString()) : value;
    }
    if (name == "AddAttachment" || name == "AddPicture") ++item.attachments;
    if (name == "Save" && std::ranges::find(saved, id) == saved.end()) saved.push_back(id);
    if (name == "Delete") std::erase(saved, id);
  }
  for (const int id : saved) items_[open[id].folder].push_back(open[id].item);
}

std::vector<WrittenItem> WrittenItems::In(const QString& folderPath) const {
  const auto found = items_.find(folderPath.toLower());
  return found == items_.end() ? std::vector<WrittenItem>() : found->second;
}

QStringList WrittenItems::FoldersWithItems() const {
  QStringList folders;
  for (const auto& [path, items] : items_) folders << path;
  return folders;
}

}  // namespace velmora::workflow
