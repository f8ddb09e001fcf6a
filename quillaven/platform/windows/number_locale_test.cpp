#include <barrier>
#include <clocale>
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
  std::barrier step(2);
  std::string inOther;
  std::thread other([&] {
    step.arrive_and_wait();  // this one has begun
    {
      PointLocale const numbers;
      step.arrive_and_wait();  // both have
      step.arrive_and_wait();  // this one has ended
      inOther = Point();
    }
    step.arrive_and_wait();  // both have
  });
  {
    PointLocale const numbers;
    step.arrive_and_wait();
    step.arrive_and_wait();
    EXPECT_EQ(Point(), ".");
  }
  step.arrive_and_wait();
  step.arrive_and_wait();
  EXPECT_EQ(inOther, ".");
  EXPECT_EQ(Point(), ",");
  other.join();
}

}  // namespace
