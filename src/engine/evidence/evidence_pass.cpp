#include "engine/evidence/evidence_pass.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <ranges>

#include "engine/evidence/step_look.h"
#include "engine/evidence/stretch.h"
#include "engine/source_window.h"
#include "store/format/checksum.h"

namespace velmora::engine {
namespace {

constexpr std::uint64_t kClearLead = 16;  ///< things found, by which one layout is told from others

/// Steps that are looked at or waiting to be, for each job, so that nobody has to wait for the next; and the most, as
/// each takes its memory.
constexpr std::size_t kStepsOfJob = 2;
constexpr std::size_t kMostSteps = 8;

/// Gathers what the steps show of one layout, in the order of the source.
class Gatherer {
 public:
  Gatherer(const Generation& layout, std::uint64_t fileSize) : finds_(layout, fileSize) {}

  /// What ends in the step that ends at `end`; `stretch` are its bytes.
  void Take(const StepSights& step, const Stretch& stretch, std::uint64_t end) {
    if (seeksMoved_) {
      for (MaybeMoved candidate : step.maybeMoved) {
        candidate.usedUpToIt += finds_.usedSlots;
        maybeMoved_.push_back(candidate);
      }
    }
    finds_.Add(step.sights);
    SettleMoved(stretch, end);
  }

  /// `stretch` is that of the last step.
  Finds Finish(const Stretch& stretch) {
    SettleMoved(stretch, UINT64_MAX);
    return std::move(finds_);
  }

  /// Moved blocks are sought only in the layout that the source seems to have.
  void SeekMoved(bool isLikely) {
    seeksMoved_ = isLikely;
    if (!isLikely) finds_.soughtMoved = false;
  }

  std::uint64_t Count() const { return finds_.Count(); }

 private:
  /// Those over which no block that stands in its place can end any more.
  void SettleMoved(const Stretch& stretch, std::uint64_t end) {
    SumAllowance allowance(stretch.bytes.size());
    while (!maybeMoved_.empty() && end - maybeMoved_.front().end >= kLargestBlock) {
      const auto [seen, itsEnd, used] = maybeMoved_.front();
      maybeMoved_.pop_front();
      if (!finds_.taken.IsFree(seen.start, itsEnd - seen.start)) continue;
      const auto stored = allowance.Stored(stretch, seen, itsEnd);
      if (!stored.empty() && seen.trailer.dwCRC == WeakCrc(stored)) {
        finds_.TakeWhole(seen, seen.start, Grade::kMoved, stored, used);
      }
    }
  }

  Finds finds_;
  bool seeksMoved_ = true;
  std::deque<MaybeMoved> maybeMoved_;
};

/// Lets steps read one after the other, in their order: how far a bad stretch is passed over depends on what was read
/// ahead of it. All numbers must come.
class Turns {
 public:
  template <class Read>
  void Take(std::uint64_t number, Read read) {
    std::unique_lock lock(mutex_);
    passed_.wait(lock, [&] { return next_ == number; });
    const Pass pass(*this);
    read();
  }

 private:
  struct Pass {
    explicit Pass(Turns& turns) : turns_(turns) {}
    ~Pass() {
      ++turns_.next_;
      turns_.passed_.notify_all();
    }
    Turns& turns_;
  };

  std::mutex mutex_;
  std::condition_variable passed_;
  std::uint64_t next_ = 0;
};

/// One step of the pass: its bytes and what they show.
class Step {
 public:
  Step(const Source& source, Turns& turns) : window_(source), turns_(turns) {}

  /// Has step number `number` of those from `first` on looked at, for each of the layouts.
  void Start(std::uint64_t first, std::uint64_t number, std::span<const Generation* const> layouts, std::uint64_t size,
             platform::Workers& workers) {
    begin_ = first + number * kStep;
    end_ = std::min(begin_ + kStep, size);
    shown_.clear();
    work_ = workers.Start([this, number, layouts] {
      turns_.Take(number, [this] {
        stretch_.base = begin_ - std::min(begin_, kReachOfPass);
        stretch_.bytes = window_.Read(stretch_.base, begin_ - stretch_.base + kStep).Bytes();
      });
      for (const Generation* layout : layouts) shown_.push_back(LookAtStep(stretch_, begin_, end_, *layout));
    });
  }

  /// Returns when it was looked at; works on others meanwhile.
  void Await() { work_->WorkUntilDone(); }

  std::uint64_t Begin() const { return begin_; }
  std::uint64_t End() const { return end_; }
  const Stretch& Bytes() const { return stretch_; }
  const std::vector<StepSights>& Shown() const { return shown_; }

 private:
  SourceWindow window_;
  Turns& turns_;
  std::uint64_t begin_ = 0;
  std::uint64_t end_ = 0;
  Stretch stretch_;
  std::vector<StepSights> shown_;
  std::unique_ptr<platform::Workers::Step> work_;  ///< goes first
};

/// The steps under work, in their order.
class Steps {
 public:
  Steps(const Source& source, std::span<const Generation* const> layouts, platform::Workers& workers)
      : source_(source), layouts_(layouts), workers_(workers), first_(source.Begin() / kStep * kStep) {
    const std::size_t ahead = workers.Jobs() == 1 ? 1 : std::min<std::size_t>(kStepsOfJob * workers.Jobs(), kMostSteps);
    while (steps_.size() < ahead && HasNext()) Start(std::make_unique<Step>(source, turns_));
  }

  /// The last first: a step that was begun waits for the turns of those ahead of it.
  ~Steps() {
    while (!steps_.empty()) steps_.pop_back();
  }

  bool IsEmpty() const { return steps_.empty(); }
  Step& Front() { return *steps_.front(); }

  /// Done with the front; the step is as good for another one.
  void Pop() {
    std::unique_ptr<Step> step = std::move(steps_.front());
    steps_.pop_front();
    if (HasNext()) Start(std::move(step));
  }

 private:
  bool HasNext() const { return first_ + next_ * kStep < source_.Size(); }
  void Start(std::unique_ptr<Step> step) {
    step->Start(first_, next_++, layouts_, source_.Size(), workers_);
    steps_.push_back(std::move(step));
  }

  const Source& source_;
  std::span<const Generation* const> layouts_;
  platform::Workers& workers_;
  std::uint64_t first_;
  std::uint64_t next_ = 0;
  Turns turns_;
  std::deque<std::unique_ptr<Step>> steps_;
};

}  // namespace

void Finds::TakeWhole(const SeenTrailer& seen, std::uint64_t offset, Grade grade, std::span<const std::byte> stored,
                      std::uint64_t usedUpToIt) {
  Sights::TakeWhole(seen, offset, grade, stored, usedUpToIt);
  Mark(whole.back());
}

void Finds::Add(const Sights& behind) {
  Sights::Add(behind);
  for (const FoundPage& page : behind.pages) Mark(page);
  for (const FoundBlock& block : behind.whole) Mark(block);
  if (whole.size() >= BlockSorter::kPiece) sorted.Take(whole);
}

std::vector<Finds> LookThrough(const Source& source, std::span<const Generation* const> layouts, RunContext& run) {
  std::vector<Gatherer> gatherers;
  gatherers.reserve(layouts.size());
  for (const Generation* layout : layouts) gatherers.emplace_back(*layout, source.Size());
  const auto finish = [&](const Stretch& last) {
    std::vector<Finds> finds;
    for (Gatherer& gatherer : gatherers) finds.push_back(gatherer.Finish(last));
    return finds;
  };

  for (Steps steps(source, layouts, *run.workers); !steps.IsEmpty(); steps.Pop()) {
    Step& step = steps.Front();
    run.control.PausePoint();
    run.SayProgress(step.Begin() * 100 / source.Size(), Phase::kProbe);
    step.Await();
    for (std::size_t i = 0; i < gatherers.size(); ++i) gatherers[i].Take(step.Shown()[i], step.Bytes(), step.End());
    const std::uint64_t most = std::ranges::max(gatherers | std::views::transform(&Gatherer::Count));
    for (Gatherer& gatherer : gatherers) gatherer.SeekMoved(gatherer.Count() + kClearLead >= most);
    if (step.End() == source.Size()) return finish(step.Bytes());
  }
  return finish({});
}

}  // namespace velmora::engine
