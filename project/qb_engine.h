// Shared internals of the qb* functions: the file-handle table, the last
// error bookkeeping and the guards that keep exceptions inside the library.
#ifndef QUILTOOL_PROJECT_QB_ENGINE_H
#define QUILTOOL_PROJECT_QB_ENGINE_H

#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/boundary.h"
#include "project/qb_backend.h"
#include "project/qb_dictionary.h"
#include "qb.h"

namespace qb {

struct File {
  File() = default;
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File();
  short handle = -1;
  std::wstring path;
  std::shared_ptr<Dictionary> createDict;  // what qbcreatefile writes
  std::shared_ptr<Dictionary> dict;        // the open file's own
  std::unique_ptr<Backend> backend;        // null while closed
  short mode = -1;                         // QB_MODE_*, -1 closed
  bool writable = false;                   // opened for update
  bool memory = false;                     // read from a stream
  bool warnings = true;
  long timeoutMs = 30000;
  short lastError = 0;
  bool filterOn = false;
  Walk filter;
  bool seekOn = false;
  std::string seekKey;
  std::string ahm;  // qbgetahm's block
  short ddqHandle = -1;  // what qbgetddq handed out for dict
  // A released record buffer kept for the next one this file's walk makes:
  // a walk releases one buffer for every one it makes.
  char* spare = nullptr;
};

// The file-handle table. Every call looks its handle up here and notes its
// outcome, so the look-ups are inline.
struct FileTable {
  std::vector<std::unique_ptr<File>> files;
  short next = 0;  // where the search for a free handle starts
  short lastError = 0;
};
extern FileTable g_files;

// The file of a handle, null for a handle that is not in use.
inline File* FindFile(short hfile) {
  if (hfile < 0 || static_cast<size_t>(hfile) >= g_files.files.size()) return nullptr;
  return g_files.files[static_cast<size_t>(hfile)].get();
}
// A new handle for f, or QBERR_TOOMANY.
short AddFile(std::unique_ptr<File> f);
void RemoveFile(short hfile);

// Records the outcome of a call (per handle when it is valid, and
// process-wide) and hands the status back. Answers and warnings count as
// success.
inline short Note(short hfile, short status) {
  const short error = status < 0 ? status : static_cast<short>(QB_OK);
  g_files.lastError = error;
  if (File* f = FindFile(hfile)) f->lastError = error;
  return status;
}
short LastError(short hfile);

// The dictionary a handle works with: the open file's, else the one given
// for creating it.
const Dictionary* DictOf(const File* f);

// The dictionary of an open file: QB_OK, or why there is none
// (QBERR_BADHANDLE, QBERR_NOTOPEN).
inline short DictionaryOf(short hfile, const Dictionary** d) {
  const File* f = FindFile(hfile);
  *d = f ? DictOf(f) : nullptr;
  return !f ? QBERR_BADHANDLE : !*d ? QBERR_NOTOPEN : QB_OK;
}

// An object id from a caller's buffer: the bytes up to the first zero, at
// most idLength of them; QBERR_BADID when empty, too long or not text.
short ReadId(const void* id, short idLength, std::string_view* out);
bool IsIdText(std::string_view id, short idLength);

// The open file of a handle: QBERR_BADHANDLE / QBERR_NOTOPEN otherwise.
short OpenFileOf(short hfile, File** f);
// QBERR_READONLY unless the file is open for writing and outside a quick read.
short CheckWritable(const File* f);
// Whether an attribute value fits its type: QB_OK or QBERR_BADATT.
// The engine's full check of an open file: the storage's own integrity and
// every record against the dictionary; each problem is one line.
short CheckFile(File* f, std::vector<std::string>* problems);
short CheckAttValue(const Dictionary& d, short type, const void* data, size_t size);

// The status an exported call answers when its body threw.
inline short FailureStatus(bool outOfMemory) { return outOfMemory ? QBERR_NOMEM : QBERR_IO; }

// Runs f behind the library's boundary and notes the outcome.
template <class F>
short Guarded(short hfile, F&& f) {
  return Note(hfile, qt::NoThrowWith<short>("record engine", FailureStatus, std::forward<F>(f)));
}

// The same for calls that answer a pointer: f(&status) gives the result,
// which is null whenever status is an error.
template <class T, class F>
T* GuardedPtr(short hfile, F&& f) {
  short status = QB_OK;
  T* result = qt::NoThrowWith<T*>(
      "record engine",
      [&](bool outOfMemory) -> T* {
        status = FailureStatus(outOfMemory);
        return nullptr;
      },
      [&]() -> T* { return f(&status); });
  if (status < 0) result = nullptr;
  Note(hfile, status);
  return result;
}

}  // namespace qb

#endif
