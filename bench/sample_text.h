// Text and bytes that look like those of a mailbox, the same for every run.
#pragma once

#include <cstdint>
#include <string>

#include "forge/bytes.h"

namespace velmora::bench {

/// A small generator whose numbers are the same on every machine.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : state_(seed) {}

  std::uint64_t Next();
  /// A number from `low` to `high`, both included.
  std::size_t Between(std::size_t low, std::size_t high);
  /// One of sixteen numbers from `low` to `high`.
  std::size_t Step(std::size_t low, std::size_t high) { return low + (high - low) / 15 * (Next() % 16); }
  /// True in `percent` of 100 cases.
  bool Chance(unsigned percent) { return Next() % 100 < percent; }

 private:
  std::uint64_t state_;
};

/// Pieces of text and of noise are cut out of pools that are made once, each from one of sixteen places, so that making
/// a store costs little more than writing it.
class SampleText {
 public:
  SampleText();

  /// `units` UTF-16 units of sentences, from a place that the dice choose.
  std::u16string Text(Dice& dice, std::size_t units) const;
  /// A line of a few words.
  std::u16string Line(Dice& dice) const;
  /// An HTML page of about `bytes` bytes in UTF-8.
  forge::Bytes Html(Dice& dice, std::size_t bytes) const;
  /// `bytes` bytes that do not compress.
  forge::Bytes Binary(Dice& dice, std::size_t bytes) const;

 private:
  std::u16string text_;
  std::string paragraphs_;
  forge::Bytes noise_;
};

}  // namespace velmora::bench
