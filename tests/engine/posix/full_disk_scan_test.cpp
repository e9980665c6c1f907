// The index file on a disk that is full.
#include <sys/resource.h>

#include <csignal>

#include "engine/run_fixture.h"
#include "engine/steps.h"

namespace velmora::engine {
namespace {

using forge::Format;
using FullDiskScanTest = RunTest;

/// No file may grow while this lives, as on a full disk.
class FullDisk {
 public:
  FullDisk() {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit none{0, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &none);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit before_{};
  void (*handler_)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

TEST_F(FullDiskScanTest, AnIndexFileThatCannotBeWrittenEndsTheRun) {
  Canvas canvas;
  canvas.Page(
      Format::kUnicode, 18432,
      forge::BlockPage(Format::kUnicode, {{.bid = 4, .offset = 64, .size = 1}, {.bid = 8, .offset = 64, .size = 1}}));
  Attach(canvas.bytes);
  {
    const FullDisk full;
    ScanBlockPages(scan_, run_);
  }
  EXPECT_TRUE(run_.runAborted);
  EXPECT_EQ(recorder_.Notices().back(), NoticeKind::kNoIndexFile);
}

}  // namespace
}  // namespace velmora::engine
