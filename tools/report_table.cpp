#include "tools/report_table.h"

#include <cstring>
#include <map>
#include <vector>

#include "qb.h"
#include "qn_utf.h"

namespace qt_tool {

long long PackedId(const char* id) {
  unsigned long long v = 0;
  for (int i = 0; i < 8 && id[i]; ++i) v |= static_cast<unsigned long long>(static_cast<unsigned char>(id[i])) << (8 * i);
  return static_cast<long long>(v);
}

namespace {

struct Attribute {
  short number;
  short type;
  std::string name;
};

struct SetColumns {
  std::string name;
  std::map<short, int> columnOf;  // attribute number -> column
  std::map<short, short> typeOf;
};

// FNV-1a of "name/type", kept clear of the fixed LParams.
long long NameLParam(const std::string& name, short type) {
  unsigned long long h = 14695981039346656037ULL;
  const std::string key = name + "/" + std::to_string(type);
  for (unsigned char c : key) h = (h ^ c) * 1099511628211ULL;
  return static_cast<long long>(h >> 8) | (1LL << 40);
}

std::vector<Attribute> AttributesOf(short ddq, const char* set) {
  std::vector<Attribute> atts;
  const short n = ddq_getnatts(ddq, set);
  for (short i = 0; i < n; ++i) {
    qbattinfo info;
    if (ddq_getattinfo(ddq, set, i, &info) == QB_OK) atts.push_back({info.number, info.type, info.name});
  }
  return atts;
}

void PutValue(const QBaseDb& db, QnListView2& grid, int row, int column, short type, const char* rec, short att) {
  short size = 0;
  const void* p = qbfindatt(db.getHqbFile(), rec, att, &size);
  if (!p) return;
  switch (type) {
    case QB_ATT_LONG: {
      int v = 0;
      if (size == 4) std::memcpy(&v, p, 4);
      grid.SetCell(row, column, v, false);
      break;
    }
    case QB_ATT_DOUBLE: {
      double v = 0;
      if (size == 8) std::memcpy(&v, p, 8);
      grid.SetCell(row, column, v, -1, false);
      break;
    }
    case QB_ATT_WSZ: {
      const std::wstring text = qn_utf16le_to_wide(p, static_cast<size_t>(size), QN_UTF_REPLACE_INVALID);
      grid.SetCell(row, column, ustr(text.c_str()), 0, false);
      break;
    }
    default: {
      // 8-bit texts and ids as they stand; other bytes as text where they are text.
      std::string bytes(static_cast<const char*>(p), static_cast<size_t>(size));
      grid.SetCell(row, column, ustr(qn_utf8_to_wide(bytes.c_str(), bytes.size()).c_str()), 0, false);
      break;
    }
  }
}

}  // namespace

int FillReportTable(const QBaseDb& db, const std::string& set, QnListView2& grid, const WalkProgress& progress,
                    std::string* message) {
  const short ddq = db.getDdq();
  const short nSets = ddq_getnsets(ddq);
  std::vector<SetColumns> sets;
  grid.AddColumn(L"Id", 80, QnListView2::AlignDefault, 0);
  if (set.empty()) grid.AddColumn(L"Set", 80, QnListView2::AlignDefault, 1);
  std::map<long long, int> shared;
  for (short i = 0; i < nSets; ++i) {
    qbsetinfo info;
    if (ddq_getsetinfo(ddq, i, &info) != QB_OK) continue;
    if (!set.empty() && set != info.name) continue;
    SetColumns sc;
    sc.name = info.name;
    for (const Attribute& a : AttributesOf(ddq, info.name)) {
      const long long lParam = set.empty() ? NameLParam(a.name, a.type) : a.number + 16;
      auto at = shared.find(lParam);
      int column;
      if (at != shared.end()) {
        column = at->second;
      } else {
        const bool number = a.type == QB_ATT_LONG || a.type == QB_ATT_DOUBLE;
        column = grid.AddColumn(ustr(qn_utf8_to_wide(a.name.c_str()).c_str()), 100,
                                number ? QnListView2::AlignRight : QnListView2::AlignDefault, lParam);
        shared[lParam] = column;
      }
      sc.columnOf[a.number] = column;
      sc.typeOf[a.number] = a.type;
    }
    sets.push_back(sc);
  }
  if (sets.empty()) {
    *message = "the database has no set named '" + set + "'";
    return 1;
  }
  const long total = qbgetnrecs(db.getHqbFile());
  long seen = 0;
  int currentSet = -1;
  QBaseDb::ConstIterator it(db);
  for (it.start(); !it.done(); it.next()) {
    const char* rec = *it;
    char setName[QB_SETNAMESIZE] = "";
    qbgetsetname(rec, setName);
    ++seen;
    if (progress.record && seen % 256 == 0 && !progress.record(seen, total)) return 4;
    int s = 0;
    while (s < static_cast<int>(sets.size()) && sets[s].name != setName) ++s;
    if (s == static_cast<int>(sets.size())) continue;
    if (s != currentSet) {
      currentSet = s;
      if (progress.set && !progress.set(s, static_cast<int>(sets.size()), setName)) return 4;
    }
    char id[QB_IDSIZE + 1] = "";
    qbgetID(db.getHqbFile(), setName, rec, id);
    const int row = grid.AddRow(PackedId(id));
    if (row < 0) {
      *message = "out of memory";
      return 1;
    }
    grid.SetRowTag(row, id);
    grid.SetCell(row, 0, ustr(qn_utf8_to_wide(id).c_str()), 0, false);
    if (set.empty()) grid.SetCell(row, 1, ustr(qn_utf8_to_wide(setName).c_str()), 0, false);
    const SetColumns& sc = sets[s];
    for (const auto& c : sc.columnOf) PutValue(db, grid, row, c.second, sc.typeOf.at(c.first), rec, c.first);
  }
  if (progress.record) progress.record(seen, total);
  return 0;
}

}  // namespace qt_tool
