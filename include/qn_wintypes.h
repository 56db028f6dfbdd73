// The few Win32 types and constants that the exported interface carries.
// On Windows they are the system's own; elsewhere this header defines
// look-alikes with the same names, sizes and values so that the interface
// and its callers compile unchanged.
#ifndef QN_WINTYPES_H
#define QN_WINTYPES_H

#if defined(_WIN32)

// The lean, min/max-free form of <windows.h>, without changing what the
// caller asked for: only the switches set here are taken back afterwards.
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#define QN_WINTYPES_SET_LEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#define QN_WINTYPES_SET_NOMINMAX
#endif
#include <windows.h>
#ifdef QN_WINTYPES_SET_LEAN
#undef WIN32_LEAN_AND_MEAN
#undef QN_WINTYPES_SET_LEAN
#endif
#ifdef QN_WINTYPES_SET_NOMINMAX
#undef NOMINMAX
#undef QN_WINTYPES_SET_NOMINMAX
#endif

#else  // !_WIN32

#include <stdint.h>

typedef int BOOL;
typedef unsigned char BYTE;
typedef unsigned short WORD;
typedef unsigned int UINT;
typedef int32_t LONG;
typedef uint32_t DWORD;
typedef uint32_t COLORREF;
typedef uintptr_t WPARAM;
typedef intptr_t LPARAM;
typedef intptr_t LRESULT;
typedef intptr_t LONG_PTR;
typedef uintptr_t ULONG_PTR;
typedef long long __int64;

#define QN_DECLARE_HANDLE(name) struct name##__; typedef struct name##__* name
QN_DECLARE_HANDLE(HWND);
QN_DECLARE_HANDLE(HINSTANCE);
QN_DECLARE_HANDLE(HKEY);
QN_DECLARE_HANDLE(HDC);
QN_DECLARE_HANDLE(HPEN);
QN_DECLARE_HANDLE(HBRUSH);
QN_DECLARE_HANDLE(HICON);
QN_DECLARE_HANDLE(HMONITOR);
QN_DECLARE_HANDLE(HMENU);
QN_DECLARE_HANDLE(HFONT);
#undef QN_DECLARE_HANDLE
typedef HINSTANCE HMODULE;
typedef void* HANDLE;
typedef HANDLE HGLOBAL;
typedef void* HGDIOBJ;
#define INVALID_HANDLE_VALUE ((HANDLE)(LONG_PTR)-1)

typedef struct tagRECT { LONG left; LONG top; LONG right; LONG bottom; } RECT;
typedef struct tagPOINT { LONG x; LONG y; } POINT;
typedef struct tagSIZE { LONG cx; LONG cy; } SIZE;

#define HKEY_CLASSES_ROOT   ((HKEY)(ULONG_PTR)((LONG)0x80000000))
#define HKEY_CURRENT_USER   ((HKEY)(ULONG_PTR)((LONG)0x80000001))
#define HKEY_LOCAL_MACHINE  ((HKEY)(ULONG_PTR)((LONG)0x80000002))
#define HKEY_USERS          ((HKEY)(ULONG_PTR)((LONG)0x80000003))

#define REG_NONE        0
#define REG_SZ          1
#define REG_EXPAND_SZ   2
#define REG_BINARY      3
#define REG_DWORD       4
#define REG_MULTI_SZ    7
#define REG_QWORD       11

#define MB_OK                0x00000000
#define MB_OKCANCEL          0x00000001
#define MB_ABORTRETRYIGNORE  0x00000002
#define MB_YESNOCANCEL       0x00000003
#define MB_YESNO             0x00000004
#define MB_RETRYCANCEL       0x00000005
#define MB_ICONHAND          0x00000010
#define MB_ICONERROR         MB_ICONHAND
#define MB_ICONSTOP          MB_ICONHAND
#define MB_ICONQUESTION      0x00000020
#define MB_ICONEXCLAMATION   0x00000030
#define MB_ICONWARNING       MB_ICONEXCLAMATION
#define MB_ICONASTERISK      0x00000040
#define MB_ICONINFORMATION   MB_ICONASTERISK
#define MB_DEFBUTTON2        0x00000100
#define MB_APPLMODAL         0x00000000
#define MB_SYSTEMMODAL       0x00001000
#define MB_TASKMODAL         0x00002000
#define MB_TYPEMASK          0x0000000F

#define IDOK      1
#define IDCANCEL  2
#define IDABORT   3
#define IDRETRY   4
#define IDIGNORE  5
#define IDYES     6
#define IDNO      7

#define SW_HIDE           0
#define SW_SHOWNORMAL     1
#define SW_SHOWMINIMIZED  2
#define SW_SHOWMAXIMIZED  3
#define SW_SHOW           5
#define SW_RESTORE        9

#define MAX_PATH 260

#endif  // _WIN32
#endif  // QN_WINTYPES_H
