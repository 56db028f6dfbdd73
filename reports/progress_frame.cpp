#include "reports/progress_frame.h"

#include <algorithm>

#include "qn_utf.h"

namespace qt {
namespace progress {

namespace {

const int kMinColumns = 20;
const int kIndent = 2;

// Cut to `width` characters; control characters (a label's line feed)
// would move the cursor and are shown as spaces.
std::string Fit(const std::wstring& text, int width) {
  std::wstring shown;
  for (wchar_t c : text) {
    if (static_cast<int>(shown.size()) >= width) break;
    shown.push_back(c < 0x20 || c == 0x7F ? L' ' : c);
  }
  return qn_wide_to_utf8(shown.c_str(), shown.size());
}

std::string BarLine(const Bar& bar, int width, unsigned tick) {
  const std::wstring percent = bar.showPercentage && !bar.marquee ? L" " + PercentageText(bar) : std::wstring();
  const int cells = std::max(4, width - kIndent - 2 - static_cast<int>(percent.size()));
  std::string cellsText(static_cast<size_t>(cells), ' ');
  if (bar.marquee) {
    // A block that sweeps back and forth, as the marquee control does.
    const int block = std::max(1, cells / 5);
    const int travel = cells - block;
    const int phase = travel > 0 ? static_cast<int>(tick % static_cast<unsigned>(2 * travel)) : 0;
    const int start = phase <= travel ? phase : 2 * travel - phase;
    std::fill(cellsText.begin() + start, cellsText.begin() + start + block, '#');
  } else {
    const long long span = static_cast<long long>(bar.upper) - bar.lower;
    long long filled = 0;
    if (span != 0) filled = (static_cast<long long>(bar.position) - bar.lower) * cells / span;
    filled = std::min<long long>(std::max<long long>(filled, 0), cells);
    std::fill(cellsText.begin(), cellsText.begin() + static_cast<long>(filled), '#');
  }
  return std::string(kIndent, ' ') + "[" + cellsText + "]" + qn_wide_to_utf8(percent.c_str(), percent.size());
}

}  // namespace

std::vector<std::string> FrameLines(const std::wstring& caption, const std::wstring& header, const Bars& bars,
                                    int columns, unsigned tick) {
  const int width = std::max(columns, kMinColumns) - 1;
  std::vector<std::string> lines;
  lines.push_back(Fit(caption, width));
  lines.push_back(Fit(header, width));
  for (int i = 0; i < bars.count(); ++i) {
    lines.push_back(std::string(kIndent, ' ') + Fit(bars.at(i).label, width - kIndent));
    lines.push_back(BarLine(bars.at(i), width, tick));
  }
  return lines;
}

std::string FrameUpdate(const std::vector<std::string>& lines, int previousLines) {
  std::string out;
  if (previousLines > 0) out += "\x1b[" + std::to_string(previousLines) + "A";
  for (const std::string& line : lines) out += "\r\x1b[2K" + line + "\n";
  // A shorter frame leaves no stale lines below it.
  if (previousLines > static_cast<int>(lines.size())) out += "\x1b[J";
  return out;
}

}  // namespace progress
}  // namespace qt
