#include "conversion/notices.h"

#include <gtest/gtest.h>

namespace velmora::conversion {
namespace {

using engine::Notice;
using engine::NoticeKind;

text::Text TextOfKind(NoticeKind kind) { return TextOf(Notice{kind, u"/out/x.pst", {}}).text; }

TEST(Notices, AreSaidInTheSystemsWords) {
  EXPECT_EQ(TextOfKind(NoticeKind::kSourceNotOpened),
            u"Source file could not open.Make sure that another application is not using. ");
  EXPECT_EQ(TextOfKind(NoticeKind::kNotValid), u"Pst/Ost file is not valid.");
  EXPECT_EQ(TextOfKind(NoticeKind::kNoIndexFile), u"Some problem is encounterd to create temporary file.");
  EXPECT_EQ(TextOfKind(NoticeKind::kComponentMissing), u"Some component is missing.Please reinstall the application.");
  EXPECT_EQ(TextOfKind(NoticeKind::kComponentFailed), u"Some component is missing.Please reinstall the application. ");
  EXPECT_EQ(TextOfKind(NoticeKind::kNoOutputFolder),
            u"Unable to create folder to save recovered .pst file.\nPlease select another location to save recovered "
            u".pst file.");
  EXPECT_EQ(TextOfKind(NoticeKind::kNotEnoughSpace),
            u"Not enough free disk space available to save converted .pst file.\nPlease start the process again by "
            u"selecting another destination path.");
}

TEST(Notices, NameTheNewStoreWhereThereIsOne) {
  EXPECT_EQ(TextOfKind(NoticeKind::kAborted), u"Recovery process aborted.\nRecovered at:/out/x.pst");
  EXPECT_EQ(TextOfKind(NoticeKind::kStoreNotWritten), u"Unable to write converted .pst file.\nRecovered at:/out/x.pst");
  EXPECT_EQ(TextOfKind(NoticeKind::kDiskFull),
            u"Not enough free disk space available to save converted .pst file.\nRecovered at:/out/x.pst");
}

TEST(Notices, InformOfWhatIsNoError) {
  for (const NoticeKind kind : {NoticeKind::kRegistering, NoticeKind::kNotEnoughSpace, NoticeKind::kAborted}) {
    const NoticeText text = TextOf(Notice{kind, {}, {}});
    EXPECT_FALSE(text.isError);
    EXPECT_EQ(text.title, u"Information");
  }
  const NoticeText text = TextOf(Notice{NoticeKind::kNotValid, {}, {}});
  EXPECT_TRUE(text.isError);
  EXPECT_EQ(text.title, u"Error");
}

}  // namespace
}  // namespace velmora::conversion
