// The main program of every test program. With QUILLAVEN_TEST_LOCALE set, all tests run under that
// locale: no file and no number may depend on it.

#include <clocale>
#include <cstdio>
#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/console_application.h"

int main(int argc, char **argv) {
  if (char const *locale = std::getenv("QUILLAVEN_TEST_LOCALE"); locale != nullptr) {
    if (std::setlocale(LC_ALL, locale) == nullptr) {
      std::fprintf(stderr, "locale %s is not installed\n", locale);
      return 2;
    }
  }
  ShowBoxesOnTheConsole();
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
