// A run with its panes, and what the run wrote, as its trace tells it.
#pragma once

#include <filesystem>
#include <vector>

#include "conversion/worker.h"
#include "output/trace/trace_library.h"
#include "platform/user_folders.h"
#include "workflow/panes/listed_values.h"
#include "workflow/panes/result_panes.h"
#include "workflow/panes/store_fixture.h"
#include "workflow/panes/written_items.h"

class QTreeWidget;

namespace velmora::workflow {

class ResultFixture : public testing::Test, public engine::RunObserver {
 protected:
  ResultFixture();

  /// Converts a store into a folder of its own, with the panes as observer.
  conversion::RunEnd Convert(const std::filesystem::path& source);
  /// The same for a store that comes to its end.
  void Run(const std::filesystem::path& source) { ASSERT_EQ(Convert(source), conversion::RunEnd::kFinished); }

  /// The saved items of a folder, with what a store adds to them by itself.
  std::vector<WrittenItem> Written(const QString& folderPath);

  QTreeWidget& Tree();
  const TreeFolderRecord* Folder(text::TextView name);
  /// Selects a folder as a click does, and waits until it is shown.
  void Select(const TreeFolderRecord& folder);

  /// Compares what the panes show of a folder with what was written there: its number of items, the list with
  /// the bodies or the grid. Gives the number of rows compared.
  int ExpectShown(const TreeFolderRecord& folder);
  int ExpectAllFoldersShown();

  void OnEvent(const engine::Event& event) override;

  struct Lines : output::TraceSink {
    void WriteLine(std::string_view line) override { lines.push_back(QByteArray(line.data(), qsizetype(line.size()))); }
    std::vector<QByteArray> lines;
  };

  platform::TemporaryFolder folder_ = platform::TemporaryFolder::Create().value();
  Lines trace_;
  WrittenItems written_;  ///< of the last run
  std::vector<engine::NoticeKind> notices_;
  conversion::RunState state_;
  conversion::COutLook outLook_;
  ResultPanes panes_;

 private:
  conversion::RunOutput MakeOutput();
  /// By the operations that read, past the panes; null where the store has no such folder.
  output::Ref<output::RDOFolder> OpenFolder(const QString& path);
  int ExpectListed(const TreeFolderRecord& folder, const std::vector<WrittenItem>& items);
  int ExpectFilled(const std::vector<WrittenItem>& items, const ListedKind& kind);

  output::Ref<output::RDOSession> reader_;
  int runs_ = 0;
};

}  // namespace velmora::workflow
