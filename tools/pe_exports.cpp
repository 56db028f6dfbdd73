#include "pe_exports.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

namespace qt_tool {

namespace {

// Linkers cut longer decorated names down to this length; anything longer
// is not a name a linker wrote.
const size_t kMaxNameBytes = 4096;
const size_t kSectionHeaderBytes = 40;
const size_t kExportDirectoryBytes = 40;

const uint16_t kMachineAmd64 = 0x8664;
const uint16_t kMachineI386 = 0x014C;
const uint16_t kMagicPe32 = 0x10B;
const uint16_t kMagicPe32Plus = 0x20B;
const uint16_t kFileIsDll = 0x2000;

class Image {
 public:
  Image(const unsigned char* data, size_t size) : data_(data), size_(size) {}

  size_t size() const { return size_; }
  bool Has(uint64_t offset, uint64_t bytes) const { return offset <= size_ && bytes <= size_ - offset; }
  // Callers check Has() first.
  uint16_t U16(uint64_t offset) const {
    const unsigned char* p = data_ + offset;
    return static_cast<uint16_t>(p[0] | p[1] << 8);
  }
  uint32_t U32(uint64_t offset) const {
    const unsigned char* p = data_ + offset;
    return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 | static_cast<uint32_t>(p[2]) << 16 |
           static_cast<uint32_t>(p[3]) << 24;
  }
  const unsigned char* At(uint64_t offset) const { return data_ + offset; }

  void SetLayout(uint32_t headerBytes, uint64_t sectionTable, unsigned sectionCount) {
    headerBytes_ = headerBytes;
    sectionTable_ = sectionTable;
    sectionCount_ = sectionCount;
  }

  // Where the byte at rva lies in the file, and how many bytes of the same
  // section follow it there. False when rva is in no section's file data.
  bool Map(uint32_t rva, uint64_t* offset, uint64_t* available) const {
    for (unsigned i = 0; i < sectionCount_; ++i) {
      const uint64_t header = sectionTable_ + i * kSectionHeaderBytes;
      const uint32_t virtualSize = U32(header + 8), address = U32(header + 12);
      const uint32_t rawSize = U32(header + 16), rawOffset = U32(header + 20);
      // The part past the raw data is zero-filled memory, not file bytes.
      const uint64_t inFile = virtualSize != 0 && virtualSize < rawSize ? virtualSize : rawSize;
      if (rva < address || rva - address >= inFile) continue;
      return Clip(static_cast<uint64_t>(rawOffset) + (rva - address), static_cast<uint64_t>(rawOffset) + inFile,
                  offset, available);
    }
    // The headers are mapped at the image's start as they are in the file.
    if (rva < headerBytes_) return Clip(rva, headerBytes_, offset, available);
    return false;
  }

 private:
  bool Clip(uint64_t start, uint64_t end, uint64_t* offset, uint64_t* available) const {
    if (end > size_) end = size_;
    if (start >= end) return false;
    *offset = start;
    *available = end - start;
    return true;
  }

  const unsigned char* data_;
  size_t size_;
  uint32_t headerBytes_ = 0;
  uint64_t sectionTable_ = 0;
  unsigned sectionCount_ = 0;
};

std::string Hex4(unsigned value) {
  char text[8];
  std::snprintf(text, sizeof text, "%04x", value & 0xFFFFu);
  return text;
}

// Checks the headers up to the export directory's place; false with a
// reason when the bytes are not an x64 DLL image.
bool ReadHeaders(Image& image, uint32_t* exportRva, std::string& problem) {
  if (image.Has(0, 4) && image.U32(0) == 0x464C457F) {
    problem = "not a Windows module (an ELF file, as Linux uses)";
    return false;
  }
  if (!image.Has(0, 2) || image.U16(0) != 0x5A4D) {
    problem = "not a Windows module (no MZ header)";
    return false;
  }
  if (!image.Has(0, 64)) {
    problem = "the file is cut off inside its DOS header";
    return false;
  }
  const uint64_t pe = image.U32(0x3C);
  if (!image.Has(pe, 24)) {
    problem = "the file is cut off before its PE header";
    return false;
  }
  if (image.U32(pe) != 0x00004550) {
    problem = "not a Windows module (no PE signature)";
    return false;
  }
  const uint16_t machine = image.U16(pe + 4);
  if (machine == kMachineI386) {
    problem = "a 32-bit (x86) module, not an x64 one";
    return false;
  }
  if (machine != kMachineAmd64) {
    problem = "a module for another processor (machine 0x" + Hex4(machine) + "), not an x64 one";
    return false;
  }
  const unsigned sectionCount = image.U16(pe + 6);
  const uint64_t optionalBytes = image.U16(pe + 20);
  if ((image.U16(pe + 22) & kFileIsDll) == 0) {
    problem = "a program, not a module (DLL)";
    return false;
  }
  const uint64_t optional = pe + 24;
  if (!image.Has(optional, optionalBytes)) {
    problem = "the file is cut off inside its optional header";
    return false;
  }
  const uint16_t magic = optionalBytes >= 2 ? image.U16(optional) : 0;
  if (magic == kMagicPe32) {
    problem = "a 32-bit (PE32) module, not an x64 one";
    return false;
  }
  if (magic != kMagicPe32Plus || optionalBytes < 112) {
    problem = "not a PE32+ image (unknown optional header)";
    return false;
  }
  const uint64_t sectionTable = optional + optionalBytes;
  if (!image.Has(sectionTable, static_cast<uint64_t>(sectionCount) * kSectionHeaderBytes)) {
    problem = "the section table runs past the end of the file";
    return false;
  }
  image.SetLayout(image.U32(optional + 60), sectionTable, sectionCount);
  const uint32_t directories = image.U32(optional + 108);
  *exportRva = directories >= 1 && optionalBytes >= 120 ? image.U32(optional + 112) : 0;
  return true;
}

}  // namespace

bool ReadPeExportNames(const unsigned char* data, size_t size, std::vector<std::string>& names,
                       std::string& problem) {
  names.clear();
  problem.clear();
  Image image(data, data ? size : 0);
  uint32_t exportRva = 0;
  if (!ReadHeaders(image, &exportRva, problem)) return false;
  if (exportRva == 0) return true;

  uint64_t directory = 0, available = 0;
  if (!image.Map(exportRva, &directory, &available)) {
    problem = "the export directory lies outside the file";
    return false;
  }
  if (available < kExportDirectoryBytes) {
    problem = "the export directory is cut off";
    return false;
  }
  const uint32_t count = image.U32(directory + 24), tableRva = image.U32(directory + 32);
  if (count == 0) return true;
  uint64_t table = 0;
  if (!image.Map(tableRva, &table, &available)) {
    problem = "the export name table lies outside the file";
    return false;
  }
  if (available / 4 < count) {
    problem = "the export name table is cut off (" + std::to_string(count) + " names announced)";
    return false;
  }
  std::vector<std::string> found;
  found.reserve(count);
  for (uint32_t i = 0; i < count; ++i) {
    uint64_t name = 0;
    if (!image.Map(image.U32(table + 4 * static_cast<uint64_t>(i)), &name, &available)) {
      problem = "export name " + std::to_string(i + 1) + " lies outside the file";
      return false;
    }
    const size_t scan = available > kMaxNameBytes ? kMaxNameBytes + 1 : static_cast<size_t>(available);
    const void* end = std::memchr(image.At(name), 0, scan);
    if (!end) {
      problem = "export name " + std::to_string(i + 1) +
                (scan > kMaxNameBytes ? " is longer than " + std::to_string(kMaxNameBytes) + " bytes"
                                      : std::string(" is not terminated within its section"));
      return false;
    }
    found.emplace_back(reinterpret_cast<const char*>(image.At(name)),
                       static_cast<const unsigned char*>(end) - image.At(name));
  }
  names.swap(found);
  return true;
}

}  // namespace qt_tool
