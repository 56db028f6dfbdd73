// The diagnostic log: a Logging object writes every streamed piece at once
// to up to three sinks (a UTF-16LE file with byte-order mark, the debugger
// output, a callback), one process-wide instance fed by log_print, the
// LogEntryExit scope marker and the stopwatch functions.
//
// Nothing adds line ends, time stamps or levels: callers stream their own
// "\n". Logging is meant for the host's user-interface thread; nothing here
// takes a lock.
#ifndef QUILTOOL_LOGGING_H
#define QUILTOOL_LOGGING_H

#include <cstdio>

#include "gm_model.h"
#include "qn_wintypes.h"
#include "quiltool_export.h"

class QT_API Logging {
 public:
  typedef void (*Callback)(const wchar_t* text);

  // Sink flags.
  enum { SinkFile = 1, SinkDebugger = 2, SinkCallback = 4 };

  Logging();
  virtual ~Logging();
  Logging(const Logging&) = delete;
  Logging& operator=(const Logging&) = delete;

  // Adds sinks; never removes one. A file name opens (and truncates) that
  // file and writes the byte-order mark; a file that cannot be opened is
  // silently left out. debugOutput adds the debugger sink (OutputDebugStringW
  // on Windows, stderr on Linux: see docs/logging.md).
  void Init(const wchar_t* fileName, Callback callback, bool debugOutput);

  void on() { m_enabled = true; }
  void off() { m_enabled = false; }

  // The process-wide instance; it has no sinks until someone calls its Init.
  static Logging& getGlobal();

  Logging& operator<<(int value);            // "%d"
  Logging& operator<<(long value);           // "%ld"
  Logging& operator<<(__int64 value);        // 64-bit signed decimal
  Logging& operator<<(float value);          // "%g" of the value as double
  Logging& operator<<(double value);         // "%g"
  Logging& operator<<(const char* text);     // system code page; null: "(null)"
  Logging& operator<<(const wchar_t* text);  // null: "(null)"
  Logging& operator<<(const double* point);  // "(%g, %g, %g)"; null: "(null)"
  // One line " [%03d] : internal information missing in release\n" per
  // item; nothing for a null model or one without items.
  Logging& operator<<(const gm_model* model);

 private:
  void output(const wchar_t* text);
  void outputFile(const wchar_t* text);
  void outputVS(const wchar_t* text);
  void outputFunc(const wchar_t* text);

  FILE* m_file;
  int m_sinks;
  Callback m_callback;
  bool m_enabled;
};

// Formats printf-style (wide, Windows runtime conventions: %s is a wide
// string, %I64d a 64-bit number) and streams the text to the global
// instance. A text longer than 10239 characters comes out empty, as
// vswprintf_s leaves its buffer. The result carries no meaning.
QT_API int log_print(const wchar_t* format, ...);

// Scope marker kept so that callers' code compiles; it writes nothing.
class QT_API LogEntryExit {
 public:
  explicit LogEntryExit(const wchar_t* name);
  ~LogEntryExit();
  LogEntryExit(const LogEntryExit& other);
  LogEntryExit& operator=(const LogEntryExit& other);
  const wchar_t* name() const { return m_name; }

 private:
  const wchar_t* m_name;
};

// Stopwatch. Raw units are performance-counter ticks when the
// high-resolution timer is available, milliseconds otherwise. On Linux the
// counter is CLOCK_MONOTONIC in nanoseconds (frequency 1e9) and the
// millisecond fallback a 32-bit millisecond count of the same clock.
QT_API __int64 Logging_StartTiming();
// now - start in raw units; with restart, start becomes now.
QT_API __int64 Logging_EndTiming(__int64& start, bool restart);
QT_API double Logging_EndTimingMs(__int64& start, bool restart);
// Milliseconds into `milliseconds`; returns the raw difference.
QT_API __int64 Logging_EndTimingWithMs(__int64& start, double& milliseconds, bool restart);
QT_API bool Logging_IsHighResolutionTimerAvailable();

#endif
