#include "damage/aged_mailbox.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "forge/mailbox.h"

namespace velmora::damage {
namespace {

using forge::Bid;
using forge::Message;
using forge::Nid;
using forge::NodeEntry;
using forge::Place;

constexpr int kMessages = 40;
constexpr int kHalf = kMessages / 2;
constexpr std::size_t kEntriesPerPage = 8;  // trees of three levels
constexpr Nid kFirstMessage = 0x200024;
constexpr Nid kStep = 0x20;
constexpr std::uint64_t kHour = 36'000'000'000;

std::u16string Digits(int number) {
  const std::string digits = std::to_string(number);
  return {digits.begin(), digits.end()};
}

Message Mail(std::u16string subject, int number) {
  Message mail = {.subject = std::move(subject),
                  .plain = u"The body of number " + Digits(number),
                  .senderName = u"Ana Sender",
                  .senderAddress = u"ana@example.org",
                  .submitted = forge::TimeOf(2022, 3, 1, 8) + static_cast<std::uint64_t>(number) * 600'000'000,
                  .delivered = forge::TimeOf(2022, 3, 1, 9) + static_cast<std::uint64_t>(number) * 600'000'000,
                  .properties = {forge::Binary(0x300B, forge::Noise(16, 1000U + static_cast<std::uint32_t>(number)))}};
  // Large values are numbered through the whole store.
  mail.context.firstValueNid = 0x10001F + static_cast<Nid>(number) * 0x400;
  return mail;
}

std::u16string LongText(int number) {
  std::u16string text;
  for (int line = 0; line < 400; ++line) text += u"Line " + Digits(line) + u" of number " + Digits(number) + u"\r\n";
  return text;
}

/// Five shapes in turn: nothing besides properties, HTML and recipients, files, messages within, a long text.
Message MessageOf(int number) {
  const auto seed = static_cast<std::uint32_t>(number);
  Message mail = Mail(u"Message " + Digits(number), number);
  switch (number % 5) {
    case 1:
      mail.html = forge::ToBytes("<html><body>Html " + std::to_string(number) + "</body></html>");
      mail.htmlPlace = Place::kBlock;
      mail.recipients = {{u"Bo", u"bo@example.org"}, {u"Cy", u"cy@example.org", forge::RecipientKind::kCc}};
      break;
    case 2:
      mail.attachments = {{.name = u"chain.bin", .data = forge::Noise(20'000, seed), .place = Place::kChain},
                          {.name = u"small.bin", .data = forge::Noise(300, seed), .place = Place::kHeap}};
      break;
    case 3: {
      Message inner = Mail(u"Inner of " + Digits(number), number + kMessages);
      inner.attachments = {{.name = u"inner.bin", .data = forge::Noise(3'000, seed), .place = Place::kBlock}};
      Message outer = Mail(u"Outer of " + Digits(number), number + 2 * kMessages);
      outer.attachments = {{.displayName = u"Inner", .embedded = std::make_shared<const Message>(std::move(inner))}};
      mail.recipients = {{u"Di", u"di@example.org"}};
      mail.attachments = {{.displayName = u"Outer", .embedded = std::make_shared<const Message>(std::move(outer))}};
      break;
    }
    case 4:
      mail.plain = LongText(number);
      mail.plainPlace = Place::kChain;
      break;
    default:
      break;
  }
  return mail;
}

// A copy of the trees of a time, as leaves with a root above, where the live trees no longer use it.
template <class Entry, class Key>
void AddOldTree(forge::Store& store, forge::PageType type, std::vector<Entry> entries, Key key) {
  const forge::Format format = store.options().format;
  std::ranges::sort(entries, {}, key);
  forge::Bytes branches;
  for (std::size_t at = 0; at < entries.size(); at += kEntriesPerPage) {
    forge::Bytes leaf;
    for (std::size_t i = at; i < std::min(at + kEntriesPerPage, entries.size()); ++i) {
      forge::Append(leaf, forge::FormEntry(format, entries[i]));
    }
    const forge::PlacedPage page = store.AddPage({.type = type, .entries = std::move(leaf)});
    forge::Append(branches, forge::FormEntry(
                                format, forge::BranchEntry{std::invoke(key, entries[at]), page.pageId, page.offset}));
  }
  store.AddPage({.type = type, .entries = std::move(branches), .level = 1});
}

/// The store; of its blocks, if they are known, old pages tell as well.
AgedMailbox Forge(forge::Format format, forge::Encoding encoding, const std::vector<forge::PlacedBlock>& known) {
  forge::Mailbox box({.format = format,
                      .encoding = encoding,
                      .compressed = format == forge::Format::kUnicode4k,
                      .entriesPerPage = kEntriesPerPage},
                     {.tables = true});
  forge::Store& store = box.store();
  const Nid inbox = box.AddFolder({.name = u"Inbox"});
  const Nid projects = box.AddFolder({.name = u"Projects"});
  const std::vector<Nid> folders = {inbox,
                                    box.AddFolder({.name = u"2023", .parent = inbox}),
                                    projects,
                                    box.AddFolder({.name = u"2023", .parent = projects}),
                                    box.AddFolder({.name = u"2024", .parent = projects}),
                                    box.AddFolder({.name = u"Sent Items"}),
                                    forge::kDeletedItems};
  box.AddFolder({.name = u"Empty", .parent = projects});

  AgedMailbox made;
  std::vector<NodeEntry> old;
  Nid next = kFirstMessage;
  for (int number = 0; number < kMessages; ++number, next += kStep) {
    const Nid folder = folders[static_cast<std::size_t>(number) % folders.size()];
    if (number < kHalf && number % 6 == 1) {  // a message that was deleted, node and all
      const auto deleted = WriteMessage(store, box.names(), Mail(u"Deleted " + Digits(number), 200 + number));
      old.push_back({next, deleted.bidData, deleted.bidSub, folder});
      next += kStep;
    }
    Message message = MessageOf(number);
    if (number >= kHalf && number % 6 == 2) {  // an older state of one that is still there
      Message before = message;
      before.importance = 2;
      const auto written = WriteMessage(store, box.names(), before);
      old.push_back({next, written.bidData, written.bidSub, folder});
      message.properties.push_back(forge::Time(0x3008, *message.delivered + kHour));
    }
    const std::uint64_t begin = store.End();
    const auto added = box.AddMessage(folder, message, next);
    made.messages.push_back({added.nid, begin, store.End()});
    if (number < kHalf) old.push_back({added.nid, added.bidData, added.bidSub, folder});
    if (number + 6 == kMessages) {
      AddOldTree(store, forge::PageType::kNodes, old, &NodeEntry::nid);
      std::vector<forge::BlockEntry> blocks;
      for (const forge::PlacedBlock& block : known) {
        if (block.offset >= store.End()) break;
        blocks.push_back({block.bid, block.offset, block.size, block.refs, block.inflatedSize});
      }
      if (!blocks.empty()) AddOldTree(store, forge::PageType::kBlocks, blocks, &forge::BlockEntry::bid);
    }
  }
  made.image = box.Finish();
  return made;
}

}  // namespace

AgedMailbox ForgeAgedMailbox(forge::Format format, forge::Encoding encoding) {
  // Blocks ahead of the old pages stand at the same places whether these are there or not.
  const AgedMailbox first = Forge(format, encoding, {});
  return Forge(format, encoding, first.image.blocks);
}

}  // namespace velmora::damage
