// Without windows, a message box is text on stderr. A question is asked on
// the terminal when a person can answer (stdin and stderr are terminals);
// otherwise the box "could not be shown" and the answer is 0.
#include <unistd.h>

#include <cstdio>
#include <string>

#include "core/msgbox_platform.h"

namespace qt {
namespace msgbox {
namespace platform {

namespace {

struct Choice {
  char key;
  const char* label;
  int result;
};

int Ask(const std::string& caption, const std::string& text, unsigned int style) {
  std::fprintf(stderr, "[%s] %s\n", caption.c_str(), text.c_str());
  std::fflush(stderr);
  if (!isatty(0) || !isatty(2)) return 0;

  static const Choice kOk[] = {{'o', "[o]k", IDOK}};
  static const Choice kOkCancel[] = {{'o', "[o]k", IDOK}, {'c', "[c]ancel", IDCANCEL}};
  static const Choice kYesNo[] = {{'y', "[y]es", IDYES}, {'n', "[n]o", IDNO}};
  static const Choice kYesNoCancel[] = {{'y', "[y]es", IDYES}, {'n', "[n]o", IDNO}, {'c', "[c]ancel", IDCANCEL}};
  const Choice* choices = kOk;
  int count = 1;
  switch (style & MB_TYPEMASK) {
    case MB_OKCANCEL: choices = kOkCancel; count = 2; break;
    case MB_YESNO: choices = kYesNo; count = 2; break;
    case MB_YESNOCANCEL: choices = kYesNoCancel; count = 3; break;
    default: break;
  }
  for (;;) {
    for (int i = 0; i < count; ++i) std::fprintf(stderr, "%s%s", i ? " " : "", choices[i].label);
    std::fprintf(stderr, ": ");
    std::fflush(stderr);
    char line[64];
    if (!std::fgets(line, sizeof line, stdin)) return 0;
    const char key = static_cast<char>(line[0] | 0x20);
    if (count == 1 && (line[0] == '\n' || key == 'o')) return IDOK;
    for (int i = 0; i < count; ++i) {
      if (key == choices[i].key) return choices[i].result;
    }
  }
}

class TerminalPresenter : public QnMessagePresenter {
 public:
  int showMessage(HWND, const wchar_t* text, const wchar_t* caption, unsigned int style) override {
    return Ask(qn_wide_to_ansi(caption ? caption : L""), qn_wide_to_ansi(text ? text : L""), style);
  }
  int showMessageA(HWND, const char* text, const char* caption, unsigned int style) override {
    return Ask(caption ? caption : "", text ? text : "", style);
  }
};

}  // namespace

QnMessagePresenter& DefaultPresenter() {
  static TerminalPresenter presenter;
  return presenter;
}

HWND FocusedWindow() { return nullptr; }

void RestoreFocus(HWND) {}

}  // namespace platform
}  // namespace msgbox
}  // namespace qt
