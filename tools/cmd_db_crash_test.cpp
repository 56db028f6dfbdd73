// A writer killed in the middle of a quick update: the file must open with
// its last committed state and pass the tool's check.
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>

#include "QBaseDb.h"
#include "command.h"
#include "project/qb_test_fixture.h"
#include "qb.h"
#include "qt_test.h"

using namespace qb_test;

namespace {

const int kCommitted = 1000;
const int kUpdate = 100000;

std::string Id(const char* prefix, int n) {
  char id[QB_IDSIZE];
  std::snprintf(id, sizeof id, "%s%06d", prefix, n);
  return id;
}

// Saves count panels P<from>.. in one quick update; false on any failure.
bool SavePanels(QBaseDb& db, int from, int count, const std::function<void(int)>& progress) {
  for (int i = 0; i < count; ++i) {
    char* rec = db.createRec("PANEL", Id("P", from + i).c_str());
    const int rating = from + i;
    const bool ok = rec && db.insertAtt(&rec, 2, &rating, 4) == QB_OK && db.insertWsz(&rec, 1, L"panel", -1) == QB_OK &&
                    db.saveRec(rec) == QB_OK;
    QBaseDb::releaseRec(rec);
    if (!ok) return false;
    if (progress) progress(i + 1);
  }
  return true;
}

}  // namespace

// Child: commits kCommitted panels, then saves kUpdate more inside one quick
// update that it never ends: it waits for a line that never comes.
QT_TEST_CHILD(db_crash_writer) {
  QBaseDbManager manager;
  QBaseDb db = manager.openFile(qt_test::Widen(args.at(0)).c_str(), QB_MODE_UPDATE);
  if (!db.isWritable()) return 2;
  {
    QBaseDb::QuickMode scope(db, QBaseDb::QuickMode::Update, true);
    if (!scope.isActive() || !SavePanels(db, 0, kCommitted, nullptr)) return 3;
  }
  std::printf("committed\n");
  std::fflush(stdout);
  QBaseDb::QuickMode scope(db, QBaseDb::QuickMode::Update, true);
  if (!scope.isActive()) return 4;
  const bool ok = SavePanels(db, kCommitted, kUpdate, [](int n) {
    if (n == kUpdate / 2) {
      std::printf("halfway\n");
      std::fflush(stdout);
    }
  });
  if (!ok) return 5;
  char line[16];
  if (!std::fgets(line, sizeof line, stdin)) return 6;
  return 0;
}

TEST(DbCrash, AWriterKilledInAQuickUpdateLeavesTheLastCommittedState) {
  qt_test::TempDir dir;
  const std::string file = dir.file("crash.qep");
  ASSERT_TRUE(CreatePanelFile(dir.wfile("crash.qep")));

  qt_test::ChildProcess writer;
  ASSERT_TRUE(writer.start("db_crash_writer", {file}));
  ASSERT_EQ("committed", writer.readLine(120000));
  ASSERT_EQ("halfway", writer.readLine(300000));
  writer.kill();
  writer.wait(30000);
  // The journal of the unfinished update is still there...
  EXPECT_FALSE(qt_test::ReadFileBytes(file + "-journal").empty());

  // Opening rolls back what the killed writer left in the file.
  const short h = OpenFile(dir.wfile("crash.qep"), QB_MODE_READ);
  ASSERT_GE(h, 0) << qbstatustext(h);
  EXPECT_EQ(kCommitted, qbgetnrecs(h));
  char* last = qbprevrec(h, nullptr);
  EXPECT_EQ(Id("P", kCommitted - 1), IdOf(h, last));
  EXPECT_EQ(kCommitted - 1, LongAtt(h, last, 2));
  qbreleaserec(last);
  EXPECT_EQ(QB_ABSENT, qbexistrec(h, "PANEL", Id("P", kCommitted).c_str()));
  qbreleasefile(h);
  // ...until the first reader has rolled it back.
  EXPECT_TRUE(qt_test::ReadFileBytes(file + "-journal").empty());

  FILE* out = std::tmpfile();
  FILE* err = std::tmpfile();
  EXPECT_EQ(0, qt_tool::Run({"db", "check", file}, out, err));
  std::fclose(out);
  std::fclose(err);

  // And it takes updates again.
  const short w = OpenFile(dir.wfile("crash.qep"), QB_MODE_UPDATE);
  ASSERT_GE(w, 0);
  EXPECT_EQ(QB_OK, SavePanel(w, "AFTER", L"after", 1));
  EXPECT_EQ(kCommitted + 1, qbgetnrecs(w));
  qbreleasefile(w);
}
