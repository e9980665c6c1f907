// What the new store adds to the fields of each kind, so that other programs show the item in its place: behind
// whole conversions, in the values that pffexport dumps.
#include <gtest/gtest.h>

#include <map>

#include "output/kinds/conversion.h"
#include "output/kinds/pffexport.h"
#include "output/kinds/source.h"

namespace velmora::kinds {
namespace {

std::string Number(std::uint64_t number, int width = 4) {
  std::string bytes;
  for (int i = 0; i < width; ++i) bytes.push_back(static_cast<char>(number >> (8 * i)));
  return bytes;
}

std::string Moment(int year, unsigned month, unsigned day, unsigned hour = 0, unsigned minute = 0) {
  return Number(forge::TimeOf(year, month, day, hour, minute), 8);
}

std::string Units(text::TextView text) {
  std::string bytes;
  for (const char16_t unit : text) bytes += Number(unit, 2);
  return bytes;
}

std::string Narrow(const char* text, std::size_t length) { return {text, length}; }

/// What names a person to whom no address book leads: name, type and address.
std::string OneOff(text::TextView name, text::TextView address) {
  constexpr std::string_view kHead = {
      "\0\0\0\0\x81\x2B\x1F\xA4\xBE\xA3\x10\x19\x9D\x6E\x00\xDD\x01\x0F\x54\x02\0\0\x01\x80", 24};
  const text::Text nul(1, u'\0');
  return std::string(kHead) + Units(text::Text(name) + nul + u"SMTP" + nul + text::Text(address) + nul);
}

struct Added {
  const char* kind;
  DumpedValues::Key key;
  std::string value;
};

DumpedValues::Key Named(std::uint32_t number, std::uint16_t type) { return {true, number, type}; }
DumpedValues::Key Tagged(std::uint32_t id, std::uint16_t type) { return {false, id, type}; }

std::vector<Added> AddedValues() {
  using namespace forge;
  const std::string yes(1, '\1');
  const std::string no(1, '\0');
  // clang-format off
  return {
      // A mail that is flagged with a date stands in the to-do list.
      {"Mail",             Named(0x8105, kTime),    Moment(2021, 3, 31)},
      {"Mail",             Named(0x8517, kTime),    Moment(2021, 3, 31)},
      {"Mail",             Tagged(0x0E2B, kInt32),  Number(1)},
      {"Mail",             Named(0x8506, kBool),    yes},
      // A contact is filed by its name, and each of its addresses is a complete set in the list of slots.
      {"Contact",          Named(0x8005, kString),  Units(u"\u00abLastName\u00bb, \u00abFirstName\u00bb")},
      {"Contact",          Named(0x8006, kInt32),   Number(0x8017)},
      {"Contact",          Named(0x8084, kString),  Units(u"one@fjord.example")},
      {"Contact",          Named(0x8085, kBinary),  OneOff(u"\u00abEmail1DisplayName\u00bb", u"one@fjord.example")},
      {"Contact",          Named(0x8094, kString),  Units(u"two@fjord.example")},
      {"Contact",          Named(0x8095, kBinary),  OneOff(u"\u00abEmail2DisplayName\u00bb", u"two@fjord.example")},
      {"Contact",          Named(0x80A4, kString),  Units(u"three@fjord.example")},
      {"Contact",          Named(0x80A5, kBinary),  OneOff(u"\u00abEmail3DisplayName\u00bb", u"three@fjord.example")},
      {"Contact",          Named(0x8028, 0x1003),   Number(0) + Number(1) + Number(2)},
      {"Contact",          Named(0x8029, kInt32),   Number(7)},
      {"Contact",          Named(0x80DE, kTime),    Moment(1974, 3, 9)},
      {"Contact",          Named(0x80DF, kTime),    Moment(2001, 9, 8)},
      {"Contact",          Tagged(0x1080, kInt32),  Number(0x200)},
      // A list shows by its name.
      {"DistributionList", Named(0x8053, kString),  Units(u"\u00abLastName\u00bb, \u00abFirstName\u00bb")},
      {"DistributionList", Tagged(0x1080, kInt32),  Number(0x202)},
      // Status, percentage and flag of a task agree, and its dates stand where views look for them.
      {"Task",             Named(0x8102, kDouble),  Narrow("\0\0\0\0\0\0\xF0\x3F", 8)},
      {"Task",             Named(0x8516, kTime),    Moment(2021, 3, 1)},
      {"Task",             Named(0x8517, kTime),    Moment(2021, 3, 31)},
      {"Task",             Tagged(0x1080, kInt32),  Number(0x500)},
      // An appointment appears on its day by the common start and end.
      {"Appointment",      Named(0x8516, kTime),    Moment(2021, 5, 3, 12)},
      {"Appointment",      Named(0x8517, kTime),    Moment(2021, 5, 3, 12, 45)},
      {"Appointment",      Tagged(0x0060, kTime),   Moment(2021, 5, 3, 12)},
      {"Appointment",      Tagged(0x0061, kTime),   Moment(2021, 5, 3, 12, 45)},
      {"Appointment",      Named(0x8223, kBool),    no},
      {"Appointment",      Tagged(0x1080, kInt32),  Number(0x400)},
      {"Meeting",          Tagged(0x1080, kInt32),  Number(0x404)},
      {"Journal",          Named(0x8708, kTime),    Moment(2021, 2, 6, 9, 12)},
      {"Journal",          Named(0x8516, kTime),    Moment(2021, 2, 6, 9)},
      {"Journal",          Named(0x8517, kTime),    Moment(2021, 2, 6, 9, 12)},
      {"Journal",          Named(0x8712, kString),  Units(u"\u00abType\u00bb")},
      {"Note",             Tagged(0x1080, kInt32),  Number(0x301)},
  };
  // clang-format on
}

class Completed : public testing::TestWithParam<Kind> {};

TEST_P(Completed, HasWhatOtherProgramsLookFor) {
  VELMORA_NEEDS_PEERS();
  Conversion conversion(SourceOf(UnicodePst(), {MessageOf(GetParam())}), UnicodePst().fileName);
  const DumpedValues values(conversion.Pffexport() / "Sent" / (std::string(GetParam().peerName) + "00001") /
                            "ItemValues.txt");
  int compared = 0;
  for (const Added& added : AddedValues()) {
    if (added.kind != std::string_view(GetParam().name)) continue;
    EXPECT_EQ(values.Find(added.key), added.value) << std::hex << added.key.number;
    ++compared;
  }
  EXPECT_GT(compared, 0);
}

INSTANTIATE_TEST_SUITE_P(Kinds, Completed, testing::ValuesIn(Kinds().begin(), Kinds().end()),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace velmora::kinds
