// Runs a fuzz entry over the corpus, whole and cut at many places. What an entry finds wrong ends the process.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "fuzz/corpus.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace velmora::fuzz {
namespace {

TEST(FuzzReplayTest, EveryStoreOfTheCorpusIsLivedThrough) {
  for (const Seed& seed : Corpus()) {
    SCOPED_TRACE(seed.name);
    const auto* data = reinterpret_cast<const std::uint8_t*>(seed.bytes.data());
    EXPECT_EQ(LLVMFuzzerTestOneInput(data, seed.bytes.size()), 0);
    const std::size_t cut = seed.bytes.size() * 3 / 4 + seed.bytes.size() % 7;
    EXPECT_EQ(LLVMFuzzerTestOneInput(data, std::min(cut, seed.bytes.size())), 0);
  }
}

}  // namespace
}  // namespace velmora::fuzz
