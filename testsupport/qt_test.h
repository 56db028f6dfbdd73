// Shared helpers of the QuilTool tests: private temporary folders, child
// processes that run an entry point of the same test program, and text
// conversions for assertions.
#ifndef QUILTOOL_QT_TEST_H
#define QUILTOOL_QT_TEST_H

#include <memory>
#include <string>
#include <vector>

namespace qt_test {

// Registers a child entry point of the current test program. A test starts
// it with ChildProcess::start("name", args); the child sees only args.
typedef int (*ChildMain)(const std::vector<std::string>& args);
struct ChildRegistrar {
  ChildRegistrar(const char* name, ChildMain main);
};
#define QT_TEST_CHILD(name)                                                   \
  static int name##_child_main(const std::vector<std::string>& args);        \
  static ::qt_test::ChildRegistrar name##_child_registrar(#name, name##_child_main); \
  static int name##_child_main(const std::vector<std::string>& args)

// Runs the child named in argv when there is one; returns true and sets
// exitCode in that case. Called by the test main.
bool RunChildIfAsked(int argc, char** argv, int* exitCode);

// A child process of this test program with a pipe on its stdin and stdout.
class ChildProcess {
 public:
  ChildProcess();
  ~ChildProcess();  // kills a child that still runs
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  bool start(const std::string& name, const std::vector<std::string>& args = {});
  // One line of the child's stdout without its line end; empty on timeout
  // or end of output (see lastReadTimedOut).
  std::string readLine(int timeoutMs = 30000);
  bool lastReadTimedOut() const { return timedOut_; }
  bool writeLine(const std::string& line);
  // Exit code, or -1 when the child is still running after timeoutMs.
  int wait(int timeoutMs = 60000);
  // Ends the child at once (SIGKILL / TerminateProcess), as a crash would.
  void kill();
  bool running() const;

  struct Impl;

 private:
  std::unique_ptr<Impl> impl_;
  std::string pending_;
  bool timedOut_ = false;
};

// Starts a child, waits for it and returns its exit code (-1 on timeout).
int RunChild(const std::string& name, const std::vector<std::string>& args = {}, int timeoutMs = 60000);

// Full path of the running test program.
std::string SelfPath();

// A fresh folder under the system temporary folder, removed with everything
// in it when the object goes.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::string& path() const { return path_; }
  std::wstring wpath() const;
  // path() + separator + name
  std::string file(const std::string& name) const;
  std::wstring wfile(const std::string& name) const;

 private:
  std::string path_;
};

std::wstring Widen(const std::string& utf8);
std::string Narrow(const std::wstring& wide);

// Sets an environment variable of this process (children inherit it).
void SetEnv(const char* name, const std::string& value);

// Whole file contents as bytes ("" when it cannot be read).
std::string ReadFileBytes(const std::string& path);

// A name unique to this process and call, for registry keys and the like
// that parallel test runs share.
std::string UniqueName(const std::string& prefix);

}  // namespace qt_test

#endif
