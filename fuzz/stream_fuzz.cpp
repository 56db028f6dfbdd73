// Database streams arrive from clipboards, other processes and old
// project files. A stream the reader accepts must be a sound database (the
// engine's own check finds nothing), every record of it must read, and
// written out again it must give the same bytes. Half the inputs are
// database images put into a valid envelope here, so that the fuzzer gets
// past the checksum to the database itself.
#include <cstdint>
#include <string>

#include "QBaseDb.h"
#include "fuzz_support.h"
#include "project/qb_stream.h"
#include "qb_walk.h"

namespace {

void Problem(void* context, const char* problem) {
  std::string* all = static_cast<std::string*>(context);
  if (all->size() < 2000) *all += std::string("\n     ") + problem;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  qt_fuzz::Reader in(data, size);
  const bool wrap = in.byte() & 1;
  const std::string rest = in.rest();
  const std::string stream = wrap ? qb::WrapStream(rest) : rest;

  QBaseDb db = QBaseDb::ReadStreamBuf(reinterpret_cast<const unsigned char*>(stream.data()), static_cast<long>(stream.size()));
  if (!db.isValidDb()) return 0;
  const short h = db.getHqbFile();

  std::string problems;
  const long found = qbcheckfile(h, Problem, &problems);
  QT_FUZZ_CHECK(found == 0, "an accepted stream fails the engine's check (" + std::to_string(found) + "):" + problems);

  const qt_fuzz::Walked walked = qt_fuzz::Walk(h);
  QT_FUZZ_CHECK(walked.complete, "the stream counts " + std::to_string(walked.counted) + " records, the walk finds " +
                                     std::to_string(walked.records));

  long outSize = 0;
  char* out = db.createStreamBuf(&outSize);
  QT_FUZZ_CHECK(out != nullptr, "an accepted stream cannot be written out");
  const std::string again(out, static_cast<size_t>(outSize));
  QBaseDb::releaseStreamBuf(out);
  QT_FUZZ_CHECK(again == stream, "written out again the stream changes (" + std::to_string(stream.size()) + " -> " +
                                     std::to_string(again.size()) + " bytes)");
  return 0;
}
