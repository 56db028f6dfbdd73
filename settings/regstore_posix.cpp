// The Linux settings store: one SQLite file per root, holding a tree of
// keys (case-insensitive, case-preserving names) with typed values whose
// data are the registry's own bytes.
//
// Several processes of the suite use one store at once, so every change is
// its own transaction, committed before it is reported as done. A local
// store runs in WAL mode, so that readers never wait for a writer; WAL
// needs memory shared between the processes of one host, so on a network
// mount (and for the machine root, which ordinary users can only read) the
// store keeps a rollback journal instead.
//
// Reads are answered from a cache in the process while the store's change
// counter (regstore_cache_posix.h) says that nobody has written since; the
// counter needs memory shared between processes, so only a WAL store on a
// local disk is cached.
#include "settings/regstore.h"

#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/types.h>
#include <errno.h>
#include <pthread.h>
#include <pwd.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <unordered_set>

#include "settings/regstore_cache_posix.h"
#include "ustr.h"

namespace qt_reg {

namespace {

// Marks a SQLite file as a settings store ("QTRG").
const int kApplicationId = 0x51545247;
const int kFormatVersion = 1;
const char kStoreFileName[] = "settings.db";
const char kCounterSuffix[] = "-changes";
// Generous: a writer waits for others rather than failing while a burst of
// writes from several processes drains.
const int kBusyTimeoutMs = 15000;
const size_t kMaxKeyNameLength = 255;
const size_t kMaxValueNameLength = 16383;

const char kSchema[] =
    "CREATE TABLE IF NOT EXISTS keys("
    " id INTEGER PRIMARY KEY,"
    " parent INTEGER NOT NULL,"
    " name TEXT NOT NULL,"
    " fold TEXT NOT NULL,"
    " UNIQUE(parent, fold));"
    "CREATE TABLE IF NOT EXISTS vals("
    " key INTEGER NOT NULL,"
    " name TEXT NOT NULL,"
    " fold TEXT NOT NULL,"
    " type INTEGER NOT NULL,"
    " data BLOB NOT NULL,"
    " PRIMARY KEY(key, fold));";

std::string Utf8(const std::wstring& w) { return qn_wide_to_ansi(w.c_str(), w.size()); }
std::wstring Wide(const char* s, int n) { return qn_ansi_to_wide(s ? s : "", n < 0 ? 0 : static_cast<size_t>(n)); }

// Names compare as the registry compares them: character by character,
// upper-cased.
std::string Fold(const std::wstring& w) {
  // Most names are ASCII, which needs neither the locale nor a copy; the
  // bytes are the same as the general way gives.
  std::string ascii;
  ascii.reserve(w.size());
  for (wchar_t c : w) {
    if (static_cast<unsigned long>(c) >= 0x80) break;
    ascii += static_cast<char>(c >= L'a' && c <= L'z' ? c - 32 : c);
  }
  if (ascii.size() == w.size()) return ascii;
  std::wstring up(w);
  for (wchar_t& c : up) c = qn_charupper(c);
  return Utf8(up);
}

std::atomic<unsigned long long> g_statements{0};
std::atomic<int> g_recheckMs{250};
std::atomic<void (*)(int)> g_writeHook{nullptr};

int CountStatement(unsigned, void*, void*, void*) {
  ++g_statements;
  return 0;
}

int64_t NowMs() {
  struct timespec now;
  clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

void WriteStage(int stage) {
  if (void (*hook)(int) = g_writeHook.load()) hook(stage);
}

// Connections inherited over fork: unusable in the child and not to be
// closed there, but kept reachable so that they are not reported as leaks.
sqlite3* g_abandoned[64];
size_t g_abandonedCount = 0;

bool IsNetworkFileSystem(const std::string& dir) {
  struct statfs fs;
  if (statfs(dir.c_str(), &fs) != 0) return false;
  switch (static_cast<unsigned long>(fs.f_type)) {
    case 0x6969UL:      // NFS
    case 0x517BUL:      // SMB
    case 0xFF534D42UL:  // CIFS
    case 0xFE534D42UL:  // SMB2
      return true;
    default:
      return false;
  }
}

bool MakeDirs(const std::string& dir, mode_t mode) {
  if (dir.empty()) return false;
  struct stat st;
  if (stat(dir.c_str(), &st) == 0) return S_ISDIR(st.st_mode);
  const size_t cut = dir.find_last_of('/');
  if (cut != std::string::npos && cut > 0 && !MakeDirs(dir.substr(0, cut), mode)) return false;
  return mkdir(dir.c_str(), mode) == 0 || errno == EEXIST;
}

std::string HomeDir() {
  const char* home = std::getenv("HOME");
  if (home && *home) return home;
  struct passwd* pw = getpwuid(getuid());
  return pw && pw->pw_dir ? pw->pw_dir : "/tmp";
}

long FromSqlite(int rc) {
  switch (rc & 0xFF) {
    case SQLITE_OK:
    case SQLITE_DONE:
    case SQLITE_ROW:
      return kOk;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_FORMAT:
    case SQLITE_SCHEMA:
      return kBadDb;
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_AUTH:
      return kAccessDenied;
    case SQLITE_NOMEM:
      return kNotEnoughMemory;
    default:
      return kRegistryIoFailed;
  }
}

// A prepared statement in use; reset when the scope ends so that no read
// transaction stays open behind the caller's back.
class Query {
 public:
  explicit Query(sqlite3_stmt* s) : s_(s) {}
  ~Query() {
    sqlite3_reset(s_);
    sqlite3_clear_bindings(s_);
  }
  Query& bind(int i, sqlite3_int64 v) { sqlite3_bind_int64(s_, i, v); return *this; }
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

const char* const kStatements[kStatementCount] = {
    "SELECT id FROM keys WHERE parent=?1 AND fold=?2",
    "INSERT INTO keys(parent, name, fold) VALUES(?1, ?2, ?3)",
    "SELECT 1 FROM keys WHERE id=?1",
    "SELECT 1 FROM keys WHERE parent=?1 LIMIT 1",
    "SELECT type, data FROM vals WHERE key=?1 AND fold=?2",
    "INSERT INTO vals(key, name, fold, type, data) SELECT ?1, ?2, ?3, ?4, ?5"
    " WHERE ?1=0 OR EXISTS(SELECT 1 FROM keys WHERE id=?1)"
    " ON CONFLICT(key, fold) DO UPDATE SET type=excluded.type, data=excluded.data",
    "DELETE FROM vals WHERE key=?1 AND fold=?2",
    "DELETE FROM vals WHERE key=?1",
    "DELETE FROM keys WHERE id=?1",
    "SELECT name FROM keys WHERE parent=?1",
    "SELECT name FROM vals WHERE key=?1",
    "SELECT name FROM keys WHERE parent=?1 ORDER BY fold LIMIT 1 OFFSET ?2",
    "SELECT name, type, data FROM vals WHERE key=?1 ORDER BY rowid LIMIT 1 OFFSET ?2",
    "BEGIN",
    "COMMIT",
};

// Names the current read group; changes whenever a group ends or a write
// may have changed what a group saw.
unsigned long g_snapshot = 1;

class Store {
 public:
  explicit Store(bool machine) : machine_(machine) {}
  ~Store() { close(); }

  const std::string& file() {
    locate();
    return file_;
  }
  bool readOnly() const { return readOnly_; }
  // Changes when the file is found to be another one than the store
  // opened before: ids of keys in the former file mean nothing in it.
  unsigned generation() const { return generation_; }

  // At the start of every call: now and then the files are looked at for
  // what the change counter cannot tell (see recheck).
  void refresh() {
    if (db_ && !inRead_ && recheckDue()) recheck();
  }

  // Opens the store file when it is not open yet. Without forWrite a
  // missing file is reported as kFileNotFound and not created, so readers
  // leave no trace.
  long open(bool forWrite) {
    if (db_ && broken_) close();
    if (db_) return kOk;
    locate();
    struct stat st;
    const bool exists = stat(file_.c_str(), &st) == 0;
    if (!exists && !forWrite) return kFileNotFound;
    if (!exists && !MakeDirs(dir_, machine_ ? 0755 : 0700)) return kAccessDenied;
    network_ = IsNetworkFileSystem(dir_);
    int rc = sqlite3_open_v2(file_.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    readOnly_ = false;
    if (rc != SQLITE_OK && exists) {
      sqlite3_close_v2(db_);
      db_ = nullptr;
      rc = sqlite3_open_v2(file_.c_str(), &db_, SQLITE_OPEN_READONLY, nullptr);
      readOnly_ = true;
    }
    if (rc != SQLITE_OK) {
      const long err = exists ? FromSqlite(rc) : kAccessDenied;
      close();
      return err;
    }
    const long err = configure();
    if (err != kOk) {
      close();
      return err;
    }
    // Identified by the state before opening: a file replaced in between
    // is then merely looked at again at the next check.
    if (exists || stat(file_.c_str(), &st) == 0) {
      fileDev_ = st.st_dev;
      fileIno_ = st.st_ino;
    }
    counterAllowed_ = !network_;
    cacheAllowed_ = counterAllowed_ && walJournal();
    // Readers of a store that is not cached need no counter; its writers
    // open it when they write.
    if (cacheAllowed_) counter_.open(counterFile(), false, fileMode(), file_);
    lastCheckMs_ = NowMs();
    return kOk;
  }

  void close() {
    for (sqlite3_stmt*& s : statements_) {
      sqlite3_finalize(s);
      s = nullptr;
    }
    if (db_) sqlite3_close_v2(db_);
    db_ = nullptr;
    broken_ = false;
    inRead_ = false;
    counter_.close();
    cache_.clear();
    counterAllowed_ = cacheAllowed_ = false;
  }

  // In a child after fork. SQLite's connection may not be used across
  // fork, and closing it here could checkpoint and remove the WAL journal
  // that the parent still uses; the child opens a connection of its own.
  void forgetAfterFork() {
    if (db_ && g_abandonedCount < sizeof g_abandoned / sizeof g_abandoned[0]) g_abandoned[g_abandonedCount++] = db_;
    for (sqlite3_stmt*& s : statements_) s = nullptr;
    db_ = nullptr;
    broken_ = false;
    inRead_ = false;
    counter_.forgetAfterFork();
    cache_.clear();
    counterAllowed_ = cacheAllowed_ = false;
  }

  // Before a read that the cache may answer: the kept answer, or null when
  // SQL must answer, noting whether that answer may then be kept.
  const CachedRead* cached(const std::string& key) {
    fill_ = false;
    uint64_t now = 0;
    if (!cacheAllowed_ || !counter_.settled(&now)) return nullptr;
    cache_.startAt(now);
    // The transaction of a read group may hold a state older than the
    // counter now names; the group keeps seeing that state.
    if (inRead_ && (!groupSettled_ || groupValue_ != now)) return nullptr;
    fill_ = true;
    return cache_.find(key);
  }
  void keep(const std::string& key, CachedRead&& answer) {
    if (fill_ && (answer.rc == kOk || answer.rc == kFileNotFound || answer.rc == kKeyDeleted))
      cache_.put(key, std::move(answer));
    fill_ = false;
  }

  // Around every write (see WriteGuard). Without a counter file that can be
  // written no write happens at all: processes caching the store would
  // not learn of it.
  long announceWrite() {
    if (!counterAllowed_) return kOk;
    if (!counter_.writable() && !counter_.open(counterFile(), true, fileMode(), file_)) return kAccessDenied;
    if (!counter_.announce(kBusyTimeoutMs)) return kRegistryIoFailed;
    WriteStage(kWriteAnnounced);
    return kOk;
  }
  void completeWrite() {
    // A transaction still open here was left by an exception.
    rollback();
    if (counter_.isOpen()) WriteStage(kWriteCommitted);
    counter_.complete();
  }

  sqlite3_stmt* statement(Statement which) { return statements_[which]; }
  sqlite3_int64 lastInsertId() const { return sqlite3_last_insert_rowid(db_); }
  int changes() const { return sqlite3_changes(db_); }

  // A failure that says the file is damaged drops the connection at the
  // next call (statements may still be in use now), which then looks at the
  // file afresh.
  long fail(int rc) {
    const long err = FromSqlite(rc);
    if (err == kBadDb) broken_ = true;
    return err;
  }

  long exec(const char* sql) {
    const int rc = sqlite3_exec(db_, sql, nullptr, nullptr, nullptr);
    return rc == SQLITE_OK ? kOk : fail(rc);
  }

  // BEGIN IMMEDIATE takes the write lock up front: a deferred transaction
  // that reads first could not be upgraded while another process writes.
  long begin() { return exec("BEGIN IMMEDIATE"); }

  // Reads between BeginRead and EndRead share one read transaction, which
  // saves taking and dropping the file's read lock for each statement.
  void joinRead(int depth) {
    if (depth > 0 && !inRead_ && sqlite3_get_autocommit(db_)) {
      // Loaded before the transaction takes its snapshot, which is then at
      // least as new.
      groupSettled_ = cacheAllowed_ && counter_.settled(&groupValue_);
      if (run(kBeginRead)) inRead_ = true;
    }
  }
  void endRead() {
    if (inRead_ && db_ && !sqlite3_get_autocommit(db_)) run(kCommitRead);
    inRead_ = false;
    ++g_snapshot;
  }
  bool run(Statement which) {
    sqlite3_stmt* s = statements_[which];
    const int rc = sqlite3_step(s);
    sqlite3_reset(s);
    return rc == SQLITE_DONE;
  }
  long commit() { return exec("COMMIT"); }
  void rollback() {
    if (db_ && !sqlite3_get_autocommit(db_)) sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
  }

 private:
  void locate() {
    if (!file_.empty()) return;
    const char* env = std::getenv(machine_ ? "QUILTOOL_HKLM_DIR" : "QUILTOOL_HKCU_DIR");
    if (env && *env) {
      dir_ = env;
    } else if (machine_) {
      dir_ = "/etc/quiltool/registry";
    } else {
      const char* xdg = std::getenv("XDG_CONFIG_HOME");
      // A relative XDG_CONFIG_HOME is to be ignored.
      dir_ = (xdg && xdg[0] == '/') ? std::string(xdg) : HomeDir() + "/.config";
      dir_ += "/quiltool/registry";
    }
    while (dir_.size() > 1 && dir_.back() == '/') dir_.pop_back();
    file_ = dir_ + "/" + kStoreFileName;
  }

  std::string counterFile() const { return file_ + kCounterSuffix; }
  mode_t fileMode() const { return machine_ ? 0644 : 0600; }

  bool recheckDue() const {
    const int every = g_recheckMs.load();
    return every == 0 || (every > 0 && NowMs() - lastCheckMs_ >= every);
  }

  // A store file replaced, moved away or damaged in place, an edit by
  // another program, a counter file made anew: none moves the counter.
  void recheck() {
    lastCheckMs_ = NowMs();
    cache_.clear();
    struct stat st;
    if (stat(file_.c_str(), &st) != 0 || st.st_dev != fileDev_ || st.st_ino != fileIno_) {
      close();
      ++generation_;
      return;
    }
    if (cacheAllowed_ && !counter_.isFile(counterFile())) counter_.open(counterFile(), false, fileMode(), file_);
  }

  bool walJournal() {
    sqlite3_stmt* s = nullptr;
    bool wal = false;
    if (sqlite3_prepare_v2(db_, "PRAGMA journal_mode", -1, &s, nullptr) == SQLITE_OK && sqlite3_step(s) == SQLITE_ROW) {
      const char* mode = reinterpret_cast<const char*>(sqlite3_column_text(s, 0));
      wal = mode && sqlite3_stricmp(mode, "wal") == 0;
    }
    sqlite3_finalize(s);
    return wal;
  }

  int pragmaInt(const char* sql, int* value) {
    sqlite3_stmt* s = nullptr;
    int rc = sqlite3_prepare_v2(db_, sql, -1, &s, nullptr);
    if (rc == SQLITE_OK) {
      rc = sqlite3_step(s);
      if (rc == SQLITE_ROW) {
        *value = sqlite3_column_int(s, 0);
        rc = SQLITE_OK;
      } else if (rc == SQLITE_DONE) {
        rc = SQLITE_OK;
      }
    }
    sqlite3_finalize(s);
    return rc;
  }

  std::string journalMode() const {
    const char* forced = std::getenv("QUILTOOL_STORE_JOURNAL");
    if (forced && (std::strcmp(forced, "wal") == 0 || std::strcmp(forced, "delete") == 0)) return forced;
    return (machine_ || network_) ? "delete" : "wal";
  }

  // A WAL commit is in the journal file before the call returns, so a
  // process that dies loses nothing it was told is written; only a power
  // cut may take back the last commits before the next checkpoint (never
  // leaving a damaged file). A sync on every commit would cost a disk
  // flush per setting; QUILTOOL_STORE_SYNC=full asks for it anyway. A
  // rollback journal is always synced in full: there NORMAL could leave a
  // damaged file after a power cut.
  static bool fullSync(const std::string& journal) {
    const char* sync = std::getenv("QUILTOOL_STORE_SYNC");
    return journal != "wal" || (sync && std::strcmp(sync, "full") == 0);
  }

  long configure() {
    sqlite3_trace_v2(db_, SQLITE_TRACE_STMT, CountStatement, nullptr);
    sqlite3_busy_timeout(db_, kBusyTimeoutMs);
    sqlite3_extended_result_codes(db_, 0);
    // Reading the header first tells a damaged or foreign file from a store
    // before anything is written to it.
    int appId = 0, tables = 0;
    int rc = pragmaInt("PRAGMA application_id", &appId);
    if (rc == SQLITE_OK)
      rc = pragmaInt("SELECT count(*) FROM sqlite_master WHERE type='table' AND name IN ('keys','vals')", &tables);
    if (rc != SQLITE_OK) return FromSqlite(rc);
    if (appId != 0 && appId != kApplicationId) return kBadDb;
    if (appId == 0 && tables != 0) return kBadDb;
    if (!readOnly_) {
      const std::string journal = journalMode();
      const std::string mode = "PRAGMA journal_mode=" + journal;
      // Changing the mode needs the file to itself; when others hold it the
      // mode they set stays, which is as good.
      sqlite3_exec(db_, mode.c_str(), nullptr, nullptr, nullptr);
      const std::string sync = std::string("PRAGMA synchronous=") + (fullSync(journal) ? "FULL" : "NORMAL");
      if (sqlite3_exec(db_, sync.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) return kRegistryIoFailed;
      if (tables != 2 || appId != kApplicationId) {
        std::string init = std::string("BEGIN IMMEDIATE;") + kSchema + "PRAGMA application_id=" +
                           std::to_string(kApplicationId) + ";PRAGMA user_version=" + std::to_string(kFormatVersion) +
                           ";COMMIT;";
        rc = sqlite3_exec(db_, init.c_str(), nullptr, nullptr, nullptr);
        if (rc != SQLITE_OK) {
          rollback();
          return FromSqlite(rc);
        }
      }
    } else if (tables != 2) {
      return kBadDb;
    }
    for (int i = 0; i < kStatementCount; ++i) {
      rc = sqlite3_prepare_v3(db_, kStatements[i], -1, SQLITE_PREPARE_PERSISTENT, &statements_[i], nullptr);
      if (rc != SQLITE_OK) return FromSqlite(rc);
    }
    return kOk;
  }

  const bool machine_;
  std::string dir_, file_;
  bool network_ = false;
  sqlite3* db_ = nullptr;
  bool readOnly_ = false;
  bool broken_ = false;
  bool inRead_ = false;
  sqlite3_stmt* statements_[kStatementCount] = {};
  dev_t fileDev_ = 0;
  ino_t fileIno_ = 0;
  int64_t lastCheckMs_ = 0;
  unsigned generation_ = 0;
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

const unsigned kKeyMagic = 0x4B455921;

struct Key {
  unsigned magic = kKeyMagic;
  Store* store = nullptr;
  sqlite3_int64 id = 0;
  DWORD access = 0;
  unsigned generation = 0;
  // The last value read in a read group: asking a value's size and then
  // its data is one read of the store, as both see the same snapshot.
  unsigned long cachedIn = 0;
  std::string cachedFold;
  DWORD cachedType = 0;
  std::vector<BYTE> cachedData;
};

struct State {
  std::mutex mutex;
  int readDepth = 0;
  Store user{false};
  Store machine{true};
  std::unordered_set<Key*> keys;
};

State& Global();

// A child forked while another thread is inside the store would find the
// lock taken forever; holding it across fork rules that out.
void LockBeforeFork() { Global().mutex.lock(); }
void UnlockInParent() { Global().mutex.unlock(); }
void ForgetInChild() {
  State& g = Global();
  g.user.forgetAfterFork();
  g.machine.forgetAfterFork();
  g.mutex.unlock();
}

State& Global() {
  // Never destroyed, as handles may still be closed from other static
  // destructors; but the files are closed at exit, which checkpoints and
  // removes a WAL journal.
  static State* state = new State();
  static struct AtExit {
    AtExit() { pthread_atfork(LockBeforeFork, UnlockInParent, ForgetInChild); }
    ~AtExit() {
      std::lock_guard<std::mutex> lock(state->mutex);
      state->user.close();
      state->machine.close();
    }
  } atExit;
  return *state;
}

// What a handle stands for: a store, a key id in it (0 is the root) and the
// rights it was opened with.
struct Target {
  Store* store = nullptr;
  sqlite3_int64 id = 0;
  DWORD access = 0;
};

long Resolve(HKEY handle, Target* t) {
  State& g = Global();
  if (handle == HKEY_CURRENT_USER || handle == HKEY_LOCAL_MACHINE) {
    t->store = handle == HKEY_CURRENT_USER ? &g.user : &g.machine;
    t->store->refresh();
    t->id = 0;
    t->access = kKeyAllAccess;
    return kOk;
  }
  Key* key = reinterpret_cast<Key*>(handle);
  if (!handle || g.keys.find(key) == g.keys.end() || key->magic != kKeyMagic) return kInvalidHandle;
  key->store->refresh();
  // A key of a store file that was replaced or removed is gone, as a
  // deleted key is; its id might name another key in the file now there.
  if (key->id != 0 && key->generation != key->store->generation()) return kKeyDeleted;
  t->store = key->store;
  t->id = key->id;
  t->access = key->access;
  return kOk;
}

// Splits a key path at "\"; as in the registry a leading separator is an
// error, while repeated and trailing ones are passed over.
long ParsePath(const wchar_t* path, std::vector<std::wstring>* parts) {
  parts->clear();
  if (!path) return kOk;
  if (*path == L'\\') return kBadPathname;
  std::wstring current;
  for (const wchar_t* p = path;; ++p) {
    if (*p == L'\\' || *p == 0) {
      if (!current.empty()) {
        if (current.size() > kMaxKeyNameLength) return kInvalidParameter;
        parts->push_back(current);
        current.clear();
      }
      if (*p == 0) return kOk;
    } else {
      current += *p;
    }
  }
}

long FindChild(Store& store, sqlite3_int64 parent, const std::string& fold, sqlite3_int64* id) {
  Query q(store.statement(kFindChild));
  q.bind(1, parent).bind(2, fold);
  const int rc = q.step();
  if (rc == SQLITE_ROW) {
    *id = q.integer(0);
    return kOk;
  }
  return rc == SQLITE_DONE ? kFileNotFound : store.fail(rc);
}

long KeyExists(Store& store, sqlite3_int64 id) {
  if (id == 0) return kOk;
  Query q(store.statement(kKeyExists));
  q.bind(1, id);
  const int rc = q.step();
  if (rc == SQLITE_ROW) return kOk;
  return rc == SQLITE_DONE ? kKeyDeleted : store.fail(rc);
}

// The lookups of a reader: from the cache when it may answer, else from
// SQL inside the caller's read group, keeping the answer.
long ReadChild(Store& store, sqlite3_int64 parent, const std::string& fold, sqlite3_int64* id) {
  const std::string key = ReadCache::Key('C', parent, fold);
  if (const CachedRead* hit = store.cached(key)) {
    if (hit->rc == kOk) *id = hit->id;
    return hit->rc;
  }
  store.joinRead(Global().readDepth);
  CachedRead answer;
  sqlite3_int64 found = 0;
  answer.rc = FindChild(store, parent, fold, &found);
  answer.id = found;
  const long rc = answer.rc;
  if (rc == kOk) *id = found;
  store.keep(key, std::move(answer));
  return rc;
}

long ReadKeyExists(Store& store, sqlite3_int64 id) {
  if (id == 0) return kOk;
  const std::string key = ReadCache::Key('K', id, std::string());
  if (const CachedRead* hit = store.cached(key)) return hit->rc;
  store.joinRead(Global().readDepth);
  CachedRead answer;
  answer.rc = KeyExists(store, id);
  const long rc = answer.rc;
  store.keep(key, std::move(answer));
  return rc;
}

// Readers pass cached; a writer inside its transaction must see the file.
long Walk(Store& store, sqlite3_int64 from, const std::vector<std::wstring>& parts, bool cached, sqlite3_int64* id) {
  sqlite3_int64 at = from;
  if (parts.empty()) {
    const long rc = cached ? ReadKeyExists(store, at) : KeyExists(store, at);
    if (rc != kOk) return rc;
  }
  for (const std::wstring& part : parts) {
    const std::string fold = Fold(part);
    const long rc = cached ? ReadChild(store, at, fold, &at) : FindChild(store, at, fold, &at);
    if (rc != kOk) return rc;
  }
  *id = at;
  return kOk;
}

HKEY NewHandle(Store* store, sqlite3_int64 id, DWORD access) {
  Key* key = new Key();
  key->store = store;
  key->id = id;
  key->access = access;
  key->generation = store->generation();
  Global().keys.insert(key);
  return reinterpret_cast<HKEY>(key);
}

long GetValueRow(Store& store, sqlite3_int64 id, const std::string& fold, DWORD* type, std::vector<BYTE>* data) {
  Query q(store.statement(kGetValue));
  q.bind(1, id).bind(2, fold);
  const int rc = q.step();
  if (rc == SQLITE_DONE) return kFileNotFound;
  if (rc != SQLITE_ROW) return store.fail(rc);
  *type = static_cast<DWORD>(q.integer(0));
  q.blob(1, data);
  return kOk;
}

// The value of a handle's key, from a store that may not exist yet.
long LoadValue(HKEY key, const wchar_t* name, DWORD* type, std::vector<BYTE>* data) {
  Target t;
  long rc = Resolve(key, &t);
  if (rc != kOk) return rc;
  if (!(t.access & kKeyQueryValue)) return kAccessDenied;
  const std::wstring n(name ? name : L"");
  if (n.size() > kMaxValueNameLength) return kFileNotFound;
  const std::string fold = Fold(n);
  State& g = Global();
  Key* k = (key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE) ? nullptr : reinterpret_cast<Key*>(key);
  if (k && g.readDepth > 0 && k->cachedIn == g_snapshot && k->cachedFold == fold) {
    *type = k->cachedType;
    *data = k->cachedData;
    return kOk;
  }
  rc = t.store->open(false);
  if (rc != kOk) return rc;
  const std::string cacheKey = ReadCache::Key('V', t.id, fold);
  if (const CachedRead* hit = t.store->cached(cacheKey)) {
    rc = hit->rc;
    if (rc == kOk) {
      *type = hit->type;
      *data = hit->data;
    }
  } else {
    t.store->joinRead(g.readDepth);
    CachedRead answer;
    answer.rc = GetValueRow(*t.store, t.id, fold, &answer.type, &answer.data);
    rc = answer.rc;
    if (rc == kOk) {
      *type = answer.type;
      *data = answer.data;
    }
    t.store->keep(cacheKey, std::move(answer));
  }
  if (rc == kOk && k && g.readDepth > 0) {
    k->cachedIn = g_snapshot;
    k->cachedFold = fold;
    k->cachedType = *type;
    k->cachedData = *data;
  }
  return rc;
}

template <class F>
long Guarded(F f) {
  try {
    std::lock_guard<std::mutex> lock(Global().mutex);
    return f();
  } catch (const std::bad_alloc&) {
    return kNotEnoughMemory;
  } catch (...) {
    return kRegistryIoFailed;
  }
}

}  // namespace

long OpenKey(HKEY parent, const wchar_t* subKey, DWORD access, HKEY* key) {
  if (!key) return kInvalidParameter;
  *key = nullptr;
  return Guarded([&]() -> long {
    Target t;
    long rc = Resolve(parent, &t);
    if (rc != kOk) return rc;
    std::vector<std::wstring> parts;
    rc = ParsePath(subKey, &parts);
    if (rc != kOk) return rc;
    rc = t.store->open(false);
    if (rc == kFileNotFound && parts.empty() && t.id == 0) {
      // The root of a store not yet written exists, empty.
      *key = NewHandle(t.store, 0, access);
      return kOk;
    }
    if (rc != kOk) return rc;
    if ((access & (kKeySetValue | kKeyCreateSubKey)) && t.store->readOnly()) return kAccessDenied;
    sqlite3_int64 id = 0;
    rc = Walk(*t.store, t.id, parts, true, &id);
    if (rc != kOk) return rc;
    *key = NewHandle(t.store, id, access);
    return kOk;
  });
}

long CreateKey(HKEY parent, const wchar_t* subKey, DWORD access, HKEY* key) {
  if (!key) return kInvalidParameter;
  *key = nullptr;
  return Guarded([&]() -> long {
    Target t;
    long rc = Resolve(parent, &t);
    if (rc != kOk) return rc;
    std::vector<std::wstring> parts;
    rc = ParsePath(subKey, &parts);
    if (rc != kOk) return rc;
    rc = t.store->open(true);
    t.store->endRead();
    if (rc != kOk) return rc;
    Store& s = *t.store;
    if (s.readOnly()) return kAccessDenied;
    WriteGuard guard(s);
    if (guard.rc() != kOk) return guard.rc();
    rc = s.begin();
    if (rc != kOk) return rc;
    sqlite3_int64 at = t.id;
    rc = KeyExists(s, at);
    for (size_t i = 0; rc == kOk && i < parts.size(); ++i) {
      rc = FindChild(s, at, Fold(parts[i]), &at);
      if (rc != kFileNotFound) continue;
      Query q(s.statement(kInsertKey));
      q.bind(1, at).bind(2, Utf8(parts[i])).bind(3, Fold(parts[i]));
      const int step = q.step();
      rc = step == SQLITE_DONE ? kOk : s.fail(step);
      if (rc == kOk) at = s.lastInsertId();
    }
    if (rc == kOk) rc = s.commit();
    if (rc != kOk) {
      s.rollback();
      return rc;
    }
    *key = NewHandle(&s, at, access);
    return kOk;
  });
}

long CloseKey(HKEY key) {
  return Guarded([&]() -> long {
    if (key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE) return kOk;
    State& g = Global();
    Key* k = reinterpret_cast<Key*>(key);
    auto it = g.keys.find(k);
    if (!key || it == g.keys.end()) return kInvalidHandle;
    g.keys.erase(it);
    k->magic = 0;
    delete k;
    return kOk;
  });
}

long FlushKey(HKEY key) {
  // Every change is committed durably before it returns.
  return Guarded([&]() -> long {
    Target t;
    return Resolve(key, &t);
  });
}

long QueryValue(HKEY key, const wchar_t* name, DWORD* type, BYTE* data, DWORD* size) {
  if (data && !size) return kInvalidParameter;
  return Guarded([&]() -> long {
    DWORD valueType = 0;
    std::vector<BYTE> bytes;
    const long rc = LoadValue(key, name, &valueType, &bytes);
    if (rc != kOk) return rc;
    if (type) *type = valueType;
    if (!size) return kOk;
    const DWORD needed = static_cast<DWORD>(bytes.size());
    if (data && *size < needed) {
      *size = needed;
      return kMoreData;
    }
    if (data && needed) std::memcpy(data, bytes.data(), needed);
    *size = needed;
    return kOk;
  });
}

long SetValue(HKEY key, const wchar_t* name, DWORD type, const BYTE* data, DWORD size) {
  if (!data && size) return kInvalidParameter;
  return Guarded([&]() -> long {
    Target t;
    long rc = Resolve(key, &t);
    if (rc != kOk) return rc;
    if (!(t.access & kKeySetValue)) return kAccessDenied;
    const std::wstring n(name ? name : L"");
    if (n.size() > kMaxValueNameLength) return kInvalidParameter;
    rc = t.store->open(true);
    t.store->endRead();
    if (rc != kOk) return rc;
    Store& s = *t.store;
    if (s.readOnly()) return kAccessDenied;
    WriteGuard guard(s);
    if (guard.rc() != kOk) return guard.rc();
    Query q(s.statement(kSetValue));
    q.bind(1, t.id).bind(2, Utf8(n)).bind(3, Fold(n)).bind(4, static_cast<sqlite3_int64>(type)).bindBlob(5, data, size);
    const int step = q.step();
    if (step != SQLITE_DONE) return s.fail(step);
    return s.changes() > 0 ? kOk : kKeyDeleted;
  });
}

long DeleteValue(HKEY key, const wchar_t* name) {
  return Guarded([&]() -> long {
    Target t;
    long rc = Resolve(key, &t);
    if (rc != kOk) return rc;
    if (!(t.access & kKeySetValue)) return kAccessDenied;
    rc = t.store->open(false);
    t.store->endRead();
    if (rc != kOk) return rc;
    Store& s = *t.store;
    if (s.readOnly()) return kAccessDenied;
    WriteGuard guard(s);
    if (guard.rc() != kOk) return guard.rc();
    Query q(s.statement(kDeleteValue));
    q.bind(1, t.id).bind(2, Fold(name ? name : L""));
    const int step = q.step();
    if (step != SQLITE_DONE) return s.fail(step);
    return s.changes() > 0 ? kOk : kFileNotFound;
  });
}

long DeleteKey(HKEY key, const wchar_t* subKey) {
  return Guarded([&]() -> long {
    Target t;
    long rc = Resolve(key, &t);
    if (rc != kOk) return rc;
    std::vector<std::wstring> parts;
    rc = ParsePath(subKey, &parts);
    if (rc != kOk) return rc;
    rc = t.store->open(false);
    t.store->endRead();
    if (rc != kOk) return rc;
    Store& s = *t.store;
    if (s.readOnly()) return kAccessDenied;
    WriteGuard guard(s);
    if (guard.rc() != kOk) return guard.rc();
    rc = s.begin();
    if (rc != kOk) return rc;
    sqlite3_int64 id = 0;
    rc = Walk(s, t.id, parts, false, &id);
    // A root cannot go, nor a key that still has subkeys.
    if (rc == kOk && id == 0) rc = kAccessDenied;
    if (rc == kOk) {
      Query q(s.statement(kHasChildren));
      q.bind(1, id);
      const int step = q.step();
      rc = step == SQLITE_ROW ? kAccessDenied : step == SQLITE_DONE ? kOk : s.fail(step);
    }
    for (Statement st : {kDeleteValues, kDeleteKeyRow}) {
      if (rc != kOk) break;
      Query q(s.statement(st));
      q.bind(1, id);
      const int step = q.step();
      if (step != SQLITE_DONE) rc = s.fail(step);
    }
    if (rc == kOk) rc = s.commit();
    if (rc != kOk) s.rollback();
    return rc;
  });
}

long QueryInfo(HKEY key, DWORD* subKeys, DWORD* maxSubKeyLength, DWORD* values, DWORD* maxValueNameLength) {
  return Guarded([&]() -> long {
    Target t;
    long rc = Resolve(key, &t);
    if (rc != kOk) return rc;
    if (!(t.access & kKeyQueryValue)) return kAccessDenied;
    DWORD counts[2] = {0, 0}, longest[2] = {0, 0};
    rc = t.store->open(false);
    if (rc == kOk) t.store->joinRead(Global().readDepth);
    if (rc == kOk) rc = KeyExists(*t.store, t.id);
    if (rc == kOk) {
      const Statement lists[2] = {kChildNames, kValueNames};
      for (int i = 0; i < 2 && rc == kOk; ++i) {
        Query q(t.store->statement(lists[i]));
        q.bind(1, t.id);
        int step;
        while ((step = q.step()) == SQLITE_ROW) {
          ++counts[i];
          const DWORD length = static_cast<DWORD>(Utf16Length(q.text(0).c_str()));
          if (length > longest[i]) longest[i] = length;
        }
        if (step != SQLITE_DONE) rc = t.store->fail(step);
      }
    } else if (rc == kFileNotFound && t.id == 0) {
      rc = kOk;  // the empty root of a store not yet written
    }
    if (rc != kOk) return rc;
    if (subKeys) *subKeys = counts[0];
    if (maxSubKeyLength) *maxSubKeyLength = longest[0];
    if (values) *values = counts[1];
    if (maxValueNameLength) *maxValueNameLength = longest[1];
    return kOk;
  });
}

long EnumKey(HKEY key, DWORD index, std::wstring* name) {
  if (!name) return kInvalidParameter;
  return Guarded([&]() -> long {
    Target t;
    long rc = Resolve(key, &t);
    if (rc != kOk) return rc;
    if (!(t.access & kKeyEnumerateSubKeys)) return kAccessDenied;
    rc = t.store->open(false);
    if (rc == kOk) t.store->joinRead(Global().readDepth);
    if (rc == kFileNotFound && t.id == 0) return kNoMoreItems;
    if (rc != kOk) return rc;
    Query q(t.store->statement(kNthChild));
    q.bind(1, t.id).bind(2, static_cast<sqlite3_int64>(index));
    const int step = q.step();
    if (step == SQLITE_DONE) return kNoMoreItems;
    if (step != SQLITE_ROW) return t.store->fail(step);
    *name = q.text(0);
    return kOk;
  });
}

long EnumValue(HKEY key, DWORD index, std::wstring* name, DWORD* type, std::vector<BYTE>* data) {
  if (!name) return kInvalidParameter;
  return Guarded([&]() -> long {
    Target t;
    long rc = Resolve(key, &t);
    if (rc != kOk) return rc;
    if (!(t.access & kKeyQueryValue)) return kAccessDenied;
    rc = t.store->open(false);
    if (rc == kOk) t.store->joinRead(Global().readDepth);
    if (rc == kFileNotFound && t.id == 0) return kNoMoreItems;
    if (rc != kOk) return rc;
    Query q(t.store->statement(kNthValue));
    q.bind(1, t.id).bind(2, static_cast<sqlite3_int64>(index));
    const int step = q.step();
    if (step == SQLITE_DONE) return kNoMoreItems;
    if (step != SQLITE_ROW) return t.store->fail(step);
    *name = q.text(0);
    if (type) *type = static_cast<DWORD>(q.integer(1));
    if (data) q.blob(2, data);
    return kOk;
  });
}

void BeginRead() {
  Guarded([]() -> long {
    ++Global().readDepth;
    return kOk;
  });
}

void EndRead() {
  Guarded([]() -> long {
    State& g = Global();
    if (g.readDepth > 0 && --g.readDepth == 0) {
      g.user.endRead();
      g.machine.endRead();
    }
    return kOk;
  });
}

// %NAME% replaced by the environment variable, unknown names kept as they
// stand, as Windows expands REG_EXPAND_SZ text.
std::wstring ExpandEnvironmentText(const std::wstring& text) {
  std::wstring out;
  size_t i = 0;
  while (i < text.size()) {
    const size_t open = text.find(L'%', i);
    if (open == std::wstring::npos) break;
    const size_t close = text.find(L'%', open + 1);
    if (close == std::wstring::npos) break;
    out.append(text, i, open - i);
    const std::wstring name = text.substr(open + 1, close - open - 1);
    const char* value = name.empty() ? nullptr : std::getenv(Utf8(name).c_str());
    if (value) {
      out += qn_ansi_to_wide(value);
      i = close + 1;
    } else {
      out.append(text, open, close - open);
      i = close;
    }
  }
  out.append(text, i, std::wstring::npos);
  return out;
}

unsigned long long StoreStatementCount() { return g_statements.load(); }

int SetStoreRecheckInterval(int ms) { return g_recheckMs.exchange(ms < 0 ? -1 : ms); }

void SetStoreWriteHook(void (*hook)(int stage)) { g_writeHook.store(hook); }

std::string StoreFile(HKEY root) {
  try {
    std::lock_guard<std::mutex> lock(Global().mutex);
    if (root == HKEY_CURRENT_USER) return Global().user.file();
    if (root == HKEY_LOCAL_MACHINE) return Global().machine.file();
  } catch (...) {
  }
  return std::string();
}

}  // namespace qt_reg
