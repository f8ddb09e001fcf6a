#include <clocale>
#include <future>
#include <locale.h>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include <quillaven/platform/number_locale_internal.h>

namespace {

std::string Point() {
  return localeconv()->decimal_point;
}

class PointLocaleHere : public testing::Test {
 protected:
  PointLocaleHere() : before(setlocale(LC_NUMERIC, nullptr)) {
    EXPECT_NE(setlocale(LC_NUMERIC, "German"), nullptr);
  }
  ~PointLocaleHere() override { setlocale(LC_NUMERIC, before.c_str()); }

  std::string before;
};

TEST_F(PointLocaleHere, GoesBackToTheCommaWhenTheOutermostEnds) {
  {
    PointLocale const numbers;
    {
      PointLocale const inner;
      EXPECT_EQ(Point(), ".");
    }
    EXPECT_EQ(Point(), ".");
  }
  EXPECT_EQ(Point(), ",");
}

TEST_F(PointLocaleHere, LeavesTheThreadInTheModeThatItHad) {
  int const mode = _configthreadlocale(0);
  { PointLocale const numbers; }
  EXPECT_EQ(_configthreadlocale(0), mode);
}

// This thread begins first and ends first.
TEST_F(PointLocaleHere, InTwoThreadsThatOverlapHoldsInBothAndGoesBack) {
  std::promise<void> thisEnded;
  std::promise<void> otherBegan;
  std::string inOther;
  std::thread other;
  {
    PointLocale const numbers;
    other = std::thread([&] {
      PointLocale const inner;
      otherBegan.set_value();
      thisEnded.get_future().wait();
      inOther = Point();
    });
    otherBegan.get_future().wait();
    EXPECT_EQ(Point(), ".");
  }
  thisEnded.set_value();
  other.join();
  EXPECT_EQ(inOther, ".");
  EXPECT_EQ(Point(), ",");
}

}  // namespace
