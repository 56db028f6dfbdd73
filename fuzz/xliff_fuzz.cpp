// XLIFF 1.2 files from translators' tools.
#include "exchange_roundtrip.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  qt_fuzz::CheckExchangeRoundTrip(data, size, qt_lng::ReadXliff, qt_lng::WriteXliff, true);
  return 0;
}
