// gettext PO files from translators' editors.
#include "exchange_roundtrip.h"

namespace {

bool WritePo(const qt_lng::Document& doc, const qt::qlg::Definition& def, const qt::qlg::Language& target,
             std::string* out, std::string*) {
  *out = qt_lng::WritePo(doc, def, target);
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  qt_fuzz::CheckExchangeRoundTrip(data, size, qt_lng::ReadPo, WritePo, false);
  return 0;
}
