// Memo texts come from users' dialogs and old project files. Splitting one
// into lines may drop only line ends and the blank a wrap happens at; every
// other character survives once, in order, and no line is too long.
#include <cstdint>
#include <string>

#include "fuzz_support.h"
#include "gwarray.h"

namespace {

std::wstring Visible(const std::wstring& text) {
  std::wstring out;
  for (wchar_t c : text) {
    if (static_cast<unsigned>(c) >= 33u) out += c;
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  qt_fuzz::Reader in(data, size);
  const int lineLength = static_cast<int>(in.byte()) % 80;  // 0 and 1 are refused
  std::wstring text;
  while (in.left() >= 2) {
    const unsigned lo = in.byte();
    const unsigned hi = in.byte();
    const wchar_t c = static_cast<wchar_t>(lo | (hi << 8));
    if (c == 0) break;
    text += c;
  }

  gwarraytype memo;
  gwWszarray_init(&memo);
  gwWszarray_append(&memo, L"left from before");
  const int rc = gwWszarray_parse_memo(&memo, text.c_str(), lineLength);
  if (lineLength < 2) {
    QT_FUZZ_CHECK(rc == -1 && memo.count == 1, "a refused line length must leave the array as it was");
  } else {
    QT_FUZZ_CHECK(rc == 0, "parse_memo failed on a text of " + std::to_string(text.size()) + " characters");
    std::wstring joined;
    for (int i = 0; i < memo.count; ++i) {
      const std::wstring line = gwWszarray_at(&memo, i);
      QT_FUZZ_CHECK(line.size() < static_cast<size_t>(lineLength),
                    "line " + std::to_string(i) + " holds " + std::to_string(line.size()) + " characters");
      QT_FUZZ_CHECK(line.find(L'\r') == std::wstring::npos, "a line keeps its carriage return");
      joined += line;
    }
    QT_FUZZ_CHECK(Visible(joined) == Visible(text),
                  "lines lose or repeat characters: " + qt_fuzz::Printable(Visible(joined)) + " vs " +
                      qt_fuzz::Printable(Visible(text)));
    QT_FUZZ_CHECK(!text.empty() || memo.count == 0, "an empty text gives lines");
  }
  gwWszarray_release(&memo);
  return 0;
}
