#include "tools/db_sample.h"

#include <cstdlib>
#include <cstring>

#include "command.h"
#include "qb.h"
#include "qn_utf.h"
#include "ustr.h"

namespace qt_tool {

const char kSampleDictionary[] =
    "idlength 8\n"
    "set STOREY\n"
    "  att 1 NAME wsz\n"
    "  att 2 ELEVATION double\n"
    "  att 3 NUMBER long\n"
    "set ROOM owner STOREY 10\n"
    "  att 1 NAME wsz\n"
    "  att 2 AREA double\n"
    "  att 3 NUMBER long\n"
    "  att 4 NOTE wsz\n"
    "  att 10 STOREY id\n"
    "set AHU\n"
    "  att 1 NAME wsz\n"
    "  att 2 FLOW double\n"
    "  att 3 FANS long\n"
    "  att 4 NOTE wsz\n"
    "set DUCT owner AHU 10\n"
    "  att 1 NAME wsz\n"
    "  att 2 FLOW double\n"
    "  att 3 WIDTH long\n"
    "  att 4 HEIGHT long\n"
    "  att 10 AHU id\n"
    "set TERMINAL owner DUCT 10\n"
    "  att 1 NAME wsz\n"
    "  att 2 FLOW double\n"
    "  att 3 SIZE long\n"
    "  att 4 NOTE wsz\n"
    "  att 5 ROOM id\n"
    "  att 10 DUCT id\n";

SampleCounts SampleCountsFor(long total) {
  SampleCounts c;
  c.storeys = total / 500 > 1 ? total / 500 : 1;
  c.units = total / 1000 > 1 ? total / 1000 : 1;
  c.rooms = total / 5 > 1 ? total / 5 : 1;
  c.ducts = total * 3 / 10 > 1 ? total * 3 / 10 : 1;
  c.terminals = total - c.storeys - c.units - c.rooms - c.ducts;
  return c;
}

namespace {

// The same numbers for the same count on every target.
class Numbers {
 public:
  unsigned next() {
    state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<unsigned>(state_ >> 33);
  }
  // A value with two decimals in [from, from + span), the double nearest
  // to its decimal text (so that it prints back as written).
  double hundredths(unsigned from, unsigned span) {
    return static_cast<double>(from * 100 + next() % (span * 100)) / 100.0;
  }

 private:
  unsigned long long state_ = 0x5EEDULL;
};

// Ids are the set's letter and seven digits; the record limit keeps every
// count below 10^7.
void Id(char (&out)[24], char prefix, long n) { std::snprintf(out, sizeof out, "%c%07ld", prefix, n % 10000000); }

class Writer {
 public:
  Writer(short h, FILE* err) : h_(h), err_(err) {}
  bool ok() const { return ok_; }
  char* make(const char* set, const char* id) {
    char* rec = qbcreaterec(h_, set, id);
    if (!rec) fail("creating a record", qbgetlasterror(h_));
    return rec;
  }
  void text(char** rec, short att, const std::wstring& value) {
    if (*rec) check(qbinsertwsz(h_, rec, att, value.c_str(), static_cast<int>(value.size())), "a text");
  }
  void number(char** rec, short att, double value) {
    if (*rec) check(qbinsertatt(h_, rec, att, &value, 8), "a number");
  }
  void integer(char** rec, short att, long value) {
    const int v = static_cast<int>(value);
    if (*rec) check(qbinsertatt(h_, rec, att, &v, 4), "an integer");
  }
  void link(char** rec, short att, const char* id) {
    if (*rec) check(qbinsertatt(h_, rec, att, id, static_cast<short>(std::strlen(id))), "a link");
  }
  void save(char* rec) {
    if (rec) check(qbsaverec(h_, rec), "saving a record");
    qbreleaserec(rec);
  }

 private:
  void check(short status, const char* what) {
    if (status != QB_OK) fail(what, status);
  }
  void fail(const char* what, short status) {
    if (ok_) std::fprintf(err_, "quiltool db sample: %s failed: %s\n", what, qbstatustext(status));
    ok_ = false;
  }
  short h_;
  FILE* err_;
  bool ok_ = true;
};

const wchar_t* const kRoomKinds[] = {L"Büro", L"Besprechung", L"Küche", L"Flur", L"WC Damen", L"Technik", L"Lager"};
const wchar_t* const kRoomNotes[] = {L"", L"Zuluft über Decke\nAbluft über Flur", L"Nachströmung über Türspalt",
                                     L"Ölheizung entfernt\r\nSchacht frei"};

void Fill(Writer& w, const SampleCounts& c) {
  Numbers n;
  char id[24], owner[24];
  for (long s = 1; s <= c.storeys && w.ok(); ++s) {
    Id(id, 'S', s);
    char* rec = w.make("STOREY", id);
    w.text(&rec, 1, L"Geschoss " + std::to_wstring(s - 1));
    w.number(&rec, 2, 3.25 * static_cast<double>(s - 1));
    w.integer(&rec, 3, s - 1);
    w.save(rec);
  }
  for (long r = 1; r <= c.rooms && w.ok(); ++r) {
    Id(id, 'R', r);
    const long storey = (r - 1) % c.storeys + 1;
    Id(owner, 'S', storey);
    char* rec = w.make("ROOM", id);
    w.text(&rec, 1, std::to_wstring(storey - 1) + L"." + std::to_wstring(r) + L" " + kRoomKinds[n.next() % 7]);
    w.number(&rec, 2, n.hundredths(8, 60));
    w.integer(&rec, 3, r);
    const wchar_t* note = kRoomNotes[n.next() % 4];
    if (*note) w.text(&rec, 4, note);
    w.link(&rec, 10, owner);
    w.save(rec);
  }
  for (long a = 1; a <= c.units && w.ok(); ++a) {
    Id(id, 'A', a);
    char* rec = w.make("AHU", id);
    w.text(&rec, 1, L"RLT-Gerät " + std::to_wstring(a));
    w.number(&rec, 2, n.hundredths(800, 4000));
    w.integer(&rec, 3, 1 + static_cast<long>(n.next() % 2));
    w.text(&rec, 4, L"Wärmerückgewinnung: Rotor\nFilter F7/F9");
    w.save(rec);
  }
  for (long d = 1; d <= c.ducts && w.ok(); ++d) {
    Id(id, 'D', d);
    Id(owner, 'A', (d - 1) % c.units + 1);
    char* rec = w.make("DUCT", id);
    w.text(&rec, 1, L"Kanal " + std::to_wstring(d));
    w.number(&rec, 2, n.hundredths(20, 900));
    w.integer(&rec, 3, 100 * (2 + static_cast<long>(n.next() % 10)));
    w.integer(&rec, 4, 100 * (1 + static_cast<long>(n.next() % 6)));
    w.link(&rec, 10, owner);
    w.save(rec);
  }
  static const long sizes[] = {100, 125, 160, 200, 250, 315};
  for (long t = 1; t <= c.terminals && w.ok(); ++t) {
    Id(id, 'T', t);
    Id(owner, 'D', (t - 1) % c.ducts + 1);
    char room[24];
    Id(room, 'R', (t - 1) % c.rooms + 1);
    char* rec = w.make("TERMINAL", id);
    w.text(&rec, 1, (t % 2 ? L"Zuluftauslass " : L"Abluftgitter ") + std::to_wstring(t));
    w.number(&rec, 2, n.hundredths(5, 120));
    w.integer(&rec, 3, sizes[n.next() % 6]);
    if (t % 50 == 0) w.text(&rec, 4, L"Schallgedämpft\nRevisionsöffnung");
    w.link(&rec, 5, room);
    w.link(&rec, 10, owner);
    w.save(rec);
  }
}

}  // namespace

int WriteSampleDatabase(const std::string& path, long total, FILE* err) {
  const short ddq = ddq_parse(kSampleDictionary);
  if (ddq < 0) {
    std::fprintf(err, "quiltool db sample: the dictionary does not parse: %s\n", qbstatustext(ddq));
    return 1;
  }
  const std::wstring wide = qn_utf8_to_wide(path.c_str());
  const short h = qbinitfilew(wide.c_str(), ddq);
  ddq_release(ddq);
  if (h < 0) {
    std::fprintf(err, "quiltool db sample: %s: %s\n", path.c_str(), qbstatustext(h));
    return 1;
  }
  short status = qbcreatefile(h);
  if (status == QB_OK) status = qbopenfile(h, QB_MODE_QUICKUPDATE);
  if (status != QB_OK) {
    std::fprintf(err, "quiltool db sample: cannot create %s: %s\n", path.c_str(), qbstatustext(status));
    qbreleasefile(h);
    return 1;
  }
  Writer w(h, err);
  Fill(w, SampleCountsFor(total));
  status = qbendquick(h);
  if (w.ok() && status != QB_OK) std::fprintf(err, "quiltool db sample: saving failed: %s\n", qbstatustext(status));
  qbclosedatabase(h);
  qbreleasefile(h);
  if (!w.ok() || status != QB_OK) {
    std::remove(path.c_str());
    return 1;
  }
  return 0;
}

int DbSampleMain(const std::vector<std::string>& args, FILE* out, FILE* err) {
  static const char usage[] =
      "usage: quiltool db sample FILE [--records N]\n"
      "Creates a project database of a small ventilation plant (storeys, rooms, air-handling units,\n"
      "ducts, terminals) with N records (default 10000, at least 5); the same N gives the same data.\n";
  ParsedArgs a;
  const int code = ParseOptions(args, 1, {{"--records", true}}, "quiltool db sample", usage, &a, out, err);
  if (code != kGoOn) return code;
  if (a.plain.size() != 1 || a.plain[0].empty()) {
    std::fprintf(err, "quiltool db sample: give exactly one FILE\n%s", usage);
    return 2;
  }
  long total = 10000;
  if (a.has("--records")) {
    const std::string text = a.value("--records");
    char* end = nullptr;
    total = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end || total < 5 || total > 10000000) {
      std::fprintf(err, "quiltool db sample: --records takes a whole number from 5 to 10000000\n%s", usage);
      return 2;
    }
  }
  const int result = WriteSampleDatabase(a.plain[0], total, err);
  if (result == 0) std::fprintf(out, "%s: %ld records\n", a.plain[0].c_str(), total);
  return result;
}

}  // namespace qt_tool
