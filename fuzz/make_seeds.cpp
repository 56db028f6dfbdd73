// Writes the harnesses' seed inputs with the library's own writers, so
// that every seed is a file the library itself would produce:
//   fuzz_make_seeds <corpus folder>    (one folder per harness below it)
#include <sys/stat.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "cmd_lng_doc.h"
#include "cmd_lng_exchange.h"
#include "cmd_reg_file.h"
#include "files/lock_content.h"
#include "fuzz_support.h"
#include "pe_test_image.h"
#include "project/qb_stream.h"
#include "qb.h"
#include "qn_utf.h"

namespace {

std::string g_root;
int g_failures = 0;

void Seed(const std::string& harness, const std::string& name, const std::string& bytes) {
  const std::string dir = g_root + "/" + harness;
  mkdir(g_root.c_str(), 0755);
  mkdir(dir.c_str(), 0755);
  if (!qt_fuzz::WriteFile(dir + "/" + name, bytes.data(), bytes.size())) {
    std::fprintf(stderr, "cannot write %s/%s\n", dir.c_str(), name.c_str());
    ++g_failures;
  }
}

std::string Utf16(const std::wstring& text) { return qn_wide_to_utf16le(text.c_str(), text.size()); }

// A small project database: panels with circuits, a note with an attached
// block; the file's bytes and its stream.
void RecordEngineSeeds() {
  const short ddq = ddq_parse(
      "idlength 8\n"
      "set PANEL\n  att 1 NAME wsz\n  att 2 RATING long\n  att 3 LOAD double\n"
      "set CIRCUIT owner PANEL 10\n  att 1 NAME wsz\n  att 10 PANEL id\n"
      "set NOTE owner PANEL 3\n  att 1 TEXT sz\n  att 3 PANEL id\n");
  const std::string path = qt_fuzz::ScratchFile("seed.qep");
  const short h = ddq < 0 ? ddq : qbinitfilew(qt_fuzz::Wide(path).c_str(), ddq);
  if (ddq >= 0) ddq_release(ddq);
  const short created = h < 0 ? h : qbcreatefile(h);
  const short opened = created != QB_OK ? created : qbopenfile(h, QB_MODE_UPDATE);
  if (opened != QB_OK) {
    std::fprintf(stderr, "cannot create a database: %s\n", qbstatustext(opened));
    ++g_failures;
    return;
  }
  const int rating = 250;
  const double load = 12.5;
  for (const char* id : {"P1", "P2"}) {
    char* rec = qbcreaterec(h, "PANEL", id);
    qbinsertwsz(h, &rec, 1, L"Main panel \u00c4", -1);
    qbinsertatt(h, &rec, 2, &rating, 4);
    qbinsertatt(h, &rec, 3, &load, 8);
    qbsaverec(h, rec);
    qbreleaserec(rec);
  }
  char* rec = qbcreaterec(h, "CIRCUIT", "C1");
  qbinsertatt(h, &rec, 10, "P1", 2);
  qbsaverec(h, rec);
  qbreleaserec(rec);
  rec = qbcreaterec(h, "NOTE", "N1");
  qbinsertatt(h, &rec, 1, "see drawing", 12);
  qbinsertatt(h, &rec, 3, "P2", 2);
  qbsaverecwithahm(h, rec, "attached block", 14);
  qbreleaserec(rec);

  long size = 0;
  char* bytes = qbcreatestreambuf(h, &size);
  if (bytes) {
    const std::string stream(bytes, static_cast<size_t>(size));
    qbreleasestreambuf(bytes);
    // The stream harness's first byte chooses: even a whole stream, odd an
    // image that it wraps itself.
    Seed("stream", "panels-stream", std::string(1, '\0') + stream);
    Seed("stream", "panels-image", std::string(1, '\1') + stream.substr(qb::kStreamHeader));
  } else {
    ++g_failures;
  }
  qbclosedatabase(h);
  std::string file;
  if (qt_fuzz::ReadFile(path, &file)) {
    Seed("db_file", "panels.qep", file);
  } else {
    ++g_failures;
  }
}

qt_regfile::Value RegValue(const wchar_t* name, DWORD type, const std::string& data) {
  qt_regfile::Value v;
  v.name = name;
  v.type = type;
  v.data.assign(data.begin(), data.end());
  return v;
}

void RegSeeds() {
  qt_regfile::Document doc;
  qt_regfile::Key app;
  app.root = HKEY_CURRENT_USER;
  app.path = L"Software\\Velmora\\App\\1.0";
  app.values.push_back(RegValue(L"", REG_SZ, Utf16(std::wstring(L"default \"quoted\" \\ \u00e9")) + std::string(2, '\0')));
  app.values.push_back(RegValue(L"Count", REG_DWORD, std::string("\x2a\0\0\0", 4)));
  app.values.push_back(RegValue(L"Big", REG_QWORD, std::string("\1\2\3\4\5\6\7\x08", 8)));
  app.values.push_back(RegValue(L"Path", REG_EXPAND_SZ, Utf16(L"%APPDATA%\\x") + std::string(2, '\0')));
  app.values.push_back(RegValue(L"List", REG_MULTI_SZ, Utf16(std::wstring(L"a\0b\0\0", 5))));
  app.values.push_back(RegValue(L"Blob", REG_BINARY, std::string("\0\xff\x10", 3)));
  qt_regfile::Value gone;
  gone.name = L"Old";
  gone.remove = true;
  app.values.push_back(gone);
  doc.keys.push_back(app);
  qt_regfile::Key machine;
  machine.root = HKEY_LOCAL_MACHINE;
  machine.path = L"Software\\Velmora\\Shared";
  machine.values.push_back(RegValue(L"Units", REG_SZ, Utf16(L"mm") + std::string(2, '\0')));
  doc.keys.push_back(machine);
  qt_regfile::Key removed;
  removed.root = HKEY_CURRENT_USER;
  removed.path = L"Software\\Velmora\\App\\0.9";
  removed.remove = true;
  doc.keys.push_back(removed);
  const std::string written = qt_regfile::Format(doc);
  for (const char* harness : {"reg_file", "reg_import"}) {
    Seed(harness, "values.reg", written);
    // The older ANSI form that is read but never written.
    Seed(harness, "regedit4.reg",
         "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\Velmora\\Old]\r\n\"Name\"=\"value\"\r\n"
         "\"N\"=dword:00000010\r\n\"H\"=hex:01,02,\\\r\n  03\r\n");
  }
}

qt_lng::Document LanguageDocument(const qt::qlg::Definition& def) {
  qt_lng::Document doc;
  doc.fileName = "Fuzz.qlg";
  doc.module = "FZ";
  doc.fileComments.push_back("# texts of the fuzz seeds");
  qt_lng::Entry a;
  a.id = 607;
  a.hasNote = true;
  a.note = "title of the panel dialog";
  a.comments.push_back("# dialogs");
  a.setText(def.sourceLanguage, "Panel %s of %d");
  a.setText(def.byCodeOrId("de")->id, "Verteiler %s von %d");
  qt_lng::Entry b;
  b.id = 608;
  b.setText(def.sourceLanguage, "Two\nlines\twith \"quotes\" \\");
  b.setText(def.byCodeOrId("fr")->id, "Deux\nlignes \u00e9");
  qt_lng::Entry c;
  c.id = 609;
  c.setText(def.sourceLanguage, "untranslated");
  doc.entries = {a, b, c};
  return doc;
}

void LanguageSeeds() {
  const qt::qlg::Definition& def = qt_fuzz::SuiteDefinition();
  const qt_lng::Document doc = LanguageDocument(def);
  Seed("qlg", "fuzz.qlg", qt_lng::Serialize(doc));
  const qt::qlg::Language* de = def.byCodeOrId("de");
  Seed("po", "de.po", qt_lng::WritePo(doc, def, *de));
  std::string xliff, error;
  if (qt_lng::WriteXliff(doc, def, *def.byCodeOrId("fr"), &xliff, &error)) {
    Seed("xliff", "fr.xlf", xliff);
  } else {
    std::fprintf(stderr, "%s\n", error.c_str());
    ++g_failures;
  }
}

void LockSeeds() {
  // First byte even: the bytes of a lock file; odd: a name the harness
  // writes itself (three bytes a character).
  Seed("lock", "plain", std::string(1, '\0') + qt::lock_file::LockContent(L"Anna M\u00fcller"));
  Seed("lock", "long", std::string(1, '\0') + qt::lock_file::LockContent(std::wstring(99, L'x').append(L"\U0001F600").c_str()));
  std::string name(1, '\1');
  for (wchar_t c : std::wstring(L"J\u00f6rg \U0001F600 K")) {
    const unsigned long v = static_cast<unsigned long>(c);
    name += static_cast<char>(v & 0xFF);
    name += static_cast<char>((v >> 8) & 0xFF);
    name += static_cast<char>(v >> 16);
  }
  Seed("lock", "own-name", name);
}

void MemoSeeds() {
  // First byte the line length, then the text as UTF-16LE.
  Seed("parse_memo", "wrapped", std::string(1, '\x14') + Utf16(L"A long line, wrapped; at blanks and marks\r\nsecond\rthird"));
  Seed("parse_memo", "hard-cut", std::string(1, '\x05') + Utf16(L"abcdefghijklmnop\r\n\r\n"));
}

void FormatSeeds() {
  // Decisions, not text: a mode byte, lead text, then conversions with
  // their arguments; or (mode byte 0x80) a text of any characters.
  Seed("format", "mixed", std::string("\x00\x04" "abcd" "\x00\x03\x01\x05\x01\x03" "\x00\x00\x00\x00\x00\x00\x01\x02" "\x01", 21) +
                              std::string("\x02" "xy" "\x04\x10\x01\x02\x00" "\x05" "hello" "\x01", 14));
  Seed("format", "double", std::string("\x00\x00\x03\x06\x01\x04\x01\x02\x40\x09\x21\xFB\x54\x44\x2D\x18\x02\x00", 18));
  std::string other(1, '\x80');
  for (wchar_t c : std::wstring(L"Gr\u00fc\u00dfe \u65e5\U0001F600")) {
    const unsigned long v = static_cast<unsigned long>(c);
    other += static_cast<char>(v & 0xFF);
    other += static_cast<char>((v >> 8) & 0xFF);
    other += static_cast<char>(v >> 16);
  }
  Seed("format", "other-width", other);
}

// A module image as a linker lays it out, with and without exports.
void ModuleSeeds() {
  for (const auto& seed : {std::make_pair("exports", std::vector<std::string>{"GetAcadVersionQNC", "IsMyCommandQNE", "x"}),
                           std::make_pair("no-exports", std::vector<std::string>{})}) {
    const std::vector<unsigned char> bytes = qt_tool_test::BuildDll(seed.second).bytes;
    Seed("pe_exports", seed.first, std::string(bytes.begin(), bytes.end()));
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: fuzz_make_seeds <corpus folder>\n");
    return 2;
  }
  g_root = argv[1];
  RecordEngineSeeds();
  RegSeeds();
  LanguageSeeds();
  LockSeeds();
  MemoSeeds();
  FormatSeeds();
  ModuleSeeds();
  return g_failures == 0 ? 0 : 1;
}
