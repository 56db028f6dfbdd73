#include "FileNames.h"

#include <string>
#include <vector>

#include "core/boundary.h"
#include "gwframe.h"
#include "ustr.h"

namespace {

bool IsSeparator(wchar_t c) { return c == L'\\' || c == L'/'; }

bool SameIgnoringCase(const wchar_t* a, const wchar_t* b) { return qn_wcsicmp(a, b) == 0; }

const wchar_t* LastPart(const wchar_t* name) {
  const wchar_t* part = name;
  for (const wchar_t* p = name; *p; ++p) {
    if (IsSeparator(*p)) part = p + 1;
  }
  return part;
}

bool StartsWith(const std::wstring& s, size_t at, const wchar_t* prefix) {
  for (size_t i = 0; prefix[i]; ++i) {
    if (at + i >= s.size()) return false;
    const wchar_t c = s[at + i];
    if (prefix[i] == L'\\' ? !IsSeparator(c) : qn_charupper(c) != qn_charupper(prefix[i])) return false;
  }
  return true;
}

std::vector<std::wstring> Segments(const std::wstring& s, size_t from) {
  std::vector<std::wstring> segments;
  size_t start = from;
  for (size_t i = from; i <= s.size(); ++i) {
    if (i == s.size() || IsSeparator(s[i])) {
      if (i > start) segments.push_back(s.substr(start, i - start));
      start = i + 1;
    }
  }
  return segments;
}

// The name with '\' separators only, its root (drive, share or leading
// separator) kept apart so that ".." never climbs above it, and "." and
// ".." segments resolved as far as the text allows.
std::wstring Normalized(const wchar_t* name) {
  std::wstring s(name);
  size_t at = 0;
  std::wstring root;
  if (StartsWith(s, 0, L"\\\\?\\UNC\\")) {
    s = L"\\\\" + s.substr(8);
  } else if (StartsWith(s, 0, L"\\\\?\\")) {
    s = s.substr(4);
  }
  std::vector<std::wstring> segments;
  if (s.size() >= 2 && IsSeparator(s[0]) && IsSeparator(s[1])) {
    // \\server\share is one root.
    segments = Segments(s, 2);
    root = L"\\\\";
    for (int i = 0; i < 2 && !segments.empty(); ++i) {
      root += segments.front() + L"\\";
      segments.erase(segments.begin());
    }
  } else {
    if (s.size() >= 2 && s[1] == L':') {
      root = s.substr(0, 2);
      at = 2;
    }
    if (at < s.size() && IsSeparator(s[at])) {
      root += L"\\";
      ++at;
    }
    segments = Segments(s, at);
  }
  const bool rooted = !root.empty() && root.back() == L'\\';
  std::vector<std::wstring> kept;
  for (const std::wstring& segment : segments) {
    if (segment == L".") continue;
    if (segment == L"..") {
      if (!kept.empty() && kept.back() != L"..") {
        kept.pop_back();
        continue;
      }
      if (rooted) continue;  // nothing lies above a root
    }
    kept.push_back(segment);
  }
  std::wstring result = root;
  for (size_t i = 0; i < kept.size(); ++i) {
    if (i > 0) result += L'\\';
    result += kept[i];
  }
  return result;
}

}  // namespace

bool FileNamesAreSame(const wchar_t* a, const wchar_t* b) {
  if (!a || !b) return a == b;
  if (SameIgnoringCase(a, b)) return true;
  if (!SameIgnoringCase(LastPart(a), LastPart(b))) return false;
  return qt::NoThrow<bool>("FileNamesAreSame", false,
                           [&] { return SameIgnoringCase(Normalized(a).c_str(), Normalized(b).c_str()); });
}

int gwfileextension(const wchar_t* path, wchar_t* extension, int extensionLen) {
  if (!path || !extension || extensionLen < 1) return -1;
  const wchar_t* const name = LastPart(path);
  const wchar_t* dot = nullptr;
  for (const wchar_t* p = name; *p; ++p) {
    if (*p == L'.') dot = p;
  }
  int n = 0;
  if (dot) {
    for (const wchar_t* p = dot + 1; *p && n < extensionLen - 1; ++p) extension[n++] = *p;
  }
  extension[n] = 0;
  return 0;
}
