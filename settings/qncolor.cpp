// Color numbers to RGB and names, and names back to numbers.
#include <cstring>
#include <cwchar>
#include <new>

#include "core/boundary.h"

#include "Lng.h"
#include "QnColor.h"
#include "gwframe.h"

namespace {

void Set(double* r, double* g, double* b, double rv, double gv, double bv) {
  if (r) *r = rv;
  if (g) *g = gv;
  if (b) *b = bv;
}

}  // namespace

bool QnColor::AcadColor2RgbRatio(int index, double* r, double* g, double* b) {
  if (static_cast<unsigned int>(index) > 256u) {
    Set(r, g, b, 1, 1, 1);
    return false;
  }
  switch (index) {
    case 0: Set(r, g, b, 0, 0, 0); return true;
    case 1: Set(r, g, b, 1, 0, 0); return true;
    case 2: Set(r, g, b, 1, 1, 0); return true;
    case 3: Set(r, g, b, 0, 1, 0); return true;
    case 4: Set(r, g, b, 0, 1, 1); return true;
    case 5: Set(r, g, b, 0, 0, 1); return true;
    case 6: Set(r, g, b, 1, 0, 1); return true;
    // White on black, black on white: the suite draws on white.
    case 7: Set(r, g, b, 0, 0, 0); return true;
    case 8: Set(r, g, b, 0.5, 0.5, 0.5); return true;
    case 9: Set(r, g, b, 0.75, 0.75, 0.75); return true;
    default: break;
  }
  if (index >= 250) {
    // Greys up to 255; 256 (ByLayer) runs past white, as it always has.
    const double grey = (index - 250) * 0.134 + 0.33;
    Set(r, g, b, grey, grey, grey);
    return true;
  }
  // 10-249: tens pick one of 24 hues, the last digit the shade.
  static const double kBrightness[5] = {1.0, 0.65, 0.5, 0.3, 0.15};
  const int sector = (index - 10) / 10;
  const double h = sector * 0.25;
  const int sextant = static_cast<int>(h);
  const double f = h - sextant;
  const int digit = index % 10;
  const double v = kBrightness[digit / 2];
  const double s = (digit % 2) ? 0.5 : 1.0;
  double rv = 0, gv = 0, bv = 0;
  switch (sextant) {
    case 0: rv = 1; gv = 1 - (1 - f) * s; bv = 1 - s; break;
    case 1: rv = 1 - s * f; gv = 1; bv = 1 - s; break;
    case 2: rv = 1 - s; gv = 1; bv = 1 - (1 - f) * s; break;
    case 3: rv = 1 - s; gv = 1 - s * f; bv = 1; break;
    case 4: rv = 1 - (1 - f) * s; gv = 1 - s; bv = 1; break;
    default: rv = 1; gv = 1 - s; bv = 1 - s * f; break;
  }
  Set(r, g, b, rv * v, gv * v, bv * v);
  return true;
}

bool QnColor::AcadColor2Rgb(int index, short* r, short* g, short* b) {
  double rr, gg, bb;
  if (!AcadColor2RgbRatio(index, &rr, &gg, &bb)) return false;
  // floor(x + 0.5) by truncation: the values are never negative.
  if (r) *r = static_cast<short>(static_cast<int>(rr * 255.0 + 0.5));
  if (g) *g = static_cast<short>(static_cast<int>(gg * 255.0 + 0.5));
  if (b) *b = static_cast<short>(static_cast<int>(bb * 255.0 + 0.5));
  return true;
}

wchar_t* QnColor::GetAcadColorName(short index, wchar_t* buffer, size_t size) {
  if (!buffer || index < 0 || index > 256) return nullptr;
  std::memset(buffer, 0, size);
  if (size == 0) return buffer;
  // Out of memory leaves the buffer empty: a partial name would mislead.
  qt::NoThrowVoid("QnColor::GetAcadColorName", [&] {
    ustr name;
    if (index == 0) {
      // ByBlock comes from the electrical module's texts, unlike the rest.
      name = Lng::text(Lng::APP_QNE, 56, L"ByBlock");
    } else if (index == 256) {
      name = Lng::text(Lng::APP_HPV, 36135, L"ByLayer");
    } else if (index <= 7) {
      static const wchar_t* const kFirst[8] = {nullptr, L"Red", L"Yellow", L"Green", L"Cyan", L"Blue", L"Magenta", L"White/Black"};
      name = kFirst[index];
    } else {
      name.format(L"Cad-%d", static_cast<int>(index));
    }
    QN_wcscpy_s(buffer, size, name.c_str());
  });
  return buffer;
}

wchar_t* QnColor::GetColorName(short index, wchar_t* buffer) {
  if (!buffer) return nullptr;
  const size_t kSize = 20;
  bool acad = false;
  const bool named = qt::NoThrow<bool>("QnColor::GetColorName", false, [&] {
    ustr name;
    switch (index) {
      case 0: name = L"Black"; break;
      case 8: name = L"Gray"; break;
      case 9: name = L"Light gray"; break;
      case 300: name = Lng::text(Lng::APP_HPV, 7804, L"By system"); break;
      case 301: name = Lng::text(Lng::APP_HPV, 36137, L"By project"); break;
      case 302: name = Lng::text(Lng::APP_HPV, 24070, L"By Serie"); break;
      case 303: name = Lng::text(Lng::APP_HPV, 24071, L"By Object"); break;
      default: acad = true; return true;
    }
    QN_wcscpy_s(buffer, kSize, name.c_str());
    return true;
  });
  if (!named) buffer[0] = 0;
  return acad ? GetAcadColorName(index, buffer, kSize) : buffer;
}

ustr QnColor::GetColorName(short index) {
  wchar_t buffer[20] = {0};
  return qt::NoThrow<ustr>("QnColor::GetColorName", ustr(),
                           [&] { return ustr(GetColorName(index, buffer) ? buffer : L""); });
}

short QnColor::GetColorFromName(const wchar_t* name) {
  if (!name) return -1;
  static const wchar_t* const kNames[10] = {L"Black", L"Red",     L"Yellow",      L"Green", L"Cyan",
                                            L"Blue",  L"Magenta", L"White/Black", L"Gray",  L"Light gray"};
  for (short i = 0; i < 10; ++i) {
    if (qn_wcsicmp(name, kNames[i]) == 0) return i;
  }
  // Without memory for the translated names the English ones still match.
  const short translated = qt::NoThrow<short>("QnColor::GetColorFromName", -1, [&]() -> short {
    if (qn_wcsicmp(name, Lng::text(Lng::APP_HPV, 36135, L"ByLayer").c_str()) == 0) return 256;
    if (qn_wcsicmp(name, Lng::text(Lng::APP_HPV, 7804, L"By system").c_str()) == 0) return 300;
    if (qn_wcsicmp(name, Lng::text(Lng::APP_HPV, 36137, L"By project").c_str()) == 0) return 301;
    return -1;
  });
  if (translated >= 0) return translated;
  if (qn_wcsicmp(name, L"ByLayer") == 0) return 256;
  if (qn_wcsicmp(name, L"By system") == 0) return 300;
  if (qn_wcsicmp(name, L"By project") == 0) return 301;

  const wchar_t* number = name;
  if (std::wcsncmp(name, L"Acad-", 5) == 0) {
    number += 5;
  } else if (std::wcsncmp(name, L"Color ", 6) == 0) {
    number += 6;
  }
  short value = -1;
  if (std::swscanf(number, L"%hd", &value) != 1) return -1;
  return value;
}
