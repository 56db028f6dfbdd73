#include "listview/recent_files_list.h"

#include "FileNames.h"

namespace qt {
namespace recent_files {

namespace {

bool IsSeparator(wchar_t c) { return c == L'\\' || c == L'/'; }

}  // namespace

ustr CompactPath(const ustr& path, int maxChars) {
  const std::wstring& p = path.str();
  if (maxChars <= 0) return ustr();
  if (static_cast<int>(p.size()) <= maxChars) return path;
  size_t cut = p.size();
  while (cut > 0 && !IsSeparator(p[cut - 1])) --cut;
  const std::wstring name = p.substr(cut);
  const wchar_t separator = cut > 0 ? p[cut - 1] : L'\\';
  // "..." and the separator before the file name.
  const int head = maxChars - static_cast<int>(name.size()) - 4;
  if (cut == 0 || head < 0) {
    if (maxChars <= 3) return ustr(std::wstring(static_cast<size_t>(maxChars), L'.'));
    return ustr(name.substr(0, static_cast<size_t>(maxChars - 3)) + L"...");
  }
  return ustr(p.substr(0, static_cast<size_t>(head)) + L"..." + separator + name);
}

void MoveToFront(std::vector<ustr>& paths, const ustr& path, int maxCount) {
  RemovePath(paths, path);
  paths.insert(paths.begin(), path);
  if (maxCount >= 0 && static_cast<int>(paths.size()) > maxCount) paths.resize(static_cast<size_t>(maxCount));
}

bool RemovePath(std::vector<ustr>& paths, const ustr& path) {
  bool removed = false;
  for (size_t i = paths.size(); i-- > 0;) {
    if (FileNamesAreSame(paths[i].c_str(), path.c_str())) {
      paths.erase(paths.begin() + static_cast<std::ptrdiff_t>(i));
      removed = true;
    }
  }
  return removed;
}

}  // namespace recent_files
}  // namespace qt
