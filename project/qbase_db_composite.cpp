// QBaseDb operations made of several engine calls.
#include <cstdio>
#include <cstring>
#include <new>

#include "core/boundary.h"
#include "gwframe.h"
#include "project/qbase_db_impl.h"
#include "qb.h"

namespace {

const int kIdBuffer = 20;
const short kCounterLimit = 32767;

}  // namespace

short QBaseDb::saveRecWithAhm(const char* rec, const void* data, long size) {
  if (size < 1) {
    if (saveRec(rec) == QB_OK) keep(qbdeleteahm(impl_->handle, rec));
  } else {
    keep(qbsaverecwithahm(impl_->handle, rec, data, size));
  }
  return impl_->lastStatus;
}

short QBaseDb::deleteAllRecs(const char* ownerId) {
  short status = QB_OK;
  char* rec = firstMember(ownerId);
  while (rec) {
    char id[kIdBuffer];
    std::memset(id, 0, sizeof id);
    getID(nullptr, rec, id);
    // Step on before deleting: the walk goes on from a record still there.
    char* next = nextMember(rec);
    releaseRec(rec);
    status = deleteRec(nullptr, id);
    if (status != QB_OK) {
      releaseRec(next);
      break;
    }
    rec = next;
  }
  return status;
}

std::vector<astr_pre<32> > QBaseDb::getObjIdsForOwner(const char* set, short limit, const char* ownerId) const {
  std::vector<astr_pre<32> > ids;
  QuickMode scope(*this, QuickMode::Read, true);
  char* rec = firstMember(ownerId);
  // Out of memory keeps the ids gathered so far and says so in the status.
  const bool whole = qt::NoThrow<bool>("QBaseDb::getObjIdsForOwner", false, [&] {
    while (rec && (limit < 1 || ids.size() < static_cast<size_t>(limit))) {
      char id[kIdBuffer];
      char text[kIdBuffer];
      std::memset(id, 0, sizeof id);
      std::memset(text, 0, sizeof text);
      // Members of other sets answer "not found" here and are passed over.
      if (getID(set, rec, id) == QB_OK && objIDtosz(id, text) == QB_OK) ids.push_back(astr_pre<32>(text));
      char* next = nextMember(rec);
      releaseRec(rec);
      rec = next;
    }
    return true;
  });
  if (!whole) keep(QBERR_NOMEM);
  releaseRec(rec);
  return ids;
}

short QBaseDb::deleteRecsForOwner(const char* set, short limit, const char* ownerId) {
  QuickMode scope(*this, QuickMode::Update, true);
  const std::vector<astr_pre<32> > ids = getObjIdsForOwner(set, limit, ownerId);
  for (const astr_pre<32>& text : ids) {
    char id[kIdBuffer];
    std::memset(id, 0, sizeof id);
    objIdFromSz(id, text.c_str());
    deleteRec(set, id);
  }
  return QB_OK;
}

short QBaseDb::findNextFreeObjIdCounter(const char* set, int width, char* outId, short start) const {
  short counter = start < 1 ? static_cast<short>(1) : start;
  if (counter >= kCounterLimit) return -1;
  QuickMode scope(*this, QuickMode::Read, true);
  char id[kIdBuffer];
  for (;;) {
    std::memset(id, 0, sizeof id);
    // Width doubles as precision, so the number is zero-padded to width digits.
    std::snprintf(id, sizeof id, "%*.*d", width, width, static_cast<int>(counter));
    if (existRec(set, id) == QB_ABSENT) break;
    if (++counter >= kCounterLimit) return -1;
  }
  if (outId) QN_strcpy_s(outId, kIdBuffer, id);
  return counter;
}
