#include "settings/sqlite_store_posix.h"

#include <errno.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <pwd.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "core/fs.h"
#include "gwframe.h"
#include "qn_utf.h"
#include "ustr.h"

namespace qt_reg {

// Test seams of regstore_cache_posix.h.
namespace {
std::atomic<unsigned long long> g_statements{0};
std::atomic<int> g_recheckMs{250};
std::atomic<void (*)(int)> g_writeHook{nullptr};
}  // namespace

unsigned long long StoreStatementCount() { return g_statements.load(); }
int SetStoreRecheckInterval(int ms) { return g_recheckMs.exchange(ms < 0 ? -1 : ms); }
void SetStoreWriteHook(void (*hook)(int stage)) { g_writeHook.store(hook); }

namespace sqlite_store {

unsigned long g_snapshot = 1;

namespace {

// Marks a SQLite file as a settings store ("QTRG").
const int kApplicationId = 0x51545247;
const int kFormatVersion = 1;
const char kStoreFileName[] = "settings.db";
const char kCounterSuffix[] = "-changes";
// Generous: a writer waits for others rather than failing while a burst of
// writes from several processes drains.
const int kBusyTimeoutMs = 15000;

const char kSchema[] =
    "CREATE TABLE keys("
    " id INTEGER PRIMARY KEY,"
    " parent INTEGER NOT NULL,"
    " name TEXT NOT NULL,"
    " fold TEXT NOT NULL,"
    " UNIQUE(parent, fold));"
    "CREATE TABLE vals("
    " key INTEGER NOT NULL,"
    " name TEXT NOT NULL,"
    " fold TEXT NOT NULL,"
    " type INTEGER NOT NULL,"
    " data BLOB NOT NULL,"
    " PRIMARY KEY(key, fold));";

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

int CountStatement(unsigned, void*, void*, void*) {
  ++g_statements;
  return 0;
}

int64_t NowMs() {
  struct timespec now;
  clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

void SleepMs(int ms) {
  struct timespec pause = {0, ms * 1000000L};
  nanosleep(&pause, nullptr);
}

bool IsBusy(int rc) { return (rc & 0xFF) == SQLITE_BUSY || (rc & 0xFF) == SQLITE_LOCKED; }

// SQLite answers SQLITE_BUSY at once, without asking the busy handler, in
// steps that processes meeting a fresh store run into: changing the journal
// mode while another connection reads, and upgrading to a write lock from a
// connection that met the file while another process was creating it.
// Those steps are tried again for as long as a busy handler would wait.
template <class F>
int Retrying(F step) {
  const int64_t until = NowMs() + kBusyTimeoutMs;
  int pause = 1;
  int rc;
  while (IsBusy(rc = step()) && NowMs() < until) {
    SleepMs(pause);
    if (pause < 32) pause *= 2;
  }
  return rc;
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
  // A folder named by bytes that are no UTF-8 has no wide name to ask
  // about; mkdir answers for it below all the same.
  std::wstring wide;
  const qt::fs::Kind kind =
      qn_utf8_to_wide_strict(dir.data(), dir.size(), &wide) ? qt::fs::KindOf(wide) : qt::fs::Kind::kNone;
  if (kind != qt::fs::Kind::kNone) return kind == qt::fs::Kind::kDirectory;
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

bool IsDamage(int rc) {
  switch (rc & 0xFF) {
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_FORMAT:
      return true;
    default:
      return false;
  }
}

// Inside a write group a change that fails half-way undoes only itself;
// the group's caller decides about the rest.
const char kSavepoint[] = "SAVEPOINT change";
const char kRelease[] = "RELEASE change";
const char kUndo[] = "ROLLBACK TO change; RELEASE change";

}  // namespace

std::string Utf8(const std::wstring& w) { return qn_wide_to_ansi(w.c_str(), w.size()); }
std::wstring Wide(const char* s, int n) { return qn_ansi_to_wide(s ? s : "", n < 0 ? 0 : static_cast<size_t>(n)); }

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

const std::string& Store::file() {
  locate();
  return file_;
}

void Store::refresh() {
  if (db_ && !inRead_ && !group_ && recheckDue()) recheck();
}

long Store::open(bool create) {
  if (db_ && broken_ && !group_) close();
  if (db_) return kOk;
  locate();
  problem_.clear();
  struct stat st;
  const bool exists = stat(file_.c_str(), &st) == 0;
  if (!exists && !create) return kFileNotFound;
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
    if (IsDamage(rc)) note("is damaged and cannot be opened");
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

long Store::openForWrite(bool create) {
  long rc = open(create);
  if (rc != kOk) return rc;
  if (readOnly_) return kAccessDenied;
  return checkIntegrity();
}

void Store::close() {
  for (sqlite3_stmt*& s : statements_) {
    sqlite3_finalize(s);
    s = nullptr;
  }
  if (db_) sqlite3_close_v2(db_);
  db_ = nullptr;
  broken_ = false;
  checked_ = damaged_ = false;
  inRead_ = false;
  group_ = false;
  counter_.close();
  cache_.clear();
  ++epoch_;
  counterAllowed_ = cacheAllowed_ = false;
}

// SQLite's connection may not be used across fork, and closing it here
// could checkpoint and remove the WAL journal that the parent still uses;
// the child opens a connection of its own.
void Store::forgetAfterFork() {
  if (db_ && g_abandonedCount < sizeof g_abandoned / sizeof g_abandoned[0]) g_abandoned[g_abandonedCount++] = db_;
  for (sqlite3_stmt*& s : statements_) s = nullptr;
  db_ = nullptr;
  broken_ = false;
  checked_ = damaged_ = false;
  inRead_ = false;
  group_ = false;
  counter_.forgetAfterFork();
  cache_.clear();
  ++epoch_;
  counterAllowed_ = cacheAllowed_ = false;
}

const CachedRead* Store::cached(const std::string& key) {
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

bool Store::mark(uint64_t* counter, uint64_t* epoch) {
  if (!db_ || !cacheAllowed_ || group_ || !counter_.settled(counter)) return false;
  // A read group's transaction may see an older state than the counter
  // names, and a read made inside it would be kept under the newer mark.
  if (inRead_ && (!groupSettled_ || groupValue_ != *counter)) return false;
  *epoch = epoch_.load();
  return true;
}

UnlockedCheck Store::unlockedCheck() const {
  UnlockedCheck check;
  const int every = g_recheckMs.load();
  // With a look at the files due on every call, no mark holds without it.
  if (every == 0) return check;
  check.word = counter_.word();
  check.epoch = &epoch_;
  check.dueMs = every < 0 ? INT64_MAX : lastCheckMs_ + every;
  return check;
}

void Store::keep(const std::string& key, CachedRead&& answer) {
  if (fill_ && (answer.rc == kOk || answer.rc == kFileNotFound || answer.rc == kKeyDeleted))
    cache_.put(key, std::move(answer));
  fill_ = false;
}

long Store::announceWrite() {
  if (group_ || !counterAllowed_) return kOk;
  if (!counter_.writable() && !counter_.open(counterFile(), true, fileMode(), file_)) return kAccessDenied;
  if (!counter_.announce(kBusyTimeoutMs)) return kRegistryIoFailed;
  WriteStage(kWriteAnnounced);
  return kOk;
}

void Store::completeWrite() {
  if (group_) return;
  // A transaction still open here was left by an exception.
  abortTransaction();
  if (counter_.isOpen()) WriteStage(kWriteCommitted);
  counter_.complete();
}

long Store::fail(int rc) {
  const long err = FromSqlite(rc);
  if (err == kBadDb) {
    broken_ = true;
    if (IsDamage(rc)) note(std::string("is damaged (") + sqlite3_errstr(rc) + ")");
  }
  return err;
}

long Store::exec(const char* sql) {
  const int rc = sqlite3_exec(db_, sql, nullptr, nullptr, nullptr);
  return rc == SQLITE_OK ? kOk : fail(rc);
}

// BEGIN IMMEDIATE takes the write lock up front: a deferred transaction
// that reads first could not be upgraded while another process writes.
long Store::begin() { return exec(group_ ? kSavepoint : "BEGIN IMMEDIATE"); }

long Store::commit() { return exec(group_ ? kRelease : "COMMIT"); }

void Store::rollback() {
  if (!db_ || sqlite3_get_autocommit(db_)) return;
  sqlite3_exec(db_, group_ ? kUndo : "ROLLBACK", nullptr, nullptr, nullptr);
}

void Store::abortTransaction() {
  if (db_ && !sqlite3_get_autocommit(db_)) sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
}

long Store::beginGroup() {
  if (group_) return kInvalidParameter;
  long rc = openForWrite(true);
  endRead();
  if (rc != kOk) return rc;
  rc = announceWrite();
  if (rc != kOk) return rc;
  rc = exec("BEGIN IMMEDIATE");
  if (rc != kOk) {
    completeWrite();
    return rc;
  }
  group_ = true;
  return kOk;
}

long Store::endGroup(bool keep) {
  if (!group_) return kInvalidParameter;
  long rc = kOk;
  if (!db_ || sqlite3_get_autocommit(db_)) {
    // The transaction ended under the group: whatever it held is gone.
    rc = keep ? kRegistryIoFailed : kOk;
  } else if (keep) {
    rc = exec("COMMIT");
  }
  group_ = false;
  completeWrite();
  ++g_snapshot;
  return rc;
}

void Store::joinRead(int depth) {
  if (depth > 0 && !inRead_ && sqlite3_get_autocommit(db_)) {
    // Loaded before the transaction takes its snapshot, which is then at
    // least as new.
    groupSettled_ = cacheAllowed_ && counter_.settled(&groupValue_);
    if (run(kBeginRead)) inRead_ = true;
  }
}

void Store::endRead() {
  if (inRead_ && db_ && !sqlite3_get_autocommit(db_)) run(kCommitRead);
  inRead_ = false;
  ++g_snapshot;
}

bool Store::run(Statement which) {
  sqlite3_stmt* s = statements_[which];
  const int rc = sqlite3_step(s);
  sqlite3_reset(s);
  return rc == SQLITE_DONE;
}

void Store::locate() {
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

std::string Store::counterFile() const { return file_ + kCounterSuffix; }
mode_t Store::fileMode() const { return machine_ ? 0644 : 0600; }

bool Store::recheckDue() const {
  const int every = g_recheckMs.load();
  return every == 0 || (every > 0 && NowMs() - lastCheckMs_ >= every);
}

// A store file replaced, moved away or damaged in place, an edit by another
// program, a counter file made anew: none moves the counter.
void Store::recheck() {
  lastCheckMs_ = NowMs();
  cache_.clear();
  ++epoch_;
  struct stat st;
  if (stat(file_.c_str(), &st) != 0 || st.st_dev != fileDev_ || st.st_ino != fileIno_) {
    close();
    ++generation_;
    return;
  }
  if (cacheAllowed_ && !counter_.isFile(counterFile())) counter_.open(counterFile(), false, fileMode(), file_);
}

bool Store::walJournal() {
  sqlite3_stmt* s = nullptr;
  bool wal = false;
  if (sqlite3_prepare_v2(db_, "PRAGMA journal_mode", -1, &s, nullptr) == SQLITE_OK && sqlite3_step(s) == SQLITE_ROW) {
    const char* mode = reinterpret_cast<const char*>(sqlite3_column_text(s, 0));
    wal = mode && sqlite3_stricmp(mode, "wal") == 0;
  }
  sqlite3_finalize(s);
  return wal;
}

int Store::pragmaInt(const char* sql, int* value) {
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

std::string Store::journalMode() const {
  const char* forced = std::getenv("QUILTOOL_STORE_JOURNAL");
  if (forced && (std::strcmp(forced, "wal") == 0 || std::strcmp(forced, "delete") == 0)) return forced;
  return (machine_ || network_) ? "delete" : "wal";
}

// A WAL commit is in the journal file before the call returns, so a process
// that dies loses nothing it was told is written; only a power cut may take
// back the last commits before the next checkpoint (never leaving a damaged
// file). A sync on every commit would cost a disk flush per setting;
// QUILTOOL_STORE_SYNC=full asks for it anyway. A rollback journal is always
// synced in full: there NORMAL could leave a damaged file after a power cut.
namespace {
bool FullSync(const std::string& journal) {
  const char* sync = std::getenv("QUILTOOL_STORE_SYNC");
  return journal != "wal" || (sync && std::strcmp(sync, "full") == 0);
}
}  // namespace

// Ours: our mark and exactly our tables. New: no mark and nothing in it.
// Anything else is damaged or another program's, and is never written.
// The looks share one read transaction: another process creating the
// store in between would otherwise show its tables without its mark.
long Store::classify(bool* empty) {
  const bool own = sqlite3_get_autocommit(db_) != 0;
  int rc = own ? Retrying([&] { return sqlite3_exec(db_, "BEGIN", nullptr, nullptr, nullptr); }) : SQLITE_OK;
  int appId = 0, ours = 0, tables = 0, objects = 0;
  if (rc == SQLITE_OK) rc = Retrying([&] { return pragmaInt("PRAGMA application_id", &appId); });
  if (rc == SQLITE_OK)
    rc = pragmaInt("SELECT count(*) FROM sqlite_master WHERE type='table' AND name IN ('keys','vals')", &ours);
  if (rc == SQLITE_OK) rc = pragmaInt("SELECT count(*) FROM sqlite_master WHERE type='table'", &tables);
  if (rc == SQLITE_OK) rc = pragmaInt("SELECT count(*) FROM sqlite_master", &objects);
  if (own) abortTransaction();
  if (rc != SQLITE_OK) {
    if (IsDamage(rc)) note(std::string("is damaged (") + sqlite3_errstr(rc) + ")");
    return FromSqlite(rc);
  }
  *empty = appId == 0 && objects == 0;
  if (*empty || (appId == kApplicationId && ours == 2 && tables == 2)) return kOk;
  note("is not a settings store (another program's database); it is left as it is");
  return kBadDb;
}

long Store::setJournal() {
  const std::string journal = journalMode();
  if (walJournal() != (journal == "wal")) {
    const std::string mode = "PRAGMA journal_mode=" + journal;
    // Changing the mode needs the file to itself. When others keep it
    // beyond the wait, the mode they set stays, which is as good.
    Retrying([&] { return sqlite3_exec(db_, mode.c_str(), nullptr, nullptr, nullptr); });
  }
  const std::string sync = std::string("PRAGMA synchronous=") + (FullSync(journal) ? "FULL" : "NORMAL");
  return sqlite3_exec(db_, sync.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK ? kOk : kRegistryIoFailed;
}

// Several processes may meet one fresh file: the write lock decides, and
// whoever gets it second finds the store made and leaves it.
long Store::createSchema() {
  int rc = Retrying([&] { return sqlite3_exec(db_, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr); });
  if (rc != SQLITE_OK) return FromSqlite(rc);
  bool empty = false;
  long err = classify(&empty);
  if (err == kOk && empty) {
    const std::string init = std::string(kSchema) + "PRAGMA application_id=" + std::to_string(kApplicationId) +
                             ";PRAGMA user_version=" + std::to_string(kFormatVersion) + ";";
    rc = sqlite3_exec(db_, init.c_str(), nullptr, nullptr, nullptr);
    err = FromSqlite(rc);
  }
  if (err == kOk) err = FromSqlite(Retrying([&] { return sqlite3_exec(db_, "COMMIT", nullptr, nullptr, nullptr); }));
  if (err != kOk) abortTransaction();
  return err;
}

long Store::configure() {
  sqlite3_trace_v2(db_, SQLITE_TRACE_STMT, CountStatement, nullptr);
  sqlite3_busy_timeout(db_, kBusyTimeoutMs);
  sqlite3_extended_result_codes(db_, 0);
  // Looking at the file first tells a damaged or foreign file from a store
  // before anything is written to it.
  bool empty = false;
  long err = classify(&empty);
  if (err != kOk) return err;
  if (readOnly_) {
    // A new file nobody may write holds no keys yet.
    if (empty) return kFileNotFound;
  } else {
    err = setJournal();
    if (err == kOk && empty) err = createSchema();
    if (err != kOk) return err;
  }
  for (int i = 0; i < kStatementCount; ++i) {
    const int rc = sqlite3_prepare_v3(db_, kStatements[i], -1, SQLITE_PREPARE_PERSISTENT, &statements_[i], nullptr);
    if (rc != SQLITE_OK) return FromSqlite(rc);
  }
  return kOk;
}

// quick_check reads every page once, which for a settings store takes a
// few milliseconds; it is run once per open, before the first change.
long Store::checkIntegrity() {
  if (checked_) return damaged_ ? kBadDb : kOk;
  endRead();
  std::string verdict;
  const int rc = Retrying([&] {
    sqlite3_stmt* s = nullptr;
    int step = sqlite3_prepare_v2(db_, "PRAGMA quick_check(1)", -1, &s, nullptr);
    if (step == SQLITE_OK) step = sqlite3_step(s);
    if (step == SQLITE_ROW) {
      const unsigned char* text = sqlite3_column_text(s, 0);
      verdict = text ? reinterpret_cast<const char*>(text) : "";
      step = SQLITE_OK;
    }
    sqlite3_finalize(s);
    return step;
  });
  if (IsBusy(rc)) return kRegistryIoFailed;
  if (rc != SQLITE_OK && !IsDamage(rc)) return FromSqlite(rc);
  checked_ = true;
  damaged_ = rc != SQLITE_OK || verdict != "ok";
  if (!damaged_) return kOk;
  note("is damaged (" + (rc != SQLITE_OK ? std::string(sqlite3_errstr(rc)) : verdict) +
       "); it is no longer written to");
  return kBadDb;
}

// The damage is named once per file and verdict in the debug trace, so
// that a setting that never sticks can be traced to its file.
void Store::note(const std::string& what) {
  problem_ = "the settings store " + file_ + " " + what;
  if (problem_ != traced_) {
    traced_ = problem_;
    gwdebug("QuilTool: %s", problem_.c_str());
  }
}

}  // namespace sqlite_store

bool UserStoreMarkHolds(const UnlockedCheck& check, uint64_t counter, uint64_t epoch) {
  return check.word && __atomic_load_n(check.word, __ATOMIC_ACQUIRE) == counter &&
         check.epoch->load(std::memory_order_acquire) == epoch && sqlite_store::NowMs() < check.dueMs;
}

}  // namespace qt_reg
