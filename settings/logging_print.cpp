#include <cstdarg>
#include <string>

#include "Logging.h"
#include "ustr.h"

namespace {
// The size of the buffer that callers' texts were written for.
const size_t kLogPrintBufferSize = 10240;
}  // namespace

int log_print(const wchar_t* format, ...) {
  std::wstring text;
  va_list args;
  va_start(args, format);
  const int n = qn_vformat(text, format, args);
  va_end(args);
  // vswprintf_s leaves an empty buffer when the text does not fit or the
  // format is broken; callers have only ever seen that.
  if (n < 0 || static_cast<size_t>(n) >= kLogPrintBufferSize) text.clear();
  Logging::getGlobal() << text.c_str();
  return 0;
}
