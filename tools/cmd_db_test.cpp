// quiltool db info / dump / check on files made through the engine.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <chrono>
#include <cctype>
#include <cmath>
#include <cstring>
#include <cstdio>
#include <limits>
#include <filesystem>
#include <string>
#include <thread>

#include "command.h"
#include "console_text.h"
#include "project/qb_test_fixture.h"
#include "qb.h"
#include "qt_test.h"
#include "tool_test_support.h"

using namespace qb_test;

namespace {

using qt_tool_test::Result;

// A strict reader of one JSON document (RFC 8259): true when the whole of
// text is one value with nothing after it and every string is well-formed
// UTF-8. It keeps no values; the dump's content is checked elsewhere.
class JsonChecker {
 public:
  explicit JsonChecker(const std::string& text) : s_(text) {}
  bool Valid() {
    Space();
    if (!Value()) return false;
    Space();
    return i_ == s_.size();
  }
  std::string Where() const { return "at byte " + std::to_string(i_) + ": " + s_.substr(i_, 40); }

 private:
  bool Value(int depth = 0) {
    if (depth > 64 || i_ >= s_.size()) return false;
    const char c = s_[i_];
    if (c == '{') return Object(depth);
    if (c == '[') return Array(depth);
    if (c == '"') return String();
    if (c == '-' || (c >= '0' && c <= '9')) return Number();
    return Word("true") || Word("false") || Word("null");
  }
  bool Object(int depth) {
    ++i_;
    Space();
    if (Eat('}')) return true;
    do {
      Space();
      if (!String()) return false;
      Space();
      if (!Eat(':')) return false;
      Space();
      if (!Value(depth + 1)) return false;
      Space();
    } while (Eat(','));
    return Eat('}');
  }
  bool Array(int depth) {
    ++i_;
    Space();
    if (Eat(']')) return true;
    do {
      Space();
      if (!Value(depth + 1)) return false;
      Space();
    } while (Eat(','));
    return Eat(']');
  }
  bool String() {
    if (!Eat('"')) return false;
    size_t start = i_;
    while (i_ < s_.size() && s_[i_] != '"') {
      const unsigned char c = static_cast<unsigned char>(s_[i_]);
      if (c < 0x20) return false;
      if (c == '\\') {
        ++i_;
        if (i_ >= s_.size()) return false;
        if (s_[i_] == 'u') {
          for (int k = 1; k <= 4; ++k)
            if (i_ + k >= s_.size() || !std::isxdigit(static_cast<unsigned char>(s_[i_ + k]))) return false;
          i_ += 4;
        } else if (std::string("\"\\/bfnrt").find(s_[i_]) == std::string::npos) {
          return false;
        }
      }
      ++i_;
    }
    if (i_ >= s_.size()) return false;
    const std::string raw = s_.substr(start, i_ - start);
    ++i_;
    return qt_tool::SanitizeUtf8(raw) == raw;
  }
  bool Number() {
    Eat('-');
    if (Eat('0')) {
    } else if (!Digits()) {
      return false;
    }
    if (Eat('.') && !Digits()) return false;
    if (Eat('e') || Eat('E')) {
      if (!Eat('+')) Eat('-');
      if (!Digits()) return false;
    }
    return true;
  }
  bool Digits() {
    const size_t start = i_;
    while (i_ < s_.size() && s_[i_] >= '0' && s_[i_] <= '9') ++i_;
    return i_ > start;
  }
  bool Word(const char* w) {
    const std::string word(w);
    if (s_.compare(i_, word.size(), word) != 0) return false;
    i_ += word.size();
    return true;
  }
  bool Eat(char c) {
    if (i_ < s_.size() && s_[i_] == c) {
      ++i_;
      return true;
    }
    return false;
  }
  void Space() {
    while (i_ < s_.size() && std::strchr(" \t\r\n", s_[i_]) && s_[i_]) ++i_;
  }

  const std::string& s_;
  size_t i_ = 0;
};

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

TEST(DbToolJson, TheCheckerRefusesWhatParsersRefuse) {
  for (const char* bad : {"[nan]", "[1,]", "{\"a\" 1}", "[\"\xff\"]", "[\"a\nb\"]", "[01]", "[1.]", "[] x", "[-inf]"}) {
    EXPECT_FALSE(JsonChecker(bad).Valid()) << bad;
  }
  EXPECT_TRUE(JsonChecker("[{\"a\": [1, -0.5e+3, null, true, \"\\u00e9\\n\xc3\xa9\"]}, {}]").Valid());
}

TEST_F(DbTool, JsonDumpParsesWhateverTheRecordsHold) {
  const short h = OpenFile(dir_.wfile("plant.qep"), QB_MODE_UPDATE);
  ASSERT_GE(h, 0);
  const double odd[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                        -std::numeric_limits<double>::infinity()};
  const char* ids[] = {"PN", "PI", "PJ"};
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(QB_OK, SavePanel(h, ids[i], L"x", 1));
    char* rec = qbfindrec(h, "PANEL", ids[i], 0);
    ASSERT_EQ(QB_OK, qbinsertatt(h, &rec, 3, &odd[i], 8));
    ASSERT_EQ(QB_OK, qbsaverec(h, rec));
    qbreleaserec(rec);
  }
  // An 8-bit text with bytes no encoding makes sense of, control characters
  // and a quote.
  const char text[] = "bad \xff\xfe\xc3 \x01\x7f \"q\" \\ end";
  char* note = qbcreaterec(h, "NOTE", "N1");
  ASSERT_NE(nullptr, note);
  ASSERT_EQ(QB_OK, qbinsertatt(h, &note, 1, text, static_cast<short>(sizeof text - 1)));
  ASSERT_EQ(QB_OK, qbinsertatt(h, &note, 3, "PA", 2));
  ASSERT_EQ(QB_OK, qbsaverec(h, note));
  qbreleaserec(note);
  qbreleasefile(h);

  const Result r = Db({"dump", file_, "--format", "json"});
  ASSERT_EQ(0, r.code) << r.err;
  JsonChecker json(r.out);
  EXPECT_TRUE(json.Valid()) << json.Where();
  EXPECT_NE(std::string::npos, r.out.find("\"name\": \"LOAD\", \"type\": \"double\", \"value\": null}")) << r.out;
  EXPECT_NE(std::string::npos, r.out.find("\\u0001\\u007f \\\"q\\\" \\\\ end\"")) << r.out;
  EXPECT_NE(std::string::npos, r.out.find("bad ")) << r.out;
  // Text mode keeps the words for the odd numbers.
  const Result text_ = Db({"dump", file_, "--set", "PANEL"});
  EXPECT_NE(std::string::npos, text_.out.find("3 LOAD = nan")) << text_.out;
  EXPECT_NE(std::string::npos, text_.out.find("3 LOAD = -inf")) << text_.out;
}

TEST_F(DbTool, SaysWhyAFileCannotBeOpened) {
  std::filesystem::create_directory(std::filesystem::u8path(dir_.file("folder.qep")));
  Result r = Db({"info", dir_.file("folder.qep")});
  EXPECT_EQ(1, r.code);
  EXPECT_NE(std::string::npos, r.err.find("folder.qep: it is a folder")) << r.err;
  r = Db({"dump", dir_.file("missing.qep")});
  EXPECT_EQ(1, r.code);
  EXPECT_NE(std::string::npos, r.err.find("missing.qep: no such file")) << r.err;
}

TEST_F(DbTool, OpensFilesNamedOutsideTheAnsiCodePage) {
  const std::string name = dir_.path() + "/Anlage \xc3\xbc \xe6\x97\xa5\xe6\x9c\xac \xce\xa9.qep";
  ASSERT_TRUE(CreatePanelFile(qt_test::Widen(name)));
  const Result r = Db({"info", name});
  ASSERT_EQ(0, r.code) << r.err;
  EXPECT_NE(std::string::npos, r.out.find("file: " + name + "\n")) << r.out;
  EXPECT_EQ(0, Db({"check", name}).code);
}

// Keeps every reader out of a database for args[1] milliseconds once it
// has said "holding". Args: file, milliseconds.
QT_TEST_CHILD(hold_database) {
  sqlite3* db = nullptr;
  if (sqlite3_open(args.at(0).c_str(), &db) != SQLITE_OK) return 3;
  if (sqlite3_exec(db, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr) != SQLITE_OK) return 4;
  std::printf("holding\n");
  std::fflush(stdout);
  std::this_thread::sleep_for(std::chrono::milliseconds(std::stol(args.at(1))));
  sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
  sqlite3_close(db);
  return 0;
}

TEST_F(DbTool, SaysAtOnceThatItWaitsForAWriterAndGivesUpWhenToldTo) {
  qt_test::ChildProcess holder;
  ASSERT_TRUE(holder.start("hold_database", {file_, "20000"}));
  ASSERT_EQ("holding", holder.readLine(60000));
  const auto start = std::chrono::steady_clock::now();
  Result r = Db({"info", file_, "--wait", "1"});
  const auto took = std::chrono::steady_clock::now() - start;
  EXPECT_EQ(1, r.code);
  EXPECT_NE(std::string::npos, r.err.find("is being written by ")) << r.err;
  EXPECT_NE(std::string::npos, r.err.find("waiting up to 1 s")) << r.err;
  EXPECT_NE(std::string::npos, r.err.find("still being written")) << r.err;
  EXPECT_LT(took, std::chrono::seconds(10));
  r = Db({"info", file_, "--wait", "0"});
  EXPECT_EQ(1, r.code);
  EXPECT_EQ(std::string::npos, r.err.find("waiting")) << r.err;
  holder.kill();
}

TEST_F(DbTool, AWaitThatEndsInTimeGoesOn) {
  qt_test::ChildProcess holder;
  ASSERT_TRUE(holder.start("hold_database", {file_, "1500"}));
  ASSERT_EQ("holding", holder.readLine(60000));
  const Result r = Db({"info", file_});
  EXPECT_EQ(0, r.code) << r.err;
  EXPECT_NE(std::string::npos, r.err.find("waiting up to 30 s")) << r.err;
  EXPECT_NE(std::string::npos, r.out.find("records: 3\n")) << r.out;
  EXPECT_EQ(0, holder.wait());
}
