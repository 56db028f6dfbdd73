#include "project/qb_engine.h"

#include <cstdlib>
#include <vector>

namespace qb {

FileTable g_files;

File::~File() { std::free(spare); }

namespace {

const short kMaxHandles = 32767;

}  // namespace

short AddFile(std::unique_ptr<File> f) {
  FileTable& t = g_files;
  // Handles are handed out round the table rather than lowest-first, so a
  // handle that was just freed is not at once another file's: a caller
  // holding a stale handle gets QBERR_BADHANDLE instead of someone's data.
  const size_t n = t.files.size();
  auto take = [&](size_t i) {
    f->handle = static_cast<short>(i);
    t.files[i] = std::move(f);
    t.next = static_cast<short>((i + 1) % kMaxHandles);
    return static_cast<short>(i);
  };
  for (size_t i = static_cast<size_t>(t.next); i < n; ++i)
    if (!t.files[i]) return take(i);
  if (n < static_cast<size_t>(kMaxHandles)) {
    t.files.emplace_back();
    return take(n);
  }
  for (size_t i = 0; i < n; ++i)
    if (!t.files[i]) return take(i);
  return QBERR_TOOMANY;
}

void RemoveFile(short hfile) {
  FileTable& t = g_files;
  if (hfile >= 0 && static_cast<size_t>(hfile) < t.files.size()) t.files[hfile].reset();
  ForgetFileDictionaries(hfile);
}

short LastError(short hfile) {
  const File* f = FindFile(hfile);
  return f ? f->lastError : g_files.lastError;
}

const Dictionary* DictOf(const File* f) {
  if (f->dict) return f->dict.get();
  return f->createDict.get();
}

bool IsIdText(std::string_view id, short idLength) {
  if (id.empty() || id.size() > static_cast<size_t>(idLength)) return false;
  for (char c : id) {
    if (c < 0x21 || c > 0x7E) return false;
  }
  return true;
}

short ReadId(const void* id, short idLength, std::string_view* out) {
  if (!id) return QBERR_BADARG;
  if (idLength < 1 || idLength > QB_MAXIDLEN) return QBERR_BADID;
  // Ids are zero-terminated: reading one byte past the longest id tells a
  // too-long id from a full-length one without running off the buffer.
  const char* p = static_cast<const char*>(id);
  size_t n = 0;
  while (n <= static_cast<size_t>(idLength) && p[n]) ++n;
  const std::string_view text(p, n);
  if (!IsIdText(text, idLength)) return QBERR_BADID;
  *out = text;
  return QB_OK;
}

short OpenFileOf(short hfile, File** f) {
  *f = FindFile(hfile);
  if (!*f) return QBERR_BADHANDLE;
  return (*f)->backend ? QB_OK : QBERR_NOTOPEN;
}

short CheckWritable(const File* f) {
  return f->mode == QB_MODE_QUICKUPDATE || f->mode == QB_MODE_UPDATE ? QB_OK : QBERR_READONLY;
}

short CheckAttValue(const Dictionary& d, short type, const void* data, size_t size) {
  switch (type) {
    case QB_ATT_LONG:
      return size == 4 ? QB_OK : QBERR_BADATT;
    case QB_ATT_DOUBLE:
      return size == 8 ? QB_OK : QBERR_BADATT;
    case QB_ATT_WSZ:
      return size % 2 == 0 ? QB_OK : QBERR_BADATT;
    case QB_ATT_ID:
      return IsIdText(std::string_view(static_cast<const char*>(data), size), d.idLength) ? QB_OK : QBERR_BADATT;
    default:
      return QB_OK;
  }
}

}  // namespace qb

short qbgetlasterror(short hfile) { return qb::LastError(hfile); }

const char* qbstatustext(short status) {
  switch (status) {
    case QB_OK: return "ok";
    case QBWARN_NEWFILE: return "the file does not exist yet";
    case QBERR_BADHANDLE: return "no such handle";
    case QBERR_NOMEM: return "out of memory";
    case QBERR_BADARG: return "bad argument";
    case QBERR_NOSET: return "no such set in the dictionary";
    case QBERR_BADREC: return "not a record buffer of this engine";
    case QBERR_NOTFOUND: return "no such record";
    case QBERR_DUPLICATE: return "the id belongs to a record of another set";
    case QBERR_NOTOPEN: return "the file is not open";
    case QBERR_ALREADYOPEN: return "the file is open already";
    case QBERR_READONLY: return "the file is open for reading only";
    case QBERR_NOTQBFILE: return "not a project database";
    case QBERR_BADSTREAM: return "truncated or damaged stream";
    case QBERR_IO: return "the file system refused";
    case QBERR_BUSY: return "the file is busy in another process";
    case QBERR_QUICKMODE: return "not possible in the file's quick mode";
    case QBERR_NOOWNER: return "the owner does not exist";
    case QBERR_HASMEMBERS: return "the record still has members";
    case QBERR_BADID: return "not a valid object id";
    case QBERR_NOATT: return "no such attribute in the record";
    case QBERR_BADATT: return "attribute not declared for the set, or of the wrong size";
    case QBERR_EXISTS: return "exists already";
    case QBERR_NOFILE: return "no such file";
    case QBERR_CORRUPT: return "the file is damaged";
    case QBERR_VERSION: return "written by a newer engine";
    case QBERR_BADDDQ: return "the dictionary does not hold";
    case QBERR_TOOMANY: return "out of handles";
    case QBERR_BUFSIZE: return "the buffer is too small";
    default: return "unknown status";
  }
}
