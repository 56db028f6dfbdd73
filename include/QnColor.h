// AutoCAD color numbers: the color index 0-256 (0 ByBlock, 256 ByLayer)
// and the suite's logical colors 300-303, their RGB values and names.
#ifndef QUILTOOL_QNCOLOR_H
#define QUILTOOL_QNCOLOR_H

#include <stddef.h>

#include "qn_wintypes.h"
#include "quiltool_export.h"
#include "ustr.h"

class QT_API QnColor {
 public:
  // Alignment of a swatch and its text in a cell; horizontal and vertical
  // flags combine (0 is the default: left and vertically centered).
  enum QnAlignment {
    AlignDefault = 0,
    AlignLeft = 1,
    AlignHCenter = 2,
    AlignRight = 4,
    AlignTop = 8,
    AlignVCenter = 16,
    AlignBottom = 32
  };

  // Components in 0..1. Indexes outside 0..256 give white and false.
  // 7 gives black and 256 gives 1.134 for each component.
  static bool AcadColor2RgbRatio(int index, double* r, double* g, double* b);
  // Components as floor(ratio * 255 + 0.5): 256 gives 289. Nothing is
  // written for indexes outside 0..256.
  static bool AcadColor2Rgb(int index, short* r, short* g, short* b);

  // The AutoCAD name ("Red", "Cad-12", the ByBlock/ByLayer texts) cut to
  // size characters; null for a null buffer or an index outside 0..256.
  static wchar_t* GetAcadColorName(short index, wchar_t* buffer, size_t size);
  // The name shown in the suite's lists; buffer holds 20 characters.
  static wchar_t* GetColorName(short index, wchar_t* buffer);
  static ustr GetColorName(short index);
  // The color number of a name, or -1. "Acad-<n>" and "Color <n>" (case
  // counts) and plain numbers parse; "Cad-<n>" does not.
  static short GetColorFromName(const wchar_t* name);

#if defined(_WIN32)
  // A swatch of the color placed in rect by the alignment; indexes without
  // RGB (logical colors) draw an empty crossed frame.
  static void DrawItem(HDC dc, const RECT& rect, int index, QnAlignment alignment);
  // A swatch at the left of rect followed by text (null: the color's name)
  // placed in the rest of rect by the alignment.
  static void DrawItem(HDC dc, const RECT& rect, int index, QnAlignment alignment, const wchar_t* text);
  // "Select Color": the user types a color number (or a name). Returns
  // the chosen AutoCAD index 0..256, or -1 when cancelled.
  static short GetAcadColorIndexDlg(HWND parent, short initial);
  // As above, also accepting the logical colors 300..303.
  static long ChangeColorIndexDlg(HWND parent, long initial);
#endif
};

inline QnColor::QnAlignment operator|(QnColor::QnAlignment a, QnColor::QnAlignment b) {
  return static_cast<QnColor::QnAlignment>(static_cast<int>(a) | static_cast<int>(b));
}

#endif
