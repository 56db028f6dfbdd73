// The stream envelope's reserved words: a stream is refused unless they
// are zero, so that any stream that is taken writes back to the same bytes.
#include <gtest/gtest.h>

#include <string>

#include "project/qb_test_fixture.h"
#include "qb.h"

using namespace qb_test;

TEST(QbStreamEnvelope, ReservedWordsMustBeZero) {
  qt_test::TempDir dir;
  ASSERT_TRUE(CreatePanelFile(dir.wfile("a.qep")));
  const short a = OpenFile(dir.wfile("a.qep"), QB_MODE_UPDATE);
  ASSERT_GE(a, 0);
  ASSERT_EQ(QB_OK, SavePanel(a, "P1", L"panel", 1));
  long size = 0;
  char* bytes = qbcreatestreambuf(a, &size);
  ASSERT_NE(nullptr, bytes);
  const std::string good(bytes, static_cast<size_t>(size));
  qbreleasestreambuf(bytes);
  qbreleasefile(a);

  const short taken = qbreadstreambuf(reinterpret_cast<const unsigned char*>(good.data()), static_cast<long>(good.size()));
  ASSERT_GE(taken, 0);
  qbreleasefile(taken);
  // Bytes 12-15 follow the version, 28-31 the checksum; neither is
  // covered by the checksum.
  for (size_t at : {12u, 15u, 28u, 31u}) {
    std::string bent = good;
    bent[at] = 1;
    EXPECT_EQ(QBERR_BADSTREAM,
              qbreadstreambuf(reinterpret_cast<const unsigned char*>(bent.data()), static_cast<long>(bent.size())))
        << "reserved byte " << at;
  }
}
