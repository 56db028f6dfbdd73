// Quick-mode scopes and their nesting rule, and the record iterators.
#include <gtest/gtest.h>

#include <string>

#include "QBaseDb.h"
#include "project/qb_test_fixture.h"
#include "qb.h"

using namespace qb_test;

namespace {

class QBaseDbFile : public ::testing::Test {
 protected:
  void SetUp() override {
    path_ = dir_.wfile("p.qep");
    ASSERT_TRUE(CreatePanelFile(path_));
    db_ = manager_.openFile(path_.c_str(), QB_MODE_UPDATE);
    ASSERT_TRUE(db_.isValidDb());
    const short h = db_.getHqbFile();
    ASSERT_EQ(QB_OK, SavePanel(h, "PA", L"a", 1));
    ASSERT_EQ(QB_OK, SavePanel(h, "PB", L"b", 2));
    ASSERT_EQ(QB_OK, SaveCircuit(h, "C2", "PA", 2));
    ASSERT_EQ(QB_OK, SaveCircuit(h, "C1", "PA", 1));
    ASSERT_EQ(QB_OK, SaveCircuit(h, "C3", "PB", 3));
    ASSERT_EQ(QB_OK, SaveMember(h, "NOTE", "N1", 3, "PA"));
  }
  void TearDown() override { db_.closeDatabase(); }

  template <class It>
  std::string Walk(It& it) {
    std::string ids;
    for (it.start(); !it.done(); it.next()) ids += IdOf(db_.getHqbFile(), *it) + " ";
    return ids;
  }

  qt_test::TempDir dir_;
  std::wstring path_;
  QBaseDbManager manager_;
  QBaseDb db_;
};

}  // namespace

TEST_F(QBaseDbFile, AQuickScopeInsideAnotherOfTheSameModeIsRefusedNotCounted) {
  QBaseDb::QuickMode outer(db_, QBaseDb::QuickMode::Read, true);
  EXPECT_TRUE(outer.isActive());
  EXPECT_TRUE(db_.isQuickReadMode());
  EXPECT_FALSE(db_.isWritable());  // not while reading quickly
  {
    QBaseDb::QuickMode inner(db_, QBaseDb::QuickMode::Read, true);
    EXPECT_FALSE(inner.isActive());
    EXPECT_FALSE(inner.end());
    EXPECT_TRUE(db_.isQuickReadMode());
    // An update cannot start inside the engine's read transaction.
    QBaseDb::QuickMode update(db_, QBaseDb::QuickMode::Update, true);
    EXPECT_FALSE(update.isActive());
    EXPECT_EQ(QBERR_QUICKMODE, db_.errorStatus());
  }
  EXPECT_TRUE(db_.isQuickReadMode());
  EXPECT_EQ(QB_MODE_QUICKREAD, qbgetopenmode(db_.getHqbFile()));
  EXPECT_FALSE(outer.set(db_, QBaseDb::QuickMode::Update, false));  // refused while active
  EXPECT_TRUE(outer.end());
  EXPECT_FALSE(db_.isQuickReadMode());
  EXPECT_TRUE(db_.isWritable());
  EXPECT_EQ(QB_MODE_UPDATE, qbgetopenmode(db_.getHqbFile()));
  EXPECT_FALSE(outer.end());

  // Inside an update nothing else begins; the scope's destructor ends it.
  {
    QBaseDb::QuickMode update(db_, QBaseDb::QuickMode::Update, false);
    EXPECT_FALSE(update.isActive());
    EXPECT_TRUE(update.begin());
    QBaseDb::QuickMode read(db_, QBaseDb::QuickMode::Read, true);
    QBaseDb::QuickMode update2(db_, QBaseDb::QuickMode::Update, true);
    EXPECT_FALSE(read.isActive());
    EXPECT_FALSE(update2.isActive());
    EXPECT_TRUE(db_.isQuickUpdateMode());
  }
  EXPECT_FALSE(db_.isQuickUpdateMode());
  EXPECT_EQ(QB_MODE_UPDATE, qbgetopenmode(db_.getHqbFile()));

  // A scope whose mode was ended behind its back does not end it again.
  QBaseDb::QuickMode stale(db_, QBaseDb::QuickMode::Read, true);
  EXPECT_EQ(QB_OK, db_.endQuick());
  EXPECT_EQ(-1, db_.endQuick());
  EXPECT_FALSE(stale.end());
  EXPECT_FALSE(QBaseDb::QuickMode(QBaseDb(), QBaseDb::QuickMode::Read, true).isActive());
}

TEST_F(QBaseDbFile, QuickModeCallsFollowTheStateAndTheHandleEndsAsDocumented) {
  EXPECT_EQ(QB_OK, db_.beginQuickRead());
  EXPECT_EQ(-1, db_.beginQuickRead());
  EXPECT_EQ(QBERR_QUICKMODE, db_.beginQuickUpdate());  // the engine refuses it
  EXPECT_EQ(QB_OK, db_.endQuick());
  EXPECT_EQ(-1, db_.endQuick());

  QBaseDb copy = db_;
  EXPECT_EQ(QB_OK, copy.releaseFile());
  EXPECT_EQ(-1, db_.getHqbFile());
  EXPECT_EQ(QB_OK, db_.releaseFile());  // already released: status 0, still -1
  EXPECT_EQ(0, db_.errorStatus());
  EXPECT_EQ(-1, db_.getHqbFile());
  EXPECT_EQ(-1, db_.beginQuickRead());
  EXPECT_FALSE(QBaseDb::QuickMode(db_, QBaseDb::QuickMode::Read, true).isActive());
}

TEST_F(QBaseDbFile, IteratorsWalkAllRecordsOrOneOwnersMembersInsideTheirScope) {
  {
    QBaseDb::ConstIterator it(db_);
    EXPECT_TRUE(db_.isQuickReadMode());
    EXPECT_EQ("C1 C2 C3 N1 PA PB ", Walk(it));
    char* from = db_.findRec("PANEL", "PA", 0);
    it.start(from);
    EXPECT_NE(from, *it);  // a copy of its own
    db_.releaseRec(from);
    it.next();
    EXPECT_EQ("PB", IdOf(db_.getHqbFile(), *it));
    it.next();
    EXPECT_TRUE(it.done());
    it.next();
    EXPECT_TRUE(it.done());
  }
  EXPECT_FALSE(db_.isQuickReadMode());

  // The owner id is copied for the dictionary's id length: the caller's
  // buffer may go, and what follows its terminator is never read.
  char* owner = new char[3];
  std::memcpy(owner, "PA", 3);
  QBaseDb::ConstIterator members(db_, owner, true);
  delete[] owner;
  EXPECT_EQ("C1 C2 N1 ", Walk(members));
  QBaseDb::ConstIterator none(db_, "PZ", true);
  EXPECT_EQ("", Walk(none));
  QBaseDb::ConstIterator empty(db_, "", true);  // an empty owner id walks everything
  EXPECT_EQ(6u, Walk(empty).size() / 3);
}

TEST_F(QBaseDbFile, AnIteratorChangesRecordsInOneUpdateThatEndsWithIt) {
  {
    QBaseDb::Iterator it(db_, "PA");
    EXPECT_TRUE(db_.isQuickUpdateMode());
    int n = 0;
    for (it.start(); !it.done(); it.next()) {
      char** rec = it.get();
      if (IdOf(db_.getHqbFile(), *rec)[0] != 'C') continue;
      const int poles = 10 + n++;
      ASSERT_EQ(QB_OK, db_.insertAtt(rec, 2, &poles, 4));
      ASSERT_EQ(QB_OK, db_.saveRec(*rec));
    }
    EXPECT_EQ(2, n);
    // Another reader sees nothing of it before the update ends.
    const short other = OpenFile(path_, QB_MODE_READ);
    ASSERT_GE(other, 0);
    char* before = qbfindrec(other, "CIRCUIT", "C1", 0);
    EXPECT_EQ(1, LongAtt(other, before, 2));
    qbreleaserec(before);
    qbreleasefile(other);
  }
  EXPECT_FALSE(db_.isQuickUpdateMode());
  const short other = OpenFile(path_, QB_MODE_READ);
  char* c1 = qbfindrec(other, "CIRCUIT", "C1", 0);
  char* c2 = qbfindrec(other, "CIRCUIT", "C2", 0);
  EXPECT_EQ(10, LongAtt(other, c1, 2));
  EXPECT_EQ(11, LongAtt(other, c2, 2));
  qbreleaserec(c1);
  qbreleaserec(c2);
  qbreleasefile(other);
}
