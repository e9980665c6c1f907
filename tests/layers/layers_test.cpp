// The layers of the program, as its includes have them.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;

const fs::path kSource = fs::path(VELMORA_SOURCE_DIR) / "src";

/// Every layer with those that it may use beside itself. "operations" are the headers of src/store itself.
const std::map<std::string, std::set<std::string>> kMayUse = {
    {"platform", {}},
    {"text", {}},
    {"store/operations", {"text", "store/format"}},
    {"store/format", {"platform", "text"}},
    {"store/ndb", {"platform", "text", "store/format"}},
    {"store/ltp", {"platform", "text", "store/format", "store/ndb"}},
    {"store/messaging", {"platform", "text", "store/format", "store/ndb", "store/ltp", "store/operations"}},
    {"output/trace", {"text", "store/format", "store/operations"}},
    {"engine", {"platform", "text", "store/format", "store/ndb", "store/ltp"}},
    {"recovery", {"platform", "text", "store/format", "engine", "store/operations"}},
    {"output/items", {"text", "store/format", "recovery", "store/operations"}},
    {"complete", {"platform", "text", "store/format", "store/ndb", "store/ltp", "store/messaging", "engine"}},
    {"conversion",
     {"platform", "text", "store/format", "store/messaging", "engine", "recovery", "complete", "store/operations",
      "output/items"}},
    {"cli",
     {"platform", "text", "store/format", "complete", "conversion", "store/operations", "store/messaging",
      "output/trace"}},
    {"resources", {}},
    {"controls", {}},
    {"workflow",
     {"platform", "text", "store/format", "engine", "conversion", "resources", "controls", "store/operations",
      "store/messaging"}},
};

/// A source and its header are one unit, named by their path without the ending.
using Cycle = std::set<std::string>;

/// Headers of the language and of the libraries that the project uses. Outside the platform layer nothing
/// else in angle brackets may be included.
bool IsPortable(std::string_view header) {
  static const std::set<std::string_view> kLibraries = {"zlib.h", "libdeflate.h", "sha2.h", "md5.h", "immintrin.h"};
  for (const std::string_view beginning : {"unicode/", "fmt/", "tl/", "nlohmann/", "CLI/", "Q"}) {
    if (header.starts_with(beginning)) return true;
  }
  return kLibraries.contains(header) || header.find('.') == std::string_view::npos;
}

struct Include {
  std::string file;  ///< relative to src
  int line = 0;
  bool angle = false;
  std::string header;
};

/// The layer of a path relative to src; the longest that fits.
std::string LayerOf(const std::string& path) {
  std::string best;
  for (const auto& [layer, uses] : kMayUse) {
    if (path.starts_with(layer + "/") && layer.size() > best.size()) best = layer;
  }
  if (best.empty() && fs::path(path).parent_path() == "store") return "store/operations";
  return best;
}

std::vector<Include> AllIncludes() {
  std::vector<Include> found;
  for (const auto& entry : fs::recursive_directory_iterator(kSource)) {
    const std::string extension = entry.path().extension().string();
    if (extension != ".h" && extension != ".cpp" && extension != ".in") continue;
    std::ifstream file(entry.path());
    std::string text;
    for (int line = 1; std::getline(file, text); ++line) {
      const std::size_t hash = text.find_first_not_of(" \t");
      if (hash == std::string::npos || text.compare(hash, 8, "#include") != 0) continue;
      const std::size_t begin = text.find_first_of("<\"", hash);
      if (begin == std::string::npos) continue;
      const std::size_t end = text.find_first_of(">\"", begin + 1);
      found.push_back({fs::relative(entry.path(), kSource).string(), line, text[begin] == '<',
                       text.substr(begin + 1, end - begin - 1)});
    }
  }
  return found;
}

using Graph = std::map<std::string, std::set<std::string>>;

std::string UnitOf(const fs::path& path) { return (path.parent_path() / path.stem()).string(); }

/// Which units each unit includes.
Graph IncludedUnits() {
  Graph graph;
  for (const Include& include : AllIncludes()) {
    if (!include.angle) graph[UnitOf(include.file)].insert(UnitOf(include.header));
  }
  return graph;
}

void Reach(const Graph& graph, const std::string& unit, std::set<std::string>& reached) {
  const auto found = graph.find(unit);
  if (found == graph.end()) return;
  for (const std::string& next : found->second) {
    if (reached.insert(next).second) Reach(graph, next, reached);
  }
}

/// The largest sets of units of which each leads to each other one.
std::set<Cycle> CyclesOf(const Graph& graph) {
  std::map<std::string, std::set<std::string>> reached;
  for (const auto& [unit, included] : graph) Reach(graph, unit, reached[unit]);
  std::set<Cycle> cycles;
  for (const auto& [unit, from] : reached) {
    Cycle cycle = {unit};
    for (const std::string& other : from) {
      if (reached.contains(other) && reached.at(other).contains(unit)) cycle.insert(other);
    }
    if (cycle.size() > 1) cycles.insert(cycle);
  }
  return cycles;
}

/// A line for each include that a cycle is made of.
std::string Told(const Cycle& cycle, const Graph& graph) {
  std::string told;
  for (const std::string& unit : cycle) {
    const auto found = graph.find(unit);
    if (found == graph.end()) continue;
    for (const std::string& included : found->second) {
      if (included != unit && cycle.contains(included)) told += "  " + unit + " includes " + included + "\n";
    }
  }
  return told;
}

TEST(Layers, EveryFileBelongsToALayer) {
  const auto includes = AllIncludes();
  ASSERT_GT(includes.size(), 100u) << "the sources were not found under " << kSource;
  for (const Include& include : includes) {
    EXPECT_NE(LayerOf(include.file), "") << include.file;
  }
}

TEST(Layers, IncludesGoDownwardAlone) {
  for (const Include& include : AllIncludes()) {
    if (include.angle) continue;
    const std::string from = LayerOf(include.file);
    const std::string to = LayerOf(include.header);
    if (to.empty() || include.header.find("../") != std::string::npos) {
      ADD_FAILURE() << include.file << ":" << include.line << " includes " << include.header << ", not from the top";
      continue;
    }
    EXPECT_TRUE(to == from || kMayUse.at(from).contains(to))
        << include.file << ":" << include.line << ": " << from << " may not use " << to;
  }
}

TEST(Layers, OnlyThePlatformKnowsTheSystem) {
  for (const Include& include : AllIncludes()) {
    if (!include.angle || include.file.starts_with("platform/")) continue;
    EXPECT_TRUE(IsPortable(include.header)) << include.file << ":" << include.line << " includes " << include.header;
  }
}

/// What a line does that is right on one system alone: gives the bytes of a path or makes one of bytes, which are not
/// the name that the other system has, asks the file system past the limit that the other one sets for a path, or keeps
/// something for a thread, which the other one frees before it is destroyed.
std::string SystemBoundPart(const std::string& line) {
  if (line.find("thread_local") != std::string::npos) return "thread_local";
  static const std::regex kParts(
      R"(\.(generic_)?(u8|u16|u32|w)?string\(\)|\.native\(\)|u8path|[io]?fstream\b)"
      R"(|filesystem::path(\s+[a-z]\w*)?\s*[({]\s*[^)}"\s])"
      R"(|filesystem::(exists|space|file_size|create_\w+|rename|absolute|canonical|weakly_canonical|remove\w*|status)\()"
      R"(|filesystem::(is_\w+|copy\w*|last_write_time|temp_directory_path|\w*directory_iterator))");
  if (line.find("filesystem::") == std::string::npos && line.find("()") == std::string::npos &&
      line.find("stream") == std::string::npos && line.find("u8path") == std::string::npos) {
    return {};  // most lines by far, in a tenth of the time
  }
  std::smatch part;
  return std::regex_search(line, part, kParts) ? part.str() : std::string();
}

TEST(Layers, OnlyThePlatformTurnsNamesIntoPathsAndAsksTheFileSystem) {
  for (const auto& entry : fs::recursive_directory_iterator(kSource)) {
    const std::string file = fs::relative(entry.path(), kSource).string();
    const std::string extension = entry.path().extension().string();
    if (file.starts_with("platform/") || (extension != ".h" && extension != ".cpp")) continue;
    std::ifstream stream(entry.path());
    std::string text;
    for (int line = 1; std::getline(stream, text); ++line) {
      EXPECT_EQ(SystemBoundPart(text), "") << file << ":" << line << " is a matter of the platform";
    }
  }
}

TEST(Layers, ASystemBoundPathIsFoundInEachForm) {
  EXPECT_EQ(SystemBoundPart("name = path.string();"), ".string()");
  EXPECT_EQ(SystemBoundPart("return file.stem().generic_string();"), ".generic_string()");
  EXPECT_EQ(SystemBoundPart("std::filesystem::path(options.source)"), "filesystem::path(o");
  EXPECT_EQ(SystemBoundPart("const std::filesystem::path source{name};"), "filesystem::path source{n");
  EXPECT_EQ(SystemBoundPart("if (std::filesystem::exists(file, error))"), "filesystem::exists(");
  EXPECT_EQ(SystemBoundPart("std::ifstream file(path);"), "ifstream");
  EXPECT_EQ(SystemBoundPart("  thread_local Inflater inflater;"), "thread_local");
  EXPECT_EQ(SystemBoundPart("platform::PathOf(name) / \"profiles\""), "");
  EXPECT_EQ(SystemBoundPart("std::filesystem::path();"), "");
}

TEST(Layers, FilesOfALayerDoNotIncludeEachOtherInACircle) {
  const Graph graph = IncludedUnits();
  for (const Cycle& cycle : CyclesOf(graph)) {
    ADD_FAILURE() << "a cycle of " << cycle.size() << ":\n" << Told(cycle, graph);
  }
}

TEST(Layers, ACircleIsFoundWhoeverBeginsIt) {
  const Graph graph = {{"in", {"a"}}, {"a", {"b"}}, {"b", {"b", "c", "out"}}, {"c", {"a"}}, {"out", {}}, {"d", {"d"}}};
  EXPECT_EQ(CyclesOf(graph), std::set<Cycle>({{"a", "b", "c"}}));
  EXPECT_EQ(Told({"a", "b", "c"}, graph), "  a includes b\n  b includes c\n  c includes a\n");
  EXPECT_EQ(UnitOf("store/ndb/crc.cpp"), UnitOf("store/ndb/crc.h")) << "a source is one with its header";
}

TEST(Layers, TheTableItselfGoesDownwardAlone) {
  for (const auto& [layer, uses] : kMayUse) {
    for (const std::string& used : uses) {
      ASSERT_TRUE(kMayUse.contains(used)) << used;
      EXPECT_FALSE(kMayUse.at(used).contains(layer)) << layer << " and " << used << " use each other";
    }
  }
}

/// The words behind `mark` in a text, each as long as an anchor is.
void CollectAnchors(const fs::path& file, std::string_view mark, std::set<std::string>& found) {
  std::ifstream stream(file);
  const std::string text{std::istreambuf_iterator<char>(stream), {}};
  for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at)) {
    at += mark.size();
    const std::size_t end = text.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-", at);
    found.insert(text.substr(at, end - at));
  }
}

/// A rule that looks odd gives its reason by name; a reader can tell it from an accident.
TEST(Fidelity, TheRulesThatTheCodeNamesAndThoseOfThePageAreTheSame) {
  std::set<std::string> ofThePage;
  CollectAnchors(fs::path(VELMORA_SOURCE_DIR) / "docs" / "fidelity.md", "<a id=\"", ofThePage);
  std::set<std::string> ofTheCode;
  for (const auto& entry : fs::recursive_directory_iterator(kSource)) {
    if (entry.is_regular_file()) CollectAnchors(entry.path(), "docs/fidelity.md#", ofTheCode);
  }
  EXPECT_GT(ofTheCode.size(), 10u);
  EXPECT_EQ(ofTheCode, ofThePage);
}

std::string TextOf(const fs::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The roads of the architecture page: "1. `Class::Function`, `folder/file.cpp`: ...".
TEST(Architecture, EachRoadHasItsStopsInTheCodeAndNoneTwice) {
  const std::regex kStop("^(\\d+)\\. `([A-Za-z:]+)`, `([a-z_/.]+)`:.*");
  std::ifstream page(fs::path(VELMORA_SOURCE_DIR) / "docs" / "architecture.md");
  std::set<std::string> files;
  std::size_t roads = 0;
  std::string line;
  while (std::getline(page, line)) {
    std::smatch stop;
    if (!std::regex_match(line, stop, kStop)) continue;
    const int number = std::stoi(stop[1]);
    if (number == 1) {
      files.clear();
      ++roads;
    }
    EXPECT_LE(number, 12) << line;
    EXPECT_TRUE(files.insert(stop[3]).second) << "visited twice: " << line;
    const std::string name = stop[2];
    const std::string function = name.substr(name.rfind(':') == std::string::npos ? 0 : name.rfind(':') + 1);
    EXPECT_NE(TextOf(kSource / stop[3].str()).find(function + "("), std::string::npos) << line;
  }
  EXPECT_EQ(roads, 4u);
}

}  // namespace
