// Project databases against plain SQLite doing the same work in the same
// run: saving 100,000 records in one quick update, and walking 1,000,000
// records in a quick read. Target: the engine within 2x of plain SQLite.
//
// Plain SQLite gets the best layout for the job (one table keyed by id,
// without row ids) and the same connection settings as the engine:
// rollback journal, default page size and synchronous mode, no mutex.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "QBaseDb.h"
#include "qb.h"

namespace fs = std::filesystem;

namespace {

const int kSaved = 100000;
const int kWalked = 1000000;
const char kDictionary[] =
    "idlength 10\n"
    "set PANEL\n"
    "  att 1 NAME wsz\n"
    "  att 2 RATING long\n";

class Scratch {
 public:
  Scratch() : dir_(fs::temp_directory_path() / ("qbase_bench_" + std::to_string(getpid()))) {
    fs::create_directories(dir_);
  }
  ~Scratch() {
    std::error_code ec;
    fs::remove_all(dir_, ec);
  }
  std::string file(const std::string& name) const { return (dir_ / name).string(); }
  void remove(const std::string& name) const {
    std::error_code ec;
    fs::remove(dir_ / name, ec);
    fs::remove(dir_ / (name + "-journal"), ec);
  }

 private:
  fs::path dir_;
};

Scratch& Dir() {
  static Scratch scratch;
  return scratch;
}

std::wstring Wide(const std::string& s) { return std::wstring(s.begin(), s.end()); }

void MakeId(char* id, int i) { std::snprintf(id, QB_IDSIZE, "P%09d", i); }

// --- the engine ---

QBaseDb CreateEngineFile(const std::string& path) {
  const short ddq = ddq_parse(kDictionary);
  QBaseDb db = QBaseDbManager::instance().createFile(Wide(path).c_str(), ddq, QB_MODE_UPDATE);
  ddq_release(ddq);
  return db;
}

bool EngineSave(QBaseDb& db, int count) {
  QBaseDb::QuickMode scope(db, QBaseDb::QuickMode::Update, true);
  char id[QB_IDSIZE];
  for (int i = 0; i < count; ++i) {
    MakeId(id, i);
    char* rec = db.createRec("PANEL", id);
    const int rating = i % 1000;
    const bool ok = rec && db.insertWsz(&rec, 1, L"Distribution panel", -1) == QB_OK &&
                    db.insertAtt(&rec, 2, &rating, 4) == QB_OK && db.saveRec(rec) == QB_OK;
    QBaseDb::releaseRec(rec);
    if (!ok) return false;
  }
  return scope.end();
}

// --- plain SQLite ---

sqlite3* OpenSqlite(const std::string& path) {
  sqlite3* db = nullptr;
  sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  sqlite3_exec(db,
               "PRAGMA journal_mode=DELETE;"
               "CREATE TABLE IF NOT EXISTS panel(id TEXT PRIMARY KEY, name TEXT, rating INTEGER) WITHOUT ROWID;",
               nullptr, nullptr, nullptr);
  return db;
}

bool SqliteSave(sqlite3* db, int count) {
  sqlite3_stmt* st = nullptr;
  sqlite3_exec(db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
  sqlite3_prepare_v2(db, "INSERT INTO panel(id, name, rating) VALUES(?1, ?2, ?3)", -1, &st, nullptr);
  // The name as the engine stores it: UTF-16LE.
  const std::u16string name = u"Distribution panel";
  char id[QB_IDSIZE];
  bool ok = true;
  for (int i = 0; i < count && ok; ++i) {
    MakeId(id, i);
    sqlite3_bind_text(st, 1, id, -1, SQLITE_STATIC);
    sqlite3_bind_text16(st, 2, name.data(), static_cast<int>(name.size() * 2), SQLITE_STATIC);
    sqlite3_bind_int(st, 3, i % 1000);
    ok = sqlite3_step(st) == SQLITE_DONE;
    sqlite3_reset(st);
  }
  sqlite3_finalize(st);
  return sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr) == SQLITE_OK && ok;
}

void BM_EngineSave100k(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    Dir().remove("save.qep");
    QBaseDb db = CreateEngineFile(Dir().file("save.qep"));
    state.ResumeTiming();
    if (!EngineSave(db, kSaved)) state.SkipWithError("engine save failed");
    state.PauseTiming();
    db.closeDatabase();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * kSaved);
}
BENCHMARK(BM_EngineSave100k)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_SqliteSave100k(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    Dir().remove("save.sqlite");
    sqlite3* db = OpenSqlite(Dir().file("save.sqlite"));
    state.ResumeTiming();
    if (!SqliteSave(db, kSaved)) state.SkipWithError("sqlite save failed");
    state.PauseTiming();
    sqlite3_close(db);
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * kSaved);
}
BENCHMARK(BM_SqliteSave100k)->Unit(benchmark::kMillisecond)->Iterations(5);

// The million-record files are made once, outside the timings.
QBaseDb& EngineMillion() {
  static QBaseDb db = [] {
    QBaseDb d = CreateEngineFile(Dir().file("million.qep"));
    EngineSave(d, kWalked);
    d.closeDatabase();
    return QBaseDbManager::instance().openFile(Wide(Dir().file("million.qep")).c_str(), QB_MODE_READ);
  }();
  return db;
}

sqlite3* SqliteMillion() {
  static sqlite3* db = [] {
    sqlite3* d = OpenSqlite(Dir().file("million.sqlite"));
    SqliteSave(d, kWalked);
    return d;
  }();
  return db;
}

void BM_EngineWalk1M(benchmark::State& state) {
  QBaseDb& db = EngineMillion();
  for (auto _ : state) {
    long records = 0, sum = 0;
    QBaseDb::ConstIterator it(db);
    for (it.start(); !it.done(); it.next()) {
      short size = 0;
      const void* p = db.findAtt(*it, 2, &size);
      int rating = 0;
      if (p) std::memcpy(&rating, p, sizeof rating);
      sum += rating;
      ++records;
    }
    if (records != kWalked) state.SkipWithError("engine walk lost records");
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * kWalked);
}
BENCHMARK(BM_EngineWalk1M)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_SqliteWalk1M(benchmark::State& state) {
  sqlite3* db = SqliteMillion();
  sqlite3_stmt* st = nullptr;
  sqlite3_prepare_v2(db, "SELECT id, name, rating FROM panel ORDER BY id", -1, &st, nullptr);
  for (auto _ : state) {
    long records = 0, sum = 0;
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    while (sqlite3_step(st) == SQLITE_ROW) {
      benchmark::DoNotOptimize(sqlite3_column_text(st, 0));
      benchmark::DoNotOptimize(sqlite3_column_blob(st, 1));
      sum += sqlite3_column_int(st, 2);
      ++records;
    }
    sqlite3_reset(st);
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    if (records != kWalked) state.SkipWithError("sqlite walk lost records");
    benchmark::DoNotOptimize(sum);
  }
  sqlite3_finalize(st);
  state.SetItemsProcessed(state.iterations() * kWalked);
}
BENCHMARK(BM_SqliteWalk1M)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

BENCHMARK_MAIN();
