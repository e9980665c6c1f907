#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MessageItemTest : public RecoveryTest {
 protected:
  MessageItemTest() { AddTopAndInbox(); }

  void AddOfClass(std::u16string_view messageClass, std::uint32_t folder) {
    AddMessage({Wide(0x001A, messageClass)}, 0, folder);
  }

  static std::string Item(const std::string& folder, const std::string& messageClass, int id = 1) {
    return R"({"op":"AddItem","id":)" + std::to_string(id) + R"(,"folder":"\\\\out)" + folder + R"(","class":")" +
           messageClass + "\"}";
  }

  /// Folders made behind those of the source.
  std::vector<std::string> FoldersMade() {
    auto made = Trace("AddFolder");
    std::erase_if(made, [](const std::string& line) { return line.find("Inbox") != std::string::npos; });
    return made;
  }
};

TEST_F(MessageItemTest, AMailGoesToTheFolderOfItsParent) {
  AddOfClass(u"IPM.Note", kInbox);
  Recover();
  EXPECT_THAT(Trace("AddItem"), ElementsAre(Item(R"(\\Inbox)", "IPM.Note")));
}

TEST_F(MessageItemTest, AMailOfTheTopFolderGoesToTheTopOfTheStore) {
  AddOfClass(u"IPM.Note", kTop);
  Recover();
  EXPECT_THAT(Trace("AddItem"), ElementsAre(Item("", "IPM.Note")));
}

TEST_F(MessageItemTest, AMailOfAnUnknownFolderIsDropped) {
  AddOfClass(u"IPM.Note", 0x9999);
  Recover();
  EXPECT_THAT(Trace(), IsEmpty());
  EXPECT_THAT(Numbers<engine::FolderReached>(), ElementsAre(kInbox));
}

TEST_F(MessageItemTest, AFolderCalledLostAndFoundTakesItsMail) {
  AddFolder(0x8062, kTop, u"Lost & Found");
  AddOfClass(u"IPM.Note", 0x8062);
  Recover();
  EXPECT_THAT(Trace("AddItem"), ElementsAre(Item(R"(\\Lost & Found)", "IPM.Note")));
}

TEST_F(MessageItemTest, ASpecialItemOfAKnownFolderStaysThere) {
  AddOfClass(u"IPM.Contact", kInbox);
  Recover();
  EXPECT_THAT(Trace("AddItem"), ElementsAre(Item(R"(\\Inbox)", "IPM.Contact")));
  EXPECT_THAT(FoldersMade(), IsEmpty());
}

TEST_F(MessageItemTest, ASpecialItemOfAnUnknownFolderGoesBelowTheDefaultFolderOfItsKind) {
  AddOfClass(u"IPM.Contact", 0x9999);
  AddOfClass(u"IPM.Task", 0x9999);
  AddOfClass(u"IPM.Contact", 0x9999);
  Recover();
  EXPECT_THAT(Trace("AddItem"), ElementsAre(Item(R"(\\Contacts\\Lost & Found)", "IPM.Contact", 1),
                                            Item(R"(\\Tasks\\Lost & Found)", "IPM.Task", 2),
                                            Item(R"(\\Contacts\\Lost & Found)", "IPM.Contact", 3)));
  EXPECT_THAT(
      FoldersMade(),
      ElementsAre(R"({"op":"AddFolder","parent":"\\\\out\\Contacts","name":"Lost & Found","type":"IPM.Contact"})",
                  R"({"op":"AddFolder","parent":"\\\\out\\Tasks","name":"Lost & Found","type":"IPM.Task"})"));
}

TEST_F(MessageItemTest, AClassWithoutADefaultFolderGetsItsFolderAtTheTop) {
  AddOfClass(u"IPM.MessageManager", 0x9999);
  Recover();
  EXPECT_THAT(Trace("AddItem"), ElementsAre(Item(R"(\\Lost & Found)", "IPM.MessageManager")));
  EXPECT_THAT(
      FoldersMade(),
      ElementsAre(R"({"op":"AddFolder","parent":"\\\\out","name":"Lost & Found","type":"IPM.MessageManager"})"));
}

TEST_F(MessageItemTest, ARefusedClassMayStillMakeAFolder) {
  AddOfClass(u"IPM.Configuration.Calendar", 0x9999);
  Recover();
  EXPECT_THAT(Trace(), IsEmpty());
  EXPECT_THAT(FoldersMade(), ElementsAre(R"({"op":"AddFolder","parent":"\\\\out\\Calendar","name":"Lost & Found",)"
                                         R"("type":"IPM.Configuration.Calendar"})"));
}

TEST_F(MessageItemTest, ASpecialItemDirectlyUnderTheTopFolderGoesToTheDefaultFolderItself) {
  AddOfClass(u"IPM.StickyNote", kTop);
  AddOfClass(u"IPM.MessageManager", kTop);
  Recover();
  EXPECT_THAT(Trace("AddItem"),
              ElementsAre(Item(R"(\\Notes)", "IPM.StickyNote", 1), Item("", "IPM.MessageManager", 2)));
  EXPECT_THAT(FoldersMade(), IsEmpty());
}

TEST_F(MessageItemTest, ASpecialItemWhoseFolderWasNotMadeFallsBackToTheDefaultFolder) {
  AddFolder(0x8062, kInbox, u"Inbox\\People");  // its parent would be Inbox\Inbox
  AddOfClass(u"IPM.Contact", 0x8062);
  Recover();
  EXPECT_THAT(Trace("AddItem"), IsEmpty()) << "neither parent nor folder can be opened: the walk of the item ends";
  EXPECT_EQ(state_.report.lost.size(), 2u) << "the folder, and the mail";
}

TEST_F(MessageItemTest, AMailWhoseFolderWasNotMadeIsGivenUpAndTheRunGoesOn) {
  AddFolder(0x8062, kInbox, u"no\\way");
  AddOfClass(u"IPM.Note", 0x8062);
  AddOfClass(u"IPM.Note", kInbox);
  Recover();
  EXPECT_THAT(Trace("AddItem"), ElementsAre(Item(R"(\\Inbox)", "IPM.Note")));
}

TEST_F(MessageItemTest, TheLeafOfTheFolderIsKeptOnBothRoutes) {
  std::vector<text::Text> names;
  hook_ = [&](ConversionScope& scope, const PropertyRecord& record) {
    if (record.wPropId == 0x0E07) names.push_back(scope.currentFolderName);
  };
  for (const auto* messageClass : {u"IPM.Note", u"IPM.Contact"}) {
    AddMessage({Wide(0x001A, messageClass), Value(0x0E07, 3, 1)}, 0, kInbox);
  }
  AddMessage({Wide(0x001A, u"IPM.Contact"), Value(0x0E07, 3, 1)}, 0, 0x9999);
  Recover();
  EXPECT_THAT(names, ElementsAre(u"Inbox", u"Inbox", u"Lost & Found"));
}

TEST_F(MessageItemTest, EachPlacedMessageSendsItsFolderToTheTree) {
  AddOfClass(u"IPM.Note", kInbox);
  AddOfClass(u"IPM.Contact", 0x9999);
  AddOfClass(u"IPM.Note", 0x9999);
  Recover();
  EXPECT_THAT(Numbers<engine::FolderReached>(), ElementsAre(kInbox, 0x9999, kInbox)) << "the last is the closing one";
}

}  // namespace
}  // namespace velmora::recovery
