#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <thread>

#include "child_process_platform.h"
#include "qn_utf.h"
#include "qt_test.h"

namespace fs = std::filesystem;

namespace qt_test {

namespace {

std::map<std::string, ChildMain>& Children() {
  static std::map<std::string, ChildMain> children;
  return children;
}

const char kChildFlag[] = "--qt-child=";

}  // namespace

ChildRegistrar::ChildRegistrar(const char* name, ChildMain main) { Children()[name] = main; }

bool RunChildIfAsked(int argc, char** argv, int* exitCode) {
  if (argc < 2 || std::string(argv[1]).rfind(kChildFlag, 0) != 0) return false;
  const std::string name = std::string(argv[1]).substr(sizeof(kChildFlag) - 1);
  auto it = Children().find(name);
  if (it == Children().end()) {
    std::fprintf(stderr, "no child entry point named %s\n", name.c_str());
    *exitCode = 127;
    return true;
  }
  std::vector<std::string> args(argv + 2, argv + argc);
  std::setvbuf(stdout, nullptr, _IONBF, 0);
  *exitCode = it->second(args);
  std::fflush(stdout);
  return true;
}

int RunChild(const std::string& name, const std::vector<std::string>& args, int timeoutMs) {
  ChildProcess child;
  if (!child.start(name, args)) return -1;
  const int code = child.wait(timeoutMs);
  if (code == -1) child.kill();
  return code;
}

std::string ChildProcess::readLine(int timeoutMs) {
  timedOut_ = false;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
  for (;;) {
    const size_t nl = pending_.find('\n');
    if (nl != std::string::npos) {
      std::string line = pending_.substr(0, nl);
      pending_.erase(0, nl + 1);
      if (!line.empty() && line.back() == '\r') line.pop_back();
      return line;
    }
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count();
    if (left <= 0) {
      timedOut_ = true;
      return std::string();
    }
    std::string chunk;
    const int got = child_process::platform::ReadSome(impl_.get(), &chunk, static_cast<int>(left));
    if (got < 0) return std::string();  // end of output
    pending_ += chunk;
  }
}

TempDir::TempDir() {
  static std::atomic<unsigned> counter{0};
  std::random_device rd;
  const fs::path base = fs::temp_directory_path();
  for (int attempt = 0; attempt < 100; ++attempt) {
    std::ostringstream name;
    name << "quiltool-test-" << child_process::platform::ProcessId() << "-" << counter++ << "-" << rd();
    const fs::path p = base / name.str();
    std::error_code ec;
    if (fs::create_directory(p, ec)) {
      path_ = p.string();
      return;
    }
  }
}

TempDir::~TempDir() {
  std::error_code ec;
  if (!path_.empty()) fs::remove_all(path_, ec);
}

std::wstring TempDir::wpath() const { return Widen(path_); }

std::string TempDir::file(const std::string& name) const { return (fs::path(path_) / name).string(); }

std::wstring TempDir::wfile(const std::string& name) const { return Widen(file(name)); }

std::wstring Widen(const std::string& s) { return qn_utf8_to_wide(s.data(), s.size()); }

std::string Narrow(const std::wstring& w) { return qn_wide_to_utf8(w.data(), w.size()); }

std::string ReadFileBytes(const std::string& path) {
  std::ifstream in(fs::path(path), std::ios::binary);
  if (!in) return std::string();
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

std::string UniqueName(const std::string& prefix) {
  static std::atomic<unsigned> counter{0};
  std::random_device rd;
  std::ostringstream name;
  name << prefix << "-" << child_process::platform::ProcessId() << "-" << counter++ << "-" << (rd() & 0xFFFFFF);
  return name.str();
}

}  // namespace qt_test
