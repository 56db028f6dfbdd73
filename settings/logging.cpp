// The Logging object: its sinks and the text of every streamed value.
#include "Logging.h"

#include <cwchar>
#include <string>

#include "qn_utf.h"
#include "settings/logging_internal.h"
#include "settings/logging_platform.h"
#include "ustr.h"
#include "core/boundary.h"

namespace qt {
namespace logging {

bool& GlobalSwitch() {
  static bool on = true;
  return on;
}

bool& AnyOutputSeen() {
  static bool seen = false;
  return seen;
}

}  // namespace logging
}  // namespace qt

Logging::Logging() : m_file(nullptr), m_sinks(0), m_callback(nullptr), m_enabled(true) {}

Logging::~Logging() {
  if (m_file) std::fclose(m_file);
}

void Logging::Init(const wchar_t* fileName, Callback callback, bool debugOutput) {
  qt::NoThrowVoid("Logging::Init", [&] {
    if (debugOutput) m_sinks |= SinkDebugger;
    if (fileName && *fileName) {
      FILE* file = qt::logging::platform::OpenLogFile(fileName);
      if (file) {
        // A second file takes over from the first. The first is closed rather
        // than left open: every piece was flushed already, so nothing is lost,
        // and no handle stays behind for the life of the process.
        if (m_file) std::fclose(m_file);
        m_file = file;
        m_sinks |= SinkFile;
        const unsigned char bom[2] = {0xFF, 0xFE};
        std::fwrite(bom, 1, sizeof bom, m_file);
        std::fflush(m_file);
      }
    }
    if (callback) {
      m_callback = callback;
      m_sinks |= SinkCallback;
    }
  });
}

void Logging::output(const wchar_t* text) {
  qt::NoThrowVoid("Logging::output", [&] {
    qt::logging::AnyOutputSeen() = true;
    if (!qt::logging::GlobalSwitch() || !m_enabled) return;
    if (m_sinks & SinkFile) outputFile(text);
    if (m_sinks & SinkDebugger) outputVS(text);
    if (m_sinks & SinkCallback) outputFunc(text);
  });
}

void Logging::outputFile(const wchar_t* text) {
  qt::NoThrowVoid("Logging::outputFile", [&] {
    if (!m_file) return;
    // Explicit UTF-16LE: the file is the same on both targets.
    const std::string bytes = qn_wide_to_utf16le(text);
    if (!bytes.empty()) std::fwrite(bytes.data(), 1, bytes.size(), m_file);
    // Flushed piece by piece so that the log survives a crash of the host.
    std::fflush(m_file);
  });
}

void Logging::outputVS(const wchar_t* text) { qt::logging::platform::DebuggerOutput(text); }

void Logging::outputFunc(const wchar_t* text) {
  qt::NoThrowVoid("Logging::outputFunc", [&] {
    if (m_callback) m_callback(text);
  });
}

// Numbers are formatted into buffers on the stack rather than the shared
// static buffers of old: the text is output before the call returns, so the
// result is the same, and two threads no longer trample one buffer.
Logging& Logging::operator<<(int value) {
  wchar_t buf[128];
  std::swprintf(buf, 128, L"%d", value);
  output(buf);
  return *this;
}

Logging& Logging::operator<<(long value) {
  wchar_t buf[128];
  std::swprintf(buf, 128, L"%ld", value);
  output(buf);
  return *this;
}

Logging& Logging::operator<<(__int64 value) {
  wchar_t buf[128];
  std::swprintf(buf, 128, L"%lld", static_cast<long long>(value));
  output(buf);
  return *this;
}

Logging& Logging::operator<<(float value) {
  wchar_t buf[1024];
  std::swprintf(buf, 1024, L"%g", static_cast<double>(value));
  output(buf);
  return *this;
}

Logging& Logging::operator<<(double value) {
  wchar_t buf[128];
  std::swprintf(buf, 128, L"%g", value);
  output(buf);
  return *this;
}

Logging& Logging::operator<<(const char* text) {
  qt::NoThrowVoid("Logging::operator<<", [&] {
    if (!text) {
      output(L"(null)");
      return;
    }
    const std::wstring wide = qn_ansi_to_wide(text);
    // The converter answers empty text when memory runs out; a piece of log
    // is then missing rather than shown wrong.
    if (*text && wide.empty()) return;
    output(wide.c_str());
  });
  return *this;
}

Logging& Logging::operator<<(const wchar_t* text) {
  output(text ? text : L"(null)");
  return *this;
}

Logging& Logging::operator<<(const double* point) {
  if (!point) {
    output(L"(null)");
    return *this;
  }
  wchar_t buf[384];
  std::swprintf(buf, 384, L"(%g, %g, %g)", point[0], point[1], point[2]);
  output(buf);
  return *this;
}

Logging& Logging::operator<<(const gm_model* model) {
  if (!model) return *this;
  const int count = model->itemCount;
  for (int i = 0; i < count; ++i) {
    wchar_t buf[32];
    std::swprintf(buf, 32, L" [%03d] : ", i);
    output(buf);
    output(L"internal information missing in release");
    output(L"\n");
  }
  return *this;
}

Logging& Logging::getGlobal() {
  static Logging global;
  return global;
}

namespace {
// Constructed with the library, not at the first call, as callers expect of
// the process-wide instance.
[[maybe_unused]] Logging& g_globalAtLoad = Logging::getGlobal();
}  // namespace

LogEntryExit::LogEntryExit(const wchar_t* name) : m_name(name) {}
LogEntryExit::~LogEntryExit() {}
LogEntryExit::LogEntryExit(const LogEntryExit& other) : m_name(other.m_name) {}
LogEntryExit& LogEntryExit::operator=(const LogEntryExit& other) {
  m_name = other.m_name;
  return *this;
}
