#include "recovery/folder_path.h"

#include <gtest/gtest.h>

namespace velmora::recovery {
namespace {

FolderRecord Named(std::uint32_t nid, std::uint32_t parent, text::Text name, text::Text containerClass = u"IPF.Note") {
  return {nid, parent, std::move(name), std::move(containerClass)};
}

TEST(FolderPath, EachNameIsPrecededByABackslash) {
  FolderList folders({Named(10, 5, u"Inbox"), Named(11, 10, u"Old")});
  EXPECT_EQ(BuildFolderPath(folders, 5, 11), u"\\Inbox\\Old");
}

TEST(FolderPath, TheChainEndsBelowTheTopFolderEvenIfThatHasARecord) {
  FolderList folders({Named(5, 1, u"Top of Personal Folders"), Named(10, 5, u"Inbox")});
  EXPECT_EQ(BuildFolderPath(folders, 5, 10), u"\\Inbox");
  EXPECT_EQ(BuildFolderPath(folders, 5, 5), u"");
}

TEST(FolderPath, TheChainEndsBelowTheRootNode) {
  FolderList folders({Named(0x122, 0x122, u"Root"), Named(10, 0x122, u"Inbox")});
  EXPECT_EQ(BuildFolderPath(folders, 0, 10), u"\\Inbox");
}

TEST(FolderPath, ALostParentHangsTheRestFromTheTop) {
  FolderList folders({Named(10, 99, u"Old"), Named(11, 10, u"Older")});
  EXPECT_EQ(BuildFolderPath(folders, 0, 11), u"\\Old\\Older");
}

TEST(FolderPath, AnUnknownFolderIsLostAndFoundWithoutABackslash) {
  FolderList folders({Named(10, 99, u"Lost & Found")});
  EXPECT_EQ(BuildFolderPath(folders, 0, 12), u"Lost & Found");
  EXPECT_EQ(BuildFolderPath(folders, 0, 10), u"\\Lost & Found");
}

TEST(FolderPath, IdentifierZeroIsTheTopWhileNoTopFolderIsKnown) {
  FolderList folders;
  EXPECT_EQ(BuildFolderPath(folders, 0, 0), u"");
}

TEST(FolderPath, AChainThatComesBackOnItselfEndsAtTheFirstIdentifierSeenTwice) {
  FolderList folders({Named(10, 11, u"a"), Named(11, 12, u"b"), Named(12, 10, u"c"), Named(13, 11, u"d")});
  EXPECT_EQ(BuildFolderPath(folders, 0, 10), u"\\c\\b\\a");
  EXPECT_EQ(BuildFolderPath(folders, 0, 13), u"\\a\\c\\b\\d");
}

TEST(FolderPath, AChainEndsWhereItsPathWouldGrowTooDeepOrTooLong) {
  std::vector<FolderRecord> chain;
  for (std::uint32_t nid = 1001; nid <= 11000; ++nid) chain.push_back(Named(nid, nid - 1, u"abc"));
  FolderList folders(std::move(chain));
  EXPECT_EQ(BuildFolderPath(folders, 0, 1001 + 399).size(), 400u * 4);
  EXPECT_EQ(BuildFolderPath(folders, 0, 11000).size(), kDeepestFolder * 4);
  FolderList longNames({Named(1, 99, text::Text(5000, u'x')), Named(2, 1, text::Text(5000, u'y'))});
  EXPECT_EQ(BuildFolderPath(longNames, 0, 2), u'\\' + text::Text(5000, u'y'));
  FolderList longName({Named(1, 99, text::Text(20000, u'x')), Named(2, 1, u"a")});
  EXPECT_EQ(BuildFolderPath(longName, 0, 1).size(), 20001u) << "one name is taken whole";
  EXPECT_EQ(BuildFolderPath(longName, 0, 2), u"\\a");
}

TEST(FolderPath, ABackslashInANameSeparates) {
  FolderList folders({Named(10, 99, u"a\\b")});
  const text::Text path = BuildFolderPath(folders, 0, 10);
  const SplitPath split = SplitAtLeaf(path);
  EXPECT_EQ(split.parentPath, u"\\a");
  EXPECT_EQ(split.leaf, u"b");
}

TEST(FolderPath, TheClassOfEveryFolderOnTheWayIsNormalised) {
  FolderList folders(
      {Named(10, 99, u"a", u"IPF.IMAP"), Named(11, 10, u"b", u"IPF.Imap"), Named(12, 99, u"c", u"IPF.Imap")});
  BuildFolderPath(folders, 0, 11);
  EXPECT_EQ(folders.Find(10)->containerClass, u"IPF.Note");
  EXPECT_EQ(folders.Find(11)->containerClass, u"IPF.Note");
  EXPECT_EQ(folders.Find(12)->containerClass, u"IPF.Imap");
}

TEST(FolderPath, APathWithoutABackslashIsAllLeaf) {
  const SplitPath split = SplitAtLeaf(kLostFolderName);
  EXPECT_EQ(split.parentPath, u"");
  EXPECT_EQ(split.leaf, u"Lost & Found");
}

TEST(FolderPath, TheTargetPathBeginsWithTwoBackslashesAndTheStore) {
  EXPECT_EQ(TargetPath(u"out Converted", u"\\Inbox"), u"\\\\out Converted\\Inbox");
}

}  // namespace
}  // namespace velmora::recovery
