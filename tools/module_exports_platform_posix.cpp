#include <fcntl.h>
#include <gelf.h>
#include <libelf.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

#include "module_exports_platform.h"

namespace qt {
namespace module_exports {
namespace platform {

namespace {

// A symbol that another object can bind to: defined here, global or weak,
// and not hidden or internal. Section and file symbols name no function.
bool Exported(const GElf_Sym& symbol) {
  if (symbol.st_shndx == SHN_UNDEF || symbol.st_name == 0) return false;
  const int binding = GELF_ST_BIND(symbol.st_info), type = GELF_ST_TYPE(symbol.st_info);
  if (binding != STB_GLOBAL && binding != STB_WEAK && binding != STB_GNU_UNIQUE) return false;
  if (type == STT_SECTION || type == STT_FILE) return false;
  const int visibility = GELF_ST_VISIBILITY(symbol.st_other);
  return visibility == STV_DEFAULT || visibility == STV_PROTECTED;
}

std::string ElfProblem(const char* what) {
  const int error = elf_errno();
  const char* detail = error != 0 ? elf_errmsg(error) : nullptr;
  return std::string(what) + (detail ? std::string(" (") + detail + ")" : std::string());
}

bool ReadDynamicSymbols(Elf* elf, uint64_t fileSize, std::vector<std::string>& names, std::string& problem) {
  if (elf_kind(elf) != ELF_K_ELF) {
    size_t size = 0;
    const char* raw = elf_rawfile(elf, &size);
    const bool windows = raw && size >= 2 && raw[0] == 'M' && raw[1] == 'Z';
    problem = windows ? "not an ELF shared object (a Windows module)" : "not an ELF shared object (not an ELF file)";
    return false;
  }
  GElf_Ehdr header;
  if (!gelf_getehdr(elf, &header)) {
    problem = ElfProblem("not an ELF shared object: its header cannot be read");
    return false;
  }
  if (header.e_ident[EI_CLASS] != ELFCLASS64 || header.e_machine != EM_X86_64) {
    problem = "an ELF file for another platform, not an x86-64 one";
    return false;
  }
  if (header.e_type != ET_DYN) {
    problem = "an ELF file that is not a shared object";
    return false;
  }
  size_t sections = 0;
  if (elf_getshdrnum(elf, &sections) != 0) {
    problem = ElfProblem("the section table cannot be read");
    return false;
  }
  // libelf shows a section table that lies past the end as no sections at
  // all, which would pass a cut-off file for a module exporting nothing.
  if (header.e_shoff == 0 || sections == 0) {
    problem = "an ELF file without a section table, whose exports cannot be read";
    return false;
  }
  if (header.e_shoff > fileSize || static_cast<uint64_t>(sections) * header.e_shentsize > fileSize - header.e_shoff) {
    problem = "the file is cut off: its section table lies past the end";
    return false;
  }
  for (Elf_Scn* section = elf_nextscn(elf, nullptr); section; section = elf_nextscn(elf, section)) {
    GElf_Shdr sh;
    if (!gelf_getshdr(section, &sh)) {
      problem = ElfProblem("a section header cannot be read");
      return false;
    }
    if (sh.sh_type != SHT_DYNSYM) continue;
    Elf_Data* data = elf_getdata(section, nullptr);
    if (!data || sh.sh_entsize == 0) {
      problem = ElfProblem("the dynamic symbol table cannot be read");
      return false;
    }
    const size_t count = data->d_size / gelf_fsize(elf, ELF_T_SYM, 1, EV_CURRENT);
    for (size_t i = 0; i < count; ++i) {
      GElf_Sym symbol;
      if (!gelf_getsym(data, static_cast<int>(i), &symbol)) {
        problem = ElfProblem("a dynamic symbol cannot be read");
        return false;
      }
      if (!Exported(symbol)) continue;
      const char* name = elf_strptr(elf, sh.sh_link, symbol.st_name);
      if (!name) {
        problem = ElfProblem("a dynamic symbol's name lies outside its string table");
        return false;
      }
      names.emplace_back(name);
    }
    return true;
  }
  // Without a dynamic symbol table the object exports nothing.
  return true;
}

}  // namespace

bool ReadExportNames(const std::string& utf8Path, std::vector<std::string>& names, std::string& problem) {
  names.clear();
  if (elf_version(EV_CURRENT) == EV_NONE) {
    problem = ElfProblem("the ELF reader cannot start");
    return false;
  }
  const int fd = open(utf8Path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    problem = std::string("cannot open the file: ") + std::strerror(errno);
    return false;
  }
  // Read into memory rather than mapped: a file cut short while it is read
  // then gives an error, not a bus error.
  struct stat status;
  if (fstat(fd, &status) != 0) {
    problem = std::string("cannot read the file: ") + std::strerror(errno);
    close(fd);
    return false;
  }
  Elf* elf = elf_begin(fd, ELF_C_READ, nullptr);
  bool ok = false;
  if (!elf) {
    problem = ElfProblem("the file cannot be read as ELF");
  } else {
    ok = ReadDynamicSymbols(elf, static_cast<uint64_t>(status.st_size), names, problem);
    elf_end(elf);
  }
  close(fd);
  if (!ok) names.clear();
  return ok;
}

}  // namespace platform
}  // namespace module_exports
}  // namespace qt
