// Record buffers: the self-describing blocks that callers hold as char*.
//
// A buffer is a fixed header followed by the attribute area. The header
// opens with a magic number and a check word so that a pointer that is
// not one of ours (or was released) is refused instead of read as one.
// The attribute area is exactly what the file stores for the record:
// entries of
//   u16 number, u8 type, u16 size, then size bytes,
// little-endian and ascending by number. Loading or saving a record is so
// one copy; values are not aligned, so callers copy them out.
#ifndef QUILTOOL_PROJECT_QB_RECORD_H
#define QUILTOOL_PROJECT_QB_RECORD_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "qb.h"

namespace qb {

struct RecHeader {
  uint32_t magic;
  uint32_t check;  // magic ^ capacity ^ used ^ kCheckSalt
  uint32_t capacity;
  uint32_t used;  // header + attribute area
  uint32_t flags;
  uint32_t maker;  // handle + 1 of the file whose walk made it, 0 for none
  char set[QB_SETNAMESIZE];
  char id[QB_IDSIZE + 4];  // zero-terminated
};
static_assert(sizeof(RecHeader) == 80, "the documented layout");

// flags
const uint32_t kRecFresh = 1;  // not saved under this identity yet

// QB_OK, QBERR_BADARG for null, QBERR_BADREC for anything not ours.
short CheckRec(const char* rec);
// A new buffer for set and id holding a copy of the attribute area (which
// is not checked here). Null when memory runs out.
char* NewRec(std::string_view set, std::string_view id, std::string_view data, uint32_t flags);
// The same in *spare when that released buffer is big enough (it is then
// taken), else in new memory.
char* NewRecReusing(char** spare, std::string_view set, std::string_view id, std::string_view data, uint32_t maker);
// Marks a buffer released without freeing it, to keep as a spare.
void RetireRec(char* rec);
char* CopyRec(const char* rec);
void FreeRec(char* rec);

inline const RecHeader* Header(const char* rec) { return reinterpret_cast<const RecHeader*>(rec); }
inline RecHeader* Header(char* rec) { return reinterpret_cast<RecHeader*>(rec); }
std::string_view RecSet(const char* rec);
std::string_view RecId(const char* rec);
std::string_view RecData(const char* rec);
void SetIdentity(char* rec, std::string_view set, std::string_view id);
void ClearAtts(char* rec);

// One entry of an attribute area.
struct AttView {
  short number;
  short type;
  const unsigned char* data;
  uint32_t size;
};

// Walks an attribute area entry by entry, checking every bound.
class AttReader {
 public:
  explicit AttReader(std::string_view area) : area_(area) {}
  // False at the end or at a damaged entry (then damaged() is true).
  bool Next(AttView* att);
  bool damaged() const { return damaged_; }

 private:
  std::string_view area_;
  size_t at_ = 0;
  bool damaged_ = false;
  int last_ = 0;
};

// Every entry of the area is whole and in order.
bool SoundArea(std::string_view area);
// The attribute in a (checked) record, false when absent or damaged.
bool FindAtt(const char* rec, short number, AttView* att);
// Inserts or replaces; *rec may move. QBERR_NOMEM leaves the record as it was.
short PutAtt(char** rec, short number, short type, const void* data, uint32_t size);
// QBERR_NOATT when there is no such attribute.
short DropAtt(char** rec, short number);
// The same on a bare attribute area (a stored record's).
short DropAttFromArea(std::string* area, short number);

}  // namespace qb

#endif
