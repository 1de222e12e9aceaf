// Lines of the default logger where signals and processes of POSIX are concerned.
#include <gtest/gtest.h>

#include <cstdio>
#include <cwchar>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

#include "kzoci/platform/default_logger.h"
#include "support/interruptions.h"
#include "support/logger_support.h"

namespace {

using namespace logger_support;

// A profiler's timer must not cut a line that a slow reader holds up.
TEST_F(LogLine, IsWholeWhenSignalsInterruptTheWriting) {
  const std::string text = text_of_length(3000000);
  int ends[2] = {-1, -1};
  ASSERT_EQ(pipe(ends), 0);
  SlowReader reader(ends[0]);
  {
    const int standard_error = dup(STDERR_FILENO);
    dup2(ends[1], STDERR_FILENO);
    close(ends[1]);
    const Interruptions interruptions;
    log_error(text);
    log_error("next");
    dup2(standard_error, STDERR_FILENO);
    close(standard_error);
  }
  std::clearerr(stderr);
  const Lines lines = lines_without_times(reader.text());
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_TRUE(lines[0] == error_line(text)) << lines[0].size() << " characters";
  EXPECT_EQ(lines[1], error_line("next"));
}

// Makes standard error a stream of wide characters, which only a newly opened
// one can become.
bool make_standard_error_wide() {
  return std::freopen(nullptr, "a", stderr) != nullptr &&
         std::setvbuf(stderr, nullptr, _IONBF, 0) == 0 && std::fwide(stderr, 1) > 0;
}

// A program that writes wide characters to standard error still gets its log
// there. A stream stays what it is, so that this takes a child.
TEST_F(LogLine, ReachesAStandardErrorUsedForWideText) {
  int status = -1;
  const Lines lines = logged_by([&status] {
    const pid_t child = fork();
    if (child == 0) {
      if (!make_standard_error_wide()) _exit(1);
      log_error("text");
      _exit(0);
    }
    waitpid(child, &status, 0);
  });
  EXPECT_EQ(status, 0);
  EXPECT_EQ(lines, Lines{error_line("text")});
}

}  // namespace
