// velmora-make-store: a store of a given size for measurements. Prints what it holds as one JSON object.
#include <cstdio>
#include <exception>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bench/large_store.h"

namespace {

constexpr const char* kUsage =
    "Usage: velmora-make-store [options] SIZE_MB OUT\n"
    "  --items N      stop at N messages; with SIZE_MB 0 that alone counts\n"
    "  --format F     ansi, unicode (default) or unicode4k\n"
    "  --encoding E   none, permute (default) or cyclic\n"
    "  --small        mails of about 2 KB in place of 2 to 200 KB\n"
    "  --tiny         mails of a subject and one line\n"
    "  --files N      percent of the mails of 2 to 200 KB that carry files (default 25)\n"
    "  --old N        for each 100 messages N old versions, in blocks and pages that are free by now\n"
    "  --strewn       blocks and pages in no order all over the file\n"
    "  --one-folder   all messages in one folder\n"
    "  --per-folder N N messages in each folder (default 400)\n"
    "  --attachment N one file of N bytes in each mail\n";

using velmora::forge::Encoding;
using velmora::forge::Format;

struct Arguments {
  velmora::bench::LargeStoreOptions options;
  std::string out;
};

// What is not in them raises std::out_of_range, a logic error as all others of the command line.
const std::map<std::string, Format> kFormats = {
    {"ansi", Format::kAnsi}, {"unicode", Format::kUnicode}, {"unicode4k", Format::kUnicode4k}};
const std::map<std::string, Encoding> kEncodings = {
    {"none", Encoding::kNone}, {"permute", Encoding::kPermute}, {"cyclic", Encoding::kCyclic}};

Arguments Parse(const std::vector<std::string>& words) {
  Arguments arguments;
  std::vector<std::string> plain;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "--small") {
      arguments.options.small = true;
    } else if (words[i] == "--tiny") {
      arguments.options.tiny = true;
    } else if (words[i] == "--strewn") {
      arguments.options.strewn = true;
    } else if (words[i] == "--one-folder") {
      arguments.options.oneFolder = true;
    } else if (words[i] == "--format" && i + 1 < words.size()) {
      arguments.options.format = kFormats.at(words[++i]);
    } else if (words[i] == "--encoding" && i + 1 < words.size()) {
      arguments.options.encoding = kEncodings.at(words[++i]);
    } else if (words[i] == "--files" && i + 1 < words.size()) {
      arguments.options.withFiles = static_cast<unsigned>(std::stoul(words[++i]));
    } else if (words[i] == "--old" && i + 1 < words.size()) {
      arguments.options.oldVersions = static_cast<unsigned>(std::stoul(words[++i]));
    } else if (words[i] == "--items" && i + 1 < words.size()) {
      arguments.options.items = std::stoull(words[++i]);
    } else if (words[i] == "--per-folder" && i + 1 < words.size()) {
      arguments.options.perFolder = std::stoull(words[++i]);
    } else if (words[i] == "--attachment" && i + 1 < words.size()) {
      arguments.options.attachmentSize = std::stoull(words[++i]);
    } else {
      plain.push_back(words[i]);
    }
  }
  if (plain.size() != 2) throw std::invalid_argument("two arguments wanted");
  arguments.options.bytes = std::stoull(plain[0]) << 20;
  arguments.out = plain[1];
  if (arguments.options.bytes == 0 && arguments.options.items == 0) throw std::invalid_argument("no size");
  if (arguments.options.perFolder == 0) throw std::invalid_argument("no messages");
  return arguments;
}

}  // namespace

int main(int argc, char** argv) {
  Arguments arguments;
  try {
    arguments = Parse({argv + 1, argv + argc});
  } catch (const std::logic_error&) {
    std::fputs(kUsage, stderr);
    return 64;
  }
  try {
    const auto counts = velmora::bench::MakeLargeStore(arguments.out, arguments.options);
    std::printf("{\"folders\": %llu, \"messages\": %llu, \"attachments\": %llu, \"oldVersions\": %llu}\n",
                static_cast<unsigned long long>(counts.folders), static_cast<unsigned long long>(counts.messages),
                static_cast<unsigned long long>(counts.attachments),
                static_cast<unsigned long long>(counts.oldVersions));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "velmora-make-store: %s\n", error.what());
    return 73;
  }
  return 0;
}
