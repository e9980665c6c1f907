// Writes stores that were made to do harm: each is small, and each would take any amount of memory, disk or time
// from a reader that believes it. Without arguments it lists them.
//
//   velmora-forge-nasty NAME FILE [PERCENT of the full size]
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "forge/checksum.h"
#include "forge/mailbox.h"

namespace velmora::forge {
namespace {

/// A record and the text of its own allocation, or the value word as given.
struct Record {
  std::uint16_t id = 0;
  std::uint16_t type = kString;
  Bytes data = {};
  std::uint32_t value = 0;
};

Record Wide(std::uint16_t id, std::u16string_view text) { return {id, kString, ToUtf16(text)}; }
Record Value(std::uint16_t id, std::uint16_t type, std::uint32_t value) { return {id, type, {}, value}; }
constexpr std::uint32_t HidOf(std::uint32_t allocation) { return (allocation + 1) << 5; }

/// A property context in one block of up to 64 KiB, which no sound store has.
Bytes ContextBlock(const std::vector<Record>& records) {
  Bytes block(12);
  std::vector<std::size_t> places = {block.size()};
  const auto add = [&](const Bytes& allocation) {
    Append(block, allocation);
    places.push_back(block.size());
  };
  Bytes root;
  Append(root, 0x000602B5, 4);
  Append(root, HidOf(1), 4);
  add(root);
  Bytes array;
  std::uint32_t next = 2;
  for (const Record& record : records) {
    Append(array, record.id, 2);
    Append(array, record.type, 2);
    Append(array, record.data.empty() ? record.value : HidOf(next++), 4);
  }
  add(array);
  for (const Record& record : records) {
    if (!record.data.empty()) add(record.data);
  }
  Put(block, 0, block.size(), 2);
  Put(block, 2, 0xBCEC, 2);
  Put(block, 4, HidOf(0), 4);
  Append(block, places.size() - 1, 2);
  Append(block, 0, 2);
  for (const std::size_t place : places) Append(block, place, 2);
  return block;
}

Bytes SubnodeBlock(const std::vector<Subnode>& entries) {
  Bytes block;
  Append(block, 0x0002, 2);
  Append(block, entries.size(), 2);
  Append(block, 0, 4);
  for (const Subnode& entry : entries) {
    Append(block, entry.nid, 8);
    Append(block, entry.bidData, 8);
    Append(block, entry.bidSub, 8);
  }
  return block;
}

Bytes ChainBlock(const std::vector<Bid>& pieces) {
  Bytes block;
  Append(block, 0x0101, 2);
  Append(block, pieces.size(), 2);
  Append(block, 0, 4);
  for (const Bid bid : pieces) Append(block, bid, 8);
  return block;
}

constexpr Nid kInbox = 0x8082;
constexpr std::size_t kLongList = 2700;  ///< entries of a list in one block
constexpr std::size_t kLongChain = 8000;

Nid MessageNid(std::uint32_t i) { return 0x200024 + 32 * i; }

/// One store: an inbox, and whatever the case adds.
struct Case {
  Case(StoreOptions options, std::uint32_t thePercent) : box(options), store(box.store()), percent(thePercent) {
    box.AddFolder({.name = u"Inbox"});
  }

  Bid Mail(std::vector<Record> more = {}) {
    more.insert(more.begin(), Wide(0x001A, u"IPM.Note"));
    return store.AddBlock(ContextBlock(more));
  }

  /// A list for a message whose attachments are these.
  Bid List(std::vector<Subnode> attachments) {
    attachments.insert(attachments.begin(), {0x671, 0, 0});
    return store.AddInternalBlock(SubnodeBlock(attachments));
  }
  Bid ListOf(std::size_t count, Bid bidData, Bid bidSub) {
    std::vector<Subnode> entries;
    for (std::uint32_t i = 0; i < count; ++i) entries.push_back({0x8025 + 32 * i, bidData, bidSub});
    return List(entries);
  }
  /// An attachment's context that holds a message, and the list that leads to it.
  Bid Holder(std::u16string_view name = u"m") { return store.AddBlock(ContextBlock({Wide(0x3001, name)})); }
  Bid ListOfMessage(Bid bidData, Bid bidSub) {
    return store.AddInternalBlock(SubnodeBlock({{0x200024, bidData, bidSub}}));
  }

  /// Mails in the inbox that all name these blocks.
  void Mails(std::uint32_t count, Bid bidData, Bid bidSub) {
    for (std::uint32_t i = 0; i < Scaled(count); ++i) store.AddNode(MessageNid(i), bidData, bidSub, kInbox);
  }

  /// A number of nodes or levels, as it is asked for.
  std::uint32_t Scaled(std::uint32_t count) const { return std::max(count / 100 * percent, 1U); }

  Mailbox box;
  Store& store;
  std::uint32_t percent;
};

/// Blocks of folders with names of their own.
std::vector<Bid> FolderNames(Case& c, std::uint32_t count) {
  std::vector<Bid> blocks;
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::u16string name = {u'f', static_cast<char16_t>(0x4E00 + i)};
    blocks.push_back(c.store.AddBlock(ContextBlock({Wide(0x3001, name)})));
  }
  return blocks;
}

// Each folder lies in the one before it, and each has mails.
void FolderChain(Case& c) {
  const std::uint32_t folders = c.Scaled(100000);
  const std::vector<Bid> names = FolderNames(c, 50);
  const Bid mail = c.Mail();
  for (std::uint32_t i = 0; i < folders; ++i) {
    c.store.AddNode(0x10002 + 32 * i, names[i % names.size()], 0, i == 0 ? kTopFolder : 0x10002 + 32 * (i - 1));
    c.store.AddNode(MessageNid(0x20000 + i), mail, 0, 0x10002 + 32 * i);
  }
}

// The same, every child ahead of its parent.
void FolderChainBackwards(Case& c) {
  const std::uint32_t folders = c.Scaled(100000);
  const std::vector<Bid> names = FolderNames(c, 50);
  for (std::uint32_t i = 0; i < folders; ++i) {
    c.store.AddNode(0x10002 + 32 * i, names[i % names.size()], 0,
                    i + 1 == folders ? kTopFolder : 0x10002 + 32 * (i + 1));
  }
}

// As deep as folders go, with many mails at the bottom.
void MailsInTheDeepestFolder(Case& c) {
  constexpr std::uint32_t kFolders = 1000;
  const Bid folder = c.store.AddBlock(ContextBlock({Wide(0x3001, u"f")}));
  for (std::uint32_t i = 0; i < kFolders; ++i) {
    c.store.AddNode(0x10002 + 32 * i, folder, 0, i == 0 ? kTopFolder : 0x10002 + 32 * (i - 1));
  }
  const Bid mail = c.Mail();
  for (std::uint32_t i = 0; i < c.Scaled(50000); ++i) {
    c.store.AddNode(MessageNid(i), mail, 0, 0x10002 + 32 * (kFolders - 1 - i % 20));
  }
}

void FoldersOfOneLongName(Case& c) {
  const Bid folder = c.store.AddBlock(ContextBlock({Wide(0x3001, std::u16string(30000, u'x'))}));
  for (std::uint32_t i = 0; i < c.Scaled(100000); ++i) c.store.AddNode(0x10002 + 32 * i, folder, 0, kTopFolder);
}

void ManyFolders(Case& c) {
  const std::vector<Bid> names = FolderNames(c, 200);
  for (std::uint32_t i = 0; i < c.Scaled(200000); ++i) {
    c.store.AddNode(0x10002 + 32 * i, names[i % 200], 0, i < 200 ? kTopFolder : 0x10002 + 32 * (i / 200));
  }
}

void MailsOfOneLargeBlock(Case& c) { c.Mails(200000, c.Mail({{0x7000, kBinary, Bytes(60000)}}), 0); }

void RecordsOfOneText(Case& c) {
  std::vector<Record> records = {Wide(0x0E04, std::u16string(15000, u'x'))};
  for (std::uint16_t i = 0; i < 3500; ++i) records.push_back(Value(0x0E03, kString, HidOf(3)));
  c.Mails(20000, c.Mail(records), 0);
}

void ClassInEveryRecord(Case& c) {
  std::vector<Record> records;
  for (std::uint16_t i = 0; i < 7000; ++i) records.push_back(Value(0x001A, kString, HidOf(2)));
  c.Mails(20000, c.Mail(records), 0);
}

void ListsOfMissingAttachments(Case& c) { c.Mails(20000, c.Mail(), c.ListOf(kLongList, 0x7FFFFFF0, 0)); }

void NodesOfMissingBlocks(Case& c) { c.Mails(400000, 0x123450, 0x123454); }

void AttachmentsOfOneBlock(Case& c) {
  const Bid file =
      c.store.AddBlock(ContextBlock({{0x3701, kBinary, Bytes(50000)}, Wide(0x3704, u"a.bin"), Wide(0x3707, u"a.bin")}));
  c.Mails(2000, c.Mail(), c.ListOf(kLongList, file, 0));
}

// Half a gigabyte in every attachment.
void AttachmentsOfOneChain(Case& c) {
  const Bid piece = c.store.AddBlock(Bytes(60000));
  const Bid chain = c.store.AddInternalBlock(ChainBlock(std::vector<Bid>(kLongChain, piece)));
  const Bid file =
      c.store.AddBlock(ContextBlock({Value(0x3701, kBinary, 0xFFFFF), Wide(0x3704, u"a.bin"), Wide(0x3707, u"a.bin")}));
  c.Mails(2000, c.Mail(), c.ListOf(kLongList, file, chain));
}

// And in every body.
void BodiesOfOneChain(Case& c) {
  const Bid piece = c.store.AddBlock(ToBytes("<p>" + std::string(60000, 'x')));
  const Bid chain = c.store.AddInternalBlock(ChainBlock(std::vector<Bid>(kLongChain, piece)));
  const Bid list = c.store.AddInternalBlock(SubnodeBlock({{0x671, 0, 0}, {0x803F, chain, 0}}));
  c.Mails(2000, c.Mail({Value(0x1000, kString, 0x803F), Value(0x1013, kBinary, 0x803F)}), list);
}

// A list that names itself wherever a piece should be.
void ChainOfItself(Case& c) {
  const Bid chain = c.store.NextBid() | 2;
  c.store.AddInternalBlock(ChainBlock(std::vector<Bid>(kLongChain, chain)));
  const Bid file =
      c.store.AddBlock(ContextBlock({Value(0x3701, kBinary, 0xFFFFF), Wide(0x3704, u"a.bin"), Wide(0x3707, u"a.bin")}));
  c.Mails(2000, c.Mail({Value(0x1000, kString, 0x8025), Value(0x1013, kBinary, 0x8025)}),
          c.ListOf(kLongList, file, chain));
}

// A sub-node list that is its own sub-node, data and all.
void SubnodesOfThemselves(Case& c) {
  const Bid list = c.store.NextBid() | 2;
  c.ListOf(kLongList, list, list);
  c.Mails(2000, c.Mail({Value(0x1000, kString, 0x8025), Value(0x1013, kBinary, 0x8025)}), list);
  c.Mails(2000, list, list);
}

// Each message holds the next forty times over.
void MessagesInMessages(Case& c) {
  Bid bidData = c.Mail();
  Bid bidSub = 0;
  const Bid holder = c.Holder();
  for (int level = 0; level < 20; ++level) {
    bidSub = c.ListOf(40, holder, c.ListOfMessage(bidData, bidSub));
    bidData = c.Mail();
  }
  c.Mails(500, bidData, bidSub);
}

// One message within the other, as deep as blocks go.
void MessageChain(Case& c) {
  const Bid bidData = c.Mail();
  Bid bidSub = 0;
  const Bid holder = c.Holder();
  for (int level = 0; level < static_cast<int>(c.Scaled(100000)); ++level)
    bidSub = c.List({{0x8025, holder, c.ListOfMessage(bidData, bidSub)}});
  c.Mails(100, bidData, bidSub);
}

// Many large messages in one: all stay in memory until the outer one is done.
void LargeMessagesInOne(Case& c) {
  const Bid inner = c.Mail({Wide(0x0037, std::u16string(30000, u's'))});
  const Bid piece = c.store.AddBlock(ToBytes("<p>" + std::string(60000, 'x')));
  const Bid chain = c.store.AddInternalBlock(ChainBlock(std::vector<Bid>(200, piece)));
  const Bid withBody = c.Mail({Value(0x1000, kString, 0x803F), Value(0x1013, kBinary, 0x803F)});
  const Bid body = c.store.AddInternalBlock(SubnodeBlock({{0x671, 0, 0}, {0x803F, chain, 0}}));
  const Bid holder = c.Holder(std::u16string(30000, u'n'));
  c.Mails(20, c.Mail(), c.ListOf(kLongList, holder, c.ListOfMessage(inner, 0)));
  c.store.AddNode(MessageNid(100), c.Mail(), c.ListOf(kLongList, c.Holder(), c.ListOfMessage(withBody, body)), kInbox);
}

// The outer one has a body of megabytes, and is saved with each of those in it.
void LargeMessageOfMany(Case& c) {
  const Bid piece = c.store.AddBlock(ToBytes("<p>" + std::string(60000, 'x')));
  const Bid chain = c.store.AddInternalBlock(ChainBlock(std::vector<Bid>(250, piece)));
  const Bid list = c.ListOfMessage(c.Mail(), 0);
  const Bid holder = c.Holder();
  std::vector<Subnode> entries = {{0x803F, chain, 0}};
  for (std::uint32_t i = 0; i < kLongList - 2; ++i) entries.push_back({0x8025 + 32 * i, holder, list});
  c.Mails(20, c.Mail({Value(0x1000, kString, 0x803F), Value(0x1013, kBinary, 0x803F)}), c.List(entries));
}

Bytes Bomb(std::size_t size) {
  const Bytes zeros(size, std::byte{'x'});
  uLongf length = compressBound(zeros.size());
  Bytes packed(length);
  compress2(reinterpret_cast<Bytef*>(packed.data()), &length, reinterpret_cast<const Bytef*>(zeros.data()),
            zeros.size(), 9);
  packed.resize(length);
  return packed;
}

// In the 4K format: a few bytes that inflate to a thousand times their size, in every attachment, body and node.
void Bombs(Case& c) {
  const Bid bomb = c.store.AddBlock(Bomb(std::size_t{20} << 20), {.compressed = false});
  const Bid chain = c.store.AddInternalBlock(ChainBlock(std::vector<Bid>(kLongChain, bomb)));
  const Bid file =
      c.store.AddBlock(ContextBlock({Value(0x3701, kBinary, 0xFFFFF), Wide(0x3704, u"a.bin"), Wide(0x3707, u"a.bin")}));
  c.Mails(1000, c.Mail({Value(0x1000, kString, 0x8025), Value(0x1013, kBinary, 0x8025)}),
          c.ListOf(kLongList, file, chain));
  for (std::uint32_t i = 0; i < c.Scaled(100000); ++i) c.store.AddNode(MessageNid(10000 + i), bomb, chain, kInbox);
}

// Behind the store nothing but ends of blocks of one id, every 16 bytes another: what an index holds of a block has to
// be a few bytes. At any part of its size the test is over this one whole: it is the size that tells.
void TrailersOfOneId(Image& image) {
  constexpr std::uint64_t kSize = 80 << 20;
  constexpr std::uint64_t kSlot = 16;
  constexpr std::uint32_t kId = 0x1234;
  constexpr std::uint64_t kBlock = 50;  // bytes of data; with the trailer of 12 they end in the fourth slot
  constexpr std::uint64_t kData = 3 * kSlot;
  image.bytes.resize((image.bytes.size() + 63) / 64 * 64);
  image.bytes.reserve(image.bytes.size() + kSize);
  for (const std::uint64_t end = image.bytes.size() + kSize; image.bytes.size() < end;) {
    const std::uint64_t slot = image.bytes.size();
    Append(image.bytes, 0x11111111, 4);
    Append(image.bytes, kBlock | std::uint64_t{Signature(slot - kData, kId)} << 16, 4);
    Append(image.bytes, kId, 4);
    Append(image.bytes, 0xA5A5A5A5, 4);
  }
}

void NothingBelow(Case&) {}

struct Nasty {
  const char* name;
  void (*fill)(Case&);
  Format format = Format::kUnicode;
  Client client = Client::kPersonal;
  void (*append)(Image&) = nullptr;  ///< behind the finished store
};

constexpr std::array kNasties = {
    Nasty{"folder-chain", FolderChain},
    Nasty{"folder-chain-backwards", FolderChainBackwards},
    Nasty{"mails-in-the-deepest-folder", MailsInTheDeepestFolder},
    Nasty{"folders-of-one-long-name", FoldersOfOneLongName},
    Nasty{"many-folders", ManyFolders},
    Nasty{"mails-of-one-large-block", MailsOfOneLargeBlock},
    Nasty{"records-of-one-text", RecordsOfOneText},
    Nasty{"class-in-every-record", ClassInEveryRecord},
    Nasty{"lists-of-missing-attachments", ListsOfMissingAttachments},
    Nasty{"nodes-of-missing-blocks", NodesOfMissingBlocks},
    Nasty{"attachments-of-one-block", AttachmentsOfOneBlock},
    Nasty{"attachments-of-one-chain", AttachmentsOfOneChain},
    Nasty{"bodies-of-one-chain", BodiesOfOneChain},
    Nasty{"chain-of-itself", ChainOfItself},
    Nasty{"subnodes-of-themselves", SubnodesOfThemselves},
    Nasty{"messages-in-messages", MessagesInMessages},
    Nasty{"message-chain", MessageChain},
    Nasty{"large-messages-in-one", LargeMessagesInOne},
    Nasty{"large-message-of-many", LargeMessageOfMany},
    Nasty{"bombs", Bombs, Format::kUnicode4k, Client::kOffline},
    Nasty{"trailers-of-one-id", NothingBelow, Format::kAnsi, Client::kPersonal, TrailersOfOneId},
};

int Run(const char* name, const char* path, std::uint32_t percent) {
  for (const Nasty& nasty : kNasties) {
    if (std::strcmp(nasty.name, name) != 0) continue;
    Case c({.format = nasty.format, .client = nasty.client}, percent);
    nasty.fill(c);
    Image image = c.box.Finish();
    if (nasty.append != nullptr) nasty.append(image);
    image.Save(path);
    return 0;
  }
  return 64;
}

}  // namespace
}  // namespace velmora::forge

int main(int argc, char** argv) {
  using namespace velmora::forge;
  if (argc == 1) {
    for (const Nasty& nasty : kNasties) std::puts(nasty.name);
    return 0;
  }
  if (argc < 3) return 64;
  try {
    return Run(argv[1], argv[2], argc > 3 ? static_cast<std::uint32_t>(std::atoi(argv[3])) : 100);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "velmora-forge-nasty: %s\n", error.what());
    return 73;
  }
}
