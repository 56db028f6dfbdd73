// quiltool modules: which sibling modules of the suite a folder holds, and
// which of the exports the library calls them by each one lacks. Module
// files are only read, never loaded: a broken module must not take the
// program down with it.
#include <cstdio>
#include <set>
#include <string>
#include <vector>

#include "command.h"
#include "core/fs.h"
#include "gwframe.h"
#include "module_exports_platform.h"
#include "project/interapp_modules.h"
#include "qn_utf.h"
#include "ustr.h"

namespace {

enum ExitCode {
  kComplete = 0,
  kExportsMissing = 1,
  kBadInput = 2,
};

const char kUsage[] =
    "usage: quiltool modules [FOLDER]\n"
    "\n"
    "Lists the sibling modules of the suite in the order the library looks for\n"
    "them and tells whether each module file is in FOLDER (default: the folder\n"
    "of the library itself). For each module that is there, every export the\n"
    "library calls it by and the file lacks is listed. Module files are read,\n"
    "never loaded or run. A module that is absent is simply not installed,\n"
    "which is fine: the library then does without it.\n"
    "\n"
    "output, one line per module:\n"
    "  folder: FOLDER\n"
    "  NAME: absent\n"
    "  NAME: present\n"
    "    missing: EXPORT              (one line per export the file lacks)\n"
    "  NAME: present, unreadable      (the reason is written to standard error)\n"
    "  summary: P of N present, M missing exports, U unreadable\n"
    "  note: an absent module is not installed here, which is fine\n"
    "                                 (only when a module is absent)\n"
    "\n"
    "exit codes:\n"
    "  0  no module that is present lacks an export (absent modules are fine)\n"
    "  1  a module that is present lacks one or more exports\n"
    "  2  bad use, FOLDER is not a folder, or a module file cannot be read or\n"
    "     is not a module of this platform\n";

const char kWho[] = "quiltool modules";

std::wstring Wide(const std::string& s) { return qn_utf8_to_wide(s.c_str(), s.size()); }
std::string Narrow(const std::wstring& s) { return qn_wide_to_utf8(s.c_str(), s.size(), QN_UTF_REPLACE_INVALID); }

std::string Join(const std::string& folder, const std::string& name) {
  const char last = folder.back();
  if (last == '/' || last == '\\') return folder + name;
  // Keep the folder's own separator; both targets accept '/'.
  return folder + (folder.find('\\') != std::string::npos ? "\\" : "/") + name;
}

// The folder the library itself was loaded from. The program holds the
// library's objects, so that is the program's folder, except where an
// installation puts the program apart from the shared library.
std::string LibraryFolder() {
  ustr found;
  if (GetModuleDirectory(static_cast<HMODULE>(nullptr), found) != 0 || found.empty()) return std::string();
  std::wstring folder = found.str();
#if defined(QT_TOOL_DATA_FROM_PROGRAM) && defined(QT_TOOL_LIBRARY_FILE)
  const std::wstring installed = folder + L"/" + Wide(QT_TOOL_DATA_FROM_PROGRAM);
  if (!qt::fs::IsFile(folder + L"/" + Wide(QT_TOOL_LIBRARY_FILE)) &&
      qt::fs::IsFile(installed + L"/" + Wide(QT_TOOL_LIBRARY_FILE))) {
    folder = qt::fs::FullName(installed);
  }
#endif
  return Narrow(folder);
}

struct Tally {
  int present = 0;
  int missing = 0;
  int unreadable = 0;
};

// One module's lines; err gets the reason when its file cannot be used.
void ReportModule(const std::string& folder, int module, Tally& tally, FILE* out, FILE* err) {
  const std::string name = Narrow(qt::bridge::ModuleFileOf(module).fileName);
  const std::string path = Join(folder, name);
  const qt::fs::Kind kind = qt::fs::KindOf(Wide(path));
  if (kind == qt::fs::Kind::kNone) {
    std::fprintf(out, "%s: absent\n", name.c_str());
    return;
  }
  ++tally.present;
  std::vector<std::string> names;
  std::string problem;
  if (kind == qt::fs::Kind::kDirectory) {
    problem = "a folder, not a module file";
  } else if (!qt::module_exports::platform::ReadExportNames(path, names, problem)) {
    if (problem.empty()) problem = "cannot be read";
  } else {
    problem.clear();
  }
  if (!problem.empty()) {
    ++tally.unreadable;
    std::fprintf(out, "%s: present, unreadable\n", name.c_str());
    std::fprintf(err, "%s: %s: %s\n", kWho, path.c_str(), problem.c_str());
    return;
  }
  std::fprintf(out, "%s: present\n", name.c_str());
  const std::set<std::string> exported(names.begin(), names.end());
  for (const char* wanted : qt::bridge::ExportsIn(module)) {
    if (exported.count(wanted)) continue;
    ++tally.missing;
    std::fprintf(out, "  missing: %s\n", wanted);
  }
}

int ModulesMain(const std::vector<std::string>& args, FILE* out, FILE* err) {
  for (const std::string& a : args) {
    if (a == "--") break;
    if (a == "/?") {
      std::fprintf(out, "%s", kUsage);
      return kComplete;
    }
  }
  qt_tool::ParsedArgs parsed;
  const int code = qt_tool::ParseOptions(args, 0, {}, kWho, kUsage, &parsed, out, err);
  if (code != qt_tool::kGoOn) return code;
  if (parsed.plain.size() > 1) {
    std::fprintf(err, "%s: give at most one FOLDER\n%s", kWho, kUsage);
    return kBadInput;
  }
  std::string folder;
  if (parsed.plain.empty()) {
    folder = LibraryFolder();
    if (folder.empty()) {
      std::fprintf(err, "%s: cannot tell the library's folder; name a FOLDER\n", kWho);
      return kBadInput;
    }
  } else {
    folder = parsed.plain[0];
    if (folder.empty()) {
      std::fprintf(err, "%s: the FOLDER name is empty\n%s", kWho, kUsage);
      return kBadInput;
    }
  }
  const qt::fs::Kind kind = qt::fs::KindOf(Wide(folder));
  if (kind != qt::fs::Kind::kDirectory) {
    std::fprintf(err, "%s: %s: %s\n", kWho, folder.c_str(),
                 kind == qt::fs::Kind::kNone ? "no such folder" : "not a folder");
    return kBadInput;
  }

  std::fprintf(out, "folder: %s\n", folder.c_str());
  Tally tally;
  for (int m = 0; m < qt::bridge::kModuleCount; ++m) ReportModule(folder, m, tally, out, err);
  std::fprintf(out, "summary: %d of %d present, %d missing exports, %d unreadable\n", tally.present,
               static_cast<int>(qt::bridge::kModuleCount), tally.missing, tally.unreadable);
  if (tally.present < qt::bridge::kModuleCount) {
    std::fprintf(out, "note: an absent module is not installed here, which is fine\n");
  }
  if (tally.unreadable > 0) return kBadInput;
  return tally.missing > 0 ? kExportsMissing : kComplete;
}

const qt_tool::Registration kModules({"modules", "which sibling modules are installed and what they lack",
                                      ModulesMain});

}  // namespace
