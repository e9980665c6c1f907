#include "recovery/folder_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace velmora::recovery {
namespace {

using testing::ElementsAre;

FolderRecord Folder(std::uint32_t nid, std::uint32_t parent = 0, text::Text containerClass = u"IPF.Note") {
  return {nid, parent, u"f", std::move(containerClass)};
}

std::vector<std::uint32_t> Nids(const std::vector<FolderRecord>& folders) {
  std::vector<std::uint32_t> nids;
  for (const FolderRecord& folder : folders) nids.push_back(folder.nid);
  return nids;
}

std::vector<std::uint32_t> Order(std::vector<FolderRecord> folders) { return Nids(OrderFolders(std::move(folders))); }

TEST(FolderCollector, FoldersStandByAscendingIdentifier) {
  FolderCollector folders;
  for (const std::uint32_t nid : {30u, 10u, 20u}) folders.AddFolderRecord(Folder(nid));
  EXPECT_TRUE(folders.Contains(10));
  EXPECT_FALSE(folders.Contains(11));
  EXPECT_THAT(Nids(folders.Take()), ElementsAre(10, 20, 30));
}

TEST(FolderCollector, AWalkNormalisesTheClassesThatItPassesAndTheOneAtWhichItStopsButNotTheFirst) {
  FolderCollector folders;
  for (const std::uint32_t nid : {10u, 20u, 40u, 50u}) folders.AddFolderRecord(Folder(nid, 0, u"IPF.Note"));
  FolderCollector imap;
  for (const std::uint32_t nid : {10u, 20u, 40u, 50u}) imap.AddFolderRecord(Folder(nid, 0, u"ipf.imap"));
  // 20 was passed on the way to 40, 40 on the way to 50; nothing has walked over 50, and 10 is the first.
  imap.AddFolderRecord(Folder(30, 0, u"IPF.Imap"));
  std::vector<text::Text> classes;
  for (const FolderRecord& folder : imap.Take()) classes.push_back(folder.containerClass);
  EXPECT_THAT(classes, ElementsAre(u"ipf.imap", u"IPF.Note", u"IPF.Imap", u"IPF.Note", u"ipf.imap"));
}

TEST(FolderCollector, AFolderThatWasTheFirstIsNormalisedOnceItIsPassedAsALaterOne) {
  FolderCollector folders;
  folders.AddFolderRecord(Folder(20, 0, u"IPF.Imap"));
  folders.AddFolderRecord(Folder(10));  // the walk stops at the first at once
  folders.AddFolderRecord(Folder(5));
  EXPECT_EQ(folders.Take()[2].containerClass, u"IPF.Imap");

  folders.AddFolderRecord(Folder(20, 0, u"IPF.Imap"));
  folders.AddFolderRecord(Folder(10));
  folders.AddFolderRecord(Folder(30));
  EXPECT_EQ(folders.Take()[1].containerClass, u"IPF.Note");
}

/// The walk from element to element, as the rule has it.
void AddByWalking(std::vector<FolderRecord>& list, FolderRecord folder) {
  std::size_t at = 0;
  for (; at < list.size(); ++at) {
    if (at > 0) NormaliseClass(list[at]);
    if (list[at].nid > folder.nid) break;
  }
  list.insert(list.begin() + static_cast<std::ptrdiff_t>(at), std::move(folder));
}

TEST(FolderCollector, TheResultIsThatOfAWalkFromElementToElement) {
  std::mt19937 random(7);
  for (int round = 0; round < 200; ++round) {
    FolderCollector folders;
    std::vector<FolderRecord> list;
    std::vector<std::uint32_t> nids(1 + random() % 12);
    for (std::size_t i = 0; i < nids.size(); ++i) nids[i] = static_cast<std::uint32_t>(i);
    std::shuffle(nids.begin(), nids.end(), random);
    for (const std::uint32_t nid : nids) {
      const FolderRecord folder = Folder(nid, 0, random() % 2 == 0 ? u"IPF.Imap" : u"IPF.Note");
      folders.AddFolderRecord(folder);
      AddByWalking(list, folder);
    }
    EXPECT_EQ(folders.Take(), list);
  }
}

TEST(FolderList, AFolderIsFoundByItsIdentifier) {
  FolderList folders({Folder(10), Folder(20)});
  ASSERT_NE(folders.Find(20), nullptr);
  EXPECT_EQ(folders.Find(20)->nid, 20u);
  EXPECT_EQ(folders.Find(30), nullptr);
}

TEST(OrderFolders, DescendantsFollowTheirFolderInDepthAndSiblingsInListOrder) {
  EXPECT_THAT(Order({Folder(1), Folder(2), Folder(3, 1), Folder(4, 2), Folder(5, 1), Folder(6, 3)}),
              ElementsAre(1, 3, 6, 5, 2, 4));
}

TEST(OrderFolders, SiblingsSideBySideAreAllBroughtAlong) {
  EXPECT_THAT(Order({Folder(1), Folder(2), Folder(3, 1), Folder(4, 1), Folder(5, 1)}), ElementsAre(1, 3, 4, 5, 2));
}

TEST(OrderFolders, AChildThatStandsAheadOfItsParentStaysAhead) {
  EXPECT_THAT(Order({Folder(1, 3), Folder(2), Folder(3), Folder(4, 3)}), ElementsAre(1, 2, 3, 4));
}

TEST(OrderFolders, AFolderBroughtForwardTakesItsChildrenFromAheadOfItsOldPlaceAlong) {
  EXPECT_THAT(Order({Folder(1), Folder(2, 3), Folder(3, 1), Folder(4, 1)}), ElementsAre(1, 3, 2, 4));
}

TEST(OrderFolders, FoldersThatAreEachOthersParentsStayOnce) {
  EXPECT_THAT(Order({Folder(1, 2), Folder(2, 1), Folder(3, 3)}), ElementsAre(1, 2, 3));
}

TEST(OrderFolders, AChainAsLongAsTheListIsNoRecursion) {
  std::vector<FolderRecord> chain;
  for (std::uint32_t nid = 1; nid <= 100000; ++nid) chain.push_back(Folder(nid, nid - 1));
  EXPECT_EQ(Nids(OrderFolders(chain)), Nids(chain));
}

}  // namespace
}  // namespace velmora::recovery
