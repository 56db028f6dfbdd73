// Out of memory at every allocation of an exported function: the function
// answers its documented failure result and nothing is thrown to the caller.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "Lng.h"
#include "Logging.h"
#include "failure_points.h"
#include "gwframe.h"
#include "qn_presenter.h"
#include "qn_utf.h"
#include "qt_test.h"

namespace {

using qt_test::AtEveryFailurePoint;

class AnsweringPresenter : public QnMessagePresenter {
 public:
  int showMessage(HWND, const wchar_t*, const wchar_t*, unsigned int) override {
    ++asked;
    return IDYES;
  }
  int showMessageA(HWND, const char*, const char*, unsigned int) override {
    ++asked;
    return IDOK;
  }
  int asked = 0;
};

std::vector<std::wstring>& Pieces() {
  static std::vector<std::wstring> pieces;
  return pieces;
}
// A callback that throws when memory runs out, as callers' callbacks may.
void CollectPiece(const wchar_t* text) { Pieces().push_back(text); }

// A swallowed failure leaves a line in the debug trace, which goes to the
// current folder: each test runs in a folder of its own.
class OutOfMemory : public ::testing::Test {
 protected:
  void SetUp() override {
    previous_ = std::filesystem::current_path();
    std::filesystem::current_path(dir_.path());
  }
  void TearDown() override { std::filesystem::current_path(previous_); }
  std::string Trace() const {
    std::ifstream in(dir_.file("GWDEBUG.TXT"));
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
  }

 private:
  qt_test::TempDir dir_;
  std::filesystem::path previous_;
};

}  // namespace

TEST_F(OutOfMemory, ModuleDirectoryFailsAndKeepsTheCallersText) {
  ustr dir(L"kept");
  int result = 0;
  AtEveryFailurePoint([&] { result = GetModuleDirectory(static_cast<HMODULE>(nullptr), dir); },
                      [&](bool refused) {
                        if (refused) {
                          EXPECT_EQ(-1, result);
                          EXPECT_EQ(L"kept", dir);
                        } else {
                          EXPECT_EQ(0, result);
                          EXPECT_FALSE(dir.empty());
                        }
                      });
  ustr withTail(L"kept");
  AtEveryFailurePoint(
      [&] { result = GetModuleDirectory(L"NoSuchModule.dll", L"\\x", withTail); },
      [&](bool refused) { EXPECT_EQ(refused ? -1 : 0, result); });
  EXPECT_NE(std::string::npos, Trace().find("GetModuleDirectory failed: out of memory")) << Trace();
}

TEST_F(OutOfMemory, MessageBoxWithAModuleTitleIsNotShown) {
  AnsweringPresenter presenter;
  QnMessagePresenter* previous = qn_set_message_presenter(&presenter);
  int result = -1;
  AtEveryFailurePoint([&] { result = gwyesnomsg(nullptr, Lng::APP_QNE, L"Continue?"); },
                      [&](bool refused) {
                        if (!refused) EXPECT_EQ(IDYES, result);
                        else EXPECT_TRUE(result == 0 || result == IDYES) << result;
                      });
  qn_set_message_presenter(previous);
  EXPECT_GT(presenter.asked, 0);
}

TEST_F(OutOfMemory, LoggingDropsThePieceItCannotConvert) {
  Logging log;
  log.Init(nullptr, CollectPiece, false);
  Pieces().clear();
  AtEveryFailurePoint(
      [&] {
        Logging& same = log << "narrow text" << 7;
        EXPECT_EQ(&log, &same);
      },
      [](bool) {});
  // Every piece that came through is whole; none is made up.
  ASSERT_FALSE(Pieces().empty());
  for (const std::wstring& piece : Pieces()) {
    EXPECT_TRUE(piece == L"narrow text" || piece == L"7") << qn_wide_to_utf8(piece.c_str());
  }
  EXPECT_EQ(L"7", Pieces().back());
}

TEST_F(OutOfMemory, LogPrintAnswersAsAlways) {
  int result = -1;
  AtEveryFailurePoint([&] { result = log_print(L"%d of %s", 3, L"four"); },
                      [&](bool) { EXPECT_EQ(0, result); });
}

TEST_F(OutOfMemory, ConvertersAnswerEmptyText) {
  const std::string utf16 = qn_wide_to_utf16le(L"Gr\u00fc\u00dfe");
  ASSERT_FALSE(utf16.empty());
  std::string narrow = "x";
  std::wstring wide = L"x";
  const auto emptyOrWhole = [](bool refused, bool empty) {
    if (!refused) {
      EXPECT_FALSE(empty);
    }
  };
  AtEveryFailurePoint([&] { narrow = qn_wide_to_utf8(L"Gr\u00fc\u00dfe"); },
                      [&](bool refused) { emptyOrWhole(refused, narrow.empty()); });
  EXPECT_EQ("Gr\xc3\xbc\xc3\x9f" "e", narrow);
  AtEveryFailurePoint([&] { wide = qn_utf8_to_wide("Gr\xc3\xbc\xc3\x9f" "e"); },
                      [&](bool refused) { emptyOrWhole(refused, wide.empty()); });
  EXPECT_EQ(L"Gr\u00fc\u00dfe", wide);
  AtEveryFailurePoint([&] { narrow = qn_wide_to_utf16le(L"abc"); },
                      [&](bool refused) { emptyOrWhole(refused, narrow.empty()); });
  AtEveryFailurePoint([&] { wide = qn_utf16le_to_wide(utf16.data(), utf16.size()); },
                      [&](bool refused) { emptyOrWhole(refused, wide.empty()); });
  AtEveryFailurePoint([&] { wide = qn_ansi_to_wide("plain"); },
                      [&](bool refused) { emptyOrWhole(refused, wide.empty()); });
  AtEveryFailurePoint([&] { narrow = qn_wide_to_ansi(L"plain"); },
                      [&](bool refused) { emptyOrWhole(refused, narrow.empty()); });
  EXPECT_EQ("plain", narrow);
}

TEST_F(OutOfMemory, FormattingFailsWithMinusOneAndEmptyText) {
  std::wstring out = L"old";
  wchar_t buffer[64] = L"old";
  int result = 0;
  AtEveryFailurePoint([&] { result = QN_swprintf_s(buffer, 64, L"%s and %d", L"text", 5); },
                      [&](bool refused) {
                        if (!refused) {
                          EXPECT_EQ(std::wstring(L"text and 5"), buffer);
                        } else if (result < 0) {
                          EXPECT_EQ(-1, result);
                          EXPECT_EQ(std::wstring(), buffer);
                        }
                      });
  EXPECT_EQ(10, result);
}

TEST_F(OutOfMemory, ModuleNamesAnswerEmptyText) {
  ustr name(L"kept");
  AtEveryFailurePoint([&] { name = Lng::GetAppName(Lng::APP_QNE, true); },
                      [&](bool refused) {
                        if (!refused) {
                          EXPECT_FALSE(name.empty());
                        }
                      });
}
