#include "project/qb_dictionary.h"

#include <algorithm>
#include <cstring>
#include <sstream>

#include "project/qb_engine.h"

namespace qb {

namespace {

struct DdqSlot {
  std::shared_ptr<Dictionary> dict;
  bool readOnly = false;  // a file's own dictionary: never changed
  short ownerFile = -1;
};

std::vector<DdqSlot>& Slots() {
  static std::vector<DdqSlot> slots;
  return slots;
}

const struct {
  const char* name;
  short type;
} kTypes[] = {{"bytes", QB_ATT_BYTES}, {"long", QB_ATT_LONG}, {"double", QB_ATT_DOUBLE},
              {"wsz", QB_ATT_WSZ},     {"sz", QB_ATT_SZ},     {"id", QB_ATT_ID}};

void CopyName(char* dst, const std::string& name) {
  std::memset(dst, 0, QB_SETNAMESIZE);
  std::memcpy(dst, name.data(), std::min<size_t>(name.size(), QB_SETNAMESIZE - 1));
}

// A dictionary a ddq_* call may read (and, for changes, write).
short Use(short hddq, bool forWriting, std::shared_ptr<Dictionary>* out) {
  bool readOnly = false;
  *out = FindDictionary(hddq, &readOnly);
  if (!*out) return QBERR_BADHANDLE;
  if (forWriting && readOnly) return QBERR_READONLY;
  return QB_OK;
}

}  // namespace

const AttDef* SetDef::Find(short number) const {
  auto it = std::lower_bound(atts.begin(), atts.end(), number,
                             [](const AttDef& a, short n) { return a.number < n; });
  return (it != atts.end() && it->number == number) ? &*it : nullptr;
}

int Dictionary::Find(std::string_view name) const {
  auto it = byName_.find(std::string(name));
  return it == byName_.end() ? -1 : it->second;
}

void Dictionary::Reindex() {
  byName_.clear();
  for (size_t i = 0; i < sets.size(); ++i) {
    byName_[sets[i].name] = static_cast<int>(i);
    sets[i].ownsMembers = false;
  }
  for (SetDef& s : sets) {
    if (s.ownerSet >= 0 && s.ownerSet < static_cast<int>(sets.size())) sets[s.ownerSet].ownsMembers = true;
  }
}

bool IsValidName(std::string_view name) {
  if (name.empty() || name.size() >= QB_SETNAMESIZE) return false;
  for (char c : name) {
    const bool ok = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
    if (!ok) return false;
  }
  return true;
}

const char* AttTypeName(short type) {
  for (const auto& t : kTypes)
    if (t.type == type) return t.name;
  return "?";
}

short AttTypeFromName(std::string_view name) {
  for (const auto& t : kTypes)
    if (name == t.name) return t.type;
  return -1;
}

short Dictionary::Validate(std::string* why) const {
  auto bad = [why](const std::string& text) {
    if (why) *why = text;
    return static_cast<short>(QBERR_BADDDQ);
  };
  if (idLength < 1 || idLength > QB_MAXIDLEN) return bad("id length must be 1 to 19");
  if (sets.size() > 32767) return bad("too many sets");
  for (size_t i = 0; i < sets.size(); ++i) {
    const SetDef& s = sets[i];
    if (!IsValidName(s.name)) return bad("bad set name '" + s.name + "'");
    if (Find(s.name) != static_cast<int>(i)) return bad("set " + s.name + " is defined twice");
    for (size_t k = 0; k < s.atts.size(); ++k) {
      const AttDef& a = s.atts[k];
      if (a.number < 1) return bad("set " + s.name + ": attribute numbers start at 1");
      if (k > 0 && s.atts[k - 1].number >= a.number)
        return bad("set " + s.name + ": attribute " + std::to_string(a.number) + " is defined twice");
      if (a.type < QB_ATT_BYTES || a.type > QB_ATT_ID)
        return bad("set " + s.name + ": attribute " + std::to_string(a.number) + " has no valid type");
      if (!IsValidName(a.name)) return bad("set " + s.name + ": bad attribute name '" + a.name + "'");
    }
    if (s.ownerSet >= static_cast<int>(sets.size())) return bad("set " + s.name + ": owner set missing");
    if (s.ownerSet >= 0) {
      const AttDef* link = s.Find(s.ownerAtt);
      if (!link || link->type != QB_ATT_ID)
        return bad("set " + s.name + ": the owner link must be an attribute of type id");
    }
  }
  return QB_OK;
}

short ParseDictionary(const char* text, Dictionary* out, std::string* why) {
  if (!text) return QBERR_BADARG;
  Dictionary d;
  std::istringstream in(text);
  std::string line;
  int lineNo = 0;
  // Owner relations name sets that may come later; resolved at the end.
  std::vector<std::pair<int, std::string>> owners;
  auto bad = [&](const std::string& reason) {
    if (why) *why = "line " + std::to_string(lineNo) + ": " + reason;
    return static_cast<short>(QBERR_BADDDQ);
  };
  while (std::getline(in, line)) {
    ++lineNo;
    const size_t hash = line.find('#');
    if (hash != std::string::npos) line.resize(hash);
    std::istringstream words(line);
    std::vector<std::string> w;
    for (std::string word; words >> word;) w.push_back(word);
    if (w.empty()) continue;
    if (w[0] == "idlength" && w.size() == 2) {
      const int n = std::atoi(w[1].c_str());
      if (n < 1 || n > QB_MAXIDLEN) return bad("id length must be 1 to 19");
      d.idLength = static_cast<short>(n);
    } else if (w[0] == "set" && (w.size() == 2 || (w.size() == 5 && w[2] == "owner"))) {
      if (!IsValidName(w[1])) return bad("bad set name '" + w[1] + "'");
      SetDef s;
      s.name = w[1];
      if (w.size() == 5) {
        const int att = std::atoi(w[4].c_str());
        if (att < 1 || att > 32767) return bad("bad owner attribute number");
        s.ownerAtt = static_cast<short>(att);
        owners.push_back({static_cast<int>(d.sets.size()), w[3]});
      }
      d.sets.push_back(s);
    } else if (w[0] == "att" && w.size() == 4) {
      if (d.sets.empty()) return bad("attribute outside a set");
      const int number = std::atoi(w[1].c_str());
      const short type = AttTypeFromName(w[3]);
      if (number < 1 || number > 32767) return bad("bad attribute number '" + w[1] + "'");
      if (type < 0) return bad("unknown type '" + w[3] + "'");
      if (!IsValidName(w[2])) return bad("bad attribute name '" + w[2] + "'");
      std::vector<AttDef>& atts = d.sets.back().atts;
      AttDef a;
      a.number = static_cast<short>(number);
      a.type = type;
      a.name = w[2];
      auto at = std::lower_bound(atts.begin(), atts.end(), a.number,
                                 [](const AttDef& x, short n) { return x.number < n; });
      if (at != atts.end() && at->number == a.number) return bad("attribute " + w[1] + " is defined twice");
      atts.insert(at, a);
    } else {
      return bad("cannot read '" + line + "'");
    }
  }
  d.Reindex();
  for (const auto& o : owners) {
    const int owner = d.Find(o.second);
    if (owner < 0) {
      if (why) *why = "set " + d.sets[o.first].name + ": no owner set " + o.second;
      return QBERR_BADDDQ;
    }
    d.sets[o.first].ownerSet = owner;
  }
  d.Reindex();
  const short status = d.Validate(why);
  if (status != QB_OK) return status;
  *out = std::move(d);
  return QB_OK;
}

short RegisterDictionary(std::shared_ptr<Dictionary> dict, bool readOnly, short ownerFile) {
  std::vector<DdqSlot>& slots = Slots();
  for (size_t i = 0; i < slots.size(); ++i) {
    if (!slots[i].dict) {
      slots[i] = {std::move(dict), readOnly, ownerFile};
      return static_cast<short>(i);
    }
  }
  if (slots.size() >= 32767) return QBERR_TOOMANY;
  slots.push_back({std::move(dict), readOnly, ownerFile});
  return static_cast<short>(slots.size() - 1);
}

std::shared_ptr<Dictionary> FindDictionary(short hddq, bool* readOnly) {
  std::vector<DdqSlot>& slots = Slots();
  if (hddq < 0 || static_cast<size_t>(hddq) >= slots.size()) return nullptr;
  if (readOnly) *readOnly = slots[hddq].readOnly;
  return slots[hddq].dict;
}

void ForgetFileDictionaries(short hfile) {
  for (DdqSlot& s : Slots()) {
    if (s.dict && s.ownerFile == hfile) s = DdqSlot();
  }
}

}  // namespace qb

using namespace qb;

short ddq_create(short idLength) {
  return Guarded(-1, [&]() -> short {
    if (idLength < 1 || idLength > QB_MAXIDLEN) return QBERR_BADARG;
    auto d = std::make_shared<Dictionary>();
    d->idLength = idLength;
    d->Reindex();
    return RegisterDictionary(d, false, -1);
  });
}

short ddq_parse(const char* text) {
  return Guarded(-1, [&]() -> short {
    auto d = std::make_shared<Dictionary>();
    std::string why;
    const short status = ParseDictionary(text, d.get(), &why);
    if (status != QB_OK) return status;
    return RegisterDictionary(d, false, -1);
  });
}

short ddq_addset(short hddq, const char* set, const char* ownerSet, short ownerAtt) {
  return Guarded(-1, [&]() -> short {
    std::shared_ptr<Dictionary> d;
    short status = Use(hddq, true, &d);
    if (status != QB_OK) return status;
    if (!set || !IsValidName(set)) return QBERR_BADARG;
    if (d->Find(set) >= 0) return QBERR_EXISTS;
    SetDef s;
    s.name = set;
    if (ownerSet && *ownerSet) {
      // The link attribute is declared by ddq_addatt afterwards; Validate
      // checks it when the dictionary is used.
      s.ownerSet = d->Find(ownerSet);
      if (s.ownerSet < 0 && std::strcmp(ownerSet, set) == 0) s.ownerSet = static_cast<int>(d->sets.size());
      if (s.ownerSet < 0) return QBERR_NOSET;
      if (ownerAtt < 1) return QBERR_BADARG;
      s.ownerAtt = ownerAtt;
    }
    d->sets.push_back(s);
    d->Reindex();
    return QB_OK;
  });
}

short ddq_addatt(short hddq, const char* set, short att, short type, const char* name) {
  return Guarded(-1, [&]() -> short {
    std::shared_ptr<Dictionary> d;
    short status = Use(hddq, true, &d);
    if (status != QB_OK) return status;
    const int s = set ? d->Find(set) : -1;
    if (s < 0) return QBERR_NOSET;
    if (att < 1 || type < QB_ATT_BYTES || type > QB_ATT_ID || !name || !IsValidName(name)) return QBERR_BADARG;
    std::vector<AttDef>& atts = d->sets[s].atts;
    auto at = std::lower_bound(atts.begin(), atts.end(), att, [](const AttDef& x, short n) { return x.number < n; });
    if (at != atts.end() && at->number == att) return QBERR_EXISTS;
    AttDef a;
    a.number = att;
    a.type = type;
    a.name = name;
    atts.insert(at, a);
    return QB_OK;
  });
}

short ddq_release(short hddq) {
  return Guarded(-1, [&]() -> short {
    if (!FindDictionary(hddq, nullptr)) return QBERR_BADHANDLE;
    Slots()[hddq] = DdqSlot();
    return QB_OK;
  });
}

short ddq_getIDinfo(short hddq, short* idType) {
  return Guarded(-1, [&]() -> short {
    std::shared_ptr<Dictionary> d;
    short status = Use(hddq, false, &d);
    if (status != QB_OK) return status;
    if (idType) *idType = d->idType;
    return d->idLength;
  });
}

short ddq_getnsets(short hddq) {
  return Guarded(-1, [&]() -> short {
    std::shared_ptr<Dictionary> d;
    short status = Use(hddq, false, &d);
    return status != QB_OK ? status : static_cast<short>(d->sets.size());
  });
}

short ddq_getsetinfo(short hddq, short index, qbsetinfo* info) {
  return Guarded(-1, [&]() -> short {
    std::shared_ptr<Dictionary> d;
    short status = Use(hddq, false, &d);
    if (status != QB_OK) return status;
    if (!info || index < 0 || index >= static_cast<short>(d->sets.size())) return QBERR_BADARG;
    const SetDef& s = d->sets[index];
    CopyName(info->name, s.name);
    CopyName(info->owner, s.ownerSet >= 0 ? d->sets[s.ownerSet].name : std::string());
    info->ownerAtt = s.ownerSet >= 0 ? s.ownerAtt : 0;
    info->nAtts = static_cast<short>(s.atts.size());
    return QB_OK;
  });
}

short ddq_getnatts(short hddq, const char* set) {
  return Guarded(-1, [&]() -> short {
    std::shared_ptr<Dictionary> d;
    short status = Use(hddq, false, &d);
    if (status != QB_OK) return status;
    const int s = set ? d->Find(set) : -1;
    return s < 0 ? static_cast<short>(QBERR_NOSET) : static_cast<short>(d->sets[s].atts.size());
  });
}

short ddq_getattinfo(short hddq, const char* set, short index, qbattinfo* info) {
  return Guarded(-1, [&]() -> short {
    std::shared_ptr<Dictionary> d;
    short status = Use(hddq, false, &d);
    if (status != QB_OK) return status;
    const int s = set ? d->Find(set) : -1;
    if (s < 0) return QBERR_NOSET;
    const std::vector<AttDef>& atts = d->sets[s].atts;
    if (!info || index < 0 || index >= static_cast<short>(atts.size())) return QBERR_BADARG;
    info->number = atts[index].number;
    info->type = atts[index].type;
    CopyName(info->name, atts[index].name);
    return QB_OK;
  });
}
