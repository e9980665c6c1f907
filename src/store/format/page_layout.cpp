#include "store/format/page_layout.h"

namespace velmora {
namespace {

constexpr PageLayout kAnsi = {.offEntryCount = 496,
                              .entryAreaEnd = 496,
                              .offEntryMax = 497,
                              .offEntrySize = 498,
                              .offPageType = 500,
                              .offPageSig = 502,
                              .offPageId = 504,
                              .idPitchCode = 8,
                              .blockEntrySize = 12,
                              .nodeEntrySize = 16,
                              .idWidth = 4,
                              .pageSize = 512,
                              .wideFormat = false,
                              .formatId = FORMAT_ANSI};

constexpr PageLayout kUnicode = {.offEntryCount = 488,
                                 .entryAreaEnd = 480,
                                 .offEntryMax = 489,
                                 .offEntrySize = 490,
                                 .offPageType = 496,
                                 .offPageSig = 498,
                                 .offPageId = 504,
                                 .idPitchCode = 16,
                                 .blockEntrySize = 24,
                                 .nodeEntrySize = 32,
                                 .idWidth = 8,
                                 .pageSize = 512,
                                 .wideFormat = true,
                                 .formatId = FORMAT_UNICODE};

constexpr PageLayout kUnicode4k = {.offEntryCount = 4056,
                                   .entryAreaEnd = 4072,
                                   .offEntryMax = 4058,
                                   .offEntrySize = 4060,
                                   .offPageType = 4072,
                                   .offPageSig = 4074,
                                   .offPageId = 4080,
                                   .idPitchCode = 32,
                                   .blockEntrySize = 24,
                                   .nodeEntrySize = 32,
                                   .idWidth = 8,
                                   .pageSize = 4096,
                                   .wideFormat = true,
                                   .formatId = FORMAT_UNICODE_4K};

}  // namespace

const PageLayout& LayoutOf(std::uint16_t formatId) {
  switch (formatId) {
    case FORMAT_UNICODE:
      return kUnicode;
    case FORMAT_UNICODE_4K:
      return kUnicode4k;
    default:
      return kAnsi;
  }
}

}  // namespace velmora
