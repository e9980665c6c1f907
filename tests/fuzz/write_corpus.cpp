// Writes the seeds of the fuzz entries as files into a folder, where libFuzzer takes them from.
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "fuzz/corpus.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: velmora_fuzz_corpus FOLDER\n", stderr);
    return 64;
  }
  const std::filesystem::path folder = argv[1];
  std::filesystem::create_directories(folder);
  for (const auto& seed : velmora::fuzz::Corpus()) {
    std::ofstream file(folder / seed.name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(seed.bytes.data()), static_cast<std::streamsize>(seed.bytes.size()));
    if (!file.flush()) {
      std::fprintf(stderr, "cannot write %s\n", (folder / seed.name).c_str());
      return 74;
    }
  }
  return 0;
}
