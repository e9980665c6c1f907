// Stores whose blocks hold anything at all, opened and read through the operations.
#include <fstream>
#include <random>

#include "forge/mailbox.h"
#include "platform/memory_file.h"
#include "platform/path_text.h"
#include "store/format/checksum.h"
#include "store/messaging/opened_store.h"
#include "store/messaging/store_fixture.h"

namespace velmora::messaging {
namespace {

using output::Field;
using output::FieldInfo;
using output::RDOFolder;
using output::RDOMail;
using output::Ref;
using text::Text;

constexpr std::size_t kSlot = 64;
constexpr std::size_t kTrailer = 16;

std::uint32_t U32(const std::string& bytes, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i) value |= std::uint32_t{static_cast<unsigned char>(bytes[at + i])} << (8 * i);
  return value;
}

std::uint32_t CrcOf(const std::string& bytes, std::size_t start, std::size_t size) {
  return WeakCrc(std::as_bytes(std::span(bytes)).subspan(start, size));
}

struct Block {
  std::size_t start = 0;
  std::size_t size = 0;
  std::size_t crcAt = 0;
};

/// The blocks of a store's file, found by their trailers.
std::vector<Block> BlocksOf(const std::string& file) {
  std::vector<Block> blocks;
  for (std::size_t end = 0x4800 + kSlot; end <= file.size(); end += kSlot) {
    const std::size_t size = U32(file, end - kTrailer) & 0xFFFF;
    const std::size_t span = (size + kTrailer + kSlot - 1) / kSlot * kSlot;
    if (size == 0 || size > 8176 || span > end) continue;
    if (CrcOf(file, end - span, size) == U32(file, end - kTrailer + 4))
      blocks.push_back({end - span, size, end - kTrailer + 4});
  }
  return blocks;
}

/// Reads all that the panes could; how much there was.
std::size_t ReadAll(const Ref<RDOFolder>& folder, int depth) {
  std::size_t found = folder->Name().size() + folder->ContainerClass().size();
  const auto items = folder->Items();
  int count = 0;
  for (bool first = true; count < 1000; first = false, ++count) {
    Ref<RDOMail> item;
    try {
      item = first ? items->GetFirst() : items->GetNext();
    } catch (const output::OutputFailure&) {
      continue;
    }
    if (!item) break;
    for (const FieldInfo& info : output::kFields) {
      if (item->Answers(info.interface)) found += item->Get(info.field).written;
    }
    found += static_cast<std::size_t>(item->AttachmentCount() + item->Size() > 0);
  }
  EXPECT_LT(count, 1000);
  EXPECT_LT(depth, 50);
  for (std::int32_t i = 0; i < folder->Folders()->Count(); ++i) found += ReadAll(folder->Folders()->At(i), depth + 1);
  return found;
}

class DamagedStore : public StoreTest {};

TEST_F(DamagedStore, IsReadWithinBoundsWhateverItsBlocksHold) {
  inbox_->Folders()->Add(u"Below", Text(u"IPF.Note"))->Folders()->Add(u"Deeper", Text(u"IPF.Note"));
  for (const text::TextView messageClass : {u"IPM.Note", u"IPM.Contact", u"IPM.Task", u"IPM.StickyNote"}) {
    const auto item = NewItem(messageClass);
    Put(item, Field::Subject, Text(u"Re: Plan"));
    Put(item, Field::HTMLBody, Text(3000, u'h'));
    Put(item, Field::RTFBody, Text(u"{\\rtf1 text}"));
    Put(item, Field::Categories, Text(u"Red; Green"));
    Put(item, Field::To, Text(u"Ann; Bob"));
    item->Attachments()->Add(TextContent(PatternOf(3000)), u"a.bin");
    item->Save();
  }
  Close();
  const std::string sound = forge::TextOf(path_);
  const std::vector<Block> blocks = BlocksOf(sound);
  ASSERT_GT(blocks.size(), 40u);
  std::mt19937 random(3);
  int opened = 0;
  std::size_t found = 0;
  for (int round = 0; round < 400; ++round) {
    std::string file = sound;
    for (int damage = 0; damage < 4; ++damage) {
      const Block& block = blocks[random() % blocks.size()];
      for (int change = 0; change < 6; ++change)
        file[block.start + random() % block.size] = static_cast<char>(random());
      const std::uint32_t crc = CrcOf(file, block.start, block.size);
      for (std::size_t i = 0; i < 4; ++i) file[block.crcAt + i] = static_cast<char>(crc >> (8 * i));
    }
    const auto damaged = folder_.path() / "damaged.pst";
    std::ofstream(damaged, std::ios::binary) << file;
    const auto session = library_->CreateRDOSession();
    try {
      const auto top = session->Stores()->OpenPSTStore(platform::TextOfPath(damaged))->IPMRootFolder();
      ++opened;
      found += ReadAll(top, 0);
    } catch (const output::OutputFailure& failure) {
      EXPECT_EQ(failure.Code(), output::ResultCode::STG_E_READFAULT);
    }
  }
  EXPECT_GT(opened, 200) << "most damage does not touch what opening needs";
  EXPECT_GT(found, 10000u);
}

TEST(StoreOfAnotherFormat, IsRefusedByTheOperations) {
  for (const auto format : {forge::Format::kAnsi, forge::Format::kUnicode, forge::Format::kUnicode4k}) {
    const forge::Image image = forge::Mailbox({.format = format}, {.tables = true}).Finish();
    const auto code =
        CodeOf([&] { static_cast<void>(OpenedStore::Open(std::make_unique<platform::MemoryFile>(image.bytes))); });
    const auto expected =
        format == forge::Format::kUnicode ? output::ResultCode::S_OK : output::ResultCode::STG_E_READFAULT;
    EXPECT_EQ(code, expected) << static_cast<int>(format);
  }
}

}  // namespace
}  // namespace velmora::messaging
