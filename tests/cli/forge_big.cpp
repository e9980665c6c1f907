// Writes a store of some megabytes to a file: enough for a new store to grow while it is written.
#include <cstdio>
#include <exception>

#include "forge/mailbox.h"

int main(int argc, char** argv) {
  using namespace velmora::forge;
  if (argc != 2) return 64;
  try {
    Mailbox box;
    const Nid inbox = box.AddFolder({.name = u"Inbox", .containerClass = u"IPF.Note"});
    for (std::uint32_t i = 0; i < 60; ++i) {
      box.AddMessage(inbox, {.subject = u"With a file",
                             .plain = u"See below",
                             .attachments = {{.name = u"file.bin", .data = Noise(40000, i)}}});
    }
    box.Finish().Save(argv[1]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "velmora-forge-big: %s\n", error.what());
    return 73;
  }
  return 0;
}
