#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <string>
#include <utility>

#include <quillaven/functions/spline_solver_internal.h>

namespace {

constexpr double kShortestSquare = 1e-7;
constexpr double kSmallestPivot = 1e-8;

// The vector of row numbers holds 16-bit integers, so no larger matrix can be inverted.
constexpr int kLargestMatrix = std::numeric_limits<std::int16_t>::max();

// A curve of a thousand million units is taken for a mistake in the table, on machines of any size:
// its samples would take more than a gigabyte, and each evaluation walks through them.
constexpr double kMostSamples = 1 << 26;

using Points = std::vector<CSplinePoint>;
using Coordinate = double CSplinePoint::*;
constexpr Coordinate kCoordinates[] = {nullptr, &CSplinePoint::x, &CSplinePoint::y};

[[noreturn]] void ThrowTooFewPoints() {
  throw std::string("spline only for n >= 3 points");
}
[[noreturn]] void ThrowNoInverse() {
  throw std::string("unable to invert spline matrix");
}

// Distances between neighbours from element 2 on, and the squares of them.
struct Chords {
  explicit Chords(std::size_t size) : t(size), q(size) {}
  CSmartIOFloatVector t;
  CSmartIOFloatVector q;
};

// Measures the chords and drops each point that lies too close to the last one kept.
void MeasureChords(Points &points, Chords &chords) {
  std::size_t kept = 1;
  for (std::size_t next = 2; next < points.size(); ++next) {
    double const dx = points[next].x - points[kept].x;
    double const dy = points[next].y - points[kept].y;
    auto const square = static_cast<float>(dx * dx + dy * dy);
    if (square < kShortestSquare) continue;
    points[++kept] = points[next];
    chords.q[kept] = square;
    chords.t[kept] = std::sqrt(square);
  }
  points.resize(kept + 1);
}

// Zero second derivative at both ends, a continuous one between.
CSmartIOFloatMatrix MakeSystem(std::size_t n, Chords const &chords) {
  CSmartIOFloatMatrix matrix;
  int const size = static_cast<int>(n) + 1;
  matrix.Resize(size, size);
  float **m = matrix.m_ppRows;
  for (std::size_t row = 0; row <= n; ++row) std::fill_n(m[row], size, 0.0F);

  auto const &t = chords.t;
  m[0][0] = 1.0F;  // idle, but the whole matrix is inverted
  m[1][1] = 1.0F;
  m[1][2] = 0.5F;
  for (std::size_t i = 2; i < n; ++i) {
    m[i][i - 1] = t[i + 1];
    m[i][i] = 2.0F * (t[i + 1] + t[i]);
    m[i][i + 1] = t[i];
  }
  m[n][n - 1] = 2.0F;
  m[n][n] = 4.0F;
  return matrix;
}

// One column for x and one for y. Row 0 and column 0 are never read.
CSmartIOFloatMatrix MakeRightHandSides(Points const &points, Chords const &chords) {
  std::size_t const n = points.size() - 1;
  auto const &t = chords.t;
  auto const &q = chords.q;
  CSmartIOFloatMatrix matrix;
  matrix.Resize(static_cast<int>(n) + 1, 3);
  float **r = matrix.m_ppRows;
  for (std::size_t column = 1; column <= 2; ++column) {
    Coordinate const c = kCoordinates[column];
    auto const rise = [&](std::size_t i) { return points[i].*c - points[i - 1].*c; };
    r[1][column] = static_cast<float>(rise(2) * 3 / (2 * t[2]));
    for (std::size_t i = 2; i < n; ++i) {
      double const sum = rise(i + 1) * q[i] + rise(i) * q[i + 1];
      r[i][column] = static_cast<float>(sum * 3 / (t[i + 1] * t[i]));
    }
    r[n][column] = static_cast<float>(rise(n) * 6 / t[n]);
  }
  return matrix;
}

// One coordinate of a segment, as a cubic of the distance from its first point.
struct Cubic {
  Cubic(double from, double to, float startTangent, float endTangent, float length, float square)
      : origin(from), tangent(startTangent) {
    double const d = to - from;
    c2 = 3 * d / square - (2 * startTangent + endTangent) / length;
    c3 = (startTangent + endTangent) / square - 2 * d / (square * length);
  }
  double At(double s) const { return c3 * (s * s * s) + c2 * (s * s) + tangent * s + origin; }

  double origin;
  double tangent;
  double c2;
  double c3;
};

// How many samples a curve of these chords takes, at most. A chord that is no number takes one.
std::size_t CountSamples(std::size_t n, Chords const &chords, double step) {
  double count = static_cast<double>(n) + 2;
  for (std::size_t i = 2; i <= n; ++i) {
    double const steps = chords.t[i] / step;
    if (steps > 0) count += steps;
  }
  if (count > kMostSamples) throw std::bad_alloc();
  return static_cast<std::size_t>(count);
}

// Appends the samples of a segment that begins at distance `s`, and returns the distance at which
// the next one begins: the rest of the step carries over. A segment that is shorter than the rest
// of the step still yields one sample, beyond its end on its own cubic.
double SampleSegment(CSplinePoint const &from, CSplinePoint const &to, Cubic const &x,
                     Cubic const &y, float length, double s, double step, Points &output) {
  std::size_t const mark = output.size();
  bool backsUp = false;
  double previous = from.x;
  do {
    CSplinePoint const sample{x.At(s), y.At(s)};
    if (previous > sample.x) backsUp = true;
    previous = sample.x;
    output.push_back(sample);
    s += step;
  } while (s <= length);
  if (backsUp) {
    output.resize(mark);
    output.push_back(to);
  }
  return s - length;
}

// Row k of the matrix is swapped with the row below it that has the largest element in column k;
// a tie keeps the earlier row. False if even that is as good as zero.
bool TakePivotRow(CSmartIOFloatMatrix &a, CSmartIOShortVector &order, std::size_t k) {
  float **rows = a.m_ppRows;
  auto const size = static_cast<std::size_t>(a.Rows());
  std::size_t best = k;
  float magnitude = std::fabs(rows[k][k]);
  for (std::size_t row = k + 1; row < size; ++row) {
    if (std::fabs(rows[row][k]) > magnitude) {
      best = row;
      magnitude = std::fabs(rows[row][k]);
    }
  }
  if (magnitude < kSmallestPivot) return false;
  if (best != k) {
    std::swap_ranges(rows[k], rows[k] + size, rows[best]);
    std::swap(order[k], order[best]);
  }
  return true;
}

// Subtracts a multiple of the pivot row from a row, but for the pivot's column.
void SubtractPivotRow(float *row, float const *pivotRow, std::size_t k, std::size_t size) {
  float const factor = row[k];
  for (std::size_t j = 0; j < k; ++j) row[j] -= pivotRow[j] * factor;
  for (std::size_t j = k + 1; j < size; ++j) row[j] -= pivotRow[j] * factor;
}

// Each element comes from the pivot row as it was, so rows are worked one after the other, in the
// order of their memory, and the pivot row last.
void Eliminate(CSmartIOFloatMatrix &a, std::size_t k) {
  float **rows = a.m_ppRows;
  auto const size = static_cast<std::size_t>(a.Rows());
  float *pivotRow = rows[k];
  float const p = 1.0F / pivotRow[k];
  for (std::size_t row = 0; row < size; ++row) rows[row][k] *= p;
  pivotRow[k] = p;
  for (std::size_t row = 0; row < size; ++row)
    if (row != k) SubtractPivotRow(rows[row], pivotRow, k, size);
  for (std::size_t j = 0; j < size; ++j)
    if (j != k) pivotRow[j] = -(pivotRow[j] * p);
}

void RestoreColumns(CSmartIOFloatMatrix &a, CSmartIOShortVector const &order) {
  auto const size = static_cast<std::size_t>(a.Rows());
  CSmartIOFloatVector row(size);
  for (std::size_t i = 0; i < size; ++i) {
    for (std::size_t c = 0; c < size; ++c)
      row[static_cast<std::size_t>(order[c])] = a.m_ppRows[i][c];
    std::copy_n(&row[0], size, a.m_ppRows[i]);
  }
}

}  // namespace

bool InvertMatrix(CSmartIOFloatMatrix &a) {
  if (a.Rows() != a.Cols()) throw std::string("InvertMatrix: nrows <> ncols");
  if (a.Rows() > kLargestMatrix) return false;
  if (a.Rows() < 1) return true;
  auto const size = static_cast<std::size_t>(a.Rows());
  CSmartIOShortVector order(size);
  for (std::size_t i = 0; i < size; ++i) order[i] = static_cast<std::int16_t>(i);
  for (std::size_t k = 0; k < size; ++k) {
    if (!TakePivotRow(a, order, k)) return false;
    Eliminate(a, k);
  }
  RestoreColumns(a, order);
  return true;
}

void MultiplyMatrix(CSmartIOFloatMatrix const &a, CSmartIOFloatMatrix const &b,
                    CSmartIOFloatMatrix &c) {
  if (a.Cols() != b.Rows()) throw std::string("MultiplyMatrix: incompatible matrix sizes");
  c.Resize(a.Rows(), b.Cols());
  for (int i = 1; i < a.Rows(); ++i) {
    for (int j = 1; j < b.Cols(); ++j) {
      float sum = 0.0F;
      for (int k = 1; k < a.Cols(); ++k) sum += a.m_ppRows[i][k] * b.m_ppRows[k][j];
      c.m_ppRows[i][j] = sum;
    }
  }
}

void BuildSplineCurve(std::vector<CSplinePoint> points, std::vector<CSplinePoint> &output,
                      double step) {
  if (points.size() < 4) ThrowTooFewPoints();
  Chords chords(points.size());
  MeasureChords(points, chords);
  if (points.size() < 4) ThrowTooFewPoints();
  if (points.size() > kLargestMatrix) ThrowNoInverse();
  std::size_t const n = points.size() - 1;
  std::size_t const samples = CountSamples(n, chords, step);

  CSmartIOFloatMatrix system = MakeSystem(n, chords);
  if (!InvertMatrix(system)) ThrowNoInverse();
  CSmartIOFloatMatrix tangents;
  MultiplyMatrix(system, MakeRightHandSides(points, chords), tangents);

  output.assign(1, CSplinePoint());
  output.reserve(samples + 1);
  output.push_back(points[1]);
  double s = step;
  for (std::size_t i = 2; i <= n; ++i) {
    float const *before = tangents.m_ppRows[i - 1];
    float const *after = tangents.m_ppRows[i];
    float const length = chords.t[i];
    float const square = chords.q[i];
    Cubic const x(points[i - 1].x, points[i].x, before[1], after[1], length, square);
    Cubic const y(points[i - 1].y, points[i].y, before[2], after[2], length, square);
    s = SampleSegment(points[i - 1], points[i], x, y, length, s, step, output);
  }
}
