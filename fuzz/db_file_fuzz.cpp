// Project database files lie on shared folders and outlive the programs
// that wrote them; any of them may be damaged. Opening one to read it, the
// engine's check and a walk of every record answer without crashing, read
// access leaves the file's bytes as they were, and a file the check finds
// sound reads completely.
#include <cstdint>
#include <string>

#include "fuzz_support.h"
#include "qb.h"
#include "qb_walk.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string path = qt_fuzz::ScratchFile("damaged.qep");
  qt_fuzz::RemoveTree(path + "-journal");
  qt_fuzz::RemoveTree(path + "-wal");
  qt_fuzz::RemoveTree(path + "-shm");
  QT_FUZZ_CHECK(qt_fuzz::WriteFile(path, data, size), "cannot write " + path);

  const short h = qbinitfilew(qt_fuzz::Wide(path).c_str(), -1);
  QT_FUZZ_CHECK(h >= 0, "no handle for a file name: " + std::to_string(h));
  if (qbopenfile(h, QB_MODE_READ) == QB_OK) {
    const long problems = qbcheckfile(h, nullptr, nullptr);
    const qt_fuzz::Walked walked = qt_fuzz::Walk(h);
    if (problems == 0) {
      QT_FUZZ_CHECK(walked.complete, "a file the check finds sound counts " + std::to_string(walked.counted) +
                                         " records, the walk finds " + std::to_string(walked.records));
    }
    const short ddq = qbgetddq(h);
    if (ddq >= 0) {
      for (short i = 0, n = ddq_getnsets(ddq); i < n; ++i) {
        qbsetinfo set;
        if (ddq_getsetinfo(ddq, i, &set) != QB_OK) continue;
        for (short k = 0, m = ddq_getnatts(ddq, set.name); k < m; ++k) {
          qbattinfo att;
          ddq_getattinfo(ddq, set.name, k, &att);
        }
      }
    }
    qbclosefile(h);
  }
  qbreleasefile(h);

  std::string after;
  QT_FUZZ_CHECK(qt_fuzz::ReadFile(path, &after), "the file is gone after reading it");
  QT_FUZZ_CHECK(after == std::string(reinterpret_cast<const char*>(data), size),
                "reading the file changed it (" + std::to_string(size) + " -> " + std::to_string(after.size()) + " bytes)");
  return 0;
}
