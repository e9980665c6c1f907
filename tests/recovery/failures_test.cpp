// Where a failing operation is caught, and what passes every frame.
#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

using output::OutputFailure;
using output::ResultCode;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

class FailuresTest : public RecoveryTest {
 protected:
  FailuresTest() { AddTopAndInbox(); }

  void FailAt(std::string line, ResultCode code = ResultCode::E_FAIL) {
    trace_.failing = std::move(line);
    trace_.code = code;
  }
  void ConverterFailsAt(std::uint16_t id, ResultCode code = ResultCode::E_FAIL) {
    hook_ = [id, code](ConversionScope&, const PropertyRecord& record) {
      if (record.wPropId == id) throw OutputFailure(code);
    };
  }

  void AddTwoMails() {
    for (int i = 0; i < 2; ++i) {
      AddMessage({Wide(0x001A, u"IPM.Note"), Wide(0x0037, u"s"), Value(0x0E07, 3, 1), Wide(0x1000, u"body")},
                 AddBlock(NewBid(),
                          SubNodeBlock(
                              {{0x671, 0, 0},
                               {0x8025,
                                AddBlock(NewBid(), HeapBlock({Data(0x3701, 0x0102, BytesOf("x")), Wide(0x3704, u"a")})),
                                0}})));
    }
  }
};

TEST_F(FailuresTest, AFailingRecordOfAMailEndsItsWalkAndTheMailIsSavedWithWhatItHas) {
  AddTwoMails();
  ConverterFailsAt(0x0E07);
  Recover();
  EXPECT_THAT(records_, Not(Contains(std::pair(ItemKind::kMail, std::uint16_t{0x1000}))));
  EXPECT_THAT(Trace("Put"), Not(Contains(testing::HasSubstr("Body")))) << "the body record was not walked";
  EXPECT_EQ(Trace("AddAttachment").size(), 2u);
  EXPECT_EQ(Trace("Save").size(), 2u);
}

TEST_F(FailuresTest, ABodySeenAheadOfTheFailureIsStillDelivered) {
  AddMessage({Wide(0x001A, u"IPM.Note"), Wide(0x1000, u"body"), Value(0x3000, 3, 1)});
  ConverterFailsAt(0x3000);
  Recover();
  EXPECT_THAT(Trace("Put"), Contains(R"({"op":"Put","id":1,"field":"Body","value":"body"})"));
}

TEST_F(FailuresTest, AFailingRecordOfAnotherKindCostsThatFieldAlone) {
  AddMessage({Wide(0x001A, u"IPM.Task"), Value(0x0E07, 3, 1), Value(0x1090, 3, 1)});
  ConverterFailsAt(0x0E07);
  Recover();
  EXPECT_THAT(records_, Contains(std::pair(ItemKind::kTask, std::uint16_t{0x1090})));
  EXPECT_THAT(Trace("Save"), ElementsAre(R"({"op":"Save","id":1})"));
}

TEST_F(FailuresTest, AnItemThatCannotBeCreatedCostsThatMessageAlone) {
  AddTwoMails();
  FailAt(R"({"op":"AddItem","id":1,)");
  Recover();
  EXPECT_EQ(Trace("AddItem").size(), 1u);
  ASSERT_EQ(state_.report.lost.size(), 1u);
  EXPECT_EQ(state_.report.lost[0].messageClass, u"IPM.Note");
}

TEST_F(FailuresTest, AFailingSaveOfAnItemOfAnotherKindLosesItWithoutALogLine) {
  run_.log = this;
  AddMessage({Wide(0x001A, u"IPM.Task")});
  AddMessage({Wide(0x001A, u"IPM.Task")});
  FailAt(R"({"op":"Save","id":1})");
  Recover();
  EXPECT_THAT(Trace("Save"), ElementsAre(R"({"op":"Save","id":2})"));
  EXPECT_EQ(log_.find(u"Task Item: "), log_.rfind(u"Task Item: "));
  EXPECT_EQ(state_.report.lost.size(), 1u);
}

TEST_F(FailuresTest, AFailingBodyKeepsTheAttachmentsAwayAndTheMailIsSaved) {
  AddTwoMails();
  FailAt(R"({"op":"Put","id":1,"field":"Body")");
  Recover();
  EXPECT_THAT(Trace("AddAttachment"), ElementsAre(testing::StartsWith(R"({"op":"AddAttachment","id":2)")));
  EXPECT_EQ(Trace("Save").size(), 2u);
  ASSERT_EQ(state_.report.lost.size(), 2u);
  EXPECT_EQ(state_.report.lost[0].kind, LossKind::kAttachment);
  EXPECT_EQ(state_.report.lost[1].kind, LossKind::kBody);
}

TEST_F(FailuresTest, TheBodyOfAFailingMailDoesNotPassToTheNext) {
  AddMessage({Wide(0x001A, u"IPM.Note"), Wide(0x1000, u"body")});
  AddMessage({Wide(0x001A, u"IPM.Note"), Data(0x1009, 0x0102, BytesOf("{rtf}"))});
  FailAt(R"({"op":"Put","id":1,"field":"Body")");
  Recover();
  EXPECT_THAT(Trace("Put"), Contains(R"({"op":"Put","id":2,"field":"RTFBody","value":"{rtf}"})"));
}

TEST_F(FailuresTest, AFailingAttachmentEndsTheAttachmentsOfItsMessage) {
  AddTwoMails();
  FailAt(R"({"op":"AddAttachment","id":1)");
  Recover();
  EXPECT_EQ(Trace("AddAttachment").size(), 1u);
  EXPECT_EQ(Trace("Save").size(), 2u);
}

TEST_F(FailuresTest, AFailingSaveOfAMailLeavesTheStep) {
  AddTwoMails();
  FailAt(R"({"op":"Save","id":1})");
  EXPECT_THROW(Recover(), OutputFailure);
  EXPECT_EQ(Trace("AddItem").size(), 1u);
}

TEST_F(FailuresTest, AFailureOfTheStorePassesEveryFrame) {
  AddTwoMails();
  AddMessage({Wide(0x001A, u"IPM.Task"), Value(0x0E07, 3, 1)});
  Settle();
  RecoverFolders(state_, engine_, run_);
  for (const ResultCode code : {ResultCode::STG_E_MEDIUMFULL, ResultCode::STG_E_WRITEFAULT}) {
    for (const char* operation : {"AddItem", "Put", "AddAttachment", "Save"}) {
      FailAt(std::string(R"({"op":")") + operation, code);
      EXPECT_THROW(RecoverOrphans(state_, engine_, run_), OutputFailure) << operation;
    }
    FailAt({});
    ConverterFailsAt(0x0E07, code);
    EXPECT_THROW(RecoverOrphans(state_, engine_, run_), OutputFailure);
    hook_ = {};
  }
}

TEST_F(FailuresTest, AFailureOfTheStoreWithinAConverterOfAnotherKindPassesToo) {
  AddMessage({Wide(0x001A, u"IPM.Task"), Value(0x0E07, 3, 1)});
  ConverterFailsAt(0x0E07, ResultCode::STG_E_MEDIUMFULL);
  EXPECT_THROW(Recover(), OutputFailure);
}

TEST_F(FailuresTest, AStopPassesEveryFrameWhereverItIsAskedFor) {
  AddTwoMails();
  Settle();
  RecoverFolders(state_, engine_, run_);
  const auto expectStop = [this]<class T>(T) {
    onEvent_ = [this](const engine::Event& event) {
      if (std::holds_alternative<T>(event)) run_.control.RequestStop();
    };
    EXPECT_THROW(RecoverOrphans(state_, engine_, run_), engine::RunStopped) << typeid(T).name();
    run_.control.Reset();
  };
  expectStop(engine::StageBegun{});
  expectStop(engine::Progress{});
  expectStop(engine::FolderReached{});
}

TEST_F(FailuresTest, AStopWithinAConverterPassesTheFramesOfTheWalk) {
  AddMessage({Wide(0x001A, u"IPM.Task"), Value(0x0E07, 3, 1)});
  hook_ = [](ConversionScope&, const PropertyRecord&) { throw engine::RunStopped{}; };
  EXPECT_THROW(Recover(), engine::RunStopped);
}

TEST_F(FailuresTest, AnOrphanFolderThatCannotBeMadeLeavesTheStep) {
  engine_.orphans = {{}};
  FailAt(R"({"op":"AddFolder","parent":"\\\\out","name":"Orphaned)");
  EXPECT_THROW(Recover(), OutputFailure);
}

}  // namespace
}  // namespace velmora::recovery
