#include "listview/column_layout.h"

#include <algorithm>
#include <cwchar>

#include "QNListViewColumnManager.h"

namespace qt {
namespace listview {

ustr FormatLayoutEntry(const LayoutEntry& entry) {
  ustr text;
  text.format(L"%d|%d|%lld", entry.width, entry.hidden, entry.third);
  return text;
}

bool ParseLayoutEntry(const wchar_t* text, LayoutEntry* entry) {
  if (!text) return false;
  LayoutEntry e;
  if (std::swscanf(text, L"%d|%d|%lld", &e.width, &e.hidden, &e.third) != 3) return false;
  *entry = e;
  return true;
}

bool IsPermutation(const std::vector<int>& order, int count) {
  if (static_cast<int>(order.size()) != count) return false;
  std::vector<bool> seen(order.size());
  for (int c : order) {
    if (c < 0 || c >= count || seen[c]) return false;
    seen[c] = true;
  }
  return true;
}

LayoutPlan PlanByIndex(const std::vector<LayoutEntry>& entries, int columnCount, bool complete) {
  LayoutPlan plan;
  std::vector<int> order;
  for (size_t i = 0; i < entries.size() && static_cast<int>(i) < columnCount; ++i) {
    plan.columns.push_back({static_cast<int>(i), entries[i].width, entries[i].hidden != 0});
    order.push_back(static_cast<int>(entries[i].third));
  }
  // An order that does not name every column once would lose columns from
  // the header; such a saved layout keeps the current order.
  if (complete && IsPermutation(order, columnCount)) {
    plan.applyOrder = true;
    plan.order = order;
  }
  return plan;
}

LayoutPlan PlanByLParam(const std::vector<LayoutEntry>& entries, const std::vector<long long>& lParams,
                        const std::vector<int>& currentOrder, bool endOfSaved) {
  LayoutPlan plan;
  const int count = static_cast<int>(lParams.size());
  std::vector<int> order;
  std::vector<bool> named(lParams.size());
  bool stopped = false;
  for (const LayoutEntry& e : entries) {
    auto at = std::find(lParams.begin(), lParams.end(), e.third);
    if (at == lParams.end()) {
      stopped = true;
      break;
    }
    const int column = static_cast<int>(at - lParams.begin());
    if (named[column]) {  // named twice: the layout is not one of ours
      stopped = true;
      break;
    }
    named[column] = true;
    plan.columns.push_back({column, e.width, e.hidden != 0});
    order.push_back(column);
  }
  if (stopped || !endOfSaved) return plan;
  // Columns added since the layout was saved follow in their current order.
  for (int c : currentOrder) {
    if (c >= 0 && c < count && !named[c]) {
      named[c] = true;
      order.push_back(c);
    }
  }
  if (IsPermutation(order, count)) {
    plan.applyOrder = true;
    plan.order = order;
  }
  return plan;
}

std::vector<int> ScaledWidths(const std::vector<int>& widths, const std::vector<bool>& shown, int clientWidth,
                              int minWidth) {
  std::vector<int> result(widths.size(), 0);
  long long total = 0;
  int last = -1;
  for (size_t i = 0; i < widths.size(); ++i) {
    if (i < shown.size() && shown[i]) {
      total += std::max(widths[i], 1);
      last = static_cast<int>(i);
    }
  }
  if (last < 0 || clientWidth <= 0) {
    for (size_t i = 0; i < widths.size(); ++i) result[i] = i < shown.size() && shown[i] ? widths[i] : 0;
    return result;
  }
  long long used = 0;
  for (size_t i = 0; i < widths.size(); ++i) {
    if (!(i < shown.size() && shown[i])) continue;
    int w;
    if (static_cast<int>(i) == last) {
      w = static_cast<int>(std::max<long long>(clientWidth - used, minWidth));
    } else {
      w = static_cast<int>(std::max<long long>(std::max(widths[i], 1) * clientWidth / total, minWidth));
    }
    result[i] = w;
    used += w;
  }
  return result;
}

std::vector<QnMenuItem> HeaderMenuItems(const HeaderMenuTexts& texts, bool canAutoScale, bool autoSizeOn,
                                        std::vector<HeaderMenuColumn> columns, bool sortByName) {
  typedef QNListViewColumnManager M;
  std::vector<QnMenuItem> items;
  auto add = [&](int command, const ustr& text, bool checked, bool greyed) {
    QnMenuItem item;
    item.command = command;
    item.text = text;
    item.checked = checked;
    item.greyed = greyed;
    items.push_back(item);
  };
  auto separator = [&] {
    QnMenuItem item;
    item.separator = true;
    items.push_back(item);
  };
  if (canAutoScale) {
    add(M::CmdAutoSize, texts.autoSize, autoSizeOn, false);
    separator();
    add(M::CmdSizeColumnToFit, texts.sizeColumn, false, autoSizeOn);
    add(M::CmdSizeAllColumnsToFit, texts.sizeAll, false, autoSizeOn);
    separator();
  }
  if (sortByName) {
    std::stable_sort(columns.begin(), columns.end(), [](const HeaderMenuColumn& a, const HeaderMenuColumn& b) {
      return a.name.compareNoCase(b.name) < 0;
    });
  }
  const int maxEntries = M::CmdLastColumn - M::CmdFirstColumn + 1;
  int added = 0;
  for (const HeaderMenuColumn& c : columns) {
    if (c.column < 0 || c.column >= maxEntries) continue;
    add(M::CmdFirstColumn + c.column, c.name, c.shown, false);
    if (++added == maxEntries) break;
  }
  separator();
  add(M::CmdMore, texts.more, false, false);
  return items;
}

}  // namespace listview
}  // namespace qt
