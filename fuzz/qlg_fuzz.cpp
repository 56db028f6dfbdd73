// Language files are edited by translators and merged by tools. The
// reader must answer exactly the texts the parser hands out (no text lost,
// cut or taken from a neighbour), refuse what the parser refuses, and the
// tools' canonical form must read back unchanged.
#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "cmd_lng_doc.h"
#include "fuzz_support.h"
#include "qn_utf.h"
#include "settings/qlg_format.h"
#include "settings/qlg_reader.h"

namespace {

const std::string kDefinitionPath = qt_fuzz::SuiteDefinitionPath();

struct Collector : qt::qlg::QlgHandler {
  int text = 0;
  std::map<std::pair<int, int>, std::string> texts;  // (text id, language id)
  void onText(int textId, int) override { text = textId; }
  void onTranslation(int languageId, const char* utf8, size_t length, int) override {
    texts[{text, languageId}] = std::string(utf8, length);
  }
};

void CheckDocumentRoundTrip(const std::string& bytes, const qt::qlg::Definition& def, bool parsed) {
  qt_lng::Document doc;
  std::string error;
  const bool ok = qt_lng::ParseDocument(bytes, "fuzz.qlg", def, &doc, &error);
  QT_FUZZ_CHECK(ok == parsed, "the tools and the reader disagree on the file: " + error);
  if (!ok) return;
  const std::string canonical = qt_lng::Serialize(doc);
  qt_lng::Document again;
  QT_FUZZ_CHECK(qt_lng::ParseDocument(canonical, "fuzz.qlg", def, &again, &error),
                "the canonical form is refused: " + error + "\n   " + qt_fuzz::Printable(canonical, 400));
  QT_FUZZ_CHECK(qt_lng::Serialize(again) == canonical, "the canonical form changes when read back");
  QT_FUZZ_CHECK(again.entries.size() == doc.entries.size() && again.module == doc.module, "texts lost on the way back");
  for (size_t i = 0; i < doc.entries.size(); ++i) {
    QT_FUZZ_CHECK(doc.entries[i].id == again.entries[i].id && doc.entries[i].texts == again.entries[i].texts &&
                      doc.entries[i].note == again.entries[i].note,
                  "text " + std::to_string(doc.entries[i].id) + " changes on the way back");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  {
    // The same bytes as a definition file: any answer but a crash will do.
    qt::qlg::Definition d;
    qt::qlg::ParseError error;
    if (qt::qlg::ParseDefinition(bytes.data(), bytes.size(), "fuzz.ddq", &d, &error)) {
      for (const qt::qlg::Language& l : d.languages) {
        QT_FUZZ_CHECK(d.byId(l.id) != nullptr, "a defined language is not found by its id");
      }
    }
  }

  const qt::qlg::Definition& def = qt_fuzz::SuiteDefinition();
  Collector seen;
  qt::qlg::ParseError error;
  const bool parsed = qt::qlg::ParseQlg(bytes.data(), bytes.size(), "fuzz.qlg", def, seen, &error);
  QT_FUZZ_CHECK(parsed || !error.message.empty(), "a refused file without a reason");

  const std::string path = qt_fuzz::ScratchFile("fuzz.qlg");
  QT_FUZZ_CHECK(qt_fuzz::WriteFile(path, data, size), "cannot write " + path);
  CQlg reader;
  const bool loaded = reader.init(qt_fuzz::Wide(kDefinitionPath).c_str(), qt_fuzz::Wide(path).c_str());
  QT_FUZZ_CHECK(loaded == parsed, "the reader " + std::string(loaded ? "takes" : "refuses") + " what the parser " +
                                      (parsed ? "takes" : "refuses") + ": " + reader.lastError());
  if (loaded) {
    QT_FUZZ_CHECK(reader.textCount() == seen.texts.size(),
                  std::to_string(reader.textCount()) + " texts loaded, " + std::to_string(seen.texts.size()) + " parsed");
    for (const auto& t : seen.texts) {
      reader.setActiveLanguage(static_cast<short>(t.first.second));
      size_t length = 0;
      const wchar_t* found = reader.find(t.first.first, &length);
      const std::wstring want = qn_utf8_to_wide(t.second.c_str(), t.second.size());
      QT_FUZZ_CHECK(found && std::wstring(found, length) == want,
                    "text " + std::to_string(t.first.first) + " in language " + std::to_string(t.first.second) +
                        " reads " + (found ? qt_fuzz::Printable(std::wstring(found, length)) : std::string("nothing")) +
                        " instead of " + qt_fuzz::Printable(want));
    }
  }
  CheckDocumentRoundTrip(bytes, def, parsed);
  return 0;
}
