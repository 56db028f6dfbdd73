// The quiltool lng subcommands' view of a language file: every text with
// its comments, note and translations, kept in file order so that a file
// written back differs only where a translation changed.
#ifndef QUILTOOL_TOOLS_CMD_LNG_DOC_H
#define QUILTOOL_TOOLS_CMD_LNG_DOC_H

#include <string>
#include <utility>
#include <vector>

#include "settings/qlg_format.h"

namespace qt_lng {

struct Entry {
  int id = 0;
  int line = 0;
  std::vector<std::string> comments;  // whole '#' lines above the text
  bool hasNote = false;
  std::string note;
  std::vector<std::pair<int, std::string>> texts;  // (language id, UTF-8 text)
  std::vector<int> textLines;                      // beside texts

  const std::string* text(int languageId) const;
  int lineOf(int languageId) const;
  // True when the text changed.
  bool setText(int languageId, const std::string& text);
};

struct Document {
  std::string fileName;  // for messages
  std::string module;
  std::vector<std::string> fileComments;      // above the "qlg" line
  std::vector<Entry> entries;
  std::vector<std::string> trailingComments;  // after the last text

  const Entry* find(int id) const;
  Entry* find(int id);
};

// Files are named by UTF-8 paths on every target, as the command line
// gives them.
bool ReadFile(const std::string& path, std::string* bytes);
bool WriteFile(const std::string& path, const std::string& bytes);

bool LoadDefinition(const std::string& path, qt::qlg::Definition* out, std::string* error);
bool ParseDocument(const std::string& bytes, const std::string& fileName, const qt::qlg::Definition& def, Document* out,
                   std::string* error);
bool LoadDocument(const std::string& path, const qt::qlg::Definition& def, Document* out, std::string* error);
// The file's canonical form: what ParseDocument reads back unchanged.
std::string Serialize(const Document& doc);

// The printf conversions of a text in order ("%s", "%5.2lf", "%I64d");
// "%%" is no placeholder.
std::vector<std::string> Placeholders(const std::string& text);
std::string JoinPlaceholders(const std::vector<std::string>& list);

// "<dir>/QuilQlg.ddq" beside a .qlg file.
std::string DefinitionBeside(const std::string& qlgPath);
// The folder of the QuilTool library, where the installed files are.
std::string LibraryFolder();
std::string JoinPath(const std::string& folder, const std::string& name);
std::string BaseName(const std::string& path);

}  // namespace qt_lng

#endif
