// Reads the items of a folder for the list, on a thread of its own.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "workflow/panes/finished_store.h"
#include "workflow/panes/item_rows.h"

namespace velmora::workflow {

class FolderListing {
 public:
  /// Both are called by the thread; `onEnd` last.
  struct Receiver {
    std::function<void(std::vector<ItemRows::Row>)> onRows;
    std::function<void()> onEnd;
  };

  /// Starts at once. A read that fails ends the listing with the rows before it.
  FolderListing(std::shared_ptr<FinishedStore> store, text::TextView path, Receiver receiver);

  /// Stops and waits for the end, which is not far: at most one item is still read.
  ~FolderListing();
  FolderListing(const FolderListing&) = delete;
  FolderListing& operator=(const FolderListing&) = delete;

 private:
  void Main();
  void ReadAll();
  void HandOver();

  std::shared_ptr<FinishedStore> store_;
  text::Text path_;
  Receiver receiver_;
  std::vector<ItemRows::Row> portion_;
  std::atomic<bool> stop_{false};
  std::thread thread_;  ///< last: it uses all of the above
};

/// What the list shows of an item. The dates of the first row of a listing and of all others differ in form.
ItemRows::Row RowOf(const output::RDOMail& item, bool isFirst);

}  // namespace velmora::workflow
