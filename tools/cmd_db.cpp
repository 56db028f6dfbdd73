// quiltool db: look into a project database.
//   db info FILE                                 sets, record counts, size
//   db dump FILE [--set S] [--format text|json]  records with ids, owners, attributes
//   db check FILE                                storage and dictionary consistency
// Every verb takes --wait SECONDS: how long to wait for a file that another
// process is writing. Text is printed as UTF-8; JSON output always parses:
// numbers that are not finite are written as null.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "command.h"
#include "console_text.h"
#include "file_problem.h"
#include "file_problem_platform.h"
#include "qb.h"
#include "qn_utf.h"
#include "tools/db_sample.h"
#include "ustr.h"

namespace {

struct AttDecl {
  std::string name;
  short type = QB_ATT_BYTES;
};

struct SetDecl {
  qbsetinfo info;
  std::map<short, AttDecl> atts;
};

const char* TypeName(short type) {
  static const char* const names[] = {"bytes", "long", "double", "wsz", "sz", "id"};
  return type >= 0 && type <= QB_ATT_ID ? names[type] : "?";
}

// UTF-16LE bytes as UTF-8, whatever the width of wchar_t.
std::string Utf16ToUtf8(const unsigned char* p, size_t size) {
  const std::wstring wide = qn_utf16le_to_wide(p, size, QN_UTF_REPLACE_INVALID);
  return qn_wide_to_utf8(wide.data(), wide.size(), QN_UTF_REPLACE_INVALID);
}

// text must be UTF-8 already.
std::string Quoted(const std::string& text) {
  std::string out = "\"";
  for (unsigned char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += static_cast<char>(c);
    } else if (c < 0x20 || c == 0x7F) {
      char esc[8];
      std::snprintf(esc, sizeof esc, "\\u%04x", c);
      out += esc;
    } else {
      out += static_cast<char>(c);
    }
  }
  return out + "\"";
}

std::string Hex(const unsigned char* p, size_t size) {
  static const char digits[] = "0123456789abcdef";
  std::string out;
  for (size_t i = 0; i < size; ++i) {
    out += digits[p[i] >> 4];
    out += digits[p[i] & 15];
  }
  return out;
}

// An attribute value as text (JSON when json is set).
std::string Value(short type, const unsigned char* p, short size, bool json) {
  switch (type) {
    case QB_ATT_LONG:
      if (size == 4) {
        int v;
        std::memcpy(&v, p, 4);
        return std::to_string(v);
      }
      break;
    case QB_ATT_DOUBLE:
      if (size == 8) {
        double v;
        std::memcpy(&v, p, 8);
        // JSON has no words for these; null keeps the document valid. The
        // text format spells them out, the same on every C runtime.
        if (!std::isfinite(v)) return json ? "null" : std::isnan(v) ? "nan" : v > 0 ? "inf" : "-inf";
        char text[32];
        std::snprintf(text, sizeof text, "%.17g", v);
        return text;
      }
      break;
    case QB_ATT_WSZ:
      return Quoted(Utf16ToUtf8(p, static_cast<size_t>(size)));
    case QB_ATT_SZ:
    case QB_ATT_ID:
      return Quoted(qt_tool::EightBitToUtf8(std::string(reinterpret_cast<const char*>(p), static_cast<size_t>(size))));
    default:
      break;
  }
  return json ? Quoted(Hex(p, static_cast<size_t>(size))) : "0x" + Hex(p, static_cast<size_t>(size));
}

class Database {
 public:
  ~Database() {
    if (h_ >= 0) qbreleasefile(h_);
  }

  bool Open(const std::string& file, long waitMs, FILE* err) {
    file_ = file;
    const std::wstring wide = qn_utf8_to_wide(file.c_str());
    h_ = qbinitfilew(wide.c_str(), -1);
    short s = h_;
    if (h_ >= 0) {
      // First without waiting, so that a wait is never a silent one.
      qbsettimeout(h_, 0);
      s = qbopenfile(h_, QB_MODE_READ);
      if (s == QBERR_BUSY && waitMs > 0) {
        std::fprintf(err, "quiltool db: %s is being written by %s; waiting up to %ld s\n", file.c_str(),
                     Holder(file).c_str(), (waitMs + 999) / 1000);
        std::fflush(err);
        qbsettimeout(h_, waitMs);
        s = qbopenfile(h_, QB_MODE_READ);
      }
      qbsettimeout(h_, waitMs);
    }
    if (s == QBERR_BUSY) {
      std::fprintf(err, "quiltool db: cannot open %s: it is still being written by %s\n", file.c_str(),
                   Holder(file).c_str());
      return false;
    }
    if (s != QB_OK) {
      // The engine tells a file it cannot open from one that is not its
      // own only by the status; the system knows why it could not open it.
      const qt_tool::FileProblem problem = qt_tool::DiagnoseFile(file);
      if (problem != qt_tool::FileProblem::None) {
        std::fprintf(err, "quiltool db: cannot open %s: %s\n", file.c_str(), qt_tool::FileProblemText(problem));
      } else {
        std::fprintf(err, "quiltool db: cannot open %s: %s (%d)\n", file.c_str(), qbstatustext(s), s);
      }
      return false;
    }
    const short ddq = qbgetddq(h_);
    idLength_ = ddq_getIDinfo(ddq, nullptr);
    for (short i = 0, n = ddq_getnsets(ddq); i < n; ++i) {
      SetDecl set;
      if (ddq_getsetinfo(ddq, i, &set.info) != QB_OK) continue;
      for (short k = 0; k < set.info.nAtts; ++k) {
        qbattinfo att;
        if (ddq_getattinfo(ddq, set.info.name, k, &att) == QB_OK) set.atts[att.number] = {att.name, att.type};
      }
      sets_.push_back(set);
    }
    return true;
  }

  static std::string Holder(const std::string& file) {
    const long pid = qt::file_problem::platform::DatabaseLockHolder(file);
    return pid > 0 ? "process " + std::to_string(pid) : std::string("another process");
  }

  short handle() const { return h_; }
  short idLength() const { return idLength_; }
  const std::string& file() const { return file_; }
  const std::vector<SetDecl>& sets() const { return sets_; }
  const SetDecl* Find(const char* name) const {
    for (const SetDecl& s : sets_)
      if (std::strcmp(s.info.name, name) == 0) return &s;
    return nullptr;
  }

 private:
  short h_ = -1;
  short idLength_ = 0;
  std::string file_;
  std::vector<SetDecl> sets_;
};

int Info(Database& db, FILE* out, FILE* err) {
  std::error_code ec;
  const auto size = std::filesystem::file_size(std::filesystem::u8path(db.file()), ec);
  qbbeginquickread(db.handle());
  const long total = qbgetnrecs(db.handle());
  std::fprintf(out, "file: %s\n", db.file().c_str());
  if (!ec) std::fprintf(out, "size: %llu bytes\n", static_cast<unsigned long long>(size));
  std::fprintf(out, "id length: %d\n", db.idLength());
  std::fprintf(out, "records: %ld\n", total);
  std::fprintf(out, "sets: %zu\n", db.sets().size());
  bool ok = total >= 0;
  for (const SetDecl& s : db.sets()) {
    long n = -1;
    if (qbsetfilter(db.handle(), QB_FILTER_SET, s.info.name, nullptr, 0) == QB_OK) n = qbgetnrecs(db.handle());
    ok = ok && n >= 0;
    std::fprintf(out, "  %-20s %8ld records %4d attributes", qt_tool::EightBitToUtf8(s.info.name).c_str(), n, s.info.nAtts);
    if (s.info.owner[0]) std::fprintf(out, "  owner %s (attribute %d)", s.info.owner, s.info.ownerAtt);
    std::fprintf(out, "\n");
  }
  qbresetfilter(db.handle());
  qbendquick(db.handle());
  if (!ok) std::fprintf(err, "quiltool db info: could not count the records\n");
  return ok ? 0 : 1;
}

// One record: set, id, owner, attributes and the attached block's size.
void DumpRecord(Database& db, char* rec, bool json, bool first, FILE* out) {
  const short h = db.handle();
  char set[QB_SETNAMESIZE] = {0};
  char id[QB_IDSIZE] = {0};
  char owner[QB_IDSIZE] = {0};
  qbgetsetname(rec, set);
  qbgetID(h, nullptr, rec, id);
  const bool hasOwner = qbgetowner(h, rec, owner) == QB_OK;
  long ahm = 0;
  qbgetahm(h, rec, &ahm);
  const SetDecl* decl = db.Find(set);
  const std::string setText = qt_tool::EightBitToUtf8(set), idText = qt_tool::EightBitToUtf8(id);
  const std::string ownerText = hasOwner ? qt_tool::EightBitToUtf8(owner) : std::string();
  if (json) {
    std::fprintf(out, "%s\n  {\"set\": %s, \"id\": %s, \"owner\": %s, \"attached\": %ld, \"attributes\": [", first ? "" : ",",
                 Quoted(setText).c_str(), Quoted(idText).c_str(), hasOwner ? Quoted(ownerText).c_str() : "null", ahm);
  } else {
    std::fprintf(out, "%s %s", setText.c_str(), idText.c_str());
    if (hasOwner) std::fprintf(out, " owner %s", ownerText.c_str());
    if (ahm) std::fprintf(out, " attached %ld bytes", ahm);
    std::fprintf(out, "\n");
  }
  static unsigned char buffer[QB_MAXATTSIZE];
  short att = 0;
  short size = sizeof buffer;
  bool firstAtt = true;
  for (void* p = qbcopyfirstatt(h, rec, &att, buffer, &size); p;
       size = sizeof buffer, p = qbcopynextatt(h, rec, &att, buffer, &size)) {
    AttDecl a;
    if (decl) {
      auto it = decl->atts.find(att);
      if (it != decl->atts.end()) a = it->second;
    }
    const std::string value = Value(a.type, buffer, size, json);
    if (json) {
      std::fprintf(out, "%s{\"number\": %d, \"name\": %s, \"type\": \"%s\", \"value\": %s}", firstAtt ? "" : ", ", att,
                   Quoted(qt_tool::EightBitToUtf8(a.name)).c_str(), TypeName(a.type), value.c_str());
    } else {
      std::fprintf(out, "  %d %s = %s\n", att, a.name.empty() ? "?" : a.name.c_str(), value.c_str());
    }
    firstAtt = false;
  }
  if (json) std::fprintf(out, "]}");
}

int Dump(Database& db, const std::string& set, bool json, FILE* out, FILE* err) {
  const short h = db.handle();
  if (!set.empty()) {
    const std::string engineSet = qn_wide_to_ansi(qn_utf8_to_wide(set.c_str()).c_str());
    const short s = qbsetfilter(h, QB_FILTER_SET, engineSet.c_str(), nullptr, 0);
    if (s != QB_OK) {
      std::fprintf(err, "quiltool db dump: set %s: %s\n", set.c_str(), qbstatustext(s));
      return 1;
    }
  }
  // One snapshot for the whole dump.
  qbbeginquickread(h);
  if (json) std::fprintf(out, "[");
  bool first = true;
  char* rec = qbfirstrec(h);
  while (rec) {
    DumpRecord(db, rec, json, first, out);
    first = false;
    char* next = qbnextrec(h, rec);
    qbreleaserec(rec);
    rec = next;
  }
  const short status = qbgetlasterror(h);
  if (json) std::fprintf(out, "%s]\n", first ? "" : "\n");
  qbendquick(h);
  if (status != QB_OK && status != QBERR_NOTFOUND) {
    std::fprintf(err, "quiltool db dump: stopped: %s (%d)\n", qbstatustext(status), status);
    return 1;
  }
  return 0;
}

void PrintProblem(void* context, const char* problem) { std::fprintf(static_cast<FILE*>(context), "%s\n", problem); }

int Check(Database& db, FILE* out, FILE* err) {
  const long problems = qbcheckfile(db.handle(), PrintProblem, out);
  if (problems < 0) {
    std::fprintf(err, "quiltool db check: %s (%ld)\n", qbstatustext(static_cast<short>(problems)), problems);
    return 1;
  }
  if (problems > 0) {
    std::fprintf(out, "%ld problem%s in %s\n", problems, problems == 1 ? "" : "s", db.file().c_str());
    return 1;
  }
  std::fprintf(out, "ok: %s\n", db.file().c_str());
  return 0;
}

const char kUsage[] =
    "usage: quiltool db info FILE [--wait SECONDS]\n"
    "       quiltool db dump FILE [--set SET] [--format text|json] [--wait SECONDS]\n"
    "       quiltool db check FILE [--wait SECONDS]\n"
    "       quiltool db sample FILE [--records N]\n"
    "--wait: how long to wait for a file another process is writing (default 30)\n";

int Usage(FILE* err, const std::string& problem) {
  std::fprintf(err, "quiltool db: %s\n%s", problem.c_str(), kUsage);
  return 2;
}

int DbMain(const std::vector<std::string>& args, FILE* out, FILE* err) {
  if (!args.empty() && (qt_tool::IsHelp(args[0]) || args[0] == "help")) {
    std::fprintf(out, "%s", kUsage);
    return 0;
  }
  if (args.empty()) return Usage(err, "which action?");
  const std::string& verb = args[0];
  if (verb == "sample") return qt_tool::DbSampleMain(args, out, err);
  std::vector<qt_tool::OptionSpec> specs = {{"--wait", true}};
  if (verb == "dump") {
    specs.push_back({"--set", true});
    specs.push_back({"--format", true});
  }
  qt_tool::ParsedArgs a;
  const int code = qt_tool::ParseOptions(args, 1, specs, "quiltool db", kUsage, &a, out, err);
  if (code != qt_tool::kGoOn) return code;
  if (verb != "info" && verb != "dump" && verb != "check") return Usage(err, "unknown action '" + verb + "'");
  if (a.plain.size() != 1 || a.plain[0].empty()) return Usage(err, "give exactly one FILE");
  const std::string format = a.value("--format", "text");
  if (format != "text" && format != "json") return Usage(err, "unknown format '" + format + "' (text or json)");
  long waitMs = 30000;
  if (a.has("--wait")) {
    const std::string w = a.value("--wait");
    char* end = nullptr;
    const long seconds = std::strtol(w.c_str(), &end, 10);
    if (w.empty() || *end || seconds < 0 || seconds > 86400) return Usage(err, "--wait takes whole seconds, 0 to 86400");
    waitMs = seconds * 1000;
  }
  Database db;
  if (!db.Open(a.plain[0], waitMs, err)) return 1;
  if (verb == "info") return Info(db, out, err);
  if (verb == "dump") return Dump(db, a.value("--set"), format == "json", out, err);
  return Check(db, out, err);
}

const qt_tool::Registration kDb({"db", "look into a project database (info, dump, check) or make a sample one", DbMain});

}  // namespace
