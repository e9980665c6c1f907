#include "bench/large_store.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "bench/old_versions.h"
#include "bench/pack.h"
#include "bench/sample_text.h"
#include "forge/mailbox.h"

namespace velmora::bench {
namespace {

using forge::Mailbox;
using forge::Message;
using forge::Nid;
using forge::Recipient;
using forge::RecipientKind;

constexpr std::uint64_t kFoldersPerYear = 52;
constexpr std::size_t kPeople = 200;
constexpr std::uint64_t kBlocksOfPiece = 16;  // about as many full ones as a strewn store puts behind one another
constexpr std::uint64_t kMostOfAnsi = (std::uint64_t{1} << 31) - (std::uint64_t{1} << 24);
constexpr std::uint64_t kMostRowsOfAnsi = 0xFFFF;

std::u16string ToText(std::uint64_t number) {
  const std::string digits = std::to_string(number);
  return {digits.begin(), digits.end()};
}

Recipient Person(std::size_t index) {
  constexpr const char16_t* kFirst[] = {u"Ada", u"Bo", u"Chloé", u"Dmitri", u"Elif", u"Farid", u"Greta", u"Hiro"};
  constexpr const char16_t* kLast[] = {u"Almeida", u"Brandt", u"Carlsen", u"Dubois", u"Esposito", u"Fischer"};
  const std::u16string name = std::u16string(kFirst[index % 8]) + u" " + kLast[index / 8 % 6];
  return {.name = name, .address = u"person" + ToText(index) + u"@office.example"};
}

class MailMaker {
 public:
  explicit MailMaker(const LargeStoreOptions& options)
      : small_(options.small),
        tiny_(options.tiny),
        withFiles_(options.withFiles),
        attachmentSize_(options.attachmentSize) {}

  Message Next() {
    const Recipient sender = Person(dice_.Between(0, kPeople - 1));
    time_ += dice_.Between(60, 3600) * 10'000'000;
    Message mail = {.subject = text_.Line(dice_),
                    .senderName = sender.name,
                    .senderAddress = sender.address,
                    .submitted = time_ - 20'000'000,
                    .delivered = time_,
                    .flags = dice_.Chance(80) ? 1U : 0U};
    if (tiny_) {
      mail.delivered.reset();  // field by field, a mail without recipients loses it, and a loss is work
      mail.plain = text_.Text(dice_, 60);
      return mail;
    }
    if (dice_.Chance(40)) {
      mail.subject = u"Re: " + mail.subject;
      mail.subjectPrefix = 4;
    }
    if (dice_.Chance(10)) mail.importance = 2;
    if (dice_.Chance(5)) mail.categories = {u"Follow up", text_.Line(dice_)};
    AddRecipients(mail);
    if (attachmentSize_ != 0) {
      mail.plain = text_.Text(dice_, 400);
      mail.attachments.push_back(File(attachmentSize_));
    } else if (small_) {
      mail.plain = text_.Text(dice_, 400);
    } else {
      AddContent(mail);
    }
    return mail;
  }

 private:
  void AddRecipients(Message& mail) {
    const std::size_t count = small_ ? 1 : dice_.Between(1, 4);
    for (std::size_t i = 0; i < count; ++i) {
      Recipient recipient = Person(dice_.Between(0, kPeople - 1));
      recipient.kind = i < 2 ? RecipientKind::kTo : RecipientKind::kCc;
      mail.recipients.push_back(std::move(recipient));
    }
  }

  // Most mails are small, some are long, and some carry files; in all they have 2 to 200 KB.
  void AddContent(Message& mail) {
    const bool isLong = dice_.Chance(20);
    const std::size_t units = isLong ? dice_.Step(4000, 20000) : dice_.Step(300, 3000);
    mail.plain = text_.Text(dice_, units);
    if (dice_.Chance(70)) mail.html = text_.Html(dice_, units * 2);
    if (dice_.Chance(50)) mail.properties.push_back(forge::Text(0x007D, Headers(mail)));
    if (!dice_.Chance(withFiles_)) return;
    const std::size_t files = dice_.Between(1, 3);
    for (std::size_t i = 0; i < files; ++i) {
      const std::size_t size = dice_.Chance(50) ? dice_.Step(200, 6000) : dice_.Step(6000, 36000);
      mail.attachments.push_back(File(size));
    }
  }

  forge::Attachment File(std::size_t size) {
    return {.name = u"document " + ToText(++files_) + (dice_.Chance(50) ? u".pdf" : u".jpg"),
            .data = text_.Binary(dice_, size)};
  }

  std::u16string Headers(const Message& mail) const {
    std::u16string headers;
    for (int hop = 1; hop <= 4; ++hop) {
      headers += u"Received: from mx" + ToText(hop) + u".office.example by mx" + ToText(hop + 1) +
                 u".office.example with ESMTPS\r\n";
    }
    return headers + u"From: <" + mail.senderAddress + u">\r\nSubject: " + mail.subject +
           u"\r\nMIME-Version: 1.0\r\nContent-Type: multipart/alternative\r\n\r\n";
  }

  bool small_;
  bool tiny_;
  unsigned withFiles_;
  std::uint64_t attachmentSize_;
  SampleText text_;
  Dice dice_{42};
  forge::FileTime time_ = forge::TimeOf(2010, 1, 4, 8);
  std::uint64_t files_ = 0;
};

forge::StoreOptions StoreOf(const LargeStoreOptions& options, bool isOffline) {
  const std::uint64_t bytesOfPiece = kBlocksOfPiece * forge::TraitsOf(options.format).maxBlockData;
  return {.format = options.format,
          .encoding = options.encoding,
          .client = isOffline ? forge::Client::kOffline : forge::Client::kPersonal,
          .compressed = isOffline,
          .fullLength = true,
          .pieces = options.strewn ? static_cast<std::size_t>(options.bytes / bytesOfPiece) + 2 : 0,
          .pack = Pack};
}

}  // namespace

LargeStoreCounts MakeLargeStore(const std::filesystem::path& path, const LargeStoreOptions& options) {
  const bool isOffline = options.format == forge::Format::kUnicode4k;
  const Nid top = isOffline ? forge::kOfflineTop : forge::kTopFolder;
  Mailbox box(path, StoreOf(options, isOffline), {.tables = true, .offline = isOffline, .namesAtLeast = 80});
  MailMaker maker(options);
  OldVersions old(box, options.oldVersions);
  LargeStoreCounts counts;
  Nid year = 0;
  Nid folder = 0;
  const auto complete = [&] {
    return (options.items != 0 && counts.messages >= options.items) ||
           (options.bytes != 0 && box.store().Written() >= options.bytes);
  };
  const auto openFolder = [&] {
    if (folder != 0) box.CloseFolder(folder);
    if (counts.folders % (kFoldersPerYear + 1) == 0) {
      year = box.AddFolder({.name = u"Archive " + ToText(1 + counts.folders / (kFoldersPerYear + 1)), .parent = top});
      ++counts.folders;
    }
    folder = box.AddFolder({.name = u"Week " + ToText(counts.folders), .parent = year, .containerClass = u"IPF.Note"});
    ++counts.folders;
  };
  while (!complete()) {
    if (counts.messages == 0 || (!options.oneFolder && counts.messages % options.perFolder == 0)) openFolder();
    if (options.format == forge::Format::kAnsi &&
        (box.store().End() > kMostOfAnsi ||
         (options.oneFolder && std::max(options.items, counts.messages + 1) > kMostRowsOfAnsi))) {
      throw std::runtime_error("an ANSI store has no room for so much");
    }
    const Message mail = maker.Next();
    old.Write(mail);
    old.Name(box.AddMessage(folder, mail).nid, folder);
    ++counts.messages;
    counts.attachments += mail.attachments.size();
  }
  counts.oldVersions = old.Count();
  box.Finish();
  return counts;
}

}  // namespace velmora::bench
