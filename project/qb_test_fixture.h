// Helpers of the project database tests: a small dictionary of panels,
// their circuits and free-standing notes, and record builders on it.
#ifndef QUILTOOL_PROJECT_QB_TEST_FIXTURE_H
#define QUILTOOL_PROJECT_QB_TEST_FIXTURE_H

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "qb.h"
#include "qt_test.h"

namespace qb_test {

inline const char* PanelDictionary() {
  return "# panels own circuits and notes; circuits own devices\n"
         "idlength 8\n"
         "set PANEL\n"
         "  att 1 NAME wsz\n"
         "  att 2 RATING long\n"
         "  att 3 LOAD double\n"
         "set CIRCUIT owner PANEL 10\n"
         "  att 1 NAME wsz\n"
         "  att 2 POLES long\n"
         "  att 10 PANEL id\n"
         "set NOTE owner PANEL 3\n"
         "  att 1 TEXT sz\n"
         "  att 2 DATA bytes\n"
         "  att 3 PANEL id\n"
         "set DEVICE owner CIRCUIT 5\n"
         "  att 5 CIRCUIT id\n";
}

// Creates a database file with the panel dictionary; false on failure.
inline bool CreatePanelFile(const std::wstring& path) {
  const short ddq = ddq_parse(PanelDictionary());
  if (ddq < 0) return false;
  const short h = qbinitfilew(path.c_str(), ddq);
  ddq_release(ddq);
  if (h < 0) return false;
  const short s = qbcreatefile(h);
  qbreleasefile(h);
  return s == QB_OK;
}

// Opens a file in mode; the handle, negative on failure.
inline short OpenFile(const std::wstring& path, short mode) {
  const short h = qbinitfilew(path.c_str(), -1);
  if (h < 0) return h;
  const short s = qbopenfile(h, mode);
  if (s != QB_OK) {
    qbreleasefile(h);
    return s;
  }
  return h;
}

inline short SavePanel(short h, const char* id, const wchar_t* name, long rating) {
  char* rec = qbcreaterec(h, "PANEL", id);
  if (!rec) return qbgetlasterror(h);
  short s = qbinsertwsz(h, &rec, 1, name, -1);
  const int value = static_cast<int>(rating);
  if (s == QB_OK) s = qbinsertatt(h, &rec, 2, &value, 4);
  if (s == QB_OK) s = qbsaverec(h, rec);
  qbreleaserec(rec);
  return s;
}

inline short SaveCircuit(short h, const char* id, const char* panel, long poles) {
  char* rec = qbcreaterec(h, "CIRCUIT", id);
  if (!rec) return qbgetlasterror(h);
  const int value = static_cast<int>(poles);
  short s = qbinsertatt(h, &rec, 2, &value, 4);
  if (s == QB_OK && panel) s = qbinsertatt(h, &rec, 10, panel, static_cast<short>(std::strlen(panel)));
  if (s == QB_OK) s = qbsaverec(h, rec);
  qbreleaserec(rec);
  return s;
}

// A member of some owner set, linked through attribute `link`.
inline short SaveMember(short h, const char* set, const char* id, short link, const char* owner) {
  char* rec = qbcreaterec(h, set, id);
  if (!rec) return qbgetlasterror(h);
  short s = qbinsertatt(h, &rec, link, owner, static_cast<short>(std::strlen(owner)));
  if (s == QB_OK) s = qbsaverec(h, rec);
  qbreleaserec(rec);
  return s;
}

// A record's id as text ("" for null).
inline std::string IdOf(short h, char* rec) {
  char id[QB_IDSIZE] = {0};
  if (!rec || qbgetID(h, nullptr, rec, id) != QB_OK) return std::string();
  return id;
}

// A long attribute, or -1.
inline long LongAtt(short h, const char* rec, short att) {
  short size = 0;
  const void* p = qbfindatt(h, rec, att, &size);
  if (!p || size != 4) return -1;
  int v;
  std::memcpy(&v, p, 4);
  return v;
}

}  // namespace qb_test

#endif
