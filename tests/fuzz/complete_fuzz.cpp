// Copying whole objects of whatever bytes, and comparing the copy with them.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <numeric>
#include <source_location>
#include <span>
#include <utility>
#include <vector>

#include "aids/shared_file.h"
#include "complete/copy_store.h"
#include "engine/proven_store.h"
#include "platform/memory_file.h"
#include "store/ndb/store_reader.h"

namespace velmora::complete {
namespace {

void Require(bool holds, std::source_location place = std::source_location::current()) {
  if (holds) return;
  std::fprintf(stderr, "line %u does not hold\n", static_cast<unsigned>(place.line()));
  std::abort();
}

void CheckAccount(const Account& account) {
  Require(account.NodesFound() == std::accumulate(account.nodes.begin(), account.nodes.end(), std::uint64_t{0}));
  for (const auto& [name, counts] : account.items) {
    Require(counts.live == counts.whole + counts.partial + counts.lost);
  }
  const ItemCounts all = account.Totals();
  if (account.IsWhole()) Require(all.partial == 0 && all.lost == 0);
  for (const Loss& loss : account.losses) Require(!loss.missing.empty());
}

void CopyAndCompare(const std::vector<std::byte>& bytes, bool everything) {
  engine::RunContext run;
  const auto source = engine::ProvenStore::Prove(std::make_unique<platform::MemoryFile>(bytes), everything, run);
  if (!source->IsStore()) return;
  const auto file = std::make_shared<platform::MemoryFile>();
  Account account;
  const CopyOptions options{.hidden = everything, .deleted = everything};
  {
    const auto target = messaging::StoreWriter::Create(std::make_unique<test::SharedFile>(file), u"Copy",
                                                       {.sourceDateEpoch = 1700000000});
    CopyStore(*source, *target, options, run, account);
    target->Seal();
  }
  CheckAccount(account);
  Require(ndb::StoreReader::Open(*file)->Damage().Count() == 0);
  CompareStores(*source, *file, options, run, account);
  for (const Difference& difference : account.differences) std::fprintf(stderr, "%s\n", difference.what.c_str());
  Require(account.differences.empty() && account.differencesNotListed == 0);
}

}  // namespace
}  // namespace velmora::complete

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace velmora;
  const auto bytes = std::as_bytes(std::span(data, size));
  const std::vector<std::byte> whole(bytes.begin(), bytes.end());
  for (const bool everything : {false, true}) complete::CopyAndCompare(whole, everything);
  return 0;
}
