#include "cli/result_text.h"

#include <gtest/gtest.h>

#include "cli/file_output.h"
#include "output/trace/trace_library.h"

namespace velmora::cli {
namespace {

using conversion::CountStore;
using conversion::StoreContents;

TEST(ResultText, SaysWhereTheStoreIsAndWhatItHolds) {
  NoTrace sink;
  output::TraceLibrary library(sink);
  const auto session = library.CreateRDOSession();
  const auto top = session->Stores()->AddPSTStore(u"/x.pst", u"a Converted")->IPMRootFolder();
  const auto inbox = top->Folders()->Add(u"Inbox", {});
  inbox->Folders()->Add(u"Old", {})->Items()->Add(u"IPM.Note")->Save();
  for (int i = 0; i < 2; ++i) inbox->Items()->Add(u"IPM.Note")->Save();
  const StoreContents contents = CountStore(*session, u"a Converted", u"");
  EXPECT_EQ(ResultText(u"/out/a Converted0/a Converted.pst", u"a Converted", contents),
            "OST file conversion completed.\n"
            "Recovered at: /out/a Converted0/a Converted.pst\n\n"
            "         0  Deleted Items\n"
            "         2  Inbox\n"
            "         1  Inbox\\Old\n"
            "         3  items in 3 folders\n");
}

TEST(ResultText, ADryRunSaysSo) {
  EXPECT_EQ(ResultText(u"", u"a Converted", {}),
            "OST file conversion completed.\nDry run: no store was written.\n\n         0  items in 0 folders\n");
}

TEST(ResultText, ASessionWithoutAStoreHoldsNothing) {
  NoTrace sink;
  output::TraceLibrary library(sink);
  EXPECT_TRUE(CountStore(*library.CreateRDOSession(), u"a", u"").folders.empty());
}

}  // namespace
}  // namespace velmora::cli
