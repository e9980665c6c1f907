// Writes a store with a folder and a mail in it: write_store FILE.pst
#include <chrono>
#include <cstdio>

#include "platform/path_text.h"
#include "store/messaging/pst_library.h"
#include "text/calendar.h"

using namespace velmora;
using output::Field;

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: write_store FILE.pst\n");
    return 2;
  }
  try {
    messaging::PstLibrary library({.configFolder = "."});
    const auto session = library.CreateRDOSession();
    const auto store = session->Stores()->AddPSTStore(platform::TextOfPath(argv[1]), u"An example");
    const auto folder = store->IPMRootFolder()->Folders()->Add(u"Letters", text::Text(u"IPF.Note"));

    const auto mail = folder->Items()->Add(u"IPM.Note");
    const auto now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    mail->Put(Field::Subject, text::Text(u"Good morning"));
    mail->Put(Field::SenderName, text::Text(u"Ada"));
    mail->Put(Field::SenderEmailAddress, text::Text(u"ada@example.com"));
    mail->Put(Field::To, text::Text(u"Grace <grace@example.com>"));
    mail->Put(Field::Body, text::Text(u"The store is open.\r\n"));
    mail->Put(Field::SentOn, text::DateOf(text::FileTimeOfUnixSeconds(now)));
    mail->Put(Field::Sent, true);
    mail->Save();

    // Without this the store is sealed too, when `session` goes, but nobody would hear of a failure.
    if (const auto sealed = library.Seal(); !sealed) throw std::runtime_error(sealed.error().message);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "write_store: %s\n", failure.what());
    return 1;
  }
}
