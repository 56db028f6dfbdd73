// Streams: whole databases as bytes, reproducible for the same content,
// refused when damaged, and their Base64 form.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "QBaseDb.h"
#include "project/qb_test_fixture.h"
#include "project/qbase_db_internal.h"
#include "qb.h"

using namespace qb_test;

namespace {

std::string StreamOf(short h) {
  long size = 0;
  char* bytes = qbcreatestreambuf(h, &size);
  std::string s = bytes ? std::string(bytes, static_cast<size_t>(size)) : std::string();
  qbreleasestreambuf(bytes);
  return s;
}

short ReadBuf(const std::string& s) {
  return qbreadstreambuf(reinterpret_cast<const unsigned char*>(s.data()), static_cast<long>(s.size()));
}

// A test's own CRC-32, to build envelopes the engine must still refuse.
uint32_t Crc(const std::string& s) {
  uint32_t crc = 0xFFFFFFFFu;
  for (unsigned char c : s) {
    crc ^= c;
    for (int k = 0; k < 8; ++k) crc = (crc & 1) ? 0xEDB88320u ^ (crc >> 1) : crc >> 1;
  }
  return crc ^ 0xFFFFFFFFu;
}

std::string Envelope(const std::string& image) {
  std::string out("QBSTREAM\x01\0\0\0\0\0\0\0", 16);
  for (int i = 0; i < 8; ++i) out.push_back(static_cast<char>((static_cast<uint64_t>(image.size()) >> (8 * i)) & 0xFF));
  const uint32_t crc = Crc(image);
  for (int i = 0; i < 4; ++i) out.push_back(static_cast<char>((crc >> (8 * i)) & 0xFF));
  out.append(4, '\0');
  return out + image;
}

std::string Decode64(const std::wstring& text) {
  const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  unsigned bits = 0;
  int count = 0;
  for (wchar_t c : text) {
    if (c == L'=') break;
    bits = (bits << 6) | static_cast<unsigned>(alphabet.find(static_cast<char>(c)));
    count += 6;
    if (count >= 8) {
      count -= 8;
      out.push_back(static_cast<char>((bits >> count) & 0xFF));
    }
  }
  return out;
}

}  // namespace

TEST(QbStreams, TheSameContentGivesTheSameBytesWhateverItsHistory) {
  qt_test::TempDir dir;
  ASSERT_TRUE(CreatePanelFile(dir.wfile("a.qep")));
  ASSERT_TRUE(CreatePanelFile(dir.wfile("b.qep")));
  const short a = OpenFile(dir.wfile("a.qep"), QB_MODE_QUICKUPDATE);
  const short b = OpenFile(dir.wfile("b.qep"), QB_MODE_UPDATE);
  ASSERT_GE(a, 0);
  ASSERT_GE(b, 0);
  for (const char* id : {"P1", "P2", "P3"}) ASSERT_EQ(QB_OK, SavePanel(a, id, L"panel", 1));
  ASSERT_EQ(QB_OK, SaveCircuit(a, "C1", "P1", 2));
  for (const char* id : {"P3", "P2", "X9", "P1"}) ASSERT_EQ(QB_OK, SavePanel(b, id, L"other", 7));
  ASSERT_EQ(QB_OK, SaveCircuit(b, "C1", "P1", 2));
  ASSERT_EQ(QB_OK, qbdeleterec(b, "PANEL", "X9"));
  for (const char* id : {"P1", "P2", "P3"}) {
    char* rec = qbfindrec(b, "PANEL", id, 0);
    const int rating = 1;
    ASSERT_EQ(QB_OK, qbinsertwsz(b, &rec, 1, L"panel", -1));
    ASSERT_EQ(QB_OK, qbinsertatt(b, &rec, 2, &rating, 4));
    ASSERT_EQ(QB_OK, qbsaverec(b, rec));
    qbreleaserec(rec);
  }

  const std::string sa = StreamOf(a);  // inside a's quick update: its own changes count
  ASSERT_GT(sa.size(), 32u);
  EXPECT_EQ(sa, StreamOf(b));
  EXPECT_EQ(sa, StreamOf(a));

  // Read back: an in-memory database with the same content and stream.
  const short copy = ReadBuf(sa);
  ASSERT_GE(copy, 0);
  EXPECT_EQ(QB_MODE_UPDATE, qbgetopenmode(copy));
  EXPECT_EQ(4L, qbgetnrecs(copy));
  EXPECT_EQ(sa, StreamOf(copy));
  ASSERT_EQ(QB_OK, qbdeleterec(copy, "CIRCUIT", "C1"));  // changes stay in memory
  EXPECT_EQ(4L, qbgetnrecs(b));
  EXPECT_EQ(QB_OK, qbclosefile(copy));
  EXPECT_EQ(QBERR_NOFILE, qbopenfile(copy, QB_MODE_UPDATE));  // gone with its memory
  qbreleasefile(copy);

  // Through a stream file.
  ASSERT_EQ(QB_OK, qbwritestreamw(b, dir.wfile("b.qbs").c_str()));
  EXPECT_EQ(sa, qt_test::ReadFileBytes(dir.file("b.qbs")));
  const QBaseDb fromFile = QBaseDb::ReadStream(dir.wfile("b.qbs").c_str());
  ASSERT_TRUE(fromFile.isValidDb());
  EXPECT_EQ(dir.wfile("b.qbs"), std::wstring(fromFile.getFileName().c_str()));
  EXPECT_EQ(sa, StreamOf(fromFile.getHqbFile()));
  qbreleasefile(a);
  qbreleasefile(b);
}

TEST(QbStreams, TruncatedDamagedOrForeignStreamsAreRefused) {
  qt_test::TempDir dir;
  ASSERT_TRUE(CreatePanelFile(dir.wfile("a.qep")));
  const short a = OpenFile(dir.wfile("a.qep"), QB_MODE_UPDATE);
  ASSERT_EQ(QB_OK, SavePanel(a, "P1", L"panel", 1));
  const std::string good = StreamOf(a);
  qbreleasefile(a);

  EXPECT_EQ(QBERR_BADSTREAM, ReadBuf(good.substr(0, good.size() - 1)));
  EXPECT_EQ(QBERR_BADSTREAM, qbgetlasterror(-1));
  EXPECT_EQ(QBERR_BADSTREAM, ReadBuf(good.substr(0, 31)));
  EXPECT_EQ(QBERR_BADSTREAM, ReadBuf(good + "x"));
  std::string flipped = good;
  flipped[flipped.size() / 2] ^= 0x40;
  EXPECT_EQ(QBERR_BADSTREAM, ReadBuf(flipped));
  EXPECT_EQ(QBERR_BADSTREAM, ReadBuf(std::string()));
  EXPECT_EQ(QBERR_BADARG, qbreadstreambuf(nullptr, 10));

  // Envelopes that check out around images that are not ours.
  const std::string image = good.substr(32);
  const short rebuilt = ReadBuf(Envelope(image));
  ASSERT_GE(rebuilt, 0) << "the test's envelope must match the engine's";
  qbreleasefile(rebuilt);
  std::string other = image;
  other[70] ^= 1;  // the application id in the database header
  EXPECT_EQ(QBERR_BADSTREAM, ReadBuf(Envelope(other)));
  EXPECT_EQ(QBERR_BADSTREAM, ReadBuf(Envelope("SQLite format 3 and then nothing useful")));
  std::string torn = image;
  torn.replace(4096, 12, 12, '\x55');  // the header of the second page
  EXPECT_EQ(QBERR_BADSTREAM, ReadBuf(Envelope(torn)));

  EXPECT_FALSE(QBaseDb::ReadStream(dir.wfile("none.qbs").c_str()).isValidDb());
  EXPECT_EQ(QBERR_NOFILE, qbreadstreamw(dir.wfile("none.qbs").c_str()));
  EXPECT_FALSE(QBaseDb::ReadStreamBuf(reinterpret_cast<const unsigned char*>(flipped.data()),
                                      static_cast<long>(flipped.size()))
                   .isValidDb());
}

TEST(QbStreams, Base64IsOneLineOfTheStandardAlphabet) {
  auto b64 = [](const std::string& s) {
    return std::wstring(qt_qb_base64(reinterpret_cast<const unsigned char*>(s.data()), s.size()).c_str());
  };
  EXPECT_EQ(L"", b64(""));
  EXPECT_EQ(L"Zg==", b64("f"));
  EXPECT_EQ(L"Zm8=", b64("fo"));
  EXPECT_EQ(L"Zm9v", b64("foo"));
  EXPECT_EQ(L"Zm9vYmFy", b64("foobar"));
  EXPECT_EQ(L"//79", b64("\xff\xfe\xfd"));
  const std::wstring longer = b64(std::string(300, '\x07'));
  EXPECT_EQ(400u, longer.size());
  EXPECT_EQ(std::wstring::npos, longer.find_first_of(L"\r\n"));

  qt_test::TempDir dir;
  ASSERT_TRUE(CreatePanelFile(dir.wfile("a.qep")));
  QBaseDbManager manager;
  QBaseDb db = manager.openFile(dir.wfile("a.qep").c_str(), QB_MODE_UPDATE);
  ASSERT_EQ(QB_OK, SavePanel(db.getHqbFile(), "P1", L"panel", 1));
  const std::wstring text = db.createStreamAsBase64().c_str();
  EXPECT_EQ(std::wstring::npos, text.find_first_of(L"\r\n"));
  const std::string stream = StreamOf(db.getHqbFile());
  EXPECT_EQ(stream, Decode64(text));
  EXPECT_EQ((stream.size() + 2) / 3 * 4, text.size());
  db.closeDatabase();
}

namespace {

// A stream of a file with several records, so that ids sit in order in the
// table and in the owner index.
std::string PanelStream(const qt_test::TempDir& dir) {
  EXPECT_TRUE(CreatePanelFile(dir.wfile("s.qep")));
  const short h = OpenFile(dir.wfile("s.qep"), QB_MODE_UPDATE);
  for (const char* id : {"Q1", "Q2", "Q3", "Q4", "Q5", "Q6", "Q7", "Q8"}) EXPECT_EQ(QB_OK, SavePanel(h, id, L"panel", 1));
  EXPECT_EQ(QB_OK, SaveCircuit(h, "C1", "Q5", 2));
  const std::string s = StreamOf(h);
  qbreleasefile(h);
  return s;
}

}  // namespace

TEST(QbStreams, AcceptedStreamsAreExactlyTheOnesTheEngineWrites) {
  qt_test::TempDir dir;
  const std::string good = PanelStream(dir);
  const short h = ReadBuf(good);
  ASSERT_GE(h, 0);
  EXPECT_EQ(good, StreamOf(h));
  qbreleasefile(h);

  // One byte of a record id: the checksum is made to fit, the records are
  // then out of key order and the owner index disagrees with its table.
  const std::string image = good.substr(32);
  const size_t at = image.find("Q6");
  ASSERT_NE(std::string::npos, at);
  std::string renamed = image;
  renamed[at + 1] = '0';
  EXPECT_EQ(QBERR_BADSTREAM, ReadBuf(Envelope(renamed)));
  EXPECT_FALSE(QBaseDb::ReadStreamBuf(reinterpret_cast<const unsigned char*>(Envelope(renamed).data()),
                                      static_cast<long>(Envelope(renamed).size()))
                   .isValidDb());

  // The envelope's reserved words are part of the form too.
  std::string reserved = good;
  reserved[12] = 1;
  EXPECT_EQ(QBERR_BADSTREAM, ReadBuf(reserved));
}

TEST(QbStreams, ADamagedStreamIsRefusedOrReadsBackAsItWas) {
  qt_test::TempDir dir;
  const std::string image = PanelStream(dir).substr(32);
  uint32_t seed = 12345;
  int accepted = 0;
  for (int round = 0; round < 300; ++round) {
    seed = seed * 1103515245u + 12345u;
    std::string damaged = image;
    const size_t at = (seed >> 8) % damaged.size();
    damaged[at] = static_cast<char>(damaged[at] ^ (1 + (seed >> 24) % 255));
    const std::string stream = Envelope(damaged);
    const short h = ReadBuf(stream);
    if (h < 0) {
      EXPECT_EQ(QBERR_BADSTREAM, h) << "byte " << at;
      continue;
    }
    ++accepted;
    EXPECT_EQ(stream, StreamOf(h)) << "byte " << at;
    qbreleasefile(h);
  }
  // Most bytes of a small database are unused page space: some flips are
  // accepted, and those must have changed nothing that counts.
  RecordProperty("accepted", accepted);
}
