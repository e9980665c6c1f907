// The strict checker of stores, a program that shares no line with the writer.
#pragma once

#include <cstddef>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "aids/system.h"

namespace velmora::test {

/// What the checker is asked for.
enum class Check {
  kBlocks,      ///< header, maps, trees and blocks
  kProperties,  ///< these, and the heaps, properties and tables of all internal nodes
  kMail,        ///< everything
};

/// True if the checker is there.
bool HasPstCheck();

/// Runs the checker; returns its findings, a line each, errors and warnings alike: empty for a sound store.
std::string PstCheck(std::span<const std::byte> store, Check check, const std::string& ignored = {});

/// Writes to `dump` what the checker reads in a store of any generation: a line of JSON for the store, each folder and
/// each message.
bool DumpStore(const std::filesystem::path& store, const std::filesystem::path& dump);

}  // namespace velmora::test

/// Ends a test with a reason where the checker is not there.
#define VELMORA_NEEDS_PST_CHECK() \
  if (!velmora::test::HasPstCheck()) GTEST_SKIP() << velmora::test::kWithoutTools
