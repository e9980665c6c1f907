// Every field of every kind, from a forged source through a whole conversion into each reader of the new store.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "output/kinds/conversion.h"
#include "output/kinds/new_store.h"
#include "output/kinds/pffexport.h"
#include "output/kinds/source.h"

namespace velmora::kinds {
namespace {

using output::RDOMail;
using output::Ref;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

struct Case {
  Kind kind;
  SourceForm form;
  friend void PrintTo(const Case& one, std::ostream* out) { *out << one.kind.name << " of a " << one.form.name; }
};

std::string NameOf(const testing::TestParamInfo<Case>& info) {
  return std::string(info.param.kind.name) + "_" + info.param.form.name;
}

std::vector<Case> Cases(std::span<const SourceForm> forms) {
  std::vector<Case> cases;
  for (const Kind& kind : Kinds()) {
    for (const SourceForm& form : forms) cases.push_back({kind, form});
  }
  return cases;
}

/// The conversion of an item with every field; each is made once.
Conversion& Converted(const Case& one) {
  static std::map<std::string, std::unique_ptr<Conversion>> made;
  auto& conversion = made[std::string(one.kind.name) + one.form.name];
  if (!conversion) {
    conversion = std::make_unique<Conversion>(SourceOf(one.form, {MessageOf(one.kind)}), one.form.fileName);
  }
  return *conversion;
}

std::string Shown(const Row& row) { return output::InfoOf(row.field).name; }

class EveryField : public testing::TestWithParam<Case> {
 protected:
  const Kind& kind() const { return GetParam().kind; }
  Conversion& conversion() const { return Converted(GetParam()); }
};

// ---------------------------------------------------------------------------------------- this project's own reader

TEST_P(EveryField, ReadsBackThroughItsOperation) {
  const auto items = ItemsOf(conversion().Folder(u"Sent"));
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(items[0]->MessageClass(), kind().messageClass);
  for (const Row& row : kind().rows) {
    const output::FieldRead read = items[0]->Get(row.field);
    EXPECT_TRUE(read.written) << Shown(row);
    EXPECT_TRUE(read.value == ValueOf(row))
        << Shown(row) << (read.value.index() == 0 ? " reads " + text::ToUtf8(read.AsText()) : "");
  }
  EXPECT_EQ(conversion().Report().recovery.lost.size(), 0u);
}

TEST_P(EveryField, StandsInThePropertyOfItsSet) {
  const NewStore store(conversion().Store());
  auto messages = store.Messages();
  ASSERT_EQ(messages.size(), 1u);
  for (const Row& row : kind().rows) {
    if (row.place == kBits) continue;
    const Where place = row.place == kSame ? row.source : row.place;
    EXPECT_EQ(store.Value(messages[0], place, KeyOf(row).type), BytesOf(row)) << Shown(row);
  }
}

INSTANTIATE_TEST_SUITE_P(OfEachSource, EveryField, testing::ValuesIn(Cases(SourceForms())), NameOf);

// ---------------------------------------------------------------------------------------- readers by others

class OtherReaders : public EveryField {
 protected:
  void SetUp() override { VELMORA_NEEDS_PEERS(); }

  std::filesystem::path PffexportItem() const {
    return conversion().Pffexport() / "Sent" / (std::string(kind().peerName) + "00001");
  }
};

TEST_P(OtherReaders, PffexportFindsEachFieldInItsPlace) {
  const DumpedValues values(PffexportItem() / "ItemValues.txt");
  for (const Row& row : kind().rows) {
    if (row.place == kBits) continue;
    EXPECT_EQ(values.Find(KeyOf(row)), BytesOf(row)) << Shown(row);
  }
}

TEST_P(OtherReaders, PffexportShowsTheFieldsThatItHasALineFor) {
  if (kind().peerFile == nullptr) {
    EXPECT_TRUE(std::filesystem::exists(PffexportItem() / "ItemValues.txt")) << "the values alone are compared";
    return;
  }
  const auto textOf = [&](const std::string& file) { return forge::TextOf(PffexportItem() / file); };
  const std::string all = textOf(kind().peerFile) + textOf("Recipients.txt") + textOf("Message.txt");
  for (const Row& row : kind().rows) {
    if (row.pffexport == kNotShown) {
      if (row.value == kOwnName) {
        EXPECT_THAT(all, Not(HasSubstr(ShownValue(row)))) << Shown(row) << " is shown";
      }
      continue;
    }
    const PffexportColumn column(row);
    const std::string text = textOf(column.file.empty() ? kind().peerFile : column.file);
    if (column.label == "*") {
      EXPECT_EQ(text, column.shown) << Shown(row);
    } else {
      EXPECT_THAT(LinesOf(text, column.label), Contains(column.shown)) << Shown(row);
    }
  }
}

TEST_P(OtherReaders, ReadpstShowsTheFieldsThatItHasALineFor) {
  if (kind().readpstFile == nullptr) {
    EXPECT_EQ(forge::CountFiles(conversion().Readpst()), 0) << "the kind is not left out";
    return;
  }
  const std::string text =
      forge::TextOf(conversion().Readpst() / conversion().Store().stem() / "Sent" / kind().readpstFile);
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (line.ends_with('\r')) line.pop_back();
    lines.push_back(line);
  }
  for (const Row& row : kind().rows) {
    if (row.readpst == kNotShown) {
      if (row.value == kOwnName) {
        EXPECT_THAT(text, Not(HasSubstr(ShownValue(row)))) << Shown(row) << " is shown";
      }
      continue;
    }
    std::string line = row.readpst;
    if (const std::size_t at = line.find('%'); at != std::string::npos) line.replace(at, 1, ShownValue(row));
    if (row.value == kOwnName) {
      EXPECT_THAT(line, HasSubstr(ShownValue(row))) << "the line is that of another field";
    }
    EXPECT_THAT(lines, Contains(line)) << Shown(row);
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, OtherReaders, testing::ValuesIn(Cases({&UnicodePst(), 1})), NameOf);

}  // namespace
}  // namespace velmora::kinds
