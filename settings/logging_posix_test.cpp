#include <gtest/gtest.h>
#include <unistd.h>

#include "Logging.h"
#include "qt_test.h"

// The child's stderr is its stdout pipe, so the test reads what a developer
// would see on the terminal.
QT_TEST_CHILD(log_to_debugger) {
  dup2(STDOUT_FILENO, STDERR_FILENO);
  Logging log;
  log.Init(nullptr, nullptr, true);
  log << L"piece " << 12 << L" \u00e9t\u00e9" << L"\n";
  return 0;
}

TEST(LoggingDebuggerSink, GoesToStderrAsUtf8InOrder) {
  qt_test::ChildProcess child;
  ASSERT_TRUE(child.start("log_to_debugger"));
  EXPECT_EQ("piece 12 \xC3\xA9t\xC3\xA9", child.readLine());
  EXPECT_EQ(0, child.wait());
}
