#include "engine/literal_block_scan.h"

#include <algorithm>
#include <random>

#include "engine/run_fixture.h"
#include "engine/steps.h"
#include "forge/checksum.h"

namespace velmora::engine {
namespace {

using forge::Format;

/// Bytes in which trailers, runs of zeros, pages and their likes stand wherever chance puts them.
class Rubble {
 public:
  Rubble(Format format, std::uint32_t seed) : format_(format), random_(seed) {}

  Canvas Make(std::size_t size) {
    canvas_.bytes = forge::Noise(size, static_cast<std::uint32_t>(random_()));
    for (int i = 0; i < 40; ++i) Zeros(Any(size), Any(3) == 0 ? Any(size / 4) : Any(3000));
    for (int i = 0; i < 60; ++i) Block();
    for (int i = 0; i < 60; ++i) Slot();
    for (int i = 0; i < 12; ++i) Page();
    if (Any(2) == 0) Zeros(0, 18432 + Any(100'000));  // a file that begins with zeros
    canvas_.bytes.resize(size - Any(600));
    return canvas_;
  }

 private:
  std::uint64_t Any(std::uint64_t below) { return std::uniform_int_distribution<std::uint64_t>(0, below - 1)(random_); }

  void Zeros(std::uint64_t offset, std::uint64_t count) {
    const std::uint64_t end = std::min<std::uint64_t>(canvas_.bytes.size(), offset + count);
    for (std::uint64_t at = offset; at < end; ++at) canvas_.bytes[at] = std::byte{0};
  }

  std::uint32_t Id() { return static_cast<std::uint32_t>(4 * (1 + Any(40))); }

  /// A block with a trailer where the trailer tests look: right behind it, or behind some zeros.
  void Block() {
    const std::uint64_t offset = Any(canvas_.bytes.size() / 16 - 2000) * 16;
    auto size = static_cast<std::uint16_t>(1 + Any(Any(2) == 0 ? 9000 : 300));
    const std::uint32_t id = Id();
    const std::uint32_t pitch = format_ == Format::kAnsi ? 4 : 8;
    forge::Bytes head(12);
    forge::Put(head, 2, Any(2) == 0 ? 0xBCEC : 0x7CEC, 2);
    if (Any(3) == 0) {
      const std::uint64_t count = 1 + Any(20);
      size = static_cast<std::uint16_t>((3 * count + 1) * pitch);
      forge::Put(head, pitch, 0x671, 4);
      forge::Put(head, 2, count, 2);
    } else {
      forge::Encode(static_cast<forge::Encoding>(Any(3)), id, head);
    }
    canvas_.Put(offset, head);
    blocks_.push_back({.bid = id, .offset = offset, .size = size});
    const std::uint64_t at = offset + size + Any(2) * Any(200);
    Zeros(offset + size, 300);
    const std::uint64_t slot = Any(3) == 0 ? at : (at + 15) / 16 * 16;
    const std::uint64_t trailer = format_ == Format::kAnsi && Any(4) != 0 ? slot + 4 : slot;
    canvas_.Number(trailer, size, 2);
    canvas_.Number(trailer + 2, forge::Signature(offset, id), 2);
    canvas_.Number(trailer + pitch, id, 4);
  }

  /// A slot that happens to fit a place before it; in the wide layouts by its id alone.
  void Slot() {
    const std::uint64_t slot = 18432 + Any((canvas_.bytes.size() - 18500) / 16) * 16;
    Zeros(slot - std::min<std::uint64_t>(slot, Any(2) == 0 ? 0 : Any(5000)), 1);
    std::uint64_t last = slot;
    while (last > 0 && canvas_.bytes[--last] == std::byte{0}) {
    }
    auto size = static_cast<std::uint32_t>(1 + Any(65511));
    if (format_ == Format::kAnsi) {
      const std::uint32_t id = Id();
      canvas_.Number(slot + 4, size, 2);
      canvas_.Number(slot + 6, forge::Signature((last - size + 15) / 16 * 16 + 16 * Any(3), id), 2);
      canvas_.Number(slot + 8, id, 4);
      return;
    }
    for (; size > 0; --size) {
      const std::uint64_t candidate = (last - size + 15) / 16 * 16;
      const auto folded = static_cast<std::uint16_t>(candidate ^ (candidate >> 16));
      if (folded != size) continue;
      canvas_.Number(slot + 8, size | Any(0x10000) << 16, 4);
      return;
    }
  }

  void Page() {
    const std::uint64_t grain = format_ == Format::kUnicode4k ? 4096 : 512;
    const std::uint64_t place = Any(canvas_.bytes.size() / grain - 8) * grain;
    std::vector<forge::BlockEntry> entries;
    for (std::uint64_t i = 0, n = 1 + Any(20); i < n; ++i) {
      if (Any(3) != 0) {
        entries.push_back(blocks_[Any(blocks_.size())]);
        continue;
      }
      entries.push_back({.bid = Id(),
                         .offset = 16 * Any(canvas_.bytes.size() / 16 + (Any(10) == 0 ? 1000 : 0)),
                         .size = static_cast<std::uint16_t>(Any(4000))});
    }
    auto page = forge::BlockPage(format_, entries);
    page.pageId = Id();
    if (Any(5) == 0) page.count = static_cast<std::uint16_t>(Any(256));
    if (Any(5) == 0) page.maxCount = 255;
    if (Any(8) == 0) page.signature = 1;
    canvas_.Page(format_, place, page);
  }

  Format format_;
  std::minstd_rand random_;
  Canvas canvas_;
  std::vector<forge::BlockEntry> blocks_;
};

class LiteralBlockScanTest : public RunTest, public testing::WithParamInterface<Format> {
 protected:
  /// The engine's scan has to give what the plain one gives, to the byte, whether or not the scan ahead of it has told
  /// which steps to leave out. Returns the records.
  std::vector<BlockRecord> Compare(const forge::Bytes& bytes, StoreKind kind, bool smart) {
    if (!smart) CompareOnce(bytes, kind, smart, true);
    return CompareOnce(bytes, kind, smart, false);
  }

  std::vector<BlockRecord> CompareOnce(const forge::Bytes& bytes, StoreKind kind, bool smart, bool leavesStepsOut) {
    Attach(bytes, GetParam());
    Found().storeKind = kind;
    run_.smartScan = smart;
    run_.runAborted = false;
    scan_.blockSteps = {};
    if (leavesStepsOut) ScanNodePages(scan_, run_);
    stepsLeftOut_ += static_cast<std::size_t>(std::ranges::count(scan_.blockSteps, false));
    Found().blockEncoding = CryptMethod::kNone;
    scan_.encodingUnknown = true;
    NodeList nodes;
    nodes.Insert({0x21, 8, 12, 0});
    scan_.referencedIds.Build(nodes);
    Found().orphans.assign(smart ? 1 : 0, {});
    ScanBlockPages(scan_, run_);

    const LiteralBlockScan plain(bytes, Found().layout, kind, smart, {8, 12});
    auto expected = plain.records;
    for (std::size_t at = 0; at < expected.size(); at += 4000) {
      const std::span chunk = std::span(expected).subspan(at, std::min<std::size_t>(4000, expected.size() - at));
      std::stable_sort(chunk.begin(), chunk.end(),
                       [](const BlockRecord& a, const BlockRecord& b) { return a.bid < b.bid; });
    }
    EXPECT_EQ(IndexFileRecords(), expected);
    EXPECT_EQ(Found().blockRecordCount, plain.recordCount);
    repeats_ += plain.repeats;
    EXPECT_EQ(Found().orphanBlockCount, plain.orphans.size());
    EXPECT_EQ(scan_.encodingUnknown, plain.encodingUnknown);
    EXPECT_EQ(static_cast<int>(Found().blockEncoding), plain.encoding);
    for (std::size_t i = 0; i < plain.orphans.size() && i < Found().orphans.size(); ++i) {
      EXPECT_EQ(Found().orphans[i].bidData, plain.orphans[i].bidData);
      EXPECT_EQ(Found().orphans[i].bidSub, plain.orphans[i].bidSub);
    }
    return expected;
  }

  std::size_t repeats_ = 0;
  std::size_t stepsLeftOut_ = 0;
};

TEST_P(LiteralBlockScanTest, TheScanFindsWhatThePlainScanFinds) {
  std::size_t records = 0, orphans = 0;
  for (std::uint32_t seed = 1; seed <= 6; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const Canvas rubble = Rubble(GetParam(), seed).Make(260'000);
    for (const bool smart : {false, true}) {
      Compare(rubble.bytes, seed % 2 == 0 ? StoreKind::kPst : StoreKind::kOst, smart);
      records += Found().blockRecordCount;
      orphans += Found().orphanBlockCount;
    }
  }
  // The rubble is worth something only if all routes are taken.
  EXPECT_GT(records, 250u);
  EXPECT_GT(orphans, 10u);
  EXPECT_GT(stepsLeftOut_, 20u);
  // In the wide layouts no id fits a block that begins before the file.
  if (GetParam() == Format::kAnsi) {
    EXPECT_GT(repeats_, 0u);
  }
}

TEST_P(LiteralBlockScanTest, TheScanFindsTheSameAcrossTheEndsOfItsWindows) {
  const Canvas rubble = Rubble(GetParam(), 99).Make(1'300'000);
  Compare(rubble.bytes, StoreKind::kPst, false);
  EXPECT_GT(stepsLeftOut_, 100u);
}

TEST_P(LiteralBlockScanTest, ARunOfZerosAcrossAWholeWindowIsLookedBackThrough) {
  Canvas canvas;
  canvas.bytes = forge::Noise(20'000, 1);
  canvas.bytes.resize(3'000'000);
  // A trailer at the far end: candidates all along the zeros, of which few fit.
  const std::uint64_t slot = 2'900'000 / 16 * 16;
  canvas.Number(slot + (GetParam() == Format::kAnsi ? 4 : 8), 300, 2);
  canvas.Number(slot + 8, 300 | 0x77 << 16, 4);
  EXPECT_GE(Compare(canvas.bytes, StoreKind::kPst, true).size(), 3u);
}

TEST_P(LiteralBlockScanTest, EachForgedStoreGivesTheSame) {
  for (const auto encoding : {forge::Encoding::kNone, forge::Encoding::kCyclic}) {
    forge::Mailbox box({.format = GetParam(), .encoding = encoding});
    const auto inbox = box.AddFolder({.name = u"Inbox"});
    for (int i = 0; i < 30; ++i) box.AddMessage(inbox, {.subject = u"A message", .plain = u"With a body"});
    auto image = box.Finish();
    for (const bool smart : {false, true}) {
      Compare(image.bytes, StoreKind::kPst, smart);
    }
    forge::WipeTrees(image);
    for (const bool smart : {false, true}) {
      Compare(image.bytes, StoreKind::kPst, smart);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Scan, LiteralBlockScanTest,
                         testing::Values(Format::kAnsi, Format::kUnicode, Format::kUnicode4k), FormatName);

}  // namespace
}  // namespace velmora::engine
