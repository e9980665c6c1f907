#include "recovery/attachment_reader.h"

#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

/// One reader, and the attachments of one message that it is given in order.
class AttachmentReaderTest : public RecoveryTest {
 protected:
  Attachment Read(const std::vector<RecordSpec>& records, std::uint32_t bidSub = 0) {
    const std::uint32_t bid = AddBlock(NewBid(), HeapBlock(records));
    Settle();
    return reader_.ReadAttachment({0x8025, bid, bidSub}, *engine::BlockReader(engine_).FindBlock(bid));
  }
  static std::string BytesIn(const Attachment& attachment) {
    std::string bytes(attachment.content->Size(), '\0');
    attachment.content->ReadAt(0, std::as_writable_bytes(std::span(bytes)));
    return bytes;
  }

  engine::ContentAllowance allowance_{1 << 20, false, 100};
  AttachmentReader reader_{{engine_, *state_.codePage, allowance_}};
};

TEST_F(AttachmentReaderTest, AContentInItsBlockComesWithItsName) {
  const Attachment attachment = Read({Data(0x3701, 0x0102, BytesOf("hello")), Wide(0x3704, u"a:b.txt")});
  EXPECT_TRUE(attachment.isRecord);
  ASSERT_TRUE(attachment.content);
  EXPECT_EQ(BytesIn(attachment), "hello");
  EXPECT_EQ(attachment.name, u"a b.txt");
  EXPECT_EQ(attachment.loggedName, u"a b.txt");
  EXPECT_FALSE(attachment.outOfLine);
  EXPECT_EQ(attachment.missing, u"");
}

TEST_F(AttachmentReaderTest, WhatHasNoNameTakesTheFileThatTheOneBeforeLeftOpen) {
  EXPECT_EQ(Read({Wide(0x3704, u"left.txt")}).missing, u"it has no content");
  const Attachment attachment = Read({Data(0x3701, 0x0102, BytesOf("x")), Value(0x3710, 0x0003, 0)});
  ASSERT_TRUE(attachment.content);
  EXPECT_EQ(attachment.name, u"left.txt");
  EXPECT_EQ(BytesIn(attachment), "x");
  EXPECT_EQ(Read({Data(0x3701, 0x0102, BytesOf("y")), Value(0x3710, 0x0003, 0)}).missing, kNoFileName)
      << "it is closed once it was handed on";
}

TEST_F(AttachmentReaderTest, TheNameOfAnEmbeddedMessageStaysForTheNextOne) {
  const std::uint32_t list = AddBlock(NewListBid(), SubNodeBlock({{0x200024, 0x40, 0x46}}));
  const Attachment first = Read({Wide(0x3001, u"the message")}, list);
  ASSERT_TRUE(first.message);
  ASSERT_EQ(first.message->size(), 1u);
  EXPECT_EQ(first.message->front().bidData, 0x40u);
  EXPECT_EQ(first.message->front().bidSub, 0x46u);
  EXPECT_TRUE(first.outOfLine);
  EXPECT_EQ(first.embeddedName, u"the message");
  EXPECT_EQ(Read({Value(0x0E21, 0x0003, 0)}).embeddedName, u"the message");
}

TEST_F(AttachmentReaderTest, ATableIsNoAttachmentAndSaysWhy) {
  const std::uint32_t bid = AddBlock(NewBid(), HeapBlock({}, {.signature = 0x7CEC}));
  Settle();
  const Attachment table = reader_.ReadAttachment({0x692, bid, 0}, *engine::BlockReader(engine_).FindBlock(bid));
  EXPECT_FALSE(table.isRecord);
  EXPECT_FALSE(table.content);
  EXPECT_NE(table.missing, u"");
}

}  // namespace
}  // namespace velmora::recovery
