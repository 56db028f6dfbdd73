// Two processes on one file: one updating in quick updates, the other
// iterating in quick reads. Each reader pass must see one whole update.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <set>
#include <string>
#include <thread>

#include "QBaseDb.h"
#include "project/qb_test_fixture.h"
#include "qb.h"
#include "qt_test.h"

using namespace qb_test;

namespace {

const int kPanels = 200;
const int kRounds = 25;

}  // namespace

// Child: sets every panel's rating to the round number, one quick update
// per round, and reports the last round it committed.
QT_TEST_CHILD(db_round_writer) {
  QBaseDbManager manager;
  QBaseDb db = manager.openFile(qt_test::Widen(args.at(0)).c_str(), QB_MODE_UPDATE);
  if (!db.isWritable()) return 2;
  std::printf("ready\n");
  char line[16];
  if (!std::fgets(line, sizeof line, stdin)) return 7;
  for (int round = 1; round <= kRounds; ++round) {
    QBaseDb::Iterator it(db);
    if (!db.isQuickUpdateMode()) return 3;
    for (it.start(); !it.done(); it.next()) {
      if (db.insertAtt(it.get(), 2, &round, 4) != QB_OK || db.saveRec(*it) != QB_OK) return 4;
    }
    if (db.endQuick() != QB_OK) return 5;
    // A pause between rounds, as between a user's commands, lets readers in.
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  std::printf("done %d\n", kRounds);
  return db.closeDatabase() == QB_OK ? 0 : 6;
}

TEST(QbTwoProcesses, AReaderSeesWholeUpdatesWhileAnotherProcessWrites) {
  qt_test::TempDir dir;
  ASSERT_TRUE(CreatePanelFile(dir.wfile("shared.qep")));
  {
    const short h = OpenFile(dir.wfile("shared.qep"), QB_MODE_QUICKUPDATE);
    ASSERT_GE(h, 0);
    for (int i = 0; i < kPanels; ++i) {
      char id[QB_IDSIZE];
      std::snprintf(id, sizeof id, "P%04d", i);
      ASSERT_EQ(QB_OK, SavePanel(h, id, L"panel", 0));
    }
    ASSERT_EQ(QB_OK, qbendquick(h));
    qbreleasefile(h);
  }

  QBaseDbManager manager;
  QBaseDb db = manager.openFile(dir.wfile("shared.qep").c_str(), QB_MODE_READ);
  ASSERT_TRUE(db.isValidDb());
  qt_test::ChildProcess writer;
  ASSERT_TRUE(writer.start("db_round_writer", {dir.file("shared.qep")}));
  ASSERT_EQ("ready", writer.readLine(60000));
  ASSERT_TRUE(writer.writeLine("go"));

  std::set<long> seen;
  int passes = 0;
  int exitCode = -1;
  for (bool writing = true; writing;) {
    // wait(0) rather than running(): it keeps the exit code once the child is gone.
    exitCode = writer.wait(0);
    writing = exitCode == -1;
    QBaseDb::ConstIterator it(db);
    ASSERT_TRUE(db.isQuickReadMode()) << db.errorStatus();
    int count = 0;
    long round = -1;
    bool mixed = false;
    for (it.start(); !it.done(); it.next()) {
      const long r = LongAtt(db.getHqbFile(), *it, 2);
      if (round >= 0 && r != round) mixed = true;
      round = r;
      ++count;
    }
    ASSERT_EQ(kPanels, count) << "pass " << passes;
    ASSERT_FALSE(mixed) << "pass " << passes << " saw two rounds at once";
    seen.insert(round);
    ++passes;
  }
  EXPECT_EQ(0, exitCode);
  EXPECT_EQ("done 25", writer.readLine(10000));
  // The last pass began after the writer had gone; earlier ones saw the
  // file while it was being written.
  EXPECT_EQ(kRounds, *seen.rbegin());
  EXPECT_GE(seen.size(), 2u);
}
