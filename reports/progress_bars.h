// The state of a dialog's stacked bars, kept the same way on every target
// so that the Windows controls and the terminal show the same numbers.
#ifndef QUILTOOL_REPORTS_PROGRESS_BARS_H
#define QUILTOOL_REPORTS_PROGRESS_BARS_H

#include <string>
#include <vector>

namespace qt {
namespace progress {

// The dialog templates exist for 1 to kMaxBars bars.
const int kMinBars = 1;
const int kMaxBars = 5;

struct Bar {
  int lower = 0;
  int upper = 100;
  int step = 1;
  int position = 0;
  bool showPercentage = false;
  bool marquee = false;
  std::wstring label;
};

// Rounded percentage of position within [lower, upper]; 0 for an empty span.
int Percentage(int lower, int upper, int position);
// "%d%%" of the bar's percentage.
std::wstring PercentageText(const Bar& bar);

class Bars {
 public:
  explicit Bars(int count = 1);

  int count() const { return static_cast<int>(bars_.size()); }
  bool valid(int index) const { return index >= 0 && index < count(); }
  const Bar& at(int index) const { return bars_[static_cast<size_t>(index)]; }
  // Keeps the bars that stay; new ones start with 0 to 100 step 1.
  bool resize(int count);

  // Each answers false for a bar outside the bars. Moving bar i restarts
  // the bars below it, so the nested bars begin again for each of its steps.
  bool setPosition(int index, int position);
  // Advances by the step; past the upper bound it wraps round from the
  // lower one, as the system's progress control does.
  bool stepIt(int index);
  bool setLower(int index, int value);
  bool setUpper(int index, int value);
  bool setLabel(int index, const std::wstring& text);
  bool init(int index, int lower, int upper, int step, bool showPercentage, bool marquee);
  void setShowPercentage(bool show);
  void setMarquee(bool marquee);

 private:
  void resetBelow(int index);
  std::vector<Bar> bars_;
};

}  // namespace progress
}  // namespace qt

#endif
