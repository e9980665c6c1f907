// Gathers writes that follow one another into large ones, and lets another thread make them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "platform/file.h"
#include "platform/workers.h"
#include "store/format/encoding.h"
#include "store/ndb/allocation_map.h"
#include "store/ndb/block_source.h"

namespace velmora::ndb {

/// A block whose data stand at their place and whose trailer is still to be put behind them.
struct UnsealedBlock {
  std::uint64_t ib = 0;
  std::uint16_t cb = 0;
  Bid bid{};
  CryptMethod encoding = CryptMethod::kNone;  ///< that is still to be done
  std::optional<std::uint32_t> crc = {};      ///< of the data, where it is known
};

/// Bytes written last that are not in the file yet: two stretches of the file of up to kCapacity bytes, one that fills
/// and one that is under way. A failure of the file is raised (FailureError) by the next step that writes, and by every
/// one behind it.
class WriteWindow {
 public:
  static constexpr std::size_t kCapacity = 4 * kAreaSize;

  /// Blocks are sealed and bytes handed to the file by `workers`, which must outlive the window, as must the file.
  WriteWindow(platform::ByteStore& file, platform::Workers& workers);

  /// Room for `size` bytes (at most kCapacity) that belong at `ib`, to be filled before the next call. What
  /// stands in the window and does not touch them goes to the file first; but where nothing was ever placed in between
  /// the window goes on, with zeros, so that a store that grows is written front to back.
  [[nodiscard]] std::span<std::byte> Place(std::uint64_t ib, std::size_t size);

  /// Room for a block: its data are to be filled in, the rest is done on the way to the file.
  [[nodiscard]] std::span<std::byte> Place(const UnsealedBlock& block);

  /// Returns when all is in the file.
  void Flush();

  /// Forgets what is not in the file yet.
  void Drop();

  /// Reads the `out.size()` bytes of data of a block at `ib` from the window or the file, and says in `isEncoded`
  /// whether they are encoded; the number delivered is short at the end of the file.
  [[nodiscard]] std::size_t ReadBlock(std::uint64_t ib, std::span<std::byte> out, bool& isEncoded) const;

 private:
  struct Stretch {
    bool Holds(std::uint64_t ib, std::size_t size) const { return ib >= start && ib + size <= End(); }
    std::uint64_t End() const { return start + used; }
    std::span<std::byte> At(std::uint64_t ib, std::size_t size) const { return {bytes.get() + (ib - start), size}; }

    std::unique_ptr<std::byte[]> bytes = std::make_unique_for_overwrite<std::byte[]>(kCapacity);
    std::uint64_t start = 0;
    std::size_t used = 0;
    std::vector<UnsealedBlock> unsealed = {};
  };

  void Send();
  void Await();
  static void Seal(const Stretch& stretch);

  platform::ByteStore& file_;
  platform::Workers& workers_;
  Stretch filling_;
  Stretch sent_;  ///< of the step, which alone touches it
  std::unique_ptr<platform::Workers::Step> step_;
  std::uint64_t end_ = 0;  ///< of all that was ever placed
};

}  // namespace velmora::ndb
