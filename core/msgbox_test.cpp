// Message-box helpers as a presenter sees them: text, caption, style and the
// answer passed back.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/frame_state.h"
#include "gwframe.h"
#include "qn_presenter.h"
#include "qt_test.h"

namespace {

struct Shown {
  std::wstring text;
  std::wstring caption;
  std::string textA;
  std::string captionA;
  unsigned int style;
  HWND owner;
};

class RecordingPresenter : public QnMessagePresenter {
 public:
  int showMessage(HWND owner, const wchar_t* text, const wchar_t* caption, unsigned int style) override {
    shown.push_back({text, caption, "", "", style, owner});
    return answer;
  }
  int showMessageA(HWND owner, const char* text, const char* caption, unsigned int style) override {
    shown.push_back({L"", L"", text, caption, style, owner});
    return answer;
  }
  std::vector<Shown> shown;
  int answer = IDOK;
};

class MessageBoxes : public ::testing::Test {
 protected:
  void SetUp() override { previous_ = qn_set_message_presenter(&presenter_); }
  void TearDown() override { qn_set_message_presenter(previous_); }
  RecordingPresenter presenter_;
  QnMessagePresenter* previous_ = nullptr;
  HWND owner_ = reinterpret_cast<HWND>(static_cast<intptr_t>(0x1234));
};

}  // namespace

TEST_F(MessageBoxes, StylesCaptionsAndTaskModalWithoutOwner) {
  gwmsg(owner_, L"saved");
  gwmsg(nullptr, L"saved");
  presenter_.answer = IDCANCEL;
  EXPECT_EQ(IDCANCEL, gwokcancelmsg(owner_, L"go on?"));
  presenter_.answer = IDNO;
  EXPECT_EQ(IDNO, gwyesnocancelmsg(owner_, L"keep?"));
  EXPECT_EQ(IDNO, gwyesnomsg(nullptr, L"delete?"));
  EXPECT_EQ(IDNO, gwmsgbox(owner_, L"raw", MB_RETRYCANCEL | MB_ICONWARNING));

  ASSERT_EQ(6u, presenter_.shown.size());
  const unsigned int expected[] = {0x40, 0x2040, 0x21, 0x23, 0x2024, 0x35};
  for (size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(expected[i], presenter_.shown[i].style) << i;
    EXPECT_EQ(L"Quillon", presenter_.shown[i].caption) << i;
  }
  EXPECT_EQ(L"delete?", presenter_.shown[4].text);
  EXPECT_EQ(nullptr, presenter_.shown[4].owner);
}

TEST_F(MessageBoxes, YesNoWithAnApplicationTakesItsShortName) {
  gwyesnomsg(owner_, Lng::APP_QNE, L"replace?");
  gwyesnomsg(owner_, Lng::APP_HVAC, L"replace?");
  gwyesnomsg(owner_, Lng::APP_NONE, L"replace?");
  ASSERT_EQ(3u, presenter_.shown.size());
  EXPECT_EQ(L"Quillon-E", presenter_.shown[0].caption);
  EXPECT_EQ(L"Quillon V&P", presenter_.shown[1].caption);
  EXPECT_EQ(L"Quillon", presenter_.shown[2].caption);
  EXPECT_EQ(0x24u, presenter_.shown[0].style);
}

TEST_F(MessageBoxes, NarrowMessageShowsOnlyTheTitlesFirstLetter) {
  gwmsg(nullptr, "I/O - error");
  gwmsg(owner_, "I/O - error");
  ASSERT_EQ(2u, presenter_.shown.size());
  EXPECT_EQ("I/O - error", presenter_.shown[0].textA);
  EXPECT_EQ("Q", presenter_.shown[0].captionA);
  EXPECT_EQ(0x2040u, presenter_.shown[0].style);
  EXPECT_EQ(0x40u, presenter_.shown[1].style);
}

TEST(MessageBoxSettings, ButtonTextsAndMode) {
  gwsetmsgboxlng("&OK  ", nullptr, "&Ja", "0123456789012345678901234567890123456789");
  EXPECT_STREQ("&OK", qt_message_button_text(0));
  EXPECT_STREQ("", qt_message_button_text(1));
  EXPECT_STREQ("&Ja", qt_message_button_text(2));
  EXPECT_EQ(31u, std::string(qt_message_button_text(3)).size());
  gwsetmsgboxlng("&Ok", "&Cancel", "&Yes", "&No");

  gwsetmsgboxmode(1);
  EXPECT_TRUE(qt_message_box_mode());
  gwsetmsgboxmode(2);
  EXPECT_FALSE(qt_message_box_mode());
}
