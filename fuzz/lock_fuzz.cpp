// Lock files lie on shared folders where any program may have written
// them. Whatever a lock file holds, a look at it names a holder without
// the padding, and a name the library wrote itself comes back as written
// (cut only where the file's room ends, never inside a character).
#include <cstdint>
#include <string>

#include "files/lock_content.h"
#include "files/lock_inspect.h"
#include "fuzz_support.h"

namespace {

using qt::lock_file::HolderName;
using qt::lock_file::LockContent;

size_t Utf16Units(wchar_t c) { return static_cast<unsigned long>(c) > 0xFFFF ? 2 : 1; }

void CheckForeignBytes(const std::string& bytes) {
  std::wstring name;
  if (HolderName(bytes.data(), bytes.size(), &name)) {
    QT_FUZZ_CHECK(name.find(L'*') == std::wstring::npos && name.find(L'\0') == std::wstring::npos,
                  "the holder keeps padding: " + qt_fuzz::Printable(name));
    QT_FUZZ_CHECK(name.size() <= bytes.size() / 2, "more characters than units");
    for (wchar_t c : name) QT_FUZZ_CHECK(c >= 0x20 && (c < 0x7F || c > 0x9F), "a control character in a holder");
  }

  const std::string path = qt_fuzz::ScratchFile("foreign.lck");
  QT_FUZZ_CHECK(qt_fuzz::WriteFile(path, bytes.data(), bytes.size()), "cannot write " + path);
  ustr holder;
  const QtLockFileState state = qt_inspect_lock_file(qt_fuzz::Wide(path).c_str(), &holder);
  QT_FUZZ_CHECK(state == QT_LOCK_FILE_LEFT_BEHIND || state == QT_LOCK_FILE_UNKNOWN,
                "a lock file nobody holds is seen as " + std::to_string(state));
  if (state == QT_LOCK_FILE_LEFT_BEHIND) {
    // A name is shown only when the bytes are a lock file's content.
    const size_t head = bytes.size() < qt::lock_file::kHolderReadBytes ? bytes.size() : qt::lock_file::kHolderReadBytes;
    std::wstring expected;
    if (!HolderName(bytes.data(), head, &expected)) expected.clear();
    QT_FUZZ_CHECK(std::wstring(holder.c_str()) == expected,
                  "inspecting names " + qt_fuzz::Printable(std::wstring(holder.c_str())));
  }
}

void CheckOwnName(qt_fuzz::Reader& in) {
  // Characters of any plane, without the padding mark, the terminator and
  // the control characters a name cannot hold.
  std::wstring name;
  while (in.left() >= 3 && name.size() < 120) {
    unsigned long c = in.byte();
    c |= static_cast<unsigned long>(in.byte()) << 8;
    c |= static_cast<unsigned long>(in.byte() % 0x11) << 16;
    if (c < 0x20 || (c >= 0x7F && c <= 0x9F) || c == '*' || (c >= 0xD800 && c <= 0xDFFF)) continue;
    name += static_cast<wchar_t>(c);
  }
  const std::string content = LockContent(name.c_str());
  QT_FUZZ_CHECK(content.size() == qt::lock_file::kContentBytes,
                "content of " + std::to_string(content.size()) + " bytes");

  // What fits whole into the units a reader takes.
  std::wstring fits;
  size_t units = 0;
  for (wchar_t c : name) {
    if (units + Utf16Units(c) > qt::lock_file::kHolderReadBytes / 2) break;
    units += Utf16Units(c);
    fits += c;
  }
  std::wstring back;
  QT_FUZZ_CHECK(HolderName(content.data(), qt::lock_file::kHolderReadBytes, &back),
                "the library's own content is refused for " + qt_fuzz::Printable(name));
  QT_FUZZ_CHECK(back == fits || (back.size() == fits.size() + 1 && back.compare(0, fits.size(), fits) == 0 &&
                                 back.back() == 0xFFFD),
                "written " + qt_fuzz::Printable(name) + ", read back " + qt_fuzz::Printable(back));

  const std::string path = qt_fuzz::ScratchFile("own.lck");
  QT_FUZZ_CHECK(qt_fuzz::WriteFile(path, content.data(), content.size()), "cannot write " + path);
  ustr holder;
  const QtLockFileState state = qt_inspect_lock_file(qt_fuzz::Wide(path).c_str(), &holder);
  QT_FUZZ_CHECK(state == QT_LOCK_FILE_LEFT_BEHIND, "the library's own lock file is seen as " + std::to_string(state));
  QT_FUZZ_CHECK(std::wstring(holder.c_str()) == back, "inspecting names " + qt_fuzz::Printable(std::wstring(holder.c_str())));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  qt_fuzz::Reader in(data, size);
  if (in.byte() & 1) {
    CheckOwnName(in);
  } else {
    CheckForeignBytes(in.rest());
  }
  return 0;
}
