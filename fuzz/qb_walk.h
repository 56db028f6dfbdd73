// Shared by the record-engine harnesses: everything a caller can read
// from an open database, walked record by record into one text, so that
// two databases can be compared by what they answer.
#ifndef QUILTOOL_FUZZ_QB_WALK_H
#define QUILTOOL_FUZZ_QB_WALK_H

#include <string>

#include "fuzz_support.h"
#include "qb.h"

namespace qt_fuzz {

struct Walked {
  std::string content;
  long records = 0;
  long counted = 0;      // what the file says it holds
  bool complete = true;  // false when the count is refused or differs
};

// Each record is given up for its successor, as callers do.
inline Walked Walk(short h) {
  Walked w;
  long guard = 0;
  for (char* rec = qbfirstrec(h); rec; ++guard) {
    QT_FUZZ_CHECK(guard < 1000000, "the record walk does not end");
    ++w.records;
    char set[QB_SETNAMESIZE + 1] = {0};
    char id[QB_IDSIZE + 1] = {0};
    qbgetsetname(rec, set);
    qbgetID(h, nullptr, rec, id);
    w.content += std::string("[") + set + ":" + Printable(std::string(id, QB_IDSIZE)) + "]";
    short att = 0;
    char buffer[65536];
    short size = sizeof buffer;
    for (void* p = qbcopyfirstatt(h, rec, &att, buffer, &size); p; p = qbcopynextatt(h, rec, &att, buffer, &size)) {
      QT_FUZZ_CHECK(size >= 0 && static_cast<size_t>(size) <= sizeof buffer, "an attribute of " + std::to_string(size) + " bytes");
      w.content += " " + std::to_string(att) + "=" + Printable(std::string(buffer, static_cast<size_t>(size)), 100000);
      size = sizeof buffer;
    }
    long ahmSize = 0;
    if (const void* ahm = qbgetahm(h, rec, &ahmSize)) {
      w.content += " ahm=" + Printable(std::string(static_cast<const char*>(ahm), static_cast<size_t>(ahmSize)), 100000);
    }
    w.content += "\n";
    char* next = qbnextrec(h, rec);
    qbreleaserec(rec);
    rec = next;
  }
  w.counted = qbgetnrecs(h);
  w.complete = w.counted == w.records;
  return w;
}

}  // namespace qt_fuzz

#endif
