#include "store/messaging/profile_list.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "forge_tests/peers.h"

namespace velmora::messaging {
namespace {

class ProfileListTest : public ::testing::Test {
 protected:
  forge::ScratchFolder folder_;
  std::filesystem::path config_ = folder_.path() / "config";
};

TEST_F(ProfileListTest, FindsWhatWasAddedInALaterRunToo) {
  EXPECT_FALSE(ProfileFile(config_).Item(u"VelmoraRepairOutlook"));
  EXPECT_EQ(ProfileFile(config_).Add(u"VelmoraRepairOutlook0"), u"VelmoraRepairOutlook0");
  EXPECT_EQ(ProfileFile(config_).Add(u"\u041f\u0440\u043e\u0444\u0438\u043b\u044c"),
            u"\u041f\u0440\u043e\u0444\u0438\u043b\u044c");
  ProfileFile profiles(config_);
  EXPECT_TRUE(profiles.Item(u"VelmoraRepairOutlook0"));
  EXPECT_TRUE(profiles.Item(u"velmorarepairoutlook0"));
  EXPECT_TRUE(profiles.Item(u"\u041f\u0440\u043e\u0444\u0438\u043b\u044c"));
  EXPECT_FALSE(profiles.Item(u"VelmoraRepairOutlook"));
}

TEST_F(ProfileListTest, AddReturnsAProfileThatExistsAsItIs) {
  ProfileFile profiles(config_);
  profiles.Add(u"Mail");
  EXPECT_EQ(profiles.Add(u"MAIL"), u"Mail");
  std::ifstream file(config_ / "profiles");
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(bytes, "Mail\n");
}

TEST_F(ProfileListTest, RefusesNamesThatAreNoLine) {
  ProfileFile profiles(config_);
  for (const text::TextView name : {u"", u"a\nb"}) {
    try {
      profiles.Add(name);
      ADD_FAILURE() << "no failure";
    } catch (const output::OutputFailure& failure) {
      EXPECT_EQ(failure.Code(), output::ResultCode::E_INVALIDARG);
    }
  }
}

TEST_F(ProfileListTest, ThatCannotBeWrittenIsAFailureInPlainWords) {
  std::ofstream(config_.string()) << "a file where the folder should be";
  try {
    ProfileFile(config_).Add(u"Mail");
    ADD_FAILURE() << "no failure";
  } catch (const output::OutputFailure& failure) {
    EXPECT_TRUE(output::IsStoreFailure(failure));
    EXPECT_FALSE(failure.Information().empty());
  }
}

}  // namespace
}  // namespace velmora::messaging
