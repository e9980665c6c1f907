// Whole stores that another program made, of all three generations, read by our readers and by the checker, which
// shares no line with them: every folder and message, its properties, and the rows of its tables.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "aids/aids.h"
#include "platform/file.h"
#include "platform/user_folders.h"
#include "store/format/store_nodes.h"
#include "store/ltp/property_context.h"
#include "store/ltp/table_context.h"
#include "store/ndb/store_reader.h"
#include "store/support/pst_check.h"

namespace velmora::ltp {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

std::string Hex(std::span<const std::byte> bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string hex;
  for (const std::byte byte : bytes) {
    hex += kDigits[std::to_integer<int>(byte >> 4)];
    hex += kDigits[std::to_integer<int>(byte & std::byte{15})];
  }
  return hex;
}

/// How many values were compared, and how many differ.
struct Tally {
  std::size_t same = 0;
  std::size_t different = 0;

  void Count(bool isSame, const std::string& what) {
    ++(isSame ? same : different);
    EXPECT_TRUE(isSame) << what;
  }
};

/// Compares a property with the checker's line of it, where the two have a form in common.
void Compare(PropertyContext& pc, std::uint16_t id, const json& expected, const std::string& what, Tally& tally) {
  const auto type = static_cast<PropType>(std::stoul(expected["t"].get<std::string>(), nullptr, 16));
  const PropTag tag = MakeTag(id, type);
  const json value = expected.value("v", json());
  switch (type) {
    case PropType::kInteger32:
      return tally.Count(pc.Integer32(tag) == static_cast<std::int32_t>(value.get<std::int64_t>()), what);
    case PropType::kBoolean:
      return tally.Count(pc.Boolean(tag) == value.get<bool>(), what);
    case PropType::kString:
      return tally.Count(pc.Text(tag) && text::ToUtf8(*pc.Text(tag)) == value.get<std::string>(), what);
    case PropType::kBinary: {
      const auto bytes = pc.Binary(tag);
      const bool isSame = bytes && bytes->size() == expected["n"] && pc.SizeOf(tag) == bytes->size() &&
                          (!expected.contains("hex") || Hex(*bytes) == expected["hex"]);
      return tally.Count(isSame, what);
    }
    default:
      return tally.Count(pc.Read(tag).has_value() && pc.Find(id)->wPropType == type, what);
  }
}

void CompareObject(const ndb::BlockSource& store, const ndb::NodeTrees& node, const json& line, Tally& tally) {
  const std::string name = line.value("nid", "?");
  auto pc = PropertyContext::Open(store, node);
  for (const auto& [key, expected] : line["props"].items()) {
    if (key.size() != 6 || !key.starts_with("0x")) continue;  // named ones are listed by their names
    Compare(pc, static_cast<std::uint16_t>(std::stoul(key, nullptr, 16)), expected, name + " " + key, tally);
  }
  tally.Count(pc.Records().size() == line["props"].size(), name + " number of properties");

  const auto rowsOf = [&](Nid nid) -> std::size_t {
    const auto entry = pc.FindSubnode(nid);
    return entry ? TableContext::Open(store, entry->trees).RowCount() : 0;
  };
  if (line.contains("recipients")) {
    tally.Count(rowsOf(nid::kRecipientTable) == line["recipients"].size(), name + " recipients");
  }
  for (const json& attachment : line.value("attachments", json::array())) {
    const Nid nid{static_cast<std::uint32_t>(std::stoul(attachment["nid"].get<std::string>(), nullptr, 16))};
    const auto entry = pc.FindSubnode(nid);
    ASSERT_TRUE(entry) << name;
    auto properties = PropertyContext::Open(store, entry->trees);
    if (attachment["method"] == 1) {
      tally.Count(properties.SizeOf(0x37010102) == attachment["size"].get<std::uint64_t>(), name + " size");
    }
    if (!attachment.contains("embedded")) continue;
    const auto object = properties.ReadObject(0x3701000D);
    ASSERT_TRUE(object) << name;
    CompareObject(store, properties.FindSubnode(object->nid)->trees, attachment["embedded"], tally);
  }
}

TEST(KnownStores, AreReadAsTheCheckerReadsThem) {
  const fs::path stores = test::StoresFolder();
  if (stores.empty()) GTEST_SKIP() << "no folder of stores beside the sources; VELMORA_STORES names one";
  VELMORA_NEEDS_PST_CHECK();
  const auto folder = platform::TemporaryFolder::Create().value();
  std::set<FormatId> formats;
  Tally tally;
  for (const auto& entry : fs::directory_iterator(stores)) {
    if (entry.path().extension() != ".pst" && entry.path().extension() != ".ost") continue;
    SCOPED_TRACE(entry.path().filename().string());
    const fs::path dump = folder.Path() / "dump";
    ASSERT_TRUE(test::DumpStore(entry.path(), dump));
    const auto file = platform::OpenForReading(entry.path()).value();
    const auto store = ndb::StoreReader::Open(*file);
    EXPECT_TRUE(store->Damage().List().empty());
    formats.insert(store->Format().formatId);

    std::ifstream lines(dump);
    for (std::string text; std::getline(lines, text);) {
      const json line = json::parse(text);
      if (line["kind"] == "store") {
        EXPECT_EQ(line["nodes"], store->Nodes().size());
        EXPECT_EQ(line["blocks"], store->BlockCount());
        CompareObject(*store, store->FindNode(nid::kMessageStore)->trees, line, tally);
        continue;
      }
      const Nid nid{static_cast<std::uint32_t>(std::stoul(line["nid"].get<std::string>(), nullptr, 16))};
      ASSERT_TRUE(store->FindNode(nid)) << line["nid"];
      CompareObject(*store, store->FindNode(nid)->trees, line, tally);
    }
  }
  EXPECT_EQ(formats.size(), 3u) << "stores of every generation";
  EXPECT_GT(tally.same, 1000u);
  EXPECT_EQ(tally.different, 0u);
}

}  // namespace
}  // namespace velmora::ltp
