// The embedded backend: one SQLite file per database.
//
// Project files live on network shares, where a write-ahead log cannot
// work (it needs shared memory on one host), so files keep SQLite's
// rollback journal; a single writer is the suite's lock files' business.
// Records sit in one id-ordered table without row ids, so that a record is
// one b-tree entry and walks follow the key; owner links have a partial
// index that only member records enter.
#include <sqlite3.h>

#include <array>
#include <cstring>
#include <map>

#include "project/qb_backend.h"

namespace qb {

namespace {

const int kApplicationId = 0x51424442;  // "QBDB"
const int kFormat = 1;
const int kPageSize = 4096;

const char kSchema[] =
    "CREATE TABLE qb_info(key TEXT PRIMARY KEY NOT NULL, value INTEGER NOT NULL) WITHOUT ROWID;"
    "CREATE TABLE qb_sets(no INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE,"
    " owner_no INTEGER NOT NULL, owner_att INTEGER NOT NULL);"
    "CREATE TABLE qb_atts(set_no INTEGER NOT NULL, att INTEGER NOT NULL, type INTEGER NOT NULL,"
    " name TEXT NOT NULL, PRIMARY KEY(set_no, att)) WITHOUT ROWID;"
    "CREATE TABLE qb_recs(id TEXT PRIMARY KEY NOT NULL, set_no INTEGER NOT NULL, owner TEXT,"
    " data BLOB NOT NULL) WITHOUT ROWID;"
    "CREATE INDEX qb_recs_owner ON qb_recs(owner) WHERE owner IS NOT NULL;"
    "CREATE TABLE qb_ahm(id TEXT PRIMARY KEY NOT NULL, data BLOB NOT NULL);"
    "CREATE TRIGGER qb_recs_drop_ahm AFTER DELETE ON qb_recs BEGIN"
    " DELETE FROM qb_ahm WHERE id = old.id; END;";

// Tables in the order and key order of a stream image.
const struct {
  const char* name;
  const char* columns;
  const char* order;
} kTables[] = {{"qb_info", "key, value", "key"},
               {"qb_sets", "no, name, owner_no, owner_att", "no"},
               {"qb_atts", "set_no, att, type, name", "set_no, att"},
               {"qb_recs", "id, set_no, owner, data", "id"},
               {"qb_ahm", "id, data", "id"}};

// Whether a walk's next row lies beyond where it started, in the byte
// order the ids' index keeps.
bool InWalkOrder(std::string_view from, std::string_view id, bool forward, bool inclusive) {
  const int order = id.compare(from);
  if (order == 0) return inclusive;
  return forward ? order > 0 : order < 0;
}

short Map(int rc) {
  switch (rc & 0xFF) {
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE:
      return QB_OK;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return QBERR_BUSY;
    case SQLITE_NOMEM:
      return QBERR_NOMEM;
    case SQLITE_READONLY:
      return QBERR_READONLY;
    case SQLITE_CORRUPT:
      return QBERR_CORRUPT;
    case SQLITE_NOTADB:
      return QBERR_NOTQBFILE;
    case SQLITE_CANTOPEN:
      return QBERR_NOFILE;
    case SQLITE_CONSTRAINT:
      return QBERR_EXISTS;
    default:
      return QBERR_IO;
  }
}

void BindText(sqlite3_stmt* st, int i, std::string_view text, bool copy) {
  sqlite3_bind_text(st, i, text.data() ? text.data() : "", static_cast<int>(text.size()),
                    copy ? SQLITE_TRANSIENT : SQLITE_STATIC);
}

void BindBlob(sqlite3_stmt* st, int i, std::string_view data) {
  // A null pointer would bind NULL, not an empty block.
  sqlite3_bind_blob(st, i, data.data() ? data.data() : "", static_cast<int>(data.size()), SQLITE_STATIC);
}

std::string_view ColumnText(sqlite3_stmt* st, int i) {
  const char* p = reinterpret_cast<const char*>(sqlite3_column_text(st, i));
  return p ? std::string_view(p, static_cast<size_t>(sqlite3_column_bytes(st, i))) : std::string_view();
}

std::string_view ColumnBlob(sqlite3_stmt* st, int i) {
  const char* p = static_cast<const char*>(sqlite3_column_blob(st, i));
  return p ? std::string_view(p, static_cast<size_t>(sqlite3_column_bytes(st, i))) : std::string_view();
}

short Exec(sqlite3* db, const char* sql) { return Map(sqlite3_exec(db, sql, nullptr, nullptr, nullptr)); }

// Runs a one-value query.
short QueryInt(sqlite3* db, const char* sql, long long* value) {
  sqlite3_stmt* st = nullptr;
  int rc = sqlite3_prepare_v2(db, sql, -1, &st, nullptr);
  if (rc == SQLITE_OK) {
    rc = sqlite3_step(st);
    if (rc == SQLITE_ROW) {
      *value = sqlite3_column_int64(st, 0);
      rc = SQLITE_OK;
    } else if (rc == SQLITE_DONE) {
      rc = SQLITE_CORRUPT;
    }
  }
  sqlite3_finalize(st);
  return Map(rc);
}

// Upper bound of the ids that start with prefix: ids are printable ASCII,
// all below 0x7F.
std::string PrefixEnd(const std::string& prefix) { return prefix + '\x7f'; }

class SqliteBackend final : public Backend {
 public:
  ~SqliteBackend() override { Close(); }

  short Create(const std::string& path, const Dictionary& dict) override {
    Close();
    int rc = sqlite3_open_v2(path.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                             nullptr);
    if (rc != SQLITE_OK) return Fail(rc);
    short s = InitSchema(db_);
    if (s == QB_OK) s = Exec(db_, "BEGIN");
    if (s == QB_OK) s = WriteDictionary(dict);
    if (s == QB_OK) s = Exec(db_, "COMMIT");
    Close();
    return s;
  }

  short Open(const std::string& path, bool writable, long timeoutMs) override {
    Close();
    // Read-only use still opens for writing when it may: a journal left by
    // a crashed writer has to be rolled back before anything is read.
    int rc = sqlite3_open_v2(path.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    if (rc != SQLITE_OK && !writable) {
      Close();
      rc = sqlite3_open_v2(path.c_str(), &db_, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr);
    }
    if (rc != SQLITE_OK) return Fail(rc);
    SetTimeout(timeoutMs);
    short s = Verify();
    if (s == QB_OK && !writable) s = Exec(db_, "PRAGMA query_only=1");
    if (s == QB_OK) s = PrepareAll();
    if (s != QB_OK) Close();
    return s;
  }

  short OpenImage(const std::string& image) override {
    Close();
    int rc = sqlite3_open_v2(":memory:", &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    if (rc != SQLITE_OK) return Fail(rc);
    unsigned char* copy = static_cast<unsigned char*>(sqlite3_malloc64(image.size() ? image.size() : 1));
    if (!copy) {
      Close();
      return QBERR_NOMEM;
    }
    if (!image.empty()) std::memcpy(copy, image.data(), image.size());
    // On failure SQLite frees the copy itself.
    rc = sqlite3_deserialize(db_, "main", copy, static_cast<sqlite3_int64>(image.size()),
                             static_cast<sqlite3_int64>(image.size()),
                             SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_RESIZEABLE);
    if (rc != SQLITE_OK) return Fail(rc);
    // The full check comes once the dictionary is loaded (qb_files.cpp).
    short s = Verify();
    if (s == QB_OK) s = PrepareAll();
    if (s != QB_OK) Close();
    return s;
  }

  short LoadDictionary(Dictionary* dict) override {
    Dictionary d;
    long long value = 0;
    short s = QueryInt(db_, "SELECT value FROM qb_info WHERE key='idlength'", &value);
    if (s != QB_OK) return s == QBERR_BUSY ? s : QBERR_CORRUPT;
    d.idLength = static_cast<short>(value < 0 || value > QB_MAXIDLEN ? 0 : value);
    sqlite3_stmt* st = nullptr;
    int rc = sqlite3_prepare_v2(db_, "SELECT no, name, owner_no, owner_att FROM qb_sets ORDER BY no", -1, &st, nullptr);
    while (st && (rc = sqlite3_step(st)) == SQLITE_ROW) {
      if (sqlite3_column_int64(st, 0) != static_cast<long long>(d.sets.size()) + 1) {
        rc = SQLITE_CORRUPT;
        break;
      }
      SetDef set;
      set.name = std::string(ColumnText(st, 1));
      const long long owner = sqlite3_column_int64(st, 2);
      set.ownerSet = owner > 0 && owner <= 32767 ? static_cast<int>(owner - 1) : -1;
      set.ownerAtt = static_cast<short>(sqlite3_column_int(st, 3));
      d.sets.push_back(set);
    }
    sqlite3_finalize(st);
    if (rc != SQLITE_DONE) return rc == SQLITE_BUSY ? QBERR_BUSY : QBERR_CORRUPT;
    st = nullptr;
    rc = sqlite3_prepare_v2(db_, "SELECT set_no, att, type, name FROM qb_atts ORDER BY set_no, att", -1, &st, nullptr);
    while (st && (rc = sqlite3_step(st)) == SQLITE_ROW) {
      const long long setNo = sqlite3_column_int64(st, 0);
      const long long att = sqlite3_column_int64(st, 1);
      if (setNo < 1 || setNo > static_cast<long long>(d.sets.size()) || att < 1 || att > 32767) {
        rc = SQLITE_CORRUPT;
        break;
      }
      AttDef a;
      a.number = static_cast<short>(att);
      a.type = static_cast<short>(sqlite3_column_int(st, 2));
      a.name = std::string(ColumnText(st, 3));
      d.sets[setNo - 1].atts.push_back(a);
    }
    sqlite3_finalize(st);
    if (rc != SQLITE_DONE) return rc == SQLITE_BUSY ? QBERR_BUSY : QBERR_CORRUPT;
    d.Reindex();
    if (d.Validate(nullptr) != QB_OK) return QBERR_CORRUPT;
    *dict = std::move(d);
    return QB_OK;
  }

  void SetTimeout(long timeoutMs) override {
    if (db_) sqlite3_busy_timeout(db_, timeoutMs < 0 ? 0 : static_cast<int>(timeoutMs));
  }

  void Close() override {
    if (!db_) return;
    ResetCursors();
    for (auto& c : cursors_) sqlite3_finalize(c.second.st);
    cursors_.clear();
    lastCursor_ = nullptr;
    for (sqlite3_stmt** st : Statements()) {
      sqlite3_finalize(*st);
      *st = nullptr;
    }
    // A statement a step left behind when it threw (out of memory) would
    // keep the connection alive after close; none is in use any more.
    while (sqlite3_stmt* stray = sqlite3_next_stmt(db_, nullptr)) sqlite3_finalize(stray);
    // Closing with a transaction open rolls it back.
    sqlite3_close_v2(db_);
    db_ = nullptr;
  }

  short BeginRead() override {
    ResetCursors();
    short s = Exec(db_, "BEGIN");
    if (s != QB_OK) return s;
    // BEGIN alone takes no lock: read once so that the snapshot starts now.
    long long n = 0;
    s = QueryInt(db_, "SELECT count(*) FROM qb_info", &n);
    if (s != QB_OK) Exec(db_, "ROLLBACK");
    return s;
  }

  short BeginWrite() override {
    ResetCursors();
    return Exec(db_, "BEGIN IMMEDIATE");
  }

  short Commit() override {
    ResetCursors();
    const short s = Exec(db_, "COMMIT");
    if (s != QB_OK && InTransaction()) Exec(db_, "ROLLBACK");
    return s;
  }

  void Rollback() override {
    ResetCursors();
    if (InTransaction()) Exec(db_, "ROLLBACK");
  }

  bool InTransaction() const override { return db_ && !sqlite3_get_autocommit(db_); }

  short BeginGroup() override {
    ResetCursors();
    return Exec(db_, "SAVEPOINT qb_group");
  }

  short EndGroup(bool keep) override {
    ResetCursors();
    if (keep) {
      const short s = Exec(db_, "RELEASE qb_group");
      if (s == QB_OK) return s;
    }
    Exec(db_, "ROLLBACK TO qb_group");
    Exec(db_, "RELEASE qb_group");
    return keep ? QBERR_IO : QB_OK;
  }

  short Get(std::string_view id, Row* row) override {
    BindText(get_, 1, id, false);
    const int rc = sqlite3_step(get_);
    short s = QBERR_NOTFOUND;
    if (rc == SQLITE_ROW) {
      row->id = id;
      row->setNo = sqlite3_column_int(get_, 0);
      row->owner = ColumnText(get_, 1);
      row->data = ColumnBlob(get_, 2);
      Keep(row);
      s = QB_OK;
    } else if (rc != SQLITE_DONE) {
      s = Map(rc);
    }
    sqlite3_reset(get_);
    return s;
  }

  short Lookup(std::string_view id, int* setNo) override {
    *setNo = 0;
    BindText(lookup_, 1, id, false);
    const int rc = sqlite3_step(lookup_);
    if (rc == SQLITE_ROW) *setNo = sqlite3_column_int(lookup_, 0);
    sqlite3_reset(lookup_);
    return rc == SQLITE_ROW || rc == SQLITE_DONE ? QB_OK : Map(rc);
  }

  short Put(std::string_view id, int setNo, std::string_view owner, std::string_view data, bool fresh) override {
    ResetCursors();
    sqlite3_stmt* st = fresh ? insert_ : upsert_;
    BindText(st, 1, id, false);
    sqlite3_bind_int(st, 2, setNo);
    if (owner.empty())
      sqlite3_bind_null(st, 3);
    else
      BindText(st, 3, owner, false);
    BindBlob(st, 4, data);
    const int rc = sqlite3_step(st);
    sqlite3_reset(st);
    if (rc == SQLITE_DONE) return fresh || sqlite3_changes(db_) > 0 ? QB_OK : QBERR_DUPLICATE;
    if ((rc & 0xFF) == SQLITE_CONSTRAINT) {
      int other = 0;
      Lookup(id, &other);
      return other == setNo ? QBERR_EXISTS : QBERR_DUPLICATE;
    }
    return Map(rc);
  }

  short Delete(std::string_view id) override {
    ResetCursors();
    BindText(delete_, 1, id, false);
    const int rc = sqlite3_step(delete_);
    sqlite3_reset(delete_);
    if (rc != SQLITE_DONE) return Map(rc);
    return sqlite3_changes(db_) > 0 ? QB_OK : QBERR_NOTFOUND;
  }

  short HasMembers(std::string_view ownerId, bool* any) override {
    BindText(members_, 1, ownerId, false);
    const int rc = sqlite3_step(members_);
    *any = rc == SQLITE_ROW;
    sqlite3_reset(members_);
    return rc == SQLITE_ROW || rc == SQLITE_DONE ? QB_OK : Map(rc);
  }

  short Step(const Walk& walk, bool forward, const std::string_view* from, bool inclusive, Row* row) override {
    const int key = CursorKey(walk, forward, from != nullptr, inclusive) | (row->wantOwner ? kWithOwner : 0);
    const bool inTransaction = InTransaction();
    int rc;
    // Inside a transaction a walk that goes on from where it stopped keeps
    // its statement positioned: one step instead of a fresh descent. Any
    // statement of the same walk, direction and columns will do, whatever
    // bound it started from: a walk begun at the first record goes on with
    // the statement that has no bound to test on every row.
    const int sameRows = kForward | kWithOwner;
    if (lastCursor_ && lastCursor_->live && from && !inclusive && inTransaction &&
        (lastKey_ & sameRows) == (key & sameRows) && lastCursor_->SameId(*from) && lastCursor_->walk == walk) {
      rc = sqlite3_step(lastCursor_->st);
    } else {
      if (key != lastKey_ || !lastCursor_) {
        lastCursor_ = &cursors_[key];  // std::map keeps its elements where they are
        lastKey_ = key;
      }
      Cursor& fresh = *lastCursor_;
      if (!fresh.st) {
        // Walks that do not need the owner leave its column out: every
        // column read costs on each of a million rows.
        const std::string sql = std::string("SELECT id, set_no, data") + (row->wantOwner ? ", owner" : "") +
                                " FROM qb_recs" + Where(key, true) + " ORDER BY id" + (forward ? "" : " DESC");
        const int prepared = sqlite3_prepare_v3(db_, sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &fresh.st, nullptr);
        if (prepared != SQLITE_OK) {
          cursors_.erase(key);
          lastCursor_ = nullptr;
          return Map(prepared);
        }
      }
      sqlite3_reset(fresh.st);
      fresh.live = false;
      fresh.walk = walk;
      Bind(fresh.st, key, walk, from);
      rc = sqlite3_step(fresh.st);
    }
    Cursor& c = *lastCursor_;
    if (rc != SQLITE_ROW) {
      sqlite3_reset(c.st);
      c.live = false;
      return rc == SQLITE_DONE ? QBERR_NOTFOUND : Map(rc);
    }
    // Ids are text without zeros: their length needs no second call.
    const char* idText = reinterpret_cast<const char*>(sqlite3_column_text(c.st, 0));
    const std::string_view id(idText ? idText : "", idText ? std::strlen(idText) : 0);
    if (from && !InWalkOrder(*from, id, forward, inclusive)) {
      // A damaged index can hand back a row behind the walk, which would
      // send a caller's loop round for ever.
      sqlite3_reset(c.st);
      c.live = false;
      return QBERR_CORRUPT;
    }
    c.SetId(id);
    row->id = id;
    row->setNo = sqlite3_column_int(c.st, 1);
    row->data = ColumnBlob(c.st, 2);
    row->owner = row->wantOwner ? ColumnText(c.st, 3) : std::string_view();
    if (inTransaction) {
      c.live = true;
      return QB_OK;
    }
    // Outside one, a statement left open would hold the file's read lock.
    Keep(row);
    sqlite3_reset(c.st);
    c.live = false;
    return QB_OK;
  }

  short Count(const Walk& walk, long* count) override {
    const int key = CursorKey(walk, true, false, false);
    sqlite3_stmt* st = nullptr;
    const std::string sql = "SELECT count(*) FROM qb_recs" + Where(key, false);
    int rc = sqlite3_prepare_v2(db_, sql.c_str(), -1, &st, nullptr);
    if (rc == SQLITE_OK) {
      Bind(st, key, walk, nullptr);
      rc = sqlite3_step(st);
      if (rc == SQLITE_ROW) *count = static_cast<long>(sqlite3_column_int64(st, 0));
    }
    sqlite3_finalize(st);
    return rc == SQLITE_ROW ? QB_OK : Map(rc == SQLITE_DONE ? SQLITE_CORRUPT : rc);
  }

  short GetAhm(std::string_view id, std::string* data, bool* found) override {
    BindText(ahmGet_, 1, id, false);
    const int rc = sqlite3_step(ahmGet_);
    *found = rc == SQLITE_ROW;
    if (*found) {
      const std::string_view blob = ColumnBlob(ahmGet_, 0);
      data->assign(blob.data() ? blob.data() : "", blob.size());
    }
    sqlite3_reset(ahmGet_);
    return rc == SQLITE_ROW || rc == SQLITE_DONE ? QB_OK : Map(rc);
  }

  short PutAhm(std::string_view id, std::string_view data) override {
    ResetCursors();
    BindText(ahmPut_, 1, id, false);
    BindBlob(ahmPut_, 2, data);
    const int rc = sqlite3_step(ahmPut_);
    sqlite3_reset(ahmPut_);
    return Map(rc);
  }

  short DeleteAhm(std::string_view id) override {
    ResetCursors();
    BindText(ahmDelete_, 1, id, false);
    const int rc = sqlite3_step(ahmDelete_);
    sqlite3_reset(ahmDelete_);
    return Map(rc);
  }

  short Serialize(std::string* image) override {
    // A fresh database filled in key order gives the same pages, and so
    // the same bytes, for the same content whatever the file's history.
    const bool ownRead = !InTransaction();
    if (ownRead) {
      const short s = BeginRead();
      if (s != QB_OK) return s;
    }
    sqlite3* out = nullptr;
    short s = Map(sqlite3_open_v2(":memory:", &out, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr));
    if (s == QB_OK) s = InitSchema(out);
    if (s == QB_OK) s = Exec(out, "BEGIN");
    for (const auto& t : kTables) {
      if (s != QB_OK) break;
      s = CopyTable(out, t.name, t.columns, t.order);
    }
    if (s == QB_OK) s = Exec(out, "COMMIT");
    if (s == QB_OK) {
      sqlite3_int64 size = 0;
      unsigned char* bytes = sqlite3_serialize(out, "main", &size, 0);
      if (bytes) {
        image->assign(reinterpret_cast<const char*>(bytes), static_cast<size_t>(size));
        sqlite3_free(bytes);
      } else {
        s = QBERR_NOMEM;
      }
    }
    sqlite3_close_v2(out);
    if (ownRead) Commit();
    return s;
  }

  short CheckStorage(std::vector<std::string>* problems) override {
    sqlite3_stmt* st = nullptr;
    int rc = sqlite3_prepare_v2(db_, "PRAGMA integrity_check(100)", -1, &st, nullptr);
    while (st && (rc = sqlite3_step(st)) == SQLITE_ROW) {
      const std::string_view text = ColumnText(st, 0);
      if (text != "ok") problems->push_back("storage: " + std::string(text));
    }
    sqlite3_finalize(st);
    if (rc != SQLITE_DONE) return Map(rc);
    st = nullptr;
    rc = sqlite3_prepare_v2(db_, "SELECT id FROM qb_ahm WHERE id NOT IN (SELECT id FROM qb_recs) ORDER BY id", -1,
                            &st, nullptr);
    while (st && (rc = sqlite3_step(st)) == SQLITE_ROW)
      problems->push_back("attached block without a record: " + std::string(ColumnText(st, 0)));
    sqlite3_finalize(st);
    return rc == SQLITE_DONE ? QB_OK : Map(rc);
  }

 private:
  struct Cursor {
    sqlite3_stmt* st = nullptr;
    bool live = false;  // positioned on the last id inside the current transaction
    Walk walk;
    // The last id, kept inline: it is set on every step of a walk.
    char lastId[QB_IDSIZE + 12];
    size_t lastLength = 0;
    bool lastKept = false;  // false when it was too long to keep
    void SetId(std::string_view id) {
      lastKept = id.size() <= sizeof lastId;
      lastLength = id.size();
      if (lastKept) std::memcpy(lastId, id.data(), id.size());
    }
    bool SameId(std::string_view id) const {
      return lastKept && id.size() == lastLength && std::memcmp(id.data(), lastId, lastLength) == 0;
    }
  };

  enum {
    kForward = 1 << 2,
    kBounded = 1 << 3,
    kInclusive = 1 << 4,
    kHasSet = 1 << 5,
    kHasPrefix = 1 << 6,
    kWithOwner = 1 << 7,
  };

  static int CursorKey(const Walk& walk, bool forward, bool bounded, bool inclusive) {
    return static_cast<int>(walk.kind) | (forward ? kForward : 0) | (bounded ? kBounded : 0) |
           (inclusive ? kInclusive : 0) | (walk.setNo > 0 ? kHasSet : 0) |
           (!walk.prefix.empty() && walk.kind != Walk::kOwner ? kHasPrefix : 0);
  }

  // Parameters: ?1 the bound id, ?2 the set, ?3 the owner, ?4/?5 the prefix range.
  static std::string Where(int key, bool withBound) {
    std::string w = " WHERE 1";
    if (withBound && (key & kBounded)) {
      const bool forward = key & kForward;
      w += (key & kInclusive) ? (forward ? " AND id >= ?1" : " AND id <= ?1") : (forward ? " AND id > ?1" : " AND id < ?1");
    }
    if (key & kHasSet) w += " AND set_no = ?2";
    if ((key & 3) == Walk::kOwner) w += " AND owner = ?3";
    if (key & kHasPrefix) w += " AND id >= ?4 AND id < ?5";
    return w;
  }

  static void Bind(sqlite3_stmt* st, int key, const Walk& walk, const std::string_view* from) {
    // Bound values are copied: a continued walk must not read the caller's
    // record buffer, which is gone by then.
    if (from && (key & kBounded)) BindText(st, 1, *from, true);
    if (key & kHasSet) sqlite3_bind_int(st, 2, walk.setNo);
    if ((key & 3) == Walk::kOwner) BindText(st, 3, walk.owner, true);
    if (key & kHasPrefix) {
      BindText(st, 4, walk.prefix, true);
      BindText(st, 5, PrefixEnd(walk.prefix), true);
    }
  }

  // Copies a row's views so that they outlive the statement's reset.
  void Keep(Row* row) {
    scratchId_.assign(row->id.data() ? row->id.data() : "", row->id.size());
    scratchOwner_.assign(row->owner.data() ? row->owner.data() : "", row->owner.size());
    scratchData_.assign(row->data.data() ? row->data.data() : "", row->data.size());
    row->id = scratchId_;
    row->owner = scratchOwner_;
    row->data = scratchData_;
  }

  void ResetCursors() {
    for (auto& c : cursors_) {
      if (c.second.live) {
        sqlite3_reset(c.second.st);
        c.second.live = false;
      }
    }
  }

  short Fail(int rc) {
    const short s = Map(rc);
    Close();
    return s == QB_OK ? QBERR_IO : s;
  }

  static short InitSchema(sqlite3* db) {
    const std::string sql = "PRAGMA page_size=" + std::to_string(kPageSize) +
                            ";PRAGMA journal_mode=DELETE;PRAGMA application_id=" + std::to_string(kApplicationId) +
                            ";PRAGMA user_version=" + std::to_string(kFormat) + ";" + kSchema;
    return Exec(db, sql.c_str());
  }

  short WriteDictionary(const Dictionary& dict) {
    const std::string info = "INSERT INTO qb_info VALUES('format'," + std::to_string(kFormat) +
                             "),('idlength'," + std::to_string(dict.idLength) + "),('idtype'," +
                             std::to_string(dict.idType) + ")";
    short s = Exec(db_, info.c_str());
    sqlite3_stmt* sets = nullptr;
    sqlite3_stmt* atts = nullptr;
    if (s == QB_OK) s = Map(sqlite3_prepare_v2(db_, "INSERT INTO qb_sets VALUES(?1,?2,?3,?4)", -1, &sets, nullptr));
    if (s == QB_OK) s = Map(sqlite3_prepare_v2(db_, "INSERT INTO qb_atts VALUES(?1,?2,?3,?4)", -1, &atts, nullptr));
    for (size_t i = 0; s == QB_OK && i < dict.sets.size(); ++i) {
      const SetDef& set = dict.sets[i];
      sqlite3_bind_int(sets, 1, static_cast<int>(i + 1));
      BindText(sets, 2, set.name, false);
      sqlite3_bind_int(sets, 3, set.ownerSet + 1);
      sqlite3_bind_int(sets, 4, set.ownerSet >= 0 ? set.ownerAtt : 0);
      s = Map(sqlite3_step(sets));
      sqlite3_reset(sets);
      for (const AttDef& a : set.atts) {
        if (s != QB_OK) break;
        sqlite3_bind_int(atts, 1, static_cast<int>(i + 1));
        sqlite3_bind_int(atts, 2, a.number);
        sqlite3_bind_int(atts, 3, a.type);
        BindText(atts, 4, a.name, false);
        s = Map(sqlite3_step(atts));
        sqlite3_reset(atts);
      }
    }
    sqlite3_finalize(sets);
    sqlite3_finalize(atts);
    return s;
  }

  short Verify() {
    long long value = 0;
    short s = QueryInt(db_, "PRAGMA application_id", &value);
    if (s != QB_OK) return s == QBERR_CORRUPT || s == QBERR_IO ? QBERR_NOTQBFILE : s;
    if (value != kApplicationId) return QBERR_NOTQBFILE;
    s = QueryInt(db_, "PRAGMA user_version", &value);
    if (s != QB_OK) return s;
    if (value > kFormat) return QBERR_VERSION;
    s = QueryInt(db_,
                 "SELECT count(*) FROM sqlite_master WHERE type='table' AND name IN"
                 " ('qb_info','qb_sets','qb_atts','qb_recs','qb_ahm')",
                 &value);
    if (s != QB_OK) return s;
    return value == 5 ? QB_OK : QBERR_NOTQBFILE;
  }

  // A fixed array: Close runs from the destructor, where nothing may allocate.
  std::array<sqlite3_stmt**, 9> Statements() {
    return {&get_, &lookup_, &insert_, &upsert_, &delete_, &members_, &ahmGet_, &ahmPut_, &ahmDelete_};
  }

  short PrepareAll() {
    const char* sql[] = {
        "SELECT set_no, owner, data FROM qb_recs WHERE id=?1",
        "SELECT set_no FROM qb_recs WHERE id=?1",
        "INSERT INTO qb_recs(id, set_no, owner, data) VALUES(?1,?2,?3,?4)",
        "INSERT INTO qb_recs(id, set_no, owner, data) VALUES(?1,?2,?3,?4) ON CONFLICT(id) DO UPDATE"
        " SET owner=excluded.owner, data=excluded.data WHERE qb_recs.set_no=excluded.set_no",
        "DELETE FROM qb_recs WHERE id=?1",
        "SELECT 1 FROM qb_recs WHERE owner=?1 LIMIT 1",
        "SELECT data FROM qb_ahm WHERE id=?1",
        "INSERT OR REPLACE INTO qb_ahm(id, data) VALUES(?1,?2)",
        "DELETE FROM qb_ahm WHERE id=?1",
    };
    const std::array<sqlite3_stmt**, 9> targets = Statements();
    for (size_t i = 0; i < targets.size(); ++i) {
      const int rc = sqlite3_prepare_v3(db_, sql[i], -1, SQLITE_PREPARE_PERSISTENT, targets[i], nullptr);
      if (rc != SQLITE_OK) return rc == SQLITE_BUSY ? QBERR_BUSY : QBERR_NOTQBFILE;
    }
    return QB_OK;
  }

  short CopyTable(sqlite3* out, const char* table, const char* columns, const char* order) {
    const std::string select = std::string("SELECT ") + columns + " FROM " + table + " ORDER BY " + order;
    sqlite3_stmt* from = nullptr;
    sqlite3_stmt* to = nullptr;
    int rc = sqlite3_prepare_v2(db_, select.c_str(), -1, &from, nullptr);
    const int n = rc == SQLITE_OK ? sqlite3_column_count(from) : 0;
    if (rc == SQLITE_OK) {
      std::string insert = std::string("INSERT INTO ") + table + "(" + columns + ") VALUES(?";
      for (int i = 1; i < n; ++i) insert += ",?";
      insert += ")";
      rc = sqlite3_prepare_v2(out, insert.c_str(), -1, &to, nullptr);
    }
    while (rc == SQLITE_OK && (rc = sqlite3_step(from)) == SQLITE_ROW) {
      for (int i = 0; i < n; ++i) sqlite3_bind_value(to, i + 1, sqlite3_column_value(from, i));
      rc = sqlite3_step(to);
      sqlite3_reset(to);
      if (rc == SQLITE_DONE) rc = SQLITE_OK;
    }
    sqlite3_finalize(from);
    sqlite3_finalize(to);
    return rc == SQLITE_DONE ? QB_OK : Map(rc == SQLITE_OK ? SQLITE_ERROR : rc);
  }

  sqlite3* db_ = nullptr;
  sqlite3_stmt* get_ = nullptr;
  sqlite3_stmt* lookup_ = nullptr;
  sqlite3_stmt* insert_ = nullptr;
  sqlite3_stmt* upsert_ = nullptr;
  sqlite3_stmt* delete_ = nullptr;
  sqlite3_stmt* members_ = nullptr;
  sqlite3_stmt* ahmGet_ = nullptr;
  sqlite3_stmt* ahmPut_ = nullptr;
  sqlite3_stmt* ahmDelete_ = nullptr;
  std::map<int, Cursor> cursors_;
  int lastKey_ = -1;
  Cursor* lastCursor_ = nullptr;
  std::string scratchId_, scratchOwner_, scratchData_;
};

}  // namespace

std::unique_ptr<Backend> NewEmbeddedBackend() { return std::unique_ptr<Backend>(new SqliteBackend()); }

}  // namespace qb
