// Function tables against what one would write by hand: a scan over the same arrays, and the same
// dense inversion over plain rows of floats.
//
// "ratio" is the time of the operation divided by that of its peer, "ns" and "peer_ns" are
// nanoseconds for each evaluation or each build.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include <quillaven/functions/spline.h>
#include <quillaven/functions/spline_access_internal.h>
#include <quillaven/functions/spline_solver_internal.h>

#include "benchmarks/compare.h"

namespace {

// So many that no processor learns the way to their answers by heart.
constexpr int kQuestions = 1 << 18;

// A seeded table of n points at uneven distances.
CSpline MakeTable(int n, bool linear) {
  std::mt19937 random(static_cast<unsigned int>(n));
  std::uniform_real_distribution<double> gap(0.5, 1.5);
  std::uniform_real_distribution<double> height(0, 100);
  CSpline table;
  table.TableLinear(linear);
  double x = 0;
  for (int i = 0; i < n; ++i) {
    table.Add(x, height(random));
    x += gap(random);
  }
  return table;
}

std::vector<float> MakeQuestions(CSpline const &table) {
  std::mt19937 random(5);
  std::uniform_real_distribution<double> any(table.GetXAt(0), table.GetXAt(table.GetSize() - 1));
  std::vector<float> questions(kQuestions);
  for (float &x : questions) x = static_cast<float>(any(random));
  return questions;
}

template <class Ask>
void AskAll(std::vector<float> const &questions, Ask ask) {
  float sum = 0;
  for (float x : questions) sum += ask(x);
  benchmark::DoNotOptimize(sum);
}

// What one would write by hand: a table that knows nothing but its arrays and scans them. Its
// functions are not inlined, as the library's are not.
struct PlainTable {
  std::vector<double> xs;
  std::vector<double> ys;

  explicit PlainTable(CSpline const &table) {
    for (int i = 0; i < table.GetSize(); ++i) {
      xs.push_back(table.GetXAt(i));
      ys.push_back(table.GetYAt(i));
    }
  }
  [[gnu::noinline]] float At(float x) const {
    if (x <= xs.front()) return static_cast<float>(ys.front());
    if (x >= xs.back()) return static_cast<float>(ys.back());
    std::size_t b = 1;
    while (xs[b] < x) ++b;
    return static_cast<float>((x - xs[b - 1]) / (xs[b] - xs[b - 1]) * (ys[b] - ys[b - 1]) +
                              ys[b - 1]);
  }
};

struct PlainCurve {
  std::vector<CSplinePoint> points;

  [[gnu::noinline]] float At(float x) const {
    if (x <= points.front().x) return static_cast<float>(points.front().y);
    if (x >= points.back().x) return static_cast<float>(points.back().y);
    std::size_t i = 1;
    while (points[i].x < x) ++i;
    CSplinePoint const &a = points[i - 1];
    CSplinePoint const &b = points[i];
    return static_cast<float>((x - a.x) / (b.x - a.x) * (b.y - a.y) + a.y);
  }
};

template <class Peer>
void CompareAnswers(benchmark::State &state, CSpline &table, Peer const &peer) {
  std::vector<float> const questions = MakeQuestions(table);
  Compare(
      state, kQuestions, [&] { AskAll(questions, [&](float x) { return table.Evaluate(x); }); },
      [&] { AskAll(questions, [&](float x) { return peer.At(x); }); });
}

void BM_EvaluateLinearVersusScan(benchmark::State &state) {
  CSpline table = MakeTable(static_cast<int>(state.range(0)), true);
  CompareAnswers(state, table, PlainTable(table));
}

void BM_EvaluateSplineVersusScan(benchmark::State &state) {
  CSpline table = MakeTable(static_cast<int>(state.range(0)), false);
  table.Evaluate(static_cast<float>(table.GetXAt(1)));
  std::vector<CSplinePoint> const &curve = CSplineAccess::Curve(table);
  CompareAnswers(state, table, PlainCurve{{curve.begin() + 1, curve.end()}});
  state.counters["samples"] = static_cast<double>(curve.size() - 1);
}

using Rows = std::vector<std::vector<float>>;

// The inversion as it must be, with its loops over rows.
bool InvertRows(Rows &a) {
  std::size_t const m = a.size();
  std::vector<std::size_t> order(m);
  for (std::size_t i = 0; i < m; ++i) order[i] = i;
  for (std::size_t k = 0; k < m; ++k) {
    std::size_t best = k;
    for (std::size_t j = k + 1; j < m; ++j)
      if (std::fabs(a[j][k]) > std::fabs(a[best][k])) best = j;
    if (std::fabs(a[best][k]) < 1e-8) return false;
    std::swap(a[k], a[best]);
    std::swap(order[k], order[best]);
    float const p = 1.0F / a[k][k];
    for (std::size_t i = 0; i < m; ++i) a[i][k] *= p;
    a[k][k] = p;
    for (std::size_t i = 0; i < m; ++i) {
      if (i == k) continue;
      for (std::size_t j = 0; j < m; ++j)
        if (j != k) a[i][j] -= a[k][j] * a[i][k];
    }
    for (std::size_t j = 0; j < m; ++j)
      if (j != k) a[k][j] = -(a[k][j] * p);
  }
  std::vector<float> row(m);
  for (std::size_t i = 0; i < m; ++i) {
    for (std::size_t c = 0; c < m; ++c) row[order[c]] = a[i][c];
    a[i] = row;
  }
  return true;
}

// A system of the same shape: a band of three about the diagonal.
Rows MakeBand(std::size_t n) {
  std::mt19937 random(9);
  std::uniform_real_distribution<float> chord(5, 15);
  Rows rows(n + 1, std::vector<float>(n + 1, 0.0F));
  rows[0][0] = 1;
  for (std::size_t i = 1; i <= n; ++i) {
    rows[i][i] = 4 * chord(random);
    if (i > 1) rows[i][i - 1] = chord(random);
    if (i < n) rows[i][i + 1] = chord(random);
  }
  return rows;
}

void BM_CurveVersusInversion(benchmark::State &state) {
  int const n = static_cast<int>(state.range(0));
  CSpline const table = MakeTable(n, false);
  auto const x = static_cast<float>((table.GetXAt(0) + table.GetXAt(n - 1)) / 2);
  Rows const band = MakeBand(static_cast<std::size_t>(n));
  Compare(
      state, 1,
      [&] {
        CSpline copy(table);
        benchmark::DoNotOptimize(copy.Evaluate(x));
      },
      [&] {
        Rows rows(band);
        benchmark::DoNotOptimize(InvertRows(rows));
      });
}

}  // namespace

BENCHMARK(BM_EvaluateLinearVersusScan)->Arg(10)->Arg(100)->Apply(Turns);
BENCHMARK(BM_EvaluateSplineVersusScan)->Arg(3)->Arg(10)->Arg(40)->Apply(Turns);
BENCHMARK(BM_CurveVersusInversion)->Arg(100)->Arg(300)->Apply(Turns);
