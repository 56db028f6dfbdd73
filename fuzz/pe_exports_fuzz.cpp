// Module files come from installations nobody controls. Whatever the bytes,
// the export reader answers without reading outside them; what it accepts
// are names that really stand, terminated, in the bytes; and an accepted
// image reads the same with bytes appended, since nothing it used lay past
// its end.
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "pe_exports.h"

namespace {

std::vector<std::string> ReadAll(const std::vector<unsigned char>& bytes, bool* ok, std::string* problem) {
  std::vector<std::string> names;
  *ok = qt_tool::ReadPeExportNames(bytes.data(), bytes.size(), names, *problem);
  return names;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // An exact-size copy, so that a read past the end is an overflow.
  const std::vector<unsigned char> bytes(data, data + size);
  bool ok = false;
  std::string problem;
  const std::vector<std::string> names = ReadAll(bytes, &ok, &problem);
  if (!ok) {
    QT_FUZZ_CHECK(names.empty(), "a refused image names " + std::to_string(names.size()) + " exports");
    QT_FUZZ_CHECK(!problem.empty(), "refused without a reason");
    return 0;
  }
  QT_FUZZ_CHECK(problem.empty(), "accepted with a problem: " + problem);
  const std::string whole(reinterpret_cast<const char*>(data), size);
  for (const std::string& name : names) {
    QT_FUZZ_CHECK(name.size() <= 4096, "a name of " + std::to_string(name.size()) + " bytes");
    QT_FUZZ_CHECK(whole.find(name + '\0') != std::string::npos,
                  "a name that is not in the bytes: " + qt_fuzz::Printable(name));
  }
  std::vector<unsigned char> longer(bytes);
  longer.insert(longer.end(), 64, 0xFF);
  bool longerOk = false;
  std::string longerProblem;
  QT_FUZZ_CHECK(ReadAll(longer, &longerOk, &longerProblem) == names && longerOk,
                "appending bytes changes the answer: " + longerProblem);
  return 0;
}
