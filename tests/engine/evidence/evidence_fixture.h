// What the tests of the evidence share: a mailbox of a size that has trees of several levels, its damaged image as a
// source, and the nodes that are told from it.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>
#include <tuple>
#include <vector>

#include "engine/evidence/evidence.h"
#include "engine/run_fixture.h"
#include "forge/forge.h"
#include "platform/memory_file.h"

namespace velmora::engine {

/// Id, data, sub-nodes and parent.
using NodeLine = std::tuple<std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t>;
using NodeLines = std::set<NodeLine>;

inline NodeLine LineOf(const forge::NodeEntry& node) { return {node.nid, node.bidData, node.bidSub, node.nidParent}; }
inline NodeLine LineOf(const ndb::NodeEntry& node) {
  return {Value(node.nid), Value(node.trees.bidData), Value(node.trees.bidSub), Value(node.nidParent)};
}
inline NodeLines LinesOf(const forge::Image& image) {
  NodeLines lines;
  for (const forge::NodeEntry& node : image.nodes) lines.insert(LineOf(node));
  return lines;
}

/// Folders and messages, one of them with values beside its heap and an attachment of several blocks.
inline void FillMailbox(forge::Mailbox& box, int messages = 12) {
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  const forge::Nid other = box.AddFolder({.name = u"Other", .parent = inbox});
  for (int i = 0; i < messages; ++i) {
    forge::Message message{.subject = u"Subject " + std::u16string(1, static_cast<char16_t>(u'a' + i % 26)),
                           .plain = std::u16string(30 + 10 * static_cast<std::size_t>(i), u'p')};
    if (i % 4 == 0) {
      message.plainPlace = forge::Place::kBlock;
      message.attachments.push_back({.name = u"a.bin", .data = forge::Noise(20000, static_cast<std::uint32_t>(i))});
    }
    box.AddMessage(i % 3 == 0 ? other : inbox, message);
  }
}

inline forge::Image SampleImage(forge::Format format = forge::Format::kUnicode,
                                forge::Encoding encoding = forge::Encoding::kPermute) {
  forge::Mailbox box(
      {.format = format, .encoding = encoding, .compressed = format == forge::Format::kUnicode4k, .entriesPerPage = 5},
      {.tables = true});
  FillMailbox(box);
  return box.Finish();
}

inline bool IsLeaf(const forge::PlacedPage& page) { return page.level == 0; }

/// The page at the top of a tree: the one that was written last.
inline forge::PlacedPage RootOf(const forge::Image& image, forge::PageType type) {
  return image.TreePages(type).back();
}

inline void WipePage(forge::Image& image, const forge::PlacedPage& page) {
  forge::Fill(image, page.offset, forge::TraitsOf(image.format).pageSize);
}

/// The leaf of the node tree whose page has the entry of that node.
inline forge::PlacedPage LeafWithNode(const forge::Image& image, std::uint64_t nid) {
  const forge::FormatTraits& traits = forge::TraitsOf(image.format);
  for (const forge::PlacedPage& page : image.TreePages(forge::PageType::kNodes)) {
    for (std::uint64_t at = 0; IsLeaf(page) && at + traits.nodeEntrySize <= traits.entryAreaSize;
         at += traits.nodeEntrySize) {
      if (forge::Get(image.bytes, page.offset + at, 4) == nid) return page;
    }
  }
  throw std::out_of_range("no leaf has that node");
}

class EvidenceTest : public testing::Test {
 protected:
  /// Takes an image for the source and finds what it proves.
  void Find(const forge::Image& image) { Find(image.bytes); }
  void Find(std::vector<std::byte> bytes) { Find(std::make_unique<platform::MemoryFile>(std::move(bytes))); }
  void Find(std::unique_ptr<const platform::ByteSource> bytes) {
    source_ = std::make_unique<Source>();
    source_->Open(std::move(bytes));
    told_ = ReadHeader(*source_);
    evidence_ = FindEvidence(*source_, told_, run_);
  }

  void Judge(const forge::Image& image) {
    Find(image);
    judgement_ = JudgeNodes(*source_, evidence_, told_, run_);
  }

  FoundBlock Block(forge::Bid bid) const {
    const auto block = evidence_.Find(velmora::Bid{bid});
    if (!block) throw std::out_of_range("the block was not found");
    return *block;
  }

  BlockStatus StatusOf(forge::Bid bid) const {
    return judgement_.statuses.at(evidence_.NumberOf(velmora::Bid{bid}).value());
  }

  NodeLines Nodes(const std::set<Standing>& standings) const {
    NodeLines lines;
    for (const NodeClaim& claim : judgement_.nodes) {
      if (standings.contains(claim.standing)) lines.insert(LineOf(claim.node));
    }
    return lines;
  }

  RunContext run_;
  std::unique_ptr<Source> source_;
  std::optional<ToldByHeader> told_;
  Evidence evidence_;
  Judgement judgement_;
};

}  // namespace velmora::engine
