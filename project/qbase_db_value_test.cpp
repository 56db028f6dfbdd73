// QBaseDb as a value: the shared empty state, copies and moves, release
// rules with their diagnostics, and the manager that owns named files.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "QBaseDb.h"
#include "project/qb_test_fixture.h"
#include "project/qbase_db_internal.h"
#include "qb.h"

using namespace qb_test;

namespace {

struct Recorded {
  QBaseDbManager::Event event;
  std::wstring path;
};

void Record(QBaseDbManager::Event event, short, const wchar_t* path, void* context) {
  static_cast<std::vector<Recorded>*>(context)->push_back({event, path});
}

}  // namespace

TEST(QBaseDbValue, DefaultsShareOneEmptyStateThatNothingChanges) {
  const QBaseDb a;
  EXPECT_FALSE(a.isValidDb());
  EXPECT_EQ(-1, a.errorStatus());
  EXPECT_EQ(-1, a.getHqbFile());
  EXPECT_EQ(qt_qbasedb_empty_state(), qt_qbasedb_state(a));
  const int shares = qt_qbasedb_share_count(a);
  {
    QBaseDb b(a);
    QBaseDb c;
    EXPECT_EQ(qt_qbasedb_state(a), qt_qbasedb_state(b));
    EXPECT_EQ(qt_qbasedb_state(a), qt_qbasedb_state(c));
    EXPECT_EQ(shares + 2, qt_qbasedb_share_count(a));
    // Calls through one default database show in none of the others.
    EXPECT_EQ(QBERR_BADHANDLE, c.saveRec(nullptr));
    EXPECT_EQ(nullptr, c.firstRec());
    EXPECT_EQ(QBERR_BADHANDLE, c.getLastError());
    c.setWritable();
    EXPECT_EQ(-1, b.errorStatus());
    EXPECT_FALSE(b.isWritable());
    EXPECT_EQ(0, c.closeDatabase());
    EXPECT_EQ(-1, c.getHqbFile());
    EXPECT_TRUE(c.createStreamAsBase64().empty());
    EXPECT_FALSE(c.createStreamDb().isValidDb());
  }
  EXPECT_EQ(shares, qt_qbasedb_share_count(a));
}

TEST(QBaseDbValue, CopiesShareAStateAndMovesLeaveTheEmptyOne) {
  qt_test::TempDir dir;
  ASSERT_TRUE(CreatePanelFile(dir.wfile("p.qep")));
  const short h = OpenFile(dir.wfile("p.qep"), QB_MODE_UPDATE);
  ASSERT_GE(h, 0);
  {
    QBaseDb a = QBaseDb::WrapNakedHandleInTemporary(h, false);
    EXPECT_TRUE(a.isValidDb());
    EXPECT_FALSE(a.isWritable());
    EXPECT_EQ(0, a.errorStatus());
    EXPECT_EQ(1, qt_qbasedb_share_count(a));

    QBaseDb b(a);
    EXPECT_EQ(qt_qbasedb_state(a), qt_qbasedb_state(b));
    EXPECT_EQ(2, qt_qbasedb_share_count(a));
    b.setWritable();
    EXPECT_TRUE(a.isWritable());
    EXPECT_EQ(QBERR_NOSET, b.deleteRec("NOSUCH", "X"));
    EXPECT_EQ(QBERR_NOSET, a.errorStatus());
    EXPECT_EQ(QBERR_NOSET, a.getLastError());
    EXPECT_EQ(0, b.errorStatus());

    b = b;  // NOLINT: assignment to itself changes nothing
    EXPECT_EQ(2, qt_qbasedb_share_count(a));

    QBaseDb c(std::move(b));
    EXPECT_EQ(qt_qbasedb_empty_state(), qt_qbasedb_state(b));
    EXPECT_EQ(qt_qbasedb_state(a), qt_qbasedb_state(c));
    EXPECT_EQ(2, qt_qbasedb_share_count(a));

    QBaseDb d;
    d = std::move(c);
    EXPECT_FALSE(c.isValidDb());
    EXPECT_EQ(2, qt_qbasedb_share_count(d));
    d = QBaseDb();  // the old state is released first
    EXPECT_EQ(1, qt_qbasedb_share_count(a));

    // Built separately for one handle: equal, but not sharing.
    const QBaseDb e = QBaseDb::WrapNakedHandleInTemporary(h, true);
    EXPECT_TRUE(a.equals(e));
    EXPECT_NE(qt_qbasedb_state(a), qt_qbasedb_state(e));
    EXPECT_FALSE(a.equals(QBaseDb()));
  }
  // A free-standing handle's file belongs to whoever gave the handle.
  EXPECT_EQ(1, qbfileisopen(h));
  const QBaseDb quick = QBaseDb::WrapNakedHandleInTemporary(h, false);
  ASSERT_EQ(QB_OK, qbbeginquickupdate(h));
  const QBaseDb inUpdate = QBaseDb::WrapNakedHandleInTemporary(h, false);
  EXPECT_TRUE(inUpdate.isQuickUpdateMode());
  EXPECT_TRUE(inUpdate.isWritable());
  EXPECT_FALSE(quick.isQuickUpdateMode());  // its flags were taken when it was made
  qbreleasefile(h);
}

TEST(QBaseDbValue, ReleaseRulesSetTheirOneShotDiagnostics) {
  qt_qbasedb_reset_diagnostics();
  qt_qbasedb_release_state(nullptr);
  EXPECT_TRUE(qt_qbasedb_diagnostics().releasedNullState);
  EXPECT_FALSE(qt_qbasedb_diagnostics().shareCountBelowZero);

  // Driving the shared empty state below zero, then back.
  const QBaseDb probe;
  const int shares = qt_qbasedb_share_count(probe);
  for (int i = 0; i <= shares; ++i) qt_qbasedb_release_state(qt_qbasedb_empty_state());
  EXPECT_TRUE(qt_qbasedb_diagnostics().shareCountBelowZero);
  for (int i = 0; i <= shares; ++i) qt_qbasedb_share_state(qt_qbasedb_empty_state());
  EXPECT_EQ(shares, qt_qbasedb_share_count(probe));

  // A named file let go while open is closed by its manager, and noticed.
  qt_test::TempDir dir;
  ASSERT_TRUE(CreatePanelFile(dir.wfile("p.qep")));
  QBaseDbManager manager;
  short handle = -1;
  {
    QBaseDb db = manager.openFile(dir.wfile("p.qep").c_str(), QB_MODE_READ);
    ASSERT_TRUE(db.isValidDb());
    handle = db.getHqbFile();
    EXPECT_EQ(1, manager.openCount());
    EXPECT_FALSE(qt_qbasedb_diagnostics().releasedOpenManagedState);
  }
  EXPECT_TRUE(qt_qbasedb_diagnostics().releasedOpenManagedState);
  EXPECT_EQ(0, manager.openCount());
  EXPECT_EQ(QBERR_BADHANDLE, qbfileisopen(handle));

  qt_qbasedb_reset_diagnostics();
  {
    QBaseDb db = manager.openFile(dir.wfile("p.qep").c_str(), QB_MODE_READ);
    EXPECT_EQ(QB_OK, db.closeDatabase());
    EXPECT_EQ(-1, db.getHqbFile());
  }
  EXPECT_FALSE(qt_qbasedb_diagnostics().releasedOpenManagedState);
}

TEST(QBaseDbManagerTest, OpensByNameSharesTheStateAndTellsWhatHappens) {
  qt_test::TempDir dir;
  const std::wstring path = dir.wfile("p.qep");
  ASSERT_TRUE(CreatePanelFile(path));
  std::vector<Recorded> events;
  QBaseDbManager manager;
  manager.setListener(Record, &events);

  QBaseDb a = manager.openFile(path.c_str(), QB_MODE_READ);
  ASSERT_TRUE(a.isValidDb());
  QBaseDb b = manager.openFile(path.c_str(), QB_MODE_READ);
  EXPECT_EQ(qt_qbasedb_state(a), qt_qbasedb_state(b));
  EXPECT_EQ(qt_qbasedb_state(a), qt_qbasedb_state(manager.find(path.c_str())));
  EXPECT_EQ(1, manager.openCount());
  EXPECT_EQ(path, std::wstring(a.getFileName().c_str()));
  char narrow[260];
  EXPECT_EQ(QB_OK, a.getFileName(narrow));
  EXPECT_EQ(qt_test::Narrow(path), std::string(narrow));
  EXPECT_FALSE(manager.openFile(dir.wfile("missing.qep").c_str(), QB_MODE_READ).isValidDb());
  EXPECT_EQ(QBERR_NOFILE, manager.lastStatus());

  // Read-only until made writable; the manager reopens the file for it.
  EXPECT_FALSE(a.isWritable());
  EXPECT_EQ(QBERR_READONLY, SavePanel(a.getHqbFile(), "P1", L"x", 1));
  b.setWritable();
  EXPECT_TRUE(a.isWritable());
  EXPECT_EQ(QB_MODE_UPDATE, qbgetopenmode(a.getHqbFile()));
  EXPECT_EQ(QB_OK, a.beginQuickUpdate());
  EXPECT_EQ(QB_OK, SavePanel(a.getHqbFile(), "P1", L"x", 1));
  EXPECT_EQ(QB_OK, b.endQuick());
  ASSERT_EQ(2u, events.size());
  EXPECT_EQ(QBaseDbManager::BecomingWritable, events[0].event);
  EXPECT_EQ(path, events[0].path);
  EXPECT_EQ(QBaseDbManager::QuickUpdateStarting, events[1].event);

  // Closed, the name is free: opening it again makes a new state.
  EXPECT_EQ(QB_OK, a.closeDatabase());
  EXPECT_EQ(QBaseDbManager::Closing, events.back().event);
  EXPECT_FALSE(b.isValidDb());
  EXPECT_FALSE(manager.find(path.c_str()).isValidDb());
  QBaseDb c = manager.openFile(path.c_str(), QB_MODE_READ);
  ASSERT_TRUE(c.isValidDb());
  EXPECT_NE(qt_qbasedb_state(a), qt_qbasedb_state(c));
  EXPECT_EQ(1L, c.getNRecs());
  a = QBaseDb();
  b = QBaseDb();
  EXPECT_EQ(QBaseDbManager::Removing, events.back().event);
  EXPECT_EQ(1, manager.openCount());

  // Streams belong to the library-wide manager and close with their last share.
  const int before = QBaseDbManager::instance().openCount();
  {
    QBaseDb copy = c.createStreamDb();
    ASSERT_TRUE(copy.isValidDb());
    EXPECT_EQ(before + 1, QBaseDbManager::instance().openCount());
    EXPECT_EQ(1L, copy.getNRecs());
  }
  EXPECT_EQ(before, QBaseDbManager::instance().openCount());
}

TEST(QBaseDbManagerTest, SharesThatOutliveTheManagerLoseTheirFile) {
  qt_test::TempDir dir;
  ASSERT_TRUE(CreatePanelFile(dir.wfile("p.qep")));
  QBaseDb survivor;
  short handle = -1;
  {
    QBaseDbManager manager;
    survivor = manager.openFile(dir.wfile("p.qep").c_str(), QB_MODE_UPDATE);
    ASSERT_TRUE(survivor.isWritable());
    handle = survivor.getHqbFile();
  }
  EXPECT_FALSE(survivor.isValidDb());
  EXPECT_EQ(QBERR_BADHANDLE, qbfileisopen(handle));
  EXPECT_EQ(QBERR_BADHANDLE, survivor.saveRec(nullptr));
}
