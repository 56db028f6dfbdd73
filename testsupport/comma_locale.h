// A test fixture that switches the process to a locale whose decimal point
// is ',' (as a German or French host has it) and gives the old one back.
// Skips when no such locale is installed.
#ifndef QUILTOOL_TESTSUPPORT_COMMA_LOCALE_H
#define QUILTOOL_TESTSUPPORT_COMMA_LOCALE_H

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace qt_test {

class CommaLocale : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* now = std::setlocale(LC_ALL, nullptr);
    saved_ = now ? now : "C";
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "German_Germany.1252", "German", "de-DE"}) {
      if (std::setlocale(LC_ALL, name) && std::localeconv()->decimal_point[0] == ',') return;
    }
    std::setlocale(LC_ALL, saved_.c_str());
    GTEST_SKIP() << "no locale with a decimal comma is installed";
  }
  void TearDown() override { std::setlocale(LC_ALL, saved_.c_str()); }

 private:
  std::string saved_;
};

}  // namespace qt_test

#endif
