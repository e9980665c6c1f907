// Deleted messages that come back, stores that are read without header and trees, and the new store as the panes open
// it.
#include <algorithm>
#include <fstream>

#include "complete/complete_fixture.h"
#include "platform/path_text.h"
#include "store/messaging/pst_library.h"

namespace velmora::complete {
namespace {

class RecoveredTest : public CompleteTest {
 protected:
  /// A store in which an old page of the node tree still names a message that is deleted since.
  forge::Image WithDeleted() {
    forge::Mailbox box = NewBox();
    const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
    const forge::WrittenMessage deleted = forge::WriteMessage(box.store(), box.names(), Mail(u"Deleted"));
    box.AddMessage(inbox, Mail(u"Live"));
    box.store().AddPage(forge::NodePage(GetParam(), {{0x200F04, deleted.bidData, deleted.bidSub, inbox}}));
    return box.Finish();
  }

  /// The subjects of the messages in a folder of the new store.
  std::vector<std::u16string> SubjectsIn(const std::u16string& path) const {
    std::vector<std::u16string> subjects;
    const auto folders = target_->Folders();
    const auto folder = folders.find(u"/Top of Personal Folders" + path);
    if (folder == folders.end()) return subjects;
    for (const velmora::Nid nid : target_->Messages()) {
      if (target_->Reader().FindNode(nid)->nidParent != folder->second) continue;
      subjects.push_back(TextOf(target_->ItemOf(nid).properties, 0x0037));
    }
    return subjects;
  }
};
INSTANTIATE_TEST_SUITE_P(Formats, RecoveredTest, AllFormats(), NameOf);

TEST_P(RecoveredTest, ADeletedMessageComesBackOnRequestOnThePathThatItHad) {
  const forge::Image image = WithDeleted();
  Copy(image.bytes, {.deleted = true});
  EXPECT_THAT(SubjectsIn(u"/Inbox"), testing::ElementsAre(u"Live"));
  EXPECT_THAT(SubjectsIn(u"/Recovered Deleted Items/Inbox"), testing::ElementsAre(u"Deleted"));
  EXPECT_EQ(Count(NodeFate::kDeletedWritten), 1U);
  EXPECT_EQ(Count(NodeFate::kDeleted), 0U);
  EXPECT_EQ(account_.Totals().live, 1U) << "a deleted one is none of the items";
  EXPECT_TRUE(account_.IsWhole());
  ASSERT_EQ(account_.recovered.size(), 1U);
  EXPECT_TRUE(account_.recovered.begin()->second.isWhole);
}

TEST_P(RecoveredTest, ADeletedMessageStaysAwayUnlessItIsAskedFor) {
  Copy(WithDeleted().bytes);
  EXPECT_EQ(target_->Messages().size(), 1U);
  EXPECT_EQ(Count(NodeFate::kDeleted), 1U);
  EXPECT_EQ(Count(NodeFate::kDeletedWritten), 0U);
}

TEST_P(RecoveredTest, ADeletedMessageOfAnIdThatNoMessageMayHaveComesBackUnderANewOne) {
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  const forge::WrittenMessage deleted = forge::WriteMessage(box.store(), box.names(), Mail(u"Deleted"));
  box.AddMessage(inbox, Mail(u"Live"));
  box.store().AddPage(forge::NodePage(GetParam(), {{0x0104, deleted.bidData, deleted.bidSub, inbox}}));
  Copy(box.Finish().bytes, {.deleted = true});
  EXPECT_THAT(SubjectsIn(u"/Recovered Deleted Items/Inbox"), testing::ElementsAre(u"Deleted"));
  EXPECT_EQ(Count(NodeFate::kDeletedWritten), 1U);
  EXPECT_THAT(SubjectsIn(u"/Inbox"), testing::ElementsAre(u"Live"));
}

TEST_P(RecoveredTest, ADeletedMessageThatNoPageNamesStaysApartFromALiveOneThatGetsANewId) {
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  static_cast<void>(forge::WriteMessage(box.store(), box.names(), Mail(u"Deleted")));
  box.AddMessage(inbox, Mail(u"Live"), 0x300004);
  box.AddMessage(inbox, Mail(u"Live"), 0x0104);
  Copy(box.Finish().bytes, {.deleted = true});
  EXPECT_EQ(Count(NodeFate::kDeletedWritten), 1U);
  EXPECT_EQ(account_.recovered.size(), 1U);
  EXPECT_THAT(SubjectsIn(u"/Inbox"), testing::ElementsAre(u"Live", u"Live"));
  EXPECT_EQ(target_->Messages().size(), 3U);
}

TEST_P(RecoveredTest, WithoutHeaderAndRootsEverythingComesAcrossAsWithThem) {
  forge::Mailbox box = NewBox();
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  for (int i = 0; i < 40; ++i) box.AddMessage(box.AddFolder({.name = u"Inner", .parent = inbox}), Mail(u"Found"));
  const forge::Image sound = box.Finish();
  Copy(sound.bytes);
  const std::size_t folders = target_->Folders().size();
  forge::Image wrecked = sound;
  std::fill_n(wrecked.bytes.begin(), 1024, std::byte{0});
  for (const forge::PlacedPage& page : sound.pages) {
    if (page.level != 0)
      std::fill_n(wrecked.bytes.begin() + static_cast<std::ptrdiff_t>(page.offset), 512, std::byte{0});
  }
  CopyWrecked(wrecked.bytes);
  EXPECT_FALSE(account_.evidence.headerUsed);
  EXPECT_EQ(target_->Messages().size(), 40U);
  EXPECT_EQ(target_->Folders().size(), folders);
  EXPECT_EQ(account_.Totals().whole, 40U);
}

TEST_P(RecoveredTest, TheFileMapShowsWhatIsInUseAndWhatIsBroken) {
  forge::Mailbox box = NewBox();
  const auto added = box.AddMessage(box.AddFolder({.name = u"Inbox"}), Mail(u"Hurt"));
  forge::Image image = box.Finish();
  const forge::PlacedBlock block = image.Block(added.bidData);
  forge::BreakData(image, block);
  Copy(image.bytes);
  const FileMap& map = account_.fileMap;
  ASSERT_GT(map.cellBytes, 0U);
  EXPECT_EQ(map.cells.size(), (image.bytes.size() + map.cellBytes - 1) / map.cellBytes);
  EXPECT_EQ(map.cells[block.offset / map.cellBytes], FileUse::kFailed);
  EXPECT_EQ(map.cells.front(), FileUse::kTree);
  EXPECT_NE(std::ranges::count(map.cells, FileUse::kLive), 0);
  EXPECT_EQ(account_.evidence.hurtBlocks, 1U);
}

TEST_P(RecoveredTest, EachFolderTellsWhatBecameOfItsMessages) {
  Copy(WithDeleted().bytes, {.deleted = true});
  ASSERT_EQ(account_.folderAccounts.size(), 2U);
  EXPECT_EQ(account_.folderAccounts[0].path, u"/Inbox");
  EXPECT_EQ(account_.folderAccounts[0].whole, 1U);
  EXPECT_EQ(account_.folderAccounts[1].path, u"/Recovered Deleted Items/Inbox");
  EXPECT_EQ(account_.folderAccounts[1].deleted, 1U);
}

TEST_P(RecoveredTest, TheOperationsBehindThePanesOpenTheNewStore) {
  forge::Mailbox box = NewBox();
  box.AddMessage(box.AddFolder({.name = u"Inbox", .containerClass = u"IPF.Note"}), Mail(u"Shown"));
  Copy(box);
  const std::filesystem::path path = folder_.Path() / "copy.pst";
  const Bytes& bytes = target_->File();
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  messaging::PstLibrary library({.configFolder = folder_.Path()});
  const auto session = library.CreateRDOSession();
  const auto top = session->Stores()->OpenPSTStore(platform::TextOfPath(path))->IPMRootFolder();
  const auto inbox = top->Folders()->Item(u"Inbox");
  ASSERT_TRUE(inbox);
  ASSERT_EQ(inbox->Items()->Count(), 1);
  const auto mail = inbox->Items()->GetFirst();
  EXPECT_EQ(std::get<text::Text>(mail->Get(output::Field::Subject).value), u"Shown");
}

}  // namespace
}  // namespace velmora::complete
