#include "workflow/panes/folder_listing.h"

#include <chrono>
#include <utility>

#include "workflow/panes/row_value.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

using Clock = std::chrono::steady_clock;
using output::Field;

/// Rows travel to the list in portions: the list stays quick however many there are.
constexpr auto kListingTime = std::chrono::milliseconds(50);
constexpr std::size_t kMostListed = 500;

/// Stands for "no date" in the list, unlike the year 4501 of the grid.
constexpr output::OleDate kNoDate{949633.0};

QString DateText(const output::FieldRead& read, bool isFirst) {
  const output::OleDate date = std::get<output::OleDate>(read.value);
  if (!read.written || date == kNoDate) return {};
  const text::DateParts parts = PartsOf(date);
  return QString::asprintf(isFirst ? "%d/%d/%d" : "%d /%d /%d", parts.month, parts.day, parts.year);
}

}  // namespace

ItemRows::Row RowOf(const output::RDOMail& item, bool isFirst) {
  const auto text = [&item](Field field) { return ToQt(item.Get(field).AsText()); };
  return {.texts = {text(Field::SenderName), text(Field::To), text(Field::Subject),
                    DateText(item.Get(Field::ReceivedTime), isFirst)},
          .hasAttachments = item.AttachmentCount() > 0};
}

FolderListing::FolderListing(std::shared_ptr<FinishedStore> store, text::TextView path, Receiver receiver)
    : store_(std::move(store)), path_(path), receiver_(std::move(receiver)), thread_([this] { Main(); }) {}

FolderListing::~FolderListing() {
  stop_ = true;
  thread_.join();
}

void FolderListing::Main() {
  try {
    ReadAll();
  } catch (const std::exception&) {
  }
  HandOver();
  receiver_.onEnd();
}

void FolderListing::ReadAll() {
  output::Ref<output::RDOItems> items;
  output::Ref<output::RDOMail> item;
  store_->Read([&](output::RDOSession& session) {
    const auto folder = session.GetFolderFromPath(path_);
    if (!folder) return;
    items = folder->Items();
    if (items->Count() > 0) item = items->GetFirst();
  });
  auto portionBegin = Clock::now();
  for (bool isFirst = true; item && !stop_; isFirst = false) {
    store_->Read([&](output::RDOSession&) {
      portion_.push_back(RowOf(*item, isFirst));
      item = items->GetNext();
    });
    // The first row is there at once, so nobody waits in front of an empty list.
    if (!isFirst && portion_.size() < kMostListed && Clock::now() - portionBegin < kListingTime) continue;
    HandOver();
    portionBegin = Clock::now();
  }
}

void FolderListing::HandOver() {
  if (!portion_.empty()) receiver_.onRows(std::exchange(portion_, {}));
}

}  // namespace velmora::workflow
