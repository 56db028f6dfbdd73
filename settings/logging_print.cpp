#include <cstdarg>
#include <string>

#include "Logging.h"
#include "core/boundary.h"
#include "ustr.h"

namespace {
// The size of the buffer that callers' texts were written for.
const size_t kLogPrintBufferSize = 10240;
}  // namespace

int log_print(const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  qt::NoThrowVoid("log_print", [&] {
    std::wstring text;
    const int n = qn_vformat(text, format, args);
    // vswprintf_s leaves an empty buffer when the text does not fit or the
    // format is broken; callers have only ever seen that.
    if (n < 0 || static_cast<size_t>(n) >= kLogPrintBufferSize) text.clear();
    Logging::getGlobal() << text.c_str();
  });
  va_end(args);
  return 0;
}
