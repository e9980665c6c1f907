#include <new>

#include "cli/convert_command.h"
#include "platform/arguments.h"
#include "platform/stop_signals.h"
#include "platform/terminal.h"

int main(int argc, char** argv) {
  using velmora::cli::Answer;
  using velmora::cli::ExitCode;
  using velmora::platform::StandardStream;

  velmora::platform::LetWritesFail();
  const auto parsed = velmora::cli::ParseCommandLine(velmora::platform::ProgramArguments(argc, argv));
  if (const auto* answer = std::get_if<Answer>(&parsed)) {
    const bool isMistake = answer->code != ExitCode::kDone;
    const auto written =
        velmora::platform::WriteTo(isMistake ? StandardStream::kError : StandardStream::kOutput, answer->text);
    return static_cast<int>(written || isMistake ? answer->code : ExitCode::kInputOutput);
  }
  try {
    return static_cast<int>(velmora::cli::Convert(std::get<velmora::cli::Options>(parsed)));
  } catch (const std::bad_alloc&) {
    static_cast<void>(velmora::platform::WriteTo(StandardStream::kError, "velmora-convert: not enough memory\n"));
    return static_cast<int>(ExitCode::kAborted);
  }
}
