#include "output/kinds/new_store.h"

#include <algorithm>
#include <stdexcept>

namespace velmora::kinds {
namespace {

constexpr Nid kNameMap{0x61};
constexpr std::size_t kNameSize = 8;
constexpr std::size_t kGuidSize = 16;
constexpr std::uint32_t kFirstGuid = 3;  ///< the first of the stream; 2 stands for the set of the text names
constexpr std::uint32_t kTextNames = 2;
constexpr std::string_view kGuidTail = {"\0\0\0\0\xC0\0\0\0\0\0\0\x46", 12};

std::string StringOf(const std::vector<std::byte>& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::uint32_t NumberAt(const std::string& bytes, std::size_t at, int width) {
  std::uint32_t number = 0;
  for (int i = width; i-- > 0;)
    number = number << 8 | static_cast<unsigned char>(bytes.at(at + static_cast<std::size_t>(i)));
  return number;
}

std::optional<Set> SetOf(std::uint32_t number, const std::string& guids) {
  if (number == kTextNames) return Set::kKeywords;
  const std::size_t at = (number - kFirstGuid) * kGuidSize;
  if (number < kFirstGuid || guids.compare(at + 4, kGuidTail.size(), kGuidTail) != 0) return std::nullopt;
  switch (NumberAt(guids, at, 4)) {
    case 0x00062008:
      return Set::kCommon;
    case 0x00062004:
      return Set::kAddress;
    case 0x00062002:
      return Set::kAppointment;
    case 0x00062003:
      return Set::kTask;
    case 0x0006200A:
      return Set::kLog;
    case 0x0006200E:
      return Set::kNote;
    default:
      return std::nullopt;
  }
}

}  // namespace

NewStore::NewStore(const std::filesystem::path& path) {
  auto file = platform::OpenForReading(path);
  if (!file) throw std::runtime_error("cannot open " + path.string());
  file_ = std::move(*file);
  reader_ = ndb::StoreReader::Open(*file_);
  ReadNames();
}

void NewStore::ReadNames() {
  auto map = Node(kNameMap);
  const std::string guids = StringOf(map.Binary(0x00020102).value());
  const std::string entries = StringOf(map.Binary(0x00030102).value());
  for (std::size_t at = 0; at + kNameSize <= entries.size(); at += kNameSize) {
    const std::uint32_t setAndKind = NumberAt(entries, at + 4, 2);
    const auto set = SetOf(setAndKind >> 1, guids);
    if (!set || (setAndKind & 1) != static_cast<std::uint32_t>(*set == Set::kKeywords)) continue;
    const auto id = static_cast<std::uint16_t>(0x8000 + NumberAt(entries, at + 6, 2));
    ids_.emplace(std::pair(*set, *set == Set::kKeywords ? kKeywords.id : NumberAt(entries, at, 4)), id);
  }
}

ltp::PropertyContext NewStore::Node(Nid nid) const {
  const auto node = reader_->FindNode(nid);
  if (!node) throw std::runtime_error("no such node");
  return ltp::PropertyContext::Open(*reader_, node->trees);
}

std::vector<ltp::PropertyContext> NewStore::Messages() const {
  std::vector<ltp::PropertyContext> messages;
  for (const ndb::NodeEntry& node : reader_->Nodes()) {
    if (TypeOf(node.nid) == NidType::kNormalMessage) messages.push_back(Node(node.nid));
  }
  return messages;
}

std::optional<std::string> NewStore::Value(ltp::PropertyContext& message, const Where& where,
                                           std::uint16_t type) const {
  std::uint16_t id = where.id;
  if (where.set != Set::kTag) {
    const auto found = ids_.find({where.set, where.id});
    if (found == ids_.end()) return std::nullopt;
    id = found->second;
  }
  const auto value = message.Read(static_cast<PropTag>(id) << 16 | type);
  if (!value) return std::nullopt;
  return StringOf(*value);
}

}  // namespace velmora::kinds
