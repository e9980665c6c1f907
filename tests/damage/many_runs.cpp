// velmora-many-runs - runs the program again and again for less: each run is a fork of one process that is up already.
//
// Reads a run a line from standard input: the file that takes what the run says, the seconds of processor time that it
// may take, and its arguments, divided by tabs. Answers each with a line: exit code or minus the signal that ended it
// (SIGPROF: it took too long, SIGALRM: it took twenty times as long without using the processor), seconds, and the
// kilobytes at its peak.

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "cli/convert_command.h"

namespace {

std::vector<std::string> FieldsOf(const std::string& line) {
  std::vector<std::string> fields(1);
  for (const char c : line) {
    if (c == '\t') {
      fields.emplace_back();
    } else {
      fields.back() += c;
    }
  }
  return fields;
}

/// Its exit code. With exit(), so that the sanitizers have their last word.
[[noreturn]] void Run(std::vector<std::string> fields) {
  const int said = ::open(fields[0].c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (said < 0 || ::dup2(said, STDOUT_FILENO) < 0 || ::dup2(said, STDERR_FILENO) < 0) std::_Exit(126);
  const auto seconds = static_cast<unsigned>(std::stoul(fields[1]));
  const itimerval most{{}, {static_cast<time_t>(seconds), 0}};
  ::setitimer(ITIMER_PROF, &most, nullptr);
  ::alarm(20 * seconds);
  const auto parsed = velmora::cli::ParseCommandLine({fields.begin() + 2, fields.end()});
  const auto* options = std::get_if<velmora::cli::Options>(&parsed);
  std::exit(options == nullptr ? EXIT_FAILURE : static_cast<int>(velmora::cli::Convert(*options)));
}

}  // namespace

int main() {
  for (std::string line; std::getline(std::cin, line);) {
    const auto started = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    if (child < 0) return EXIT_FAILURE;
    if (child == 0) Run(FieldsOf(line));
    int status = 0;
    rusage usage{};
    if (::wait4(child, &status, 0, &usage) != child) return EXIT_FAILURE;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    std::printf("%d %.3f %ld\n", code, seconds, usage.ru_maxrss);
    std::fflush(stdout);
  }
}
