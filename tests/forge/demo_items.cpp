#include "forge/demo_items.h"

#include "forge/rtf.h"

namespace velmora::forge {
namespace {

constexpr std::uint32_t kUnread = 0;
const Recipient kVera = {u"Vera Lindqvist", u"vera@fjord.example"};
const Recipient kTomas = {u"Tomás Ibarra", u"tomas@ibarra.example"};
const Recipient kArchive = {u"Archive", u"archive@fjord.example", RecipientKind::kBcc};

Recipient Copy(Recipient recipient) {
  recipient.kind = RecipientKind::kCc;
  return recipient;
}

std::u16string LongText() {
  std::u16string text;
  for (int i = 1; i <= 400; ++i) {
    const std::string number = std::to_string(i);
    text += u"Paragraph " + std::u16string(number.begin(), number.end()) +
            u": the boats were counted at dawn, the nets at noon, and the figures sent by evening.\r\n";
  }
  return text;
}

Message HtmlMail() {
  Message mail = DemoMail(u"Fahrplan für den Sommer", u"Der Fahrplan steht.");
  mail.html = ToBytes(
      "<html><head><meta http-equiv=\"Content-Type\" content=\"text/html; charset=utf-8\"></head><body>"
      "<p>Der <b>Fahrplan</b> f\xC3\xBCr den Sommer steht: t\xC3\xA4glich au\xC3\x9F"
      "er Sonntag.</p></body></html>");
  mail.htmlPlace = Place::kBlock;
  mail.recipients = {kTomas, Copy(kVera), kArchive};
  mail.importance = 2;
  mail.categories = {u"Boats", u"Red Category"};
  mail.properties = {Int32(0x1090, 2),
                     Int32(0x1095, 6),
                     Int32(0x3FDE, 65001),
                     Named(PropertySet::kCommon, 0x8530, Text(0, u"Follow up")),
                     Named(PropertySet::kCommon, 0x8503, Bool(0, true)),
                     Named(PropertySet::kCommon, 0x8502, Time(0, TimeOf(2021, 6, 1, 9)))};
  mail.flags = kUnread;
  return mail;
}

Message MailWithFiles() {
  Message mail = DemoMail(u"Re: Drawings", u"One small file, one of a single block, one of many.");
  mail.subjectPrefix = 4;
  mail.attachments = {
      {.name = u"note.txt", .mimeType = u"text/plain", .data = ToBytes("Mind the tide.\r\n"), .place = Place::kHeap},
      {.name = u"sketch.bin", .data = Noise(6000, 11), .place = Place::kBlock},
      {.name = u"Zeichnung größer.bin",
       .shortName = u"ZEICHN~1.BIN",
       .data = Noise(50000, 12),
       .place = Place::kChain}};
  return mail;
}

Message RtfMail() {
  Message mail = DemoMail(u"Rich text", u"");
  mail.plain.reset();
  mail.rtf = FormRtf("{\\rtf1\\ansi\\ansicpg1252\\pard This line is {\\b bold} and this one is not.\\par}\r\n");
  mail.sensitivity = 2;
  return mail;
}

Message MailWithMessage() {
  auto inner = std::make_shared<Message>(DemoMail(u"The message inside", u"It has a file of its own."));
  inner->attachments = {{.name = u"inside.txt", .data = ToBytes("Found."), .place = Place::kBlock}};
  Message mail = DemoMail(u"Fwd: The message inside", u"See the attached message.");
  mail.subjectPrefix = 5;
  mail.attachments = {{.displayName = u"The message inside", .embedded = inner}};
  return mail;
}

Message LongMail() {
  Message mail = DemoMail(u"A long report", LongText());
  mail.plainPlace = Place::kChain;
  return mail;
}

Message MeetingRequest() {
  Message request = DemoMail(u"Harbour meeting", u"Please confirm.");
  request.messageClass = u"IPM.Schedule.Meeting.Request";
  request.properties = {Bool(0x0063, true),
                        Time(0x0060, TimeOf(2021, 7, 5, 8)),
                        Time(0x0061, TimeOf(2021, 7, 5, 9)),
                        Named(PropertySet::kAppointment, 0x8208, Text(0, u"Pier 4")),
                        Named(PropertySet::kAppointment, 0x820D, Time(0, TimeOf(2021, 7, 5, 8))),
                        Named(PropertySet::kAppointment, 0x820E, Time(0, TimeOf(2021, 7, 5, 9))),
                        Named(PropertySet::kAppointment, 0x8213, Int32(0, 60)),
                        Named(PropertySet::kAppointment, 0x8205, Int32(0, 1))};
  return request;
}

Message Contact(const std::u16string& first, const std::u16string& last, const std::u16string& address) {
  const std::u16string full = first + u" " + last;
  return {.messageClass = u"IPM.Contact",
          .subject = full,
          .delivered = TimeOf(2021, 2, 3, 10),
          .properties = {Text(0x3001, full), Text(0x3A06, first), Text(0x3A11, last), Text(0x3A16, u"Fjord Ferries"),
                         Text(0x3A08, u"+47 55 010 203"), Text(0x3A1C, u"+47 90 010 203"), Text(0x3A27, u"Bergen"),
                         Text(0x3A29, u"Pier 4"), Text(0x3A2A, u"5003"), Text(0x3A26, u"Norway"),
                         Time(0x3A42, TimeOf(1974, 3, 9)),
                         Named(PropertySet::kAddress, 0x8005, Text(0, last + u", " + first)),
                         Named(PropertySet::kAddress, 0x8080, Text(0, full)),
                         Named(PropertySet::kAddress, 0x8082, Text(0, u"SMTP")),
                         Named(PropertySet::kAddress, 0x8083, Text(0, address)),
                         Named(PropertySet::kAddress, 0x8084, Text(0, address))}};
}

Message Appointment(const std::u16string& subject, FileTime start, std::uint32_t minutes, bool allDay) {
  const FileTime end = start + std::uint64_t{minutes} * 60 * 10'000'000;
  return {.messageClass = u"IPM.Appointment",
          .subject = subject,
          .plain = u"Bring the logbook.",
          .delivered = TimeOf(2021, 2, 4, 10),
          .properties = {Time(0x0060, start), Time(0x0061, end), Named(PropertySet::kAppointment, 0x8205, Int32(0, 2)),
                         Named(PropertySet::kAppointment, 0x8208, Text(0, u"Room Nordlys")),
                         Named(PropertySet::kAppointment, 0x820D, Time(0, start)),
                         Named(PropertySet::kAppointment, 0x820E, Time(0, end)),
                         Named(PropertySet::kAppointment, 0x8213, Int32(0, minutes)),
                         Named(PropertySet::kAppointment, 0x8215, Bool(0, allDay)),
                         Named(PropertySet::kCommon, 0x8501, Int32(0, 15)),
                         Named(PropertySet::kCommon, 0x8503, Bool(0, !allDay))}};
}

Message Task(const std::u16string& subject, bool complete) {
  return {.messageClass = u"IPM.Task",
          .subject = subject,
          .plain = u"Ask the yard first.",
          .delivered = TimeOf(2021, 2, 5, 10),
          .properties = {Named(PropertySet::kTask, 0x8101, Int32(0, complete ? 2 : 1)),
                         Named(PropertySet::kTask, 0x8102, Double(0, complete ? 1.0 : 0.25)),
                         Named(PropertySet::kTask, 0x8104, Time(0, TimeOf(2021, 3, 1))),
                         Named(PropertySet::kTask, 0x8105, Time(0, TimeOf(2021, 3, 31))),
                         Named(PropertySet::kTask, 0x811C, Bool(0, complete)),
                         Named(PropertySet::kTask, 0x811F, Text(0, u"Vera Lindqvist"))}};
}

Message Note(const std::u16string& text, std::uint32_t colour) {
  return {
      .messageClass = u"IPM.StickyNote",
      .subject = text,
      .plain = text,
      .delivered = TimeOf(2021, 2, 6, 10),
      .properties = {Int32(0x1080, 0x300 + colour), Named(PropertySet::kNote, 0x8B00, Int32(0, colour)),
                     Named(PropertySet::kNote, 0x8B02, Int32(0, 200)), Named(PropertySet::kNote, 0x8B03, Int32(0, 166)),
                     Named(PropertySet::kNote, 0x8B04, Int32(0, 80)), Named(PropertySet::kNote, 0x8B05, Int32(0, 80))}};
}

}  // namespace

Message DemoMail(std::u16string_view subject, std::u16string_view body) {
  return {.subject = std::u16string(subject),
          .plain = std::u16string(body),
          .senderName = kVera.name,
          .senderAddress = kVera.address,
          .recipients = {kTomas},
          .submitted = TimeOf(2021, 2, 2, 7, 30),
          .delivered = TimeOf(2021, 2, 2, 7, 31)};
}

std::vector<Message> DemoInbox() {
  return {HtmlMail(), MailWithFiles(), RtfMail(), MailWithMessage(), LongMail(), MeetingRequest()};
}

std::vector<Message> DemoSent() {
  Message plain = DemoMail(u"Timetable", u"Attached is nothing at all.");
  Message unsent = DemoMail(u"Draft without recipients", u"To be finished.");
  unsent.recipients.clear();
  unsent.delivered.reset();  // nobody has sent it yet
  unsent.flags = 9;
  return {plain, unsent};
}

std::vector<Message> DemoContacts() {
  Message list = {.messageClass = u"IPM.DistList",
                  .subject = u"Crew",
                  .delivered = TimeOf(2021, 2, 3, 11),
                  .properties = {Text(0x3001, u"Crew"), Named(PropertySet::kAddress, 0x8053, Text(0, u"Crew"))}};
  return {Contact(u"Tomás", u"Ibarra", u"tomas@ibarra.example"), Contact(u"花子", u"山田", u"hanako@umi.example"),
          list};
}

std::vector<Message> DemoAppointments() {
  return {Appointment(u"Safety drill", TimeOf(2021, 5, 3, 12), 45, false),
          Appointment(u"Constitution Day", TimeOf(2021, 5, 17), 1440, true)};
}

std::vector<Message> DemoTasks() { return {Task(u"Order paint", false), Task(u"Renew the licence", true)}; }

std::vector<Message> DemoJournal() {
  return {{.messageClass = u"IPM.Activity",
           .subject = u"Call with the yard",
           .plain = u"They can take the boat in March.",
           .delivered = TimeOf(2021, 2, 6, 9),
           .properties = {Named(PropertySet::kLog, 0x8700, Text(0, u"Phone call")),
                          Named(PropertySet::kLog, 0x8706, Time(0, TimeOf(2021, 2, 6, 9))),
                          Named(PropertySet::kLog, 0x8707, Int32(0, 12)),
                          Named(PropertySet::kLog, 0x8708, Time(0, TimeOf(2021, 2, 6, 9, 12)))}}};
}

std::vector<Message> DemoNotes() { return {Note(u"Buy rope", 3), Note(u"Milch, Brot, Ölzeug", 1)}; }

}  // namespace velmora::forge
