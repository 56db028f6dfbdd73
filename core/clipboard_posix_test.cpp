#include <gtest/gtest.h>

#include "core/clipboard.h"
#include "qn_clipboard.h"

// Without a presenter there is nowhere to put the text: refused, not lost
// silently.
TEST(ClipboardPosix, DefaultRefuses) {
  QnClipboardPresenter* previous = qn_set_clipboard_presenter(nullptr);
  EXPECT_FALSE(qt::clipboard::PutText(nullptr, ustr(L"nowhere")));
  qn_set_clipboard_presenter(previous);
}
