// What comes back of every kind of damage, in every format and encoding, to the message. figures.txt holds what is to
// come back, a line a case; a line that differs is printed as it would have to be.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <sstream>

#include "aids/shared_file.h"
#include "complete/copy_store.h"
#include "complete/objects.h"
#include "damage/aged_mailbox.h"
#include "damage/damage.h"
#include "engine/proven_store.h"
#include "platform/memory_file.h"
#include "store/messaging/store_writer.h"

namespace velmora::damage {
namespace {

using complete::Item;
using complete::Properties;
using complete::StoreObjects;

forge::Bytes Convert(const forge::Bytes& source) {
  engine::RunContext run;
  const auto found = engine::ProvenStore::Prove(std::make_unique<platform::MemoryFile>(source), false, run);
  const auto file = std::make_shared<platform::MemoryFile>();
  const auto target = messaging::StoreWriter::Create(std::make_unique<test::SharedFile>(file), u"Copy",
                                                     {.sourceDateEpoch = 1700000000});
  complete::Account account;
  if (found->IsStore()) complete::CopyStore(*found, *target, {}, run, account);
  target->Seal();
  return file->Bytes();
}

// What each store computes for itself: sizes of a message and of its attachments, number and version of a row.
bool IsComputed(std::uint16_t id) { return id == 0x0E08 || id == 0x0E20 || id == 0x67F2 || id == 0x67F3; }

void Print(const Properties& properties, std::ostream& out) {
  for (const auto& [key, value] : properties) {
    if (IsComputed(key.id)) continue;
    PrintTo(key, &out);
    out << '=';
    if (value.type == PropType::kString || value.type == PropType::kString8) {
      for (const char16_t letter : complete::TextOf({{{.id = 1}, value}}, 1))
        out << static_cast<unsigned>(letter) << ' ';
    } else if (value.type != PropType::kObject) {
      PrintTo(value, &out);
    }
    out << '\n';
  }
}

void Print(const Item& item, std::ostream& out) {
  Print(item.properties, out);
  for (const Properties& recipient : item.recipients) {
    out << "recipient\n";
    Print(recipient, out);
  }
  for (const complete::Attached& attached : item.attachments) {
    out << "attachment\n";
    Print(attached.properties, out);
    if (attached.embedded) Print(*attached.embedded, out);
    out << "end\n";
  }
}

struct ShownMessage {
  std::u16string subject;
  std::u16string folder;
  std::string content;  ///< all of it, as text
};

/// The messages that the folders show.
std::vector<std::pair<velmora::Nid, ShownMessage>> MessagesOf(const StoreObjects& store) {
  std::vector<std::pair<velmora::Nid, ShownMessage>> messages;
  for (const auto& [path, nid] : store.Folders()) {
    if (TypeOf(nid) == NidType::kSearchFolder) continue;
    for (const velmora::Nid message : store.FolderOf(nid).messages) {
      const Item item = store.ItemOf(message);
      std::ostringstream content;
      Print(item, content);
      const bool hasSubject = complete::Find(item.properties, 0x0037) != nullptr;
      messages.push_back(
          {message, {hasSubject ? complete::TextOf(item.properties, 0x0037) : u"", path, content.str()}});
    }
  }
  return messages;
}

struct Score {
  int intact = 0;    ///< messages of which every byte is still there
  int found = 0;     ///< of these, in the new store in some form
  int whole = 0;     ///< of these, in the new store as they were
  int inFolder = 0;  ///< of these, in their folder
  int damaged = 0;
  int damagedFound = 0;  ///< in some form
  int damagedWhole = 0;  ///< of these, in the new store as they were
  int copies = 0;        ///< messages of the new store beyond one for each of the old
  int others = 0;        ///< messages that the old store does not have, or has no longer
};

class Original {
 public:
  explicit Original(AgedMailbox mailbox) : mailbox_(std::move(mailbox)) {
    const StoreObjects store(mailbox_.image.bytes);
    for (auto& [nid, message] : MessagesOf(store)) messages_.emplace(nid, std::move(message));
  }

  const forge::Image& Image() const { return mailbox_.image; }
  std::size_t Count() const { return messages_.size(); }

  Score Compare(const forge::Bytes& damaged, const forge::Bytes& made) const {
    auto left = MessagesOf(StoreObjects(made));
    Score score;
    std::set<std::u16string> subjects;
    for (const LiveMessage& live : mailbox_.messages) {
      const ShownMessage& message = messages_.at(velmora::Nid{live.nid});
      subjects.insert(message.subject);
      const bool isIntact = IsIntact(live, damaged);
      ++(isIntact ? score.intact : score.damaged);
      auto found = std::ranges::find_if(left, [&](const auto& one) { return one.second.content == message.content; });
      const bool isWhole = found != left.end();
      if (!isWhole) {
        found = std::ranges::find_if(left, [&](const auto& one) { return one.second.subject == message.subject; });
      }
      if (found == left.end()) continue;
      ++(isIntact ? score.found : score.damagedFound);
      (isIntact ? score.whole : score.damagedWhole) += isWhole;
      score.inFolder += isIntact && found->second.folder == message.folder;
      left.erase(found);
    }
    for (const auto& [nid, message] : left) ++(subjects.contains(message.subject) ? score.copies : score.others);
    return score;
  }

 private:
  bool IsIntact(const LiveMessage& live, const forge::Bytes& damaged) const {
    return std::ranges::all_of(mailbox_.image.blocks, [&](const forge::PlacedBlock& block) {
      if (block.offset < live.begin || block.offset >= live.end) return true;
      const auto at = static_cast<std::ptrdiff_t>(block.offset);
      const auto size = static_cast<std::ptrdiff_t>(block.placeSize);
      return at + size <= std::ssize(damaged) &&
             std::equal(damaged.begin() + at, damaged.begin() + at + size, mailbox_.image.bytes.begin() + at);
    });
  }

  AgedMailbox mailbox_;
  std::map<velmora::Nid, ShownMessage> messages_;
};

std::string LineOf(const std::string& name, const Score& s) {
  std::ostringstream line;
  line << name << ": intact " << s.intact << ", found " << s.found << ", whole " << s.whole << ", in folder "
       << s.inFolder << "; damaged " << s.damaged << ", found " << s.damagedFound << ", whole " << s.damagedWhole
       << "; copies " << s.copies << ", others " << s.others;
  return line.str();
}

/// The lines of figures.txt by what they begin with.
const std::map<std::string, std::string>& Figures() {
  static const auto figures = [] {
    std::map<std::string, std::string> read;
    std::ifstream file(VELMORA_FIGURES);
    for (std::string line; std::getline(file, line);) read.emplace(line.substr(0, line.find(':')), line);
    return read;
  }();
  return figures;
}

struct Variant {
  std::string name;
  forge::Format format;
  forge::Encoding encoding;
};

class MatrixTest : public testing::TestWithParam<Variant> {};

TEST_P(MatrixTest, WhatIsStillThereComesBack) {
  const Original original(ForgeAgedMailbox(GetParam().format, GetParam().encoding));
  ASSERT_EQ(original.Count(), 40u);
  for (const Case& damage : Cases()) {
    const forge::Bytes damaged = damage.spoil(original.Image());
    const Score score = original.Compare(damaged, Convert(damaged));
    const std::string name = GetParam().name + " " + damage.name;
    const std::string line = LineOf(name, score);
    const auto figure = Figures().find(name);
    EXPECT_EQ(figure == Figures().end() ? "" : figure->second, line);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Variants, MatrixTest,
    testing::Values(Variant{"ansi_plain", forge::Format::kAnsi, forge::Encoding::kNone},
                    Variant{"ansi_permuted", forge::Format::kAnsi, forge::Encoding::kPermute},
                    Variant{"ansi_cyclic", forge::Format::kAnsi, forge::Encoding::kCyclic},
                    Variant{"unicode_plain", forge::Format::kUnicode, forge::Encoding::kNone},
                    Variant{"unicode_permuted", forge::Format::kUnicode, forge::Encoding::kPermute},
                    Variant{"unicode_cyclic", forge::Format::kUnicode, forge::Encoding::kCyclic},
                    Variant{"unicode4k_plain", forge::Format::kUnicode4k, forge::Encoding::kNone},
                    Variant{"unicode4k_permuted", forge::Format::kUnicode4k, forge::Encoding::kPermute},
                    Variant{"unicode4k_cyclic", forge::Format::kUnicode4k, forge::Encoding::kCyclic}),
    [](const auto& variant) { return variant.param.name; });

}  // namespace
}  // namespace velmora::damage
