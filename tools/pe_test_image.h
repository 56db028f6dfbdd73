// A small x64 DLL image with chosen export names, built in memory for the
// export reader's tests and fuzz seeds.
#ifndef QUILTOOL_TOOLS_PE_TEST_IMAGE_H
#define QUILTOOL_TOOLS_PE_TEST_IMAGE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qt_tool_test {

inline void Put16(std::vector<unsigned char>& b, size_t at, uint32_t v) {
  b[at] = static_cast<unsigned char>(v);
  b[at + 1] = static_cast<unsigned char>(v >> 8);
}

inline void Put32(std::vector<unsigned char>& b, size_t at, uint32_t v) {
  Put16(b, at, v & 0xFFFF);
  Put16(b, at + 2, v >> 16);
}

// An x64 DLL image as a linker lays it out: headers, a code section, then
// an export section whose virtual address differs from its file offset.
// The file ends with the last name's terminator.
struct Dll {
  std::vector<unsigned char> bytes;
  size_t pe = 0x40, optional = 0x58, sections = 0x148;
  size_t directory = 0, nameTable = 0;  // file offsets
  uint32_t exportRva = 0x3000;
  static constexpr uint32_t kExportRaw = 0x400;  // the export section's file offset
};

inline Dll BuildDll(const std::vector<std::string>& names) {
  Dll d;
  std::vector<unsigned char>& b = d.bytes;
  const uint32_t count = static_cast<uint32_t>(names.size());
  const uint32_t tableRva = d.exportRva + 40, ordinalRva = tableRva + 4 * count, firstName = ordinalRva + 2 * count;
  uint32_t exportSize = firstName - d.exportRva;
  for (const std::string& n : names) exportSize += static_cast<uint32_t>(n.size() + 1);
  b.assign(Dll::kExportRaw + exportSize, 0);

  b[0] = 'M';
  b[1] = 'Z';
  Put32(b, 0x3C, static_cast<uint32_t>(d.pe));
  b[d.pe] = 'P';
  b[d.pe + 1] = 'E';
  Put16(b, d.pe + 4, 0x8664);
  Put16(b, d.pe + 6, 2);
  Put16(b, d.pe + 20, 240);
  Put16(b, d.pe + 22, 0x2022);
  Put16(b, d.optional, 0x20B);
  Put32(b, d.optional + 60, 0x200);
  Put32(b, d.optional + 108, 16);
  Put32(b, d.optional + 112, d.exportRva);
  Put32(b, d.optional + 116, exportSize);

  const char text[] = ".text", edata[] = ".edata";
  std::copy(text, text + 5, b.begin() + d.sections);
  Put32(b, d.sections + 8, 0x180);
  Put32(b, d.sections + 12, 0x1000);
  Put32(b, d.sections + 16, 0x200);
  Put32(b, d.sections + 20, 0x200);
  const size_t second = d.sections + 40;
  std::copy(edata, edata + 6, b.begin() + second);
  Put32(b, second + 8, exportSize);
  Put32(b, second + 12, d.exportRva);
  Put32(b, second + 16, exportSize);
  Put32(b, second + 20, Dll::kExportRaw);

  d.directory = Dll::kExportRaw;
  d.nameTable = Dll::kExportRaw + 40;
  Put32(b, d.directory + 20, count);
  Put32(b, d.directory + 24, count);
  Put32(b, d.directory + 32, tableRva);
  Put32(b, d.directory + 36, ordinalRva);
  uint32_t at = firstName;
  for (uint32_t i = 0; i < count; ++i) {
    Put32(b, d.nameTable + 4 * i, at);
    Put16(b, Dll::kExportRaw + (ordinalRva - d.exportRva) + 2 * i, i);
    std::copy(names[i].begin(), names[i].end(), b.begin() + Dll::kExportRaw + (at - d.exportRva));
    at += static_cast<uint32_t>(names[i].size() + 1);
  }
  return d;
}

}  // namespace qt_tool_test

#endif
