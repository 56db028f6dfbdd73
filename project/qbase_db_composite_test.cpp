// QBaseDb operations built from several engine calls.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "QBaseDb.h"
#include "failure_points.h"
#include "project/qb_test_fixture.h"
#include "qb.h"

using namespace qb_test;

namespace {

class Composite : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(CreatePanelFile(dir_.wfile("p.qep")));
    db_ = manager_.openFile(dir_.wfile("p.qep").c_str(), QB_MODE_UPDATE);
    ASSERT_TRUE(db_.isWritable());
    h_ = db_.getHqbFile();
  }
  void TearDown() override { db_.closeDatabase(); }

  std::string Ids(const std::vector<astr_pre<32> >& ids) {
    std::string all;
    for (const astr& id : ids) all += id.str() + " ";
    return all;
  }

  qt_test::TempDir dir_;
  QBaseDbManager manager_;
  QBaseDb db_;
  short h_ = -1;
};

}  // namespace

TEST_F(Composite, SaveRecWithAhmAttachesReplacesAndDropsTheBlock) {
  char* rec = db_.createRec("PANEL", "P1");
  ASSERT_NE(nullptr, rec);
  const std::string block(3000, 'z');
  EXPECT_EQ(QB_OK, db_.saveRecWithAhm(rec, block.data(), static_cast<long>(block.size())));
  long size = 0;
  const char* got = static_cast<const char*>(db_.getAhm(rec, &size));
  ASSERT_NE(nullptr, got);
  EXPECT_EQ(block, std::string(got, static_cast<size_t>(size)));
  EXPECT_EQ(QB_OK, db_.saveRecWithAhm(rec, "short", 5));
  got = static_cast<const char*>(db_.getAhm(rec, &size));
  EXPECT_EQ("short", std::string(got, static_cast<size_t>(size)));

  EXPECT_EQ(QB_OK, db_.saveRecWithAhm(rec, nullptr, 0));
  EXPECT_EQ(nullptr, db_.getAhm(rec, &size));
  EXPECT_EQ(0, size);
  EXPECT_EQ(1L, db_.getNRecs());  // the record itself stays

  // A refused save leaves the old block where it was.
  EXPECT_EQ(QB_OK, db_.saveRecWithAhm(rec, "kept", 4));
  char* orphan = db_.createRec("CIRCUIT", "C1");
  EXPECT_EQ(QB_OK, db_.insertAtt(&orphan, 10, "NOPANEL", 7));
  EXPECT_EQ(QBERR_NOOWNER, db_.saveRecWithAhm(orphan, "x", 1));
  EXPECT_EQ(QBERR_NOOWNER, db_.errorStatus());
  db_.releaseRec(orphan);
  got = static_cast<const char*>(db_.getAhm(rec, &size));
  EXPECT_EQ("kept", std::string(got, static_cast<size_t>(size)));
  db_.releaseRec(rec);
  EXPECT_EQ(0L, qbcheckfile(h_, nullptr, nullptr));
}

TEST_F(Composite, OwnersMembersAreListedAndDeleted) {
  ASSERT_EQ(QB_OK, SavePanel(h_, "PA", L"a", 1));
  ASSERT_EQ(QB_OK, SavePanel(h_, "PB", L"b", 1));
  for (const char* c : {"C4", "C2", "C3", "C1"}) ASSERT_EQ(QB_OK, SaveCircuit(h_, c, "PA", 1));
  ASSERT_EQ(QB_OK, SaveCircuit(h_, "C9", "PB", 1));
  ASSERT_EQ(QB_OK, SaveMember(h_, "NOTE", "N1", 3, "PA"));
  ASSERT_EQ(QB_OK, SaveMember(h_, "DEVICE", "D1", 5, "C3"));

  EXPECT_EQ("C1 C2 C3 C4 ", Ids(db_.getObjIdsForOwner("CIRCUIT", 0, "PA")));
  EXPECT_EQ("C1 C2 ", Ids(db_.getObjIdsForOwner("CIRCUIT", 2, "PA")));
  EXPECT_EQ("C1 C2 C3 C4 N1 ", Ids(db_.getObjIdsForOwner(nullptr, 0, "PA")));
  EXPECT_EQ("", Ids(db_.getObjIdsForOwner("CIRCUIT", 0, "PZ")));
  EXPECT_FALSE(db_.isQuickReadMode());  // its read scope is over

  // Deleting one set's members, in one update, leaves the others.
  ASSERT_EQ(QB_OK, SaveCircuit(h_, "C5", "PB", 1));
  EXPECT_EQ(0, db_.deleteRecsForOwner("CIRCUIT", 0, "PB"));
  EXPECT_EQ(QB_OK, db_.errorStatus());
  EXPECT_FALSE(db_.isQuickUpdateMode());
  EXPECT_EQ("", Ids(db_.getObjIdsForOwner(nullptr, 0, "PB")));
  EXPECT_EQ(QB_OK, db_.deleteRec("PANEL", "PB"));

  // deleteAllRecs stops at the first member that cannot go: C3 owns D1.
  EXPECT_EQ(QBERR_HASMEMBERS, db_.deleteAllRecs("PA"));
  EXPECT_EQ("C3 C4 N1 ", Ids(db_.getObjIdsForOwner(nullptr, 0, "PA")));
  EXPECT_EQ(QB_OK, db_.deleteRec("DEVICE", "D1"));
  EXPECT_EQ(QB_OK, db_.deleteAllRecs("PA"));
  EXPECT_EQ("", Ids(db_.getObjIdsForOwner(nullptr, 0, "PA")));
  EXPECT_EQ(QB_OK, db_.deleteAllRecs("PA"));  // nothing left: nothing fails
  EXPECT_EQ(1L, db_.getNRecs());
}

TEST_F(Composite, FindNextFreeObjIdCounterZeroPadsAndStopsAt32767) {
  char id[QB_IDSIZE];
  std::memset(id, 'x', sizeof id);
  EXPECT_EQ(1, db_.findNextFreeObjIdCounter("CIRCUIT", 3, id, 0));
  EXPECT_STREQ("001", id);
  ASSERT_EQ(QB_OK, SaveCircuit(h_, "001", nullptr, 1));
  ASSERT_EQ(QB_OK, SaveCircuit(h_, "002", nullptr, 1));
  ASSERT_EQ(QB_OK, SavePanel(h_, "003", L"another set", 1));  // ids are unique file-wide
  EXPECT_EQ(4, db_.findNextFreeObjIdCounter("CIRCUIT", 3, id, 0));
  EXPECT_STREQ("004", id);
  EXPECT_EQ(4, db_.findNextFreeObjIdCounter("CIRCUIT", 3, nullptr, 2));
  EXPECT_EQ(10, db_.findNextFreeObjIdCounter("CIRCUIT", 2, id, 10));
  EXPECT_STREQ("10", id);
  EXPECT_FALSE(db_.isQuickReadMode());

  EXPECT_EQ(-1, db_.findNextFreeObjIdCounter("CIRCUIT", 5, id, 32767));
  EXPECT_EQ(32766, db_.findNextFreeObjIdCounter("CIRCUIT", 5, id, 32766));
  ASSERT_EQ(QB_OK, SaveCircuit(h_, "32766", nullptr, 1));
  EXPECT_EQ(-1, db_.findNextFreeObjIdCounter("CIRCUIT", 5, id, 32766));
  // An unknown set answers no id as free.
  EXPECT_EQ(-1, db_.findNextFreeObjIdCounter("NOSUCH", 3, id, 32760));
}

// Engine handles in use, whether their file is open or not.
int HandlesInUse() {
  int used = 0;
  for (short h = 0; h < 32767; ++h) {
    if (qbgetopenmode(h) != QBERR_BADHANDLE) ++used;
  }
  return used;
}

// Out of memory at each allocation in turn: an open either gives the file
// or fails with an engine status, never an exception, and leaves nothing
// half-open behind.
TEST(QBaseDbOutOfMemory, OpenFailsCleanlyOrGivesTheFile) {
  qt_test::TempDir dir;
  const std::wstring path = dir.wfile("p.qep");
  ASSERT_TRUE(CreatePanelFile(path));
  QBaseDbManager manager;
  QBaseDb db;
  const int before = HandlesInUse();
  int run = 0;
  qt_test::AtEveryFailurePoint([&] { db = manager.openFile(path.c_str(), QB_MODE_UPDATE); },
                               [&](bool refused) {
                                 ++run;
                                 if (!refused) {
                                   EXPECT_TRUE(db.isValidDb());
                                 }
                                 if (db.isValidDb()) {
                                   EXPECT_EQ(QB_OK, manager.lastStatus());
                                   EXPECT_TRUE(db.isWritable());
                                   db.closeDatabase();
                                 } else {
                                   EXPECT_LT(manager.lastStatus(), 0);
                                 }
                                 EXPECT_EQ(before, HandlesInUse()) << "run " << run;
                               });
  QBaseDb again = manager.openFile(path.c_str(), QB_MODE_UPDATE);
  ASSERT_TRUE(again.isValidDb());
  EXPECT_TRUE(again.isWritable());
  again.closeDatabase();
}
