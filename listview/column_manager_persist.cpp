// Saving and loading a column layout: registry values and XML text.
#include <tinyxml2.h>

#include <cstdio>

#include "QNListViewColumnManager.h"
#include "Registry.h"
#include "core/boundary.h"
#include "listview/column_layout.h"
#include "listview/column_manager_state.h"

using qt::listview::LayoutEntry;
using qt::listview::LayoutPlan;

namespace {

ustr ValuePath(const wchar_t* key, const wchar_t* value) {
  ustr path(key);
  path += L"\\";
  path += value;
  return path;
}

ustr ColumnValuePath(const wchar_t* key, int i) {
  ustr path;
  path.format(L"%s\\column%d", key, i);
  return path;
}

// The entry for position i: by index, column i and the order entry i; by
// LParam, the column shown at position i and its LParam.
LayoutEntry EntryAt(const QNListViewColumnManager& m, const std::vector<int>& order, int i,
                    const std::vector<long long>* lParams) {
  LayoutEntry e;
  const int column = lParams ? order[i] : i;
  e.hidden = m.IsColumnHidden(column) ? 1 : 0;
  e.width = e.hidden ? m.RememberedWidth(column) : m.GetColumnWidth(column, false);
  e.third = lParams ? (*lParams)[column] : order[i];
  return e;
}

// The entries of the current layout, or none when the list's order does
// not match its columns (nothing worth saving).
bool CurrentEntries(const QNListViewColumnManager& m, const std::vector<long long>* lParams,
                    std::vector<LayoutEntry>* entries) {
  const int count = m.GetColumnCount();
  const std::vector<int> order = m.GetColumnOrder();
  if (count < 0 || !qt::listview::IsPermutation(order, count)) return false;
  if (lParams && static_cast<int>(lParams->size()) < count) return false;
  for (int i = 0; i < count; ++i) entries->push_back(EntryAt(m, order, i, lParams));
  return true;
}

}  // namespace

// Applies a plan as one step of loading: widths first, then hidden marks,
// then the order, with the manager's own notifications ignored.
static void ApplyPlan(QNListViewColumnManager& m, QNListViewColumnManager::State& state, const LayoutPlan& plan,
                      bool redraw) {
  qt::listview::Applying busy(state);
  for (const LayoutPlan::Apply& a : plan.columns) {
    if (a.hidden) {
      if (!m.IsColumnHidden(a.column)) {
        m.SetColumnWidth(a.column, a.width, false);
        m.ShowHideColumn(a.column, false, false);
      } else if (QNListViewColumnManager::State::Column* c = state.at(m, a.column)) {
        c->rememberedWidth = a.width;
      }
    } else {
      m.ShowHideColumn(a.column, true, false);
      m.SetColumnWidth(a.column, a.width, false);
    }
  }
  if (plan.applyOrder) m.SetColumnOrder(plan.order);
  if (state.autoSize) m.AutoScaleColumns();
  if (redraw) m.Repaint();
}

bool QNListViewColumnManager::Load() {
  if (state_->registryKey.empty()) return false;
  return LoadFromRegistry(state_->registryKey.c_str(), true);
}

bool QNListViewColumnManager::Save() {
  if (state_->registryKey.empty() || !state_->allowSaving) return false;
  return SaveToRegistry(state_->registryKey.c_str());
}

static bool LoadEntries(QNListViewColumnManager& m, QNListViewColumnManager::State& state, const wchar_t* key,
                        bool redraw, const std::vector<long long>* lParams) {
  if (!key || !*key) return false;
  const int count = m.GetColumnCount();
  if (count <= 0) return false;
  if (lParams && static_cast<int>(lParams->size()) < count) return false;
  const int autoSize = Registry::GetIntAtt(nullptr, ValuePath(key, L"AutoSize"), 1);
  state.autoSize = autoSize != 0 && state.allowAutoScaling;

  std::vector<LayoutEntry> entries;
  bool complete = true;
  for (int i = 0; i < count; ++i) {
    const ustr text = Registry::GetStringAtt(nullptr, ColumnValuePath(key, i), ustr());
    LayoutEntry e;
    if (!qt::listview::ParseLayoutEntry(text.c_str(), &e)) {
      complete = false;
      break;
    }
    entries.push_back(e);
  }
  // By LParam the layout may predate columns added since: its end is not
  // a failure. A value that is there but unreadable still is.
  bool endOfSaved = complete;
  if (!complete && lParams) {
    endOfSaved = Registry::GetStringAtt(nullptr, ColumnValuePath(key, static_cast<int>(entries.size())), ustr()).empty();
  }
  const LayoutPlan plan = lParams ? qt::listview::PlanByLParam(entries, *lParams, m.GetColumnOrder(), endOfSaved)
                                  : qt::listview::PlanByIndex(entries, count, complete);
  ApplyPlan(m, state, plan, redraw);
  state.tell(m, QNListViewColumnManager::CbLayoutLoaded);
  return plan.applyOrder;
}

bool QNListViewColumnManager::LoadFromRegistry(const wchar_t* key, bool redraw) {
  return qt::NoThrow<bool>("QNListViewColumnManager::LoadFromRegistry", false,
                           [&] { return LoadEntries(*this, *state_, key, redraw, nullptr); });
}

bool QNListViewColumnManager::LoadFromRegistry(const wchar_t* key, bool redraw, const std::vector<long long>& lParams) {
  return qt::NoThrow<bool>("QNListViewColumnManager::LoadFromRegistry", false,
                           [&] { return LoadEntries(*this, *state_, key, redraw, &lParams); });
}

static bool SaveEntries(QNListViewColumnManager& m, QNListViewColumnManager::State& state, const wchar_t* key,
                        const std::vector<long long>* lParams) {
  if (!key || !*key) return false;
  std::vector<LayoutEntry> entries;
  if (!CurrentEntries(m, lParams, &entries)) return false;
  bool ok = Registry::SetIntAtt(nullptr, ValuePath(key, L"AutoSize"), state.autoSize ? 1 : 0);
  for (size_t i = 0; i < entries.size(); ++i) {
    ok = Registry::SetStringAtt(nullptr, ColumnValuePath(key, static_cast<int>(i)),
                                qt::listview::FormatLayoutEntry(entries[i])) && ok;
  }
  // A layout saved earlier for more columns would otherwise lend its extra
  // entries to the next load.
  Registry::DeleteAtt(nullptr, ColumnValuePath(key, static_cast<int>(entries.size())));
  if (ok) state.tell(m, QNListViewColumnManager::CbLayoutSaved);
  return ok;
}

bool QNListViewColumnManager::SaveToRegistry(const wchar_t* key) {
  return qt::NoThrow<bool>("QNListViewColumnManager::SaveToRegistry", false,
                           [&] { return SaveEntries(*this, *state_, key, nullptr); });
}

bool QNListViewColumnManager::SaveToRegistry(const wchar_t* key, const std::vector<long long>& lParams) {
  return qt::NoThrow<bool>("QNListViewColumnManager::SaveToRegistry", false,
                           [&] { return SaveEntries(*this, *state_, key, &lParams); });
}

static std::string EntriesToXml(const QNListViewColumnManager& m, const std::vector<long long>* lParams) {
  std::vector<LayoutEntry> entries;
  if (!CurrentEntries(m, lParams, &entries)) return std::string();
  tinyxml2::XMLDocument doc;
  tinyxml2::XMLElement* root = doc.NewElement("ColumnData");
  doc.InsertEndChild(root);
  for (size_t i = 0; i < entries.size(); ++i) {
    char name[32];
    std::snprintf(name, sizeof name, "Col%d", static_cast<int>(i));
    tinyxml2::XMLElement* col = doc.NewElement(name);
    col->SetAttribute("width", entries[i].width);
    col->SetAttribute("hidden", entries[i].hidden);
    col->SetAttribute("order", static_cast<int64_t>(entries[i].third));
    root->InsertEndChild(col);
  }
  tinyxml2::XMLPrinter printer;
  doc.Print(&printer);
  return std::string(printer.CStr(), static_cast<size_t>(printer.CStrSize() > 0 ? printer.CStrSize() - 1 : 0));
}

std::string QNListViewColumnManager::ToXml() {
  return qt::NoThrow<std::string>("QNListViewColumnManager::ToXml", std::string(),
                                  [&] { return EntriesToXml(*this, nullptr); });
}

std::string QNListViewColumnManager::ToXml(const std::vector<long long>& lParams) {
  return qt::NoThrow<std::string>("QNListViewColumnManager::ToXml", std::string(),
                                  [&] { return EntriesToXml(*this, &lParams); });
}

namespace {

// An attribute read as "%d" reads it: leading digits count, the rest not.
bool ReadIntAttribute(const tinyxml2::XMLElement* e, const char* name, long long* value, std::string* error) {
  const char* text = e->Attribute(name);
  if (!text) {
    *error = tinyxml2::XMLDocument::ErrorIDToName(tinyxml2::XML_NO_ATTRIBUTE);
    return false;
  }
  if (std::sscanf(text, "%lld", value) != 1) {
    *error = tinyxml2::XMLDocument::ErrorIDToName(tinyxml2::XML_WRONG_ATTRIBUTE_TYPE);
    return false;
  }
  return true;
}

}  // namespace

static bool LoadXml(QNListViewColumnManager& m, QNListViewColumnManager::State& state, const char* text,
                    const std::vector<long long>* lParams) {
  state.xmlError.clear();
  if (!text) {
    state.xmlError = tinyxml2::XMLDocument::ErrorIDToName(tinyxml2::XML_ERROR_EMPTY_DOCUMENT);
    return false;
  }
  tinyxml2::XMLDocument doc;
  if (doc.Parse(text) != tinyxml2::XML_SUCCESS) {
    state.xmlError = doc.ErrorStr();
    return false;
  }
  const tinyxml2::XMLElement* root = doc.FirstChildElement("ColumnData");
  if (!root) {
    state.xmlError = tinyxml2::XMLDocument::ErrorIDToName(tinyxml2::XML_NO_TEXT_NODE);
    return false;
  }
  const int count = m.GetColumnCount();
  if (count <= 0 || (lParams && static_cast<int>(lParams->size()) < count)) return false;
  std::vector<LayoutEntry> entries;
  bool complete = true, endOfSaved = true;
  for (int i = 0; i < count; ++i) {
    char name[32];
    std::snprintf(name, sizeof name, "Col%d", i);
    const tinyxml2::XMLElement* col = root->FirstChildElement(name);
    if (!col) {
      complete = false;
      break;
    }
    long long width = 0, hidden = 0, order = 0;
    if (!ReadIntAttribute(col, "width", &width, &state.xmlError) ||
        !ReadIntAttribute(col, "hidden", &hidden, &state.xmlError) ||
        !ReadIntAttribute(col, "order", &order, &state.xmlError)) {
      complete = endOfSaved = false;
      break;
    }
    LayoutEntry e;
    e.width = static_cast<int>(width);
    e.hidden = static_cast<int>(hidden);
    e.third = order;
    entries.push_back(e);
  }
  const LayoutPlan plan = lParams ? qt::listview::PlanByLParam(entries, *lParams, m.GetColumnOrder(), endOfSaved)
                                  : qt::listview::PlanByIndex(entries, count, complete);
  ApplyPlan(m, state, plan, true);
  state.tell(m, QNListViewColumnManager::CbLayoutLoaded);
  return plan.applyOrder && state.xmlError.empty();
}

bool QNListViewColumnManager::FromXml(const char* text) {
  return qt::NoThrow<bool>("QNListViewColumnManager::FromXml", false,
                           [&] { return LoadXml(*this, *state_, text, nullptr); });
}

bool QNListViewColumnManager::FromXml(const char* text, const std::vector<long long>& lParams) {
  return qt::NoThrow<bool>("QNListViewColumnManager::FromXml", false,
                           [&] { return LoadXml(*this, *state_, text, &lParams); });
}

const char* QNListViewColumnManager::GetXmlError() const { return state_->xmlError.c_str(); }
