// quiltool db: look into a project database.
//   db info FILE                                 sets, record counts, size
//   db dump FILE [--set S] [--format text|json]  records with ids, owners, attributes
//   db check FILE                                storage and dictionary consistency
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "command.h"
#include "qb.h"
#include "qn_utf.h"
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

std::string Quoted(const std::string& text) {
  std::string out = "\"";
  for (unsigned char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += static_cast<char>(c);
    } else if (c < 0x20) {
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
        char text[32];
        std::snprintf(text, sizeof text, "%.17g", v);
        return text;
      }
      break;
    case QB_ATT_WSZ:
      return Quoted(Utf16ToUtf8(p, static_cast<size_t>(size)));
    case QB_ATT_SZ:
    case QB_ATT_ID:
      return Quoted(std::string(reinterpret_cast<const char*>(p), static_cast<size_t>(size)));
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

  bool Open(const std::string& file, FILE* err) {
    file_ = file;
    const std::wstring wide = qn_ansi_to_wide(file.c_str());
    h_ = qbinitfilew(wide.c_str(), -1);
    const short s = h_ < 0 ? h_ : qbopenfile(h_, QB_MODE_READ);
    if (s != QB_OK) {
      std::fprintf(err, "quiltool db: cannot open %s: %s (%d)\n", file.c_str(), qbstatustext(s), s);
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
  const auto size = std::filesystem::file_size(std::filesystem::path(db.file()), ec);
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
    std::fprintf(out, "  %-20s %8ld records %4d attributes", s.info.name, n, s.info.nAtts);
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
  if (json) {
    std::fprintf(out, "%s\n  {\"set\": %s, \"id\": %s, \"owner\": %s, \"attached\": %ld, \"attributes\": [", first ? "" : ",",
                 Quoted(set).c_str(), Quoted(id).c_str(), hasOwner ? Quoted(owner).c_str() : "null", ahm);
  } else {
    std::fprintf(out, "%s %s", set, id);
    if (hasOwner) std::fprintf(out, " owner %s", owner);
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
                   Quoted(a.name).c_str(), TypeName(a.type), value.c_str());
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
    const short s = qbsetfilter(h, QB_FILTER_SET, set.c_str(), nullptr, 0);
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

int Usage(FILE* err) {
  std::fprintf(err,
               "usage: quiltool db info FILE\n"
               "       quiltool db dump FILE [--set SET] [--format text|json]\n"
               "       quiltool db check FILE\n");
  return 2;
}

int DbMain(const std::vector<std::string>& args, FILE* out, FILE* err) {
  if (args.size() < 2) return Usage(err);
  const std::string& verb = args[0];
  std::string set;
  bool json = false;
  for (size_t i = 2; i < args.size(); ++i) {
    if (verb == "dump" && args[i] == "--set" && i + 1 < args.size()) {
      set = args[++i];
    } else if (verb == "dump" && args[i] == "--format" && i + 1 < args.size()) {
      const std::string& f = args[++i];
      if (f != "text" && f != "json") return Usage(err);
      json = f == "json";
    } else {
      return Usage(err);
    }
  }
  if (verb != "info" && verb != "dump" && verb != "check") return Usage(err);
  Database db;
  if (!db.Open(args[1], err)) return 1;
  if (verb == "info") return Info(db, out, err);
  if (verb == "dump") return Dump(db, set, json, out, err);
  return Check(db, out, err);
}

const qt_tool::Registration kDb({"db", "look into a project database (info, dump, check)", DbMain});

}  // namespace
