// Library-wide state of the frame, set at load and by the setters.
#ifndef QUILTOOL_CORE_FRAME_STATE_H
#define QUILTOOL_CORE_FRAME_STATE_H

#include "gwframe.h"

namespace qt {

typedef void (*ErrorHook)(long code, const char* message);

struct FrameState {
  HMODULE instance = nullptr;
  const wchar_t* messageBoxTitle = nullptr;
  char buttonTexts[4][32] = {"&Ok", "&Cancel", "&Yes", "&No"};
  bool messageBoxMode = false;
  ErrorHook errorHook = nullptr;
  bool debugLogStarted = false;
};

FrameState& Frame();

// Calls the error hook when one is set; always hands the code back.
long ReportError(long code, const char* message);

// Load and unload steps; the platform's entry point calls them.
void ProcessAttach(HMODULE instance);
void ProcessDetach();

}  // namespace qt

// For tests and hosts that want the memory helpers' failure texts, which the
// frame otherwise drops. Returns the previous hook.
qt::ErrorHook qt_set_error_hook(qt::ErrorHook hook);
// The button caption i (0 OK, 1 Cancel, 2 Yes, 3 No) and the mode byte.
const char* qt_message_button_text(int i);
bool qt_message_box_mode();

#endif
