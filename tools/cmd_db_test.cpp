// quiltool db info / dump / check on files made through the engine.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdio>
#include <string>

#include "command.h"
#include "project/qb_test_fixture.h"
#include "qb.h"
#include "qt_test.h"
#include "tool_test_support.h"

using namespace qb_test;

namespace {

using qt_tool_test::Result;

Result Db(const std::vector<std::string>& args) { return qt_tool_test::RunTool("db", args); }

class DbTool : public ::testing::Test {
 protected:
  void SetUp() override {
    file_ = dir_.file("plant.qep");
    ASSERT_TRUE(CreatePanelFile(dir_.wfile("plant.qep")));
    const short h = OpenFile(dir_.wfile("plant.qep"), QB_MODE_UPDATE);
    ASSERT_GE(h, 0);
    ASSERT_EQ(QB_OK, SavePanel(h, "PA", L"Haupt \u00fc\"1\"", 63));
    ASSERT_EQ(QB_OK, SavePanel(h, "PB", L"Neben", 16));
    ASSERT_EQ(QB_OK, SaveCircuit(h, "C1", "PA", 3));
    char* rec = qbfindrec(h, "PANEL", "PB", 0);
    const double load = 2.5;
    ASSERT_EQ(QB_OK, qbinsertatt(h, &rec, 3, &load, 8));
    ASSERT_EQ(QB_OK, qbsaverecwithahm(h, rec, "block", 5));
    qbreleaserec(rec);
    qbreleasefile(h);
  }

  // Changes the file behind the engine's back.
  void Sql(const char* statement) {
    sqlite3* db = nullptr;
    ASSERT_EQ(SQLITE_OK, sqlite3_open(file_.c_str(), &db));
    ASSERT_EQ(SQLITE_OK, sqlite3_exec(db, statement, nullptr, nullptr, nullptr));
    sqlite3_close(db);
  }

  qt_test::TempDir dir_;
  std::string file_;
};

}  // namespace

TEST_F(DbTool, InfoCountsRecordsPerSet) {
  const Result r = Db({"info", file_});
  ASSERT_EQ(0, r.code) << r.err;
  EXPECT_NE(std::string::npos, r.out.find("records: 3\n"));
  EXPECT_NE(std::string::npos, r.out.find("id length: 8\n"));
  EXPECT_NE(std::string::npos, r.out.find("sets: 4\n"));
  EXPECT_NE(std::string::npos, r.out.find("PANEL                       2 records    3 attributes\n"));
  EXPECT_NE(std::string::npos, r.out.find("CIRCUIT                     1 records    3 attributes  owner PANEL (attribute 10)"));
  EXPECT_NE(std::string::npos, r.out.find("size: " + std::to_string(qt_test::ReadFileBytes(file_).size()) + " bytes"));
}

TEST_F(DbTool, DumpShowsIdsOwnersAndAttributesAsTextOrJson) {
  Result r = Db({"dump", file_});
  ASSERT_EQ(0, r.code) << r.err;
  EXPECT_EQ(
      "CIRCUIT C1 owner PA\n"
      "  2 POLES = 3\n"
      "  10 PANEL = \"PA\"\n"
      "PANEL PA\n"
      "  1 NAME = \"Haupt \xc3\xbc\\\"1\\\"\"\n"
      "  2 RATING = 63\n"
      "PANEL PB attached 5 bytes\n"
      "  1 NAME = \"Neben\"\n"
      "  2 RATING = 16\n"
      "  3 LOAD = 2.5\n",
      r.out);

  r = Db({"dump", file_, "--set", "CIRCUIT", "--format", "json"});
  ASSERT_EQ(0, r.code) << r.err;
  EXPECT_EQ(
      "[\n"
      "  {\"set\": \"CIRCUIT\", \"id\": \"C1\", \"owner\": \"PA\", \"attached\": 0, \"attributes\": ["
      "{\"number\": 2, \"name\": \"POLES\", \"type\": \"long\", \"value\": 3}, "
      "{\"number\": 10, \"name\": \"PANEL\", \"type\": \"id\", \"value\": \"PA\"}]}\n"
      "]\n",
      r.out);
  r = Db({"dump", file_, "--set", "DEVICE", "--format", "json"});
  EXPECT_EQ("[]\n", r.out);
  r = Db({"dump", file_, "--set", "NOSUCH"});
  EXPECT_EQ(1, r.code);
  EXPECT_NE(std::string::npos, r.err.find("no such set"));
}

TEST_F(DbTool, CheckPassesASoundFileAndNamesEachProblem) {
  Result r = Db({"check", file_});
  EXPECT_EQ(0, r.code) << r.out << r.err;
  EXPECT_EQ("ok: " + file_ + "\n", r.out);

  Sql("UPDATE qb_recs SET owner = 'PZ' WHERE id = 'C1';"
      "INSERT INTO qb_ahm(id, data) VALUES('GONE', x'00');"
      "INSERT INTO qb_recs(id, set_no, owner, data) VALUES('BAD ID', 1, NULL, x'');"
      "INSERT INTO qb_recs(id, set_no, owner, data) VALUES('Q1', 9, NULL, x'');"
      "UPDATE qb_recs SET data = x'010314' WHERE id = 'PB';");
  r = Db({"check", file_});
  EXPECT_EQ(1, r.code);
  EXPECT_NE(std::string::npos, r.out.find("attached block without a record: GONE")) << r.out;
  EXPECT_NE(std::string::npos, r.out.find("record 'C1' (CIRCUIT): the owner index says 'PZ', the owner link says 'PA'"));
  EXPECT_NE(std::string::npos, r.out.find("record 'BAD ID' (PANEL): the id does not fit the dictionary"));
  EXPECT_NE(std::string::npos, r.out.find("record 'Q1': set number 9 is not in the dictionary"));
  EXPECT_NE(std::string::npos, r.out.find("record 'PB' (PANEL): the attribute data is damaged"));
  EXPECT_NE(std::string::npos, r.out.find("5 problems in " + file_));
}

TEST_F(DbTool, RefusesFilesThatAreNotProjectDatabasesAndBadUsage) {
  FILE* f = std::fopen(dir_.file("notes.txt").c_str(), "wb");
  std::fputs("plain text\n", f);
  std::fclose(f);
  for (const char* verb : {"info", "dump", "check"}) {
    const Result r = Db({verb, dir_.file("notes.txt")});
    EXPECT_EQ(1, r.code);
    EXPECT_NE(std::string::npos, r.err.find("not a project database")) << r.err;
  }
  EXPECT_EQ("plain text\n", qt_test::ReadFileBytes(dir_.file("notes.txt")));
  EXPECT_EQ(1, Db({"info", dir_.file("missing.qep")}).code);
  EXPECT_EQ(2, Db({"info"}).code);
  EXPECT_EQ(2, Db({"frobnicate", file_}).code);
  EXPECT_EQ(2, Db({"dump", file_, "--format", "xml"}).code);
  EXPECT_EQ(2, Db({"check", file_, "--set", "PANEL"}).code);
}
