// Shared by the PO and XLIFF harnesses: whatever a translator's file says,
// once read its texts go into a language file and out again through the
// same format unchanged.
#ifndef QUILTOOL_FUZZ_EXCHANGE_ROUNDTRIP_H
#define QUILTOOL_FUZZ_EXCHANGE_ROUNDTRIP_H

#include <cstdint>
#include <set>
#include <string>

#include "cmd_lng_exchange.h"
#include "fuzz_support.h"

namespace qt_fuzz {

typedef bool (*ExchangeReader)(const std::string&, const std::string&, qt_lng::Exchange*, std::string*);
// False (with a reason) when the format cannot carry the document.
typedef bool (*ExchangeWriter)(const qt_lng::Document&, const qt::qlg::Definition&, const qt::qlg::Language&,
                               std::string*, std::string*);

// XML 1.0 cannot carry these control characters at all.
inline bool XmlCarries(const std::string& text) {
  for (unsigned char c : text) {
    if (c < 0x20 && c != '\t' && c != '\n' && c != '\r') return false;
  }
  return true;
}

inline void CheckExchangeRoundTrip(const uint8_t* data, size_t size, ExchangeReader read, ExchangeWriter write,
                                   bool xml) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  qt_lng::Exchange ex;
  std::string error;
  if (!read(bytes, "fuzz", &ex, &error)) {
    QT_FUZZ_CHECK(!error.empty(), "a refused file without a reason");
    return;
  }
  const qt::qlg::Definition& def = SuiteDefinition();
  const qt::qlg::Language* target = def.byCodeOrId(ex.language);
  if (!target || target->id == def.sourceLanguage) target = def.byCodeOrId("de");
  QT_FUZZ_CHECK(target != nullptr, "the suite's definition has no German");

  // The file's texts as a module's language file: one entry per text id,
  // the first unit of an id winning.
  qt_lng::Document doc;
  doc.fileName = "Fuzz.qlg";
  doc.module = "FZ";
  std::set<int> ids;
  bool carried = true;
  for (const qt_lng::Unit& u : ex.units) {
    std::string module;
    int id = 0;
    if (!qt_lng::SplitUnitId(u.id, &module, &id) || u.source.empty() || !ids.insert(id).second) continue;
    qt_lng::Entry e;
    e.id = id;
    e.setText(def.sourceLanguage, u.source);
    if (!u.target.empty()) e.setText(target->id, u.target);
    carried = carried && XmlCarries(u.source) && XmlCarries(u.target);
    doc.entries.push_back(e);
  }

  std::string written;
  if (!write(doc, def, *target, &written, &error)) {
    QT_FUZZ_CHECK(xml && !carried, "writing the texts back fails: " + error);
    return;
  }
  qt_lng::Exchange back;
  QT_FUZZ_CHECK(read(written, "fuzz", &back, &error),
                "the written file is refused: " + error + "\n   " + Printable(written, 600));
  QT_FUZZ_CHECK(back.module == doc.module && back.language == target->code,
                "header comes back as module " + Printable(back.module) + ", language " + Printable(back.language));
  QT_FUZZ_CHECK(back.units.size() == doc.entries.size(), std::to_string(doc.entries.size()) + " texts written, " +
                                                             std::to_string(back.units.size()) + " read back");
  for (size_t i = 0; i < doc.entries.size(); ++i) {
    const qt_lng::Entry& e = doc.entries[i];
    const qt_lng::Unit& u = back.units[i];
    const std::string* t = e.text(target->id);
    const std::string want = t ? *t : std::string();
    QT_FUZZ_CHECK(u.id == qt_lng::UnitId(doc.module, e.id), "unit " + Printable(u.id) + " was text " + std::to_string(e.id));
    QT_FUZZ_CHECK(u.source == *e.text(def.sourceLanguage),
                  "source of " + u.id + " comes back as " + Printable(u.source) + " not " + Printable(*e.text(def.sourceLanguage)));
    QT_FUZZ_CHECK(u.target == want, "translation of " + u.id + " comes back as " + Printable(u.target) + " not " + Printable(want));
  }
}

}  // namespace qt_fuzz

#endif
