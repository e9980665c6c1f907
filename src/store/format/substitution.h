// Replacing each byte by what a table has for it. Every block of a store goes through this on its way in and out.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace velmora {

using SubstitutionTable = std::array<std::uint8_t, 256>;

/// Writes to `to`, which is `from` itself or lies apart from it, and is as long.
using Substitution = void (*)(const SubstitutionTable& table, std::span<const std::byte> from, std::span<std::byte> to);

/// The ways that this processor has, which all give the same; the fastest stands last.
std::span<const Substitution> Substitutions();

}  // namespace velmora
