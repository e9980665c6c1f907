// What a run wrote, as the trace of its operations tells it.
#pragma once

#include <QByteArray>
#include <QJsonValue>
#include <QString>
#include <map>
#include <vector>

namespace velmora::workflow {

/// An item by the operations that made it.
struct WrittenItem {
  QString messageClass;
  std::map<QString, QJsonValue> fields;  ///< by the names of the operations
  int attachments = 0;

  /// Empty or 0 where the field was not written.
  QString Text(const char* field) const;
  int Number(const char* field) const;
};

/// Items and folders of one trace. Paths count whatever their letter case.
class WrittenItems {
 public:
  WrittenItems() = default;
  explicit WrittenItems(const std::vector<QByteArray>& trace);

  /// The saved items of a folder in the order of their first save.
  std::vector<WrittenItem> In(const QString& folderPath) const;

  /// Their paths in lower case.
  QStringList FoldersWithItems() const;

 private:
  std::map<QString, std::vector<WrittenItem>> items_;
};

}  // namespace velmora::workflow
