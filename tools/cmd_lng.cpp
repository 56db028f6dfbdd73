// quiltool lng: the language files for translators.
//   export   one language of a module's .qlg as PO or XLIFF 1.2
//   import   a translated PO or XLIFF merged back into the .qlg
//   lookup   a text as the library finds it
//   check    well-formedness, unique ids, placeholders, untranslated texts
#include <cstdlib>
#include <cstring>
#include <map>
#include <new>
#include <set>

#include "Lng.h"
#include "cmd_lng_exchange.h"
#include "command.h"
#include "file_problem.h"
#include "gwframe.h"
#include "settings/lng_apptable.h"
#include "settings/qlg_reader.h"
#include "settings/qlg_utf8.h"

namespace {

using qt::qlg::Definition;
using qt::qlg::Language;
using qt_lng::Document;
using qt_lng::Entry;

const char kUsage[] =
    "usage: quiltool lng <command> ...\n"
    "  export --lang <code|id> [--format po|xliff] [--ddq <file>] [-o <out>] <file.qlg>\n"
    "  import [--lang <code|id>] [--ddq <file>] <file.qlg> <translation.po|.xlf>\n"
    "  lookup [--dir <folder>] <module tag|id|file> <text id> <language code|id>\n"
    "  check  [--ddq <file>] [--dir <folder>] [--lang <code|id>] [<file.qlg>...]\n"
    "The definition file is QuilQlg.ddq beside the .qlg file unless --ddq names one;\n"
    "lookup and check default to the folder of the QuilTool library.\n";

using Args = qt_tool::ParsedArgs;

// Every option of lng takes a value.
int ParseArgs(const std::vector<std::string>& args, const std::vector<const char*>& known, Args* parsed, FILE* out,
              FILE* err) {
  std::vector<qt_tool::OptionSpec> specs;
  for (const char* name : known) specs.push_back({name, true});
  return qt_tool::ParseOptions(args, 1, specs, "quiltool lng", kUsage, parsed, out, err);
}

std::string Option(const Args& a, const char* name, const std::string& fallback = std::string()) {
  return a.value(name, fallback);
}

// A code such as "de_DE" or "de-AT" is taken as "de" when only that is known.
const Language* FindLanguage(const Definition& def, const std::string& codeOrId) {
  if (const Language* l = def.byCodeOrId(codeOrId)) return l;
  const size_t cut = codeOrId.find_first_of("_-");
  return cut == std::string::npos ? nullptr : def.byCodeOrId(codeOrId.substr(0, cut));
}

bool LoadBoth(const Args& a, const std::string& qlgPath, Definition* def, Document* doc, FILE* err) {
  std::string error;
  const std::string ddq = Option(a, "--ddq", qt_lng::DefinitionBeside(qlgPath));
  if (!qt_lng::LoadDefinition(ddq, def, &error) || !qt_lng::LoadDocument(qlgPath, *def, doc, &error)) {
    std::fprintf(err, "%s\n", error.c_str());
    return false;
  }
  return true;
}

int Export(const std::vector<std::string>& args, FILE* out, FILE* err) {
  Args a;
  const int code = ParseArgs(args, {"--lang", "--format", "--ddq", "-o"}, &a, out, err);
  if (code != qt_tool::kGoOn) return code;
  if (a.plain.size() != 1 || Option(a, "--lang").empty()) {
    std::fprintf(err, "quiltool lng export: needs --lang and one .qlg file\n%s", kUsage);
    return 2;
  }
  const std::string outPath = Option(a, "-o");
  std::string format = Option(a, "--format");
  if (format.empty()) {
    const bool xlf = outPath.size() > 4 && (outPath.compare(outPath.size() - 4, 4, ".xlf") == 0 ||
                                            (outPath.size() > 6 && outPath.compare(outPath.size() - 6, 6, ".xliff") == 0));
    format = xlf ? "xliff" : "po";
  }
  if (format != "po" && format != "xliff") {
    std::fprintf(err, "quiltool lng export: unknown format %s (po or xliff)\n", format.c_str());
    return 2;
  }
  Definition def;
  Document doc;
  if (!LoadBoth(a, a.plain[0], &def, &doc, err)) return 1;
  const Language* target = FindLanguage(def, Option(a, "--lang"));
  if (!target) {
    std::fprintf(err, "quiltool lng export: language %s is not defined\n", Option(a, "--lang").c_str());
    return 2;
  }
  if (target->id == def.sourceLanguage) {
    std::fprintf(err, "quiltool lng export: %s is the source language; choose a language to translate into\n",
                 target->code.c_str());
    return 2;
  }
  std::string text, error;
  if (format == "po") {
    text = qt_lng::WritePo(doc, def, *target);
  } else if (!qt_lng::WriteXliff(doc, def, *target, &text, &error)) {
    std::fprintf(err, "%s\n", error.c_str());
    return 1;
  }
  if (outPath.empty()) {
    std::fwrite(text.data(), 1, text.size(), out);
  } else if (!qt_lng::WriteFile(outPath, text)) {
    std::fprintf(err, "%s: cannot write the file\n", outPath.c_str());
    return 1;
  }
  return 0;
}

bool LooksLikeXml(const std::string& bytes) {
  size_t i = bytes.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
  while (i < bytes.size() && std::strchr(" \t\r\n", bytes[i])) ++i;
  return i < bytes.size() && bytes[i] == '<';
}

int Import(const std::vector<std::string>& args, FILE* out, FILE* err) {
  Args a;
  const int code = ParseArgs(args, {"--lang", "--ddq"}, &a, out, err);
  if (code != qt_tool::kGoOn) return code;
  if (a.plain.size() != 2) {
    std::fprintf(err, "quiltool lng import: needs the .qlg file and the translation file\n%s", kUsage);
    return 2;
  }
  const std::string& qlgPath = a.plain[0];
  const std::string& exchangePath = a.plain[1];
  Definition def;
  Document doc;
  if (!LoadBoth(a, qlgPath, &def, &doc, err)) return 1;

  std::string bytes, error;
  if (!qt_lng::ReadFile(exchangePath, &bytes)) {
    std::fprintf(err, "%s\n", qt_tool::CannotRead(exchangePath).c_str());
    return 1;
  }
  qt_lng::Exchange ex;
  const bool ok = LooksLikeXml(bytes) ? qt_lng::ReadXliff(bytes, exchangePath, &ex, &error)
                                      : qt_lng::ReadPo(bytes, exchangePath, &ex, &error);
  if (!ok) {
    std::fprintf(err, "%s\n", error.c_str());
    return 1;
  }
  // A file translated into one language never goes in as another.
  if (!Option(a, "--lang").empty() && !ex.language.empty()) {
    const Language* named = FindLanguage(def, Option(a, "--lang"));
    const Language* inFile = FindLanguage(def, ex.language);
    if (named && (!inFile || inFile->id != named->id)) {
      std::fprintf(err, "%s: the file is a translation into %s, not %s; nothing was imported\n", exchangePath.c_str(),
                   ex.language.c_str(), Option(a, "--lang").c_str());
      return 1;
    }
  }
  const std::string langArg = Option(a, "--lang", ex.language);
  if (langArg.empty()) {
    std::fprintf(err, "%s: the file names no language; give --lang\n", exchangePath.c_str());
    return 1;
  }
  const Language* lang = FindLanguage(def, langArg);
  if (!lang) {
    std::fprintf(err, "%s: language %s is not defined in the definition file\n", exchangePath.c_str(), langArg.c_str());
    return 1;
  }
  if (lang->id == def.sourceLanguage) {
    std::fprintf(err, "%s: the source language's texts are edited in the .qlg file, not imported\n", exchangePath.c_str());
    return 1;
  }
  if (!ex.module.empty() && ex.module != doc.module) {
    std::fprintf(err, "%s: translations of module %s cannot go into %s (module %s)\n", exchangePath.c_str(),
                 ex.module.c_str(), qlgPath.c_str(), doc.module.c_str());
    return 1;
  }

  int updated = 0, unchanged = 0, untranslated = 0, rejected = 0;
  for (const qt_lng::Unit& u : ex.units) {
    const std::string where = exchangePath + (u.line ? ":" + std::to_string(u.line) : std::string());
    std::string module;
    int textId = 0;
    if (!qt_lng::SplitUnitId(u.id, &module, &textId) || module != doc.module) {
      std::fprintf(err, "%s: unit \"%s\" is not a text of module %s; skipped\n", where.c_str(), u.id.c_str(),
                   doc.module.c_str());
      ++rejected;
      continue;
    }
    if (!u.usable || u.target.empty()) {
      ++untranslated;
      continue;
    }
    Entry* entry = doc.find(textId);
    const std::string* english = entry ? entry->text(def.sourceLanguage) : nullptr;
    if (!english) {
      std::fprintf(err, "%s: text %d is not in %s; skipped\n", where.c_str(), textId, qlgPath.c_str());
      ++rejected;
      continue;
    }
    if (*english != u.source) {
      std::fprintf(err, "%s: the English text of %d changed since the export; skipped (export again)\n", where.c_str(),
                   textId);
      ++rejected;
      continue;
    }
    if (u.target.find('\0') != std::string::npos ||
        qt::qlg::ValidUtf8Prefix(u.target.data(), u.target.size()) != u.target.size()) {
      std::fprintf(err, "%s: text %d: the translation is not valid UTF-8 text; skipped\n", where.c_str(), textId);
      ++rejected;
      continue;
    }
    // A translation with other placeholders would crash the formatting.
    const auto want = qt_lng::Placeholders(*english), got = qt_lng::Placeholders(u.target);
    if (want != got) {
      std::fprintf(err, "%s: text %d: placeholders %s differ from the English %s; skipped\n", where.c_str(), textId,
                   qt_lng::JoinPlaceholders(got).c_str(), qt_lng::JoinPlaceholders(want).c_str());
      ++rejected;
      continue;
    }
    if (entry->setText(lang->id, u.target)) {
      ++updated;
    } else {
      ++unchanged;
    }
  }
  if (updated) {
    // Never write a file that the library would refuse to load.
    const std::string merged = qt_lng::Serialize(doc);
    Document reread;
    if (!qt_lng::ParseDocument(merged, qlgPath, def, &reread, &error)) {
      std::fprintf(err, "%s: the merged file would not load (%s); nothing was changed\n", qlgPath.c_str(), error.c_str());
      return 1;
    }
    if (!qt_lng::WriteFile(qlgPath, merged)) {
      std::fprintf(err, "%s: cannot write the file; nothing was changed\n", qlgPath.c_str());
      return 1;
    }
  }
  std::fprintf(out, "%s: %d updated, %d unchanged, %d untranslated, %d rejected\n", qlgPath.c_str(), updated, unchanged,
               untranslated, rejected);
  return rejected ? 1 : 0;
}

// Module by tag ("HPV"), id ("1") or language-file name ("QuilQlg.qlg").
int FindRow(const std::string& module) {
  bool numeric = !module.empty();
  for (size_t i = module[0] == '-' ? 1 : 0; i < module.size(); ++i) numeric = numeric && module[i] >= '0' && module[i] <= '9';
  const std::wstring wide = qt::qlg::Utf8ToWide(module);
  for (int i = 0; i < qt::kAppRows; ++i) {
    const qt::AppRow& row = qt::kAppTable[i];
    if (numeric && std::atoi(module.c_str()) == row.id) return i;
    if (!numeric && !module.empty() && qn_wcsicmp(row.tag, wide.c_str()) == 0) return i;
    if (row.languageFile && qn_wcsicmp(row.languageFile, wide.c_str()) == 0) return i;
  }
  return -1;
}

int Lookup(const std::vector<std::string>& args, FILE* out, FILE* err) {
  Args a;
  const int code = ParseArgs(args, {"--dir"}, &a, out, err);
  if (code != qt_tool::kGoOn) return code;
  if (a.plain.size() != 3) {
    std::fprintf(err, "quiltool lng lookup: needs module, text id and language\n%s", kUsage);
    return 2;
  }
  const int row = FindRow(a.plain[0]);
  if (row < 0 || !qt::kAppTable[row].languageFile) {
    std::fprintf(err, "quiltool lng lookup: %s is no module with a language file\n", a.plain[0].c_str());
    return 2;
  }
  char* end = nullptr;
  const long textId = std::strtol(a.plain[1].c_str(), &end, 10);
  if (a.plain[1].empty() || *end) {
    std::fprintf(err, "quiltool lng lookup: text id %s is not a number\n", a.plain[1].c_str());
    return 2;
  }
  const std::string folder = Option(a, "--dir", qt_lng::LibraryFolder());
  const std::string ddqPath = qt_lng::JoinPath(folder, "QuilQlg.ddq");
  const std::string qlgPath = qt_lng::JoinPath(folder, qt::qlg::WideToUtf8(qt::kAppTable[row].languageFile));
  Definition def;
  std::string error;
  if (!qt_lng::LoadDefinition(ddqPath, &def, &error)) {
    std::fprintf(err, "%s\n", error.c_str());
    return 1;
  }
  const Language* lang = FindLanguage(def, a.plain[2]);
  if (!lang) {
    std::fprintf(err, "quiltool lng lookup: language %s is not defined\n", a.plain[2].c_str());
    return 2;
  }
  // Through the library's own reader, so the answer is what Lng::text sees.
  CQlg reader;
  if (!reader.init(qt::qlg::Utf8ToWide(ddqPath).c_str(), qt::qlg::Utf8ToWide(qlgPath).c_str())) {
    std::fprintf(err, "%s\n", reader.lastError().c_str());
    return 1;
  }
  reader.setActiveLanguage(static_cast<short>(lang->id));
  size_t length = 0;
  const wchar_t* text = reader.find(textId, &length);
  if (!text) {
    std::fprintf(err, "quiltool lng lookup: no text %ld in %s for %s\n", textId, qlgPath.c_str(), lang->code.c_str());
    return 1;
  }
  const std::string utf8 = qt::qlg::WideToUtf8(text, length);
  std::fwrite(utf8.data(), 1, utf8.size(), out);
  std::fputc('\n', out);
  return 0;
}

// Findings of one file; returns the number of errors.
int CheckFile(const std::string& path, const Definition& def, const Language* onlyLanguage, FILE* out, FILE* err) {
  Document doc;
  std::string error;
  if (!qt_lng::LoadDocument(path, def, &doc, &error)) {
    std::fprintf(err, "%s\n", error.c_str());
    return 1;
  }
  int errors = 0;
  const Lng::AppID app = Lng::GetAppId(qt::qlg::Utf8ToWide(doc.module).c_str());
  if (app == Lng::APP_UNKNOWN) {
    std::fprintf(err, "%s: warning: module %s is not in the application table\n", path.c_str(), doc.module.c_str());
  }
  std::set<int> languages;
  for (const Entry& e : doc.entries) {
    for (const auto& t : e.texts) languages.insert(t.first);
  }
  for (const Entry& e : doc.entries) {
    const std::string* english = e.text(def.sourceLanguage);
    if (!english) {
      std::fprintf(err, "%s:%d: warning: text %d has no English text\n", path.c_str(), e.line, e.id);
      continue;
    }
    const auto want = qt_lng::Placeholders(*english);
    for (const auto& t : e.texts) {
      if (t.first == def.sourceLanguage) continue;
      const auto got = qt_lng::Placeholders(t.second);
      if (got != want) {
        const Language* l = def.byId(t.first);
        std::fprintf(err, "%s:%d: text %d (%s): placeholders %s differ from the English %s\n", path.c_str(),
                     e.lineOf(t.first), e.id, l ? l->code.c_str() : "?", qt_lng::JoinPlaceholders(got).c_str(),
                     qt_lng::JoinPlaceholders(want).c_str());
        ++errors;
      }
    }
  }
  for (const Language& l : def.languages) {
    if (l.id == def.sourceLanguage) continue;
    if (onlyLanguage ? onlyLanguage->id != l.id : !languages.count(l.id)) continue;
    std::string missing;
    int count = 0;
    for (const Entry& e : doc.entries) {
      if (e.text(def.sourceLanguage) && !e.text(l.id)) {
        missing += (count++ ? ", " : "") + std::to_string(e.id);
      }
    }
    if (count) {
      std::fprintf(out, "%s: %d untranslated into %s (%d): %s\n", path.c_str(), count, l.code.c_str(), l.id,
                   missing.c_str());
    }
  }
  std::fprintf(out, "%s: %zu texts, %s\n", path.c_str(), doc.entries.size(), errors ? "errors found" : "ok");
  return errors;
}

int Check(const std::vector<std::string>& args, FILE* out, FILE* err) {
  Args a;
  const int code = ParseArgs(args, {"--ddq", "--dir", "--lang"}, &a, out, err);
  if (code != qt_tool::kGoOn) return code;
  std::vector<std::string> files = a.plain;
  const std::string folder = Option(a, "--dir", qt_lng::LibraryFolder());
  if (files.empty()) {
    for (int i = 0; i < qt::kAppRows; ++i) {
      if (!qt::kAppTable[i].languageFile) continue;
      const std::string path = qt_lng::JoinPath(folder, qt::qlg::WideToUtf8(qt::kAppTable[i].languageFile));
      std::string bytes;
      if (qt_lng::ReadFile(path, &bytes)) files.push_back(path);
    }
    if (files.empty()) {
      std::fprintf(err, "quiltool lng check: no language files in %s\n", folder.c_str());
      return 1;
    }
  }
  const std::string ddq = Option(a, "--ddq", a.plain.empty() ? qt_lng::JoinPath(folder, "QuilQlg.ddq")
                                                              : qt_lng::DefinitionBeside(files[0]));
  Definition def;
  std::string error;
  if (!qt_lng::LoadDefinition(ddq, &def, &error)) {
    std::fprintf(err, "%s\n", error.c_str());
    return 1;
  }
  const Language* only = nullptr;
  if (!Option(a, "--lang").empty() && !(only = FindLanguage(def, Option(a, "--lang")))) {
    std::fprintf(err, "quiltool lng check: language %s is not defined\n", Option(a, "--lang").c_str());
    return 2;
  }
  int errors = 0;
  for (const std::string& f : files) errors += CheckFile(f, def, only, out, err);
  return errors ? 1 : 0;
}

int LngMain(const std::vector<std::string>& args, FILE* out, FILE* err) {
  try {
    if (args.empty()) {
      std::fprintf(err, "%s", kUsage);
      return 2;
    }
    if (args[0] == "export") return Export(args, out, err);
    if (args[0] == "import") return Import(args, out, err);
    if (args[0] == "lookup") return Lookup(args, out, err);
    if (args[0] == "check") return Check(args, out, err);
    if (qt_tool::IsHelp(args[0]) || args[0] == "help") {
      std::fprintf(out, "%s", kUsage);
      return 0;
    }
    std::fprintf(err, "quiltool lng: unknown command %s\n%s", args[0].c_str(), kUsage);
    return 2;
  } catch (const std::bad_alloc&) {
    std::fprintf(err, "quiltool lng: out of memory\n");
    return 1;
  }
}

const qt_tool::Registration kLng({"lng", "export, import, look up and check language files", LngMain});

}  // namespace
