#include "output/kinds/source.h"

#include <charconv>
#include <cstdio>
#include <stdexcept>
#include <string_view>

namespace velmora::kinds {
namespace {

using output::Field;
using output::FieldType;

/// The id by which the rule of the keywords goes.
constexpr std::size_t kKeywordsIndex = 0x12;

struct Moment {
  int year = 0;
  unsigned month = 0, day = 0, hour = 0, minute = 0, second = 0;
};

Moment MomentOf(const char* value) {
  Moment at;
  if (std::sscanf(value, "%d-%u-%u %u:%u:%u", &at.year, &at.month, &at.day, &at.hour, &at.minute, &at.second) != 6) {
    throw std::invalid_argument(value);
  }
  return at;
}

forge::FileTime TimeOf(const Row& row) {
  const Moment at = MomentOf(row.value);
  return forge::TimeOf(at.year, at.month, at.day, at.hour, at.minute, at.second);
}

output::OleDate DateOf(const Row& row) {
  const std::uint64_t seconds = (TimeOf(row) - forge::TimeOf(1899, 12, 30)) / 10'000'000;
  return {static_cast<double>(seconds) / 86400.0};
}

std::int32_t NumberOf(const Row& row) { return std::stoi(row.value); }
bool FlagOf(const Row& row) { return std::string_view(row.value) == "true"; }

forge::PropertySet SetOf(Set set) {
  switch (set) {
    case Set::kAddress:
      return forge::PropertySet::kAddress;
    case Set::kAppointment:
      return forge::PropertySet::kAppointment;
    case Set::kTask:
      return forge::PropertySet::kTask;
    case Set::kLog:
      return forge::PropertySet::kLog;
    case Set::kNote:
      return forge::PropertySet::kNote;
    default:
      return forge::PropertySet::kCommon;
  }
}

forge::Property NamedBy(const Where& where, forge::Property property) {
  if (where.set == Set::kTag) return property;
  if (where == kKeywords) return forge::Named(forge::PropertySet::kPublic, u"Keywords", std::move(property));
  return forge::Named(SetOf(where.set), where.id, std::move(property));
}

forge::Property ValueProperty(const Row& row, text::TextView text) {
  const std::uint16_t id = row.source.id;
  switch (output::InfoOf(row.field).type) {
    case FieldType::Text:
      // In the heap, however long: a message's own block is all that a converter looks at.
      if (IsList(row.field)) return forge::Texts(id, {std::u16string(text)}, forge::Place::kHeap);
      return forge::Text(id, text, forge::Place::kHeap);
    case FieldType::Date:
      return forge::Time(id, TimeOf(row));
    case FieldType::Flag:
      // The read bit of the message flags is told as its opposite.
      if (row.place == kBits) return forge::Int32(id, 1);
      return forge::Bool(id, FlagOf(row));
    case FieldType::Number:
      return forge::Int32(id, static_cast<std::uint32_t>(NumberOf(row)));
    case FieldType::Number16:
      return forge::Int16(id, static_cast<std::uint16_t>(NumberOf(row)));
  }
  return {};
}

}  // namespace

text::Text TextOf(const Row& row) {
  return text::FromUtf8(row.value != kOwnName ? row.value
                                              : "\u00ab" + std::string(output::InfoOf(row.field).name) + "\u00bb");
}

output::FieldValue ValueOf(const Row& row) {
  switch (output::InfoOf(row.field).type) {
    case FieldType::Text:
      return TextOf(row);
    case FieldType::Date:
      return DateOf(row);
    case FieldType::Flag:
      return FlagOf(row);
    default:
      return NumberOf(row);
  }
}

bool IsList(Field field) { return field == Field::Categories || field == Field::Companies || field == Field::Children; }

forge::Property PropertyOf(const Row& row) { return PropertyOf(row, TextOf(row)); }

forge::Property PropertyOf(const Row& row, text::TextView text) {
  return NamedBy(row.source, ValueProperty(row, text));
}

forge::Message MessageOf(const Kind& kind, forge::PropertyList properties) {
  forge::Message message{.messageClass = std::u16string(kind.messageClass), .bare = true};
  message.properties = std::move(properties);
  message.context.keepOrder = true;
  return message;
}

forge::Message MessageOf(const Kind& kind) {
  forge::PropertyList properties;
  for (const Row& row : kind.rows) forge::Set(properties, PropertyOf(row));
  return MessageOf(kind, std::move(properties));
}

forge::Image SourceOf(const SourceForm& form, const std::vector<forge::Message>& messages) {
  // With so many names their list is a sub-node of the map, as in every store that has been used for a while.
  forge::Mailbox box(form.options, {.namesAtLeast = 200});
  for (std::uint32_t number = 0x8F00; box.names().Count() < kKeywordsIndex; ++number) {
    box.names().IdOf({.set = forge::PropertySet::kCommon, .number = number});
  }
  box.names().IdOf({.set = forge::PropertySet::kPublic, .text = u"Keywords"});
  const forge::Nid folder = box.AddFolder({.name = u"Sent", .containerClass = u"IPF.Note"});
  for (const forge::Message& message : messages) box.AddMessage(folder, message);
  return box.Finish();
}

std::span<const SourceForm> SourceForms() {
  using namespace forge;
  static const SourceForm kForms[] = {
      {"UnicodePst", {.format = Format::kUnicode, .encoding = Encoding::kPermute}, "source.pst"},
      {"AnsiPst", {.format = Format::kAnsi, .encoding = Encoding::kCyclic}, "source.pst"},
      {"PackedOst",
       {.format = Format::kUnicode4k, .encoding = Encoding::kNone, .client = Client::kOffline, .compressed = true},
       "source.ost"},
  };
  return kForms;
}

}  // namespace velmora::kinds
