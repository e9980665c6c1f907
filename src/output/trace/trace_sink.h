// Where the lines of a trace go.
#pragma once

#include <string_view>

namespace velmora::output {

class TraceSink {
 public:
  virtual ~TraceSink() = default;

  /// Takes one line, without its line end. A sink that cannot write keeps that to itself until it is asked:
  /// a trace never changes a run.
  virtual void WriteLine(std::string_view line) = 0;
};

}  // namespace velmora::output
