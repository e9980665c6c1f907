#include "forge/demo_store.h"

#include "forge/demo_items.h"
#include "forge/mailbox.h"

namespace velmora::forge {
namespace {

// Small pages make trees of several levels out of a small store.
constexpr StoreOptions kStore = {.format = Format::kUnicode,
                                 .encoding = Encoding::kPermute,
                                 .client = Client::kOffline,
                                 .fullLength = true,
                                 .entriesPerPage = 12};

void AddAll(Mailbox& box, Nid folder, const std::vector<Message>& messages) {
  for (const Message& message : messages) box.AddMessage(folder, message);
}

void AddContent(Mailbox& box) {
  const Nid inbox = box.AddFolder({.name = u"Inbox", .containerClass = u"IPF.Note"});
  const Nid sent = box.AddFolder({.name = u"Sent Items", .containerClass = u"IPF.Note"});
  const Nid projects = box.AddFolder({.name = u"Projekte", .parent = inbox, .containerClass = u"IPF.Note"});
  const Nid year = box.AddFolder({.name = u"Übersicht 2021", .parent = projects});
  const Nid cyrillic = box.AddFolder({.name = u"Проекты", .parent = year});
  const Nid japanese = box.AddFolder({.name = u"議事録", .parent = year});
  const Nid arabic = box.AddFolder({.name = u"رسائل", .parent = projects});
  const Nid contacts = box.AddFolder({.name = u"Contacts", .containerClass = u"IPF.Contact"});
  const Nid calendar = box.AddFolder({.name = u"Calendar", .containerClass = u"IPF.Appointment"});
  const Nid tasks = box.AddFolder({.name = u"Tasks", .containerClass = u"IPF.Task"});
  const Nid journal = box.AddFolder({.name = u"Journal", .containerClass = u"IPF.Journal"});
  const Nid notes = box.AddFolder({.name = u"Notes", .containerClass = u"IPF.StickyNote"});

  AddAll(box, inbox, DemoInbox());
  AddAll(box, sent, DemoSent());
  AddAll(box, cyrillic, {DemoMail(u"Смета на июнь", u"Добрый день, смета во вложении.")});
  AddAll(box, japanese, {DemoMail(u"打ち合わせの議事録", u"本日の議事録をお送りします。")});
  AddAll(box, arabic, {DemoMail(u"اجتماع الغد", u"نلتقي غدا في العاشرة.")});
  AddAll(box, contacts, DemoContacts());
  AddAll(box, calendar, DemoAppointments());
  AddAll(box, tasks, DemoTasks());
  AddAll(box, journal, DemoJournal());
  AddAll(box, notes, DemoNotes());
}

// A message whose node has been lost: its blocks are still there.
void AddLostMessage(Mailbox& box) {
  WriteMessage(box.store(), box.names(), DemoMail(u"No node names this message", u"Its blocks were still there."));
}

void Damage(Image& image) {
  // The header keeps its first bytes alone: no root, no size, no checksum that fits.
  Fill(image, 0x10, TraitsOf(image.format).firstMap - 0x10);
  for (const PageType type : {PageType::kNodes, PageType::kBlocks}) {
    const auto pages = image.TreePages(type);
    for (const PlacedPage& page : pages) {
      if (page.level > 0) Fill(image, page.offset, TraitsOf(image.format).pageSize);
    }
  }
  // A leaf of the node tree that no longer proves itself, and one of the block tree of which only an older
  // copy further back is left.
  const PlacedPage nodes = image.TreePages(PageType::kNodes).front();
  BreakSignature(image, nodes);
  const PlacedPage blocks = image.TreePages(PageType::kBlocks).front();
  const std::uint64_t copyAt = image.TreePages(PageType::kNodes).back().offset + TraitsOf(image.format).pageSize;
  const auto old = std::span(image.bytes).subspan(blocks.offset, TraitsOf(image.format).entryAreaSize);
  PageSpec copy{.type = PageType::kBlocks, .entries = Bytes(old.begin(), old.end())};
  copy.count = static_cast<std::uint16_t>(kStore.entriesPerPage);
  Patch(image, copyAt, FormPage(image.format, copy, copyAt, blocks.pageId));
  Fill(image, blocks.offset, TraitsOf(image.format).pageSize);
}

}  // namespace

Image ForgeDemoStore(DemoState state) {
  // So many names that their list is a sub-node of the map, where the run finds it in an encoded store too.
  Mailbox box(kStore, {.tables = true, .namesAtLeast = 200});
  AddContent(box);
  AddLostMessage(box);
  Image image = box.Finish();
  if (state == DemoState::kDamaged) Damage(image);
  return image;
}

const std::map<std::string, int>& DemoItems() {
  static const std::map<std::string, int> items = {{"IPM.Note", 10},       {"IPM.Schedule.Meeting.Request", 1},
                                                   {"IPM.Contact", 2},     {"IPM.DistList", 1},
                                                   {"IPM.Appointment", 2}, {"IPM.Task", 2},
                                                   {"IPM.Activity", 1},    {"IPM.StickyNote", 2}};
  return items;
}

}  // namespace velmora::forge
