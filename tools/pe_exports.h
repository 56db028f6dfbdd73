// The names an x64 Windows module (PE32+ image) exports, read from the
// file's bytes alone: nothing of the module is loaded or run. Portable, so
// that the same reader is tested and fuzzed on every target.
#ifndef QUILTOOL_TOOLS_PE_EXPORTS_H
#define QUILTOOL_TOOLS_PE_EXPORTS_H

#include <cstddef>
#include <string>
#include <vector>

namespace qt_tool {

// Reads the export name table of the image in [data, data + size), in the
// table's order. An image without an export directory exports nothing and
// is fine. False, with names left empty and a short reason in problem
// ("not a Windows module", "a 32-bit module", "the export directory lies
// outside the file", ...), for anything that is not a whole, well-formed
// x64 DLL image; no offset, count or name is trusted before it is checked
// against the bytes at hand.
bool ReadPeExportNames(const unsigned char* data, size_t size, std::vector<std::string>& names,
                       std::string& problem);

}  // namespace qt_tool

#endif
