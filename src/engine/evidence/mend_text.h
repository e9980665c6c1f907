// Bytes that a copy in text mode lost, told by their checksum.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace velmora::engine {

/// Such a copy makes LF of CR LF, so what is lost stood ahead of an LF that is still there. Of all ways to put so many
/// CR back the one with which the bytes have that checksum: positions of the CR in the result, ascending. Nothing where
/// there is none, or so many ways that one may well fit by chance.
///
/// Takes the time of a slow sum over the bytes once, however many ways there are.
std::optional<std::vector<std::size_t>> MendText(std::span<const std::byte> copied, std::size_t lost,
                                                 std::uint32_t sum);

}  // namespace velmora::engine
