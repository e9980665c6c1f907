#include "store/messaging/values/compressed_rtf.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "store/format/checksum.h"
#include "store/format/little_endian.h"
#include "text/code_page.h"

namespace velmora::messaging {
namespace {

constexpr std::uint32_t kCompressed = 0x75465A4C;  // "LZFu"
constexpr std::uint32_t kPlain = 0x414C454D;       // "MELA"
constexpr std::size_t kHeadSize = 16;
constexpr std::size_t kCompSizeField = 4;
constexpr std::size_t kRingSize = 4096;
constexpr std::size_t kShortestMatch = 3;  // two bytes would be a reference as long as the two themselves
constexpr std::size_t kLongestMatch = 17;
constexpr std::size_t kSearchDepth = 32;

// What the ring holds before the first byte: words that most RTF begins with.
constexpr std::string_view kPreload =
    "{\\rtf1\\ansi\\mac\\deff0\\deftab720{\\fonttbl;}{\\f0\\fnil \\froman \\fswiss \\fmodern \\fscript \\fdecor MS "
    "Sans "
    "SerifSymbolArialTimes New RomanCourier{\\colortbl\\red0\\green0\\blue0\r\n\\par "
    "\\pard\\plain\\f0\\fs20\\b\\i\\u\\tab\\tx";
static_assert(kPreload.size() == 207);

std::span<const std::byte> ViewOf(std::string_view text) { return std::as_bytes(std::span(text)); }

struct Head {
  std::uint32_t compSize = 0;
  std::uint32_t magic = 0;
  std::uint32_t crc = 0;
};

std::optional<Head> HeadOf(std::string_view stream) {
  if (stream.size() < kHeadSize) return std::nullopt;
  const std::span<const std::byte> bytes = ViewOf(stream);
  const Head head{Load<std::uint32_t>(bytes, 0), Load<std::uint32_t>(bytes, 8), Load<std::uint32_t>(bytes, 12)};
  if (head.magic != kCompressed && head.magic != kPlain) return std::nullopt;
  return head;
}

bool IsSound(std::string_view stream, const Head& head) {
  if (std::uint64_t{head.compSize} + kCompSizeField != stream.size()) return false;
  return head.magic == kPlain || WeakCrc(ViewOf(stream.substr(kHeadSize))) == head.crc;
}

/// Finds earlier occurrences of the bytes at a place. The text that can be referred to is the preload with
/// the RTF behind it, as far back as the ring goes.
class MatchFinder {
 public:
  explicit MatchFinder(std::string_view text) : text_(text), previous_(text.size(), kNone) { heads_.fill(kNone); }

  /// Makes the bytes at `at` known to later searches.
  void Insert(std::size_t at) {
    if (at + kShortestMatch > text_.size()) return;
    std::uint32_t& head = heads_[Hash(at)];
    previous_[at] = head;
    head = static_cast<std::uint32_t>(at);
  }

  struct Match {
    std::size_t from = 0;
    std::size_t length = 0;
  };

  Match Longest(std::size_t at) const {
    Match best;
    if (at + kShortestMatch > text_.size()) return best;
    const std::size_t limit = std::min(kLongestMatch, text_.size() - at);
    std::uint32_t from = heads_[Hash(at)];
    for (std::size_t depth = 0; from != kNone && depth < kSearchDepth; ++depth, from = previous_[from]) {
      // A distance of the whole ring would be the write position itself, which is the end mark.
      if (at - from >= kRingSize) break;
      std::size_t length = 0;
      while (length < limit && text_[from + length] == text_[at + length]) ++length;
      if (length > best.length) best = {from, length};
      if (length == limit) break;
    }
    if (best.length < kShortestMatch) best.length = 0;
    return best;
  }

 private:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;
  static constexpr std::size_t kHashBits = 13;

  std::size_t Hash(std::size_t at) const {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < kShortestMatch; ++i) value = value << 8 | static_cast<unsigned char>(text_[at + i]);
    return value * 2654435761u >> (32 - kHashBits);
  }

  std::string_view text_;
  std::vector<std::uint32_t> previous_;
  std::array<std::uint32_t, std::size_t{1} << kHashBits> heads_{};
};

/// Puts tokens into groups of eight behind a byte that tells which of them are references.
class TokenWriter {
 public:
  void Literal(char byte) {
    NextToken(false);
    out_.push_back(static_cast<std::byte>(byte));
  }
  void Reference(std::size_t ringPosition, std::size_t length) {
    NextToken(true);
    const auto word = static_cast<unsigned>(ringPosition << 4 | (length - 2));
    out_.push_back(static_cast<std::byte>(word >> 8));
    out_.push_back(static_cast<std::byte>(word));
  }
  Bytes Take() { return std::move(out_); }

 private:
  void NextToken(bool reference) {
    if (used_ == 8) used_ = 0;
    if (used_ == 0) {
      flagsAt_ = out_.size();
      out_.push_back(std::byte{0});
    }
    if (reference) out_[flagsAt_] |= std::byte{1} << used_;
    ++used_;
  }

  Bytes out_;
  std::size_t flagsAt_ = 0;
  int used_ = 0;
};

Bytes Encode(std::string_view rtf) {
  std::string text(kPreload);
  text += rtf;
  MatchFinder finder(text);
  for (std::size_t i = 0; i < kPreload.size(); ++i) finder.Insert(i);
  TokenWriter tokens;
  for (std::size_t at = kPreload.size(); at < text.size();) {
    const MatchFinder::Match match = finder.Longest(at);
    if (match.length == 0) {
      tokens.Literal(text[at]);
    } else {
      tokens.Reference(match.from % kRingSize, match.length);
    }
    for (const std::size_t end = at + std::max<std::size_t>(match.length, 1); at < end; ++at) finder.Insert(at);
  }
  tokens.Reference(text.size() % kRingSize, 2);  // the end mark refers to the write position
  return tokens.Take();
}

std::string Decode(std::string_view in) {
  std::array<char, kRingSize> ring;
  ring.fill(' ');
  std::ranges::copy(kPreload, ring.begin());
  std::size_t write = kPreload.size();
  std::string out;
  const auto produce = [&](char byte) {
    out.push_back(byte);
    ring[write] = byte;
    write = (write + 1) % kRingSize;
  };
  for (std::size_t at = 0; at < in.size();) {
    const auto flags = static_cast<unsigned char>(in[at++]);
    for (int bit = 0; bit < 8 && at < in.size(); ++bit) {
      if ((flags >> bit & 1) == 0) {
        produce(in[at++]);
        continue;
      }
      if (at + 2 > in.size()) return out;
      const auto word =
          static_cast<std::size_t>(static_cast<unsigned char>(in[at]) << 8 | static_cast<unsigned char>(in[at + 1]));
      at += 2;
      const std::size_t from = word >> 4;
      if (from == write) return out;
      const std::size_t length = (word & 0xF) + 2;
      for (std::size_t i = 0; i < length; ++i) produce(ring[(from + i) % kRingSize]);
    }
  }
  return out;
}

/// RTF is 8-bit text; characters beyond it are written as escapes, each with a mark for old readers.
std::string RtfBytes(text::TextView body) {
  const text::CodePage& page = text::CodePage::Lossless();
  std::string out = page.Encode(body);
  if (page.Decode(out) == body) return out;
  out.clear();
  for (const char16_t unit : body) {
    const text::TextView one(&unit, 1);
    const std::string byte = page.Encode(one);
    if (page.Decode(byte) == one) {
      out += byte;
    } else {
      out += "\\u" + std::to_string(static_cast<std::int16_t>(unit)) + "?";
    }
  }
  return out;
}

}  // namespace

Bytes CompressRtf(std::string_view rtf) {
  const Bytes tokens = Encode(rtf);
  Bytes out;
  Append(out, static_cast<std::uint32_t>(tokens.size() + kHeadSize - kCompSizeField));
  Append(out, static_cast<std::uint32_t>(rtf.size()));
  Append(out, kCompressed);
  Append(out, WeakCrc(tokens));
  Append(out, tokens);
  return out;
}

std::optional<std::string> DecompressRtf(std::string_view stream) {
  const auto head = HeadOf(stream);
  if (!head) return std::nullopt;
  const std::uint64_t told = std::uint64_t{head->compSize} + kCompSizeField;
  if (told >= kHeadSize && told < stream.size()) stream = stream.substr(0, told);
  const std::string_view body = stream.substr(kHeadSize);
  return head->magic == kPlain ? std::string(body) : Decode(body);
}

Bytes StoreRtf(text::TextView body) {
  if (body.empty()) return {};
  const std::string narrow = RtfBytes(body);
  const std::string_view wide(reinterpret_cast<const char*>(body.data()), body.size() * sizeof(char16_t));
  for (const std::string_view stream : {std::string_view(narrow), wide}) {
    const auto head = HeadOf(stream);
    if (!head) continue;
    if (IsSound(stream, *head)) return {ViewOf(stream).begin(), ViewOf(stream).end()};
    const std::string rtf = DecompressRtf(stream).value_or(std::string());
    return rtf.empty() ? Bytes() : CompressRtf(rtf);
  }
  return CompressRtf(narrow);
}

text::Text RtfText(std::string_view property) {
  return text::CodePage::Lossless().Decode(DecompressRtf(property).value_or(std::string()));
}

}  // namespace velmora::messaging
