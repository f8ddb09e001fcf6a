#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <new>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/functions/spline_solver_internal.h>

#include "tests/support/allocation_count.h"

namespace {

using Points = std::vector<CSplinePoint>;
using Rows = std::vector<std::vector<float>>;

// A list that counts from 1.
Points List(std::vector<CSplinePoint> const &points) {
  Points list(1);
  list.insert(list.end(), points.begin(), points.end());
  return list;
}

CSmartIOFloatMatrix Matrix(Rows const &rows) {
  CSmartIOFloatMatrix matrix;
  matrix.Resize(static_cast<int>(rows.size()), static_cast<int>(rows.at(0).size()));
  for (std::size_t i = 0; i < rows.size(); ++i)
    std::copy(rows[i].begin(), rows[i].end(), matrix.m_ppRows[i]);
  return matrix;
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

// ---- A second writing, rule by rule, in the order in which the rules are told. ----

bool NaiveInvert(Rows &a) {
  std::size_t const m = a.size();
  std::vector<std::size_t> vector(m);
  for (std::size_t i = 0; i < m; ++i) vector[i] = i;
  for (std::size_t k = 0; k < m; ++k) {
    std::size_t r = k;
    for (std::size_t j = k + 1; j < m; ++j)
      if (std::abs(a[j][k]) > std::abs(a[r][k])) r = j;
    if (std::abs(a[r][k]) < 1e-8) return false;
    if (r != k) {
      std::swap(a[k], a[r]);
      std::swap(vector[k], vector[r]);
    }
    float const p = 1 / a[k][k];
    for (std::size_t i = 0; i < m; ++i) a[i][k] = a[i][k] * p;
    a[k][k] = p;
    for (std::size_t j = 0; j < m; ++j) {
      if (j == k) continue;
      for (std::size_t i = 0; i < m; ++i) {
        if (i == k) continue;
        float const product = a[k][j] * a[i][k];
        a[i][j] = a[i][j] - product;
      }
      float const product = a[k][j] * p;
      a[k][j] = -product;
    }
  }
  for (std::size_t i = 0; i < m; ++i) {
    std::vector<float> temp(m);
    for (std::size_t c = 0; c < m; ++c) temp[vector[c]] = a[i][c];
    a[i] = temp;
  }
  return true;
}

double Part(CSplinePoint const &point, int c) {
  return c == 1 ? point.x : point.y;
}

// Null where the rules throw.
std::optional<Points> NaiveCurve(Points P, double step) {
  std::size_t n = P.size() - 1;
  if (P.empty() || n < 3) return std::nullopt;
  std::vector<float> t(n + 1);
  std::vector<float> q(n + 1);
  for (std::size_t i = 2; i <= n;) {
    double const dx = P[i].x - P[i - 1].x;
    double const dy = P[i].y - P[i - 1].y;
    q[i] = static_cast<float>(dx * dx + dy * dy);
    if (q[i] < 1e-7) {
      P.erase(P.begin() + static_cast<std::ptrdiff_t>(i));
      --n;
    } else {
      t[i] = std::sqrt(q[i]);
      ++i;
    }
  }
  if (n < 3) return std::nullopt;

  Rows M(n + 1, std::vector<float>(n + 1, 0.0F));
  Rows R(n + 1, std::vector<float>(3, std::numeric_limits<float>::quiet_NaN()));
  M[1][1] = 1;
  M[1][2] = 0.5F;
  M[n][n] = 4;
  M[n][n - 1] = 2;
  for (std::size_t i = 2; i <= n - 1; ++i) {
    M[i][i - 1] = t[i + 1];
    M[i][i + 1] = t[i];
    M[i][i] = 2 * (t[i + 1] + t[i]);
  }
  for (int c = 1; c <= 2; ++c) {
    auto const column = static_cast<std::size_t>(c);
    R[1][column] = static_cast<float>((Part(P[2], c) - Part(P[1], c)) * 3 / (2 * t[2]));
    for (std::size_t i = 2; i <= n - 1; ++i) {
      double const sum = (Part(P[i + 1], c) - Part(P[i], c)) * q[i] +
                         (Part(P[i], c) - Part(P[i - 1], c)) * q[i + 1];
      R[i][column] = static_cast<float>(sum * 3 / (t[i + 1] * t[i]));
    }
    R[n][column] = static_cast<float>((Part(P[n], c) - Part(P[n - 1], c)) * 6 / t[n]);
  }
  M[0][0] = 1;
  if (!NaiveInvert(M)) return std::nullopt;
  Rows T(n + 1, std::vector<float>(3));
  for (std::size_t i = 1; i <= n; ++i)
    for (std::size_t j = 1; j <= 2; ++j)
      for (std::size_t k = 1; k <= n; ++k) {
        float const product = M[i][k] * R[k][j];
        T[i][j] = T[i][j] + product;
      }

  Points output(1);
  output.push_back(P[1]);
  double s = step;
  for (std::size_t i = 2; i <= n; ++i) {
    float const L = t[i];
    double c2[3] = {};
    double c3[3] = {};
    for (int c = 1; c <= 2; ++c) {
      double const d = Part(P[i], c) - Part(P[i - 1], c);
      float const A = T[i - 1][static_cast<std::size_t>(c)];
      float const B = T[i][static_cast<std::size_t>(c)];
      c2[c] = 3 * d / q[i] - (2 * A + B) / L;
      c3[c] = (A + B) / q[i] - 2 * d / (q[i] * L);
    }
    std::size_t const mark = output.size();
    bool backUp = false;
    double previousX = P[i - 1].x;
    for (bool first = true; first || s <= L; first = false) {
      double const s2 = s * s;
      double const s3 = s * s * s;
      CSplinePoint sample;
      sample.x = c3[1] * s3 + c2[1] * s2 + T[i - 1][1] * s + P[i - 1].x;
      sample.y = c3[2] * s3 + c2[2] * s2 + T[i - 1][2] * s + P[i - 1].y;
      if (previousX > sample.x) backUp = true;
      previousX = sample.x;
      output.push_back(sample);
      s += step;
    }
    if (backUp) {
      output.erase(output.begin() + static_cast<std::ptrdiff_t>(mark), output.end());
      output.push_back(P[i]);
    }
    s = s - L;
  }
  return output;
}

bool SameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

void ExpectSameBits(Points const &curve, Points const &naive) {
  ASSERT_EQ(curve.size(), naive.size());
  for (std::size_t i = 1; i < curve.size(); ++i) {
    ASSERT_TRUE(SameBits(curve[i].x, naive[i].x)) << "x of sample " << i;
    ASSERT_TRUE(SameBits(curve[i].y, naive[i].y)) << "y of sample " << i;
  }
}

// A table as its owner stretches it: x ascends from 15 over 800 units. Some points lie next to
// their neighbour, some y jump so far that the curve backs up.
Points RandomTable(std::mt19937 &random) {
  std::size_t const n = 3 + random() % 58;
  double const height = std::pow(10.0, static_cast<double>(random() % 7) - 2);
  std::uniform_real_distribution<double> along(0, 800);
  std::uniform_real_distribution<double> up(-height, height);
  std::vector<CSplinePoint> points(n);
  for (CSplinePoint &point : points) point = {15 + along(random), up(random)};
  std::sort(points.begin(), points.end(), [](auto const &a, auto const &b) { return a.x < b.x; });
  for (std::size_t i = 1; i < n; ++i) {
    if (random() % 8 != 0) continue;
    points[i] = points[i - 1];
    points[i].x += 1e-5 * static_cast<double>(random() % 100);
  }
  return List(points);
}

// How a segment was made that ends in exactly this point.
bool HoldsExactly(Points const &curve, CSplinePoint const &point) {
  return std::any_of(curve.begin() + 2, curve.end(), [&point](CSplinePoint const &sample) {
    return sample.x == point.x && sample.y == point.y;
  });
}

TEST(SplineSolver, AgreesBitForBitWithASecondWritingOverSeededTables) {
  constexpr int kTables = 4000;
  int curves = 0;
  int droppedPoints = 0;
  int straightened = 0;
  for (unsigned int seed = 1; seed <= kTables; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    Points const table = RandomTable(random);
    std::optional<Points> const naive = NaiveCurve(table, 10.0);
    Points curve;
    if (!naive) {
      EXPECT_NE(TextThrownBy([&] { BuildSplineCurve(table, curve, 10.0); }), "nothing");
      continue;
    }
    ++curves;
    for (std::size_t i = 2; i < table.size(); ++i)
      if (std::hypot(table[i].x - table[i - 1].x, table[i].y - table[i - 1].y) < 3e-4)
        ++droppedPoints;
    if (HoldsExactly(*naive, table.back())) ++straightened;
    BuildSplineCurve(table, curve, 10.0);
    ExpectSameBits(curve, *naive);
    if (HasFatalFailure()) return;
  }
  // The tables are what they are meant to be.
  EXPECT_GT(curves, kTables * 9 / 10);
  EXPECT_GT(droppedPoints, kTables / 10);
  EXPECT_GT(straightened, kTables / 20);
}

TEST(SplineSolver, AgreesBitForBitOverDegenerateTables) {
  double const kNan = std::numeric_limits<double>::quiet_NaN();
  std::vector<std::vector<CSplinePoint>> const tables{
      {{0, 0}, {0, 50}, {0, 100}},                 // straight up
      {{800, 0}, {400, 5}, {0, 0}},                // runs backwards
      {{0, 0}, {100, 0}, {50, 0}, {150, 0}},       // goes back on itself
      {{0, 1e6}, {400, -1e6}, {800, 1e6}},         // high against its width
      {{0, 0}, {1, 1}, {2, 0}, {3, 1}, {800, 1}},  // segments shorter than the step
      {{0, kNan}, {400, 0}, {800, 0}},
      {{0, 0}, {400, 0}, {800, 0}, {900, kNan}},
  };
  for (auto const &table : tables) {
    SCOPED_TRACE(&table - tables.data());
    std::optional<Points> const naive = NaiveCurve(List(table), 10.0);
    ASSERT_TRUE(naive.has_value());
    Points curve;
    BuildSplineCurve(List(table), curve, 10.0);
    ASSERT_EQ(curve.size(), naive->size());
    for (std::size_t i = 1; i < curve.size(); ++i) {
      // The sign of a NaN is nobody's promise.
      EXPECT_TRUE(SameBits(curve[i].x, (*naive)[i].x) ||
                  (std::isnan(curve[i].x) && std::isnan((*naive)[i].x)));
      EXPECT_TRUE(SameBits(curve[i].y, (*naive)[i].y) ||
                  (std::isnan(curve[i].y) && std::isnan((*naive)[i].y)));
    }
  }
}

// FNV-1a over the bits of all samples.
std::uint64_t HashOf(Points const &curve) {
  std::uint64_t hash = 14695981039346656037U;
  auto add = [&hash](double number) {
    auto const bits = std::bit_cast<std::uint64_t>(number);
    for (int shift = 0; shift < 64; shift += 8)
      hash = (hash ^ (bits >> shift & 0xFF)) * 1099511628211U;
  };
  for (std::size_t i = 1; i < curve.size(); ++i) {
    add(curve[i].x);
    add(curve[i].y);
  }
  return hash;
}

struct PinnedCurve {
  std::vector<CSplinePoint> points;
  std::size_t samples;
  std::uint64_t lastY;  // bits
  std::uint64_t hash;
};

// Whatever the compiler, a table gives this very curve. The bits were worked out once more outside the
// library, with each float operation rounded on its own.
TEST(SplineSolver, CurvesKeepTheirBitsOnEveryCompiler) {
  std::vector<PinnedCurve> const pinned{
      {{{15, 0}, {415, 1}, {815, 0}}, 81, 0x3EE389F94A5F0000, 0x3B187C266AE43BE3},
      {{{15, 0}, {115, 40}, {315, 160}, {515, 20}, {815, 90}},
       90,
       0x40560FE1E3FAE444,
       0x58093881F814535D},
      {{{0, 0}, {10, 500}, {20, 0}, {400, 0}, {800, 300}},
       91,
       0x4072BDD6F7299AA3,
       0xD749CA218AF9D454},
  };
  for (PinnedCurve const &pin : pinned) {
    SCOPED_TRACE(&pin - pinned.data());
    Points curve;
    BuildSplineCurve(List(pin.points), curve, 10.0);
    EXPECT_EQ(curve.size() - 1, pin.samples);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(curve.back().y), pin.lastY);
    EXPECT_EQ(HashOf(curve), pin.hash);
  }
}

TEST(SplineSolver, TwoPointsAreTooFew) {
  Points curve;
  EXPECT_EQ(TextThrownBy([&] {
              BuildSplineCurve(List({{0, 0}, {1, 1}}), curve, 10.0);
            }),
            "spline only for n >= 3 points");
  EXPECT_EQ(TextThrownBy([&] { BuildSplineCurve({}, curve, 10.0); }),
            "spline only for n >= 3 points");
}

TEST(SplineSolver, ThreePointsOfWhichTwoNearlyMeetAreTooFew) {
  Points curve;
  auto textFor = [&](double gap) {
    return TextThrownBy([&] { BuildSplineCurve(List({{0, 0}, {gap, 0}, {100, 0}}), curve, 10.0); });
  };
  EXPECT_EQ(textFor(0.0003), "spline only for n >= 3 points");
  EXPECT_EQ(textFor(0.00032), "nothing");
}

TEST(SplineSolver, OfTwoNearPointsTheLaterIsDropped) {
  Points curve;
  Points without;
  BuildSplineCurve(List({{0, 0}, {100, 7}, {100.0001, 7}, {300, 0}}), curve, 10.0);
  BuildSplineCurve(List({{0, 0}, {100, 7}, {300, 0}}), without, 10.0);
  ExpectSameBits(curve, without);
  // A run of near points is measured from the one that was kept: the fourth is far enough from it.
  BuildSplineCurve(List({{0, 0}, {100, 0}, {100.0002, 0}, {100.0004, 0}, {300, 0}}), curve, 10.0);
  BuildSplineCurve(List({{0, 0}, {100, 0}, {100.0004, 0}, {300, 0}}), without, 10.0);
  ExpectSameBits(curve, without);
}

TEST(SplineSolver, OutputBeginsWithAPlaceholderAndTheFirstPoint) {
  Points curve{{9, 9}, {8, 8}};
  BuildSplineCurve(List({{5, 6}, {105, 6}, {205, 6}}), curve, 10.0);
  EXPECT_EQ(curve[0].x, 0);
  EXPECT_EQ(curve[0].y, 0);
  EXPECT_EQ(curve[1].x, 5);
  EXPECT_EQ(curve[1].y, 6);
}

TEST(SplineSolver, StraightLineGivesSamplesOnItOneStepApart) {
  Points curve;
  // Chords of 50 along the direction (0.6, 0.8).
  BuildSplineCurve(List({{0, 0}, {30, 40}, {60, 80}, {90, 120}, {120, 160}}), curve, 10.0);
  ASSERT_EQ(curve.size(), 1U + 21U);
  for (std::size_t i = 1; i < curve.size(); ++i) {
    double const s = 10.0 * static_cast<double>(i - 1);
    EXPECT_NEAR(curve[i].x, 0.6 * s, 1e-4) << i;
    EXPECT_NEAR(curve[i].y, 0.8 * s, 1e-4) << i;
  }
  // The tangents are constant: so is the way from each sample to the next, across the points too.
  for (std::size_t i = 2; i < curve.size(); ++i) {
    EXPECT_NEAR(curve[i].x - curve[i - 1].x, 6, 1e-4) << i;
    EXPECT_NEAR(curve[i].y - curve[i - 1].y, 8, 1e-4) << i;
  }
}

TEST(SplineSolver, LastPointIsNotReachedUnlessItsSegmentIsStraightened) {
  Points curve;
  BuildSplineCurve(List({{0, 0}, {52, 0}, {104, 0}}), curve, 10.0);
  EXPECT_NEAR(curve.back().x, 100, 1e-3);
}

TEST(SplineSolver, SegmentThatBacksUpIsOneLineToTheExactNextPoint) {
  // The steep rise makes the curve swing back in x.
  std::vector<CSplinePoint> const points{{0, 0}, {100, 0}, {101, 400}, {200, 400}};
  Points curve;
  BuildSplineCurve(List(points), curve, 10.0);
  auto const at = std::find_if(curve.begin() + 2, curve.end(), [](CSplinePoint const &sample) {
    return sample.x == 101 && sample.y == 400;
  });
  ASSERT_NE(at, curve.end());
  // The segment has this one element: the one before lies near its first point at the latest.
  EXPECT_LE((at - 1)->y, 10);
  for (std::size_t i = 2; i < curve.size(); ++i) EXPECT_GE(curve[i].x, curve[i - 1].x) << i;
}

TEST(SplineSolver, SegmentShorterThanTheRestOfTheStepYieldsOneSampleBeyondItsEnd) {
  Points curve;
  BuildSplineCurve(List({{0, 0}, {4, 0}, {8, 0}, {108, 0}}), curve, 10.0);
  // s is 10 on the first segment of 4, 16 on the second of 4, 22 on the third.
  ASSERT_GE(curve.size(), 5U);
  EXPECT_NEAR(curve[2].x, 0 + 10, 1e-3);
  EXPECT_NEAR(curve[3].x, 4 + 16, 1e-3);
  EXPECT_NEAR(curve[4].x, 8 + 22, 1e-3);
  EXPECT_NEAR(curve[5].x, 8 + 32, 1e-3);
}

// Of more rows than the vector of row numbers can tell apart there is no inverse. This is the one
// way to the message: a system of chords has more on its diagonal than beside it, and chords that
// are no numbers hold no pivot that counts as too small.
TEST(SplineSolver, CurveWithoutAnInverseThrows) {
  std::vector<CSplinePoint> many(40000);
  for (std::size_t i = 0; i < many.size(); ++i) many[i].x = static_cast<double>(i);
  Points curve;
  EXPECT_EQ(TextThrownBy([&] { BuildSplineCurve(List(many), curve, 10.0); }),
            "unable to invert spline matrix");
}

int g_handlerCalls = 0;

void CountAndGiveUp() {
  ++g_handlerCalls;
  throw std::bad_alloc();
}

// Whether memory is asked for the samples of a curve whose chords have this length in all. A
// gigabyte is not there, so that it comes to nothing.
bool AsksForSamples(double chords) {
  g_handlerCalls = 0;
  std::new_handler const before = std::set_new_handler(CountAndGiveUp);
  RefuseAllocationsFrom(std::size_t{1} << 29);
  Points curve;
  EXPECT_THROW(BuildSplineCurve(List({{0, 0}, {1, chords / 2}, {2, 0}}), curve, 10.0),
               std::bad_alloc);
  RefuseAllocationsFrom(0);
  std::set_new_handler(before);
  return g_handlerCalls > 0;
}

// The page of the format tells this figure.
TEST(SplineSolver, CurveOfMoreThanAbout670MillionUnitsIsRefused) {
  EXPECT_TRUE(AsksForSamples(6.71e8));
  EXPECT_FALSE(AsksForSamples(6.72e8));
}

TEST(SplineSolver, CurveLongerThanAnyMemoryIsRefused) {
  Points curve;
  EXPECT_THROW(BuildSplineCurve(List({{0, 0}, {1, 1e30}, {2, 0}}), curve, 10.0), std::bad_alloc);
  EXPECT_THROW(BuildSplineCurve(List({{0, 0}, {1, 1e10}, {2, 0}}), curve, 10.0), std::bad_alloc);
  double const infinity = std::numeric_limits<double>::infinity();
  EXPECT_THROW(BuildSplineCurve(List({{0, 0}, {1, infinity}, {2, 0}}), curve, 10.0),
               std::bad_alloc);
  BuildSplineCurve(List({{0, 0}, {1, 1e6}, {2, 0}}), curve, 10.0);
  EXPECT_GT(curve.size(), 2U);
}

void ExpectInverse(Rows const &rows) {
  CSmartIOFloatMatrix inverse = Matrix(rows);
  ASSERT_TRUE(InvertMatrix(inverse));
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (std::size_t j = 0; j < rows.size(); ++j) {
      double sum = 0;
      for (std::size_t k = 0; k < rows.size(); ++k) sum += inverse.m_ppRows[i][k] * rows[k][j];
      EXPECT_NEAR(sum, i == j ? 1 : 0, 1e-4) << i << " " << j;
    }
  }
}

TEST(InvertMatrix, TimesTheMatrixGivesTheUnitMatrix) {
  ExpectInverse({{4}});
  ExpectInverse({{2, 1}, {1, 3}});
  ExpectInverse({{0, 1}, {1, 0}});
  ExpectInverse({{0, 0, 1}, {1, 0, 0}, {0, 1, 0}});
  ExpectInverse({{1, 2, 3}, {4, 5, 6}, {7, 8, 10}});
  std::mt19937 random(7);
  std::uniform_real_distribution<float> element(-1, 1);
  for (std::size_t size = 1; size <= 20; ++size) {
    SCOPED_TRACE(size);
    Rows rows(size, std::vector<float>(size));
    for (std::size_t i = 0; i < size; ++i) {
      for (float &cell : rows[i]) cell = element(random);
      rows[i][(i + 3) % size] += 10;  // far from singular, and every pivot needs a swap
    }
    ExpectInverse(rows);
  }
}

TEST(InvertMatrix, AgreesBitForBitWithASecondWriting) {
  for (unsigned int seed = 1; seed <= 500; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::size_t const size = 1 + random() % 30;
    Rows rows(size, std::vector<float>(size));
    // Small whole numbers: ties of pivots and singular matrices come up.
    for (auto &row : rows)
      for (float &cell : row) cell = static_cast<float>(random() % 7) - 3;
    CSmartIOFloatMatrix matrix = Matrix(rows);
    ASSERT_EQ(InvertMatrix(matrix), NaiveInvert(rows));
    for (std::size_t i = 0; i < size; ++i)
      for (std::size_t j = 0; j < size; ++j)
        ASSERT_TRUE(SameBits(matrix.m_ppRows[i][j], rows[i][j])) << i << " " << j;
  }
}

TEST(InvertMatrix, SingularMatrixGivesFalse) {
  CSmartIOFloatMatrix zero = Matrix({{0, 0, 0}, {0, 0, 0}, {0, 0, 0}});
  EXPECT_FALSE(InvertMatrix(zero));
  CSmartIOFloatMatrix dependent = Matrix({{1, 2}, {2, 4}});
  EXPECT_FALSE(InvertMatrix(dependent));
  // The limit of a pivot is 1e-8 itself.
  CSmartIOFloatMatrix tiny = Matrix({{0.9e-8F}});
  EXPECT_FALSE(InvertMatrix(tiny));
  CSmartIOFloatMatrix small = Matrix({{1.1e-8F}});
  EXPECT_TRUE(InvertMatrix(small));
}

// The cells are never looked at, so that they cost address space and no memory.
TEST(InvertMatrix, OfMoreRowsThanTheirNumbersHoldGivesFalse) {
  CSmartIOFloatMatrix matrix;
  try {
    matrix.Resize(32768, 32768);
  } catch (std::bad_alloc const &) {
    GTEST_SKIP() << "this system does not promise four gigabytes";
  }
  EXPECT_FALSE(InvertMatrix(matrix));
}

TEST(InvertMatrix, MatrixThatIsNotSquareThrows) {
  CSmartIOFloatMatrix matrix = Matrix({{1, 2, 3}, {4, 5, 6}});
  EXPECT_EQ(TextThrownBy([&] { InvertMatrix(matrix); }), "InvertMatrix: nrows <> ncols");
  EXPECT_EQ(matrix.m_ppRows[1][2], 6);
}

TEST(MultiplyMatrix, CountsFromOne) {
  CSmartIOFloatMatrix const a = Matrix({{9, 9, 9}, {9, 1, 2}, {9, 3, 4}, {9, 5, 6}});
  CSmartIOFloatMatrix const b = Matrix({{9, 9}, {9, 10}, {9, 100}});
  CSmartIOFloatMatrix c;
  MultiplyMatrix(a, b, c);
  ASSERT_EQ(c.Rows(), 4);
  ASSERT_EQ(c.Cols(), 2);
  EXPECT_EQ(c.m_ppRows[1][1], 210);
  EXPECT_EQ(c.m_ppRows[2][1], 430);
  EXPECT_EQ(c.m_ppRows[3][1], 650);
  EXPECT_FALSE(c.HasNoDataValue());
  EXPECT_EQ(c.NoDataValue(), -9999.0F);
}

TEST(MultiplyMatrix, LeavesRowAndColumnZeroAlone) {
  CSmartIOFloatMatrix const a = Matrix({{9, 9}, {9, 2}});
  CSmartIOFloatMatrix c = Matrix({{1, 2}, {3, 4}});
  MultiplyMatrix(a, a, c);
  EXPECT_EQ(c.m_ppRows[0][0], 1);
  EXPECT_EQ(c.m_ppRows[0][1], 2);
  EXPECT_EQ(c.m_ppRows[1][0], 3);
  EXPECT_EQ(c.m_ppRows[1][1], 4);
}

TEST(MultiplyMatrix, ResultOfAnotherShapeKeepsItsNoDataSettings) {
  CSmartIOFloatMatrix const a = Matrix({{9, 9}, {9, 2}});
  CSmartIOFloatMatrix c = Matrix({{1, 2, 3}});
  c.SetNoDataValue(true, 5);
  MultiplyMatrix(a, a, c);
  EXPECT_EQ(c.Rows(), 2);
  EXPECT_EQ(c.Cols(), 2);
  EXPECT_TRUE(c.HasNoDataValue());
  EXPECT_EQ(c.NoDataValue(), 5);
}

TEST(MultiplyMatrix, SizesThatDoNotFitThrow) {
  CSmartIOFloatMatrix const a = Matrix({{1, 2, 3}, {4, 5, 6}});
  CSmartIOFloatMatrix c;
  EXPECT_EQ(TextThrownBy([&] { MultiplyMatrix(a, a, c); }),
            "MultiplyMatrix: incompatible matrix sizes");
}

static_assert(sizeof(CSmartIOFloatVector) == 2 * sizeof(void *), "virtual table and one pointer");
static_assert(sizeof(CSmartIOShortVector) == 2 * sizeof(void *));

}  // namespace
