// The SQLite file behind one root of the Linux settings store: finding,
// creating and marking it, telling our store from a damaged file or another
// program's database, the journal mode, transactions and the change counter
// with the read cache it guards. The registry-shaped key operations on top
// are in regstore_platform_posix.cpp.
//
// Several processes of the suite use one store at once, so every change is
// its own transaction, committed before it is reported as done (or one
// transaction for a whole write group). A local store runs in WAL mode, so
// that readers never wait for a writer; WAL needs memory shared between the
// processes of one host, so on a network mount (and for the machine root,
// which ordinary users can only read) the store keeps a rollback journal.
//
// Reads are answered from a cache in the process while the store's change
// counter (regstore_cache_posix.h) says that nobody has written since; the
// counter needs memory shared between processes, so only a WAL store on a
// local disk is cached.
#ifndef QUILTOOL_SETTINGS_SQLITE_STORE_POSIX_H
#define QUILTOOL_SETTINGS_SQLITE_STORE_POSIX_H

#include <sqlite3.h>
#include <sys/types.h>

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "qn_wintypes.h"
#include "settings/regstore.h"
#include "settings/regstore_cache_posix.h"

namespace qt_reg {
namespace sqlite_store {

const size_t kMaxKeyNameLength = 255;
const size_t kMaxValueNameLength = 16383;

// Texts as the store keeps them (UTF-8), and names folded as the registry
// compares them: character by character, upper-cased.
std::string Utf8(const std::wstring& w);
std::wstring Wide(const char* s, int n);
std::string Fold(const std::wstring& w);

// The registry error for a SQLite result.
long FromSqlite(int rc);

// A prepared statement in use; reset when the scope ends so that no read
// transaction stays open behind the caller's back.
class Query {
 public:
  explicit Query(sqlite3_stmt* s) : s_(s) {}
  ~Query() {
    sqlite3_reset(s_);
    sqlite3_clear_bindings(s_);
  }
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;
  Query& bind(int i, sqlite3_int64 v) {
    sqlite3_bind_int64(s_, i, v);
    return *this;
  }
  Query& bind(int i, const std::string& v) {
    sqlite3_bind_text(s_, i, v.data(), static_cast<int>(v.size()), SQLITE_TRANSIENT);
    return *this;
  }
  Query& bindBlob(int i, const BYTE* data, DWORD size) {
    sqlite3_bind_blob(s_, i, size ? data : reinterpret_cast<const void*>(""), static_cast<int>(size), SQLITE_TRANSIENT);
    return *this;
  }
  int step() { return sqlite3_step(s_); }
  sqlite3_int64 integer(int col) const { return sqlite3_column_int64(s_, col); }
  std::wstring text(int col) const {
    return Wide(reinterpret_cast<const char*>(sqlite3_column_text(s_, col)), sqlite3_column_bytes(s_, col));
  }
  void blob(int col, std::vector<BYTE>* out) const {
    const BYTE* p = static_cast<const BYTE*>(sqlite3_column_blob(s_, col));
    const int n = sqlite3_column_bytes(s_, col);
    out->assign(p, p + (p && n > 0 ? n : 0));
  }

 private:
  sqlite3_stmt* s_;
};

// The statements of the key operations, prepared once per open.
enum Statement {
  kFindChild,
  kInsertKey,
  kKeyExists,
  kHasChildren,
  kGetValue,
  kSetValue,
  kDeleteValue,
  kDeleteValues,
  kDeleteKeyRow,
  kChildNames,
  kValueNames,
  kNthChild,
  kNthValue,
  kBeginRead,
  kCommitRead,
  kStatementCount
};

// Names the current read group; changes whenever a group ends or a write
// may have changed what a group saw.
extern unsigned long g_snapshot;

class Store {
 public:
  explicit Store(bool machine) : machine_(machine) {}
  ~Store() { close(); }
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;

  const std::string& file();
  bool readOnly() const { return readOnly_; }
  // Changes when the file is found to be another one than the store
  // opened before: ids of keys in the former file mean nothing in it.
  unsigned generation() const { return generation_; }

  // At the start of every call: now and then the files are looked at for
  // what the change counter cannot tell.
  void refresh();

  // Opens the store file when it is not open yet. Without create a missing
  // file is reported as kFileNotFound and not created, so readers leave no
  // trace. A failed open keeps nothing: the next call tries again.
  long open(bool create);
  // open for a change: the file must be writable, and its integrity is
  // checked once per open, so that a damaged file is never written.
  long openForWrite(bool create);
  void close();
  // In a child after fork (see the definition).
  void forgetAfterFork();

  // Why the file cannot be used, naming it; "" when nothing is known
  // against it.
  const std::string& problem() const { return problem_; }

  // Before a read that the cache may answer: the kept answer, or null when
  // SQL must answer, noting whether that answer may then be kept.
  const CachedRead* cached(const std::string& key);
  void keep(const std::string& key, CachedRead&& answer);

  // A mark of the store's state that holds while nobody writes to it: the
  // change counter, and how often the files were looked at for what the
  // counter cannot tell. False when the store is not open, not cached, in
  // a write group or being written.
  bool mark(uint64_t* counter, uint64_t* epoch);
  // After a mark: what checks it again without the lock.
  UnlockedCheck unlockedCheck() const;

  // Around every write (see WriteGuard). Without a counter file that can be
  // written no write happens at all: processes caching the store would
  // not learn of it. Inside a write group both do nothing, as the group
  // holds the announcement.
  long announceWrite();
  void completeWrite();

  sqlite3_stmt* statement(Statement which) { return statements_[which]; }
  sqlite3_int64 lastInsertId() const { return sqlite3_last_insert_rowid(db_); }
  int changes() const { return sqlite3_changes(db_); }

  // A failure that says the file is damaged drops the connection at the
  // next call (statements may still be in use now), which then looks at the
  // file afresh.
  long fail(int rc);
  long exec(const char* sql);

  // One change: a transaction of its own, or a savepoint inside a write
  // group, so that a change that fails half-way leaves nothing either way.
  long begin();
  long commit();
  void rollback();

  // A write group: every change until endGroup is one transaction, kept or
  // undone as a whole.
  long beginGroup();
  long endGroup(bool keep);
  bool inGroup() const { return group_; }

  // Reads between BeginRead and EndRead share one read transaction, which
  // saves taking and dropping the file's read lock for each statement.
  void joinRead(int depth);
  void endRead();

 private:
  void locate();
  std::string counterFile() const;
  mode_t fileMode() const;
  bool recheckDue() const;
  void recheck();
  bool walJournal();
  int pragmaInt(const char* sql, int* value);
  std::string journalMode() const;
  long configure();
  long classify(bool* empty);
  long createSchema();
  long setJournal();
  long checkIntegrity();
  void note(const std::string& problem);
  bool run(Statement which);
  void abortTransaction();

  const bool machine_;
  std::string dir_, file_;
  bool network_ = false;
  sqlite3* db_ = nullptr;
  bool readOnly_ = false;
  bool broken_ = false;
  bool checked_ = false;
  bool damaged_ = false;
  bool inRead_ = false;
  bool group_ = false;
  std::string problem_;
  std::string traced_;
  sqlite3_stmt* statements_[kStatementCount] = {};
  dev_t fileDev_ = 0;
  ino_t fileIno_ = 0;
  int64_t lastCheckMs_ = 0;
  unsigned generation_ = 0;
  std::atomic<uint64_t> epoch_{0};
  ChangeCounter counter_;
  bool counterAllowed_ = false;
  bool cacheAllowed_ = false;
  ReadCache cache_;
  bool fill_ = false;
  bool groupSettled_ = false;
  uint64_t groupValue_ = 0;
};

// Holds a write announced on the change counter until it is committed or
// given up.
class WriteGuard {
 public:
  explicit WriteGuard(Store& store) : store_(store), rc_(store.announceWrite()) {}
  ~WriteGuard() {
    if (rc_ == kOk) store_.completeWrite();
  }
  WriteGuard(const WriteGuard&) = delete;
  WriteGuard& operator=(const WriteGuard&) = delete;
  long rc() const { return rc_; }

 private:
  Store& store_;
  const long rc_;
};

}  // namespace sqlite_store
}  // namespace qt_reg

#endif
