// .reg files come from other machines, other programs and hand edits. A
// file the parser accepts must survive being written back: the written
// form parses to the same keys and values, and writing that again gives
// the same bytes.
#include <algorithm>
#include <cstdint>
#include <string>

#include "cmd_reg_file.h"
#include "fuzz_support.h"
#include "qn_utf.h"

namespace {

std::string Describe(const qt_regfile::Value& v) {
  std::string s = qt_fuzz::Printable(qt_fuzz::Narrow(v.name)) + (v.remove ? " removed" : " type " + std::to_string(v.type));
  s += " data " + qt_fuzz::Printable(std::string(v.data.begin(), v.data.end()), 60);
  return s;
}

std::string Describe(const qt_regfile::Key& k) {
  return std::string(qt_fuzz::Narrow(qt_regfile::RootName(k.root))) + "\\" + qt_fuzz::Printable(k.path) +
         (k.remove ? " (removed)" : "");
}

// A text written as a quoted string comes back with its terminator, as
// with the registry editor, even where the data had none.
bool SameData(const qt_regfile::Value& v, const qt_regfile::Value& w) {
  if (v.data == w.data) return true;
  if (v.type != 1 || w.data.size() != v.data.size() + 2 || v.data.size() % 2 != 0) return false;
  return std::equal(v.data.begin(), v.data.end(), w.data.begin()) && w.data[v.data.size()] == 0 &&
         w.data[v.data.size() + 1] == 0;
}

void CheckSame(const qt_regfile::Document& a, const qt_regfile::Document& b) {
  QT_FUZZ_CHECK(a.keys.size() == b.keys.size(),
                std::to_string(a.keys.size()) + " keys read, " + std::to_string(b.keys.size()) + " after writing");
  for (size_t i = 0; i < a.keys.size(); ++i) {
    const qt_regfile::Key& x = a.keys[i];
    const qt_regfile::Key& y = b.keys[i];
    QT_FUZZ_CHECK(x.root == y.root && x.path == y.path && x.remove == y.remove,
                  "key " + Describe(x) + " comes back as " + Describe(y));
    QT_FUZZ_CHECK(x.values.size() == y.values.size(), "key " + Describe(x) + " changes its number of values");
    for (size_t j = 0; j < x.values.size(); ++j) {
      const qt_regfile::Value& v = x.values[j];
      const qt_regfile::Value& w = y.values[j];
      const bool same = v.name == w.name && v.remove == w.remove && (v.remove || (v.type == w.type && SameData(v, w)));
      QT_FUZZ_CHECK(same, "in " + Describe(x) + ": " + Describe(v) + " comes back as " + Describe(w));
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  qt_regfile::Document doc;
  std::string error;
  if (!qt_regfile::Parse(bytes, &doc, &error)) {
    QT_FUZZ_CHECK(!error.empty(), "a refused file without a reason");
    return 0;
  }
  const std::string written = qt_regfile::Format(doc);
  qt_regfile::Document again;
  QT_FUZZ_CHECK(qt_regfile::Parse(written, &again, &error),
                "the written form is refused: " + error + "\n   written: " + qt_fuzz::Printable(written, 400));
  CheckSame(doc, again);
  QT_FUZZ_CHECK(qt_regfile::Format(again) == written, "writing the written form again gives other bytes");
  return 0;
}
