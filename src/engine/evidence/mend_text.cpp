// The checksum is a sum of what each byte adds by itself, which depends on how many bytes are behind it. So with the
// sums of all tails of the copy at hand, a CR more ahead of an LF, or one less, changes the sum of the whole by a value
// that only the number of those behind it has an influence on, and each way is tried by adding such values.
#include "engine/evidence/mend_text.h"

#include <algorithm>

namespace velmora::engine {
namespace {

constexpr std::byte kCr{'\r'};
constexpr std::byte kLf{'\n'};
constexpr std::uint32_t kPolynomial = 0xEDB88320;

/// Ways that are tried: of as many one fits by chance once in 65,536 times.
constexpr std::size_t kMostWays = std::size_t{1} << 16;

/// Of `all` things so many; more than kMostWays where that is more.
std::size_t WaysToChoose(std::size_t count, std::size_t all) {
  std::size_t ways = 1;
  for (std::size_t i = 0; i < count && ways <= kMostWays; ++i) ways = ways * (all - i) / (i + 1);
  return ways;
}

std::uint32_t WithBitBehind(std::uint32_t sum) { return (sum & 1) != 0 ? sum >> 1 ^ kPolynomial : sum >> 1; }
std::uint32_t WithoutBitBehind(std::uint32_t sum) {
  return (sum & 0x80000000) != 0 ? (sum ^ kPolynomial) << 1 | 1 : sum << 1;
}

/// Sums a text from its end.
class TailSum {
 public:
  std::uint32_t Value() const { return sum_; }

  /// What a byte ahead of it would add.
  std::uint32_t Of(std::byte added) const {
    std::uint32_t sum = 0;
    std::uint32_t ofBit = ofHighestBit_;
    for (auto bits = std::to_integer<unsigned>(added); bits != 0; bits = bits << 1 & 0xFF) {
      if ((bits & 0x80) != 0) sum ^= ofBit;
      ofBit = WithBitBehind(ofBit);
    }
    return sum;
  }

  void PutAhead(std::byte added) {
    sum_ ^= Of(added);
    for (int bit = 0; bit < 8; ++bit) ofHighestBit_ = WithBitBehind(ofHighestBit_);
  }

 private:
  std::uint32_t sum_ = 0;
  std::uint32_t ofHighestBit_ = kPolynomial;
};

class Mending {
 public:
  Mending(std::span<const std::byte> copied, std::size_t ends, std::size_t lost)
      : copied_(copied), ends_(ends), mostHaveOne_(ends - lost < lost), count_(mostHaveOne_ ? ends - lost : lost) {}

  std::optional<std::vector<std::size_t>> Run(std::uint32_t sum) {
    if (WaysToChoose(count_, ends_) > kMostWays) return std::nullopt;
    std::uint32_t unchanged = SumTails();
    for (std::size_t i = 0; i < count_; ++i) unchanged = Displaced(unchanged);
    if (!Choose(count_, unchanged ^ sum)) return std::nullopt;
    return Places();
  }

 private:
  /// The sum of something with one exception more behind it.
  std::uint32_t Displaced(std::uint32_t sum) const {
    for (int bit = 0; bit < 8; ++bit) sum = mostHaveOne_ ? WithoutBitBehind(sum) : WithBitBehind(sum);
    return sum;
  }

  /// Of all of it, if no LF is an exception. Fills changes_.
  std::uint32_t SumTails() {
    changes_.assign(count_, std::vector<std::uint32_t>(ends_));
    TailSum tail;
    std::size_t number = ends_;
    for (std::size_t at = copied_.size(); at-- > 0;) {
      tail.PutAhead(copied_[at]);
      if (copied_[at] != kLf) continue;
      std::uint32_t behind = tail.Value();
      if (mostHaveOne_) {
        tail.PutAhead(kCr);
      } else {
        behind ^= tail.Of(kCr);
      }
      std::uint32_t change = Displaced(tail.Value()) ^ behind;
      --number;
      for (std::vector<std::uint32_t>& ofEnds : changes_) {
        ofEnds[number] = change;
        change = Displaced(change);
      }
    }
    return tail.Value();
  }

  /// Chooses so many exceptions among those ahead of the ones that are chosen, so that their changes make up `wanted`.
  bool Choose(std::size_t left, std::uint32_t wanted) {
    if (left == 0) return wanted == 0;
    const std::vector<std::uint32_t>& changes = changes_[count_ - left];
    for (std::size_t end = chosen_.empty() ? ends_ : chosen_.back(); end-- >= left;) {
      if (left == 1 && changes[end] != wanted) continue;
      chosen_.push_back(end);
      if (Choose(left - 1, wanted ^ changes[end])) return true;
      chosen_.pop_back();
    }
    return false;
  }

  std::vector<std::size_t> Places() const {
    std::vector<std::size_t> places;
    std::size_t number = 0;
    for (std::size_t at = 0; at < copied_.size(); ++at) {
      if (copied_[at] != kLf) continue;
      const bool isException = std::ranges::find(chosen_, number++) != chosen_.end();
      if (isException != mostHaveOne_) places.push_back(at + places.size());
    }
    return places;
  }

  std::span<const std::byte> copied_;
  std::size_t ends_;   ///< LF in it
  bool mostHaveOne_;   ///< a CR is put ahead of all LF but the exceptions; else of the exceptions alone
  std::size_t count_;  ///< of exceptions
  std::vector<std::vector<std::uint32_t>> changes_;  ///< of the sum, by exceptions behind an LF and by its number
  std::vector<std::size_t> chosen_;                  ///< the last one first
};

}  // namespace

std::optional<std::vector<std::size_t>> MendText(std::span<const std::byte> copied, std::size_t lost,
                                                 std::uint32_t sum) {
  const auto ends = static_cast<std::size_t>(std::ranges::count(copied, kLf));
  if (lost > ends) return std::nullopt;
  return Mending(copied, ends, lost).Run(sum);
}

}  // namespace velmora::engine
