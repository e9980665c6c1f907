#include "store/support/pst_check.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "aids/aids.h"
#include "platform/user_folders.h"

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

fs::path Checker() { return ToolsFolder() / "pstcheck.py"; }

// What a store of a few made-up nodes lacks: all that concerns folders and messages.
std::string MailboxCodes() {
  std::string codes;
  for (int i = 1; i < 60; ++i) codes.append(i < 10 ? "M0" : "M").append(std::to_string(i)).append(",");
  return codes;
}

}  // namespace

bool HasPstCheck() { return !ToolsFolder().empty(); }

std::string PstCheck(std::span<const std::byte> store, Check check, const std::string& ignored) {
  const auto folder = platform::TemporaryFolder::Create();
  if (!folder) return "no temporary folder";
  const fs::path file = folder->Path() / "store.pst";
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char*>(store.data()), static_cast<std::streamsize>(store.size()));
  const fs::path output = folder->Path() / "findings";
  const std::string command = "python3 '" + Checker().string() + "' --strict --max 50 --ignore '" + ignored + "," +
                              (check == Check::kProperties ? MailboxCodes() : std::string()) + "' " +
                              (check == Check::kBlocks ? "--no-messaging '" : "'") + file.string() + "' > '" +
                              output.string() + "' 2>&1";
  if (std::system(command.c_str()) == 0) return {};
  std::ifstream in(output, std::ios::binary);
  std::string findings{std::istreambuf_iterator<char>(in), {}};
  return findings.empty() ? "the checker ended with a failure" : findings;
}

bool DumpStore(const fs::path& store, const fs::path& dump) {
  const std::string command =
      "python3 '" + Checker().string() + "' --dump '" + store.string() + "' > '" + dump.string() + "'";
  return std::system(command.c_str()) == 0;
}

}  // namespace velmora::test
