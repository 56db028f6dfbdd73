// Color swatches and the color-number dialog.
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <algorithm>
#include <new>

#include "QnColor.h"
#include "core/boundary.h"
#include "core/frame_state.h"
#include "settings/qncolor_resource.h"

namespace {

// Clamped: ByLayer's grey runs past 255.
COLORREF ToColorRef(int index, bool* hasRgb) {
  short r = 0, g = 0, b = 0;
  *hasRgb = QnColor::AcadColor2Rgb(index, &r, &g, &b);
  auto clamp = [](short v) { return static_cast<BYTE>(std::min<int>(std::max<int>(v, 0), 255)); };
  return RGB(clamp(r), clamp(g), clamp(b));
}

void DrawSwatch(HDC dc, const RECT& box, int index) {
  bool hasRgb = false;
  const COLORREF color = ToColorRef(index, &hasRgb);
  HPEN frame = CreatePen(PS_SOLID, 1, RGB(0, 0, 0));
  HGDIOBJ oldPen = SelectObject(dc, frame);
  if (hasRgb) {
    HBRUSH fill = CreateSolidBrush(color);
    HGDIOBJ oldBrush = SelectObject(dc, fill);
    Rectangle(dc, box.left, box.top, box.right, box.bottom);
    SelectObject(dc, oldBrush);
    DeleteObject(fill);
  } else {
    HGDIOBJ oldBrush = SelectObject(dc, GetStockObject(NULL_BRUSH));
    Rectangle(dc, box.left, box.top, box.right, box.bottom);
    MoveToEx(dc, box.left, box.top, nullptr);
    LineTo(dc, box.right - 1, box.bottom - 1);
    MoveToEx(dc, box.right - 1, box.top, nullptr);
    LineTo(dc, box.left, box.bottom - 1);
    SelectObject(dc, oldBrush);
  }
  SelectObject(dc, oldPen);
  DeleteObject(frame);
}

// A square of the cell's height less a margin, placed by the alignment.
RECT PlaceSwatch(const RECT& rect, int alignment) {
  const int margin = 2;
  const int width = rect.right - rect.left, height = rect.bottom - rect.top;
  const int side = std::max(0, std::min(width, height) - 2 * margin);
  RECT box;
  if (alignment & QnColor::AlignHCenter) {
    box.left = rect.left + (width - side) / 2;
  } else if (alignment & QnColor::AlignRight) {
    box.left = rect.right - margin - side;
  } else {
    box.left = rect.left + margin;
  }
  if (alignment & QnColor::AlignTop) {
    box.top = rect.top + margin;
  } else if (alignment & QnColor::AlignBottom) {
    box.top = rect.bottom - margin - side;
  } else {
    box.top = rect.top + (height - side) / 2;
  }
  box.right = box.left + side;
  box.bottom = box.top + side;
  return box;
}

struct DialogState {
  long initial;
  bool allowLogical;
  long result;
};

bool Acceptable(long value, bool allowLogical) {
  return (value >= 0 && value <= 256) || (allowLogical && value >= 300 && value <= 303);
}

long ReadChoice(HWND dialog) {
  wchar_t text[64] = {0};
  GetDlgItemTextW(dialog, IDC_QNCOLOR_NUMBER, text, 64);
  return QnColor::GetColorFromName(text);
}

void ShowChoice(HWND dialog, const DialogState* state) {
  const long value = ReadChoice(dialog);
  ustr name;
  if (Acceptable(value, state->allowLogical)) name = QnColor::GetColorName(static_cast<short>(value));
  SetDlgItemTextW(dialog, IDC_QNCOLOR_NAME, name.c_str());
  InvalidateRect(GetDlgItem(dialog, IDC_QNCOLOR_SWATCH), nullptr, TRUE);
}

INT_PTR CALLBACK ColorDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  DialogState* state = reinterpret_cast<DialogState*>(GetWindowLongPtrW(dialog, DWLP_USER));
  switch (message) {
    case WM_INITDIALOG: {
      state = reinterpret_cast<DialogState*>(lParam);
      SetWindowLongPtrW(dialog, DWLP_USER, lParam);
      if (Acceptable(state->initial, state->allowLogical)) {
        SetDlgItemInt(dialog, IDC_QNCOLOR_NUMBER, static_cast<UINT>(state->initial), FALSE);
      }
      SendDlgItemMessageW(dialog, IDC_QNCOLOR_NUMBER, EM_SETSEL, 0, -1);
      ShowChoice(dialog, state);
      SetFocus(GetDlgItem(dialog, IDC_QNCOLOR_NUMBER));
      return FALSE;  // the focus is set
    }
    case WM_DRAWITEM: {
      const DRAWITEMSTRUCT* item = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
      if (!state || item->CtlID != IDC_QNCOLOR_SWATCH) return FALSE;
      FillRect(item->hDC, &item->rcItem, GetSysColorBrush(COLOR_BTNFACE));
      const long value = ReadChoice(dialog);
      if (Acceptable(value, state->allowLogical)) {
        QnColor::DrawItem(item->hDC, item->rcItem, static_cast<int>(value), QnColor::AlignHCenter);
      }
      return TRUE;
    }
    case WM_COMMAND:
      if (!state) return FALSE;
      switch (LOWORD(wParam)) {
        case IDC_QNCOLOR_NUMBER:
          if (HIWORD(wParam) == EN_CHANGE) ShowChoice(dialog, state);
          return TRUE;
        case IDOK: {
          const long value = ReadChoice(dialog);
          if (!Acceptable(value, state->allowLogical)) {
            // Stay open on a number that is no color.
            MessageBeep(MB_ICONEXCLAMATION);
            HWND edit = GetDlgItem(dialog, IDC_QNCOLOR_NUMBER);
            SetFocus(edit);
            SendMessageW(edit, EM_SETSEL, 0, -1);
            return TRUE;
          }
          state->result = value;
          EndDialog(dialog, IDOK);
          return TRUE;
        }
        case IDCANCEL:
          state->result = -1;
          EndDialog(dialog, IDCANCEL);
          return TRUE;
      }
      return FALSE;
  }
  return FALSE;
}

long RunColorDialog(HWND parent, long initial, bool allowLogical) {
  DialogState state = {initial, allowLogical, -1};
  const INT_PTR shown = DialogBoxParamW(qt::Frame().instance, L"QNCOLOR_SELECT", parent, ColorDialogProc,
                                        reinterpret_cast<LPARAM>(&state));
  return shown == IDOK ? state.result : -1;
}

}  // namespace

void QnColor::DrawItem(HDC dc, const RECT& rect, int index, QnAlignment alignment) {
  if (!dc) return;
  DrawSwatch(dc, PlaceSwatch(rect, alignment), index);
}

void QnColor::DrawItem(HDC dc, const RECT& rect, int index, QnAlignment alignment, const wchar_t* text) {
  if (!dc) return;
  qt::NoThrowVoid("QnColor::DrawItem", [&] {
    // The swatch keeps the left end; the alignment places the text in the rest.
    const int vertical = alignment & (AlignTop | AlignVCenter | AlignBottom);
    const RECT box = PlaceSwatch(rect, AlignLeft | vertical);
    DrawSwatch(dc, box, index);
    const ustr shown = text ? ustr(text) : GetColorName(static_cast<short>(index));
    RECT textRect = rect;
    textRect.left = box.right + 4;
    UINT format = DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX;
    format |= (alignment & AlignHCenter) ? DT_CENTER : (alignment & AlignRight) ? DT_RIGHT : DT_LEFT;
    format |= (alignment & AlignTop) ? DT_TOP : (alignment & AlignBottom) ? DT_BOTTOM : DT_VCENTER;
    const int oldMode = SetBkMode(dc, TRANSPARENT);
    DrawTextW(dc, shown.c_str(), -1, &textRect, format);
    SetBkMode(dc, oldMode);
  });
}

short QnColor::GetAcadColorIndexDlg(HWND parent, short initial) {
  return static_cast<short>(RunColorDialog(parent, initial, false));
}

long QnColor::ChangeColorIndexDlg(HWND parent, long initial) { return RunColorDialog(parent, initial, true); }
