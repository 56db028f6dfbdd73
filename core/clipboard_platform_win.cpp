// The Windows clipboard. Once SetClipboardData succeeds the block is the
// system's; until then it is ours to free.
#include <windows.h>

#include <cstring>

#include "core/clipboard_platform.h"

namespace qt {
namespace clipboard {
namespace platform {

namespace {

// A movable block holding the text and its terminator, or null.
HGLOBAL CopyToBlock(const wchar_t* text, size_t length) {
  if (length >= (static_cast<size_t>(-1) / sizeof(wchar_t)) - 1) return nullptr;
  const size_t bytes = (length + 1) * sizeof(wchar_t);
  HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, bytes);
  if (!block) return nullptr;
  void* target = GlobalLock(block);
  if (!target) {
    GlobalFree(block);
    return nullptr;
  }
  std::memcpy(target, text, length * sizeof(wchar_t));
  static_cast<wchar_t*>(target)[length] = L'\0';
  GlobalUnlock(block);
  return block;
}

}  // namespace

bool PutText(HWND owner, const wchar_t* text, size_t length) {
  HGLOBAL block = CopyToBlock(text, length);
  if (!block) return false;
  if (!OpenClipboard(owner)) {
    GlobalFree(block);
    return false;
  }
  bool placed = false;
  if (EmptyClipboard()) placed = SetClipboardData(CF_UNICODETEXT, block) != nullptr;
  CloseClipboard();
  if (!placed) GlobalFree(block);
  return placed;
}

}  // namespace platform
}  // namespace clipboard
}  // namespace qt
