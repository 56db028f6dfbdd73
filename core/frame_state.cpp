#include "core/frame_state.h"

#include <cstring>

#include "core/window_class_platform.h"

namespace qt {

FrameState& Frame() {
  static FrameState state;
  return state;
}

long ReportError(long code, const char* message) {
  if (Frame().errorHook) Frame().errorHook(code, message);
  return code;
}

void ProcessAttach(HMODULE instance) {
  FrameState& f = Frame();
  f.instance = instance;
  f.messageBoxTitle = nullptr;
  f.messageBoxMode = false;
  f.errorHook = nullptr;
  f.messageBoxTitle = L"Quillon";
  window_class::platform::RegisterListHeaderClass(instance);
}

void ProcessDetach() { gwrelease(); }

}  // namespace qt

long quiltool_version_nmb(long version) {
  return version == QUILTOOL_VERSION_NMB ? QUILTOOL_VERSION_NMB : -QUILTOOL_VERSION_NMB;
}

qt::ErrorHook qt_set_error_hook(qt::ErrorHook hook) {
  const qt::ErrorHook previous = qt::Frame().errorHook;
  qt::Frame().errorHook = hook;
  return previous;
}

const char* qt_message_button_text(int i) { return (i >= 0 && i < 4) ? qt::Frame().buttonTexts[i] : ""; }

bool qt_message_box_mode() { return qt::Frame().messageBoxMode; }
