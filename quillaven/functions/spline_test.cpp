#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/functions/spline.h>
#include <quillaven/functions/spline_access_internal.h>

#include "tests/support/allocation_count.h"
#include "tests/support/recording_application.h"

namespace {

using Pairs = std::vector<std::pair<double, double>>;
float const kNan = std::numeric_limits<float>::quiet_NaN();

CSpline Table(Pairs const &points, bool linear = true) {
  CSpline table;
  for (auto const &[x, y] : points) table.Add(x, y);
  table.TableLinear(linear);
  return table;
}

Pairs PointsOf(CSpline const &table) {
  Pairs points;
  for (int i = 0; i < table.GetSize(); ++i) points.emplace_back(table.GetXAt(i), table.GetYAt(i));
  return points;
}

std::size_t SamplesOf(CSpline const &table) {
  return CSplineAccess::Curve(table).empty() ? 0 : CSplineAccess::Curve(table).size() - 1;
}

// The rule over points, written for nothing but reading.
float NaiveLinear(Pairs const &points, float x) {
  if (points.size() < 2) return 0;
  if (!(x > points.front().first)) return static_cast<float>(points.front().second);
  if (x >= points.back().first) return static_cast<float>(points.back().second);
  for (std::size_t i = 0; i + 1 < points.size(); ++i) {
    auto const [ax, ay] = points[i];
    auto const [bx, by] = points[i + 1];
    if (x == ax && x == bx) return static_cast<float>((ay + by) * 0.5);
    if (ax <= x && x <= bx) return static_cast<float>((x - ax) / (bx - ax) * (by - ay) + ay);
  }
  return static_cast<float>(points.back().second);
}

TEST(FunctionTable, BeginsEmptyAndLinearWithAUnitRange) {
  CSpline const table;
  EXPECT_STREQ(table.Name(), "");
  EXPECT_STREQ(table.XLabel(), "");
  EXPECT_STREQ(table.YLabel(), "");
  EXPECT_EQ(table.MinX(), 0);
  EXPECT_EQ(table.MaxX(), 1);
  EXPECT_EQ(table.MinY(), -1);
  EXPECT_EQ(table.MaxY(), 1);
  EXPECT_TRUE(table.TableLinear());
  EXPECT_EQ(table.TblType(), 1);
  EXPECT_EQ(table.GetSize(), 0);
  EXPECT_FALSE(CSplineAccess::CurveValid(table));
}

TEST(FunctionTable, TypeAndLinearAreOneFlag) {
  CSpline table;
  table.TblType(0);
  EXPECT_FALSE(table.TableLinear());
  table.TblType(-7);
  EXPECT_EQ(table.TblType(), 1);
  table.TableLinear(false);
  EXPECT_EQ(table.TblType(), 0);
}

TEST(FunctionTable, KeepsTextsAndLimits) {
  CSpline table;
  table.Name("decay");
  table.XLabel("distance");
  table.YLabel("weight");
  table.MinX(2);
  table.MaxX(3);
  table.MinY(4);
  table.MaxY(5);
  EXPECT_STREQ(table.Name(), "decay");
  EXPECT_STREQ(table.XLabel(), "distance");
  EXPECT_STREQ(table.YLabel(), "weight");
  EXPECT_EQ(table.MinX(), 2);
  EXPECT_EQ(table.MaxX(), 3);
  EXPECT_EQ(table.MinY(), 4);
  EXPECT_EQ(table.MaxY(), 5);
  table.Name(nullptr);
  EXPECT_STREQ(table.Name(), "");
}

TEST(FunctionTable, NewTableEvaluatesToTheMiddleOfItsRange) {
  CSpline table;
  EXPECT_EQ(table.Evaluate(-5), 0);
  EXPECT_EQ(table.Evaluate(0), 0);
  EXPECT_EQ(table.Evaluate(kNan), 0);
  table.MinY(2);
  table.MaxY(5);
  EXPECT_EQ(table.Evaluate(0), 3.5F);
}

TEST(FunctionTable, SinglePointIsIgnored) {
  CSpline table = Table({{3, 7}});
  EXPECT_EQ(table.Evaluate(3), 0);
  table.TableLinear(false);
  EXPECT_EQ(table.Evaluate(3), 0);
}

TEST(FunctionTable, LinearTableAnswersOnItsLinesAndWithItsEnds) {
  CSpline table = Table({{0, 0}, {1, 10}, {2, 0}});
  EXPECT_EQ(table.Evaluate(0.5F), 5);
  EXPECT_EQ(table.Evaluate(1), 10);
  EXPECT_EQ(table.Evaluate(1.75F), 2.5F);
  EXPECT_EQ(table.Evaluate(-1), 0);
  EXPECT_EQ(table.Evaluate(3), 0);
  table = Table({{0, 4}, {1, 10}, {2, 6}});
  EXPECT_EQ(table.Evaluate(-1e30F), 4);
  EXPECT_EQ(table.Evaluate(1e30F), 6);
  EXPECT_EQ(table.Evaluate(kNan), 4);  // counts as left of the table
}

TEST(FunctionTable, LimitsHaveNoPartInEvaluation) {
  CSpline table = Table({{-100, 500}, {100, 900}, {200, 900}});
  EXPECT_EQ(table.Evaluate(0), 700);
}

TEST(FunctionTable, NoNumberCountsAsLeftOfATableOfAnyKind) {
  EXPECT_EQ(Table({{0, 4}, {1, 10}}).Evaluate(kNan), 4);
  CSpline table = Table({{0, 4}, {1, 10}, {2, 6}}, false);
  EXPECT_EQ(table.Evaluate(kNan), 4);
  EXPECT_FALSE(CSplineAccess::CurveValid(table));
  table.Evaluate(0.5F);
  EXPECT_EQ(table.Evaluate(kNan), 4);
}

TEST(FunctionTable, BothFormsOfEvaluateAgree) {
  CSpline table = Table({{0, 0}, {1, 10}, {2, 0}});
  float result = -1;
  table.Evaluate(0.25F, &result);
  EXPECT_EQ(result, 2.5F);
}

TEST(FunctionTable, TwoPointsAreALineWhateverTheTypeAndBuildNoCurve) {
  CSpline table = Table({{0, 0}, {4, 2}}, false);
  EXPECT_EQ(table.Evaluate(1), 0.5F);
  EXPECT_FALSE(CSplineAccess::CurveValid(table));
  EXPECT_EQ(SamplesOf(table), 0U);
}

TEST(FunctionTable, LinearTablesAgreeWithASecondWritingOverSeededTables) {
  for (unsigned int seed = 1; seed <= 300; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> any(-50, 50);
    Pairs points;
    for (std::size_t n = 2 + random() % 40; points.size() < n;)
      points.emplace_back(random() % 3 == 0 ? std::floor(any(random)) : any(random), any(random));
    CSpline table = Table(points);
    Pairs const stored = PointsOf(table);
    for (int i = 0; i < 200; ++i) {
      auto x = static_cast<float>(any(random) * 1.2);
      if (i % 4 == 0) x = static_cast<float>(stored[random() % stored.size()].first);
      ASSERT_EQ(table.Evaluate(x), NaiveLinear(stored, x)) << x;
    }
  }
}

TEST(FunctionTable, AddKeepsPointsInAscendingOrder) {
  EXPECT_EQ(PointsOf(Table({{3, 30}, {1, 10}, {4, 40}, {2, 20}, {0, 0}})),
            (Pairs{{0, 0}, {1, 10}, {2, 20}, {3, 30}, {4, 40}}));
}

TEST(FunctionTable, AddTwiceAtOneXKeepsTheLaterY) {
  EXPECT_EQ(PointsOf(Table({{1, 10}, {2, 20}, {1, 11}})), (Pairs{{1, 11}, {2, 20}}));
  // There is no tolerance.
  double const next = std::nextafter(1.0, 2.0);
  EXPECT_EQ(Table({{1, 10}, {next, 20}}).GetSize(), 2);
}

TEST(FunctionTable, AddAndRemoveAgreeWithASortedListOverSeededSteps) {
  for (unsigned int seed = 1; seed <= 100; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    CSpline table;
    Pairs model;
    for (int step = 0; step < 200; ++step) {
      if (random() % 3 != 0) {
        double const x = static_cast<double>(random() % 40);
        double const y = static_cast<double>(random() % 1000);
        table.Add(x, y);
        std::erase_if(model, [x](auto const &point) { return point.first == x; });
        model.emplace_back(x, y);
        std::sort(model.begin(), model.end());
      } else {
        int const index = static_cast<int>(random() % 45) - 2;
        bool const inside = index >= 0 && index < static_cast<int>(model.size());
        ASSERT_EQ(table.RemoveAt(index), inside);
        if (inside) model.erase(model.begin() + index);
      }
      ASSERT_EQ(PointsOf(table), model);
    }
  }
}

TEST(FunctionTable, BadIndicesGiveFalse) {
  CSpline table = Table({{1, 10}, {2, 20}});
  EXPECT_FALSE(table.RemoveAt(-1));
  EXPECT_FALSE(table.RemoveAt(2));
  EXPECT_EQ(table.GetSize(), 2);
  double x = -1;
  double y = -1;
  EXPECT_FALSE(table.GetAt(-1, &x, &y));
  EXPECT_FALSE(table.GetAt(2, &x, &y));
  EXPECT_FALSE(table.GetAt(0, nullptr, &y));
  EXPECT_FALSE(table.GetAt(0, &x, nullptr));
  EXPECT_EQ(x, -1);
  EXPECT_EQ(y, -1);
  EXPECT_TRUE(table.GetAt(1, &x, &y));
  EXPECT_EQ(x, 2);
  EXPECT_EQ(y, 20);
}

TEST(FunctionTable, RemoveAllLeavesTheCurveInPlaceWithItsFlagDown) {
  CSpline table = Table({{0, 0}, {0.5, 1}, {1, 0}}, false);
  table.Evaluate(0.25F);
  std::size_t const samples = SamplesOf(table);
  table.RemoveAll();
  EXPECT_EQ(table.GetSize(), 0);
  EXPECT_FALSE(CSplineAccess::CurveValid(table));
  EXPECT_EQ(SamplesOf(table), samples);
  EXPECT_EQ(table.Evaluate(0.25F), 0);
}

TEST(FunctionTable, SplineThroughAPeakHasAboutEightySamples) {
  CSpline table = Table({{0, 0}, {0.5, 1}, {1, 0}}, false);
  EXPECT_EQ(table.Evaluate(0), 0);
  EXPECT_EQ(table.Evaluate(1), 0);
  EXPECT_FALSE(CSplineAccess::CurveValid(table));  // the ends need no curve
  EXPECT_NEAR(table.Evaluate(0.5F), 1, 0.01);
  EXPECT_GE(SamplesOf(table), 79U);
  EXPECT_LE(SamplesOf(table), 82U);
  float before = 0;
  for (float x = 0.01F; x < 0.49F; x += 0.01F) {
    float const y = table.Evaluate(x);
    EXPECT_GT(y, before) << x;
    before = y;
  }
  // Above the straight lines: it is a curve.
  EXPECT_GT(table.Evaluate(0.25F), 0.55F);
  auto const &curve = CSplineAccess::Curve(table);
  EXPECT_EQ(curve[1].x, 0);
  EXPECT_NEAR(curve.back().x, 1, 0.02);
}

TEST(FunctionTable, SplineRunsThroughItsPoints) {
  Pairs const points{{10, 2}, {12, 5}, {15, 4}, {19, 8}, {20, 8}, {26, 1}};
  CSpline table = Table(points, false);
  for (auto const &[x, y] : points) EXPECT_NEAR(table.Evaluate(static_cast<float>(x)), y, 0.1);
}

TEST(FunctionTable, SplineAnswersItsLastYAtTheEndThoughTheCurveStopsShort) {
  CSpline table = Table({{0, 0}, {0.3, 3}, {1, 7}}, false);
  table.Evaluate(0.5F);
  auto const last = CSplineAccess::Curve(table).back();
  ASSERT_LT(last.x, 1);
  ASSERT_NE(static_cast<float>(last.y), 7);
  EXPECT_EQ(table.Evaluate(1), 7);
  EXPECT_EQ(table.Evaluate(2), 7);
  // Between the last sample and the last point the last sample's y is the answer.
  auto const between = static_cast<float>((last.x + 1) / 2);
  ASSERT_GT(between, last.x);
  EXPECT_EQ(table.Evaluate(between), static_cast<float>(last.y));
}

TEST(FunctionTable, LeftOfTheFirstSampleTheLastOneAnswers) {
  // Undoing the stretch may round the first sample to the right of the first point: what lies
  // between them is held by no pair. Look for such a table, and ask there.
  std::mt19937 random(3);
  std::uniform_real_distribution<double> any(-1, 1);
  int found = 0;
  for (int i = 0; i < 20000; ++i) {
    // So small that floats lie between neighbouring results of the rounding.
    double const first = any(random) * 1e-4;
    CSpline table = Table({{first, 1}, {first + 5000, 2}, {first + 10000, 4}}, false);
    table.Evaluate(5000);
    auto const &curve = CSplineAccess::Curve(table);
    auto const x = static_cast<float>((table.GetXAt(0) + curve[1].x) / 2);
    if (!(x > table.GetXAt(0) && x < curve[1].x)) continue;
    ++found;
    EXPECT_EQ(table.Evaluate(x), static_cast<float>(curve.back().y));
  }
  EXPECT_GT(found, 0);
}

TEST(FunctionTable, CurveIsBuiltOnceForASetOfPoints) {
  CSpline table = Table({{0, 0}, {0.5, 1}, {1, 0}}, false);
  EXPECT_FALSE(CSplineAccess::CurveValid(table));
  table.Evaluate(0.2F);
  EXPECT_TRUE(CSplineAccess::CurveValid(table));

  table.TableLinear(true);
  table.TableLinear(false);
  table.MinX(-3);
  table.MaxY(9);
  table.Name("n");
  EXPECT_TRUE(CSplineAccess::CurveValid(table));

  table.Add(0.5, 2);
  EXPECT_FALSE(CSplineAccess::CurveValid(table));
  EXPECT_NEAR(table.Evaluate(0.5F), 2, 0.02);
  EXPECT_TRUE(CSplineAccess::CurveValid(table));
  table.Add(0.7, 0);
  EXPECT_FALSE(CSplineAccess::CurveValid(table));
  table.Evaluate(0.2F);
  table.RemoveAt(1);
  EXPECT_FALSE(CSplineAccess::CurveValid(table));
}

TEST(FunctionTable, LinearTableBuildsNoCurve) {
  CSpline table = Table({{0, 0}, {0.5, 1}, {1, 0}});
  table.Evaluate(0.2F);
  EXPECT_FALSE(CSplineAccess::CurveValid(table));
}

TEST(FunctionTable, EvaluationAllocatesNothingAfterTheFirst) {
  CSpline table = Table({{0, 0}, {0.5, 1}, {1, 0}}, false);
  table.Evaluate(0.2F);
  CSpline linear = Table({{0, 0}, {0.5, 1}, {1, 0}});
  long const before = AllocationCount();
  float sum = 0;
  for (int i = 0; i < 100; ++i) {
    float const x = static_cast<float>(i) * 0.01F;
    sum += table.Evaluate(x) + linear.Evaluate(x);
  }
  EXPECT_EQ(AllocationCount(), before);
  EXPECT_GT(sum, 0);
}

TEST(FunctionTable, CopiesTakeEverythingWithThem) {
  CSpline table = Table({{0, 0}, {0.5, 1}, {1, 0}}, false);
  table.Name("n");
  table.XLabel("x");
  table.YLabel("y");
  table.MaxX(7);
  table.Evaluate(0.2F);
  CSpline const copy(table);
  CSpline assigned;
  assigned = table;
  table.RemoveAll();
  for (CSpline const *other : {&copy, static_cast<CSpline const *>(&assigned)}) {
    EXPECT_EQ(other->GetSize(), 3);
    EXPECT_STREQ(other->Name(), "n");
    EXPECT_STREQ(other->XLabel(), "x");
    EXPECT_STREQ(other->YLabel(), "y");
    EXPECT_EQ(other->MaxX(), 7);
    EXPECT_FALSE(other->TableLinear());
    EXPECT_TRUE(CSplineAccess::CurveValid(*other));
    EXPECT_GT(SamplesOf(*other), 70U);
  }
}

TEST(FunctionTable, CopyOfATableWithoutACurveBuildsItsOwn) {
  CSpline table = Table({{0, 0}, {0.5, 1}, {1, 0}}, false);
  table.Evaluate(0.2F);
  table.Add(0.5, 2);  // the samples are still there, with their flag down
  CSpline copy(table);
  EXPECT_FALSE(CSplineAccess::CurveValid(copy));
  EXPECT_EQ(SamplesOf(copy), SamplesOf(table));
  EXPECT_EQ(copy.Evaluate(0.3F), table.Evaluate(0.3F));
  EXPECT_NEAR(copy.Evaluate(0.5F), 2, 0.02);
}

TEST(FunctionTable, AssignmentThatFindsNoMemoryChangesNothing) {
  CSpline source = Table({{0, 0}, {0.5, 1}, {0.7, 2}, {1, 0}}, false);
  source.Name("a name that has to be allocated");
  source.Evaluate(0.2F);
  int failed = 0;
  for (long n = 1;; ++n) {
    CSpline table = Table({{0, 1}, {1, 2}});
    table.Name("earlier");
    try {
      FailingAllocation const failing(n);
      table = source;
    } catch (std::bad_alloc const &) {
      ++failed;
      EXPECT_EQ(PointsOf(table), (Pairs{{0, 1}, {1, 2}}));
      EXPECT_STREQ(table.Name(), "earlier");
      EXPECT_TRUE(table.TableLinear());
      EXPECT_EQ(table.Evaluate(0.5F), 1.5F);
      continue;
    }
    EXPECT_EQ(PointsOf(table), PointsOf(source));
    break;
  }
  EXPECT_EQ(failed, 4);  // the name, x, y and the curve
}

static_assert(std::is_nothrow_move_constructible_v<CSpline>);
static_assert(std::is_nothrow_move_assignable_v<CSpline>);

TEST(FunctionTable, MovedFromIsATableLikeOthers) {
  CSpline table = Table({{0, 0}, {0.5, 1}, {1, 0}}, false);
  table.Name("n");
  table.MaxX(7);
  table.Evaluate(0.2F);
  CSpline moved(std::move(table));
  EXPECT_EQ(moved.GetSize(), 3);
  EXPECT_STREQ(moved.Name(), "n");
  EXPECT_EQ(moved.MaxX(), 7);
  EXPECT_FALSE(moved.TableLinear());
  EXPECT_TRUE(CSplineAccess::CurveValid(moved));
  EXPECT_GT(SamplesOf(moved), 70U);
  // NOLINTNEXTLINE(bugprone-use-after-move)
  EXPECT_EQ(table.GetSize(), 0);
  EXPECT_TRUE(table.TableLinear());
  EXPECT_FALSE(CSplineAccess::CurveValid(table));
  table = std::move(moved);
  EXPECT_EQ(table.GetSize(), 3);
  EXPECT_TRUE(CSplineAccess::CurveValid(table));
  table = *&table;
  EXPECT_EQ(table.GetSize(), 3);
}

template <class Work>
std::string TextThrownBy(Work work) {
  try {
    work();
  } catch (std::string const &text) {
    return text;
  }
  return "nothing";
}

TEST(FunctionTable, PointsTooCloseForASplineThrowThroughEvaluate) {
  CSpline table = Table({{0, 0}, {1e-7, 0}, {1, 0}}, false);
  for (int turn = 0; turn < 2; ++turn) {
    EXPECT_EQ(TextThrownBy([&] { table.Evaluate(0.5F); }), "spline only for n >= 3 points");
    EXPECT_FALSE(CSplineAccess::CurveValid(table));
  }
  EXPECT_EQ(table.Evaluate(2), 0);  // outside the table no curve is asked for
  table.TableLinear(true);
  EXPECT_EQ(table.Evaluate(0.5F), 0);
}

TEST(FunctionTable, MoreThan32766PointsHaveNoSpline) {
  CSpline table;
  for (int i = 40000; i-- > 0;) table.Add(i, 0);
  table.TableLinear(false);
  EXPECT_EQ(TextThrownBy([&] { table.Evaluate(0.5F); }), "unable to invert spline matrix");
}

TEST(Simplify, DropsWhatLiesOnTheLineAndAddsTheThirds) {
  CSpline table = Table({{0, 0}, {1, 1}, {2, 2}}, false);
  table.Simplify();
  EXPECT_TRUE(table.TableLinear());
  Pairs const points = PointsOf(table);
  ASSERT_EQ(points.size(), 4U);
  EXPECT_EQ(points[0], std::make_pair(0.0, 0.0));
  EXPECT_DOUBLE_EQ(points[1].first, 2.0 / 3);
  EXPECT_DOUBLE_EQ(points[1].second, 2.0 / 3);
  EXPECT_DOUBLE_EQ(points[2].first, 4.0 / 3);
  EXPECT_DOUBLE_EQ(points[2].second, 4.0 / 3);
  EXPECT_EQ(points[3], std::make_pair(2.0, 2.0));
}

TEST(Simplify, TableOfTwoPointsGetsFour) {
  CSpline table = Table({{0, 6}, {3, 0}}, false);
  table.Simplify();
  EXPECT_TRUE(table.TableLinear());
  Pairs const points = PointsOf(table);
  ASSERT_EQ(points.size(), 4U);
  double const third = 0.3333333333333333;
  EXPECT_EQ(points[1], std::make_pair(3 * third, 12 * third));
  EXPECT_EQ(points[2], std::make_pair(6 * third, 6 * third));
}

TEST(Simplify, KeepsCornersAndDropsTheRest) {
  CSpline table = Table({{0, 0}, {1, 1}, {2, 2}, {3, 1}, {4, 0}, {5, 0}, {6, 0}});
  table.Simplify();
  EXPECT_EQ(PointsOf(table), (Pairs{{0, 0}, {2, 2}, {4, 0}, {6, 0}}));
}

TEST(Simplify, KeepsAYThatAFloatCannotHold) {
  double const y = 1 + 1e-10;
  CSpline table = Table({{0, y}, {1, y}, {2, y}});
  table.Simplify();
  EXPECT_EQ(PointsOf(table), (Pairs{{0, y}, {1, y}, {2, y}}));
}

TEST(Simplify, FewerThanTwoPointsStayAndTheFlagRises) {
  CSpline table;
  table.TableLinear(false);
  table.Simplify();
  EXPECT_TRUE(table.TableLinear());
  EXPECT_EQ(table.GetSize(), 0);
  table = Table({{3, 7}}, false);
  table.Simplify();
  EXPECT_TRUE(table.TableLinear());
  EXPECT_EQ(PointsOf(table), (Pairs{{3, 7}}));
}

TEST(Simplify, DoesNotChangeTheFunctionOverSeededTables) {
  for (unsigned int seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    CSpline table;
    for (int x = 0; x < 40; ++x)
      if (random() % 4 != 0) table.Add(x, static_cast<double>(random() % 3));
    CSpline simple(table);
    simple.Simplify();
    EXPECT_LE(simple.GetSize(), std::max(table.GetSize(), 4));
    for (float x = -1; x < 41; x += 0.25F) ASSERT_NEAR(simple.Evaluate(x), table.Evaluate(x), 1e-6);
  }
}

TEST(Roots, AreTheDistancesBetweenCellCentresUpToEight) {
  std::vector<int> sums;
  for (int a = 0; a <= 8; ++a)
    for (int b = 0; b <= a; ++b)
      if (a * a + b * b <= 64) sums.push_back(a * a + b * b);
  std::sort(sums.begin(), sums.end());
  sums.erase(std::unique(sums.begin(), sums.end()), sums.end());
  EXPECT_EQ(CSpline::NRoots(), 30);
  ASSERT_EQ(sums.size(), 30U);
  for (int i = 0; i < 30; ++i) {
    double const root = std::sqrt(sums[static_cast<std::size_t>(i)]);
    EXPECT_EQ(CSpline::Root(i), static_cast<float>(std::round(root * 1e4) / 1e4)) << i;
  }
}

class ModalApplication : public RecordingApplication {
 public:
  unsigned int RunModal(CDialog & /*dialog*/) override {
    ++runs;
    if (result == 0) throw std::string("spline only for n >= 3 points");
    return result;
  }
  unsigned int result = 1;
  int runs = 0;
};

TEST(DoModal, AnswersTwoWithoutAScreen) {
  CSpline table = Table({{0, 0}, {1, 1}});
  EXPECT_EQ(CSpline::DoModal(table), 2U);
  EXPECT_EQ(table.GetSize(), 2);
}

TEST(DoModal, AsksTheApplicationAndSwallowsExceptions) {
  ModalApplication application;
  CSpline table = Table({{0, 0}, {1, 1}});
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  application.result = 2;
  EXPECT_EQ(CSpline::DoModal(table), 2U);
  application.result = 0;
  EXPECT_EQ(CSpline::DoModal(table), 2U);
  EXPECT_EQ(application.runs, 3);
  EXPECT_EQ(PointsOf(table), (Pairs{{0, 0}, {1, 1}}));
}

}  // namespace
