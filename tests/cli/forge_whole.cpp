// Writes whole stores to a file, of any of the three formats: one with something of everything, and large ones that are
// written while they are made. Without arguments it lists them.
//
//   velmora-forge-whole NAME ansi|unicode|unicode4k FILE [PERCENT of the full size]
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>

#include "forge/forge.h"

namespace velmora::forge {
namespace {

struct Case {
  Mailbox& box;
  bool isOffline;
  std::uint32_t percent;

  Nid Top() const { return isOffline ? kOfflineTop : kTopFolder; }
  Nid Deleted() const { return isOffline ? kOfflineDeletedItems : kDeletedItems; }
  std::uint64_t Scaled(std::uint64_t count) const { return std::max<std::uint64_t>(count * percent / 100, 1); }
  bool IsAnsi() const { return box.store().options().format == Format::kAnsi; }
};

std::u16string Digits(std::uint64_t number) {
  const std::string digits = std::to_string(number);
  return {digits.begin(), digits.end()};
}

Message Mail(std::u16string subject) {
  return {.subject = std::move(subject),
          .plain = u"A body of one line\r\n",
          .senderName = u"Ana Sender",
          .senderAddress = u"ana@example.org",
          .recipients = {{u"Bo Receiver", u"bo@example.org"}},
          .submitted = TimeOf(2024, 2, 29, 12, 30, 1) + 1234567,
          .delivered = TimeOf(2024, 2, 29, 12, 31, 2) + 7654321};
}

Message Item(const char16_t* messageClass, std::u16string subject, PropertyList properties) {
  Message item = Mail(std::move(subject));
  item.messageClass = messageClass;
  item.recipients.clear();
  item.properties = std::move(properties);
  return item;
}

void AddMails(Case& c, Nid inbox) {
  Message full = Mail(u"Re: All of a mail");
  full.subjectPrefix = 4;
  full.html = ToBytes("<html><body><p>Html</p></body></html>");
  full.rtf = FormRtf("{\\rtf1\\ansi Rich}");
  full.recipients = {
      {u"Bo", u"bo@example.org"},
      {.name = u"Cy",
       .address = u"cy@example.org",
       .kind = RecipientKind::kCc,
       .properties = {Text(0x39FE, u"cy@example.org"), Int32(0x5FFF, 3), Time(0x5FFB, TimeOf(2024, 3, 1))}},
      {u"Di", u"di@example.org", RecipientKind::kBcc}};
  full.categories = {u"Red", u"Blue"};
  full.importance = 2;
  full.properties = {Int32(0x1090, 2),
                     Int32(0x1095, 6),
                     Int32(0x3FFD, 1252),
                     Int32(0x3FDE, 28591),
                     Named(PropertySet::kCommon, 0x8530, Text(0, u"Follow up")),
                     Named(PropertySet::kHeaders, u"x-mailer", Text(0, u"Some program")),
                     Named(PropertySet::kOwn, u"Own", Texts(0, {u"one", u"two"}))};
  const auto inner = [](const char16_t* subject, std::shared_ptr<const Message> below) {
    Message message = Mail(subject);
    if (below) message.attachments = {{.displayName = u"Below", .embedded = std::move(below)}};
    return std::make_shared<const Message>(std::move(message));
  };
  full.attachments = {
      {.name = u"file.bin", .mimeType = u"application/octet-stream", .data = Noise(300'000, 1)},
      {.name = u"picture.png", .contentId = u"p@example.org", .data = Noise(900, 2), .properties = {Int32(0x3714, 4)}},
      {.displayName = u"Inner", .embedded = inner(u"Inner", inner(u"Deeper", inner(u"Deepest", nullptr)))},
      {.name = u"object", .object = OleObject{Noise(40'000, 3), {Noise(700, 4), Noise(90'000, 5)}}},
      {.name = u"link", .properties = {Int32(0x3705, 7), Text(0x370D, u"https://example.org/file")}}};
  c.box.AddMessage(inbox, full);
  for (const std::uint32_t flags : {0U, 1U, 9U, 0x21U}) {
    Message message = Mail(u"Flags " + Digits(flags));
    message.flags = flags;
    c.box.AddMessage(inbox, message);
  }
  if (c.IsAnsi()) {
    for (const auto& [page, bytes] :
         {std::pair(932U, "\x93\xFA\x96\x7B"), std::pair(1251U, "\xD0\xF3\xF1"), std::pair(1253U, "\xC5\xEB"),
          std::pair(1255U, "\xF2\xE1"), std::pair(949U, "\xC7\xD1")}) {
      Message message = Mail(u"In a code page");
      message.properties = {Int32(0x3FFD, page), Text8(0x1000, bytes), Text8(0x0C1A, bytes)};
      c.box.AddMessage(inbox, message);
    }
  } else {
    c.box.AddMessage(inbox, Mail(u"\u65E5\u672C\u8A9E \u05E2\u05D1 \U0001F4E7"));
  }
  Message hidden = Mail(u"Rule");
  hidden.messageClass = u"IPM.Rule.Version2.Message";
  hidden.flags = 0x41;
  c.box.AddMessage(inbox, hidden, 0x100028);
}

void Everything(Case& c) {
  const auto folder = [&](const char16_t* name, const char16_t* folderClass) {
    return c.box.AddFolder({.name = name, .parent = c.Top(), .containerClass = folderClass});
  };
  const Nid inbox = c.isOffline ? kOfflineInbox : folder(u"Inbox", u"IPF.Note");
  AddMails(c, inbox);
  const Nid contacts = folder(u"Contacts", u"IPF.Contact");
  Message ana =
      Item(u"IPM.Contact", u"Ana",
           {Text(0x3001, u"Ana"), Text(0x3A06, u"Ana"), Named(PropertySet::kAddress, 0x8005, Text(0, u"Ana"))});
  ana.attachments = {{.name = u"ContactPicture.jpg", .data = Noise(3000, 6), .properties = {Bool(0x7FFF, true)}}};
  const Nid contact = c.box.AddMessage(contacts, ana).nid;
  c.box.AddMessage(contacts, Item(u"IPM.DistList", u"List",
                                  {Text(0x3001, u"List"), Named(PropertySet::kAddress, 0x8053, Text(0, u"List")),
                                   Named(PropertySet::kAddress, 0x8055, Binaries(0, {MemberEntryId(contact)})),
                                   Named(PropertySet::kAddress, 0x8054, Binaries(0, {Noise(60, 7)}))}));
  const Nid calendar = folder(u"Calendar", u"IPF.Appointment");
  Message weekly = Item(u"IPM.Appointment", u"Weekly",
                        {Named(PropertySet::kAppointment, 0x820D, Time(0, TimeOf(2024, 4, 1, 9))),
                         Named(PropertySet::kAppointment, 0x820E, Time(0, TimeOf(2024, 4, 1, 10))),
                         Named(PropertySet::kAppointment, 0x8223, Bool(0, true)),
                         Named(PropertySet::kAppointment, 0x8216, Binary(0, Noise(190, 8)))});
  weekly.attachments = {
      {.displayName = u"Later",
       .embedded = std::make_shared<const Message>(
           Item(u"IPM.Appointment", u"Later", {Named(PropertySet::kAppointment, 0x8228, Time(0, TimeOf(2024, 5, 6)))})),
       .properties = {Time(0x7FFB, TimeOf(2024, 5, 6, 9)), Time(0x7FFC, TimeOf(2024, 5, 6, 10)), Bool(0x7FFE, true)}}};
  c.box.AddMessage(calendar, weekly);
  c.box.AddMessage(folder(u"Tasks", u"IPF.Task"), Item(u"IPM.Task", u"Task",
                                                       {Named(PropertySet::kTask, 0x8101, Int32(0, 1)),
                                                        Named(PropertySet::kTask, 0x8102, Double(0, 0.25))}));
  c.box.AddMessage(folder(u"Notes", u"IPF.StickyNote"),
                   Item(u"IPM.StickyNote", u"Note", {Named(PropertySet::kNote, 0x8B00, Int32(0, 3))}));
  c.box.AddMessage(folder(u"Journal", u"IPF.Journal"),
                   Item(u"IPM.Activity", u"Call", {Named(PropertySet::kLog, 0x8700, Text(0, u"Phone call"))}));
  c.box.AddMessage(c.Deleted(), Mail(u"Deleted"));
  const Nid inner = c.box.AddFolder({.name = u"Inner", .parent = inbox});
  c.box.AddMessage(inner, Mail(u"In an inner folder"));
  c.box.AddFolder({.name = u"Empty", .parent = inner});
}

/// A value in the store, made piece by piece.
Bid AddNoise(Store& store, std::uint64_t size) {
  std::vector<Bid> pieces;
  for (std::uint64_t at = 0; at < size;) {
    const auto length = static_cast<std::size_t>(std::min<std::uint64_t>(store.traits().maxBlockData, size - at));
    pieces.push_back(store.AddBlock(Noise(length, static_cast<std::uint32_t>(pieces.size()))));
    at += length;
  }
  return pieces.size() == 1 ? pieces[0] : store.AddChain(pieces, size);
}

void LongProperty(Case& c) {
  Message message = Mail(u"Long property");
  message.properties = {Stored(0x6901, kBinary, AddNoise(c.box.store(), c.Scaled(200 << 20)))};
  c.box.AddMessage(c.box.AddFolder({.name = u"Long", .parent = c.Top()}), message);
}

void LargeAttachment(Case& c) {
  Message message = Mail(u"Large attachment");
  message.attachments = {
      {.name = u"large.bin", .properties = {Stored(0x3701, kBinary, AddNoise(c.box.store(), c.Scaled(1 << 30)))}}};
  c.box.AddMessage(c.box.AddFolder({.name = u"Large", .parent = c.Top()}), message);
}

void ManyMails(Case& c) {
  const Nid folder = c.box.AddFolder({.name = u"Many", .parent = c.Top()});
  // The row index of the ANSI format counts in two bytes.
  const std::uint64_t count = c.IsAnsi() ? c.Scaled(65'000) : c.Scaled(300'000);
  for (std::uint64_t i = 0; i < count; ++i) c.box.AddMessage(folder, Mail(u"Mail " + Digits(i)));
}

void ManyFolders(Case& c) {
  constexpr std::uint64_t kDeep = 300;
  Nid parent = c.Top();
  for (std::uint64_t i = 0; i < std::max(c.Scaled(50'000), kDeep); ++i) {
    parent = c.box.AddFolder({.name = u"f" + Digits(i), .parent = i % kDeep == 0 ? c.Top() : parent});
    if (i % 10 == 9) c.box.AddMessage(parent, Mail(u"In folder " + Digits(i)));
  }
}

void ManyFiles(Case& c) {
  const Nid folder = c.box.AddFolder({.name = u"Files", .parent = c.Top()});
  const std::uint64_t most = c.IsAnsi() ? std::uint64_t{1900} << 20 : std::uint64_t{8600} << 20;
  for (std::uint64_t i = 0; i < c.Scaled(most >> 23); ++i) {
    Message message = Mail(u"File " + Digits(i));
    message.attachments = {{.name = u"file.bin", .data = Noise(8 << 20, static_cast<std::uint32_t>(i))}};
    c.box.AddMessage(folder, message);
  }
}

struct Whole {
  const char* name;
  void (*fill)(Case&);
};

constexpr std::array kWholes = {
    Whole{"everything", Everything}, Whole{"long-property", LongProperty}, Whole{"large-attachment", LargeAttachment},
    Whole{"many-mails", ManyMails},  Whole{"many-folders", ManyFolders},   Whole{"many-files", ManyFiles}};

int Run(const char* name, const char* format, const char* path, std::uint32_t percent) {
  const auto* const whole =
      std::find_if(kWholes.begin(), kWholes.end(), [&](const Whole& one) { return std::strcmp(one.name, name) == 0; });
  if (whole == kWholes.end()) return 64;
  const bool isWide = std::strcmp(format, "unicode4k") == 0;
  const Format chosen = isWide                             ? Format::kUnicode4k
                        : std::strcmp(format, "ansi") == 0 ? Format::kAnsi
                                                           : Format::kUnicode;
  // Offline stores are compressed and not encoded: on the order of the two readers differ.
  Mailbox box(path,
              {.format = chosen,
               .encoding = isWide ? Encoding::kNone : Encoding::kPermute,
               .client = isWide ? Client::kOffline : Client::kPersonal,
               .compressed = isWide},
              {.tables = true, .offline = isWide});
  Case c{box, isWide, percent};
  whole->fill(c);
  box.Finish();
  return 0;
}

}  // namespace
}  // namespace velmora::forge

int main(int argc, char** argv) {
  using namespace velmora::forge;
  if (argc == 1) {
    for (const Whole& whole : kWholes) std::puts(whole.name);
    return 0;
  }
  if (argc < 4) return 64;
  try {
    return Run(argv[1], argv[2], argv[3], argc > 4 ? static_cast<std::uint32_t>(std::atoi(argv[4])) : 100);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "velmora-forge-whole: %s\n", error.what());
    return 73;
  }
}
