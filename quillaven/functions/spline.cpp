#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include <quillaven/functions/spline.h>
#include <quillaven/functions/spline_solver_internal.h>

namespace {

constexpr double kStep = 10.0;
constexpr double kThird = 0.3333333333333333;

// The square roots of the sums of two squares.
constexpr std::array<float, 30> kRoots{
    0.0F,    1.0F,    1.4142F, 2.0F, 2.2361F, 2.8284F, 3.0F,    3.1623F, 3.6056F, 4.0F,
    4.1231F, 4.2426F, 4.4721F, 5.0F, 5.099F,  5.3852F, 5.6569F, 5.831F,  6.0F,    6.0828F,
    6.3246F, 6.4031F, 6.7082F, 7.0F, 7.0711F, 7.2111F, 7.2801F, 7.6158F, 7.8102F, 8.0F};

// The end of the first pair of neighbours from `first` to `last` that holds x; null if none does. A
// pair that falls holds nothing. The walk is plain, as the order in which pairs are met decides
// where an x comes up again.
CSplinePoint const *FindPair(double x, CSplinePoint const *first, CSplinePoint const *last) {
  CSplinePoint const *b = first + 1;
  if (x <= last->x) {
    // The last element ends every step of the walk, which so has one test for each element.
    for (; b <= last; ++b) {
      while (!(x <= b->x)) ++b;
      if (x >= b[-1].x) return b;
    }
  }
  for (; b <= last; ++b)
    if (x <= b->x && x >= b[-1].x) return b;
  return nullptr;
}

// The line through two points at x.
float OnLine(float x, CSplinePoint const &a, CSplinePoint const &b) {
  return static_cast<float>((x - a.x) / (b.x - a.x) * (b.y - a.y) + a.y);
}

// Two elements of one x are a vertical step, whose middle is the answer.
float OnPair(float x, CSplinePoint const &a, CSplinePoint const &b) {
  if (a.x == b.x) return static_cast<float>((a.y + b.y) * 0.5);
  return OnLine(x, a, b);
}

// The answer of n points for an x between the first and the last: that of the first pair of
// neighbours that holds x, as FindPair finds it, or the last y where none does. The last point ends
// every step of the walk, which so has one test for each point.
float OnLines(double x, double const *xs, double const *ys, std::size_t n) {
  for (std::size_t b = 1; b < n; ++b) {
    while (!(x <= xs[b])) ++b;
    double const left = xs[b - 1];
    if (!(left <= x)) continue;  // a pair that falls holds nothing
    double const width = xs[b] - left;
    if (!(width > 0)) return static_cast<float>((ys[b - 1] + ys[b]) * 0.5);  // a vertical step
    return static_cast<float>((x - left) / width * (ys[b] - ys[b - 1]) + ys[b - 1]);
  }
  return static_cast<float>(ys[n - 1]);
}

// The answer at and behind the last point, and where the last x is no number: that ends no walk.
float AtEnd(float x, double const *xs, double const *ys, std::size_t n) {
  if (!(x >= xs[n - 1]))
    for (std::size_t b = 1; b < n; ++b)
      if (xs[b - 1] <= x && x <= xs[b]) return OnPair(x, {xs[b - 1], ys[b - 1]}, {xs[b], ys[b]});
  return static_cast<float>(ys[n - 1]);
}

// Room for one more, so that an insertion cannot fail: x and y keep one length.
void MakeRoom(std::vector<double> &values) {
  if (values.size() == values.capacity()) values.reserve(2 * values.size() + 1);
}

}  // namespace

bool CSpline::GetAt(int index, double *x, double *y) const {
  if (x == nullptr || y == nullptr || index < 0 || index >= GetSize()) return false;
  *x = GetXAt(index);
  *y = GetYAt(index);
  return true;
}

void CSpline::Add(double x, double y) {
  auto const found = std::find_if(m_X.begin(), m_X.end(), [x](double other) { return other >= x; });
  auto const at = found - m_X.begin();
  if (found != m_X.end() && *found == x) {
    m_Y[static_cast<std::size_t>(at)] = y;
  } else {
    MakeRoom(m_X);
    MakeRoom(m_Y);
    m_X.insert(m_X.begin() + at, x);
    m_Y.insert(m_Y.begin() + at, y);
  }
  m_bCurveValid = false;
}

bool CSpline::RemoveAt(int index) {
  if (index < 0 || index >= GetSize()) return false;
  m_X.erase(m_X.begin() + index);
  m_Y.erase(m_Y.begin() + index);
  m_bCurveValid = false;
  return true;
}

void CSpline::RemoveAll() {
  m_X.clear();
  m_Y.clear();
  m_bCurveValid = false;
}

void CSpline::Evaluate(float x, float *result) {
  *result = Evaluate(x);
}

float CSpline::Evaluate(float x) {
  std::size_t const n = m_X.size();
  // One point alone is no function: it is passed over, and that is meant.
  if (n < 2) return static_cast<float>((m_fMaxY + m_fMinY) * 0.5);
  double const *xs = m_X.data();
  double const *ys = m_Y.data();
  if (!(x > xs[0])) return static_cast<float>(ys[0]);  // so that NaN counts as left of the table
  if (!(x < xs[n - 1]) && (x >= xs[n - 1] || m_bTableLinear || n == 2)) return AtEnd(x, xs, ys, n);
  // Two points are a straight line whatever the type.
  return m_bTableLinear || n == 2 ? OnLines(x, xs, ys, n) : OnCurve(x);
}

// Where no pair holds x the last y answers here too, even left of the first sample, which may lie a
// rounding behind the first point.
float CSpline::OnCurve(float x) {
  if (!m_bCurveValid) SampleCurve();
  CSplinePoint const *end = FindPair(x, m_Curve.data() + 1, &m_Curve.back());
  return end != nullptr ? OnPair(x, end[-1], *end) : static_cast<float>(m_Curve.back().y);
}

// The curve is built in a space of 800 units along x. The shift does not follow the stretch; every
// curve there is was drawn so.
void CSpline::SampleCurve() {
  double const a = 15 - m_X.front();
  double const b = 400 / ((m_X.back() - m_X.front()) * 0.5);
  std::vector<CSplinePoint> points(m_X.size() + 1);
  for (std::size_t i = 0; i < m_X.size(); ++i) points[i + 1] = {b * m_X[i] + a, m_Y[i]};
  BuildSplineCurve(std::move(points), m_Curve, kStep);
  for (std::size_t i = 1; i < m_Curve.size(); ++i) m_Curve[i].x = (m_Curve[i].x - a) / b;
  m_bCurveValid = true;
}

void CSpline::Simplify() {
  m_bTableLinear = true;
  for (int i = 1; i < GetSize() - 1;) {
    double const x = GetXAt(i);
    double const y = GetYAt(i);
    RemoveAt(i);
    // A y that a float cannot hold never equals the answer, and stays.
    if (std::fabs(y - Evaluate(static_cast<float>(x))) > 0.0) {
      Add(x, y);
      ++i;
    }
  }
  if (GetSize() != 2) return;
  Add((2 * m_X[0] + m_X[1]) * kThird, (2 * m_Y[0] + m_Y[1]) * kThird);
  if (GetSize() != 3) return;  // both points are at one x, and there is nothing between them
  Add((2 * m_X[2] + m_X[0]) * kThird, (2 * m_Y[2] + m_Y[0]) * kThird);
}

float CSpline::Root(int index) {
  return kRoots[static_cast<std::size_t>(index)];
}

int CSpline::NRoots() {
  return static_cast<int>(kRoots.size());
}
