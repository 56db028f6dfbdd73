// The text of the terminal form of a progress dialog: one line for the
// caption, one for the header, and per bar its label and the bar itself
// with its percentage. The line count depends only on the bar count, so a
// frame can be redrawn in place over the one before.
#ifndef QUILTOOL_REPORTS_PROGRESS_FRAME_H
#define QUILTOOL_REPORTS_PROGRESS_FRAME_H

#include <string>
#include <vector>

#include "reports/progress_bars.h"

namespace qt {
namespace progress {

// UTF-8 lines without line ends, each shorter than `columns` (a line that
// filled the terminal's width would wrap and spoil the redraw). `tick`
// moves a marquee bar's block along.
std::vector<std::string> FrameLines(const std::wstring& caption, const std::wstring& header, const Bars& bars,
                                    int columns, unsigned tick);

// The bytes that draw `lines`: over the `previousLines` lines drawn before
// (cursor up, each line erased and rewritten), or below the cursor when
// there were none. The cursor ends on the line after the frame.
std::string FrameUpdate(const std::vector<std::string>& lines, int previousLines);

}  // namespace progress
}  // namespace qt

#endif
