// Records of the record engine: walks, look-ups, saving and deleting, ids,
// attached blocks and filters.
#include <cstring>

#include "project/qb_engine.h"
#include "project/qb_record.h"

using namespace qb;

namespace {

const uint32_t kSpareLimit = 4096;

const Walk& AllRecords() {
  static const Walk all;
  return all;
}

const Walk& FilterOf(const File* f) { return f->filterOn ? f->filter : AllRecords(); }

char* MakeRec(File* f, const Row& row, short* status) {
  if (row.setNo < 1 || row.setNo > static_cast<int>(f->dict->sets.size())) {
    *status = QBERR_CORRUPT;
    return nullptr;
  }
  char* rec = NewRecReusing(&f->spare, f->dict->sets[row.setNo - 1].name, row.id, row.data,
                            static_cast<uint32_t>(f->handle) + 1);
  if (!rec) *status = QBERR_NOMEM;
  return rec;
}

// One step of a walk turned into a new record buffer.
char* StepRec(File* f, const Walk& walk, bool forward, const std::string_view* from, bool inclusive, short* status) {
  Row row;
  *status = f->backend->Step(walk, forward, from, inclusive, &row);
  return *status == QB_OK ? MakeRec(f, row, status) : nullptr;
}

// A set name (null: any set) as a set number, 0 for any.
short SetNumber(const Dictionary& d, const char* set, int* setNo) {
  *setNo = 0;
  if (!set) return QB_OK;
  const int i = d.Find(set);
  if (i < 0) return QBERR_NOSET;
  *setNo = i + 1;
  return QB_OK;
}

// A record buffer checked against the file's dictionary before it is
// stored: its set and id, every attribute's declaration, type and size,
// and the owner its link names.
short Validate(File* f, const char* rec, int* setNo, std::string_view* owner) {
  short s = CheckRec(rec);
  if (s != QB_OK) return s;
  const Dictionary& d = *f->dict;
  const int set = d.Find(RecSet(rec));
  if (set < 0) return QBERR_NOSET;
  if (!IsIdText(RecId(rec), d.idLength)) return QBERR_BADID;
  const SetDef& def = d.sets[set];
  *owner = std::string_view();
  AttReader reader(RecData(rec));
  AttView a;
  while (reader.Next(&a)) {
    const AttDef* decl = def.Find(a.number);
    if (!decl || decl->type != a.type) return QBERR_BADATT;
    s = CheckAttValue(d, a.type, a.data, a.size);
    if (s != QB_OK) return s;
    if (def.ownerSet >= 0 && a.number == def.ownerAtt)
      *owner = std::string_view(reinterpret_cast<const char*>(a.data), a.size);
  }
  if (reader.damaged()) return QBERR_BADREC;
  if (!owner->empty()) {
    int ownerSet = 0;
    s = f->backend->Lookup(*owner, &ownerSet);
    if (s != QB_OK) return s;
    if (ownerSet != def.ownerSet + 1) return QBERR_NOOWNER;
  }
  *setNo = set + 1;
  return QB_OK;
}

short SaveRec(short hfile, const char* rec, bool withAhm, const void* data, long size) {
  File* f;
  short s = OpenFileOf(hfile, &f);
  if (s != QB_OK) return s;
  if (withAhm && (size < 0 || (size > 0 && !data))) return QBERR_BADARG;
  s = CheckWritable(f);
  int setNo = 0;
  std::string_view owner;
  if (s == QB_OK) s = Validate(f, rec, &setNo, &owner);
  if (s != QB_OK) return s;
  const bool fresh = (Header(rec)->flags & kRecFresh) != 0;
  Backend& b = *f->backend;
  if (!withAhm) {
    s = b.Put(RecId(rec), setNo, owner, RecData(rec), fresh);
  } else {
    s = b.BeginGroup();
    if (s != QB_OK) return s;
    s = b.Put(RecId(rec), setNo, owner, RecData(rec), fresh);
    if (s == QB_OK)
      s = size > 0 ? b.PutAhm(RecId(rec), std::string_view(static_cast<const char*>(data), static_cast<size_t>(size)))
                   : b.DeleteAhm(RecId(rec));
    const short end = b.EndGroup(s == QB_OK);
    if (s == QB_OK) s = end;
  }
  // Once stored, saving again replaces rather than inserts. The buffer is
  // the engine's own, so the flag may change under the caller's const.
  if (s == QB_OK) const_cast<RecHeader*>(Header(rec))->flags &= ~kRecFresh;
  return s;
}

// The owner id a member record links to, empty when it has none.
std::string_view OwnerOf(const Dictionary& d, const char* rec) {
  const int set = d.Find(RecSet(rec));
  if (set < 0 || d.sets[set].ownerSet < 0) return std::string_view();
  AttView a;
  if (!FindAtt(rec, d.sets[set].ownerAtt, &a)) return std::string_view();
  return std::string_view(reinterpret_cast<const char*>(a.data), a.size);
}

}  // namespace

long qbgetnrecs(short hfile) {
  long count = 0;
  const short s = Guarded(hfile, [&]() -> short {
    File* f;
    const short open = OpenFileOf(hfile, &f);
    return open == QB_OK ? f->backend->Count(FilterOf(f), &count) : open;
  });
  return s == QB_OK ? count : s;
}

char* qbfirstrec(short hfile) {
  return GuardedPtr<char>(hfile, [&](short* status) -> char* {
    File* f;
    *status = OpenFileOf(hfile, &f);
    return *status == QB_OK ? StepRec(f, FilterOf(f), true, nullptr, false, status) : nullptr;
  });
}

char* qbnextrec(short hfile, const char* rec) {
  return GuardedPtr<char>(hfile, [&](short* status) -> char* {
    File* f;
    *status = OpenFileOf(hfile, &f);
    if (*status != QB_OK) return nullptr;
    if (!rec) {
      if (!f->seekOn) return StepRec(f, FilterOf(f), true, nullptr, false, status);
      const std::string_view at(f->seekKey);
      return StepRec(f, FilterOf(f), true, &at, true, status);
    }
    *status = CheckRec(rec);
    if (*status != QB_OK) return nullptr;
    const std::string_view after = RecId(rec);
    return StepRec(f, FilterOf(f), true, &after, false, status);
  });
}

char* qbprevrec(short hfile, const char* rec) {
  return GuardedPtr<char>(hfile, [&](short* status) -> char* {
    File* f;
    *status = OpenFileOf(hfile, &f);
    if (*status != QB_OK) return nullptr;
    if (!rec) return StepRec(f, FilterOf(f), false, nullptr, false, status);
    *status = CheckRec(rec);
    if (*status != QB_OK) return nullptr;
    const std::string_view before = RecId(rec);
    return StepRec(f, FilterOf(f), false, &before, false, status);
  });
}

char* qbfirstmember(short hfile, const char* ownerId) {
  return GuardedPtr<char>(hfile, [&](short* status) -> char* {
    File* f;
    *status = OpenFileOf(hfile, &f);
    std::string_view owner;
    if (*status == QB_OK) *status = ReadId(ownerId, f->dict->idLength, &owner);
    if (*status != QB_OK) return nullptr;
    Walk walk;
    walk.kind = Walk::kOwner;
    walk.owner.assign(owner.data(), owner.size());
    return StepRec(f, walk, true, nullptr, false, status);
  });
}

char* qbnextmember(short hfile, const char* rec) {
  return GuardedPtr<char>(hfile, [&](short* status) -> char* {
    File* f;
    *status = OpenFileOf(hfile, &f);
    if (*status == QB_OK) *status = CheckRec(rec);
    if (*status != QB_OK) return nullptr;
    const std::string_view owner = OwnerOf(*f->dict, rec);
    if (owner.empty()) {
      *status = QBERR_NOTFOUND;
      return nullptr;
    }
    Walk walk;
    walk.kind = Walk::kOwner;
    walk.owner.assign(owner.data(), owner.size());
    const std::string_view after = RecId(rec);
    return StepRec(f, walk, true, &after, false, status);
  });
}

char* qbfindrec(short hfile, const char* set, const void* id, short keyLen) {
  return GuardedPtr<char>(hfile, [&](short* status) -> char* {
    File* f;
    int setNo = 0;
    *status = OpenFileOf(hfile, &f);
    if (*status == QB_OK) *status = SetNumber(*f->dict, set, &setNo);
    if (*status == QB_OK && (keyLen < 0 || !id)) *status = QBERR_BADARG;
    if (*status != QB_OK) return nullptr;
    const short idLength = f->dict->idLength;
    if (keyLen == 0) {
      std::string_view key;
      *status = ReadId(id, idLength, &key);
      Row row;
      if (*status == QB_OK) *status = f->backend->Get(key, &row);
      if (*status == QB_OK && setNo && row.setNo != setNo) *status = QBERR_NOTFOUND;
      return *status == QB_OK ? MakeRec(f, row, status) : nullptr;
    }
    const char* p = static_cast<const char*>(id);
    size_t n = 0;
    while (n < static_cast<size_t>(keyLen) && n < static_cast<size_t>(idLength) && p[n]) ++n;
    if (!IsIdText(std::string_view(p, n), idLength)) {
      *status = QBERR_BADID;
      return nullptr;
    }
    Walk walk;
    walk.kind = setNo ? Walk::kSet : Walk::kAll;
    walk.setNo = setNo;
    walk.prefix.assign(p, n);
    return StepRec(f, walk, true, nullptr, false, status);
  });
}

short qbexistrec(short hfile, const char* set, const void* id) {
  return Guarded(hfile, [&]() -> short {
    File* f;
    int setNo = 0;
    std::string_view key;
    short s = OpenFileOf(hfile, &f);
    if (s == QB_OK) s = SetNumber(*f->dict, set, &setNo);
    if (s == QB_OK) s = ReadId(id, f->dict->idLength, &key);
    int found = 0;
    if (s == QB_OK) s = f->backend->Lookup(key, &found);
    if (s != QB_OK) return s;
    if (!found) return QB_ABSENT;
    return !setNo || found == setNo ? QB_EXISTS : QB_TAKEN;
  });
}

short qbseek(short hfile, const char* set, const void* id) {
  return Guarded(hfile, [&]() -> short {
    File* f;
    int setNo = 0;
    std::string_view key;
    short s = OpenFileOf(hfile, &f);
    if (s == QB_OK) s = SetNumber(*f->dict, set, &setNo);
    if (s == QB_OK) s = ReadId(id, f->dict->idLength, &key);
    if (s != QB_OK) return s;
    f->seekKey.assign(key.data(), key.size());
    f->seekOn = true;
    int found = 0;
    s = f->backend->Lookup(key, &found);
    if (s != QB_OK) return s;
    return found && (!setNo || found == setNo) ? static_cast<short>(QB_OK) : static_cast<short>(QBERR_NOTFOUND);
  });
}

char* qbcreaterec(short hfile, const char* set, const void* id) {
  return GuardedPtr<char>(hfile, [&](short* status) -> char* {
    const File* f = FindFile(hfile);
    const Dictionary* d = f ? DictOf(f) : nullptr;
    *status = !f ? QBERR_BADHANDLE : !d ? QBERR_NOTOPEN : QB_OK;
    if (*status == QB_OK && (!set || d->Find(set) < 0)) *status = QBERR_NOSET;
    std::string_view key;
    if (*status == QB_OK) *status = ReadId(id, d->idLength, &key);
    if (*status != QB_OK) return nullptr;
    // Whether the id is free shows when the record is first saved: an
    // insert that finds it taken fails there, at no extra look-up here.
    char* rec = NewRec(set, key, std::string_view(), kRecFresh);
    if (!rec) *status = QBERR_NOMEM;
    return rec;
  });
}

short qbsaverec(short hfile, const char* rec) {
  return Guarded(hfile, [&]() { return SaveRec(hfile, rec, false, nullptr, 0); });
}

short qbsaverecwithahm(short hfile, const char* rec, const void* data, long size) {
  return Guarded(hfile, [&]() { return SaveRec(hfile, rec, true, data, size); });
}

short qbdeleteahm(short hfile, const char* rec) {
  return Guarded(hfile, [&]() -> short {
    File* f;
    short s = OpenFileOf(hfile, &f);
    if (s == QB_OK) s = CheckWritable(f);
    if (s == QB_OK) s = CheckRec(rec);
    int found = 0;
    if (s == QB_OK) s = f->backend->Lookup(RecId(rec), &found);
    if (s != QB_OK) return s;
    return found ? f->backend->DeleteAhm(RecId(rec)) : static_cast<short>(QBERR_NOTFOUND);
  });
}

void* qbgetahm(short hfile, const char* rec, long* size) {
  return GuardedPtr<void>(hfile, [&](short* status) -> void* {
    if (size) *size = 0;
    File* f;
    *status = OpenFileOf(hfile, &f);
    if (*status == QB_OK) *status = CheckRec(rec);
    bool found = false;
    if (*status == QB_OK) *status = f->backend->GetAhm(RecId(rec), &f->ahm, &found);
    if (*status == QB_OK && !found) *status = QBERR_NOTFOUND;
    if (*status != QB_OK) return nullptr;
    if (size) *size = static_cast<long>(f->ahm.size());
    return &f->ahm[0];
  });
}

short qbdeleterec(short hfile, const char* set, const void* id) {
  return Guarded(hfile, [&]() -> short {
    File* f;
    int setNo = 0;
    std::string_view key;
    short s = OpenFileOf(hfile, &f);
    if (s == QB_OK) s = CheckWritable(f);
    if (s == QB_OK) s = SetNumber(*f->dict, set, &setNo);
    if (s == QB_OK) s = ReadId(id, f->dict->idLength, &key);
    int found = 0;
    if (s == QB_OK) s = f->backend->Lookup(key, &found);
    if (s != QB_OK) return s;
    if (!found || (setNo && found != setNo)) return QBERR_NOTFOUND;
    if (found <= static_cast<int>(f->dict->sets.size()) && f->dict->sets[found - 1].ownsMembers) {
      bool any = false;
      s = f->backend->HasMembers(key, &any);
      if (s != QB_OK) return s;
      if (any) return QBERR_HASMEMBERS;
    }
    return f->backend->Delete(key);
  });
}

short qbresetrec(short hfile, char* rec) {
  return Guarded(hfile, [&]() -> short {
    if (!FindFile(hfile)) return QBERR_BADHANDLE;
    const short s = CheckRec(rec);
    if (s == QB_OK) ClearAtts(rec);
    return s;
  });
}

char* qbcopyrec(const char* rec) {
  return GuardedPtr<char>(-1, [&](short* status) -> char* {
    *status = CheckRec(rec);
    if (*status != QB_OK) return nullptr;
    char* copy = CopyRec(rec);
    if (!copy) *status = QBERR_NOMEM;
    return copy;
  });
}

char* qbreleaserec(char* rec) {
  if (!rec) return nullptr;
  // Only buffers of ours are freed; anything else is left alone.
  if (CheckRec(rec) != QB_OK) {
    Note(-1, QBERR_BADREC);
    return nullptr;
  }
  // A small buffer made by a file's walk becomes that file's spare.
  const RecHeader* h = Header(rec);
  File* f = h->maker ? FindFile(static_cast<short>(h->maker - 1)) : nullptr;
  if (f && !f->spare && h->capacity <= kSpareLimit) {
    RetireRec(rec);
    f->spare = rec;
  } else {
    FreeRec(rec);
  }
  Note(-1, QB_OK);
  return nullptr;
}

short qbgetID(short hfile, const char* set, const char* rec, void* id) {
  return Guarded(hfile, [&]() -> short {
    if (!FindFile(hfile)) return QBERR_BADHANDLE;
    short s = CheckRec(rec);
    if (s == QB_OK && !id) s = QBERR_BADARG;
    if (s != QB_OK) return s;
    if (set && RecSet(rec) != set) return QBERR_NOTFOUND;
    const std::string_view key = RecId(rec);
    std::memcpy(id, key.data(), key.size());
    static_cast<char*>(id)[key.size()] = '\0';
    return QB_OK;
  });
}

short qbsetID(short hfile, char* rec, const char* set, const void* id) {
  return Guarded(hfile, [&]() -> short {
    const Dictionary* d = nullptr;
    if (const short open = DictionaryOf(hfile, &d)) return open;
    short s = CheckRec(rec);
    if (s != QB_OK) return s;
    const std::string name = set ? std::string(set) : std::string(RecSet(rec));
    if (d->Find(name) < 0) return QBERR_NOSET;
    std::string_view key;
    s = ReadId(id, d->idLength, &key);
    if (s != QB_OK) return s;
    const std::string copy(key);  // id may point into the record itself
    SetIdentity(rec, name, copy);
    Header(rec)->flags |= kRecFresh;
    return QB_OK;
  });
}

short qbgetsetname(const char* rec, char* set) {
  return Guarded(-1, [&]() -> short {
    short s = CheckRec(rec);
    if (s == QB_OK && !set) s = QBERR_BADARG;
    if (s == QB_OK) std::memcpy(set, Header(rec)->set, QB_SETNAMESIZE);
    return s;
  });
}

short qbgetowner(short hfile, const char* rec, void* ownerId) {
  return Guarded(hfile, [&]() -> short {
    const Dictionary* d = nullptr;
    if (const short open = DictionaryOf(hfile, &d)) return open;
    short s = CheckRec(rec);
    if (s == QB_OK && !ownerId) s = QBERR_BADARG;
    if (s == QB_OK && d->Find(RecSet(rec)) < 0) s = QBERR_NOSET;
    if (s != QB_OK) return s;
    const std::string_view owner = OwnerOf(*d, rec);
    if (owner.empty() || owner.size() > QB_MAXIDLEN) return QBERR_NOATT;
    std::memcpy(ownerId, owner.data(), owner.size());
    static_cast<char*>(ownerId)[owner.size()] = '\0';
    return QB_OK;
  });
}

short qbobjIDtosz(short hfile, const void* id, char* text) {
  return Guarded(hfile, [&]() -> short {
    const Dictionary* d = nullptr;
    if (const short open = DictionaryOf(hfile, &d)) return open;
    if (!text) return QBERR_BADARG;
    std::string_view key;
    const short s = ReadId(id, d->idLength, &key);
    if (s != QB_OK) return s;
    std::memmove(text, key.data(), key.size());
    text[key.size()] = '\0';
    return QB_OK;
  });
}

short qbobjIDfromsz(short hfile, void* id, const char* text) {
  return Guarded(hfile, [&]() -> short {
    const Dictionary* d = nullptr;
    if (const short open = DictionaryOf(hfile, &d)) return open;
    if (!id) return QBERR_BADARG;
    std::string_view key;
    const short s = ReadId(text, d->idLength, &key);
    if (s != QB_OK) return s;
    std::memmove(id, key.data(), key.size());
    static_cast<char*>(id)[key.size()] = '\0';
    return QB_OK;
  });
}

short qbsetfilter(short hfile, short kind, const char* set, const void* id, int len) {
  return Guarded(hfile, [&]() -> short {
    File* f;
    short s = OpenFileOf(hfile, &f);
    int setNo = 0;
    if (s == QB_OK) s = SetNumber(*f->dict, set, &setNo);
    if (s != QB_OK) return s;
    Walk walk;
    if (kind == QB_FILTER_NONE) {
      f->filterOn = false;
      return QB_OK;
    } else if (kind == QB_FILTER_SET) {
      if (!setNo) return QBERR_NOSET;
      if (len < 0 || (len > 0 && !id)) return QBERR_BADARG;
      const char* p = static_cast<const char*>(id);
      size_t n = 0;
      while (n < static_cast<size_t>(len) && n < static_cast<size_t>(f->dict->idLength) && p[n]) ++n;
      if (n > 0 && !IsIdText(std::string_view(p, n), f->dict->idLength)) return QBERR_BADID;
      walk.kind = Walk::kSet;
      walk.setNo = setNo;
      if (n > 0) walk.prefix.assign(p, n);
    } else if (kind == QB_FILTER_OWNER) {
      std::string_view owner;
      s = ReadId(id, f->dict->idLength, &owner);
      if (s != QB_OK) return s;
      walk.kind = Walk::kOwner;
      walk.setNo = setNo;
      walk.owner.assign(owner.data(), owner.size());
    } else {
      return QBERR_BADARG;
    }
    f->filter = walk;
    f->filterOn = true;
    f->seekOn = false;
    return QB_OK;
  });
}

short qbresetfilter(short hfile) {
  return Guarded(hfile, [&]() -> short {
    File* f = FindFile(hfile);
    if (!f) return QBERR_BADHANDLE;
    f->filterOn = false;
    return QB_OK;
  });
}

short qbdeleteatt(short hfile, const char* set, const void* id, short att) {
  return Guarded(hfile, [&]() -> short {
    File* f;
    int setNo = 0;
    std::string_view key;
    short s = OpenFileOf(hfile, &f);
    if (s == QB_OK) s = CheckWritable(f);
    if (s == QB_OK) s = SetNumber(*f->dict, set, &setNo);
    if (s == QB_OK) s = ReadId(id, f->dict->idLength, &key);
    Row row;
    if (s == QB_OK) s = f->backend->Get(key, &row);
    if (s != QB_OK) return s;
    if (setNo && row.setNo != setNo) return QBERR_NOTFOUND;
    // The row's views live only until the next backend call.
    const std::string storedId(key);
    std::string area(row.data);
    std::string owner(row.owner);
    const int storedSet = row.setNo;
    s = DropAttFromArea(&area, att);
    if (s != QB_OK) return s;
    if (storedSet >= 1 && storedSet <= static_cast<int>(f->dict->sets.size())) {
      const SetDef& def = f->dict->sets[storedSet - 1];
      if (def.ownerSet >= 0 && def.ownerAtt == att) owner.clear();
    }
    return f->backend->Put(storedId, storedSet, owner, area, false);
  });
}
