// Writes the demo store to a file.
#include <cstdio>
#include <exception>
#include <string_view>

#include "forge/demo_store.h"

int main(int argc, char** argv) {
  using velmora::forge::DemoState;
  const bool sound = argc == 3 && std::string_view(argv[1]) == "--sound";
  if (argc != 2 && !sound) {
    std::fputs("Usage: velmora-forge-demo [--sound] OUT.ost\n", stderr);
    return 64;
  }
  try {
    velmora::forge::ForgeDemoStore(sound ? DemoState::kSound : DemoState::kDamaged).Save(argv[argc - 1]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "velmora-forge-demo: %s\n", error.what());
    return 73;
  }
  return 0;
}
