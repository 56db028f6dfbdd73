// Identity of the stand-in spreadsheet server that the automation tests
// drive: its class, and the command-line switches it understands.
#ifndef QUILTOOL_FAKE_EXCEL_IDS_H
#define QUILTOOL_FAKE_EXCEL_IDS_H

#include <windows.h>

namespace fake_excel {

// Our own class identifier; the tests register it under the ProgID the
// wrapper looks up, in the test run's private Wine prefix only.
// {6B1E3C52-9A47-4D0E-8F21-3C5D7A9B1E44}
static const CLSID kClassId = {0x6b1e3c52, 0x9a47, 0x4d0e, {0x8f, 0x21, 0x3c, 0x5d, 0x7a, 0x9b, 0x1e, 0x44}};

// --log=<file>           every lookup and call, one line each
// --fail-lookup=<member> GetIDsOfNames of that member answers DISP_E_UNKNOWNNAME
// --fail-invoke=<member> Invoke of that member answers DISP_E_EXCEPTION
// --active               registers its application as the running one
// --active-plain         registers an object that offers no IDispatch
// -Embedding             (added by COM) serves the class until released
const wchar_t kExecutable[] = L"fake_excel.exe";

}  // namespace fake_excel

#endif
