// The panes over what becomes of known stores. The stores are not part of the project, and neither is what was
// worked out for each of them without this program: the trace of its conversion, and the folders of the source.
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "aids/aids.h"
#include "workflow/panes/result_fixture.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

QByteArray ContentOf(const std::filesystem::path& path) {
  QFile file(PathToQt(path));
  EXPECT_TRUE(file.open(QFile::ReadOnly)) << path;
  return file.readAll();
}

constexpr const char* kForged = "forged";

class KnownStoresTest : public ResultFixture {
 protected:
  void ShowAll(const char* group) {
    if (test::StoresFolder().empty())
      GTEST_SKIP() << "no folder of stores beside the sources; VELMORA_STORES names one";
    ASSERT_FALSE(test::ExpectedFolder().empty()) << "stores without their traces; VELMORA_EXPECTED names them";
    const auto stores = group == kForged ? test::StoresFolder() / kForged : test::StoresFolder();
    const auto expected = test::ExpectedFolder() / group;
    int rows = 0;
    for (const auto& entry : std::filesystem::directory_iterator(stores)) {
      if (entry.path().extension() != ".pst" && entry.path().extension() != ".ost") continue;
      const std::string name = entry.path().filename().string();
      SCOPED_TRACE(name);
      if (Convert(entry.path()) != conversion::RunEnd::kFinished) {
        EXPECT_FALSE(notices_.empty()) << "a store that is refused is told";
        continue;
      }
      written_ = WrittenItems(Split(ContentOf(expected / (name + ".normal.jsonl"))));
      ExpectTree(ContentOf(expected / (name + ".normal.json")));
      rows += ExpectAllFoldersShown();
    }
    EXPECT_GT(rows, 0);
  }

 private:
  static std::vector<QByteArray> Split(const QByteArray& trace) {
    const QList<QByteArray> lines = trace.split('\n');
    return {lines.begin(), lines.end()};
  }

  /// The folders of the tree are what the source says that they are, and every folder that got items is there;
  /// but nothing tells the tree of those that are made for items without a folder.
  void ExpectTree(const QByteArray& report) {
    QMap<qint64, QJsonObject> ofSource;
    for (const QJsonValue folder : QJsonDocument::fromJson(report)["folders"].toArray()) {
      ofSource.insert(qint64(folder["nid"].toDouble()), folder.toObject());
    }
    QStringList paths;
    for (const TreeFolderRecord& folder : panes_.FolderPane().Folders().Records()) {
      const QString path = ToQt(PathOf(folder));
      paths << path.toLower();
      const auto found = ofSource.find(folder.id);
      if (found == ofSource.end() || folder.parent == nullptr) continue;
      EXPECT_EQ(ToQt(folder.containerClass), (*found)["containerClass"].toString()) << path.toStdString();
      EXPECT_EQ(ToQt(folder.name), (*found)["name"].toString()) << path.toStdString();
    }
    for (const QString& path : written_.FoldersWithItems()) {
      EXPECT_TRUE(paths.contains(path) || path.endsWith("\\lost & found")) << path.toStdString();
    }
  }
};

TEST_F(KnownStoresTest, EveryFolderOfARealStoreShowsWhatWasWritten) { ShowAll("stores"); }

TEST_F(KnownStoresTest, EveryFolderOfAForgedStoreShowsWhatWasWritten) { ShowAll(kForged); }

}  // namespace
}  // namespace velmora::workflow
