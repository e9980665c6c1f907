#include "forge/format.h"

namespace velmora::forge {
namespace {

constexpr FormatTraits kAnsiTraits = {.version = 14,
                                      .idWidth = 4,
                                      .pageSize = 512,
                                      .entryAreaSize = 496,
                                      .offPageTrailer = 500,
                                      .nodeEntrySize = 16,
                                      .blockEntrySize = 12,
                                      .branchEntrySize = 12,
                                      .slotSize = 64,
                                      .maxBlockData = 8180,
                                      .blockTrailerSize = 12,
                                      .listPage = 0x4200,
                                      .firstMap = 0x4400,
                                      .mapSpan = 496 * 8 * 64,
                                      .firstData = 0x4800,
                                      .heapBlockShift = 16,
                                      .wide = false};

constexpr FormatTraits kUnicodeTraits = {.version = 23,
                                         .idWidth = 8,
                                         .pageSize = 512,
                                         .entryAreaSize = 488,
                                         .offPageTrailer = 496,
                                         .nodeEntrySize = 32,
                                         .blockEntrySize = 24,
                                         .branchEntrySize = 24,
                                         .slotSize = 64,
                                         .maxBlockData = 8176,
                                         .blockTrailerSize = 16,
                                         .listPage = 0x4200,
                                         .firstMap = 0x4400,
                                         .mapSpan = 496 * 8 * 64,
                                         .firstData = 0x4800,
                                         .heapBlockShift = 16,
                                         .wide = true};

constexpr FormatTraits kUnicode4kTraits = {.version = 36,
                                           .idWidth = 8,
                                           .pageSize = 4096,
                                           .entryAreaSize = 4056,
                                           .offPageTrailer = 4072,
                                           .nodeEntrySize = 32,
                                           .blockEntrySize = 24,
                                           .branchEntrySize = 24,
                                           .slotSize = 512,
                                           .maxBlockData = 65512,
                                           .blockTrailerSize = 24,
                                           .listPage = 0x21000,
                                           .firstMap = 0x22000,
                                           .mapSpan = 4072 * 8 * 512,
                                           .firstData = 0x24000,
                                           .heapBlockShift = 19,
                                           .wide = true};

}  // namespace

const FormatTraits& TraitsOf(Format format) {
  switch (format) {
    case Format::kAnsi:
      return kAnsiTraits;
    case Format::kUnicode:
      return kUnicodeTraits;
    case Format::kUnicode4k:
      break;
  }
  return kUnicode4kTraits;
}

}  // namespace velmora::forge
