// A finished store for the tests of the panes, and the texts that they compare.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QString>
#include <memory>
#include <ostream>
#include <utility>
#include <vector>

#include "output/trace/trace_library.h"
#include "workflow/panes/finished_store.h"

/// Found by gtest for QString.
inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }

namespace velmora::workflow {

using FieldValues = std::vector<std::pair<output::Field, output::FieldValue>>;

/// A store "Test Converted" with folders directly under its top.
class StoreFixture : public testing::Test {
 protected:
  StoreFixture();

  static text::Text PathOf(text::TextView folder) { return u"\\\\Test Converted\\" + text::Text(folder); }

  output::Ref<output::RDOFolder> AddFolder(text::TextView name, text::TextView containerClass);
  output::Ref<output::RDOMail> AddItem(const output::Ref<output::RDOFolder>& folder, text::TextView messageClass,
                                       const FieldValues& fields = {});

  class NoSink : public output::TraceSink {
    void WriteLine(std::string_view) override {}
  };
  NoSink sink_;
  output::TraceLibrary library_{sink_};
  output::Ref<output::RDOSession> session_ = library_.CreateRDOSession();
  output::Ref<output::RDOStore> store_;
  output::Ref<output::RDOSession> previewSession_;
  std::shared_ptr<FinishedStore> finished_;
  std::vector<output::Ref<output::RDOMail>> items_;  ///< the trace keeps what somebody holds
};

}  // namespace velmora::workflow
