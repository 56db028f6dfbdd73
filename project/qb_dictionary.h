// The data dictionary of a project database: its record sets, the length
// of its object ids, the owner relations between sets and the numbered
// attributes of each set. A file stores its own dictionary; the ddq_*
// functions build one for qbcreatefile and read the one of an open file.
#ifndef QUILTOOL_PROJECT_QB_DICTIONARY_H
#define QUILTOOL_PROJECT_QB_DICTIONARY_H

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "qb.h"

namespace qb {

struct AttDef {
  short number = 0;
  short type = QB_ATT_BYTES;
  std::string name;
};

struct SetDef {
  std::string name;
  int ownerSet = -1;   // index into Dictionary::sets, -1 for none
  short ownerAtt = 0;  // attribute of this set holding the owner's id
  bool ownsMembers = false;  // some set names this one as its owner
  std::vector<AttDef> atts;  // ascending by number
  const AttDef* Find(short number) const;
};

struct Dictionary {
  short idLength = 0;
  short idType = 0;  // one kind of id so far: printable text
  std::vector<SetDef> sets;  // a set's number in the file is its index + 1

  // Index of a set, -1 when there is none.
  int Find(std::string_view name) const;
  // Recomputes the name index and ownsMembers after sets changed.
  void Reindex();
  // QB_OK, or QBERR_BADDDQ with the reason in *why.
  short Validate(std::string* why) const;

 private:
  std::unordered_map<std::string, int> byName_;
};

// Names of sets and attributes: 1..31 of A-Z a-z 0-9 _.
bool IsValidName(std::string_view name);
// The dictionary's text form; QBERR_BADDDQ with a reason naming the line.
short ParseDictionary(const char* text, Dictionary* out, std::string* why);
const char* AttTypeName(short type);
short AttTypeFromName(std::string_view name);

// Dictionary handles of the ddq_* functions.
short RegisterDictionary(std::shared_ptr<Dictionary> dict, bool readOnly, short ownerFile);
std::shared_ptr<Dictionary> FindDictionary(short hddq, bool* readOnly);
// Drops the handles that an engine file registered for its dictionary.
void ForgetFileDictionaries(short hfile);

}  // namespace qb

#endif
