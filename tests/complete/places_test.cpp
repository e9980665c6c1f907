// Stores that are not all of their file: without their front, behind something else, several in one file.
#include <algorithm>

#include "complete/complete_fixture.h"

namespace velmora::complete {
namespace {

using testing::UnorderedElementsAreArray;

using Subjects = std::vector<std::u16string>;

Bytes operator+(Bytes one, const Bytes& other) {
  one.insert(one.end(), other.begin(), other.end());
  return one;
}

Bytes Without(Bytes bytes, std::uint64_t front) {
  bytes.erase(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(front));
  return bytes;
}

/// What the first megabyte of a disk may look like: a table of partitions, zeros, a boot sector, old contents.
Bytes FrontOfDisk(std::size_t size) {
  Bytes disk(size);
  const Bytes noise = Noise(size, 11);
  std::copy_n(noise.begin(), std::min<std::size_t>(440, size), disk.begin());
  if (size >= 512) {
    disk[0x1C2] = std::byte{7};
    disk[510] = std::byte{0x55};
    disk[511] = std::byte{0xAA};
  }
  for (std::size_t at = 2048; at + 512 <= size; at += 1536) std::copy_n(noise.begin() + at, 512, disk.begin() + at);
  return disk;
}

class PlacesTest : public CompleteTest {
 protected:
  struct Forged {
    forge::Image image;
    Subjects subjects;
    std::vector<std::uint64_t> begins;  ///< of the blocks of each of these messages
    const Bytes& Whole() const { return image.bytes; }
    Bytes WithoutHeader() const {
      forge::Image wiped = image;
      forge::WipeHeader(wiped);
      return wiped.bytes;
    }
  };

  /// Every store has the same ids of nodes and of blocks.
  static Forged Forge(const std::u16string& name, int messages = 12) {
    Forged forged;
    forge::Mailbox box = NewBox();
    const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
    const forge::Nid inner = box.AddFolder({.name = u"Folder of " + name, .parent = inbox});
    for (int i = 0; i < messages; ++i) {
      forged.subjects.push_back(name + u" " + std::u16string(1, static_cast<char16_t>(u'a' + i)));
      forged.begins.push_back(box.store().End());
      forge::Message mail = Mail(forged.subjects.back());
      mail.plain = name + std::u16string(static_cast<std::size_t>(600 + 40 * i), u'p');
      mail.recipients = {{u"Bo", u"bo@example.org"}};
      mail.attachments = {{.name = u"a.bin", .data = Noise(9000, static_cast<std::uint32_t>(i + messages))}};
      box.AddMessage(i % 2 == 0 ? inbox : inner, mail);
    }
    forged.image = box.Finish();
    return forged;
  }

  /// Copies the file and gives the subjects of all that came out of it, in part or whole.
  Subjects CopiedOf(const Bytes& file, const CopyOptions& options = {}) {
    CopyWrecked(file, options);
    Subjects subjects;
    for (const velmora::Nid nid : target_->Messages())
      subjects.push_back(TextOf(target_->ItemOf(nid).properties, 0x0037));
    return subjects;
  }

  void ExpectAll(const Forged& forged, const Bytes& file, const std::string& what) {
    EXPECT_THAT(CopiedOf(file), UnorderedElementsAreArray(forged.subjects)) << what;
    EXPECT_EQ(account_.Totals().whole, forged.subjects.size()) << what;
    EXPECT_TRUE(target_->Folders().contains(u"/Top of Personal Folders/Inbox")) << what;
  }

  /// From a store that lacks all ahead of its fourth message, and so many bytes `more`, which are of an attachment;
  /// with something behind it.
  void ExpectBehindThird(const Forged& forged, const Bytes& behind, const Bytes& store, std::uint64_t more) {
    const Subjects left(forged.subjects.begin() + 3, forged.subjects.end());
    EXPECT_THAT(CopiedOf(Without(store, forged.begins[3] + more) + behind), UnorderedElementsAreArray(left)) << more;
    EXPECT_EQ(account_.Totals().whole, left.size() - (more == 0 ? 0 : 1)) << more;
    EXPECT_EQ(account_.Totals().partial, more == 0 ? 0U : 1U) << more;
    EXPECT_EQ(account_.Totals().lost, 3U) << more;
  }
};

INSTANTIATE_TEST_SUITE_P(Formats, PlacesTest, AllFormats(), NameOf);

TEST_P(PlacesTest, WhatLiesBehindAMissingFrontComesAcrossWhole) {
  const Forged forged = Forge(u"Mine");
  for (const std::uint64_t more : {0U, 1U, 511U}) ExpectBehindThird(forged, Bytes(), forged.Whole(), more);
}

TEST_P(PlacesTest, WithoutAnyPageOfATreeItIsTheSame) {
  const Forged forged = Forge(u"Mine");
  forge::Image image = forged.image;
  forge::WipeTrees(image);
  for (const std::uint64_t more : {0U, 3U}) ExpectBehindThird(forged, Bytes(), image.bytes, more);
}

TEST_P(PlacesTest, WhatStandsAheadOfAStoreChangesNothing) {
  const Forged forged = Forge(u"Mine");
  for (const std::size_t ahead : {512U, 4096U, 1U << 20U, 4097U, 333U}) {
    ExpectAll(forged, Bytes(ahead) + forged.Whole(), "zeros " + std::to_string(ahead));
    ExpectAll(forged, Noise(ahead, 4) + forged.Whole(), "noise " + std::to_string(ahead));
    ExpectAll(forged, FrontOfDisk(ahead) + forged.Whole(), "disk " + std::to_string(ahead));
    ExpectAll(forged, FrontOfDisk(ahead) + forged.WithoutHeader() + Noise(5000, 6),
              "no header " + std::to_string(ahead));
  }
}

TEST_P(PlacesTest, OfTwoStoresTheOneAtTheBeginningComesAcrossAndNothingOfTheOther) {
  const Forged mine = Forge(u"Mine", 5);
  const Forged other = Forge(u"Other", 15);
  for (const Bytes& between : {Bytes(), Bytes(1024), Noise(777, 2)}) {
    for (const Bytes& first : {mine.Whole(), mine.WithoutHeader()}) {
      for (const Bytes& second : {other.Whole(), other.WithoutHeader()}) {
        ExpectAll(mine, first + between + second, std::to_string(between.size()));
        ExpectAll(other, second + between + first, std::to_string(between.size()));
      }
    }
  }
}

TEST_P(PlacesTest, NothingOfTheOtherStoreComesBackAsDeletedEither) {
  const Forged mine = Forge(u"Mine", 5);
  const Forged other = Forge(u"Other", 15);
  for (const Bytes& first : {mine.Whole(), mine.WithoutHeader()}) {
    for (const Bytes& second : {other.Whole(), other.WithoutHeader()}) {
      EXPECT_THAT(CopiedOf(first + second, {.deleted = true}), UnorderedElementsAreArray(mine.subjects));
    }
  }
}

TEST_P(PlacesTest, OfStoresBehindSomethingElseTheLargerOneComesAcross) {
  const Forged mine = Forge(u"Mine", 5);
  const Forged other = Forge(u"Other", 15);
  ExpectAll(other, FrontOfDisk(5120) + mine.Whole() + other.Whole(), "in front");
  ExpectAll(other, FrontOfDisk(5120) + other.WithoutHeader() + mine.Whole(), "behind");
}

TEST_P(PlacesTest, AStoreWithoutItsFrontIsNotFilledUpFromTheOneBehindIt) {
  const Forged mine = Forge(u"Mine", 15);
  const Forged other = Forge(u"Other", 5);
  for (const std::uint64_t more : {0U, 5U}) {
    ExpectBehindThird(mine, other.Whole(), mine.Whole(), more);
    ExpectBehindThird(mine, other.WithoutHeader(), mine.Whole(), more);
  }
}

TEST_P(PlacesTest, WhatLiesBehindTheEndThatTheHeaderTellsIsNoPartOfTheStore) {
  const Forged mine = Forge(u"Mine", 5);
  const forge::Image other = Forge(u"Other", 15).image;
  const forge::Bytes& bytes = other.bytes;
  Bytes file = mine.Whole();
  for (std::size_t i = other.blocks.size() - 2; i < other.blocks.size(); ++i) {
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(other.blocks[i].offset);
    file.insert(file.end(), begin, begin + static_cast<std::ptrdiff_t>(other.blocks[i].placeSize));
  }
  const auto store = Scan(file);
  ASSERT_TRUE(store->Place());
  EXPECT_EQ(store->Place()->to, mine.Whole().size());
  EXPECT_THAT(store->Others(), testing::IsEmpty()) << "two blocks make no store";
  EXPECT_EQ(store->Found().blocks.size(), mine.image.blocks.size());
}

TEST_P(PlacesTest, TheMapOfTheFileShowsTheFrontThatItLacks) {
  const Forged forged = Forge(u"Mine");
  const std::uint64_t missing = forged.begins[3];
  CopyWrecked(Without(forged.Whole(), missing));
  const FileMap& map = account_.fileMap;
  EXPECT_EQ(map.cells.size(), (forged.Whole().size() + map.cellBytes - 1) / map.cellBytes);
  EXPECT_EQ(static_cast<std::uint64_t>(std::ranges::count(map.cells, FileUse::kUnreadable)),
            (missing + map.cellBytes - 1) / map.cellBytes);
  EXPECT_EQ(map.cells.front(), FileUse::kUnreadable);
}

/// Counts the bytes that are read of it.
class CountedFile : public platform::MemoryFile {
 public:
  CountedFile(forge::Bytes bytes, std::uint64_t& count) : MemoryFile(std::move(bytes)), count_(count) {}
  Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    const auto read = MemoryFile::ReadAt(offset, out);
    count_ += *read;
    return read;
  }

 private:
  std::uint64_t& count_;
};

TEST_P(PlacesTest, AWholeStoreIsLookedThroughOnce) {
  const Bytes whole = Forge(u"Mine").Whole();
  std::uint64_t count = 0;
  const auto store = engine::ProvenStore::Prove(std::make_unique<CountedFile>(whole, count), false, run_);
  EXPECT_FALSE(store->Place());
  EXPECT_GE(count, whole.size());
  EXPECT_LT(count, 2 * whole.size());
  count = 0;
  engine::ProvenStore::Prove(std::make_unique<CountedFile>(Bytes(512) + whole, count), false, run_);
  EXPECT_GT(count, 4 * whole.size()) << "what this test is for could not be seen";
}

TEST_P(PlacesTest, TheStoreThatIsAskedForComesAcross) {
  const Forged mine = Forge(u"Mine", 5);
  const Forged other = Forge(u"Other", 15);
  const Bytes file = mine.Whole() + other.Whole();
  const auto prove = [&](std::uint64_t at) {
    return engine::ProvenStore::Prove(std::make_unique<platform::MemoryFile>(file), false, run_, at);
  };
  EXPECT_EQ(prove(0)->Place()->to, mine.Whole().size());
  const auto second = prove(mine.Whole().size());
  ASSERT_TRUE(second->IsStore());
  EXPECT_EQ(second->Bytes().Size(), other.Whole().size());
  EXPECT_EQ(second->Place()->origin, static_cast<engine::Origin>(mine.Whole().size()));
  ASSERT_EQ(second->Others().size(), 1U);
  EXPECT_EQ(second->Others()[0].from, 0U);
  EXPECT_FALSE(prove(512)->IsStore());
}

}  // namespace
}  // namespace velmora::complete
