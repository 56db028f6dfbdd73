// The real monitor functions, looked up by name so that the library also
// loads where user32 lacks them.
#include "settings/monitors_platform.h"
#include "ustr.h"

namespace qt {
namespace monitors {
namespace platform {

namespace {

typedef int(WINAPI* GetSystemMetricsFn)(int);
typedef HMONITOR(WINAPI* MonitorFromWindowFn)(HWND, DWORD);
typedef HMONITOR(WINAPI* MonitorFromRectFn)(LPCRECT, DWORD);
typedef HMONITOR(WINAPI* MonitorFromPointFn)(POINT, DWORD);
typedef BOOL(WINAPI* EnumDisplayMonitorsFn)(HDC, LPCRECT, MONITORENUMPROC, LPARAM);
typedef BOOL(WINAPI* EnumDisplayDevicesWFn)(LPCWSTR, DWORD, PDISPLAY_DEVICEW, DWORD);
typedef BOOL(WINAPI* GetMonitorInfoFn)(HMONITOR, LPMONITORINFO);

struct Functions {
  GetSystemMetricsFn getSystemMetrics = nullptr;
  MonitorFromWindowFn monitorFromWindow = nullptr;
  MonitorFromRectFn monitorFromRect = nullptr;
  MonitorFromPointFn monitorFromPoint = nullptr;
  EnumDisplayMonitorsFn enumDisplayMonitors = nullptr;
  EnumDisplayDevicesWFn enumDisplayDevices = nullptr;
  GetMonitorInfoFn getMonitorInfo = nullptr;
  bool wideMonitorInfo = true;
};

Functions g_functions;

template <class F>
F Lookup(HMODULE module, const char* name) {
  return reinterpret_cast<F>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
}

bool IsNtFamily() {
  OSVERSIONINFOA version;
  ZeroMemory(&version, sizeof version);
  version.dwOSVersionInfoSize = sizeof version;
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#endif
  const BOOL ok = GetVersionExA(&version);
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
  return !ok || version.dwPlatformId == VER_PLATFORM_WIN32_NT;
}

struct EnumContext {
  MonitorCallback callback;
  void* context;
};

BOOL CALLBACK EnumThunk(HMONITOR monitor, HDC, LPRECT rect, LPARAM param) {
  EnumContext* c = reinterpret_cast<EnumContext*>(param);
  return c->callback(monitor, *rect, c->context) ? TRUE : FALSE;
}

}  // namespace

bool ResolveRealFunctions() {
  HMODULE user32 = GetModuleHandleW(L"USER32");
  if (!user32) return false;
  Functions f;
  f.wideMonitorInfo = IsNtFamily();
  f.getSystemMetrics = Lookup<GetSystemMetricsFn>(user32, "GetSystemMetrics");
  f.monitorFromWindow = Lookup<MonitorFromWindowFn>(user32, "MonitorFromWindow");
  f.monitorFromRect = Lookup<MonitorFromRectFn>(user32, "MonitorFromRect");
  f.monitorFromPoint = Lookup<MonitorFromPointFn>(user32, "MonitorFromPoint");
  f.enumDisplayMonitors = Lookup<EnumDisplayMonitorsFn>(user32, "EnumDisplayMonitors");
  f.enumDisplayDevices = Lookup<EnumDisplayDevicesWFn>(user32, "EnumDisplayDevicesW");
  f.getMonitorInfo = Lookup<GetMonitorInfoFn>(user32, f.wideMonitorInfo ? "GetMonitorInfoW" : "GetMonitorInfoA");
  if (!f.getSystemMetrics || !f.monitorFromWindow || !f.monitorFromRect || !f.monitorFromPoint ||
      !f.enumDisplayMonitors || !f.enumDisplayDevices || !f.getMonitorInfo)
    return false;
  g_functions = f;
  return true;
}

int RealSystemMetrics(int index) { return g_functions.getSystemMetrics(index); }

HMONITOR RealMonitorFromRect(const RECT* rect, DWORD flags) { return g_functions.monitorFromRect(rect, flags); }

HMONITOR RealMonitorFromPoint(POINT point, DWORD flags) { return g_functions.monitorFromPoint(point, flags); }

HMONITOR RealMonitorFromWindow(HWND window, DWORD flags) { return g_functions.monitorFromWindow(window, flags); }

bool RealMonitorInfo(HMONITOR monitor, MonitorInfo* info) {
  if (g_functions.wideMonitorInfo) {
    MONITORINFOEXW mi;
    ZeroMemory(&mi, sizeof mi);
    mi.cbSize = sizeof mi;
    if (!g_functions.getMonitorInfo(monitor, reinterpret_cast<LPMONITORINFO>(&mi))) return false;
    info->monitor = mi.rcMonitor;
    info->work = mi.rcWork;
    info->flags = mi.dwFlags;
    info->device = mi.szDevice;
    return true;
  }
  MONITORINFOEXA mi;
  ZeroMemory(&mi, sizeof mi);
  mi.cbSize = sizeof mi;
  if (!g_functions.getMonitorInfo(monitor, reinterpret_cast<LPMONITORINFO>(&mi))) return false;
  info->monitor = mi.rcMonitor;
  info->work = mi.rcWork;
  info->flags = mi.dwFlags;
  info->device = qn_ansi_to_wide(mi.szDevice);
  return true;
}

bool RealEnumDisplayMonitors(MonitorCallback callback, void* context) {
  EnumContext c = {callback, context};
  return g_functions.enumDisplayMonitors(nullptr, nullptr, EnumThunk, reinterpret_cast<LPARAM>(&c)) != FALSE;
}

bool RealEnumDisplayDevice(DWORD index, std::wstring* name) {
  DISPLAY_DEVICEW device;
  ZeroMemory(&device, sizeof device);
  device.cb = sizeof device;
  if (!g_functions.enumDisplayDevices(nullptr, index, &device, 0)) return false;
  *name = device.DeviceName;
  return true;
}

int BaseSystemMetrics(int index) { return ::GetSystemMetrics(index); }

bool WorkArea(RECT* area) { return SystemParametersInfoW(SPI_GETWORKAREA, 0, area, 0) != FALSE; }

bool WindowRect(HWND window, RECT* rect) {
  if (!IsWindow(window)) return false;
  if (IsIconic(window)) {
    WINDOWPLACEMENT placement;
    ZeroMemory(&placement, sizeof placement);
    placement.length = sizeof placement;
    if (!GetWindowPlacement(window, &placement)) return false;
    *rect = placement.rcNormalPosition;
    return true;
  }
  return GetWindowRect(window, rect) != FALSE;
}

}  // namespace platform
}  // namespace monitors
}  // namespace qt
