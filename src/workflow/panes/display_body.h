// The pane that shows the body of the selected item.
#pragma once

#include <QTextBrowser>
#include <memory>

#include "workflow/panes/finished_store.h"
#include "workflow/panes/pane_messages.h"

namespace velmora::workflow {

/// What the pane asks of the list.
class ItemSelection {
 public:
  virtual ~ItemSelection() = default;
  virtual int RowCount() const = 0;
  virtual int SelectedRow() const = 0;  ///< -1: none
};

/// Shows HTML, or the plain body as if it were HTML. Nothing that a body names is ever fetched, no link opens
/// anything, no script runs.
class CDisplayBody : public QTextBrowser {
  Q_OBJECT

 public:
  /// `selection` outlives the pane's last message.
  CDisplayBody(QWidget* parent, std::shared_ptr<FinishedStore> store, const ItemSelection& selection);

  /// kShowBodyMessage and MSG_CLEAR_BODY.
  void OnMessage(const RunMessage& message);

  /// Lets the folder go that is kept open from one item to the next.
  void ReleaseFolder();

  /// How often something was asked for and not fetched.
  int Refused() const { return refused_; }

  QVariant loadResource(int type, const QUrl& name) override;

 protected:
  void doSetSource(const QUrl& name, QTextDocument::ResourceType type) override;

 private:
  void Show(std::uint32_t key, text::TextView path);
  text::Text BodyOf(int row, text::TextView path);
  void StepTo(int row);

  std::shared_ptr<FinishedStore> store_;
  const ItemSelection& selection_;
  bool showing_ = false;  ///< a call during a call does nothing
  int refused_ = 0;

  // The open folder, and the item at which the last step ended.
  text::Text folderPath_;
  output::Ref<output::RDOItems> items_;
  output::Ref<output::RDOMail> item_;
  int place_ = 0;
};

}  // namespace velmora::workflow
