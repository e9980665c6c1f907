#include "workflow/panes/fill.h"

#include <chrono>

#include "workflow/panes/row_value.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

using Clock = std::chrono::steady_clock;

/// Categories travel to the grid in portions: many small changes would cost the grid more than few large ones.
constexpr auto kPortionTime = std::chrono::milliseconds(100);
constexpr std::size_t kMostInPortion = 2000;

/// What can be copied of a text. The beginning of a body tells what it is about; a folder of long ones must
/// not fill the memory.
constexpr qsizetype kMostInValue = 32767;

class Fill {
 public:
  Fill(FinishedStore& store, const FillKind& kind, FillTarget& target) : store_(store), kind_(kind), target_(target) {}

  void ReadAll(text::TextView path) {
    output::Ref<output::RDOItems> items;
    output::Ref<output::RDOMail> item;
    std::int32_t count = 0;
    store_.Read([&](output::RDOSession& session) {
      const auto folder = session.GetFolderFromPath(path);
      if (!folder) return;
      items = folder->Items();
      count = items->Count();
      if (count > 0) item = items->GetFirst();
    });
    int lastPercent = -1;
    for (std::int32_t i = 0; i < count && !target_.IsCancelled(); ++i) {
      const int percent = static_cast<int>(i / static_cast<double>(count) * 100.0);
      if (percent != lastPercent) target_.ShowPercent(percent);
      lastPercent = percent;
      store_.Read([&](output::RDOSession&) {
        AddItem(*output::Query(item, kind_.interface));
        item = items->GetNext();
      });
      if (portion_.size() >= kMostInPortion || Clock::now() - portionBegin_ >= kPortionTime) HandOver();
    }
  }

  void HandOver() {
    if (!portion_.empty()) target_.Add(std::exchange(portion_, {}));
    portionBegin_ = Clock::now();
  }

 private:
  void AddItem(const output::RDOMail& item) {
    const text::Text caption = item.Get(kind_.caption).AsText();
    Category& category = portion_.emplace_back();
    category.caption = caption.empty() ? QStringLiteral("UnKnown") : ToQt(caption).left(kMostInValue);
    for (const GridRow& row : kind_.rows) {
      if (auto value = ValueOf(item, row)) category.rows.push_back({&row, value->left(kMostInValue)});
    }
  }

  FinishedStore& store_;
  const FillKind& kind_;
  FillTarget& target_;
  std::vector<Category> portion_;
  Clock::time_point portionBegin_ = Clock::now();
};

}  // namespace

void FillFolder(FinishedStore& store, text::TextView path, const FillKind& kind, FillTarget& target) {
  Fill fill(store, kind, target);
  try {
    fill.ReadAll(path);
  } catch (const std::exception&) {
  }
  fill.HandOver();
}

}  // namespace velmora::workflow
