// In which code page the 8-bit texts of a store are that say nothing of it: in that of most of its messages.
#include "complete/text_pages.h"

#include <gtest/gtest.h>

#include "engine/run.h"
#include "forge/forge.h"
#include "platform/memory_file.h"

namespace velmora::complete {
namespace {

class TextPagesTest : public testing::Test {
 protected:
  /// So many messages that tell this Windows number; 0 is told by none.
  void Add(int count, std::uint32_t number) {
    forge::Message message{.bare = true};
    if (number != 0) message.properties = {forge::Int32(0x3FFD, number)};
    const forge::WrittenMessage written = forge::WriteMessage(box_.store(), box_.names(), message);
    for (int i = 0; i < count; ++i) {
      box_.store().AddNode(next_, written.bidData, written.bidSub, forge::kTopFolder);
      next_ += 0x20;
    }
  }

  /// The Windows number of the page; what nothing tells is in 874.
  int PageOfStore() {
    engine::RunContext run;
    const auto found =
        engine::ProvenStore::Prove(std::make_unique<platform::MemoryFile>(box_.Finish().bytes), false, run);
    const LiveStore live(*found);
    const auto last = text::CodePage::Find("874");
    return TextPages(live, *last).OfStore().WindowsNumber();
  }

 private:
  forge::Mailbox box_{{.format = forge::Format::kAnsi}};
  forge::Nid next_ = 0x300024;
};

TEST_F(TextPagesTest, TheUserSaysItWhereNoMessageDoes) {
  Add(3, 0);
  EXPECT_EQ(PageOfStore(), 874);
}

TEST_F(TextPagesTest, OneThatTellsRulesOverManyThatDoNot) {
  Add(999, 0);
  Add(1, 1251);
  EXPECT_EQ(PageOfStore(), 1251);
}

TEST_F(TextPagesTest, MessagesAreAskedAllOverTheStore) {
  Add(1100, 1253);
  Add(1200, 1251);
  EXPECT_EQ(PageOfStore(), 1251);
}

TEST_F(TextPagesTest, OfTwoThousandMessagesEachSecondIsAsked) {
  for (int i = 0; i < 1000; ++i) {
    Add(1, 0);
    Add(1, 1251);
  }
  EXPECT_EQ(PageOfStore(), 874);
}

}  // namespace
}  // namespace velmora::complete
