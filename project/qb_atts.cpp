// Attributes of record buffers.
#include <cstring>
#include <cwchar>

#include "project/qb_engine.h"
#include "project/qb_record.h"
#include "project/qb_text.h"

using namespace qb;

namespace {

// A handle and a record buffer of ours.
short CheckCall(short hfile, const char* rec) {
  if (!FindFile(hfile)) return QBERR_BADHANDLE;
  return CheckRec(rec);
}

void* CopyOut(const AttView& a, void* buffer, short* size, short* status) {
  if (a.size > static_cast<uint32_t>(*size)) {
    *size = static_cast<short>(a.size);
    *status = QBERR_BUFSIZE;
    return nullptr;
  }
  if (a.size) std::memcpy(buffer, a.data, a.size);
  *size = static_cast<short>(a.size);
  return buffer;
}

// Finds the first attribute numbered above `after` (0: the first one).
bool AttAfter(const char* rec, short after, AttView* a) {
  AttReader reader(RecData(rec));
  while (reader.Next(a)) {
    if (a->number > after) return true;
  }
  return false;
}

// Inserts a value after checking it against the record's set.
short Insert(short hfile, char** rec, short att, const void* data, size_t size, short wantType) {
  const Dictionary* d = nullptr;
  if (const short open = DictionaryOf(hfile, &d)) return open;
  if (!rec) return QBERR_BADARG;
  short s = CheckRec(*rec);
  if (s != QB_OK) return s;
  const int set = d->Find(RecSet(*rec));
  if (set < 0) return QBERR_NOSET;
  const AttDef* decl = d->sets[set].Find(att);
  if (!decl || (wantType >= 0 && decl->type != wantType)) return QBERR_BADATT;
  if (size > QB_MAXATTSIZE || (size > 0 && !data)) return QBERR_BADARG;
  s = CheckAttValue(*d, decl->type, data, size);
  if (s != QB_OK) return s;
  return PutAtt(rec, att, decl->type, data, static_cast<uint32_t>(size));
}

}  // namespace

void* qbfindatt(short hfile, const char* rec, short att, short* size) {
  return GuardedPtr<void>(hfile, [&](short* status) -> void* {
    *status = CheckCall(hfile, rec);
    AttView a;
    if (*status == QB_OK && !FindAtt(rec, att, &a)) *status = QBERR_NOATT;
    if (*status != QB_OK) return nullptr;
    if (size) *size = static_cast<short>(a.size);
    return const_cast<unsigned char*>(a.data);
  });
}

void* qbcopyatt(short hfile, const char* rec, short att, void* buffer, short* size) {
  return GuardedPtr<void>(hfile, [&](short* status) -> void* {
    *status = CheckCall(hfile, rec);
    if (*status == QB_OK && (!buffer || !size || *size < 0)) *status = QBERR_BADARG;
    AttView a;
    if (*status == QB_OK && !FindAtt(rec, att, &a)) *status = QBERR_NOATT;
    return *status == QB_OK ? CopyOut(a, buffer, size, status) : nullptr;
  });
}

void* qbcopyfirstatt(short hfile, const char* rec, short* att, void* buffer, short* size) {
  return GuardedPtr<void>(hfile, [&](short* status) -> void* {
    *status = CheckCall(hfile, rec);
    if (*status == QB_OK && (!att || !buffer || !size || *size < 0)) *status = QBERR_BADARG;
    AttView a;
    if (*status == QB_OK && !AttAfter(rec, 0, &a)) *status = QBERR_NOATT;
    if (*status != QB_OK) return nullptr;
    *att = a.number;
    return CopyOut(a, buffer, size, status);
  });
}

void* qbcopynextatt(short hfile, const char* rec, short* att, void* buffer, short* size) {
  return GuardedPtr<void>(hfile, [&](short* status) -> void* {
    *status = CheckCall(hfile, rec);
    if (*status == QB_OK && (!att || !buffer || !size || *size < 0)) *status = QBERR_BADARG;
    AttView a;
    if (*status == QB_OK && !AttAfter(rec, *att, &a)) *status = QBERR_NOATT;
    if (*status != QB_OK) return nullptr;
    *att = a.number;
    return CopyOut(a, buffer, size, status);
  });
}

short qbinsertatt(short hfile, char** rec, short att, const void* data, short size) {
  return Guarded(hfile, [&]() -> short {
    if (size < 0) return FindFile(hfile) ? static_cast<short>(QBERR_BADARG) : static_cast<short>(QBERR_BADHANDLE);
    return Insert(hfile, rec, att, data, static_cast<size_t>(size), -1);
  });
}

short qbremoveatt(short hfile, char** rec, short att) {
  return Guarded(hfile, [&]() -> short {
    if (!rec) return FindFile(hfile) ? static_cast<short>(QBERR_BADARG) : static_cast<short>(QBERR_BADHANDLE);
    const short s = CheckCall(hfile, *rec);
    return s == QB_OK ? DropAtt(rec, att) : s;
  });
}

wchar_t* qbcopywsz(short hfile, const char* rec, short att, wchar_t* buffer, int size, int flags) {
  return GuardedPtr<wchar_t>(hfile, [&](short* status) -> wchar_t* {
    *status = CheckCall(hfile, rec);
    if (*status == QB_OK && (!buffer || size < 1)) *status = QBERR_BADARG;
    AttView a;
    if (*status == QB_OK && !FindAtt(rec, att, &a)) *status = QBERR_NOATT;
    if (*status == QB_OK && a.type != QB_ATT_WSZ) *status = QBERR_BADATT;
    if (*status != QB_OK) return nullptr;
    std::wstring text = Utf16leToWide(a.data, a.size);
    if (flags & QB_WSZ_TRIM) {
      while (!text.empty() && (text.back() == L' ' || text.back() == L'\t')) text.pop_back();
    }
    if (text.size() + 1 > static_cast<size_t>(size)) {
      *status = QBERR_BUFSIZE;
      return nullptr;
    }
    std::wmemcpy(buffer, text.data(), text.size());
    buffer[text.size()] = L'\0';
    return buffer;
  });
}

short qbinsertwsz(short hfile, char** rec, short att, const wchar_t* text, int len) {
  return Guarded(hfile, [&]() -> short {
    if (!text) return FindFile(hfile) ? static_cast<short>(QBERR_BADARG) : static_cast<short>(QBERR_BADHANDLE);
    const size_t n = len < 0 ? std::wcslen(text) : static_cast<size_t>(len);
    const std::string bytes = WideToUtf16le(text, n);
    return Insert(hfile, rec, att, bytes.data(), bytes.size(), QB_ATT_WSZ);
  });
}
