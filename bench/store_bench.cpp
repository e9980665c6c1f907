// How fast items go into a new store through the output operations.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "platform/path_text.h"
#include "store/messaging/pst_library.h"

namespace velmora {
namespace {

using output::Field;
using output::OleDate;

class Content : public output::ContentSource {
 public:
  explicit Content(std::size_t size) : bytes_(size, std::byte{'x'}) {}
  std::uint64_t Size() const override { return bytes_.size(); }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    if (offset >= bytes_.size()) return 0;
    const std::size_t length = std::min<std::size_t>(out.size(), bytes_.size() - offset);
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(offset), length, out.begin());
    return length;
  }

 private:
  std::vector<std::byte> bytes_;
};

/// A mail as a conversion writes one.
void SaveMail(output::RDOItems& items, int number, std::size_t bodySize, const Content* attachment) {
  const auto item = items.Add(u"IPM.Note");
  item->Put(Field::Sent, true);
  item->Put(Field::Subject, u"Re: Quarterly plan " + text::FromUtf8(std::to_string(number)));
  item->Put(Field::SentOnBehalfOfName, text::Text(u"Ann Lee"));
  item->Put(Field::SenderName, text::Text(u"Ann Lee"));
  item->Put(Field::To, text::Text(u"Bob Miller <bob@example.org>; Carol"));
  item->Put(Field::ReceivedTime, OleDate{45000.0 + number / 1000.0});
  item->Put(Field::SentOn, OleDate{45000.0 + number / 1000.0});
  item->Put(Field::UnRead, false);
  item->Put(Field::Body, text::Text(bodySize, u'b'));
  if (attachment != nullptr) item->Attachments()->Add(*attachment, u"report.pdf");
  item->Save();
}

void SaveMails(benchmark::State& state, std::size_t bodySize, std::size_t attachmentSize) {
  const auto count = static_cast<int>(state.range(0));
  const std::filesystem::path path = std::filesystem::temp_directory_path() / "velmora-store-bench.pst";
  const Content content(attachmentSize);
  for (auto _ : state) {
    std::filesystem::remove(path);
    messaging::PstLibrary library({.configFolder = {}});
    const auto session = library.CreateRDOSession();
    const auto top = session->Stores()->AddPSTStore(platform::TextOfPath(path), u"Bench")->IPMRootFolder();
    const auto items = top->Folders()->Add(u"Inbox", output::FolderType())->Items();
    for (int i = 0; i < count; ++i) SaveMail(*items, i, bodySize, attachmentSize != 0 ? &content : nullptr);
    if (!library.Seal()) state.SkipWithError("the store cannot be sealed");
  }
  state.SetItemsProcessed(state.iterations() * count);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(std::filesystem::file_size(path)));
  std::filesystem::remove(path);
}

void SmallMails(benchmark::State& state) { SaveMails(state, 400, 0); }
BENCHMARK(SmallMails)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

void MailsWithAttachments(benchmark::State& state) { SaveMails(state, 4000, 200000); }
BENCHMARK(MailsWithAttachments)->Arg(1000)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

}  // namespace
}  // namespace velmora
