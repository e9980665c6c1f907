#include "fuzz/corpus.h"

#include <random>

#include "forge/forge.h"

namespace velmora::fuzz {
namespace {

using forge::Encoding;
using forge::Format;

forge::Image Mailbox(Format format, Encoding encoding) {
  forge::Mailbox box({.format = format, .encoding = encoding, .compressed = format == Format::kUnicode4k},
                     {.tables = encoding != Encoding::kNone});
  const auto inbox = box.AddFolder({.name = u"Inbox"});
  forge::Message message = {.subject = u"Subject", .plain = u"A body that is long enough to be stored by itself"};
  box.AddMessage(inbox, message);
  message.recipients = {{u"Name", u"name@example.org"}};
  message.attachments = {{.name = u"file.bin", .data = forge::Noise(900, 2), .place = forge::Place::kTree},
                         {.displayName = u"Inner", .embedded = std::make_shared<const forge::Message>(message)},
                         {.name = u"object", .object = forge::OleObject{forge::Noise(90, 3), {forge::Noise(30, 4)}}}};
  message.properties = {forge::Named(forge::PropertySet::kOwn, u"Named", forge::Texts(0, {u"one", u"two"}))};
  box.AddMessage(inbox, message);
  box.AddMessage(inbox, message, 0x100028);
  box.store().AddBlock(forge::Noise(700, 1));
  return box.Finish();
}

/// Numbers that a reader may trip over, put where chance has it.
void Spoil(forge::Bytes& bytes, std::uint32_t seed) {
  constexpr std::uint64_t kNumbers[] = {0, 1, 0x7F, 0xFF, 0x7FFF, 0xFFE8, 0xFFFF, 0xFFFFFFFF, 0x8000000000000000};
  std::minstd_rand random(seed);
  for (int i = 0; i < 200; ++i) {
    forge::Put(bytes, random() % (bytes.size() - 8), kNumbers[random() % std::size(kNumbers)], 1 + random() % 8);
  }
}

/// The store where it does not begin and end with the file: its front is missing, or something else is ahead
/// of it or behind it.
std::vector<Seed> Displaced(const std::string& variant, const forge::Bytes& store, const forge::Bytes& other) {
  std::vector<Seed> seeds;
  for (const std::size_t missing : {512U, 9001U}) {
    seeds.push_back({variant + "-without-" + std::to_string(missing),
                     {store.begin() + static_cast<std::ptrdiff_t>(missing), store.end()}});
  }
  for (const std::size_t ahead : {512U, 777U, 4096U}) {
    forge::Bytes behind = forge::Noise(ahead, 5);
    forge::Append(behind, store);
    seeds.push_back({variant + "-behind-" + std::to_string(ahead), std::move(behind)});
  }
  for (const std::size_t between : {0U, 333U}) {
    forge::Bytes two = store;
    forge::Append(two, forge::Noise(between, 6));
    forge::Append(two, other);
    seeds.push_back({variant + "-ahead-of-another-" + std::to_string(between), std::move(two)});
  }
  return seeds;
}

}  // namespace

std::vector<Seed> Corpus() {
  std::vector<Seed> seeds = {
      {"empty", {}}, {"magic", forge::ToBytes("!BDN\0\0\0\0SM")}, {"noise", forge::Noise(30'000, 1)}};
  for (const auto& [format, name] :
       {std::pair(Format::kAnsi, std::string("ansi")), std::pair(Format::kUnicode, std::string("unicode")),
        std::pair(Format::kUnicode4k, std::string("unicode4k"))}) {
    for (const Encoding encoding : {Encoding::kNone, Encoding::kPermute, Encoding::kCyclic}) {
      const auto image = Mailbox(format, encoding);
      const std::string variant = name + "-enc" + std::to_string(static_cast<int>(encoding));
      seeds.push_back({variant, image.bytes});

      auto wiped = image;
      forge::WipePages(wiped, forge::PageType::kBlocks);
      seeds.push_back({variant + "-no-block-tree", wiped.bytes});

      auto cut = image;
      forge::Truncate(cut, cut.bytes.size() - 1000);
      seeds.push_back({variant + "-cut", cut.bytes});

      for (std::uint32_t seed = 1; seed <= 3; ++seed) {
        auto spoiled = image.bytes;
        Spoil(spoiled, seed);
        seeds.push_back({variant + "-spoiled" + std::to_string(seed), std::move(spoiled)});
      }
      if (encoding != Encoding::kPermute) continue;
      const auto other = Mailbox(format, Encoding::kCyclic);
      for (Seed& seed : Displaced(variant, image.bytes, other.bytes)) seeds.push_back(std::move(seed));
    }
  }
  return seeds;
}

}  // namespace velmora::fuzz
