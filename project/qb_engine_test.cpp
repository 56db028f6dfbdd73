// The record engine on its own: dictionaries, records, attributes, owner
// links, quick modes, and how it refuses bad input.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <string>

#include "project/qb_test_fixture.h"
#include "qb.h"
#include "qt_test.h"

using namespace qb_test;

namespace {

class QbFile : public ::testing::Test {
 protected:
  void SetUp() override {
    path_ = dir_.wfile("project.qep");
    ASSERT_TRUE(CreatePanelFile(path_));
    h_ = OpenFile(path_, QB_MODE_UPDATE);
    ASSERT_GE(h_, 0);
  }
  void TearDown() override {
    if (h_ >= 0) qbreleasefile(h_);
  }
  std::string Bytes() { return qt_test::ReadFileBytes(dir_.file("project.qep")); }

  qt_test::TempDir dir_;
  std::wstring path_;
  short h_ = -1;
};

void WriteText(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary);
  out << text;
}

}  // namespace

TEST(QbDictionary, ReadsItsTextFormAndRefusesDefinitionsThatDoNotHold) {
  const short d = ddq_parse(PanelDictionary());
  ASSERT_GE(d, 0);
  short idType = -1;
  EXPECT_EQ(8, ddq_getIDinfo(d, &idType));
  EXPECT_EQ(0, idType);
  EXPECT_EQ(4, ddq_getnsets(d));
  qbsetinfo set;
  ASSERT_EQ(QB_OK, ddq_getsetinfo(d, 1, &set));
  EXPECT_STREQ("CIRCUIT", set.name);
  EXPECT_STREQ("PANEL", set.owner);
  EXPECT_EQ(10, set.ownerAtt);
  EXPECT_EQ(3, set.nAtts);
  qbattinfo att;
  ASSERT_EQ(QB_OK, ddq_getattinfo(d, "CIRCUIT", 2, &att));
  EXPECT_EQ(10, att.number);
  EXPECT_EQ(QB_ATT_ID, att.type);
  EXPECT_EQ(QBERR_NOSET, ddq_getnatts(d, "NOPE"));
  EXPECT_EQ(QB_OK, ddq_release(d));
  EXPECT_EQ(QBERR_BADHANDLE, ddq_getnsets(d));

  EXPECT_EQ(QBERR_BADDDQ, ddq_parse("idlength 8\nset A owner A 2\n  att 2 LINK long\n"));  // link must be an id
  EXPECT_EQ(QBERR_BADDDQ, ddq_parse("idlength 8\nset A\n  att 1 X float\n"));
  EXPECT_EQ(QBERR_BADDDQ, ddq_parse("idlength 8\nset A\n  att 1 X long\n  att 1 Y long\n"));
  EXPECT_EQ(QBERR_BADDDQ, ddq_parse("idlength 8\nset A owner B 2\n  att 2 LINK id\n"));
  EXPECT_EQ(QBERR_BADDDQ, ddq_parse("idlength 20\nset A\n"));
  EXPECT_EQ(QBERR_BADDDQ, ddq_parse("idlength 8\nset A\nset A\n"));
  EXPECT_EQ(QBERR_BADDDQ, ddq_parse("att 1 X long\n"));

  // Built call by call, a dictionary is checked when a file is made from it.
  const short built = ddq_create(6);
  ASSERT_GE(built, 0);
  EXPECT_EQ(QB_OK, ddq_addset(built, "ROOM", nullptr, 0));
  EXPECT_EQ(QB_OK, ddq_addset(built, "DOOR", "ROOM", 4));
  EXPECT_EQ(QBERR_NOSET, ddq_addset(built, "X", "NOWHERE", 1));
  qt_test::TempDir dir;
  const short h = qbinitfilew(dir.wfile("rooms.qrd").c_str(), built);
  EXPECT_EQ(QBERR_BADDDQ, qbcreatefile(h));  // DOOR's link attribute is missing
  EXPECT_FALSE(qt_test::ReadFileBytes(dir.file("rooms.qrd")).size() > 0);
  qbreleasefile(h);
  EXPECT_EQ(QB_OK, ddq_addatt(built, "DOOR", 4, QB_ATT_ID, "ROOM"));
  const short h2 = qbinitfilew(dir.wfile("rooms.qrd").c_str(), built);
  EXPECT_EQ(QB_OK, qbcreatefile(h2));
  EXPECT_EQ(QB_OK, qbopenfile(h2, QB_MODE_READ));
  qbsetinfo door;
  EXPECT_EQ(QB_OK, ddq_getsetinfo(qbgetddq(h2), 1, &door));
  EXPECT_STREQ("ROOM", door.owner);
  EXPECT_EQ(qbgetddq(h2), qbgetddq(h2));  // the same handle each time
  EXPECT_EQ(QBERR_READONLY, ddq_addset(qbgetddq(h2), "WINDOW", nullptr, 0));
  qbreleasefile(h2);
  ddq_release(built);
}

TEST_F(QbFile, RecordsAreKeptByIdAndWalkedInIdOrder) {
  EXPECT_EQ(QB_OK, SavePanel(h_, "P3", L"third", 63));
  EXPECT_EQ(QB_OK, SavePanel(h_, "P1", L"first", 16));
  EXPECT_EQ(QB_OK, SavePanel(h_, "P2", L"second", 32));
  EXPECT_EQ(QB_OK, SaveCircuit(h_, "C1", "P1", 3));
  EXPECT_EQ(4, qbgetnrecs(h_));

  std::string order;
  for (char* r = qbfirstrec(h_); r;) {
    order += IdOf(h_, r) + " ";
    char* next = qbnextrec(h_, r);
    qbreleaserec(r);
    r = next;
  }
  EXPECT_EQ("C1 P1 P2 P3 ", order);
  char* last = qbprevrec(h_, nullptr);
  EXPECT_EQ("P3", IdOf(h_, last));
  char* before = qbprevrec(h_, last);
  EXPECT_EQ("P2", IdOf(h_, before));
  qbreleaserec(last);
  qbreleaserec(before);

  // Exact and prefix look-ups, limited to a set or not.
  char* p2 = qbfindrec(h_, "PANEL", "P2", 0);
  EXPECT_EQ(32, LongAtt(h_, p2, 2));
  char* byPrefix = qbfindrec(h_, nullptr, "P", 1);
  EXPECT_EQ("P1", IdOf(h_, byPrefix));
  qbreleaserec(byPrefix);
  EXPECT_EQ(nullptr, qbfindrec(h_, "CIRCUIT", "P2", 0));
  EXPECT_EQ(QBERR_NOTFOUND, qbgetlasterror(h_));
  EXPECT_EQ(QB_EXISTS, qbexistrec(h_, "PANEL", "P2"));
  EXPECT_EQ(QB_TAKEN, qbexistrec(h_, "CIRCUIT", "P2"));
  EXPECT_EQ(QB_ABSENT, qbexistrec(h_, "PANEL", "P9"));

  // A loaded record saved again replaces the stored one.
  const int rating = 40;
  ASSERT_EQ(QB_OK, qbinsertatt(h_, &p2, 2, &rating, 4));
  ASSERT_EQ(QB_OK, qbsaverec(h_, p2));
  qbreleaserec(p2);
  char* again = qbfindrec(h_, "PANEL", "P2", 0);
  EXPECT_EQ(40, LongAtt(h_, again, 2));
  qbreleaserec(again);
  EXPECT_EQ(4, qbgetnrecs(h_));

  // A new record may not take an id that is in use, in its set or another.
  EXPECT_EQ(QBERR_EXISTS, SavePanel(h_, "P1", L"twin", 1));
  EXPECT_EQ(QBERR_DUPLICATE, SaveCircuit(h_, "P1", nullptr, 1));
  char* p1 = qbfindrec(h_, "PANEL", "P1", 0);
  ASSERT_NE(nullptr, p1);
  EXPECT_EQ(QB_OK, qbsetID(h_, p1, "CIRCUIT", "P1"));
  EXPECT_EQ(QBERR_DUPLICATE, qbsaverec(h_, p1));  // a new identity is inserted, not replaced
  qbreleaserec(p1);

  // seek places the next qbnextrec(null).
  EXPECT_EQ(QBERR_NOTFOUND, qbseek(h_, "PANEL", "P15"));
  char* atSeek = qbnextrec(h_, nullptr);
  EXPECT_EQ("P2", IdOf(h_, atSeek));
  qbreleaserec(atSeek);

  EXPECT_EQ(QB_OK, qbdeleterec(h_, "PANEL", "P3"));
  EXPECT_EQ(QBERR_NOTFOUND, qbdeleterec(h_, "PANEL", "P3"));
  EXPECT_EQ(3, qbgetnrecs(h_));
}

TEST_F(QbFile, AttributesKeepTheirTypesAndTextIsStoredAsUtf16) {
  char* rec = qbcreaterec(h_, "PANEL", "P1");
  ASSERT_NE(nullptr, rec);
  const std::wstring name =
      std::wstring(L"Verteiler \u00c4 ") + (sizeof(wchar_t) == 2 ? L"\xD83D\xDE00" : L"\U0001F600") + L"  ";
  const double load = 12.75;
  const int rating = 125;
  ASSERT_EQ(QB_OK, qbinsertatt(h_, &rec, 3, &load, 8));
  ASSERT_EQ(QB_OK, qbinsertwsz(h_, &rec, 1, name.c_str(), -1));
  ASSERT_EQ(QB_OK, qbinsertatt(h_, &rec, 2, &rating, 4));
  EXPECT_EQ(QBERR_BADATT, qbinsertatt(h_, &rec, 2, &load, 8));   // a long is 4 bytes
  EXPECT_EQ(QBERR_BADATT, qbinsertatt(h_, &rec, 7, &rating, 4));  // not declared
  EXPECT_EQ(QBERR_BADATT, qbinsertwsz(h_, &rec, 2, L"x", -1));    // not text
  ASSERT_EQ(QB_OK, qbsaverec(h_, rec));
  qbreleaserec(rec);

  qbreleasefile(h_);
  h_ = OpenFile(path_, QB_MODE_READ);
  ASSERT_GE(h_, 0);
  char* back = qbfindrec(h_, "PANEL", "P1", 0);
  ASSERT_NE(nullptr, back);
  wchar_t text[64];
  ASSERT_NE(nullptr, qbcopywsz(h_, back, 1, text, 64, 0));
  EXPECT_EQ(name, std::wstring(text));
  ASSERT_NE(nullptr, qbcopywsz(h_, back, 1, text, 64, QB_WSZ_TRIM));
  EXPECT_EQ(name.substr(0, name.size() - 2), std::wstring(text));
  EXPECT_EQ(nullptr, qbcopywsz(h_, back, 1, text, 5, 0));
  EXPECT_EQ(QBERR_BUFSIZE, qbgetlasterror(h_));

  // The stored text is UTF-16LE on every target, a surrogate pair included.
  short size = 0;
  const unsigned char* raw = static_cast<const unsigned char*>(qbfindatt(h_, back, 1, &size));
  ASSERT_NE(nullptr, raw);
  ASSERT_EQ(32, size);
  EXPECT_EQ(0xC4, raw[20]);
  EXPECT_EQ(0x00, raw[21]);
  EXPECT_EQ(0x3D, raw[24]);
  EXPECT_EQ(0xD8, raw[25]);

  // In number order, whatever the order of insertion.
  short att = 0;
  char buffer[64];
  short room = sizeof buffer;
  ASSERT_NE(nullptr, qbcopyfirstatt(h_, back, &att, buffer, &room));
  EXPECT_EQ(1, att);
  room = sizeof buffer;
  ASSERT_NE(nullptr, qbcopynextatt(h_, back, &att, buffer, &room));
  EXPECT_EQ(2, att);
  EXPECT_EQ(4, room);
  room = 4;
  ASSERT_EQ(nullptr, qbcopynextatt(h_, back, &att, buffer, &room));  // the double needs 8
  EXPECT_EQ(8, room);
  double loadBack = 0;
  room = 8;
  ASSERT_NE(nullptr, qbcopyatt(h_, back, 3, &loadBack, &room));
  EXPECT_EQ(load, loadBack);
  att = 3;
  room = sizeof buffer;
  EXPECT_EQ(nullptr, qbcopynextatt(h_, back, &att, buffer, &room));
  EXPECT_EQ(QBERR_NOATT, qbgetlasterror(h_));

  // Replacing with a longer value and removing keep the rest intact.
  ASSERT_EQ(QB_OK, qbinsertwsz(h_, &back, 1, L"a much longer name than before", -1));
  ASSERT_EQ(QB_OK, qbremoveatt(h_, &back, 2));
  EXPECT_EQ(QBERR_NOATT, qbremoveatt(h_, &back, 2));
  room = 8;
  ASSERT_NE(nullptr, qbcopyatt(h_, back, 3, &loadBack, &room));
  EXPECT_EQ(load, loadBack);
  EXPECT_EQ(QB_OK, qbresetrec(h_, back));
  EXPECT_EQ(nullptr, qbfindatt(h_, back, 3, &size));
  EXPECT_EQ("P1", IdOf(h_, back));
  EXPECT_EQ(QBERR_READONLY, qbsaverec(h_, back));
  qbreleaserec(back);
}

TEST_F(QbFile, OwnerLinksDriveMemberWalksAndKeepTheFileConsistent) {
  ASSERT_EQ(QB_OK, SavePanel(h_, "PA", L"a", 1));
  ASSERT_EQ(QB_OK, SavePanel(h_, "PB", L"b", 1));
  ASSERT_EQ(QB_OK, SaveCircuit(h_, "C3", "PA", 1));
  ASSERT_EQ(QB_OK, SaveCircuit(h_, "C1", "PA", 1));
  ASSERT_EQ(QB_OK, SaveCircuit(h_, "C2", "PB", 1));
  ASSERT_EQ(QB_OK, SaveCircuit(h_, "C4", nullptr, 1));  // no owner at all
  EXPECT_EQ(QBERR_NOOWNER, SaveCircuit(h_, "C5", "PZ", 1));
  EXPECT_EQ(QBERR_NOOWNER, SaveCircuit(h_, "C5", "C1", 1));  // not a panel

  std::string members;
  for (char* r = qbfirstmember(h_, "PA"); r;) {
    members += IdOf(h_, r) + " ";
    char* next = qbnextmember(h_, r);
    qbreleaserec(r);
    r = next;
  }
  EXPECT_EQ("C1 C3 ", members);
  char owner[QB_IDSIZE] = {0};
  char* c2 = qbfindrec(h_, "CIRCUIT", "C2", 0);
  EXPECT_EQ(QB_OK, qbgetowner(h_, c2, owner));
  EXPECT_STREQ("PB", owner);
  qbreleaserec(c2);

  EXPECT_EQ(QB_OK, qbsetfilter(h_, QB_FILTER_OWNER, nullptr, "PA", 0));
  EXPECT_EQ(2, qbgetnrecs(h_));
  EXPECT_EQ(QB_OK, qbsetfilter(h_, QB_FILTER_SET, "PANEL", nullptr, 0));
  EXPECT_EQ(2, qbgetnrecs(h_));
  char* first = qbfirstrec(h_);
  EXPECT_EQ("PA", IdOf(h_, first));
  qbreleaserec(first);
  EXPECT_EQ(QB_OK, qbsetfilter(h_, QB_FILTER_SET, "CIRCUIT", "C2x", 2));
  EXPECT_EQ(1, qbgetnrecs(h_));
  EXPECT_EQ(QB_OK, qbresetfilter(h_));
  EXPECT_EQ(6, qbgetnrecs(h_));

  // An owner goes only after its members; unlinking a member frees it too.
  EXPECT_EQ(QBERR_HASMEMBERS, qbdeleterec(h_, "PANEL", "PB"));
  EXPECT_EQ(QB_OK, qbdeleteatt(h_, "CIRCUIT", "C2", 10));
  EXPECT_EQ(QB_OK, qbdeleterec(h_, "PANEL", "PB"));
  EXPECT_EQ(0L, qbcheckfile(h_, nullptr, nullptr));
}

// Inside a transaction a walk goes on with the statement that gave its last
// record; walks interleaved with each other, begun from the first record
// or from one in the middle, forward and back, must each still see every
// record once and in order, also across a save between two steps.
TEST_F(QbFile, InterleavedWalksInOneTransactionEachKeepTheirOrder) {
  for (const char* id : {"P1", "P2", "P3", "P4", "P5", "P6"}) ASSERT_EQ(QB_OK, SavePanel(h_, id, L"p", 1));
  ASSERT_EQ(QB_OK, qbbeginquickupdate(h_));
  std::string fromStart, fromMiddle, backwards;
  char* a = qbfirstrec(h_);
  char* mid = qbfindrec(h_, "PANEL", "P3", 0);
  char* b = qbnextrec(h_, mid);
  char* c = qbprevrec(h_, nullptr);
  qbreleaserec(mid);
  for (int step = 0; a || b || c; ++step) {
    if (a) {
      fromStart += IdOf(h_, a);
      char* next = qbnextrec(h_, a);
      qbreleaserec(a);
      a = next;
    }
    if (step == 2) {
      ASSERT_EQ(QB_OK, SavePanel(h_, "P9", L"late", 1));
    }
    if (b) {
      fromMiddle += IdOf(h_, b);
      char* next = qbnextrec(h_, b);
      qbreleaserec(b);
      b = next;
    }
    if (c) {
      backwards += IdOf(h_, c);
      char* prev = qbprevrec(h_, c);
      qbreleaserec(c);
      c = prev;
    }
  }
  ASSERT_EQ(QB_OK, qbendquick(h_));
  EXPECT_EQ("P1P2P3P4P5P6P9", fromStart);
  EXPECT_EQ("P4P5P6P9", fromMiddle);
  EXPECT_EQ("P6P5P4P3P2P1", backwards);
}

TEST_F(QbFile, QuickModesAreTransactions) {
  ASSERT_EQ(QB_OK, qbbeginquickupdate(h_));
  EXPECT_EQ(QB_MODE_QUICKUPDATE, qbgetopenmode(h_));
  EXPECT_EQ(QBERR_QUICKMODE, qbbeginquickread(h_));
  ASSERT_EQ(QB_OK, SavePanel(h_, "P1", L"kept", 1));
  ASSERT_EQ(QB_OK, qbendquick(h_));
  EXPECT_EQ(QB_MODE_UPDATE, qbgetopenmode(h_));
  EXPECT_EQ(QBERR_QUICKMODE, qbendquick(h_));

  ASSERT_EQ(QB_OK, qbbeginquickupdate(h_));
  ASSERT_EQ(QB_OK, SavePanel(h_, "P2", L"lost", 1));
  EXPECT_EQ(2, qbgetnrecs(h_));
  EXPECT_EQ(QB_OK, qbreleasefile(h_));  // releasing rolls back
  h_ = OpenFile(path_, QB_MODE_QUICKREAD);
  ASSERT_GE(h_, 0);
  EXPECT_EQ(QB_MODE_QUICKREAD, qbgetopenmode(h_));
  EXPECT_EQ(1, qbgetnrecs(h_));
  EXPECT_EQ(QBERR_READONLY, SavePanel(h_, "P3", L"no", 1));
  EXPECT_EQ(QB_OK, qbendquick(h_));
  EXPECT_EQ(QB_MODE_READ, qbgetopenmode(h_));
  EXPECT_EQ(QBERR_READONLY, qbbeginquickupdate(h_));

  // Switching keeps the mode; a new name for a closed handle is a warning.
  const std::wstring other = dir_.wfile("other.qep");
  ASSERT_TRUE(CreatePanelFile(other));
  ASSERT_EQ(QB_OK, qbbeginquickread(h_));
  EXPECT_EQ(QB_OK, qbswitchfilew(h_, other.c_str()));
  EXPECT_EQ(QB_MODE_QUICKREAD, qbgetopenmode(h_));
  EXPECT_EQ(0, qbgetnrecs(h_));
  EXPECT_EQ(QB_OK, qbclosefile(h_));
  EXPECT_EQ(QBWARN_NEWFILE, qbswitchfilew(h_, dir_.wfile("new.qep").c_str()));
  EXPECT_EQ(1, qbsetwarningmode(h_, 0));
  EXPECT_EQ(QB_OK, qbswitchfilew(h_, dir_.wfile("new2.qep").c_str()));
  wchar_t name[260];
  EXPECT_EQ(QB_OK, qbgetfilenamew(h_, name, 260));
  EXPECT_EQ(dir_.wfile("new2.qep"), std::wstring(name));
  EXPECT_EQ(QBERR_NOFILE, qbopenfile(h_, QB_MODE_READ));
  EXPECT_EQ(0, qbfileisopen(h_));
}

TEST_F(QbFile, BadInputIsRefusedWithAStatusAndLeavesTheFileAsItWas) {
  ASSERT_EQ(QB_OK, SavePanel(h_, "P1", L"one", 1));
  ASSERT_EQ(QB_OK, SaveCircuit(h_, "C1", "P1", 1));
  ASSERT_EQ(QB_OK, qbclosefile(h_));
  const std::string before = Bytes();
  ASSERT_EQ(QB_OK, qbopenfile(h_, QB_MODE_UPDATE));

  // Wrong handles.
  for (short bad : {short(-1), short(9999)}) {
    EXPECT_EQ(QBERR_BADHANDLE, qbopenfile(bad, QB_MODE_READ));
    EXPECT_EQ(nullptr, qbfirstrec(bad));
    EXPECT_EQ(QBERR_BADHANDLE, qbgetlasterror(bad));
    EXPECT_EQ(QBERR_BADHANDLE, qbgetnrecs(bad));
    EXPECT_EQ(QBERR_BADHANDLE, qbdeleterec(bad, "PANEL", "P1"));
    EXPECT_EQ(QBERR_BADHANDLE, qbbeginquickupdate(bad));
    EXPECT_EQ(QBERR_BADHANDLE, qbreleasefile(bad));
  }
  // Missing sets and ids that are not ids.
  EXPECT_EQ(nullptr, qbcreaterec(h_, "NOSUCH", "X1"));
  EXPECT_EQ(QBERR_NOSET, qbgetlasterror(h_));
  EXPECT_EQ(QBERR_NOSET, qbdeleterec(h_, "NOSUCH", "P1"));
  EXPECT_EQ(nullptr, qbcreaterec(h_, "PANEL", ""));
  EXPECT_EQ(QBERR_BADID, qbgetlasterror(h_));
  EXPECT_EQ(QBERR_BADID, qbexistrec(h_, "PANEL", "TOOLONGID"));
  EXPECT_EQ(QBERR_BADID, qbexistrec(h_, "PANEL", "P 1"));
  EXPECT_EQ(QBERR_BADARG, qbexistrec(h_, "PANEL", nullptr));

  // Blocks that are not record buffers of this engine.
  alignas(8) char foreign[256];
  std::memset(foreign, 0, sizeof foreign);
  std::strcpy(foreign, "PANEL P1 not a record");
  EXPECT_EQ(QBERR_BADREC, qbsaverec(h_, foreign));
  EXPECT_EQ(nullptr, qbnextrec(h_, foreign));
  EXPECT_EQ(QBERR_BADREC, qbgetlasterror(h_));
  EXPECT_EQ(nullptr, qbcopyrec(foreign));
  EXPECT_EQ(nullptr, qbreleaserec(foreign));  // not freed: it is not ours
  EXPECT_EQ(QBERR_BADREC, qbgetlasterror(-1));
  char* alias = foreign;
  EXPECT_EQ(QBERR_BADREC, qbinsertatt(h_, &alias, 2, "abcd", 4));
  char id[QB_IDSIZE];
  EXPECT_EQ(QBERR_BADREC, qbgetID(h_, nullptr, foreign, id));

  // A record whose header was damaged after it was made.
  char* rec = qbfindrec(h_, "PANEL", "P1", 0);
  ASSERT_NE(nullptr, rec);
  char* copy = qbcopyrec(rec);
  std::memset(copy + 12, 0x7F, 4);
  EXPECT_EQ(QBERR_BADREC, qbsaverec(h_, copy));
  std::memcpy(copy, rec, 64);
  qbreleaserec(copy);

  // Refused writes: an owner with members, a member without its owner.
  EXPECT_EQ(QBERR_HASMEMBERS, qbdeleterec(h_, "PANEL", "P1"));
  EXPECT_EQ(QBERR_NOOWNER, SaveCircuit(h_, "C2", "NOPANEL", 1));
  EXPECT_EQ(QBERR_BADARG, qbsaverecwithahm(h_, rec, nullptr, 10));
  qbreleaserec(rec);

  ASSERT_EQ(QB_OK, qbclosefile(h_));
  EXPECT_EQ(before, Bytes());
}

TEST(QbFiles, FilesThatAreNotProjectDatabasesAreRefusedUntouched) {
  qt_test::TempDir dir;
  WriteText(dir.file("notes.txt"), "This is a text file, not a database.\n");
  WriteText(dir.file("empty.qep"), "");
  const std::string text = qt_test::ReadFileBytes(dir.file("notes.txt"));
  for (const char* name : {"notes.txt", "empty.qep"}) {
    const short h = qbinitfilew(dir.wfile(name).c_str(), -1);
    EXPECT_EQ(QBERR_NOTQBFILE, qbopenfile(h, QB_MODE_UPDATE)) << name;
    EXPECT_EQ(QBERR_NOTQBFILE, qbgetlasterror(h));
    EXPECT_EQ(0, qbfileisopen(h));
    qbreleasefile(h);
  }
  EXPECT_EQ(text, qt_test::ReadFileBytes(dir.file("notes.txt")));
  EXPECT_EQ("", qt_test::ReadFileBytes(dir.file("empty.qep")));

  const short missing = qbinitfilew(dir.wfile("missing.qep").c_str(), -1);
  EXPECT_EQ(QBERR_NOFILE, qbopenfile(missing, QB_MODE_READ));
  qbreleasefile(missing);

  // Creating never overwrites.
  const short d = ddq_parse(PanelDictionary());
  const short h = qbinitfilew(dir.wfile("notes.txt").c_str(), d);
  EXPECT_EQ(QBERR_EXISTS, qbcreatefile(h));
  qbreleasefile(h);
  ddq_release(d);
  EXPECT_EQ(text, qt_test::ReadFileBytes(dir.file("notes.txt")));
}
