// The mailbox that most of these tests read back.
#pragma once

#include "forge/mailbox.h"

namespace velmora::forge {

/// Two folders with three messages between them, five attachments in all; an embedded message holds one of the five.
inline Image ForgeSample(StoreOptions store, MailboxOptions options = {}) {
  Mailbox box(store, options);
  const Nid inbox = box.AddFolder({.name = u"Inbox", .containerClass = u"IPF.Note"});
  const Nid inner = box.AddFolder({.name = u"Grüße", .parent = inbox});
  box.AddMessage(inbox, {.subject = u"Re: Hello",
                         .subjectPrefix = 4,
                         .plain = u"A body in the heap",
                         .html = ToBytes("<html><body>A body</body></html>"),
                         .senderName = u"Ann",
                         .senderAddress = u"ann@example.org",
                         .recipients = {{u"Bob", u"bob@example.org"}, {u"Eve", u"eve@example.org", RecipientKind::kCc}},
                         .submitted = TimeOf(2020, 2, 29, 12),
                         .delivered = TimeOf(2020, 2, 29, 12, 1),
                         .categories = {u"Red", u"Blue"}});
  box.AddMessage(inner, {.subject = u"Long", .plain = std::u16string(30000, u'p'), .delivered = TimeOf(2021, 1, 1)});
  auto embedded = std::make_shared<Message>(Message{
      .subject = u"Inside", .plain = u"Inner body", .attachments = {{.name = u"in.txt", .data = ToBytes("inner")}}});
  box.AddMessage(inner, {.subject = u"Files",
                         .plain = u"See below",
                         .delivered = TimeOf(2021, 1, 2),
                         .attachments = {{.name = u"a.txt", .data = ToBytes("abc")},
                                         {.name = u"b.bin", .data = Noise(3000, 1)},
                                         {.name = u"c.bin", .data = Noise(100000, 2), .place = Place::kChain},
                                         {.displayName = u"Inside", .embedded = embedded}}});
  return box.Finish();
}

}  // namespace velmora::forge
