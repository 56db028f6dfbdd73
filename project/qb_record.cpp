#include "project/qb_record.h"

#include <cstdlib>
#include <cstring>

namespace qb {

namespace {

const uint32_t kRecMagic = 0x31524251;   // "QBR1"
const uint32_t kDeadMagic = 0x44514244;  // "DBQD": a released buffer
const uint32_t kCheckSalt = 0x5A17C0DE;
const size_t kEntryHead = 5;
const size_t kFreshRoom = 176;

uint32_t CheckWord(const RecHeader* h) { return h->magic ^ h->capacity ^ h->used ^ kCheckSalt; }
void Seal(RecHeader* h) { h->check = CheckWord(h); }

uint16_t Get16(const unsigned char* p) { return static_cast<uint16_t>(p[0] | (p[1] << 8)); }
void Put16(unsigned char* p, uint16_t v) {
  p[0] = static_cast<unsigned char>(v);
  p[1] = static_cast<unsigned char>(v >> 8);
}

void CopyField(char* dst, size_t room, std::string_view text) {
  std::memset(dst, 0, room);
  std::memcpy(dst, text.data(), text.size() < room ? text.size() : room - 1);
}

// Grows the buffer so that it holds `need` bytes; false (buffer untouched)
// when memory runs out.
bool Reserve(char** rec, size_t need) {
  RecHeader* h = Header(*rec);
  if (need <= h->capacity) return true;
  if (need > 0x7FFFFFFF) return false;
  size_t cap = h->capacity * 2;
  if (cap < need) cap = need;
  char* grown = static_cast<char*>(std::realloc(*rec, cap));
  if (!grown) return false;
  *rec = grown;
  h = Header(grown);
  h->capacity = static_cast<uint32_t>(cap);
  Seal(h);
  return true;
}

// Where an attribute's entry is, or where it would go: offset in the area.
size_t Locate(std::string_view area, short number, bool* found) {
  *found = false;
  AttReader reader(area);
  AttView a;
  size_t offset = 0;
  while (reader.Next(&a)) {
    if (a.number == number) {
      *found = true;
      return offset;
    }
    if (a.number > number) return offset;
    offset = static_cast<size_t>(a.data - reinterpret_cast<const unsigned char*>(area.data())) + a.size;
  }
  return offset;
}

size_t EntrySize(const char* entry) { return kEntryHead + Get16(reinterpret_cast<const unsigned char*>(entry) + 3); }

// Writes header and area into a buffer whose capacity is set already.
void Fill(char* rec, std::string_view set, std::string_view id, std::string_view data, uint32_t flags,
          uint32_t maker) {
  RecHeader* h = Header(rec);
  h->magic = kRecMagic;
  h->used = static_cast<uint32_t>(sizeof(RecHeader) + data.size());
  h->flags = flags;
  h->maker = maker;
  CopyField(h->set, sizeof h->set, set);
  CopyField(h->id, sizeof h->id, id);
  Seal(h);
  if (!data.empty()) std::memcpy(rec + sizeof(RecHeader), data.data(), data.size());
}

}  // namespace

short CheckRec(const char* rec) {
  if (!rec) return QBERR_BADARG;
  const RecHeader* h = Header(rec);
  if (h->magic != kRecMagic) return QBERR_BADREC;
  if (h->check != CheckWord(h) || h->used < sizeof(RecHeader) || h->used > h->capacity) return QBERR_BADREC;
  if (h->set[QB_SETNAMESIZE - 1] != 0 || h->id[sizeof h->id - 1] != 0) return QBERR_BADREC;
  return QB_OK;
}

char* NewRec(std::string_view set, std::string_view id, std::string_view data, uint32_t flags) {
  const size_t used = sizeof(RecHeader) + data.size();
  if (used > 0x7FFFFFFF) return nullptr;
  // A fresh record is about to be filled: room for a few attributes saves
  // growing it at each one.
  const size_t capacity = (flags & kRecFresh) ? used + kFreshRoom : used;
  char* rec = static_cast<char*>(std::malloc(capacity));
  if (!rec) return nullptr;
  Header(rec)->capacity = static_cast<uint32_t>(capacity);
  Fill(rec, set, id, data, flags, 0);
  return rec;
}

char* NewRecReusing(char** spare, std::string_view set, std::string_view id, std::string_view data, uint32_t maker) {
  const size_t used = sizeof(RecHeader) + data.size();
  char* rec = *spare;
  if (!rec || Header(rec)->capacity < used) {
    rec = NewRec(set, id, data, 0);
    if (rec) Header(rec)->maker = maker;
    return rec;
  }
  *spare = nullptr;
  Fill(rec, set, id, data, 0, maker);
  return rec;
}

void RetireRec(char* rec) { Header(rec)->magic = kDeadMagic; }

char* CopyRec(const char* rec) {
  const RecHeader* h = Header(rec);
  char* copy = static_cast<char*>(std::malloc(h->used));
  if (!copy) return nullptr;
  std::memcpy(copy, rec, h->used);
  RecHeader* c = Header(copy);
  c->capacity = h->used;
  Seal(c);
  return copy;
}

void FreeRec(char* rec) {
  // A stale pointer used after this is refused as long as the memory has
  // not been handed out again.
  Header(rec)->magic = kDeadMagic;
  std::free(rec);
}

std::string_view RecSet(const char* rec) { return std::string_view(Header(rec)->set); }
std::string_view RecId(const char* rec) { return std::string_view(Header(rec)->id); }
std::string_view RecData(const char* rec) {
  return std::string_view(rec + sizeof(RecHeader), Header(rec)->used - sizeof(RecHeader));
}

void SetIdentity(char* rec, std::string_view set, std::string_view id) {
  RecHeader* h = Header(rec);
  CopyField(h->set, sizeof h->set, set);
  CopyField(h->id, sizeof h->id, id);
}

void ClearAtts(char* rec) {
  RecHeader* h = Header(rec);
  h->used = sizeof(RecHeader);
  Seal(h);
}

bool AttReader::Next(AttView* att) {
  if (damaged_ || at_ >= area_.size()) return false;
  const size_t left = area_.size() - at_;
  const unsigned char* p = reinterpret_cast<const unsigned char*>(area_.data()) + at_;
  if (left < kEntryHead) {
    damaged_ = true;
    return false;
  }
  const int number = Get16(p);
  const uint32_t size = Get16(p + 3);
  if (number <= last_ || number > 32767 || size > QB_MAXATTSIZE || size > left - kEntryHead) {
    damaged_ = true;
    return false;
  }
  att->number = static_cast<short>(number);
  att->type = p[2];
  att->size = size;
  att->data = p + kEntryHead;
  last_ = number;
  at_ += kEntryHead + size;
  return true;
}

bool SoundArea(std::string_view area) {
  AttReader reader(area);
  AttView a;
  while (reader.Next(&a)) {
  }
  return !reader.damaged();
}

bool FindAtt(const char* rec, short number, AttView* att) {
  AttReader reader(RecData(rec));
  while (reader.Next(att)) {
    if (att->number == number) return true;
    if (att->number > number) return false;
  }
  return false;
}

short PutAtt(char** rec, short number, short type, const void* data, uint32_t size) {
  if (number < 1 || size > QB_MAXATTSIZE || type < 0 || type > 255) return QBERR_BADARG;
  if (!SoundArea(RecData(*rec))) return QBERR_BADREC;
  bool found = false;
  const size_t offset = Locate(RecData(*rec), number, &found);
  const size_t entry = kEntryHead + size;
  const size_t oldEntry = found ? EntrySize(*rec + sizeof(RecHeader) + offset) : 0;
  const size_t used = Header(*rec)->used;
  const size_t newUsed = used - oldEntry + entry;
  // data may point into this very record, which Reserve and the move below
  // may shift: such a value is copied first.
  const char* from = static_cast<const char*>(data);
  std::string inside;
  if (from && from >= *rec && from < *rec + used) {
    inside.assign(from, size);
    from = inside.data();
  }
  if (!Reserve(rec, newUsed)) return QBERR_NOMEM;
  char* area = *rec + sizeof(RecHeader);
  const size_t tail = used - sizeof(RecHeader) - offset - oldEntry;
  std::memmove(area + offset + entry, area + offset + oldEntry, tail);
  unsigned char* p = reinterpret_cast<unsigned char*>(area + offset);
  Put16(p, static_cast<uint16_t>(number));
  p[2] = static_cast<unsigned char>(type);
  Put16(p + 3, static_cast<uint16_t>(size));
  if (size) std::memcpy(p + kEntryHead, from, size);
  RecHeader* h = Header(*rec);
  h->used = static_cast<uint32_t>(newUsed);
  Seal(h);
  return QB_OK;
}

short DropAtt(char** rec, short number) {
  if (!SoundArea(RecData(*rec))) return QBERR_BADREC;
  bool found = false;
  const size_t offset = Locate(RecData(*rec), number, &found);
  if (!found) return QBERR_NOATT;
  char* area = *rec + sizeof(RecHeader);
  const size_t entry = EntrySize(area + offset);
  RecHeader* h = Header(*rec);
  const size_t areaSize = h->used - sizeof(RecHeader);
  std::memmove(area + offset, area + offset + entry, areaSize - offset - entry);
  h->used -= static_cast<uint32_t>(entry);
  Seal(h);
  return QB_OK;
}

short DropAttFromArea(std::string* area, short number) {
  if (!SoundArea(*area)) return QBERR_CORRUPT;
  bool found = false;
  const size_t offset = Locate(*area, number, &found);
  if (!found) return QBERR_NOATT;
  area->erase(offset, EntrySize(area->data() + offset));
  return QB_OK;
}

}  // namespace qb
