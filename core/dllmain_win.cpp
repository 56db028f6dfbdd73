#include <windows.h>

#include "core/frame_state.h"

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      qt::ProcessAttach(instance);
      break;
    case DLL_PROCESS_DETACH:
      qt::ProcessDetach();
      break;
    default:
      break;
  }
  return TRUE;
}
