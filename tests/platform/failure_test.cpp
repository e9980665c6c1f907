#include "platform/failure.h"

#include <gtest/gtest.h>

namespace velmora::platform {
namespace {

TEST(Failure, NamesItsObjectIfThereIsOne) {
  EXPECT_EQ(TextOf(Failure{FailureKind::kFull, "/out", {}, "it is full"}), "/out: it is full");
  EXPECT_EQ(TextOf(Failure{FailureKind::kFull, {}, {}, "it is full"}), "it is full");
  EXPECT_EQ(TextOf(Failure{}), "");
}

TEST(Failure, NamesWhatIsInAStoreByItsKindAndId) {
  EXPECT_EQ(TextOf(FailedObject(ObjectKind::kStore)), "store");
  EXPECT_EQ(TextOf(FailedObject(ObjectKind::kBlock, 0x1A4)), "block 0x1a4");
  EXPECT_EQ(TextOf(FailedObject(ObjectKind::kPageOrBlock, 0)), "page or block 0x0");
  EXPECT_EQ(TextOf(FailedObject(ObjectKind::kHeapItem, 0x20)), "heap item 0x20");
  EXPECT_EQ(TextOf(FailedObject(ObjectKind::kSubnodeTree)), "sub-node tree");
  EXPECT_EQ(TextOf(FailedObject(ObjectKind::kProperty, 0x3001001F)), "property 0x3001001f");
}

TEST(Failure, OfTheSameThingForTheSameReasonIsTheSame) {
  const Failure failure{FailureKind::kCorrupt, {ObjectKind::kBlock, 4}, 512, "the trailer does not fit"};
  EXPECT_EQ(failure, Failure(failure));
  Failure other = failure;
  other.object.id = 8;
  EXPECT_NE(failure, other);
}

}  // namespace
}  // namespace velmora::platform
