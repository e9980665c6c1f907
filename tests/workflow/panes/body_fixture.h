// The body pane over a finished store, with a selection that a test decides.
#pragma once

#include "workflow/panes/display_body.h"
#include "workflow/panes/store_fixture.h"

namespace velmora::workflow {

struct FixedSelection : ItemSelection {
  int RowCount() const override { return rows; }
  int SelectedRow() const override { return selected; }
  int rows = 0;
  int selected = -1;
};

class BodyFixture : public StoreFixture {
 protected:
  void AddMail(const FieldValues& fields) {
    AddItem(inbox_, u"IPM.Note", fields);
    ++selection_.rows;
  }
  void Show(int row, std::uint32_t key = 0, text::TextView folder = u"Inbox") {
    selection_.selected = row;
    body_.OnMessage({.code = 32848, .number = key, .text = PathOf(folder)});
  }
  QString Shown() const { return body_.toPlainText(); }

  output::Ref<output::RDOFolder> inbox_ = AddFolder(u"Inbox", u"IPF.Note");
  FixedSelection selection_;
  CDisplayBody body_{nullptr, finished_, selection_};
};

}  // namespace velmora::workflow
