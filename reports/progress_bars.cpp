#include "reports/progress_bars.h"

#include <algorithm>
#include <cstdio>

namespace qt {
namespace progress {

int Percentage(int lower, int upper, int position) {
  const double span = static_cast<double>(upper) - static_cast<double>(lower);
  if (span == 0) return 0;
  const double share = (static_cast<double>(position) - static_cast<double>(lower)) / span;
  return static_cast<int>(share * 100.0 + 0.5);
}

std::wstring PercentageText(const Bar& bar) {
  wchar_t buffer[24];
  std::swprintf(buffer, sizeof buffer / sizeof buffer[0], L"%d%%", Percentage(bar.lower, bar.upper, bar.position));
  return buffer;
}

Bars::Bars(int count) : bars_(static_cast<size_t>(std::max(count, 0))) {}

bool Bars::resize(int count) {
  if (count < kMinBars || count > kMaxBars) return false;
  bars_.resize(static_cast<size_t>(count));
  return true;
}

void Bars::resetBelow(int index) {
  for (size_t i = static_cast<size_t>(index) + 1; i < bars_.size(); ++i) {
    bars_[i].position = bars_[i].lower;
    bars_[i].label.clear();
  }
}

bool Bars::setPosition(int index, int position) {
  if (!valid(index)) return false;
  Bar& bar = bars_[static_cast<size_t>(index)];
  bar.position = std::min(std::max(position, std::min(bar.lower, bar.upper)), std::max(bar.lower, bar.upper));
  resetBelow(index);
  return true;
}

bool Bars::stepIt(int index) {
  if (!valid(index)) return false;
  Bar& bar = bars_[static_cast<size_t>(index)];
  long long next = static_cast<long long>(bar.position) + bar.step;
  const long long span = static_cast<long long>(bar.upper) - bar.lower;
  if (span > 0 && next > bar.upper) next = (next - bar.lower) % span + bar.lower;
  if (span > 0 && next < bar.lower) next = bar.upper - (bar.lower - next) % span;
  if (span <= 0) next = bar.lower;
  bar.position = static_cast<int>(next);
  resetBelow(index);
  return true;
}

bool Bars::setLower(int index, int value) {
  if (!valid(index)) return false;
  Bar& bar = bars_[static_cast<size_t>(index)];
  bar.lower = value;
  if (bar.position < value) bar.position = value;
  return true;
}

bool Bars::setUpper(int index, int value) {
  if (!valid(index)) return false;
  Bar& bar = bars_[static_cast<size_t>(index)];
  bar.upper = value;
  if (bar.position > value) bar.position = std::max(value, bar.lower);
  return true;
}

bool Bars::setLabel(int index, const std::wstring& text) {
  if (!valid(index)) return false;
  bars_[static_cast<size_t>(index)].label = text;
  return true;
}

bool Bars::init(int index, int lower, int upper, int step, bool showPercentage, bool marquee) {
  if (!valid(index)) return false;
  Bar& bar = bars_[static_cast<size_t>(index)];
  bar.lower = lower;
  bar.upper = upper;
  bar.step = step;
  bar.position = lower;
  bar.showPercentage = showPercentage;
  bar.marquee = marquee;
  return true;
}

void Bars::setShowPercentage(bool show) {
  for (Bar& bar : bars_) bar.showPercentage = show;
}

void Bars::setMarquee(bool marquee) {
  for (Bar& bar : bars_) bar.marquee = marquee;
}

}  // namespace progress
}  // namespace qt
