// The translators' exchange formats of quiltool lng: gettext PO and
// XLIFF 1.2, one module and one target language per file. Every unit is
// named "<module tag>:<text id>".
#ifndef QUILTOOL_TOOLS_CMD_LNG_EXCHANGE_H
#define QUILTOOL_TOOLS_CMD_LNG_EXCHANGE_H

#include <string>
#include <vector>

#include "cmd_lng_doc.h"

namespace qt_lng {

struct Unit {
  std::string id;      // "HPV:607"
  std::string source;  // the English text as exported
  std::string target;  // the translation; empty when untranslated
  bool usable = true;  // false: flagged fuzzy / needs translation
  int line = 0;        // where the unit starts in its file (PO only)
};

struct Exchange {
  std::string language;  // code from the file's header, may be empty
  std::string module;    // module tag from the header, may be empty
  std::vector<Unit> units;
};

// Units for every text that has a source-language text, in file order.
std::string WritePo(const Document& doc, const qt::qlg::Definition& def, const qt::qlg::Language& target);
bool ReadPo(const std::string& bytes, const std::string& fileName, Exchange* out, std::string* error);

bool WriteXliff(const Document& doc, const qt::qlg::Definition& def, const qt::qlg::Language& target, std::string* out,
                std::string* error);
bool ReadXliff(const std::string& bytes, const std::string& fileName, Exchange* out, std::string* error);

std::string UnitId(const std::string& module, int textId);
// Splits "HPV:607"; false when it is not of that form.
bool SplitUnitId(const std::string& id, std::string* module, int* textId);

}  // namespace qt_lng

#endif
