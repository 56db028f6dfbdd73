#include <windows.h>
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <string>

#include "args_platform.h"
#include "console_text.h"
#include "qn_utf.h"

namespace qt {
namespace args {
namespace platform {

std::vector<std::string> Arguments(int, char**) {
  std::vector<std::string> args;
  int count = 0;
  wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
  if (!wide) return args;
  for (int i = 1; i < count; ++i) args.push_back(qn_wide_to_utf8(wide[i], static_cast<size_t>(-1), QN_UTF_REPLACE_INVALID));
  LocalFree(wide);
  return args;
}

namespace {

// One console stream: the subcommand writes UTF-8 into a pipe, and a
// thread shows it on the console in whole characters.
struct ConsoleRelay {
  HANDLE console = nullptr;
  HANDLE readEnd = nullptr;
  HANDLE thread = nullptr;
  FILE* stream = nullptr;
};

ConsoleRelay g_relays[2];

bool IsConsole(HANDLE h) {
  DWORD mode = 0;
  return h && h != INVALID_HANDLE_VALUE && GetFileType(h) == FILE_TYPE_CHAR && GetConsoleMode(h, &mode);
}

void Show(HANDLE console, const std::string& utf8) {
  const std::wstring wide = qn_utf8_to_wide(qt_tool::SanitizeUtf8(utf8).c_str());
  DWORD written = 0;
  for (size_t done = 0; done < wide.size(); done += written) {
    const DWORD chunk = static_cast<DWORD>(wide.size() - done > 8192 ? 8192 : wide.size() - done);
    if (!WriteConsoleW(console, wide.data() + done, chunk, &written, nullptr) || written == 0) return;
  }
}

DWORD WINAPI Relay(LPVOID param) {
  ConsoleRelay* relay = static_cast<ConsoleRelay*>(param);
  std::string pending;
  char buffer[4096];
  DWORD got = 0;
  while (ReadFile(relay->readEnd, buffer, sizeof buffer, &got, nullptr) && got > 0) {
    pending.append(buffer, got);
    const size_t whole = qt_tool::CompleteUtf8Prefix(pending.data(), pending.size());
    Show(relay->console, pending.substr(0, whole));
    pending.erase(0, whole);
  }
  Show(relay->console, pending);
  return 0;
}

FILE* Start(ConsoleRelay* relay, DWORD which, FILE* fallback) {
  relay->console = GetStdHandle(which);
  if (!IsConsole(relay->console)) return fallback;
  HANDLE writeEnd = nullptr;
  if (!CreatePipe(&relay->readEnd, &writeEnd, nullptr, 0)) return fallback;
  const int fd = _open_osfhandle(reinterpret_cast<intptr_t>(writeEnd), _O_WRONLY | _O_BINARY);
  FILE* stream = fd >= 0 ? _fdopen(fd, "wb") : nullptr;
  if (!stream) {
    if (fd >= 0) {
      _close(fd);
    } else {
      CloseHandle(writeEnd);
    }
    CloseHandle(relay->readEnd);
    relay->readEnd = nullptr;
    return fallback;
  }
  // Unbuffered, so that a line printed before a long wait ("holding ...")
  // shows at once.
  setvbuf(stream, nullptr, _IONBF, 0);
  relay->thread = CreateThread(nullptr, 0, &Relay, relay, 0, nullptr);
  if (!relay->thread) {
    std::fclose(stream);
    CloseHandle(relay->readEnd);
    relay->readEnd = nullptr;
    return fallback;
  }
  relay->stream = stream;
  return stream;
}

void Stop(ConsoleRelay* relay) {
  if (!relay->stream) return;
  std::fclose(relay->stream);  // the relay reads to the end, then returns
  WaitForSingleObject(relay->thread, INFINITE);
  CloseHandle(relay->thread);
  CloseHandle(relay->readEnd);
  relay->stream = nullptr;
}

}  // namespace

Output Begin() {
  Output output;
  output.out = Start(&g_relays[0], STD_OUTPUT_HANDLE, stdout);
  output.err = Start(&g_relays[1], STD_ERROR_HANDLE, stderr);
  return output;
}

void Finish(const Output& output) {
  std::fflush(output.out);
  std::fflush(output.err);
  Stop(&g_relays[0]);
  Stop(&g_relays[1]);
}

}  // namespace platform
}  // namespace args
}  // namespace qt
